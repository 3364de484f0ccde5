#include "companions/template_check/dialog_template.h"

#include <commctrl.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace template_check {

namespace {

// Takes one value after another from a resource; throws at its end.
class Reader {
public:
    explicit Reader(std::span<const std::byte> bytes) : bytes_(bytes) {}

    void skip(size_t count) {
        if (bytes_.size() - at_ < count)
            throw std::runtime_error("the template ends too early");
        at_ += count;
    }

    // Each control starts at a multiple of four.
    void align() { skip((4 - at_ % 4) % 4); }

    template <class Value>
    Value take() {
        Value value;
        skip(sizeof(value));
        std::memcpy(&value, bytes_.data() + at_ - sizeof(value), sizeof(value));
        return value;
    }

    // A text, or 0xFFFF and a number in its place.
    std::wstring take_text(unsigned* number = nullptr) {
        std::wstring text;
        auto unit = take<uint16_t>();
        if (unit == 0xFFFF) {
            const unsigned found = take<uint16_t>();
            if (number)
                *number = found;
            return text;
        }
        for (; unit; unit = take<uint16_t>())
            text.push_back(static_cast<wchar_t>(unit));
        return text;
    }

private:
    std::span<const std::byte> bytes_;
    size_t at_ = 0;
};

constexpr struct {
    unsigned number;
    const wchar_t* name;
    Kind kind;
} kClasses[] = {{0x80, WC_BUTTONW, Kind::kButton},      {0x81, WC_EDITW, Kind::kEdit},
                {0x82, WC_STATICW, Kind::kStatic},      {0x83, WC_LISTBOXW, Kind::kList},
                {0x85, WC_COMBOBOXW, Kind::kCombo},     {0xFFFF, WC_LISTVIEWW, Kind::kList},
                {0xFFFF, WC_COMBOBOXEXW, Kind::kCombo}, {0xFFFF, UPDOWN_CLASSW, Kind::kSpin}};

Kind kind_of_button(DWORD style) {
    switch (style & BS_TYPEMASK) {
        case BS_CHECKBOX:
        case BS_AUTOCHECKBOX:
            return Kind::kCheck;
        case BS_RADIOBUTTON:
        case BS_AUTORADIOBUTTON:
            return Kind::kRadio;
        case BS_GROUPBOX:
            return Kind::kGroup;
        default:
            return Kind::kButton;
    }
}

bool shows_text(DWORD style) {
    const DWORD type = style & SS_TYPEMASK;
    return type <= SS_RIGHT || type == SS_SIMPLE || type == SS_LEFTNOWORDWRAP;
}

Kind kind_of(unsigned number, const std::wstring& name, DWORD style) {
    for (const auto& known : kClasses) {
        if (number != known.number && lstrcmpiW(name.c_str(), known.name) != 0)
            continue;
        if (known.kind == Kind::kButton)
            return kind_of_button(style);
        return known.kind == Kind::kStatic && !shows_text(style) ? Kind::kPicture : known.kind;
    }
    return Kind::kOther;
}

Control take_control(Reader& reader) {
    Control control;
    reader.align();
    reader.skip(2 * sizeof(DWORD));  // help id, extended style
    control.style = reader.take<DWORD>();
    control.box.left = reader.take<int16_t>();
    control.box.top = reader.take<int16_t>();
    control.box.right = control.box.left + reader.take<int16_t>();
    control.box.bottom = control.box.top + reader.take<int16_t>();
    control.id = reader.take<DWORD>();
    unsigned number = 0;
    const std::wstring name = reader.take_text(&number);
    control.kind = kind_of(number, name, control.style);
    control.text = reader.take_text();
    reader.skip(reader.take<uint16_t>());  // creation data
    return control;
}

DialogTemplate take_template(Reader& reader) {
    DialogTemplate result;
    if (reader.take<uint16_t>() != 1 || reader.take<uint16_t>() != 0xFFFF)
        throw std::runtime_error("no DLGTEMPLATEEX");
    reader.skip(2 * sizeof(DWORD));  // help id, extended style
    const auto style = reader.take<DWORD>();
    if ((style & DS_SETFONT) == 0)
        throw std::runtime_error("a template without a font");
    result.is_box = (style & (WS_POPUP | WS_CHILD)) == WS_POPUP;
    const unsigned count = reader.take<uint16_t>();
    reader.skip(2 * sizeof(int16_t));  // its place
    result.width = reader.take<int16_t>();
    result.height = reader.take<int16_t>();
    for (int i = 0; i < 3; ++i)
        (void)reader.take_text();  // menu, class, title
    result.points = reader.take<uint16_t>();
    reader.skip(sizeof(WORD) + 2);  // weight, slant and character set: Windows' own for these faces
    result.face = reader.take_text();
    for (unsigned i = 0; i < count; ++i)
        result.controls.push_back(take_control(reader));
    return result;
}

}  // namespace

std::optional<DialogTemplate> find_template(std::span<const std::byte> bytes) {
    try {
        Reader reader(bytes);
        return take_template(reader);
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

wchar_t mnemonic_of(const std::wstring& text) noexcept {
    for (size_t i = 0; i + 1 < text.size(); ++i) {
        if (text[i] != L'&')
            continue;
        if (text[i + 1] != L'&')
            return static_cast<wchar_t>(
                reinterpret_cast<uintptr_t>(CharUpperW(reinterpret_cast<LPWSTR>(uintptr_t{text[i + 1]}))));
        ++i;  // "&&" shows one "&"
    }
    return 0;
}

}  // namespace template_check
