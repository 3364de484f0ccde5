// The host program as people run it: the real spooler, GDI, module, dialog library and renderer.
#include <commctrl.h>
#include <picojson.h>

#include "companions/host/sheet_watch.h"
#include "support/printer_turn.h"

namespace {

struct HostProcess : testing::Test {
    HostProcess() { EXPECT_EQ(run(L"install --notify-channels 8"), 0); }

    // Runs the program with --json; what it reports is in `report_`.
    int run(const std::wstring& words) {
        const std::wstring output = folder_.file(L"report.json");
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        qk::FileObj stream(CreateFileW(output.c_str(), GENERIC_WRITE,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &inherited,
                                       CREATE_ALWAYS, 0, nullptr));
        const int code = run_built(L"zr_print.exe", L"zr_print " + words + L" --json", stream.get());
        stream.reset();
        const std::string bytes = TempFolder::read(output);
        EXPECT_EQ(picojson::parse(report_, bytes), "");
        EXPECT_EQ(bytes.find("s3cret"), std::string::npos) << "a password is shown";
        return code;
    }

    int print(const std::wstring& more) {
        return run(L"print \"" + text_ + L"\" --output \"" + pdf_ + L"\" " + more);
    }

    [[nodiscard]] std::string text(const char* key) const { return report_.get(key).to_str(); }
    // The values of the report's keys, each with a blank behind it.
    [[nodiscard]] std::string told(const picojson::value& object, std::initializer_list<const char*> keys) {
        std::string all;
        for (const char* key : keys)
            all += object.get(key).to_str() + ' ';
        return all;
    }
    [[nodiscard]] std::string sent_events() const {
        std::string numbers;
        for (const picojson::value& event : report_.get("events").get<picojson::array>())
            if (event.get("sent").get<bool>())
                numbers += event.get("event").to_str() + ' ';
        return numbers;
    }

    const PrinterTurn turn_;
    const TempFolder folder_;
    std::wstring text_ = folder_.write(L"text.txt", "Some words.\n\fMore words.\n\fThe end.\n");
    const std::wstring name_ = std::wstring(83, L'\u65e5') + L".pdf";  // 253 bytes below Wine
    std::wstring pdf_ = folder_.file(name_);
    picojson::value report_;
};

TEST_F(HostProcess, TextBecomesAPdf) {
    folder_.write(name_, "older");
    ASSERT_EQ(print(L"--title \"R\u00e9sum\u00e9 1/2\""), 0) << text("fault");
    EXPECT_EQ(told(report_, {"outcome", "pages"}), "printed 3 ");
    EXPECT_EQ(sent_events(), "14 1 2 5 13 6 7 6 7 6 7 8 12 10 ");
    EXPECT_EQ(told(report_.get("start_record"), {"title"}), "R\xC3\xA9sum\xC3\xA9 1/2 ");
    EXPECT_EQ(told(report_.get("result_record"), {"error_code"}), "0 ");
    EXPECT_EQ(text("pdf"), qk::to_utf8(pdf_));
    const std::string bytes = TempFolder::read(pdf_);
    EXPECT_TRUE(bytes.starts_with("%PDF-")) << bytes.substr(0, 20);
    EXPECT_NE(bytes.find("/Count 3"), std::string::npos);
    EXPECT_EQ(folder_.count(), 3u) << "the text, the report and the PDF; the job's own folder is gone";
    text_ = folder_.write(L"empty.txt", "");
    ASSERT_EQ(print(L""), 0) << text("fault");
    EXPECT_EQ(text("pages"), "1");
    EXPECT_EQ(report_.get("notes").get<picojson::array>().size(), 1u);
    text_ = folder_.file(L"missing.txt");
    EXPECT_EQ(print(L""), 2);
    EXPECT_EQ(text("exit_code"), "2");
}

TEST_F(HostProcess, AbortedJobLeavesNothing) {
    pdf_ = folder_.file(L"out");
    EXPECT_EQ(print(L"--abort-after-page 2"), 0);
    EXPECT_EQ(told(report_, {"outcome", "printed_pages"}), "aborted 2 ");
    EXPECT_EQ(sent_events(), "14 1 2 5 13 6 7 6 7 9 10 ");
    EXPECT_TRUE(RemoveDirectoryW(pdf_.c_str())) << "no file is left in the folder";
}

TEST_F(HostProcess, RefusedJobSaysWhy) {
    Corvanta::Vantrix::PrintSettings::PrintSettings settings;
    settings.pdfVersion()->Version = 6;  // needs a colour profile
    settings.pdfVersion()->ICCFileName = L"there is no such profile";
    settings.security()->MasterPassword = L"s3cret";
    const std::wstring setting = folder_.file(L"setting.ps4");
    const std::wstring words = L"--trace 5 --setting \"" + setting + L"\"";
    ASSERT_TRUE(settings.Save(setting));
    EXPECT_EQ(print(words), 1);
    EXPECT_EQ(told(report_, {"outcome", "last_error"}), "refused 0 ");
    EXPECT_EQ(sent_events(), "14 1 2 5 10 ");
    EXPECT_NE(text("fault").find("log file"), std::string::npos) << text("fault");
    EXPECT_EQ(text("caption"), "Colour profile not found: there is no such profile");
    EXPECT_TRUE(text("message").starts_with("No PDF file")) << text("message");
    EXPECT_TRUE(report_.get("start_record").is<picojson::null>());
    EXPECT_FALSE(qk::is_file(pdf_));
    ASSERT_EQ(print(L""), 0) << "the choice ended with its job";
    settings.pdfVersion()->Version = 4;
    ASSERT_TRUE(settings.Save(setting) && DeleteFileW(pdf_.c_str()));
    EXPECT_EQ(print(words), 0) << text("fault");
    EXPECT_GT(report_.get("trace").get<picojson::array>().size(), 50u);
}

TEST_F(HostProcess, SheetGivesBackTheSettingOnOkOnly) {
    const std::wstring setting =
        folder_.write(L"custom.ps4",
                      "\xEF\xBB\xBF"
                      R"({"PSComment": [], "General": {"PaperType": 1, "PaperWidth": 123.4,
                       "PaperHeight": 234.5, "Scale": 77, "PaperOrientation": 1}})");
    const std::tuple<const wchar_t*, const char*, const char*> rows[] = {
        {L"--press ok", "OK", "77 1 256 1234 2345 custom "},  // portrait, whatever the setting says
        {L"--press cancel", "cancelled", "100 1 9 2100 2970 A4 "},
        {L"--press ok --no-permission", "OK", "100 1 9 2100 2970 A4 "},
        {L"--press ok --direct", "OK", "77 1 256 1234 2345 custom "},
        {L"--press cancel --direct", "cancelled", "100 1 9 2100 2970 A4 "}};
    for (const auto& [words, result, wanted] : rows) {
        ASSERT_EQ(run(L"properties " + (words + (L" --setting \"" + setting + L"\""))), 0);
        EXPECT_EQ(text("result_name"), result);
        EXPECT_EQ(told(report_.get("after"),
                       {"scale", "orientation", "paper", "paper_width", "paper_length", "form_name"}),
                  wanted);
        const picojson::value& sheet = report_.get("sheets").get(0);
        EXPECT_FALSE(report_.get("sheets").contains(1));
        EXPECT_NE(sheet.get("title").to_str().find("Corvanta Vantrix 8.0"), std::string::npos);
        EXPECT_TRUE(sheet.get("pages").contains(1) && !sheet.get("pages").contains(2));
    }
    EXPECT_EQ(run(L"properties --printer --press cancel"), 0);
    EXPECT_EQ(text("result_name"), "cancelled");
    EXPECT_EQ(run(L"properties --setting nosuch --press cancel"), 2);
    EXPECT_EQ(text("fault"), "there is no print setting nosuch");
}

TEST(SheetWatch, ButtonIsPressedInTheThreadsOwnSheetsOnly) {
    const INITCOMMONCONTROLSEX classes = {sizeof classes, ICC_TAB_CLASSES};
    ASSERT_TRUE(InitCommonControlsEx(&classes));
    const HWND sheet =
        CreateWindowExW(0, L"#32770", L"", WS_POPUP, 0, 0, 99, 99, nullptr, nullptr, nullptr, nullptr);
    ASSERT_TRUE(
        CreateWindowExW(0, WC_TABCONTROLW, L"", WS_CHILD, 0, 0, 9, 9, sheet, nullptr, nullptr, nullptr));
    const auto is_pressed = [sheet] {
        MSG message;
        return PeekMessageW(&message, sheet, PSM_PRESSBUTTON, PSM_PRESSBUTTON, PM_REMOVE) != FALSE;
    };
    const auto activate = [](void* window) -> DWORD {
        const host::SheetWatch watch(PSBTN_OK);
        SetActiveWindow(static_cast<HWND>(window));
        return 0;
    };
    const qk::HandleObj other(CreateThread(nullptr, 0, activate, sheet, 0, nullptr));
    WaitForSingleObject(other.get(), INFINITE);
    EXPECT_FALSE(is_pressed());
    activate(sheet);
    EXPECT_TRUE(is_pressed());
    DestroyWindow(sheet);
}

TEST_F(HostProcess, SettingsAreCheckedAndCompared) {
    const auto file = [&](const wchar_t* name, const std::string& scale) {
        return L" \"" +
               folder_.write(name,
                             "\xEF\xBB\xBF{\"PSComment\": [], \"General\": {\"Scale\": " + scale + "}}") +
               L"\"";
    };
    const std::wstring good = file(L"good.ps4", "100"), other = file(L"other.ps4", "50"),
                       bad = file(L"bad.ps4", "500");
    const std::tuple<std::wstring, int, const char*> rows[] = {
        {L"check" + good + other, 0, "\"faults\":[]"},
        {L"check" + good + bad, 1, "General.Scale: 500 is out of its range (10 to 400); 400 is used"},
        {L"check \"" + folder_.path() + L"\"", 1, "bad.ps4"},
        {L"check nowhere.ps4" + bad, 2, "there is no such file"},
        {L"diff" + good + good, 0, "\"changes\":[]"},
        {L"diff" + good + other, 1, "100 \u2192 50"},
        {L"diff nowhere.ps4" + good, 2, "cannot be loaded"}};
    for (const auto& [words, code, told] : rows) {
        EXPECT_EQ(run(words), code);
        EXPECT_NE(report_.serialize().find(told), std::string::npos) << report_.serialize();
    }
    EXPECT_EQ(run(L"status"), 0);
    EXPECT_TRUE(report_.get("good").get<bool>());
    EXPECT_EQ(run(L"install --from \"" + folder_.path() + L"\""), 3) << "an empty folder";
}

}  // namespace
