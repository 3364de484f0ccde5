// Controls and the fields that they show: a page lists them once, and one exchange fills and reads them.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <tuple>
#include <utility>

#include "UI_dll/PDFSettings/controls.h"
#include "UI_dll/PDFSettings/dialog_state.h"
#include "UI_dll/PDFSettings/pages/whole_number.h"
#include "common/qk/text.h"
#include "common/qk/wipe.h"
#include "print_settings/field_tables.h"

namespace pdf_settings {

// Keeps what every control of the page shows, for is_touched(), as long as the sheet is open.
void remember_controls(HWND page);

// Whether the control shows something else than when the page was filled. What it shows is not always what
// the field holds: numbers are rounded, texts cut, codes without a place on the page not shown at all. So
// only what was touched is read; nothing of a page that could not be filled.
[[nodiscard]] bool is_touched(HWND page, int control);
template <size_t Count>
[[nodiscard]] bool is_touched(HWND page, const std::array<int, Count>& controls) {
    return std::any_of(controls.begin(), controls.end(),
                       [page](int control) { return is_touched(page, control); });
}

// Shows a number, no more digits than the highest has, and gives its up-down control (or 0) the range.
void load_number(HWND page, int control, int up_down, int low, int high, int value);

// --- Rows of a page's table ---
//
// A row names a control and a field; ranges, names of codes and limits are those of the field's table. Rows
// store into the section as it was loaded, where they were touched.

template <class Section, class Value>
struct CheckBox {  // bool, or a number that is 1 when checked
    int control;
    Value Section::*member;

    void load(HWND page, const Section& section) const {
        set_checked(page, control, section.*member == Value{1});
    }
    void store(HWND page, Section& section) const {
        if (is_touched(page, control))
            section.*member = is_checked(page, control) ? Value{1} : Value{0};
    }
};

template <class Section, class Value, size_t Count>
struct Radios {  // the value is the position of the checked one
    std::array<int, Count> controls;
    Value Section::*member;

    void load(HWND page, const Section& section) const {
        for (size_t i = 0; i < Count; ++i)
            set_checked(page, controls[i], static_cast<size_t>(section.*member) == i);
    }
    void store(HWND page, Section& section) const {
        for (size_t i = 0; i < Count; ++i)
            if (is_touched(page, controls[i]) && is_checked(page, controls[i]))
                section.*member = static_cast<Value>(i);
    }
};

template <class Section, class Value>
struct DropList {  // the value is the selected position; the list is filled with the names of the codes
    int control;
    Value Section::*member;

    void load(HWND page, const Section& section) const {
        const ps::FieldInfo field = ps::field_of(member);
        fill_list(page, control, field.first_value, field.value_count);
        select(page, control, static_cast<int>(section.*member));
    }
    void store(HWND page, Section& section) const {
        if (is_touched(page, control))
            section.*member = static_cast<Value>(selected(page, control, static_cast<int>(section.*member)));
    }
};

template <class Section>
struct Text {
    int control;
    std::wstring Section::*member;

    void load(HWND page, const Section& section) const {
        set_text(page, control, section.*member, ps::field_of(member).units);
    }
    void store(HWND page, Section& section) const {
        if (!is_touched(page, control))
            return;
        std::wstring text = control_text(page, control);
        const qk::WipedAtEnd wiped(text);  // what stood there may be a password
        (section.*member).swap(text);
    }
};

template <class Section, class Value>
struct Number {  // a whole number, brought into its range when it is read
    int control;
    Value Section::*member;
    int up_down = 0;           // its up-down control, or none
    bool none_is_low = false;  // text that is no number: the least one, else the field stays

    void load(HWND page, const Section& section) const {
        const ps::Rule range = ps::field_of(member).rule;
        load_number(page, control, up_down, static_cast<int>(range.low), static_cast<int>(range.high),
                    static_cast<int>(section.*member));
    }
    void store(HWND page, Section& section) const {
        if (!is_touched(page, control))
            return;
        const ps::Rule range = ps::field_of(member).rule;
        const auto number = qk::find_integer(control_text(page, control));
        if (number || none_is_low)
            section.*member = static_cast<Value>(
                std::clamp(static_cast<double>(number.value_or(0)), range.low, range.high));
    }
    // The number in the control, by itself and in its range.
    [[nodiscard]] std::optional<uint32_t> find(HWND page) const {
        const ps::Rule range = ps::field_of(member).rule;
        return whole_number(control_text(page, control), static_cast<uint32_t>(range.low),
                            static_cast<uint32_t>(range.high));
    }
};

template <class Section, class Value>
CheckBox(int, Value Section::*) -> CheckBox<Section, Value>;
template <class Section, class Value, size_t Count>
Radios(std::array<int, Count>, Value Section::*) -> Radios<Section, Value, Count>;
template <class Section, class Value>
DropList(int, Value Section::*) -> DropList<Section, Value>;
template <class Section>
Text(int, std::wstring Section::*) -> Text<Section>;
template <class Section, class Value>
Number(int, Value Section::*) -> Number<Section, Value>;
template <class Section, class Value>
Number(int, Value Section::*, int) -> Number<Section, Value>;
template <class Section, class Value>
Number(int, Value Section::*, int, bool) -> Number<Section, Value>;

// Fills the controls of every row of the table from the section, or the section from the controls.
template <class Section, class... Rows>
void load_controls(HWND page, const Section& section, const std::tuple<Rows...>& table) {
    std::apply([&](const auto&... row) { (row.load(page, section), ...); }, table);
}
template <class Section, class... Rows>
void store_controls(HWND page, Section& section, const std::tuple<Rows...>& table) {
    std::apply([&](const auto&... row) { (row.store(page, section), ...); }, table);
}

}  // namespace pdf_settings
