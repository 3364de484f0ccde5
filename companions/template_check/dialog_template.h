// Dialog templates as the compiled language libraries hold them.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace template_check {

enum class Kind { kButton, kCheck, kRadio, kGroup, kStatic, kPicture, kEdit, kCombo, kList, kSpin, kOther };

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

struct FontOfTemplate {
    int points = 0;
    int weight = 0;
    bool italic = false;
    std::wstring face;
};

struct DialogTemplate {
    int width = 0;  // in dialog units, as the height
    int height = 0;
    std::wstring title;
    FontOfTemplate font;
    std::vector<Control> controls;
};

// Reads a DLGTEMPLATEEX with a font; nothing when the bytes end too early or are no such template.
[[nodiscard]] std::optional<DialogTemplate> find_template(std::span<const std::byte> bytes);

// Whether the keyboard reaches controls of this kind.
[[nodiscard]] bool takes_focus(Kind kind) noexcept;

// Whether controls of this kind have their name in the static text before them.
[[nodiscard]] bool needs_label(Kind kind) noexcept;

// The upper-case letter behind the "&" of a text, 0 when there is none.
[[nodiscard]] wchar_t mnemonic_of(const std::wstring& text) noexcept;

}  // namespace template_check
