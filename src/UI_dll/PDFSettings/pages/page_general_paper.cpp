#include "UI_dll/PDFSettings/pages/page_general_paper.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "UI_dll/PDFSettings/messages.h"
#include "UI_dll/PDFSettings/pages/decimal_edit.h"
#include "UI_dll/PDFSettings/pages/exchange.h"
#include "UI_dll/PDFSettings/pages/page_general_rules.h"
#include "common/qk/trace.h"
#include "common/threadprop.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

using Corvanta::Vantrix::PrintSettings::General_impl;

constexpr size_t kLengthUnits = 7;  // "3276.70"
constexpr auto& kFormNameKey = Corvanta::Vantrix::PrintSettings::Addition_impl::kPaperName;

constexpr std::array kPaperTypes = {IDC_PAPER_FORM, IDC_PAPER_CUSTOM};
constexpr std::array kLengths = {IDC_PAPER_WIDTH, IDC_PAPER_HEIGHT};
constexpr std::array kFormControls = {IDC_PAPER_LIST_LABEL, IDC_PAPER_LIST, IDC_PORTRAIT, IDC_LANDSCAPE};
constexpr std::array kCustomControls = {IDC_PAPER_WIDTH_LABEL,  IDC_PAPER_WIDTH,  IDC_PAPER_WIDTH_UNIT,
                                        IDC_PAPER_HEIGHT_LABEL, IDC_PAPER_HEIGHT, IDC_PAPER_HEIGHT_UNIT,
                                        IDC_PAPER_RANGE};

void enable_paper(HWND page, bool custom) {
    enable(page, kFormControls, !custom);
    enable(page, kCustomControls, custom);
}

// Earlier versions left a form without a visible name in the spooler's database.
void delete_blank_form(HANDLE printer) noexcept {
    wchar_t blank[] = L" ";
    DeleteFormW(printer, blank);
}

void dlg_init_General_PaperCombo(HWND page, FormRecords& forms) {
    TRACE("dlg_init_General_PaperCombo");
    ULONG_PTR printer = 0;
    GetThreadProp(threadprop::kPrinter, printer);
    const bool listed = ZRTK_EnumForms(reinterpret_cast<HANDLE>(printer), nullptr, forms) != 0;
    delete_blank_form(reinterpret_cast<HANDLE>(printer));
    if (!listed)
        return;
    forms.list = in_list_order(std::move(forms.list));
    const RedrawOff redraw_off(GetDlgItem(page, IDC_PAPER_LIST));
    SendDlgItemMessageW(page, IDC_PAPER_LIST, CB_RESETCONTENT, 0, 0);
    for (const FormRecord& form : forms.list) {
        const auto item = static_cast<WPARAM>(add_item(page, IDC_PAPER_LIST, form.name));
        SendDlgItemMessageW(page, IDC_PAPER_LIST, CB_SETITEMDATA, item, reinterpret_cast<LPARAM>(&form));
    }
}

void show_paper(HWND page, const std::vector<FormRecord>& papers, int32_t paper_number) {
    if (const auto position = find_list_position(papers, paper_number))
        select(page, IDC_PAPER_LIST, static_cast<int>(*position));
}

std::shared_ptr<DlgRadioGroup> show_paper_type(HWND page, bool custom) {
    auto group = std::make_shared<DlgRadioGroup>();
    for (const int control : kPaperTypes) {
        const auto button = std::make_shared<DlgRadioButton>(page, control);
        button->set_checked((control == IDC_PAPER_CUSTOM) == custom);
        group->add(button);
    }
    return group;
}

const FormRecord* selected_form(HWND page) {
    const int item = selected(page, IDC_PAPER_LIST, -1);
    if (item < 0)
        return nullptr;
    return reinterpret_cast<const FormRecord*>(
        SendDlgItemMessageW(page, IDC_PAPER_LIST, CB_GETITEMDATA, static_cast<WPARAM>(item), 0));
}

double millimetres(LONG thousandths) noexcept {
    return thousandths / 1000.0;
}

bool check_length(HWND page, int control, float current) {
    if (find_paper_length(control_text(page, control)))
        return true;
    SetDlgItemTextW(page, control, length_text(current).c_str());
    return refuse(page, control, IDS_BAD_PAPER_SIZE);
}

float read_length(HWND page, int control, float loaded) {
    if (!is_touched(page, control))
        return loaded;
    return paper_length(find_plain_number(control_text(page, control)).value_or(loaded));
}

// Adds the form's name to the setting, since form numbers differ between printers. Where it was missing only,
// the loaded one gets it too: nobody has changed anything that would have to be confirmed and saved.
void name_form(const FormRecord& form, bool is_new) {
    auto& loaded = loaded_setting().addition()->Str;
    auto& edited = edited_setting().addition()->Str;
    if (loaded_setting().general()->PaperName == form.paper_number)
        loaded.try_emplace(kFormNameKey, form.name);
    const auto entry = loaded.find(kFormNameKey);
    if (is_new)
        edited[kFormNameKey] = form.name;
    else if (entry != loaded.end())
        edited[kFormNameKey] = entry->second;
    else
        edited.erase(kFormNameKey);
}

}  // namespace

void init_paper(HWND page, PaperState& state) {
    dlg_init_General_PaperCombo(page, state.forms);
    for (const int length : kLengths)
        take_lengths(GetDlgItem(page, length));
}

void load_paper(HWND page, const General_impl& section, PaperState& state) {
    set_text(page, IDC_PAPER_WIDTH, length_text(section.PaperWidth), kLengthUnits);
    set_text(page, IDC_PAPER_HEIGHT, length_text(section.PaperHeight), kLengthUnits);
    show_paper(page, state.forms.list, section.PaperName);
    state.type = show_paper_type(page, section.PaperType);
    enable_paper(page, section.PaperType);
}

void show_form_size(HWND page) {
    const FormRecord* form = selected_form(page);
    if (!form)
        return;
    const double width = millimetres(form->size.cx);
    const double height = millimetres(form->size.cy);
    TRACE_F(L"c=%d, DM=%d, w=%.2f, h =%.2f", selected(page, IDC_PAPER_LIST), int{form->paper_number}, width,
            height);
    // Limited as it will be stored: the check would refuse what the user cannot change.
    SetDlgItemTextW(page, IDC_PAPER_WIDTH, length_text(paper_length(width)).c_str());
    SetDlgItemTextW(page, IDC_PAPER_HEIGHT, length_text(paper_length(height)).c_str());
}

void click_paper_type(HWND page, int control, PaperState& state) {
    if (state.type && state.type->command(control))
        enable_paper(page, control == IDC_PAPER_CUSTOM);
}

bool check_paper(HWND page, const General_impl& edited) {
    return check_length(page, IDC_PAPER_WIDTH, edited.PaperWidth) &&
           check_length(page, IDC_PAPER_HEIGHT, edited.PaperHeight);
}

void store_paper(HWND page, General_impl& section) {
    const bool custom = !is_checked(page, IDC_PAPER_FORM);
    const bool is_other_type = is_touched(page, kPaperTypes);
    const bool is_new = is_other_type || is_touched(page, IDC_PAPER_LIST);
    const bool is_other_size = is_new || is_touched(page, kLengths);
    const FormRecord* form = selected_form(page);
    if (custom) {
        section.PaperWidth = read_length(page, IDC_PAPER_WIDTH, section.PaperWidth);
        section.PaperHeight = read_length(page, IDC_PAPER_HEIGHT, section.PaperHeight);
    } else if (form && is_other_size) {
        section.PaperWidth = paper_length(millimetres(form->size.cx));
        section.PaperHeight = paper_length(millimetres(form->size.cy));
    }
    if (is_other_type)
        section.PaperType = custom ? 1 : 0;
    if (form && is_new)
        section.PaperName = static_cast<int16_t>(form->paper_number);
}

void store_form_name(HWND page) {
    if (const FormRecord* form = selected_form(page))
        name_form(*form, is_touched(page, kPaperTypes) || is_touched(page, IDC_PAPER_LIST));
}

}  // namespace pdf_settings
