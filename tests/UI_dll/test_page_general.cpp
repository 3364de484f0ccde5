// The General page and its rules.

#include "UI_dll/PDFSettings/pages/page_general_rules.h"
#include "support/fake_tessalo.h"
#include "support/sheet_driver.h"

namespace {

using namespace pdf_settings;

constexpr PageIndex kPage = kGeneralPage;

TEST(GeneralRules, TextsAreReadAsTheNumbersTheyShow) {
    using Number = std::optional<double>;
    constexpr auto no = std::nullopt;
    // The text, the length, the scale (of which eight digits count), the resolution.
    const std::tuple<const wchar_t*, Number, Number, std::optional<int>> rows[] = {
        {L"", no, no, no},
        {L".", no, no, no},
        {L"210.5.1", no, no, 210},
        {L"1e2", no, no, 1},
        {L"10", no, 10, 10},
        {L"25.39", no, 25.39, 25},
        {L"400.1", 400.1, no, 400},
        {L"3276.7", 3276.7, no, 3276},
        {L"3276.71", no, no, 3276},
        {L"00000100000", no, 100, 100000},
        {L"99999999999", no, no, 1000000000}};
    for (const auto& [text, length, scale, resolution] : rows)
        EXPECT_EQ(std::tuple(find_paper_length(text), find_scale(text), find_resolution(text)),
                  std::tuple(length, scale, resolution))
            << qk::to_utf8(text);
    EXPECT_EQ(length_text(215.9f), L"215.90");
}

TEST(GeneralRules, PatternsGiveNames) {
    const job::NameValues values{.title = L"a:b",
                                 .time = {2026, 3, 0, 9, 7, 5, 4, 0},
                                 .user = L"me",
                                 .printer = L"P\\1",
                                 .counter = 12};
    const std::tuple<const wchar_t*, const wchar_t*, const wchar_t*, bool> rows[] = {
        {L"", L"a_b.pdf", L"", false},
        {L"{date} {time} {TITLE}.pdf", L"2026-03-09 07-05-04 a_b.pdf", L"", false},
        {L"{user} on {printer}, {counter}", L"me on P_1, 12.pdf", L"", true},
        {L"CON", L"_CON.pdf", L"", false},
        {L"x} {counter", L"x} {counter.pdf", L"{counter", false},
        {L"{pages}{}{title}", L"{pages}{}a_b.pdf", L"{pages}", false},
        {L"{user}/{title}", L"me_a_b.pdf", L"/", false}};
    for (const auto& [pattern, name, fault, counts] : rows) {
        EXPECT_EQ(name_now(pattern, values), name);
        EXPECT_EQ(job::find_pattern_fault(pattern), fault) << qk::to_utf8(pattern);
        EXPECT_EQ(job::counts(pattern), counts);
    }
}

struct GeneralPage : EditSheet {
    static inline std::wstring deleted;  // names of forms
    ImportPatch delete_form{"DeleteFormW", [](HANDLE, wchar_t* it) -> BOOL { return deleted += it, TRUE; }};
    static auto& general() { return *setting().general(); }
};

TEST_F(GeneralPage, StoredValuesAreShownAndKept) {
    general().SaveStyle = general().PaperType = 1;
    general().PaperWidth = 123.456f;  // more decimals than are shown
    general().PaperResolution = 150;
    const Setting before = setting();
    deleted.clear();
    show([] {
        EXPECT_EQ(deleted, L" ");
        EXPECT_EQ(text(kPage, 153) + L' ' + text(kPage, 144), L"150 123.46");
        EXPECT_TRUE(enabled(kPage, 7135) && enabled(kPage, 144) && enabled(kPage, 159));
        EXPECT_FALSE(enabled(kPage, 140));
        press_apply();
    });
    EXPECT_EQ(setting().general(), before.general());
    EXPECT_EQ(setting().addition()->Str[L"PaperName"], L"A4");
    EXPECT_EQ(setting().addition(), dialog_state().file.saved->addition());  // nothing to confirm
}

TEST_F(GeneralPage, ResolutionBelowTheLeastIsBlankAndFormsAreTraced) {
    general().PaperResolution = 50;
    show([] {
        EXPECT_EQ(text(kPage, 153), L"");
        type(kPage, 157, L"70.5");
        const TraceCapture trace;
        choose(kPage, 140, 6);
        EXPECT_TRUE(trace.holds(L"c=6, DM=1, w=215.90, h =279.40"));
        EXPECT_EQ(text(kPage, 146), L"279.40");
        press_apply();
    });
    EXPECT_EQ(general().Scale, 70);
}

TEST_F(GeneralPage, NoFormsKeepThePaperAndItsOwnSize) {
    here.printer.failing_forms_call = 2;
    show([] {
        click(kPage, 142);
        const CallHook<decltype(CallWindowProcW)> clipboard(
            "CallWindowProcW", [](auto original, auto before, HWND edit, UINT message, WPARAM w, LPARAM l) {
                const auto pasted = reinterpret_cast<LPARAM>(L"\u00A0300,25 MM \t");
                return message == WM_PASTE ? original(before, edit, EM_REPLACESEL, TRUE, pasted)
                                           : original(before, edit, message, w, l);
            });
        SendMessageW(control(kPage, 144), EM_SETSEL, 0, -1);
        SendMessageW(control(kPage, 144), WM_PASTE, 0, 0);
        press_apply();
    });
    EXPECT_EQ(std::tuple(general().PaperType, general().PaperName, general().PaperWidth),
              std::tuple(1, 9, 300.25));
}

TEST_F(GeneralPage, BadInputKeepsThePageAndShowsWhatWasThere) {
    setting()->PSName = L"Taken";
    ASSERT_TRUE(setting().Save(here.folder.file(L"Settings\\taken.ps4")));
    // The control, what is typed, the message, what is shown then, what is good.
    const std::tuple<int, const wchar_t*, UINT, const wchar_t*, const wchar_t*> rows[] = {
        {7122, L"\u3000", 1423, L"\u3000", L"Taken"},
        {7122, L"Taken", 1428, L"Taken", L"taken"},
        {146, L"25.3", 4392, L"297.00", nullptr},
        {7135, L".", 4703, L".", nullptr},  // it is there, below the program's folder
        {7135, L"C:\\none", 4703, L"C:\\none", L"C:\\windows"},
        {157, L"401", 4402, L"100", nullptr}};
    show([&] {
        click(kPage, 142);
        choose(kPage, 7133, 1);
        type(kPage, 7135, L"C:\\windows");
        for (const auto& [control, typed, message, left, good] : rows) {
            type(kPage, control, typed);
            expect_check(kPage, message, control);
            EXPECT_EQ(text(kPage, control), left);
            if (good)
                type(kPage, control, good);
        }
        for (const uint32_t version : {5u, 6u, 10u, 11u}) {  // links do not go with the press's standards
            choose_version(version);
            set_check(kPage, 7129, true);
            expect_check(kPage, version == 6 || version == 10 ? 4704 : 0, 7129);
        }
    });
    show([] { expect_check(kPage, 0); }, here.folder.file(L"Settings\\taken.ps4"));  // its own name
}

TEST_F(GeneralPage, BrowseAsksTheDialogLibrary) {
    show([&] {
        choose(kPage, 7133, 1);
        type(kPage, 7135, L"C:\\start");
        click(kPage, 136);  // no library: nothing happens
        const std::wstring path = here.folder.file(L"Tessalo80.dll");
        CopyFileW(Installation::built(L"fake_tessalo.dll").c_str(), path.c_str(), FALSE);
        const qk::DLL library(LoadLibraryW(path.c_str()));
        FakeTessaloScript& script = *qk::find_export<FakeTessaloScriptExport>(library.get(), "Script")();
        click(kPage, 136);
        EXPECT_EQ(text(kPage, 7135), L"C:\\start");
        wcscpy(script.folder, L"C:\\chosen");
        click(kPage, 136);
        EXPECT_EQ(text(kPage, 7135), L"C:\\chosen");
        EXPECT_STREQ(script.browsed_from, L"C:\\start");
        EXPECT_STREQ(script.misuse, "");
    });
}

}  // namespace
