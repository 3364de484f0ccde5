// zr_template_check.exe LIBRARY...: tries its own checks, then says what is wrong with the dialog templates
// and texts of compiled language libraries; the first is what the others' texts are compared with. Its exit
// code is 0, 1 when something is found, 2 when a library cannot be read.
#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <stdexcept>

#include "common/qk/handle.h"
#include "common/qk/text.h"
#include "companions/template_check/checks.h"
#include "companions/template_check/known_pages.h"
#include "resources/ids.h"

namespace template_check {

namespace {

constexpr int kClean = 0;
constexpr int kFaults = 1;
constexpr int kTrouble = 2;

constexpr unsigned kIds = 0x10000;

StringTable read_strings(HMODULE library) {
    StringTable strings;
    for (unsigned id = 1; id < kIds; ++id) {
        const wchar_t* text = nullptr;  // a size of 0 asks for the resource itself
        if (const int length = LoadStringW(library, id, reinterpret_cast<LPWSTR>(&text), 0); length > 0)
            strings.emplace(id, std::wstring(text, static_cast<size_t>(length)));
    }
    return strings;
}

// What "printf" or FormatMessage replace: "%s", "%-5d", "%1". Sorted, for a translation may turn them round.
std::vector<std::wstring> placeholders(const std::wstring& text) {
    std::vector<std::wstring> found;
    for (size_t at = text.find(L'%'); at != std::wstring::npos && at + 1 < text.size();
         at = text.find(L'%', at)) {
        const size_t start = at++;
        const size_t kind = text.find_first_not_of(L"-+#.0123456789hlIw", at);
        if (text[at] == L'%')
            ++at;
        else if (kind != std::wstring::npos &&
                 std::wstring(L"cdiouxXeEfgGsSp").find(text[kind]) != std::wstring::npos)
            found.push_back(text.substr(start, (at = kind + 1) - start));
        else if (text[at] >= L'1' && text[at] <= L'9')
            found.push_back(text.substr(start, 2));
    }
    std::sort(found.begin(), found.end());
    return found;
}

// That no text is missing is seen to by the build; it may be empty.
void compare(const StringTable& reference, StringTable& strings, Findings& findings) {
    for (const auto& [id, text] : reference)
        if (strings[id].empty())
            findings.add(L"string " + std::to_wstring(id) + L" is empty: \"" + text + L"\"");
        else if (placeholders(text) != placeholders(strings[id]))
            findings.add(L"string " + std::to_wstring(id) + L" has other placeholders than \"" + text +
                         L"\": \"" + strings[id] + L"\"");
}

// Reports what is wrong with a library's templates, and returns how many there are.
size_t check_templates(HMODULE library, const std::wstring& name, const StringTable& strings,
                       Findings& findings) {
    size_t count = 0;
    std::optional<DialogTemplate> edit_page;
    for (unsigned id = 1; id < kIds; ++id) {
        const HRSRC found = FindResourceW(library, MAKEINTRESOURCEW(id), RT_DIALOG);
        if (!found)
            continue;
        ++count;
        findings.set_place(name, id);
        const auto* bytes = static_cast<const std::byte*>(LockResource(LoadResource(library, found)));
        const auto page = find_template(std::span(bytes, SizeofResource(library, found)));
        if (!page) {
            findings.add(L"cannot be read");
            continue;
        }
        if (is_edit_page(id)) {
            if (!edit_page)
                edit_page = page;
            if (page->width != edit_page->width || page->height != edit_page->height)
                findings.add(L"has not the size of the other pages");
        }
        check_keyboard(id, *page, sheet_mnemonic(id, strings.at(IDS_CHECK_BUTTON)), findings);
        for (const int dpi : {96, 120, 144, 192})
            check_layout(id, *page, strings, Measure(*page, dpi), findings);
    }
    return count;
}

int run(int count, wchar_t** paths) {
    if (!run_self_test())
        return kFaults;
    Findings findings;
    StringTable reference;
    for (int i = 1; i < count; ++i) {
        const qk::DLL library(
            LoadLibraryExW(paths[i], nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE));
        StringTable strings = read_strings(library.get());
        if (strings.empty())  // as the program itself is, whose strings those of no library are
            throw std::runtime_error(qk::to_utf8(paths[i]) + " cannot be read");
        std::wstring name = paths[i];
        name.erase(0, name.find_last_of(L"\\/:") + 1);
        const size_t count_of_strings = strings.size();
        findings.set_place(name, 0);
        if (reference.empty())
            reference = strings;
        compare(reference, strings, findings);
        const size_t templates = check_templates(library.get(), name, strings, findings);
        std::printf("%s: %zu templates, %zu strings\n", qk::to_utf8(name).c_str(), templates,
                    count_of_strings);
    }
    for (const std::wstring& line : findings.lines())
        std::puts(qk::to_utf8(line).c_str());
    return findings.lines().empty() ? kClean : kFaults;
}

}  // namespace

}  // namespace template_check

int wmain(int count, wchar_t** arguments) {
    try {
        return template_check::run(count, arguments);
    } catch (const std::exception& error) {
        std::printf("zr_template_check: %s\n", error.what());
        return template_check::kTrouble;
    }
}
