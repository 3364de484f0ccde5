// Every field that the edit sheet edits: set on its page, saved, read by another instance, shown again.

#include <variant>

#include "UI_dll/PDFSettings/pages/font_states.h"
#include "UI_dll/PDFSettings/setting_list.h"
#include "print_settings/field_tables.h"
#include "support/sheet_driver.h"

namespace {

using namespace pdf_settings;
using namespace Corvanta::Vantrix::PrintSettings;

struct EveryField : EditSheet {
    EveryField() { profiles.add(L"press.icc", "CMYK", "prtr", "Our press"); }

    static void turn_to(PageIndex index) {
        EXPECT_TRUE(go_to(index)) << index;
        MSG message;  // the document page's to itself
        while (PeekMessageW(&message, page(kInfoPage), WM_APP + 44, WM_APP + 44, PM_REMOVE))
            DispatchMessageW(&message);
    }

    // What is done on a page: controls clicked, or followed by the entry that is chosen or the text typed.
    struct Entry {
        int position;
    };
    static void on(PageIndex page, std::initializer_list<std::variant<int, Entry, const wchar_t*>> steps) {
        turn_to(page);
        int control = 0;  // of which it is still to be told what is done with it
        const auto use = [&](const auto& how) {
            EXPECT_TRUE(!control || enabled(page, control)) << control;
            if (control)
                how(std::exchange(control, 0));
        };
        const auto click_it = [&](int id) { id == IDC_MARK_COLOUR ? choose_colour() : click(page, id); };
        for (const auto& step : steps) {
            if (const int* const next = std::get_if<int>(&step))
                use(click_it), control = *next;
            else if (const auto* const text = std::get_if<const wchar_t*>(&step))
                use([&](int id) { type(page, id, *text); });
            else
                use([&](int id) { choose(page, id, std::get<Entry>(step).position); });
        }
        use(click_it);
    }

    // The colour dialog, which the system has to show on this machine as on any other.
    static HWND colour_dialog() {
        const HWND dialog = GetLastActivePopup(sheet());
        return dialog != sheet() && GetDlgItem(dialog, kRed) ? dialog : nullptr;
    }
    static void choose_colour() {
        const auto act = [] {
            const HWND dialog = colour_dialog();
            for (int part = 0; part < 3; ++part)
                SetDlgItemInt(dialog, kRed + part, static_cast<UINT>(part + 1), FALSE);
            SendMessageW(dialog, WM_COMMAND, IDOK, 0);
        };
        const Later later([] { return colour_dialog() != nullptr; }, act);
        click(kWaterMarkPage, IDC_MARK_COLOUR);
    }

    // The fields of a setting that are as they are in a new one.
    template <class Section>
    static void find_standard(const Section& section, const Section& standard, const std::string& name,
                              std::set<std::string>& found) {
        for_each_field<Section>([&](const auto& field) {
            const auto& value = section.*field.member;
            const std::string key = name + "." + field.key;
            if constexpr (SectionHandle<std::remove_cvref_t<decltype(value)>>)
                find_standard(*value, *(standard.*field.member), key, found);
            else if (value == standard.*field.member)
                found.insert(key);
        });
    }

    static constexpr int kRed = 706;
    ProfileFolder profiles;
};

TEST_F(EveryField, SetOnItsPageIsInTheFileAndOnThePageAgain) {
    // What the file says then, beside the standard values, and what is done for it.
    const std::pair<const char*, void (*)()> kScenarios[] = {
        // A protected document with a text watermark.
        {R"({"PSName": "Protected",
"General": {"Linearize": false, "OpenPDF": 0, "URLLink": true, "NoOutputBlankPage": true, "WhenSameName": 2,
  "SaveStyle": 1, "OutputFolder": "C:\\windows", "PaperName": 1, "PaperWidth": 215.9, "PaperHeight": 279.4,
  "PaperOrientation": 1, "PaperResolution": 3600, "Scale": 70},
"Addition": {"Str": {"PaperName": "Letter", "FileName": "{date} {title}"}}, "PDFVersion": {"Version": 3},
"Color": {"ColorMode": 2, "GrayDecreasingMethod": 2, "MonoImageFilter": 4, "MonoImageThreshold": 20,
  "MonoTextAndPassThreshold": 255, "MonoDecreasingMethod": 1},
"Compression": {"Mono": {"MonoCompressionMethod": 3, "DownSamplingMethod": 1, "ResolutionThreshold": 303,
  "ResolutionTarget": 103}},
"Font": {"EmbedBase14": false, "WhenFailedToEmbed": 0, "EmbedFontStyle": 1},
"Security": {"UserPassword": "open", "MasterPassword": "m\u00e1sTer", "AllowCopyContent": true,
  "EditPermission": 5, "PrintPermission": 1},
"Watermark": {"Style": 1, "Text": "Draft \"1\"", "FontName": "Tahoma", "FontSize": 48, "TextColor": 197121,
  "DiagonalText": false, "ZOrder": 1, "VerticalPosition": 0, "HorizontalPosition": 2, "Transparency": 15,
  "VisibleInPrint": false},
"OpenAction": {"PageLayout": 3, "Binding": 2, "PageAdjust": 4, "PageMode": 1, "StartPage": 12,
  "FullScreen": true, "FitToPage": true, "HideMenu": true},
"Summary": {"Title": "Title", "Subject": "Subject", "Author": "\u4f50\u85e4", "Keywords": "one, two",
  "Creator": "Creator", "EmbedPSFileName": true}})",
         [] {
             on(kGeneralPage,
                {IDC_LINEARIZE,  IDC_OPEN_PDF,   IDC_URL_LINK,      IDC_NO_BLANK_PAGE, IDC_NUMBER,
                 IDC_LANDSCAPE,  IDC_SAVE_STYLE, Entry{1},          IDC_PAPER_LIST,    Entry{6},
                 IDC_RESOLUTION, Entry{9},       IDC_NAME,          L"Protected",      IDC_OUTPUT_FOLDER,
                 L"C:\\windows", IDC_FILE_NAME,  L"{date} {title}", IDC_SCALE,         L"70"});
             choose_version(3);
             on(kColorPage,
                {IDC_COLOR_MODE_MONO, IDC_GRAY_METHOD, Entry{2}, IDC_MONO_FILTER, Entry{4},
                 IDC_IMAGE_THRESHOLD, L"20", IDC_TEXT_THRESHOLD, L"255", IDC_MONO_METHOD, Entry{1}});
             on(kCompressPage, {IDC_CMP_MONO + CMP_METHOD, Entry{3}, IDC_CMP_MONO + CMP_SAMPLING, Entry{1},
                                IDC_CMP_MONO + CMP_THRESHOLD, L"303", IDC_CMP_MONO + CMP_TARGET, L"103"});
             turn_to(kFontPage);
             ListView_SetItemState(control(kFontPage, IDC_FONT_INSTALLED), 0, LVIS_SELECTED, LVIS_SELECTED);
             on(kFontPage, {IDC_FONT_BASE_14, IDC_FONT_ADD, IDC_FONT_ONLY, IDC_FONT_FAILED, Entry{0}});
             on(kSecuritiesPage,
                {IDC_SEC_USE_OPEN, IDC_SEC_USE_PERMISSIONS, IDC_SEC_COPY, IDC_SEC_EDIT, Entry{5},
                 IDC_SEC_PRINT, Entry{1}, IDC_SEC_OPEN_PASSWORD, L"open", IDC_SEC_PASSWORD, L"m\u00e1sTer"});
             on(kWaterMarkPage, {IDC_MARK_TEXT, IDC_MARK_COLOUR, IDC_MARK_DIAGONAL, IDC_MARK_IN_PRINT,
                                 IDC_MARK_ORDER, Entry{1}, IDC_MARK_VERTICAL, Entry{0}, IDC_MARK_HORIZONTAL,
                                 Entry{2}, IDC_MARK_WORDS, L"Draft \"1\"", IDC_MARK_FONT, L"Tahoma",
                                 IDC_MARK_SIZE, L"48", IDC_MARK_TRANSPARENCY, L"15"});
             on(kOpenActionPage, {IDC_OPEN_FULL_SCREEN, IDC_OPEN_FIT_WINDOW, IDC_OPEN_HIDE_MENU,
                                  IDC_OPEN_LAYOUT, Entry{3}, IDC_OPEN_BINDING, Entry{2}, IDC_OPEN_ADJUST,
                                  Entry{4}, IDC_OPEN_MODE, Entry{1}, IDC_OPEN_PAGE, L"12"});
             on(kInfoPage, {IDC_INFO_SETTING_NAME, IDC_INFO_TITLE, L"Title", IDC_INFO_SUBJECT, L"Subject",
                            IDC_INFO_AUTHOR, L"\u4f50\u85e4", IDC_INFO_KEYWORDS, L"one, two",
                            IDC_INFO_CREATOR, L"Creator"});
         }},
        // A document for the press, on paper of its own size.
        {R"({"PSName": "Press", "General": {"PaperType": 1, "PaperWidth": 300.5, "PaperHeight": 400},
"Addition": {"Str": {"OutputCondition": "Our very press"}},
"PDFVersion": {"Version": 9, "ICCFileName": "press.icc", "WhenErroredPDFAX": 1, "UseTrimBox": true,
  "TrimBox": {"left": 12.345, "top": 6.5, "right": 7, "bottom": 8.25}, "UseBleedBox": true,
  "BleedBox": {"left": 1, "top": 2.5, "right": 0.125, "bottom": 4}},
"Color": {"BlackToK100": true},
"Compression": {"ASCIIFormat": true, "TextAndLineArt": true, "HighCompress": true,
  "Color": {"CompressionMethod": 1, "JpegQuality": 11, "DownSamplingMethod": 3, "ResolutionThreshold": 301,
    "ResolutionTarget": 101},
  "Gray": {"CompressionMethod": 4, "JpegQuality": 22, "DownSamplingMethod": 1, "ResolutionThreshold": 302,
    "ResolutionTarget": 102}},
"Watermark": {"Style": 2, "PictureFileName": "\\\\?\\C:\\windows\\win.ini", "PictureScale": 6400,
  "VisibleInDisplay": false},
"OpenAction": {"StartPage": 4294967295, "ShowDocumentTitle": true, "CenterWindow": true, "HideToolBar": true,
  "HideWindowControl": true}})",
         [] {
             on(kGeneralPage,
                {IDC_PAPER_CUSTOM, IDC_NAME, L"Press", IDC_PAPER_WIDTH, L"300.5", IDC_PAPER_HEIGHT, L"400"});
             choose_version(9);
             on(kPDFVersionPage,
                {IDC_PV_CONTINUE, IDC_PV_USE_TRIM, IDC_PV_USE_BLEED, IDC_PV_PROFILE, Entry{0},
                 IDC_PV_CONDITION, L"Our very press", IDC_PV_TRIM_LEFT, L"12.345", IDC_PV_TRIM_TOP, L"6,5"});
             on(kPDFVersionPage,
                {IDC_PV_TRIM_RIGHT, L"7", IDC_PV_TRIM_BOTTOM, L" 8.25 mm", IDC_PV_BLEED_LEFT, L"1",
                 IDC_PV_BLEED_TOP, L"2.5", IDC_PV_BLEED_RIGHT, L"0.125", IDC_PV_BLEED_BOTTOM, L"4"});
             on(kColorPage, {IDC_BLACK_TO_K});
             for (const auto& [kind, method, sampling, quality, threshold, target] :
                  {std::tuple{IDC_CMP_COLOUR, 1, 3, L"11", L"301", L"101"},
                   {IDC_CMP_GREY, 4, 1, L"22", L"302", L"102"}})
                 on(kCompressPage,
                    {kind + CMP_SAMPLING, Entry{sampling}, kind + CMP_QUALITY, quality, kind + CMP_THRESHOLD,
                     threshold, kind + CMP_TARGET, target, kind + CMP_METHOD, Entry{method}});
             on(kCompressPage, {IDC_CMP_ASCII, IDC_CMP_TEXT, IDC_CMP_HIGH});
             on(kWaterMarkPage, {IDC_MARK_PICTURE, IDC_MARK_AUTO_SCALE, IDC_MARK_ON_SCREEN, IDC_MARK_FILE,
                                 L"\\\\?\\C:\\windows\\win.ini", IDC_MARK_SCALE, L"6400"});
             on(kOpenActionPage, {IDC_OPEN_AT_PAGE, IDC_OPEN_SHOW_TITLE, IDC_OPEN_CENTER,
                                  IDC_OPEN_HIDE_TOOL_BAR, IDC_OPEN_HIDE_CONTROLS});
         }},
        // The oldest version, which has permissions of its own.
        {R"({"PSName": "Oldest", "PDFVersion": {"Version": 0}, "Color": {"ColorMode": 1},
"Security": {"MasterPassword": "m", "PDF13_DisallowPrint": false, "PDF13_DisallowModify": false,
  "PDF13_DisallowCopy": false, "PDF13_DisallowAnnotate": true}})",
         [] {
             on(kGeneralPage, {IDC_NAME, L"Oldest"});
             choose_version(0);
             on(kColorPage, {IDC_COLOR_MODE_GRAY});
             on(kSecuritiesPage, {IDC_SEC_USE_PERMISSIONS, IDC_SEC_NO_PRINT, IDC_SEC_NO_MODIFY,
                                  IDC_SEC_NO_COPY, IDC_SEC_NO_ANNOTATE, IDC_SEC_PASSWORD, L"m"});
         }},
        // Copying includes reading aloud, so that only a setting without the one can forbid the other.
        {R"({"PSName": "Silent", "Security": {"MasterPassword": "m", "AllowAccessFromScreenReader": false}})",
         [] {
             on(kGeneralPage, {IDC_NAME, L"Silent"});
             on(kSecuritiesPage, {IDC_SEC_USE_PERMISSIONS, IDC_SEC_READER, IDC_SEC_PASSWORD, L"m"});
         }}};
    std::set<std::string> never_set;
    for (const auto& [file, act] : kScenarios) {
        const bool is_first = file == kScenarios[0].first;
        setting() = {};
        setting()->PSName = L"Before";
        show([&play = act] {
            play();
            turn_to(kInfoPage);
            press_ok();
        });
        EXPECT_FALSE(stayed_open());
        Setting wanted;
        wanted.addition()->Str[L"PaperName"] = L"A4";
        wanted.security()->Level = 1;  // what is always written
        ASSERT_EQ(wanted.LoadPS4(file, true), ps::kLoaded);
        if (is_first)
            wanted.font()->Fonts = {font_states().front().name};
        SCOPED_TRACE(qk::to_utf8(wanted->PSName));
        const std::wstring path = dialog_state().file.path;
        ASSERT_TRUE(LoadSettingFile(path));
        EXPECT_EQ(setting().Serialise(), wanted.Serialise());
        const auto look = [&] {
            for (size_t index = 0; index < kPageCount; ++index)
                turn_to(static_cast<PageIndex>(index));
            press_ok();
        };
        show(look, path);
        EXPECT_FALSE(stayed_open());
        EXPECT_EQ(setting().Serialise(), wanted.Serialise()) << "what the pages show is given back";

        std::set<std::string> standard, both;
        find_standard(*wanted, *Setting(), "", standard);
        std::ranges::set_intersection(standard, never_set, std::inserter(both, both.end()));
        never_set = is_first ? standard : both;
    }
    for (const Outbox::Box& box : Outbox::boxes)
        ADD_FAILURE() << qk::to_utf8(box.text);
    std::erase_if(never_set, [](const std::string& key) {
        return key.starts_with(".Notification.") || key.starts_with(".Addition.");
    });
    EXPECT_EQ(never_set, (std::set<std::string>{".PSComment", ".PSVersion"}));
}

}  // namespace
