#include "companions/template_check/known_pages.h"

#include <algorithm>
#include <array>

#include "resources/ids.h"

namespace template_check {

namespace {

constexpr std::array<unsigned, 9> kEditPages{IDD_GENERAL,   IDD_PDF_VERSION, IDD_COLOR,
                                             IDD_COMPRESS,  IDD_FONT,        IDD_SECURITIES,
                                             IDD_WATERMARK, IDD_OPEN_ACTION, IDD_INFO};

// A control of the one range is never shown together with a control of the other.
struct Alternatives {
    unsigned template_id;
    unsigned first_from, first_to;
    unsigned second_from, second_to;
};

constexpr Alternatives kAlternatives[] = {
    // The permissions of the low and of the high encryption level.
    {IDD_SECURITIES, IDC_SEC_NO_PRINT, IDC_SEC_NO_ANNOTATE, IDC_SEC_COPY, IDC_SEC_PRINT},
};

struct Shown {
    unsigned template_id;
    unsigned control;
    Strings strings;
};

constexpr Shown kShown[] = {
    {IDD_OPTIONS, IDC_OPTION_TITLE, {IDS_SETTING_IN_FORCE, IDS_MODULE_VERSION}},
    {IDD_GENERAL, IDC_SAVE_STYLE, {IDS_SAVE_STYLE_ASK, IDS_SAVE_STYLE_FOLDER}},
    {IDD_PDF_VERSION, IDC_PV_VERSION, {IDS_PS_VERSION_0, IDS_PS_VERSION_12}},
    {IDD_PDF_VERSION, IDC_PV_NOTE, {IDS_PV_NOTE_LOW, IDS_PV_NOTE_NEWEST}},
    {IDD_COLOR, IDC_GRAY_METHOD, {IDS_GRAY_METHOD_0, IDS_GRAY_METHOD_2}},
    {IDD_COLOR, IDC_MONO_METHOD, {IDS_MONO_METHOD_0, IDS_MONO_METHOD_1}},
    {IDD_COLOR, IDC_MONO_FILTER, {IDS_MONO_FILTER_0, IDS_MONO_FILTER_4}},
    {IDD_COMPRESS, IDC_CMP_COLOUR + CMP_METHOD, {IDS_CMP_METHOD_0, IDS_CMP_METHOD_4}},
    {IDD_COMPRESS, IDC_CMP_COLOUR + CMP_SAMPLING, {IDS_CMP_SAMPLING_0, IDS_CMP_SAMPLING_3}},
    {IDD_COMPRESS, IDC_CMP_MONO + CMP_METHOD, {IDS_CMP_MONO_METHOD_0, IDS_CMP_MONO_METHOD_4}},
    {IDD_COMPRESS, IDC_CMP_NOTE, {IDS_CMP_NOTE_COLOUR, IDS_CMP_NOTE_MONO}},
    {IDD_FONT, IDC_FONT_FAILED, {IDS_FONT_FAILED_0, IDS_FONT_FAILED_1}},
    {IDD_FONT, IDC_FONT_NOTE, {IDS_FONT_HINT, IDS_FONT_NONE_LISTED}},
    {IDD_SECURITIES, IDC_SEC_EDIT, {IDS_SEC_EDIT_0, IDS_SEC_EDIT_5}},
    {IDD_SECURITIES, IDC_SEC_PRINT, {IDS_SEC_PRINT_0, IDS_SEC_PRINT_2}},
    {IDD_SECURITIES, IDC_SEC_NOTE, {IDS_SEC_NOTE_LOW, IDS_SEC_NOTE_NONE}},
    {IDD_WATERMARK, IDC_MARK_ORDER, {IDS_MARK_ORDER_0, IDS_MARK_ORDER_1}},
    {IDD_WATERMARK, IDC_MARK_VERTICAL, {IDS_MARK_VERTICAL_0, IDS_MARK_VERTICAL_2}},
    {IDD_WATERMARK, IDC_MARK_HORIZONTAL, {IDS_MARK_HORIZONTAL_0, IDS_MARK_HORIZONTAL_2}},
    {IDD_OPEN_ACTION, IDC_OPEN_LAYOUT, {IDS_OPEN_LAYOUT_0, IDS_OPEN_LAYOUT_4}},
    {IDD_OPEN_ACTION, IDC_OPEN_BINDING, {IDS_OPEN_BINDING_0, IDS_OPEN_BINDING_2}},
    {IDD_OPEN_ACTION, IDC_OPEN_ADJUST, {IDS_OPEN_ADJUST_0, IDS_OPEN_ADJUST_4}},
    {IDD_OPEN_ACTION, IDC_OPEN_MODE, {IDS_OPEN_MODE_0, IDS_OPEN_MODE_3}},
};

bool within(unsigned id, unsigned from, unsigned to) {
    return id >= from && id <= to;
}

}  // namespace

bool is_edit_page(unsigned template_id) noexcept {
    return std::find(kEditPages.begin(), kEditPages.end(), template_id) != kEditPages.end();
}

bool are_alternatives(unsigned template_id, unsigned first, unsigned second) noexcept {
    return std::any_of(std::begin(kAlternatives), std::end(kAlternatives), [=](const Alternatives& pair) {
        const auto apart = [&](unsigned one, unsigned other) {
            return within(one, pair.first_from, pair.first_to) &&
                   within(other, pair.second_from, pair.second_to);
        };
        return pair.template_id == template_id && (apart(first, second) || apart(second, first));
    });
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
