// zr_template_check.exe: says what is wrong with the dialog templates and texts of compiled language
// libraries.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <exception>

#include "companions/template_check/library.h"
#include "companions/template_check/measure.h"
#include "companions/template_check/self_test.h"

namespace template_check {

namespace {

constexpr int kClean = 0;
constexpr int kFaults = 1;
constexpr int kTrouble = 2;

struct Options {
    std::vector<std::wstring> libraries;
    std::vector<int> resolutions{96, 120, 144, 192};
    bool self_test = false;
};

void print_line(const std::wstring& line) {
    const int units = static_cast<int>(line.size());
    std::string bytes(line.size() * 3, '\0');  // a UTF-16 unit needs at most three bytes
    const int length = WideCharToMultiByte(CP_UTF8, 0, line.c_str(), units, bytes.data(),
                                           static_cast<int>(bytes.size()), nullptr, nullptr);
    std::printf("%.*s\n", length, bytes.c_str());
}

// "96,144"; false when it is no list of resolutions.
bool read_resolutions(const std::wstring& text, std::vector<int>& resolutions) {
    resolutions.clear();
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find(L',', at), text.size());
        const int dpi = _wtoi(text.substr(at, end - at).c_str());
        if (dpi < 48 || dpi > 960)
            return false;
        resolutions.push_back(dpi);
        at = end + 1;
    }
    return !resolutions.empty();
}

bool read_options(int count, wchar_t** arguments, Options& options) {
    for (int i = 1; i < count; ++i) {
        const std::wstring argument = arguments[i];
        if (argument == L"--self-test") {
            options.self_test = true;
        } else if (argument == L"--dpi") {
            if (++i == count || !read_resolutions(arguments[i], options.resolutions))
                return false;
        } else if (argument.starts_with(L"--")) {
            return false;
        } else {
            options.libraries.push_back(argument);
        }
    }
    return options.self_test || !options.libraries.empty();
}

// Texts are measured with the font that the system has; another one would give other findings.
void print_font(const Library& library) {
    for (const auto& [id, page] : library.templates) {
        if (!page)
            continue;
        const Measure measure(page->font, 96);
        print_line(library.name + L": " + std::to_wstring(library.templates.size()) + L" templates, " +
                   std::to_wstring(library.strings.size()) + L" strings; " + page->font.face + L" " +
                   std::to_wstring(page->font.points) + L" is drawn as " + measure.face() + L", base units " +
                   std::to_wstring(measure.base_width()) + L" x " + std::to_wstring(measure.line_height()));
        return;
    }
}

int run(const Options& options) {
    if (options.self_test && !run_self_test())
        return kFaults;
    Findings findings;
    std::vector<Library> libraries;
    for (const std::wstring& path : options.libraries) {
        libraries.push_back(load_library(path));
        print_font(libraries.back());
        check_library(libraries.back(), options.resolutions, findings);
        compare_libraries(libraries.front(), libraries.back(), findings);
    }
    for (const std::wstring& line : findings.lines())
        print_line(line);
    return findings.count() ? kFaults : kClean;
}

}  // namespace

}  // namespace template_check

int wmain(int count, wchar_t** arguments) {
    template_check::Options options;
    if (!template_check::read_options(count, arguments, options)) {
        std::puts(
            "usage: zr_template_check LIBRARY... [--dpi 96,120,144,192] [--self-test]\n"
            "The first library is what the others are compared with.");
        return template_check::kTrouble;
    }
    try {
        return template_check::run(options);
    } catch (const std::exception& error) {
        std::printf("zr_template_check: %s\n", error.what());
        return template_check::kTrouble;
    }
}
