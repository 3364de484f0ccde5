#include "UI_dll/PDFSettings/list/summary.h"

#include <cstdint>

#include "UI_dll/PDFSettings/edit/edit_sheet.h"
#include "UI_dll/PDFSettings/messages.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "print_settings/differences.h"
#include "print_settings/pdf_version.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

constexpr size_t kMostUnits = 60;  // of a text of the user's in a line

// A label or a choice of the pages without its mark for the keyboard.
std::wstring words(UINT id) {
    return ps::display::plain(dialog_text(id));
}

std::wstring shortened(const std::wstring& text) {
    return text.size() > kMostUnits ? std::wstring(qk::cut(text, kMostUnits)) + L'\u2026' : text;
}

std::wstring paper(const Setting& setting) {
    const ps::General_impl& general = *setting.general();
    const auto size = [&] {
        return qk::format(L"%g \u00D7 %g mm", static_cast<double>(general.PaperWidth),
                          static_cast<double>(general.PaperHeight));
    };
    if (general.PaperType == ps::General_impl::kCustomSize)
        return words(IDS_PS_PAPER_TYPE_1) + L", " + size();
    const auto& texts = setting.addition()->Str;
    const auto own = texts.find(ps::Addition_impl::kPaperName);
    std::wstring name = own != texts.end() ? own->second : name_of_paper(general.PaperName);
    if (name.empty())
        name = size();
    const bool landscape = general.PaperOrientation == ps::General_impl::kLandscape;
    return shortened(name) + L", " + words(landscape ? IDS_PS_ORIENTATION_1 : IDS_PS_ORIENTATION_0);
}

UINT protection(const Setting& setting) {
    if (ps::is_standard(setting.pdfVersion()->Version))
        return IDS_SUM_NOT_POSSIBLE;
    const bool opens = !setting.security()->UserPassword.empty();
    const bool restricts = !setting.security()->MasterPassword.empty();
    return opens       ? restricts ? IDS_SUM_BOTH : IDS_SUM_OPEN_PASSWORD
           : restricts ? IDS_SUM_PERMISSIONS
                       : IDS_SUM_NO_PROTECTION;
}

std::wstring watermark(const ps::Watermark_impl& mark) {
    if (mark.Style == ps::Watermark_impl::kTextMark)
        return shortened(mark.Text);
    return mark.Style == ps::Watermark_impl::kPictureMark
               ? shortened(std::wstring(qk::file_part(mark.PictureFileName)))
               : dialog_text(IDS_SUM_NO_PROTECTION);
}

UINT reason(const SettingEntry& entry) noexcept {
    return !entry.is_readable                       ? IDS_SUM_UNREADABLE
           : entry.kind == SettingEntry::kInstalled ? IDS_SUM_INSTALLED
           : entry.kind != SettingEntry::kOwn       ? IDS_SUM_ADMINISTRATOR
                                                    : 0;
}

}  // namespace

std::wstring summary_of(const Setting& setting, const SettingEntry& entry) {
    const UINT why = reason(entry);  // first, since a long folder may leave no room at the end
    std::wstring text = why ? dialog_text(why) : std::wstring();
    if (!entry.is_readable)
        return text;
    const auto add = [&](UINT label, const std::wstring& value) {
        text += (text.empty() ? L"" : L"\n") + words(label) + L": " + value;
    };
    const ps::General_impl& general = *setting.general();
    add(IDS_PS_PAPER_NAME, paper(setting));
    add(IDS_PS_VERSION, words(IDS_PS_VERSION_0 + setting.pdfVersion()->Version));
    add(IDS_PS_COLOUR_MODE, words(IDS_PS_COLOUR_MODE_0 + static_cast<UINT>(setting.color()->ColorMode)));
    add(IDS_PS_SECURITY, dialog_text(protection(setting)));
    add(IDS_PS_SAVE_STYLE, general.SaveStyle == ps::General_impl::kAskForPlace
                               ? dialog_text(IDS_SUM_ASKS)
                               : shortened(general.OutputFolder));
    add(IDS_PS_WATERMARK, watermark(*setting.watermark()));
    return text;
}

}  // namespace pdf_settings
