#include "UI_dll/ps_to_devmode.h"

#include <cmath>
#include <cstdint>

#include "common/driver_util.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "common/rwPDFSet_functions.h"
#include "lib/devmode.h"
#include "print_settings/printer_setting.h"

using namespace Corvanta::Vantrix::PrintSettings;

namespace {

using Settings = Corvanta::Vantrix::PrintSettings::PrintSettings;

short tenths(float millimetres) noexcept {
    return static_cast<short>(std::lround(millimetres * 10));
}

void set_form_name(DEVMODEW& dm, std::wstring_view name) noexcept {
    qk::copy_zero_padded(dm.dmFormName, std::size(dm.dmFormName), name);
}

// The General page keeps the paper's name beside its number; settings without it take the form's.
std::wstring paper_name(const Settings& settings, const std::vector<FormRecord>& forms) {
    const auto& texts = settings.addition()->Str;
    if (const auto entry = texts.find(Addition_impl::kPaperName); entry != texts.end())
        return entry->second;
    const FormRecord* form = find_form(forms, static_cast<uint16_t>(settings.general()->PaperName));
    return form ? form->name : std::wstring();
}

}  // namespace

void copy_setting(const Settings& settings, const std::vector<FormRecord>& forms, DEVMODEW& dm) {
    const auto& general = settings.general();
    dm.dmScale = static_cast<short>(general->Scale);
    dm.dmPrintQuality = static_cast<short>(general->PaperResolution);
    dm.dmOrientation =
        general->PaperOrientation == General_impl::kLandscape ? DMORIENT_LANDSCAPE : DMORIENT_PORTRAIT;
    dm.dmPaperWidth = tenths(general->PaperWidth);
    dm.dmPaperLength = tenths(general->PaperHeight);
    if (general->PaperType == General_impl::kCustomSize) {
        dm.dmFields |= DM_PAPERWIDTH | DM_PAPERLENGTH;
        dm.dmOrientation = DMORIENT_PORTRAIT;  // a custom size carries its own width and height
        dm.dmPaperSize = kPaperCustom;
        set_form_name(dm, L"custom");
        return;
    }
    set_form_name(dm, paper_name(settings, forms));
    dm.dmPaperSize = general->PaperName;
    TRACE_F(L"dmFormName=%s", dm.dmFormName);
    TRACE_F(L"width=%d, length=%d", int{dm.dmPaperWidth}, int{dm.dmPaperLength});
    TRACE_F(L"dmPaperSize=%d", int{dm.dmPaperSize});
}

void SetPSToDEVMODE(HANDLE printer, DEVMODEW& dm) {
    TRACE("SetPSToDEVMODE");
    const std::wstring name = GetSettingFileNameFromFD(printer_name(printer), MAX_PATH);
    PrintSettingsAdmin settings;
    if (load_printer_setting(name, settings) != PrinterSetting::kLoaded)
        return;
    FormRecords forms;
    (void)ZRTK_EnumForms(printer, nullptr, forms);
    copy_setting(settings, forms.list, dm);
}
