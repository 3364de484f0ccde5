#include "companions/template_check/measure.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string_view>

namespace template_check {

namespace {

constexpr std::wstring_view kLetters = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
// A line does not start with these.
constexpr std::wstring_view kNeverFirst = L"、。，．・：；？！ー）］｝」』】〉》〕”’,.:;?!)]}%";

qk::Font make_font(const DialogTemplate& page, int dpi) {
    LOGFONTW wanted{};
    wanted.lfHeight = -MulDiv(page.points, dpi, 72);
    wanted.lfCharSet = DEFAULT_CHARSET;
    page.face.copy(wanted.lfFaceName, LF_FACESIZE - 1);
    return qk::Font(CreateFontIndirectW(&wanted));
}

bool is_far_eastern(wchar_t unit) {
    return (unit >= 0x2E80 && unit < 0xA000) || (unit >= 0xAC00 && unit < 0xD7B0) || unit >= 0xF900;
}

bool may_break(wchar_t before, wchar_t after) {
    if (after == L' ')
        return true;
    if (kNeverFirst.find(after) != std::wstring_view::npos)
        return false;
    return before == L' ' || is_far_eastern(before) || is_far_eastern(after);
}

}  // namespace

Measure::Measure(const DialogTemplate& page, int dpi)
    : dpi_(dpi), font_(make_font(page, dpi)), context_(CreateCompatibleDC(nullptr)) {
    if (!font_ || !context_)
        throw std::runtime_error("there is no device context or font to measure texts with");
    SelectObject(context_.get(), font_.get());
    TEXTMETRICW metrics{};
    GetTextMetricsW(context_.get(), &metrics);
    base_width_ = (width_of(std::wstring(kLetters)) / 26 + 1) / 2;
    base_height_ = metrics.tmHeight;
    if (base_width_ <= 0 || base_height_ <= 0)
        throw std::runtime_error("texts have no size here");
}

Box Measure::pixels(const Box& units) const noexcept {
    Box box;
    box.left = MulDiv(units.left, base_width_, 4);
    box.top = MulDiv(units.top, base_height_, 8);
    box.right = box.left + MulDiv(units.right - units.left, base_width_, 4);
    box.bottom = box.top + MulDiv(units.bottom - units.top, base_height_, 8);
    return box;
}

int Measure::width_units(int pixels) const noexcept {
    return (pixels * 4 + base_width_ - 1) / base_width_;
}

int Measure::height_units(int pixels) const noexcept {
    return (pixels * 8 + base_height_ - 1) / base_height_;
}

int Measure::width_of(const std::wstring& text) const {
    SIZE size{};
    GetTextExtentPoint32W(context_.get(), text.c_str(), static_cast<int>(text.size()), &size);
    return size.cx;
}

size_t Measure::line_length(const std::wstring& text, size_t start, int width) const {
    int fit = 0;
    SIZE size{};
    const size_t left = text.size() - start;
    GetTextExtentExPointW(context_.get(), text.c_str() + start, static_cast<int>(left), width, &fit, nullptr,
                          &size);
    const size_t most = static_cast<size_t>(std::max(fit, 1));
    if (most >= left)
        return left;
    for (size_t length = most; length > 0; --length)
        if (may_break(text[start + length - 1], text[start + length]))
            return length;
    return most;  // a word longer than the line
}

int Measure::lines_of(const std::wstring& text, int width) const {
    int lines = 0;
    for (size_t at = 0; at < text.size(); ++lines) {
        const size_t end = std::min(text.find(L'\n', at), text.size());
        const std::wstring paragraph = text.substr(0, end);
        at += line_length(paragraph, at, width);
        while (at < end && text[at] == L' ')
            ++at;
        if (at == end)
            ++at;
    }
    return lines;
}

std::wstring shown_text(const std::wstring& text) {
    std::wstring shown;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == L'&' && i + 1 < text.size())
            ++i;
        shown.push_back(text[i]);
    }
    return shown;
}

}  // namespace template_check
