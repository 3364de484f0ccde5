#include "companions/template_check/findings.h"

#include <cstdint>

namespace template_check {

namespace {

const wchar_t* name_of(Kind kind) {
    switch (kind) {
        case Kind::kButton:
            return L"button";
        case Kind::kCheck:
            return L"check box";
        case Kind::kRadio:
            return L"radio button";
        case Kind::kGroup:
            return L"group box";
        case Kind::kStatic:
            return L"text";
        case Kind::kPicture:
            return L"picture";
        case Kind::kEdit:
            return L"edit";
        case Kind::kCombo:
            return L"combo box";
        case Kind::kList:
            return L"list";
        case Kind::kSpin:
            return L"spin button";
        default:
            return L"control";
    }
}

std::wstring line_of(const std::wstring& place, const std::wstring& what, const std::set<int>& resolutions,
                     int shortage) {
    std::wstring line = place + what;
    if (shortage > 0)
        line += L": " + std::to_wstring(shortage) + L" dialog units short";
    const wchar_t* separator = L" (at ";
    for (const int dpi : resolutions) {
        line += separator + std::to_wstring(dpi);
        separator = L", ";
    }
    return resolutions.empty() ? line : line + L" dpi)";
}

}  // namespace

void Findings::set_place(const std::wstring& library, unsigned template_id) {
    place_ = library + (template_id ? L": template " + std::to_wstring(template_id) + L": " : L": ");
}

Findings::Entry& Findings::entry(const std::wstring& what) {
    for (Entry& known : entries_)
        if (known.place == place_ && known.what == what)
            return known;
    return entries_.emplace_back(Entry{place_, what, {}, 0});
}

void Findings::add(const std::wstring& what) {
    entry(what);
}

void Findings::add_at(int dpi, const std::wstring& what, int shortage) {
    Entry& known = entry(what);
    known.resolutions.insert(dpi);
    known.shortage = shortage > known.shortage ? shortage : known.shortage;
}

bool Findings::mentions(const std::wstring& text) const {
    for (const Entry& known : entries_)
        if (known.what.find(text) != std::wstring::npos)
            return true;
    return false;
}

std::vector<std::wstring> Findings::lines() const {
    std::vector<std::wstring> lines;
    for (const Entry& known : entries_)
        lines.push_back(line_of(known.place, known.what, known.resolutions, known.shortage));
    return lines;
}

std::wstring name_of(const Control& control) {
    std::wstring name = name_of(control.kind);
    if (static_cast<uint16_t>(control.id) != 0xFFFF)  // not IDC_STATIC
        name += L" " + std::to_wstring(control.id);
    return control.text.empty() ? name : name + L" \"" + control.text + L"\"";
}

}  // namespace template_check
