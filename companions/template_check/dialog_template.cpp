#include "companions/template_check/dialog_template.h"

#include <commctrl.h>

#include <cstring>
#include <stdexcept>

namespace template_check {

namespace {

struct Truncated : std::runtime_error {
    Truncated() : std::runtime_error("the template ends too early") {}
};

// Takes one value after another from a resource; throws Truncated at its end.
class Reader {
public:
    explicit Reader(std::span<const std::byte> bytes) : bytes_(bytes) {}

    template <class Value>
    Value take() {
        if (bytes_.size() - at_ < sizeof(Value))
            throw Truncated();
        Value value;
        std::memcpy(&value, bytes_.data() + at_, sizeof(value));
        at_ += sizeof(value);
        return value;
    }

    std::wstring take_text() {
        std::wstring text;
        while (const auto unit = take<uint16_t>())
            text.push_back(static_cast<wchar_t>(unit));
        return text;
    }

    // A text, or 0xFFFF and a number.
    std::wstring take_text_or_number(unsigned& number) {
        number = 0;
        const size_t start = at_;
        if (take<uint16_t>() == 0xFFFF) {
            number = take<uint16_t>();
            return {};
        }
        at_ = start;
        return take_text();
    }

    void skip(size_t count) {
        if (bytes_.size() - at_ < count)
            throw Truncated();
        at_ += count;
    }

    // Each control starts at a multiple of four.
    void align() { skip((4 - at_ % 4) % 4); }

private:
    std::span<const std::byte> bytes_;
    size_t at_ = 0;
};

Kind kind_of_button(DWORD style) {
    switch (style & BS_TYPEMASK) {
        case BS_CHECKBOX:
        case BS_AUTOCHECKBOX:
        case BS_3STATE:
        case BS_AUTO3STATE:
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

Kind kind_of_static(DWORD style) {
    switch (style & SS_TYPEMASK) {
        case SS_LEFT:
        case SS_CENTER:
        case SS_RIGHT:
        case SS_SIMPLE:
        case SS_LEFTNOWORDWRAP:
            return Kind::kStatic;
        default:
            return Kind::kPicture;
    }
}

Kind kind_of(unsigned atom, const std::wstring& name, DWORD style) {
    const auto is = [&](unsigned number, const wchar_t* text) {
        return atom == number || (atom == 0 && lstrcmpiW(name.c_str(), text) == 0);
    };
    if (is(0x80, WC_BUTTONW))
        return kind_of_button(style);
    if (is(0x81, WC_EDITW))
        return Kind::kEdit;
    if (is(0x82, WC_STATICW))
        return kind_of_static(style);
    if (is(0x83, WC_LISTBOXW) || is(0xFFFF, WC_LISTVIEWW))
        return Kind::kList;
    if (is(0x85, WC_COMBOBOXW) || is(0xFFFF, WC_COMBOBOXEXW))
        return Kind::kCombo;
    return is(0xFFFF, UPDOWN_CLASSW) ? Kind::kSpin : Kind::kOther;
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
    unsigned atom = 0;
    const std::wstring name = reader.take_text_or_number(atom);
    control.kind = kind_of(atom, name, control.style);
    control.text = reader.take_text_or_number(atom);
    reader.skip(reader.take<uint16_t>());  // creation data
    return control;
}

DialogTemplate take_template(Reader& reader) {
    DialogTemplate result;
    if (reader.take<uint16_t>() != 1 || reader.take<uint16_t>() != 0xFFFF)
        throw std::runtime_error("no DLGTEMPLATEEX");
    reader.skip(2 * sizeof(DWORD));  // help id, extended style
    if ((reader.take<DWORD>() & DS_SETFONT) == 0)
        throw std::runtime_error("a template without a font");
    const unsigned count = reader.take<uint16_t>();
    reader.skip(2 * sizeof(int16_t));  // its place
    result.width = reader.take<int16_t>();
    result.height = reader.take<int16_t>();
    unsigned number = 0;
    (void)reader.take_text_or_number(number);  // menu
    (void)reader.take_text_or_number(number);  // class
    result.title = reader.take_text();
    result.font.points = reader.take<uint16_t>();
    result.font.weight = reader.take<uint16_t>();
    result.font.italic = reader.take<uint8_t>() != 0;
    reader.skip(1);  // character set
    result.font.face = reader.take_text();
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

bool takes_focus(Kind kind) noexcept {
    switch (kind) {
        case Kind::kButton:
        case Kind::kCheck:
        case Kind::kRadio:
        case Kind::kEdit:
        case Kind::kCombo:
        case Kind::kList:
            return true;
        default:
            return false;
    }
}

bool needs_label(Kind kind) noexcept {
    return kind == Kind::kEdit || kind == Kind::kCombo || kind == Kind::kList;
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
