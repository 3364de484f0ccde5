// Every field that the edit sheet edits: set on its page, saved, read by another instance, shown again.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <type_traits>
#include <variant>

#include "UI_dll/PDFSettings/pages/font_states.h"
#include "UI_dll/PDFSettings/pages/page_pdf_version_rules.h"
#include "UI_dll/PDFSettings/setting_list.h"
#include "print_settings/field_tables.h"
#include "resources/ids.h"
#include "support/profile_folder.h"
#include "support/sheet_driver.h"

namespace {

using namespace pdf_settings;
using namespace Corvanta::Vantrix::PrintSettings;

constexpr std::monostate kClick{};

// The section of a setting that a field belongs to.
template <class Section>
Section& section_of(Setting& setting) {
    if constexpr (std::is_same_v<Section, General_impl>)
        return *setting.general();
    else if constexpr (std::is_same_v<Section, Compression_impl>)
        return *setting.compression();
    else if constexpr (std::is_same_v<Section, ColorImage_impl>)
        return *setting.compression()->Color;
    else if constexpr (std::is_same_v<Section, GrayImage_impl>)
        return *setting.compression()->Gray;
    else if constexpr (std::is_same_v<Section, MonoImage_impl>)
        return *setting.compression()->Mono;
    else if constexpr (std::is_same_v<Section, Font_impl>)
        return *setting.font();
    else if constexpr (std::is_same_v<Section, Summary_impl>)
        return *setting.summary();
    else if constexpr (std::is_same_v<Section, OpenAction_impl>)
        return *setting.openAction();
    else if constexpr (std::is_same_v<Section, PDFVersion_impl>)
        return *setting.pdfVersion();
    else if constexpr (std::is_same_v<Section, Security_impl>)
        return *setting.security();
    else if constexpr (std::is_same_v<Section, Watermark_impl>)
        return *setting.watermark();
    else
        return *setting.color();
}

struct Step {
    PageIndex page;
    int control;
    std::variant<std::monostate, int, const wchar_t*> entry;  // a click, a list's position, typed text
    std::function<void(Setting&)> expect = [](Setting&) {};   // what the file says then
};

template <class Section, class Value>
std::function<void(Setting&)> sets(Value Section::*member, std::type_identity_t<Value> value) {
    return [=](Setting& setting) { section_of<Section>(setting).*member = value; };
}
template <class Section, class Value>
std::function<void(Setting&)> image(Value CompressImage_impl::*member, std::type_identity_t<Value> value) {
    return [=](Setting& setting) { section_of<Section>(setting).*member = value; };
}

int place_of(uint32_t version) {
    return static_cast<int>(std::ranges::find(kVersionOrder, version) - kVersionOrder.begin());
}

using General = General_impl;
using Image = CompressImage_impl;
using Mark = Watermark_impl;
using Open = OpenAction_impl;
using Version = PDFVersion_impl;

// A protected document with a text watermark.
const std::vector<Step> kProtected = {
    {kGeneralPage, IDC_NAME, L"Protected", [](Setting& setting) { setting->PSName = L"Protected"; }},
    {kGeneralPage, IDC_LINEARIZE, kClick, sets(&General::Linearize, false)},
    {kGeneralPage, IDC_OPEN_PDF, kClick, sets(&General::OpenPDF, 0)},
    {kGeneralPage, IDC_URL_LINK, kClick, sets(&General::URLLink, true)},
    {kGeneralPage, IDC_NO_BLANK_PAGE, kClick, sets(&General::NoOutputBlankPage, true)},
    {kGeneralPage, IDC_NUMBER, kClick, sets(&General::WhenSameName, 2)},
    {kGeneralPage, IDC_SAVE_STYLE, 1, sets(&General::SaveStyle, 1)},
    {kGeneralPage, IDC_OUTPUT_FOLDER, L"C:\\windows", sets(&General::OutputFolder, L"C:\\windows")},
    {kGeneralPage, IDC_PAPER_LIST, 6,
     [](Setting& setting) {
         setting.general()->PaperName = DMPAPER_LETTER;
         setting.general()->PaperWidth = 215.9f;
         setting.general()->PaperHeight = 279.4f;
         setting.addition()->Str[L"PaperName"] = L"Letter";
     }},
    {kGeneralPage, IDC_LANDSCAPE, kClick, sets(&General::PaperOrientation, 1)},
    {kGeneralPage, IDC_RESOLUTION, 9, sets(&General::PaperResolution, 3600)},
    {kGeneralPage, IDC_SCALE, L"70", sets(&General::Scale, 70)},
    {kPDFVersionPage, IDC_PV_VERSION, place_of(3), sets(&Version::Version, 3)},
    {kColorPage, IDC_COLOR_MODE_MONO, kClick, sets(&Color_impl::ColorMode, 2)},
    {kColorPage, IDC_GRAY_METHOD, 2, sets(&Color_impl::GrayDecreasingMethod, 2)},
    {kColorPage, IDC_MONO_FILTER, 4, sets(&Color_impl::MonoImageFilter, 4)},
    {kColorPage, IDC_IMAGE_THRESHOLD, L"20", sets(&Color_impl::MonoImageThreshold, 20)},
    {kColorPage, IDC_TEXT_THRESHOLD, L"255", sets(&Color_impl::MonoTextAndPassThreshold, 255)},
    {kColorPage, IDC_MONO_METHOD, 1, sets(&Color_impl::MonoDecreasingMethod, 1)},
    {kCompressPage, IDC_CMP_MONO + CMP_METHOD, 3, image<MonoImage_impl>(&Image::MonoCompressionMethod, 3)},
    {kCompressPage, IDC_CMP_MONO + CMP_SAMPLING, 1, image<MonoImage_impl>(&Image::DownSamplingMethod, 1)},
    {kCompressPage, IDC_CMP_MONO + CMP_THRESHOLD, L"303",
     image<MonoImage_impl>(&Image::ResolutionThreshold, 303)},
    {kCompressPage, IDC_CMP_MONO + CMP_TARGET, L"103", image<MonoImage_impl>(&Image::ResolutionTarget, 103)},
    {kFontPage, IDC_FONT_BASE_14, kClick, sets(&Font_impl::EmbedBase14, false)},
    {kFontPage, IDC_FONT_FAILED, 0, sets(&Font_impl::WhenFailedToEmbed, 0)},
    {kFontPage, IDC_FONT_ADD, kClick,  // the first of the list, selected before
     [](Setting& setting) { setting.font()->Fonts = {font_states().front().name}; }},
    {kFontPage, IDC_FONT_ONLY, kClick, sets(&Font_impl::EmbedFontStyle, 1)},
    {kSecuritiesPage, IDC_SEC_USE_OPEN, kClick},
    {kSecuritiesPage, IDC_SEC_OPEN_PASSWORD, L"open", sets(&Security_impl::UserPassword, L"open")},
    {kSecuritiesPage, IDC_SEC_USE_PERMISSIONS, kClick},
    {kSecuritiesPage, IDC_SEC_PASSWORD, L"m\u00e1sTer", sets(&Security_impl::MasterPassword, L"m\u00e1sTer")},
    {kSecuritiesPage, IDC_SEC_COPY, kClick, sets(&Security_impl::AllowCopyContent, true)},
    {kSecuritiesPage, IDC_SEC_EDIT, 5, sets(&Security_impl::EditPermission, 5)},
    {kSecuritiesPage, IDC_SEC_PRINT, 1, sets(&Security_impl::PrintPermission, 1)},
    {kWaterMarkPage, IDC_MARK_TEXT, kClick, sets(&Mark::Style, 1)},
    {kWaterMarkPage, IDC_MARK_WORDS, L"Draft \"1\"", sets(&Mark::Text, L"Draft \"1\"")},
    {kWaterMarkPage, IDC_MARK_FONT, L"Tahoma", sets(&Mark::FontName, L"Tahoma")},
    {kWaterMarkPage, IDC_MARK_SIZE, L"48", sets(&Mark::FontSize, 48)},
    {kWaterMarkPage, IDC_MARK_COLOUR, kClick, sets(&Mark::TextColor, RGB(1, 2, 3))},
    {kWaterMarkPage, IDC_MARK_DIAGONAL, kClick, sets(&Mark::DiagonalText, false)},
    {kWaterMarkPage, IDC_MARK_ORDER, 1, sets(&Mark::ZOrder, 1)},
    {kWaterMarkPage, IDC_MARK_VERTICAL, 0, sets(&Mark::VerticalPosition, 0)},
    {kWaterMarkPage, IDC_MARK_HORIZONTAL, 2, sets(&Mark::HorizontalPosition, 2)},
    {kWaterMarkPage, IDC_MARK_TRANSPARENCY, L"15", sets(&Mark::Transparency, 15)},
    {kWaterMarkPage, IDC_MARK_IN_PRINT, kClick, sets(&Mark::VisibleInPrint, false)},
    {kOpenActionPage, IDC_OPEN_LAYOUT, 3, sets(&Open::PageLayout, 3)},
    {kOpenActionPage, IDC_OPEN_BINDING, 2, sets(&Open::Binding, 2)},
    {kOpenActionPage, IDC_OPEN_ADJUST, 4, sets(&Open::PageAdjust, 4)},
    {kOpenActionPage, IDC_OPEN_MODE, 1, sets(&Open::PageMode, 1)},
    {kOpenActionPage, IDC_OPEN_PAGE, L"12", sets(&Open::StartPage, 12)},
    {kOpenActionPage, IDC_OPEN_FULL_SCREEN, kClick, sets(&Open::FullScreen, true)},
    {kOpenActionPage, IDC_OPEN_FIT_WINDOW, kClick, sets(&Open::FitToPage, true)},
    {kOpenActionPage, IDC_OPEN_HIDE_MENU, kClick, sets(&Open::HideMenu, true)},
    {kInfoPage, IDC_INFO_TITLE, L"Title", sets(&Summary_impl::Title, L"Title")},
    {kInfoPage, IDC_INFO_SUBJECT, L"Subject", sets(&Summary_impl::Subject, L"Subject")},
    {kInfoPage, IDC_INFO_AUTHOR, L"\u4f50\u85e4", sets(&Summary_impl::Author, L"\u4f50\u85e4")},
    {kInfoPage, IDC_INFO_KEYWORDS, L"one, two", sets(&Summary_impl::Keywords, L"one, two")},
    {kInfoPage, IDC_INFO_CREATOR, L"Creator", sets(&Summary_impl::Creator, L"Creator")},
    {kInfoPage, IDC_INFO_SETTING_NAME, kClick, sets(&Summary_impl::EmbedPSFileName, true)},
};

// A document for the press, on paper of its own size.
const std::vector<Step> kPress = {
    {kGeneralPage, IDC_NAME, L"Press", [](Setting& setting) { setting->PSName = L"Press"; }},
    {kGeneralPage, IDC_PAPER_CUSTOM, kClick, sets(&General::PaperType, 1)},
    {kGeneralPage, IDC_PAPER_WIDTH, L"300.5", sets(&General::PaperWidth, 300.5f)},
    {kGeneralPage, IDC_PAPER_HEIGHT, L"400", sets(&General::PaperHeight, 400)},
    {kPDFVersionPage, IDC_PV_VERSION, place_of(9), sets(&Version::Version, 9)},
    {kPDFVersionPage, IDC_PV_PROFILE, 0, sets(&Version::ICCFileName, L"press.icc")},
    {kPDFVersionPage, IDC_PV_CONDITION, L"Our press",
     [](Setting& setting) { setting.addition()->Str[L"OutputCondition"] = L"Our press"; }},
    {kPDFVersionPage, IDC_PV_CONTINUE, kClick, sets(&Version::WhenErroredPDFAX, 1)},
    {kPDFVersionPage, IDC_PV_USE_TRIM, kClick, sets(&Version::UseTrimBox, true)},
    {kPDFVersionPage, IDC_PV_TRIM_LEFT, L"12.345"},
    {kPDFVersionPage, IDC_PV_TRIM_TOP, L"6,5"},
    {kPDFVersionPage, IDC_PV_TRIM_RIGHT, L"7"},
    {kPDFVersionPage, IDC_PV_TRIM_BOTTOM, L" 8.25 ", sets(&Version::TrimBox, {12.345f, 6.5f, 7, 8.25f})},
    {kPDFVersionPage, IDC_PV_USE_BLEED, kClick, sets(&Version::UseBleedBox, true)},
    {kPDFVersionPage, IDC_PV_BLEED_LEFT, L"1"},
    {kPDFVersionPage, IDC_PV_BLEED_TOP, L"2.5"},
    {kPDFVersionPage, IDC_PV_BLEED_RIGHT, L"0.125"},
    {kPDFVersionPage, IDC_PV_BLEED_BOTTOM, L"4", sets(&Version::BleedBox, {1, 2.5f, 0.125f, 4})},
    {kColorPage, IDC_BLACK_TO_K, kClick, sets(&Color_impl::BlackToK100, true)},
    {kCompressPage, IDC_CMP_ASCII, kClick, sets(&Compression_impl::ASCIIFormat, true)},
    {kCompressPage, IDC_CMP_TEXT, kClick, sets(&Compression_impl::TextAndLineArt, true)},
    {kCompressPage, IDC_CMP_HIGH, kClick, sets(&Compression_impl::HighCompress, true)},
    {kCompressPage, IDC_CMP_COLOUR + CMP_METHOD, 1, image<ColorImage_impl>(&Image::CompressionMethod, 1)},
    {kCompressPage, IDC_CMP_COLOUR + CMP_QUALITY, L"11", image<ColorImage_impl>(&Image::JpegQuality, 11)},
    {kCompressPage, IDC_CMP_COLOUR + CMP_SAMPLING, 3, image<ColorImage_impl>(&Image::DownSamplingMethod, 3)},
    {kCompressPage, IDC_CMP_COLOUR + CMP_THRESHOLD, L"301",
     image<ColorImage_impl>(&Image::ResolutionThreshold, 301)},
    {kCompressPage, IDC_CMP_COLOUR + CMP_TARGET, L"101",
     image<ColorImage_impl>(&Image::ResolutionTarget, 101)},
    {kCompressPage, IDC_CMP_GREY + CMP_QUALITY, L"22", image<GrayImage_impl>(&Image::JpegQuality, 22)},
    {kCompressPage, IDC_CMP_GREY + CMP_METHOD, 4, image<GrayImage_impl>(&Image::CompressionMethod, 4)},
    {kCompressPage, IDC_CMP_GREY + CMP_SAMPLING, 1, image<GrayImage_impl>(&Image::DownSamplingMethod, 1)},
    {kCompressPage, IDC_CMP_GREY + CMP_THRESHOLD, L"302",
     image<GrayImage_impl>(&Image::ResolutionThreshold, 302)},
    {kCompressPage, IDC_CMP_GREY + CMP_TARGET, L"102", image<GrayImage_impl>(&Image::ResolutionTarget, 102)},
    {kWaterMarkPage, IDC_MARK_PICTURE, kClick, sets(&Mark::Style, 2)},
    {kWaterMarkPage, IDC_MARK_FILE, L"C:\\windows\\win.ini",
     sets(&Mark::PictureFileName, L"C:\\windows\\win.ini")},
    {kWaterMarkPage, IDC_MARK_AUTO_SCALE, kClick},
    {kWaterMarkPage, IDC_MARK_SCALE, L"6400", sets(&Mark::PictureScale, 6400)},
    {kWaterMarkPage, IDC_MARK_ON_SCREEN, kClick, sets(&Mark::VisibleInDisplay, false)},
    {kOpenActionPage, IDC_OPEN_AT_PAGE, kClick, sets(&Open::StartPage, Open::kNoStartPage)},
    {kOpenActionPage, IDC_OPEN_SHOW_TITLE, kClick, sets(&Open::ShowDocumentTitle, true)},
    {kOpenActionPage, IDC_OPEN_CENTER, kClick, sets(&Open::CenterWindow, true)},
    {kOpenActionPage, IDC_OPEN_HIDE_TOOL_BAR, kClick, sets(&Open::HideToolBar, true)},
    {kOpenActionPage, IDC_OPEN_HIDE_CONTROLS, kClick, sets(&Open::HideWindowControl, true)},
};

// The oldest version, which has permissions of its own.
const std::vector<Step> kOldest = {
    {kGeneralPage, IDC_NAME, L"Oldest", [](Setting& setting) { setting->PSName = L"Oldest"; }},
    {kPDFVersionPage, IDC_PV_VERSION, place_of(0), sets(&Version::Version, 0)},
    {kColorPage, IDC_COLOR_MODE_GRAY, kClick, sets(&Color_impl::ColorMode, 1)},
    {kSecuritiesPage, IDC_SEC_USE_PERMISSIONS, kClick},
    {kSecuritiesPage, IDC_SEC_PASSWORD, L"m", sets(&Security_impl::MasterPassword, L"m")},
    {kSecuritiesPage, IDC_SEC_NO_PRINT, kClick, sets(&Security_impl::PDF13_DisallowPrint, false)},
    {kSecuritiesPage, IDC_SEC_NO_MODIFY, kClick, sets(&Security_impl::PDF13_DisallowModify, false)},
    {kSecuritiesPage, IDC_SEC_NO_COPY, kClick, sets(&Security_impl::PDF13_DisallowCopy, false)},
    {kSecuritiesPage, IDC_SEC_NO_ANNOTATE, kClick, sets(&Security_impl::PDF13_DisallowAnnotate, true)},
};

// Copying includes reading aloud, so that only a setting without the one can forbid the other.
const std::vector<Step> kSilent = {
    {kGeneralPage, IDC_NAME, L"Silent", [](Setting& setting) { setting->PSName = L"Silent"; }},
    {kSecuritiesPage, IDC_SEC_USE_PERMISSIONS, kClick},
    {kSecuritiesPage, IDC_SEC_PASSWORD, L"m", sets(&Security_impl::MasterPassword, L"m")},
    {kSecuritiesPage, IDC_SEC_READER, kClick, sets(&Security_impl::AllowAccessFromScreenReader, false)},
};

class EveryField : public EditSheet {
protected:
    EveryField() { profiles.add(L"press.icc", "CMYK", "prtr", "Our press"); }

    static void set(const Step& step) {
        if (const auto* position = std::get_if<int>(&step.entry))
            choose(step.page, step.control, *position);
        else if (const auto* words = std::get_if<const wchar_t*>(&step.entry))
            type(step.page, step.control, *words);
        else
            click(step.page, step.control);
    }
    static void turn_to(PageIndex index) {
        EXPECT_TRUE(go_to(index)) << index;
        MSG message;  // the document page's to itself
        while (PeekMessageW(&message, page(kInfoPage), WM_APP + 44, WM_APP + 44, PM_REMOVE))
            DispatchMessageW(&message);
    }

    // The colour dialog, which the system has to show on this machine as on any other.
    static HWND colour_dialog() {
        const HWND dialog = GetLastActivePopup(sheet());
        constexpr int kRed = 706;
        return dialog != sheet() && GetDlgItem(dialog, kRed) ? dialog : nullptr;
    }
    static void choose_colour(const Step& step) {
        const Later later([] { return colour_dialog() != nullptr; },
                          [] {
                              const HWND dialog = colour_dialog();
                              for (int part = 0; part < 3; ++part)
                                  SetDlgItemInt(dialog, 706 + part, static_cast<UINT>(part + 1), FALSE);
                              SendMessageW(dialog, WM_COMMAND, IDOK, 0);
                          });
        set(step);
    }

    // Takes the steps on a new sheet and returns what the file must say then.
    Setting enter(const std::vector<Step>& steps) {
        setting() = {};
        setting()->PSName = L"Before";
        Setting wanted;
        wanted.addition()->Str[L"PaperName"] = L"A4";
        wanted.security()->Level = 1;  // what is always written
        show([&] {
            PageIndex in_front = kPageCount;
            for (const Step& step : steps) {
                if (in_front != step.page)
                    turn_to(in_front = step.page);
                if (step.control == IDC_FONT_ADD)
                    ListView_SetItemState(control(kFontPage, IDC_FONT_INSTALLED), 0, LVIS_SELECTED,
                                          LVIS_SELECTED);
                EXPECT_TRUE(enabled(step.page, step.control)) << step.control;
                step.control == IDC_MARK_COLOUR ? choose_colour(step) : set(step);
                step.expect(wanted);
            }
            turn_to(kInfoPage);
            press_ok();
        });
        EXPECT_FALSE(stayed_open());
        return wanted;
    }

    ProfileFolder profiles;
};

template <class Section>
void expect_each_set(const std::vector<Setting>& made) {
    Setting standard;
    for_each_field<Section>([&](const auto& field) {
        using Value = std::remove_cvref_t<decltype(section_of<Section>(standard).*field.member)>;
        if constexpr (!SectionHandle<Value>) {
            EXPECT_TRUE(std::ranges::any_of(made, [&](Setting setting) {
                return section_of<Section>(setting).*field.member !=
                       section_of<Section>(standard).*field.member;
            })) << field.key;
        }
    });
}

TEST_F(EveryField, SetOnItsPageIsInTheFileAndOnThePageAgain) {
    std::vector<Setting> made;
    for (const auto* steps : {&kProtected, &kPress, &kOldest, &kSilent}) {
        made.push_back(enter(*steps));
        const Setting& wanted = made.back();
        SCOPED_TRACE(qk::to_utf8(wanted->PSName));
        const std::wstring path = dialog_state().file.path;
        ASSERT_TRUE(LoadSettingFile(path));
        EXPECT_EQ(setting().Serialise(), wanted.Serialise());

        show(
            [&] {
                for (size_t index = 0; index < kPageCount; ++index)
                    turn_to(static_cast<PageIndex>(index));
                press_ok();
            },
            path);
        EXPECT_FALSE(stayed_open());
        EXPECT_EQ(setting().Serialise(),
                  wanted.Serialise());  // the pages show what the file says, and give it back
    }
    for (const Outbox::Box& box : Outbox::boxes)
        ADD_FAILURE() << qk::to_utf8(box.text);
    expect_each_set<General_impl>(made);
    expect_each_set<Compression_impl>(made);
    expect_each_set<ColorImage_impl>(made);
    expect_each_set<GrayImage_impl>(made);
    expect_each_set<MonoImage_impl>(made);
    expect_each_set<Font_impl>(made);
    expect_each_set<Summary_impl>(made);
    expect_each_set<OpenAction_impl>(made);
    expect_each_set<PDFVersion_impl>(made);
    expect_each_set<Security_impl>(made);
    expect_each_set<Watermark_impl>(made);
    expect_each_set<Color_impl>(made);
}

}  // namespace
