#include "companions/template_check/known_pages.h"

#include <algorithm>
#include <stdexcept>

#include "UI_dll/PDFSettings/edit/page_table.h"
#include "print_settings/field_tables.h"
#include "resources/ids.h"

namespace template_check {

namespace {

// The names of the codes of one of the section's fields, from the first on.
template <class Section>
consteval Strings values(UINT first) {
    Strings found;
    ps::for_each_field<Section>([&](const ps::FieldInfo& field) {
        if (field.first_value == first)
            found = {first, first + field.value_count - 1};
    });
    return found.last ? found : throw std::logic_error("no field has these values");
}

struct Shown {
    unsigned template_id;
    unsigned control;
    Strings strings;
};

constexpr Shown kShown[] = {
    {IDD_OPTIONS, IDC_OPTION_TITLE, {IDS_SETTING_IN_FORCE, IDS_MODULE_VERSION}},
    {IDD_GENERAL, IDC_SAVE_STYLE, {IDS_SAVE_STYLE_ASK, IDS_SAVE_STYLE_FOLDER}},
    {IDD_PDF_VERSION, IDC_PV_VERSION, values<ps::PDFVersion_impl>(IDS_PS_VERSION_0)},
    {IDD_PDF_VERSION, IDC_PV_NOTE, {IDS_PV_NOTE_LOW, IDS_PV_NOTE_NEWEST}},
    {IDD_COLOR, IDC_GRAY_METHOD, values<ps::Color_impl>(IDS_GRAY_METHOD_0)},
    {IDD_COLOR, IDC_MONO_METHOD, values<ps::Color_impl>(IDS_MONO_METHOD_0)},
    {IDD_COLOR, IDC_MONO_FILTER, values<ps::Color_impl>(IDS_MONO_FILTER_0)},
    {IDD_COMPRESS, IDC_CMP_COLOUR + CMP_METHOD, values<ps::ColorImage_impl>(IDS_CMP_METHOD_0)},
    {IDD_COMPRESS, IDC_CMP_COLOUR + CMP_SAMPLING, values<ps::ColorImage_impl>(IDS_CMP_SAMPLING_0)},
    {IDD_COMPRESS, IDC_CMP_MONO + CMP_METHOD, values<ps::MonoImage_impl>(IDS_CMP_MONO_METHOD_0)},
    {IDD_COMPRESS, IDC_CMP_NOTE, {IDS_CMP_NOTE_COLOUR, IDS_CMP_NOTE_MONO}},
    {IDD_FONT, IDC_FONT_FAILED, values<ps::Font_impl>(IDS_FONT_FAILED_0)},
    {IDD_FONT, IDC_FONT_NOTE, {IDS_FONT_HINT, IDS_FONT_NONE_LISTED}},
    {IDD_SECURITIES, IDC_SEC_EDIT, values<ps::Security_impl>(IDS_SEC_EDIT_0)},
    {IDD_SECURITIES, IDC_SEC_PRINT, values<ps::Security_impl>(IDS_SEC_PRINT_0)},
    {IDD_SECURITIES, IDC_SEC_NOTE, {IDS_SEC_NOTE_LOW, IDS_SEC_NOTE_NONE}},
    {IDD_WATERMARK, IDC_MARK_ORDER, values<ps::Watermark_impl>(IDS_MARK_ORDER_0)},
    {IDD_WATERMARK, IDC_MARK_VERTICAL, values<ps::Watermark_impl>(IDS_MARK_VERTICAL_0)},
    {IDD_WATERMARK, IDC_MARK_HORIZONTAL, values<ps::Watermark_impl>(IDS_MARK_HORIZONTAL_0)},
    {IDD_OPEN_ACTION, IDC_OPEN_LAYOUT, values<ps::OpenAction_impl>(IDS_OPEN_LAYOUT_0)},
    {IDD_OPEN_ACTION, IDC_OPEN_BINDING, values<ps::OpenAction_impl>(IDS_OPEN_BINDING_0)},
    {IDD_OPEN_ACTION, IDC_OPEN_ADJUST, values<ps::OpenAction_impl>(IDS_OPEN_ADJUST_0)},
    {IDD_OPEN_ACTION, IDC_OPEN_MODE, values<ps::OpenAction_impl>(IDS_OPEN_MODE_0)},
};

bool within(unsigned id, unsigned from, unsigned to) {
    return id >= from && id <= to;
}

// The permissions of the low and of the high encryption level.
bool are_two_levels(unsigned low, unsigned high) {
    return within(low, IDC_SEC_NO_PRINT, IDC_SEC_NO_ANNOTATE) && within(high, IDC_SEC_COPY, IDC_SEC_PRINT);
}

}  // namespace

bool is_edit_page(unsigned template_id) noexcept {
    return std::ranges::any_of(pdf_settings::page_table(), [template_id](const auto& row) {
        return row.operations->template_id == template_id;
    });
}

bool are_alternatives(unsigned template_id, unsigned first, unsigned second) noexcept {
    return template_id == IDD_SECURITIES && (are_two_levels(first, second) || are_two_levels(second, first));
}

Strings strings_of(unsigned template_id, unsigned control) noexcept {
    for (const Shown& shown : kShown)
        if (shown.template_id == template_id && shown.control == control)
            return shown.strings;
    return {};
}

wchar_t sheet_mnemonic(unsigned template_id, const std::wstring& check_button) noexcept {
    // Around the other pages stands a sheet of the system's, with its "&Apply".
    return is_edit_page(template_id) ? mnemonic_of(check_button) : L'A';
}

}  // namespace template_check
