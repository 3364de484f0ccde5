// What the checks must know of this system's pages.
#pragma once

#include <string>

#include "companions/template_check/dialog_template.h"

namespace template_check {

// Whether a template is a page of the edit sheet; these are of one size.
[[nodiscard]] bool is_edit_page(unsigned template_id) noexcept;

// Whether two controls of a template stand for each other and are never shown together.
[[nodiscard]] bool are_alternatives(unsigned template_id, unsigned first, unsigned second) noexcept;

// Numbers of strings that a page puts into a control when it is shown; `last` is 0 when there are none.
struct Strings {
    unsigned first = 1;
    unsigned last = 0;
};
[[nodiscard]] Strings strings_of(unsigned template_id, unsigned control) noexcept;

// The mnemonic that the sheet around a page uses for a button of its own; `check_button` is that button's
// text in the library. 0 when there is none.
[[nodiscard]] wchar_t sheet_mnemonic(unsigned template_id, const std::wstring& check_button) noexcept;

}  // namespace template_check
