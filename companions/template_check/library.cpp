#include "companions/template_check/library.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>

#include "common/qk/handle.h"
#include "companions/template_check/keyboard.h"
#include "companions/template_check/known_pages.h"
#include "resources/ids.h"

namespace template_check {

namespace {

constexpr unsigned kIds = 0x10000;
constexpr unsigned kStringsOfBlock = 16;

std::span<const std::byte> find_resource(HMODULE module, unsigned id, LPCWSTR type) {
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(id), type);
    const void* bytes = found ? LockResource(LoadResource(module, found)) : nullptr;
    if (!bytes)
        return {};
    return {static_cast<const std::byte*>(bytes), SizeofResource(module, found)};
}

void take_strings(HMODULE module, unsigned block, Library& library) {
    for (unsigned id = (block - 1) * kStringsOfBlock; id < block * kStringsOfBlock; ++id) {
        const wchar_t* text = nullptr;  // a size of 0 asks for the resource itself
        const int length = LoadStringW(module, id, reinterpret_cast<LPWSTR>(&text), 0);
        if (length > 0)
            library.strings.emplace(id, std::wstring(text, static_cast<size_t>(length)));
    }
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

std::pair<int, int> common_size(const Library& library) {
    std::map<std::pair<int, int>, int> sizes;
    for (const auto& [id, page] : library.templates)
        if (page && is_edit_page(id))
            ++sizes[{page->width, page->height}];
    const auto most = std::max_element(sizes.begin(), sizes.end(), [](const auto& one, const auto& other) {
        return one.second < other.second;
    });
    return most == sizes.end() ? std::pair{0, 0} : most->first;
}

}  // namespace

std::wstring Library::find_string(unsigned id) const {
    const auto found = strings.find(id);
    return found == strings.end() ? std::wstring() : found->second;
}

Library load_library(const std::wstring& path) {
    const qk::DLL module(
        LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE));
    if (!module)
        throw std::runtime_error("a language library cannot be loaded");
    Library library;
    library.name = path.substr(path.find_last_of(L"\\/:") + 1);
    for (unsigned id = 1; id < kIds; ++id) {
        if (const auto bytes = find_resource(module.get(), id, RT_DIALOG); !bytes.empty())
            library.templates.emplace(id, find_template(bytes));
        if (id <= kIds / kStringsOfBlock && !find_resource(module.get(), id, RT_STRING).empty())
            take_strings(module.get(), id, library);
    }
    return library;
}

void compare_libraries(const Library& reference, const Library& library, Findings& findings) {
    findings.set_place(library.name, 0);
    for (const auto& [id, page] : reference.templates)
        if (!library.templates.contains(id))
            findings.add(L"template " + std::to_wstring(id) + L" is missing");
    for (const auto& [id, text] : reference.strings) {
        const std::wstring other = library.find_string(id);
        if (other.empty())
            findings.add(L"string " + std::to_wstring(id) + L" is missing or empty: \"" + text + L"\"");
        else if (placeholders(text) != placeholders(other))
            findings.add(L"string " + std::to_wstring(id) + L" has other placeholders than \"" + text +
                         L"\": \"" + other + L"\"");
    }
}

void check_library(const Library& library, const std::vector<int>& resolutions, Findings& findings) {
    const auto [width, height] = common_size(library);
    for (const auto& [id, page] : library.templates) {
        findings.set_place(library.name, id);
        if (!page) {
            findings.add(L"cannot be read");
            continue;
        }
        if (is_edit_page(id) && (page->width != width || page->height != height))
            findings.add(L"is " + std::to_wstring(page->width) + L" x " + std::to_wstring(page->height) +
                         L", other pages are " + std::to_wstring(width) + L" x " + std::to_wstring(height));
        check_keyboard(id, *page, sheet_mnemonic(id, library.find_string(IDS_CHECK_BUTTON)), findings);
        for (const int dpi : resolutions)
            check_layout(id, *page, library.strings, Measure(page->font, dpi), findings);
    }
}

}  // namespace template_check
