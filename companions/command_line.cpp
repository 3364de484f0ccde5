#include "companions/command_line.h"

#include <CLI/CLI.hpp>

#include "common/qk/text.h"

namespace companions {

namespace {

void append_quoted(std::wstring& line, const std::wstring& word) {
    line += L'"';
    size_t backslashes = 0;
    for (const wchar_t unit : word) {
        // Backslashes count double before a quotation mark only.
        if (unit == L'"')
            line.append(backslashes + 1, L'\\');
        backslashes = unit == L'\\' ? backslashes + 1 : 0;
        line += unit;
    }
    line.append(backslashes, L'\\');
    line += L'"';
}

}  // namespace

std::wstring command_line(const std::vector<std::wstring>& words) {
    std::wstring line;
    for (const std::wstring& word : words) {
        if (!line.empty())
            line += L' ';
        append_quoted(line, word);
    }
    return line;
}

void prepare(CLI::App& app) {
    app.allow_windows_style_options(false);
    app.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}

CLI::Option* add_text(CLI::App& app, const std::string& name, std::wstring& target, const std::string& help) {
    return app
        .add_option_function<std::string>(
            name, [&target](const std::string& text) { target = qk::to_wide(text); }, help)
        ->check([](const std::string& text) { return std::string(text.empty() ? "is empty" : ""); });
}

std::string above_zero(const std::string& number) {
    return number.find_first_not_of("0xX") == std::string::npos ? "has to be above 0" : "";
}

ReadWords read_words(CLI::App& app, std::span<const wchar_t* const> words) {
    std::vector<std::string> reversed;  // as the library takes them
    for (size_t at = words.size(); at-- > 0;)
        reversed.push_back(qk::to_utf8(words[at]));
    try {
        app.parse(std::move(reversed));
    } catch (const CLI::CallForHelp&) {
        return {{}, qk::to_wide(app.help("", CLI::AppFormatMode::All))};
    } catch (const CLI::ParseError& error) {
        return {qk::to_wide(error.what()), {}};
    }
    return {};
}

}  // namespace companions
