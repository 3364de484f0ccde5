#include "companions/template_check/findings.h"

#include <algorithm>
#include <cstdint>

namespace template_check {

void Findings::set_place(const std::wstring& library, unsigned template_id) {
    place_ = library + (template_id ? L": template " + std::to_wstring(template_id) + L": " : L": ");
}

void Findings::add(const std::wstring& what, int dpi, int shortage) {
    const std::wstring told = place_ + what;
    auto known = std::find_if(entries_.begin(), entries_.end(),
                              [&](const Entry& entry) { return entry.what == told; });
    if (known == entries_.end())
        known = entries_.insert(known, Entry{told, {}, 0});
    if (dpi)
        known->resolutions.insert(dpi);
    known->shortage = std::max(known->shortage, shortage);
}

std::vector<std::wstring> Findings::lines() const {
    std::vector<std::wstring> lines;
    for (const Entry& entry : entries_) {
        std::wstring line = entry.what;
        if (entry.shortage > 0)
            line += L": " + std::to_wstring(entry.shortage) + L" dialog units short";
        const wchar_t* separator = L" (at ";
        for (const int dpi : entry.resolutions) {
            line += separator + std::to_wstring(dpi);
            separator = L", ";
        }
        lines.push_back(entry.resolutions.empty() ? line : line + L" dpi)");
    }
    return lines;
}

std::wstring name_of(const Control& control) {
    static constexpr const wchar_t* kNames[] = {L"edit",      L"combo box",    L"list",      L"button",
                                                L"check box", L"radio button", L"group box", L"text",
                                                L"picture",   L"spin button",  L"control"};
    std::wstring name = kNames[static_cast<size_t>(control.kind)];
    if (static_cast<uint16_t>(control.id) != 0xFFFF)  // not IDC_STATIC
        name += L" " + std::to_wstring(control.id);
    return control.text.empty() ? name : name + L" \"" + control.text + L"\"";
}

}  // namespace template_check
