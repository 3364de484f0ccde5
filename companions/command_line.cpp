#include "companions/command_line.h"

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

}  // namespace companions
