#include <cstdint>

#include "UI_dll/PDFSettings/messages.h"
#include "UI_dll/PDFSettings/pages/common_dialogs.h"
#include "UI_dll/PDFSettings/pages/exchange.h"
#include "UI_dll/PDFSettings/pages/font_states.h"
#include "UI_dll/PDFSettings/pages/page.h"
#include "UI_dll/PDFSettings/pages/page_general.h"
#include "UI_dll/PDFSettings/pages/page_pdf_version.h"
#include "UI_dll/PDFSettings/pages/whole_number.h"
#include "UI_dll/PDFSettings/preview/picture_file.h"
#include "UI_dll/PDFSettings/preview/view_box.h"
#include "common/qk/gdi_handle.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

using Section = Corvanta::Vantrix::PrintSettings::Watermark_impl;

constexpr ps::Rule kSizes = ps::field_of(&Section::FontSize).rule;  // points
constexpr auto kLeastSize = static_cast<uint32_t>(kSizes.low);
constexpr auto kMostSize = static_cast<int>(kSizes.high);
constexpr auto kMostScale = static_cast<int>(ps::field_of(&Section::PictureScale).rule.high);  // percent
constexpr int kFirstScale = 100;  // what is offered when the picture has been fitted so far

struct WaterMarkHelper final : PageHelper {
    WaterMarkHelper() { custom_colours.fill(RGB(255, 255, 255)); }

    COLORREF colour = 0;
    std::array<COLORREF, 16> custom_colours;  // the user's, for as long as the sheet is open
};

constexpr std::array kStyles = {IDC_MARK_NONE, IDC_MARK_TEXT, IDC_MARK_PICTURE};

constexpr std::tuple kTable{
    Radios{kStyles, &Section::Style},
    Text{IDC_MARK_WORDS, &Section::Text},
    Text{IDC_MARK_FONT, &Section::FontName},
    CheckBox{IDC_MARK_DIAGONAL, &Section::DiagonalText},
    Text{IDC_MARK_FILE, &Section::PictureFileName},
    DropList{IDC_MARK_VERTICAL, &Section::VerticalPosition},
    DropList{IDC_MARK_HORIZONTAL, &Section::HorizontalPosition},
    DropList{IDC_MARK_ORDER, &Section::ZOrder},
    CheckBox{IDC_MARK_IN_PRINT, &Section::VisibleInPrint},
    CheckBox{IDC_MARK_ON_SCREEN, &Section::VisibleInDisplay},
};

constexpr Number kTransparency{IDC_MARK_TRANSPARENCY, &Section::Transparency, IDC_MARK_TRANSPARENCY_SPIN};

constexpr std::array kOfText = {IDC_MARK_TEXT_GROUP, IDC_MARK_WORDS_LABEL, IDC_MARK_WORDS,
                                IDC_MARK_FONT_LABEL, IDC_MARK_FONT,        IDC_MARK_SIZE_LABEL,
                                IDC_MARK_SIZE,       IDC_MARK_SIZE_SPIN,   IDC_MARK_SIZE_UNIT,
                                IDC_MARK_COLOUR,     IDC_MARK_SWATCH,      IDC_MARK_DIAGONAL};
constexpr std::array kOfPicture = {IDC_MARK_PICTURE_GROUP, IDC_MARK_FILE_LABEL, IDC_MARK_FILE,
                                   IDC_MARK_BROWSE, IDC_MARK_AUTO_SCALE};
constexpr std::array kOfScale = {IDC_MARK_SCALE_LABEL, IDC_MARK_SCALE, IDC_MARK_SCALE_SPIN,
                                 IDC_MARK_SCALE_UNIT};
constexpr std::array kOfBoth = {IDC_MARK_PLACE_GROUP,
                                IDC_MARK_VERTICAL_LABEL,
                                IDC_MARK_VERTICAL,
                                IDC_MARK_HORIZONTAL_LABEL,
                                IDC_MARK_HORIZONTAL,
                                IDC_MARK_ORDER_LABEL,
                                IDC_MARK_ORDER,
                                IDC_MARK_TRANSPARENCY_LABEL,
                                IDC_MARK_TRANSPARENCY,
                                IDC_MARK_TRANSPARENCY_SPIN,
                                IDC_MARK_TRANSPARENCY_UNIT,
                                IDC_MARK_IN_PRINT,
                                IDC_MARK_ON_SCREEN};

WaterMarkHelper& helper() {
    return page_helper<WaterMarkHelper>(kWaterMarkPage);
}

COLORREF shown_colour(const Section& section) noexcept {
    return static_cast<COLORREF>(section.TextColor) & 0xFFFFFF;
}

// Whether the kind of watermark or what that control says of it was touched: a file may hold what does not go
// together, and is left alone until then.
bool is_new(HWND page, int control) {
    return is_touched(page, kStyles) || is_touched(page, control);
}

// --- Numbers ---

// Each the loaded one until it is touched, which may be one that nobody would type.

std::optional<uint32_t> font_size(HWND page) {
    if (!is_touched(page, IDC_MARK_SIZE))
        return loaded_setting().watermark()->FontSize;
    const std::wstring text = control_text(page, IDC_MARK_SIZE);
    return whole_number(text) == 0u ? 0 : whole_number(text, kLeastSize, kMostSize);
}

std::optional<uint32_t> picture_scale(HWND page) {
    if (!is_touched(page, std::array{IDC_MARK_AUTO_SCALE, IDC_MARK_SCALE}))
        return loaded_setting().watermark()->PictureScale;
    if (is_checked(page, IDC_MARK_AUTO_SCALE))
        return Section::kNoPictureScale;
    return whole_number(control_text(page, IDC_MARK_SCALE), 1, kMostScale);
}

std::optional<uint32_t> transparency(HWND page) {
    if (!is_touched(page, IDC_MARK_TRANSPARENCY))
        return loaded_setting().watermark()->Transparency;
    return kTransparency.find(page);
}

// The section as the controls stand. A number that cannot be stays what it was.
Section read_controls(HWND page) {
    Section section = *loaded_setting().watermark();
    store_controls(page, section, kTable);
    section.FontSize = font_size(page).value_or(section.FontSize);
    section.PictureScale = picture_scale(page).value_or(section.PictureScale);
    section.Transparency = transparency(page).value_or(section.Transparency);
    if (helper().colour != shown_colour(section))
        section.TextColor = static_cast<int32_t>(helper().colour);
    return section;
}

// --- What is seen ---

void enable_controls(HWND page) {
    const bool text = is_checked(page, IDC_MARK_TEXT);
    const bool picture = is_checked(page, IDC_MARK_PICTURE);
    enable(page, kOfText, text);
    enable(page, kOfPicture, picture);
    enable(page, kOfScale, picture && !is_checked(page, IDC_MARK_AUTO_SCALE));
    enable(page, kOfBoth, text || picture);
}

void redraw(HWND page, int control) noexcept {
    if (const HWND window = GetDlgItem(page, control))
        InvalidateRect(window, nullptr, FALSE);
}

void draw_swatch(const DRAWITEMSTRUCT& item) {
    const bool is_off = (item.itemState & ODS_DISABLED) != 0;
    const qk::Brush colour(CreateSolidBrush(helper().colour));
    FillRect(item.hDC, &item.rcItem, is_off ? GetSysColorBrush(COLOR_BTNFACE) : colour.get());
    FrameRect(item.hDC, &item.rcItem, GetSysColorBrush(is_off ? COLOR_GRAYTEXT : COLOR_BTNTEXT));
}

// Paper, scale and boxes as the other pages stand.
Setting shown_setting(HWND page) {
    Setting setting = edited_setting();
    *setting.general() = read_General();
    *setting.pdfVersion() = read_PDFVersion(page);
    *setting.watermark() = read_controls(page);
    return setting;
}

// The arrows lead from the automatic size to the least one and back: what is between cannot be.
void step_size(NMUPDOWN& step) noexcept {
    const int least = static_cast<int>(kLeastSize);
    const int next = step.iPos + step.iDelta;
    if (next > 0 && next < least)
        step.iDelta = (step.iDelta > 0 ? least : 0) - step.iPos;
}

INT_PTR on_message(HWND page, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_NOTIFY && wparam == IDC_MARK_SIZE_SPIN) {
        if (auto& step = *reinterpret_cast<NMUPDOWN*>(lparam); step.hdr.code == UDN_DELTAPOS) {
            step_size(step);
            SetWindowLongPtrW(page, DWLP_MSGRESULT, FALSE);
        }
        return TRUE;
    }
    if (message != WM_DRAWITEM)
        return FALSE;
    const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(lparam);
    if (wparam == IDC_MARK_PREVIEW)
        draw_page(item, shown_setting(page));
    else if (wparam == IDC_MARK_SWATCH)
        draw_swatch(item);
    else
        return FALSE;
    return TRUE;
}

// --- What the user does ---

void change_colour(HWND page) {
    if (const auto chosen = choose_colour(page, helper().colour, helper().custom_colours)) {
        helper().colour = *chosen;
        redraw(page, IDC_MARK_SWATCH);
    }
}

// The end of a path tells files apart.
void show_path(HWND page, const std::wstring& path) {
    SetDlgItemTextW(page, IDC_MARK_FILE, path.c_str());
    SendDlgItemMessageW(page, IDC_MARK_FILE, EM_SETSEL, path.size(), static_cast<LPARAM>(path.size()));
    SendDlgItemMessageW(page, IDC_MARK_FILE, EM_SCROLLCARET, 0, 0);
}

void browse(HWND page) {
    std::wstring filter;
    for (const std::wstring& part :
         {dialog_text(IDS_MARK_BROWSE_PICTURES), std::wstring(L"*.bmp;*.gif;*.jpg;*.jpeg;*.png;*.tif;*.tiff"),
          dialog_text(IDS_MARK_BROWSE_ALL), std::wstring(L"*.*")})
        filter += part + L'\0';
    const auto chosen =
        choose_file(page, dialog_text(IDS_MARK_BROWSE_TITLE), filter, control_text(page, IDC_MARK_FILE));
    if (chosen)
        show_path(page, *chosen);
}

// The list's choice is in the edit control only after this notification.
void take_listed_font(HWND page) {
    const HWND list = GetDlgItem(page, IDC_MARK_FONT);
    const LRESULT row = SendMessageW(list, CB_GETCURSEL, 0, 0);
    const LRESULT length = SendMessageW(list, CB_GETLBTEXTLEN, static_cast<WPARAM>(row), 0);
    if (row < 0 || length < 0)
        return;
    std::wstring name(static_cast<size_t>(length) + 1, L'\0');
    SendMessageW(list, CB_GETLBTEXT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(name.data()));
    SetWindowTextW(list, name.c_str());
}

void command(HWND page, int control, int notification) {
    if (notification == BN_CLICKED) {
        if (control == IDC_MARK_COLOUR)
            change_colour(page);
        else if (control == IDC_MARK_BROWSE)
            browse(page);
        enable_controls(page);
    } else if (control == IDC_MARK_FONT && notification == CBN_SELCHANGE) {
        take_listed_font(page);
    } else if (notification != EN_CHANGE && notification != CBN_SELCHANGE && notification != CBN_EDITCHANGE) {
        return;
    }
    redraw(page, IDC_MARK_PREVIEW);
}

// --- The page ---

void fill_fonts(HWND page) {
    const HWND list = GetDlgItem(page, IDC_MARK_FONT);
    const RedrawOff redraw_off(list);
    for (const FontState& font : font_states())
        SendMessageW(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(font.name.c_str()));
    SendMessageW(list, CB_LIMITTEXT, LF_FACESIZE - 1, 0);
}

void show_WaterMark(HWND page, const Setting& setting) {
    const Section& section = *setting.watermark();
    helper().colour = shown_colour(section);
    const bool fits = section.PictureScale == Section::kNoPictureScale;
    set_checked(page, IDC_MARK_AUTO_SCALE, fits);
    load_number(page, IDC_MARK_SIZE, IDC_MARK_SIZE_SPIN, 0, kMostSize, static_cast<int>(section.FontSize));
    load_number(page, IDC_MARK_SCALE, IDC_MARK_SCALE_SPIN, 1, kMostScale,
                fits ? kFirstScale : static_cast<int>(section.PictureScale));
    kTransparency.load(page, section);
    load_controls(page, section, kTable);
    show_path(page, section.PictureFileName);
    enable_controls(page);
}

void dlg_init_WaterMark(HWND page) {
    TRACE("dlg_init_WaterMark");
    fill_fonts(page);
    show_WaterMark(page, edited_setting());
}

void dlg_setactive_WaterMark(HWND page) {
    TRACE("dlg_setactive_WaterMark");
    redraw(page, IDC_MARK_SWATCH);
    redraw(page, IDC_MARK_PREVIEW);
}

bool check_text(HWND page) {
    if (is_new(page, IDC_MARK_WORDS) && qk::without_blanks(control_text(page, IDC_MARK_WORDS)).empty() &&
        !refuse(page, IDC_MARK_WORDS, IDS_MARK_NO_WORDS))
        return false;
    if (is_new(page, IDC_MARK_FONT) && control_text(page, IDC_MARK_FONT).empty() &&
        !refuse(page, IDC_MARK_FONT, IDS_MARK_NO_FONT))
        return false;
    return font_size(page) || refuse(page, IDC_MARK_SIZE, IDS_MARK_BAD_SIZE);
}

// What is wrong with the picture's file; 0: nothing. One that the setting has named all along may be on
// another computer.
UINT file_fault(HWND page) {
    const std::wstring path = control_text(page, IDC_MARK_FILE);
    if (path.empty())
        return is_new(page, IDC_MARK_FILE) ? IDS_MARK_NO_FILE : 0;
    if (!is_touched(page, IDC_MARK_FILE))
        return 0;
    if (!qk::is_full_path(path) || !qk::is_file(path))
        return IDS_MARK_LOST_FILE;
    return is_no_picture(path) ? IDS_MARK_NO_PICTURE : 0;
}

bool check_picture(HWND page) {
    const UINT fault = file_fault(page);
    if (fault != 0 && !refuse(page, IDC_MARK_FILE, fault))
        return false;
    return picture_scale(page) || refuse(page, IDC_MARK_SCALE, IDS_MARK_BAD_SCALE);
}

bool dlg_killactive_WaterMark(HWND page) {
    TRACE("dlg_killactive_WaterMark");
    const bool text = is_checked(page, IDC_MARK_TEXT);
    const bool picture = is_checked(page, IDC_MARK_PICTURE);
    if ((text && !check_text(page)) || (picture && !check_picture(page)))
        return false;
    return !(text || picture) || transparency(page) ||
           refuse(page, IDC_MARK_TRANSPARENCY, IDS_MARK_BAD_TRANSPARENCY);
}

void dlg_apply_WaterMark(HWND page) {
    TRACE("dlg_apply_WaterMark");
    *edited_setting().watermark() = read_controls(page);
}

}  // namespace

const PageOperations kWaterMark = {.index = kWaterMarkPage,
                                   .template_id = IDD_WATERMARK,
                                   .title_id = IDS_WATERMARK_TAB,
                                   .init = &dlg_init_WaterMark,
                                   .show = &show_WaterMark,
                                   .command = &command,
                                   .set_active = &dlg_setactive_WaterMark,
                                   .check = &dlg_killactive_WaterMark,
                                   .apply = &dlg_apply_WaterMark,
                                   .other = &on_message};

}  // namespace pdf_settings
