// How large texts are in a template's font at a resolution.
#pragma once

#include <windows.h>

#include <string>

#include "common/qk/gdi_handle.h"
#include "companions/template_check/dialog_template.h"

namespace template_check {

// A template's font at one resolution. Sizes are pixels unless a name says units.
class Measure {
public:
    // Throws std::runtime_error when the font cannot be made.
    Measure(const DialogTemplate& page, int dpi);

    [[nodiscard]] int dpi() const noexcept { return dpi_; }
    [[nodiscard]] int line_height() const noexcept { return base_height_; }

    // A box of a template as the dialog manager places it.
    [[nodiscard]] Box pixels(const Box& units) const noexcept;
    // A width or height in dialog units, rounded up.
    [[nodiscard]] int width_units(int pixels) const noexcept;
    [[nodiscard]] int height_units(int pixels) const noexcept;
    // What is that many pixels at 96 dpi.
    [[nodiscard]] int scaled(int pixels) const noexcept { return MulDiv(pixels, dpi_, 96); }

    // The width of a text on one line.
    [[nodiscard]] int width_of(const std::wstring& text) const;
    // The lines of a text that wraps at blanks, and beside characters of the Far East.
    [[nodiscard]] int lines_of(const std::wstring& text, int width) const;

private:
    [[nodiscard]] size_t line_length(const std::wstring& text, size_t start, int width) const;

    int dpi_;
    qk::Font font_;
    qk::DeviceContext context_;
    int base_width_ = 0;
    int base_height_ = 0;
};

// The text that the screen shows: without the "&" of the mnemonic.
[[nodiscard]] std::wstring shown_text(const std::wstring& text);

}  // namespace template_check
