// Jobs that do not start: who is told what, and what is left behind.
#include <functional>

#include "job/job_fixture.h"
#include "common/qk/resource_dll.h"
#include "resources/ids.h"
#include "support/profile_folder.h"
#include "support/trace_capture.h"

namespace {

constexpr Left kTold = {DOCUMENTEVENT_FAILURE, ERROR_SUCCESS};
constexpr Left kNoLibrary = {DOCUMENTEVENT_FAILURE, ERROR_FILE_NOT_FOUND};

void WINAPI fixed_time(SYSTEMTIME* time) {
    *time = {2026, 11, 0, 15, 1, 46, 25, 0};
}

// The text as the log holds it: UTF-16 without a mark.
std::string log_bytes(std::wstring_view text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
}

}  // namespace

TEST_F(JobTest, EveryRefusalIsToldAndLogged) {
    const std::wstring good_profile =
        here.folder.write(L"press.icc", ProfileFolder::profile("CMYK", "prtr", "Coated FOGRA39"));
    struct Wanted {
        unsigned version = 0;
        std::wstring icc;
        Settings* settings = nullptr;
    };
    // A setting of a PDF version with a profile; "-" takes the one that is there.
    const auto use = [&](unsigned version, std::wstring icc, std::optional<std::wstring> condition,
                         float bleed_left = 0) {
        use_settings([&](Settings& settings) {
            settings.pdfVersion()->Version = static_cast<decltype(settings.pdfVersion()->Version)>(version);
            settings.pdfVersion()->ICCFileName = icc == L"-" ? good_profile : icc;
            settings.pdfVersion()->TrimBox = {3, 3, 3, 3};
            settings.pdfVersion()->BleedBox = {bleed_left, 3, 3, 3};
            if (condition)
                settings.addition()->Str[L"OutputCondition"] = *condition;
        });
    };
    const std::wstring empty_file = here.folder.write(L"empty.ps4", "");
    const std::wstring rubbish = here.folder.write(L"rubbish.ps4", "\xEF\xBB\xBF{\"PSComment\": [");
    const std::wstring older = here.folder.write(L"Settings\\legacy\\old.printSetting2",
                                                 std::string("\x09\x00\x02\x00 and more", 13));
    const std::wstring locked = here.folder.write(L"locked.ps4", "\xEF\xBB\xBF{\"PSComment\": []}");
    const qk::FileObj lock(CreateFileW(locked.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    struct {
        const char* label;
        std::function<void()> prepare;
        int code;  // 0: the job starts
        UINT caption;
        std::wstring caption_end;
    } const rows[] = {
        {"setting missing", [&] { name_setting(L"C:\\none\\a.ps4"); }, 100, IDS_NO_SETTING_FILE,
         L"C:\\none\\a.ps4"},
        {"bare name missing", [&] { name_setting(L"nowhere"); }, 100, IDS_NO_SETTING_FILE, L"nowhere"},
        {"setting a folder", [&] { name_setting(here.folder.path()); }, 100, IDS_NO_SETTING_FILE,
         here.folder.path()},
        {"setting empty", [&] { name_setting(empty_file); }, 101, IDS_BAD_SETTING_FILE, empty_file},
        {"setting rubbish", [&] { name_setting(rubbish); }, 101, IDS_BAD_SETTING_FILE, rubbish},
        {"setting of an older version", [&] { name_setting(older); }, 101, IDS_BAD_SETTING_FILE, older},
        {"setting of an older version by its name", [&] { name_setting(L"old"); }, 101, IDS_BAD_SETTING_FILE,
         L"old"},
        {"setting locked", [&] { name_setting(locked); }, 101, IDS_BAD_SETTING_FILE, locked},
        {"no profile named", [&] { use(5, L"", L"id"); }, 164, IDS_NO_COLOUR_PROFILE, L""},
        {"profile missing", [&] { use(11, L"gone.icc", L"id"); }, 164, IDS_NO_COLOUR_PROFILE, L"gone.icc"},
        {"profile a folder", [&] { use(6, here.folder.path(), L"id"); }, 164, IDS_NO_COLOUR_PROFILE,
         here.folder.path()},
        {"no condition", [&] { use(6, L"-", L""); }, 50, IDS_NO_OUTPUT_CONDITION, L""},
        {"no condition, last version", [&] { use(10, L"-", L""); }, 50, IDS_NO_OUTPUT_CONDITION, L""},
        {"boxes", [&] { use(8, L"-", L"id", 3.5f); }, 51, IDS_BAD_PAGE_BOXES, L""},
        {"condition of the profile, boxes", [&] { use(6, L"-", std::nullopt, 4); }, 51, IDS_BAD_PAGE_BOXES,
         L""},
        {"equal boxes", [&] { use(7, L"-", L"id", 3); }, 0, 0, L""},
        {"archive needs a profile only", [&] { use(5, L"-", L"", 9); }, 0, 0, L""},
        {"archive needs a profile only, 11", [&] { use(11, L"-", L"", 9); }, 0, 0, L""},
        {"no intent", [&] { use(4, L"gone.icc", L"", 9); }, 0, 0, L""},
        {"no intent, 12", [&] { use(12, L"", L"", 9); }, 0, 0, L""},
    };
    const ImportPatch clock("GetLocalTime", reinterpret_cast<void*>(&fixed_time));
    here.set_number(HKEY_LOCAL_MACHINE, L"\\Notification", L"Error", 1 | 4 | 8);
    here.write_ini("PrintID=7\r\nPDFFileName=C:\\o\\x.pdf");
    const std::wstring message = qk::load_string(IDS_JOB_FAILED);
    ASSERT_NE(message.find(L"PDF"), std::wstring::npos);
    const std::string log = log_bytes(
        L"[7]\r\nPDFFileName=C:\\o\\x.pdf\r\nTime=2026d11d15d01d46d25d\r\nErrorMessage=" + message + L"\r\n");
    size_t logged = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        row.prepare();
        Outbox::boxes.clear();
        const TraceCapture trace;
        EXPECT_EQ(start_job(L"x"), row.code ? kTold : kGood);
        EXPECT_EQ(has_state(), row.code == 0);
        end_job();
        ASSERT_EQ(Outbox::boxes.size(), row.code ? 1u : 0u);
        if (!row.code)
            continue;
        ++logged;
        EXPECT_TRUE(trace.holds(qk::format(L"refused: %d", row.code)));
        EXPECT_TRUE(trace.holds(L"mes:not yet implemented"));
        EXPECT_EQ(Outbox::boxes[0].text, message);
        EXPECT_EQ(Outbox::boxes[0].caption, qk::load_string(row.caption) + row.caption_end);
        EXPECT_EQ(Outbox::boxes[0].style, UINT{MB_ICONERROR | MB_SETFOREGROUND | MB_TOPMOST});
    }
    std::string expected;
    for (size_t i = 0; i < logged; ++i)
        expected += log;
    EXPECT_EQ(here.log(L"Error_7.log"), expected);
    EXPECT_EQ(script->file_calls, 5);
}

TEST_F(JobTest, WithoutTheDialogLibraryThereIsNoJob) {
    const std::wstring good = here.folder.path();
    const std::wstring without_exports = here.folder.file(L"bare");
    CreateDirectoryW(without_exports.c_str(), nullptr);
    CopyFileW(Installation::built(L"Language\\zrtk_res_en.dll").c_str(),
              (without_exports + L"\\Tessalo80.dll").c_str(), FALSE);
    const std::wstring broken = here.folder.file(L"broken");
    CreateDirectoryW(broken.c_str(), nullptr);
    here.folder.write(L"broken\\Tessalo80.dll", "MZ");
    struct {
        const char* label;
        std::wstring folder;
        Left left;
    } const rows[] = {
        {"with its backslash", good + L"\\", kGood},
        {"without its backslash", good, kGood},
        {"not set", L"", kNoLibrary},
        {"nowhere", L"Q:\\nowhere\\", kNoLibrary},
        {"a file", good + L"\\Tessalo80.dll", kNoLibrary},
        {"no such function", without_exports, kNoLibrary},
        {"no library at all", broken, kNoLibrary},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        here.machine.set_text(Installation::kKey, L"PdfDllPath", row.folder);
        if (row.left != kGood)
            library.reset();  // a library that is loaded already would be found by its name alone
        const TraceCapture trace;
        EXPECT_EQ(start_job(L"x"), row.left);
        EXPECT_EQ(has_state(), row.left == kGood);
        EXPECT_EQ(
            trace.count(L"failed LoadLibrary:Tessalo80.dll") + trace.count(L"failed GetProcAddress:GetFile2"),
            row.left == kGood ? 0u : 1u);
        end_job();
    }
    EXPECT_TRUE(Outbox::boxes.empty());
    load_dialog_library();
}
