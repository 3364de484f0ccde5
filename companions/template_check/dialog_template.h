// Dialog templates as the compiled language libraries hold them.
#pragma once

#include <windows.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace template_check {

// First those with their name in the static text before them, then the others that the keyboard reaches.
enum class Kind { kEdit, kCombo, kList, kButton, kCheck, kRadio, kGroup, kStatic, kPicture, kSpin, kOther };

[[nodiscard]] constexpr bool needs_label(Kind kind) noexcept {
    return kind <= Kind::kList;
}
[[nodiscard]] constexpr bool takes_focus(Kind kind) noexcept {
    return kind <= Kind::kRadio;
}

// A rectangle; in a template its unit is the dialog unit.
struct Box {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};

struct Control {
    Kind kind = Kind::kOther;
    DWORD style = 0;
    DWORD id = 0;
    Box box;
    std::wstring text;  // empty where the title is a resource's number
};

struct DialogTemplate {
    int width = 0;  // in dialog units, as the height
    int height = 0;
    int points = 0;       // of its font
    bool is_box = false;  // a window of its own, not a page of a sheet
    std::wstring face;
    std::vector<Control> controls;
};

// Reads a DLGTEMPLATEEX with a font; nothing when the bytes end too early or are no such template.
[[nodiscard]] std::optional<DialogTemplate> find_template(std::span<const std::byte> bytes);

// The upper-case letter behind the "&" of a text, 0 when there is none.
[[nodiscard]] wchar_t mnemonic_of(const std::wstring& text) noexcept;

}  // namespace template_check
