// A compiled language library, loaded as data.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "companions/template_check/dialog_template.h"
#include "companions/template_check/layout.h"

namespace template_check {

struct Library {
    std::wstring name;                                            // its file's name
    std::map<unsigned, std::optional<DialogTemplate>> templates;  // nothing: unreadable
    StringTable strings;

    [[nodiscard]] std::wstring find_string(unsigned id) const;
};

// Throws std::runtime_error when the file is no library.
[[nodiscard]] Library load_library(const std::wstring& path);

// Reports what the reference has and a library lacks, and format placeholders that differ.
void compare_libraries(const Library& reference, const Library& library, Findings& findings);

// Reports what is wrong with one library's templates; `resolutions` are dots per inch.
void check_library(const Library& library, const std::vector<int>& resolutions, Findings& findings);

}  // namespace template_check
