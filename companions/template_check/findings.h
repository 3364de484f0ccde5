// What the checks have found, told once per place with the resolutions at which it shows.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "companions/template_check/dialog_template.h"

namespace template_check {

class Findings {
public:
    // What is reported from now on belongs to that library, and to that template unless its number is 0.
    void set_place(const std::wstring& library, unsigned template_id);

    void add(const std::wstring& what);
    // The same finding at several resolutions becomes one line, with the largest shortage in dialog units.
    void add_at(int dpi, const std::wstring& what, int shortage);

    [[nodiscard]] size_t count() const noexcept { return entries_.size(); }
    [[nodiscard]] bool mentions(const std::wstring& text) const;
    // One line per finding, in the order of their discovery.
    [[nodiscard]] std::vector<std::wstring> lines() const;

private:
    struct Entry {
        std::wstring place;
        std::wstring what;
        std::set<int> resolutions;  // empty: whatever the resolution
        int shortage = 0;           // in dialog units; 0 where nothing is measured
    };
    Entry& entry(const std::wstring& what);

    std::wstring place_;
    std::vector<Entry> entries_;
};

// How a control is called in a finding: its kind, its number and its text.
[[nodiscard]] std::wstring name_of(const Control& control);

}  // namespace template_check
