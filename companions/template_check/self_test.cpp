#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "companions/template_check/checks.h"

namespace template_check {

namespace {

constexpr DWORD kStop = WS_CHILD | WS_VISIBLE | WS_TABSTOP;
constexpr DWORD kShown = WS_CHILD | WS_VISIBLE;
constexpr uint16_t kButton = 0x80;
constexpr uint16_t kEdit = 0x81;
constexpr uint16_t kStatic = 0x82;

struct Part {
    uint16_t atom;
    DWORD style;
    int16_t x, y, width, height;
    const wchar_t* text;
};

template <class Value>
void put(std::vector<std::byte>& bytes, Value value) {
    const size_t at = bytes.size();
    bytes.resize(at + sizeof(value));
    std::memcpy(bytes.data() + at, &value, sizeof(value));
}

void put_text(std::vector<std::byte>& bytes, const wchar_t* text) {
    do
        put(bytes, static_cast<uint16_t>(*text));
    while (*text++);
}

// A page of 100 x 100 dialog units.
std::vector<std::byte> compile(const std::vector<Part>& parts) {
    std::vector<std::byte> bytes;
    const auto count = static_cast<uint16_t>(parts.size());
    const std::initializer_list<uint16_t> words{
        1, 0xFFFF, 0, 0, 0, 0, DS_SETFONT | DS_FIXEDSYS, 0, count, 0, 0, 100, 100, 0, 0, 0, 8, FW_NORMAL, 0};
    for (const uint16_t word : words)
        put(bytes, word);
    put_text(bytes, L"MS Shell Dlg");
    DWORD id = 100;
    for (const Part& part : parts) {
        bytes.resize((bytes.size() + 3) / 4 * 4);
        for (const DWORD value : {DWORD{0}, DWORD{0}, part.style})
            put(bytes, value);
        for (const int16_t value : {part.x, part.y, part.width, part.height})
            put(bytes, value);
        put(bytes, id++);
        put(bytes, uint16_t{0xFFFF});
        put(bytes, part.atom);
        put_text(bytes, part.text);
        put(bytes, uint16_t{0});
    }
    return bytes;
}

struct Case {
    const wchar_t* expected;  // part of a finding; null: there must be none
    std::vector<Part> parts;
};

const Case kCases[] = {
    {nullptr,
     {{kButton, kShown | BS_GROUPBOX, 7, 7, 86, 60, L"Group"},
      {kButton, kStop | WS_GROUP | BS_AUTORADIOBUTTON, 14, 18, 70, 10, L"&One"},
      {kStatic, kShown | WS_GROUP, 14, 34, 30, 8, L"&Two:"},
      {kEdit, kStop, 48, 32, 36, 12, L""},
      {kButton, kStop, 7, 79, 50, 14, L"Thr&ee"}}},
    {L"100 \"&A\" overlaps button 101",
     {{kButton, kStop, 7, 7, 50, 14, L"&A"}, {kButton, kStop, 50, 7, 43, 14, L"&B"}}},
    {L"leaves the page", {{kButton, kStop, 60, 7, 50, 14, L"&A"}}},
    {L"is in the page's margin", {{kButton, kStop, 7, 82, 50, 14, L"&A"}}},
    {L"too near to the border of group box 100",
     {{kButton, kShown | BS_GROUPBOX, 7, 7, 86, 30, L"Group"}, {kButton, kStop, 14, 26, 50, 14, L"&A"}}},
    {L"too narrow", {{kButton, kStop, 7, 7, 20, 14, L"&A text that is too long"}}},
    {L"too low",
     {{kStatic, kShown, 7, 7, 40, 16, L"Words that wrap and wrap, so that they need many lines"}}},
    {L"has the mnemonic of button 100",
     {{kButton, kStop, 7, 7, 40, 14, L"&A"}, {kButton, kStop, 7, 25, 40, 14, L"B&a"}}},
    {L"mnemonic of a button of the sheet", {{kButton, kStop, 7, 7, 40, 14, L"&X"}}},
    {L"has the name of button 100",
     {{kButton, kStop, 7, 7, 40, 14, L"&Save"}, {kButton, kStop, 7, 25, 40, 14, L"S&ave..."}}},
    {L"one default button too many", {{kButton, kStop | BS_DEFPUSHBUTTON, 7, 7, 40, 14, L"&A"}}},
    {L"has no mnemonic", {{kButton, kStop, 7, 7, 40, 14, L"A && B"}}},
    {L"edit 100 has no label", {{kEdit, kStop, 7, 7, 40, 12, L""}}},
    {L"is read before it", {{kButton, kStop, 7, 25, 40, 14, L"&A"}, {kButton, kStop, 7, 7, 40, 14, L"&B"}}},
    {L"is no tab stop", {{kButton, kShown, 7, 7, 40, 14, L"&A"}}},
    {L"follows radio buttons without WS_GROUP",
     {{kButton, kStop | WS_GROUP | BS_AUTORADIOBUTTON, 7, 7, 40, 10, L"&A"},
      {kButton, kStop | BS_AUTOCHECKBOX, 7, 21, 40, 10, L"&B"}}},
};

bool run_case(const Case& row) {
    const std::vector<std::byte> bytes = compile(row.parts);
    const auto page = find_template(bytes);
    if (!page)
        return false;
    for (size_t length = 0; length < bytes.size(); ++length)
        if (find_template(std::span(bytes).first(length)))
            return false;
    Findings findings;
    check_keyboard(1, *page, L'X', findings);
    check_layout(1, *page, {}, Measure(*page, 96), findings);
    const auto lines = findings.lines();
    return row.expected ? std::any_of(lines.begin(), lines.end(),
                                      [&](const auto& line) { return line.find(row.expected) != line.npos; })
                        : lines.empty();
}

}  // namespace

bool run_self_test() {
    bool good = true;
    for (const Case& row : kCases)
        if (!run_case(row)) {
            std::printf("self-test: \"%ls\" fails\n", row.expected ? row.expected : L"a clean page");
            good = false;
        }
    return good;
}

}  // namespace template_check
