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

    // The same finding at several resolutions becomes one line, with the largest shortage in dialog units;
    // `dpi` and `shortage` are 0 where nothing is measured.
    void add(const std::wstring& what, int dpi = 0, int shortage = 0);

    // One line per finding, in the order of their discovery.
    [[nodiscard]] std::vector<std::wstring> lines() const;

private:
    struct Entry {
        std::wstring what;  // with its place
        std::set<int> resolutions;
        int shortage = 0;
    };

    std::wstring place_;
    std::vector<Entry> entries_;
};

// How a control is called in a finding: its kind, its number and its text.
[[nodiscard]] std::wstring name_of(const Control& control);

}  // namespace template_check
