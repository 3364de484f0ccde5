// Colour profiles as the PDF version page finds and lists them, and the page itself.

#include "UI_dll/PDFSettings/pages/page_pdf_version.h"
#include "common/icc_folder.h"
#include "common/icc_profile.h"
#include "support/sheet_driver.h"

namespace {

using namespace pdf_settings;

constexpr wchar_t kCoated[] = L"Japan Color 2001 Coated";

struct PDFVersionPage : EditSheet {
    PDFVersionPage() {
        profiles.add(L"coated.icm", "CMYK", "prtr", "Japan Color 2001 Coated");
        profiles.add(L"fogra39.icc", "CMYK", "prtr", "Coated FOGRA39");
        profiles.add(L"photo.icc", "RGB ", "prtr", "Photo printer");
        profiles.add(L"screen.icc", "RGB ", "mntr", "Screen");
        profiles.add(L"plates.icc", "CMYK", "mntr", "Plates");
        profiles.add(L"grey.icc", "GRAY", "prtr", "Grey printer");
        profiles.add(L"blank.icc", "CMYK", "prtr", "");
        profiles.add(L"notes.txt", "CMYK", "prtr", "Another extension");
        profiles.files.write(L"color\\broken.icc", "no profile");
        CreateDirectoryW(profiles.files.file(L"color\\folder.icc").c_str(), nullptr);
    }

    static LRESULT list(UINT message, WPARAM wparam = 0, LPARAM lparam = 0) {
        return SendMessageW(control(kPDFVersionPage, IDC_PV_PROFILE), message, wparam, lparam);
    }
    static std::wstring item(LRESULT position) {
        wchar_t text[260] = {};
        COMBOBOXEXITEMW found = {CBEIF_TEXT, position, text, 260};
        return list(CBEM_GETITEMW, 0, reinterpret_cast<LPARAM>(&found)) ? found.pszText : L"";
    }
    static std::wstring chosen() { return item(list(CB_GETCURSEL)); }
    static void choose_profile(const wchar_t* description) {
        const LRESULT position =
            list(CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(description));
        choose(kPDFVersionPage, IDC_PV_PROFILE, static_cast<int>(position));
    }
    static std::wstring profile_read() { return read_PDFVersion(page(kColorPage)).ICCFileName; }
    static std::wstring condition() { return text(kPDFVersionPage, IDC_PV_CONDITION); }

    ProfileFolder profiles;
};

TEST_F(PDFVersionPage, ListsTheProfilesThatFitTheVersionAndTellsOfIt) {
    using Names = std::vector<std::wstring>;  // in the folder's order, .icc files first
    const Names none, all = {L"Coated FOGRA39", L"Photo printer", L"Plates", L"Screen", kCoated},
                      cmyk = {L"Coated FOGRA39", kCoated},
                      printers = {L"Coated FOGRA39", L"Photo printer", kCoated};
    const std::tuple<uint32_t, UINT, const Names&> rows[] = {
        {0, IDS_PV_NOTE_LOW, none},        {2, IDS_PV_NOTE_PLAIN, none},
        {3, IDS_PV_NOTE_PLAIN, none},      {4, IDS_PV_NOTE_PLAIN, none},
        {5, IDS_PV_NOTE_ARCHIVE, all},     {6, IDS_PV_NOTE_PRESS_CMYK, cmyk},
        {7, IDS_PV_NOTE_PRESS_CMYK, cmyk}, {8, IDS_PV_NOTE_PRESS, printers},
        {9, IDS_PV_NOTE_PRESS, printers},  {10, IDS_PV_NOTE_PRESS, printers},
        {11, IDS_PV_NOTE_ARCHIVE, all},    {12, IDS_PV_NOTE_NEWEST, none}};
    show([&] {
        for (const auto& [version, note, wanted] : rows) {
            SCOPED_TRACE(version);
            const TraceCapture trace;
            choose_version(version);
            EXPECT_TRUE(trace.holds(L"dlg_callback_PDFVersion.WM_COMMAND.IDC_PV_VERSION"));
            EXPECT_EQ(text(kPDFVersionPage, IDC_PV_NOTE), dialog_text(note));
            Names listed;
            for (LRESULT i = 0; i < list(CB_GETCOUNT); ++i)
                listed.push_back(item(i));
            std::sort(listed.begin(), listed.end() - (listed.empty() ? 0 : 1));
            EXPECT_EQ(listed, wanted);
            EXPECT_EQ(enabled(kPDFVersionPage, IDC_PV_PROFILE), !listed.empty());
            EXPECT_EQ(enabled(kPDFVersionPage, IDC_PV_USE_TRIM), version >= 6 && version <= 10);
        }
    });
}

TEST_F(PDFVersionPage, ChoiceOfProfileSurvivesTheRefill) {
    setting().pdfVersion()->ICCFileName = L"photo.icc";
    show([] {
        EXPECT_EQ(profile_read(), L"photo.icc");  // kept while none is listed
        const std::tuple<uint32_t, std::wstring, std::wstring, std::wstring> rows[] = {
            // the version, the profile chosen, its file, the condition
            {8, L"Photo printer", L"photo.icc", L"Custom"},
            {4, L"", L"photo.icc", L"Custom"},
            {9, L"Photo printer", L"photo.icc", L"Custom"},
            {7, kCoated, L"coated.icm", L"JC200103"}};
        for (const auto& row : rows) {
            choose_version(std::get<0>(row));
            EXPECT_EQ(
                std::tuple(read_PDFVersion(page(kColorPage)).Version, chosen(), profile_read(), condition()),
                row);
        }
        choose_profile(L"Coated FOGRA39");
        EXPECT_EQ(condition(), L"FOGRA39");
        choose_version(5);
        EXPECT_EQ(chosen(), L"Coated FOGRA39");
    });
}

TEST_F(PDFVersionPage, ProfileThatIsNotListedStaysUntilAnotherIsChosen) {
    const auto path = profiles.files.write(L"own.icc", ProfileFolder::profile("CMYK", "prtr", "Our press"));
    setting().pdfVersion()->ICCFileName = path;
    setting().pdfVersion()->Version = 6;
    show([&] {
        EXPECT_EQ(chosen(), L"Our press");
        for (const uint32_t version : {5u, 12u}) {
            choose_version(version);
            EXPECT_EQ(profile_read(), path);
        }
    });
    setting().pdfVersion()->ICCFileName = L"gone.icc";
    setting().pdfVersion()->Version = 6;
    show([] {
        EXPECT_EQ(chosen(), kCoated);
        EXPECT_EQ(profile_read(), L"gone.icc");
        notify(kPDFVersionPage, IDC_PV_PROFILE, CBN_SELENDOK);
        EXPECT_EQ(profile_read(), L"coated.icm");
    });
}

TEST_F(PDFVersionPage, RefusesWhatTheJobWouldRefuse) {
    // The version, the profile, the condition, the boxes' right margins; the message (0: accepted), the
    // focus.
    using Text = const wchar_t*;
    const std::tuple<uint32_t, Text, Text, Text, Text, UINT, int> rows[] = {
        {6, kCoated, L"X", L"3", L"3", 0, 0},
        {6, nullptr, L"X", L"3", L"3", IDS_PV_NO_PROFILE, IDC_PV_PROFILE},
        {11, nullptr, L"X", L"3", L"3", IDS_PV_NO_PROFILE, IDC_PV_PROFILE},
        {6, kCoated, L"", L"3", L"3", IDS_PV_NO_CONDITION, IDC_PV_CONDITION},
        {5, kCoated, L"", L"3", L"9", 0, 0},
        {10, kCoated, L"X", L"3", L"3.5", IDS_PV_BAD_BOXES, IDC_PV_BLEED_RIGHT},
        {10, kCoated, L"X", L"", L"3", IDS_PV_BAD_MARGIN, IDC_PV_TRIM_RIGHT},
        {10, kCoated, L"X", L"4", L"3276.8", IDS_PV_BAD_MARGIN, IDC_PV_BLEED_RIGHT},
        {4, nullptr, L"", L"-", L"9", 0, 0}};
    show([&] {
        go_to(kPDFVersionPage);
        for (const auto& [version, profile, words, trim, bleed, message, focus] : rows) {
            SCOPED_TRACE(qk::format(L"%u %ls %ls", version, trim, bleed).c_str());
            choose_version(version);
            profile ? choose_profile(profile) : choose(kPDFVersionPage, IDC_PV_PROFILE, -1);
            type(kPDFVersionPage, IDC_PV_CONDITION, words);
            set_check(kPDFVersionPage, IDC_PV_USE_TRIM, true);
            set_check(kPDFVersionPage, IDC_PV_USE_BLEED, true);
            type(kPDFVersionPage, IDC_PV_TRIM_RIGHT, trim);
            type(kPDFVersionPage, IDC_PV_BLEED_RIGHT, bleed);
            expect_check(kPDFVersionPage, message, focus);
        }
    });
}

TEST_F(PDFVersionPage, CMYKProfilesAreToldFromOthers) {
    const std::wstring own = profiles.files.write(L"own.icc", ProfileFolder::profile("CMYK", "prtr", "Own"));
    const std::pair<std::wstring, bool> rows[] = {
        {L"coated.icm", true},  {own, true},          {L"C:\\gone\\coated.icm", true}, {L"photo.icc", false},
        {L"broken.icc", false}, {L"none.icc", false}, {L"folder.icc", false},          {L"", false}};
    for (const auto& [name, cmyk] : rows)
        EXPECT_EQ(icc::is_cmyk_profile(name), cmyk) << qk::to_utf8(name);
}

}  // namespace
