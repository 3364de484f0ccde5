// From STARTDOCPRE to the published records.
#include <cstdint>

#include "common/driver_util.h"
#include "common/teskel_custom_2021.h"
#include "companions/wine_layer.h"
#include "job/job_fixture.h"
#include "support/guarded_buffer.h"
#include "support/handle_count.h"
#include "support/trace_capture.h"

namespace {

void put_bytes(std::string& record, size_t offset, const void* bytes, size_t size) {
    record.replace(offset, size, static_cast<const char*>(bytes), size);
}
void put_text(std::string& record, size_t offset, std::wstring_view text) {
    put_bytes(record, offset, text.data(), text.size() * sizeof(wchar_t));
}
void put_number(std::string& record, size_t offset, uint64_t number) {
    put_bytes(record, offset, &number, 8);
}

using Record = dialog_library::WorkingRecord;

}  // namespace

TEST_F(JobTest, StartRecordIsRightToTheByte) {
    const std::wstring long_name(300, L'n');
    const std::wstring pair_at_the_cut = std::wstring(258, L'p') + L"\U0001F5A8";
    struct {
        const char* label;
        std::wstring document, title;
        std::wstring path, third;
        How how;
        uint8_t hand_over;
        int result;
        bool resumes;
    } const rows[] = {
        {"assigned", L"Report", L"Report", L"C:\\out\\Report.pdf", L"third text", How::kAssigned, 0, 0,
         false},
        {"by the library's address", L"Microsoft Word - a", L"a", L"C:\\out\\a longer path.pdf",
         L"a longer text", How::kByOwnAddress, 0, 0, false},
        {"in the field itself", L"Visio-", L"", L"a.pdf", L"1234567", How::kInTheField, 0, 0, false},
        {"title as long as a field", L"1234567", L"1234567", L"b.pdf", L"", How::kInTheField, 0, 0, false},
        {"title cut", long_name, long_name.substr(0, 259), L"C:\\c.pdf", L"", How::kAssigned, 0, 0, false},
        {"pair at the cut", pair_at_the_cut, pair_at_the_cut.substr(0, 259), L"C:\\d.pdf", L"",
         How::kAssigned, 0, 0, false},
        {"path and third cut", L"x", L"x", std::wstring(400, L'p'), std::wstring(1000, L't'), How::kAssigned,
         0, 0, false},
        {"other result", L"x", L"x", L"C:\\e.pdf", L"3", How::kAssigned, 0, 1, true},
        {"flag", L"x", L"x", L"", L"", How::kAssigned, 200, 0, true},
        {"flag and negative result", L"x", L"x", L"C:\\f.pdf", L"", How::kAssigned, 1, -1, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        path = row.path;
        third = row.third;
        how = row.how;
        result = row.result;
        meddle = [&](Record& record) {
            record.hand_over = row.hand_over;
            record.first_value = 0x1122334455667788;
            record.second_value = 2;
            record.third_value = UINT64_MAX;
        };
        const TraceCapture trace;
        ASSERT_EQ(start_job(row.document.c_str()), kGood);
        std::string expected(1608, '\0');
        expected[0] = row.resumes ? 1 : 0;
        put_text(expected, 2, row.title);
        put_text(expected, 522, std::wstring_view(row.path).substr(0, 259));
        put_text(expected, 1042, std::wstring_view(row.third).substr(0, 259));
        put_number(expected, 1576, 0x1122334455667788);
        put_number(expected, 1584, 2);
        put_number(expected, 1600, UINT64_MAX);
        EXPECT_EQ(start_record_bytes(), expected);

        const ResultRecord record(block_name(kResultBlockName));
        EXPECT_EQ(static_cast<bool>(record), !row.resumes);
        if (record) {
            EXPECT_EQ(std::string(reinterpret_cast<const char*>(&*record), 104), std::string(104, '\0'));
        }
        EXPECT_EQ(trace.holds(L"resume"), row.resumes);
        EXPECT_EQ(trace.holds(L"C.1"), !row.resumes);
        EXPECT_EQ(TraceCapture::records().back().find(L"  <<sd!") != std::wstring::npos, !row.resumes);
        EXPECT_TRUE(trace.holds(row.hand_over ? L"ret=555" : qk::format(L"ret=%d", row.result)));
        EXPECT_EQ(end_job(), kGood);
    }
    EXPECT_FALSE(has_state());
}

TEST_F(JobTest, DocumentNameIsReadWhereverTheCallerPutIt) {
    std::wstring title;
    meddle = [&](Record& record) { title = record.title.find_text().value_or(L"<unreadable>"); };
    DOCINFOW info = {.cbSize = sizeof info, .lpszDocName = L"Letter"};
    DOCINFOW* pointer = &info;
    DOCINFOW nameless = {.cbSize = sizeof nameless};
    DOCINFOW bad = {.cbSize = sizeof bad, .lpszDocName = reinterpret_cast<const wchar_t*>(16)};
    const GuardedBuffer unterminated(6, L"abc");
    DOCINFOW open_end = {.cbSize = sizeof open_end, .lpszDocName = unterminated.as<wchar_t>()};
    const GuardedBuffer short_info(12, &info);
    struct {
        const char* label;
        void* in;
        ULONG size;
        const wchar_t* title;
    } const rows[] = {
        {"structure", &info, sizeof info, L"Letter"},
        {"pointer to it", &pointer, sizeof pointer, L"Letter"},
        {"size left out", &info, 0, L"Letter"},
        {"none", nullptr, 0, L"no_name"},
        {"no name", &nameless, sizeof nameless, L"no_name"},
        {"name nowhere", &bad, sizeof bad, L"no_name"},
        {"unterminated name", &open_end, sizeof open_end, L"abc"},
        {"structure cut off by the page", short_info.as<>(), 40, L"no_name"},
        {"address nowhere", reinterpret_cast<void*>(24), 40, L"no_name"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        EXPECT_EQ(send_event(DOCUMENTEVENT_STARTDOCPRE, row.in, row.size), kGood);
        EXPECT_EQ(title, row.title);
        end_job();
    }
}

TEST_F(JobTest, SettingReachesTheDialog) {
    std::wstring seen;
    meddle = [&](Record& record) {
        seen = static_cast<const Settings*>(record.settings)->summary().operator->()->Title;
    };
    const std::wstring file = use_settings([](Settings& settings) { settings.summary()->Title = L"mine"; });
    EXPECT_EQ(start_job(L"x"), kGood);
    EXPECT_EQ(seen, L"mine");

    CopyFileW(file.c_str(), here.folder.file(L"Settings\\bare.ps4").c_str(), FALSE);
    for (const wchar_t* name : {L"bare.ps4", L"bare"}) {
        name_setting(name);
        seen.clear();
        EXPECT_EQ(start_job(L"x"), kGood);
        EXPECT_EQ(seen, L"mine") << qk::to_utf8(name);
    }
    for (const bool forces : {false, true}) {
        if (forces)
            here.folder.write(L"administrator.ps4a", "\xEF\xBB\xBF{\"Summary\": {\"Title\": \"forced\"}}");
        for (const int failed : {0, 1}) {  // no name, and a library that cannot say: the defaults
            name_setting(failed ? L"bare.ps4" : L"");
            script->setting_result = failed;
            EXPECT_EQ(start_job(L"x"), kGood);
            EXPECT_EQ(seen, forces ? L"forced" : L"");
        }
    }
    here.folder.write(L"administrator.ps4a", "rubbish");
    EXPECT_EQ(start_job(L"x"), (Left{DOCUMENTEVENT_FAILURE, ERROR_SUCCESS}));
    ASSERT_FALSE(Outbox::boxes.empty());
    EXPECT_NE(Outbox::boxes[0].caption.find(L"administrator.ps4a"), std::wstring::npos);
    end_job();
    EXPECT_FALSE(has_state());
}

TEST_F(JobTest, OverrideFileSetsTheFolderWhileItsVersionCounts) {
    std::wstring folder;
    meddle = [&](Record& record) {
        folder = static_cast<const Settings*>(record.settings)->general()->OutputFolder;
    };
    use_settings([](Settings& settings) { settings.general()->OutputFolder = L"C:\\own\\"; });
    struct {
        const char *version, *lines;
        const wchar_t* folder;
    } const rows[] = {
        {"2.0", "PDFFileName=C:\\a\\b\\c.pdf", L"C:\\a\\b\\"},
        {"3.0", "PDFFileName=C:\\c.pdf", L"C:\\"},
        {"2.99", "PDFFileName=c.pdf", L"C:\\own\\"},
        {"2.5", "PDFFileName=", L"C:\\own\\"},
        {"2.5", "PrintID=abc\r\nOrient=xyz\r\nMessageID=\r\nPDFFileName=D:\\q\\", L"D:\\q\\"},
        {"3.01", "PDFFileName=C:\\a\\c.pdf", L"C:\\own\\"},
        {"nan", "PDFFileName=C:\\a\\c.pdf", L"C:\\own\\"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.version) + " " + row.lines);
        here.write_ini(row.lines, row.version);
        EXPECT_EQ(start_job(L"x"), kGood);
        EXPECT_EQ(folder, row.folder);
        EXPECT_EQ(end_job(), kGood);
    }
}

TEST_F(JobTest, ChosenFileIsCheckedUnlessTheJobModeForbids) {
    here.folder.write(L"out\\report.pdf", "old");
    constexpr uint32_t kValid = ZRTK_COMMON_MMF::kJobModeValid;
    constexpr Left kCancelled = {DOCUMENTEVENT_FAILURE, 2153};
    struct {
        const char* label;
        bool has_block;
        uint32_t flags, mode;
        Left when_locked, when_empty;
    } const rows[] = {
        {"no block", false, 0, 0, kCancelled, kCancelled},
        {"mode 0", true, kValid, 0, kCancelled, kCancelled},
        {"mode 1", true, kValid, 1, kCancelled, kCancelled},
        {"mode 2", true, kValid | 3, 2, kGood, kGood},
        {"mode 3", true, kValid, 3, kGood, kGood},
        {"mode 4", true, kValid, 4, kCancelled, kCancelled},
        {"mode 2, not valid", true, ~kValid, 2, kCancelled, kCancelled},
    };
    const std::wstring chosen = path;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        wchar_t user[100] = {};
        DWORD units = 100;
        GetUserNameW(user, &units);
        std::optional<OtherSide<ZRTK_COMMON_MMF>> block;
        if (row.has_block) {
            block.emplace(qk::format(kCommonBlockName, here.printer.name.c_str(), user), DWORD{4120});
            (*block)->flags = row.flags;
            (*block)->job_mode = row.mode;
        }
        path = chosen;
        EXPECT_EQ(start_job(L"free"), kGood);
        end_job();
        {
            const TraceCapture trace;
            const qk::FileObj lock(CreateFileW(chosen.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                               OPEN_EXISTING, 0, nullptr));
            EXPECT_EQ(start_job(L"locked"), row.when_locked);
            EXPECT_EQ(trace.holds(L"sd5.2"), row.when_locked == kCancelled);
            EXPECT_EQ(has_state(), row.when_locked == kGood);
            end_job();
        }
        path.clear();
        EXPECT_EQ(start_job(L"cancelled"), row.when_empty);
        EXPECT_EQ(has_state(), row.when_empty == kGood);
        end_job();
    }
    EXPECT_EQ(TempFolder::read(chosen), "old");
    EXPECT_TRUE(Outbox::boxes.empty());
}

TEST_F(JobTest, SecondStartReplacesTheFirstAndLeaksNothing) {
    start_job(L"warm");
    end_job();
    const unsigned handles = handle_count(), views = view_count();
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(start_job(L"never ended"), kGood);
    path = L"C:\\second.pdf";
    EXPECT_EQ(start_job(L"second"), kGood);
    EXPECT_STREQ(StartRecord(block_name(kStartBlockName))->title, L"second");
    EXPECT_EQ(end_job(), kGood);
    EXPECT_FALSE(has_state());

    EXPECT_EQ(start_job(L"with a result"), kGood);
    result = 1;
    EXPECT_EQ(start_job(L"handed over"), kGood);  // the first job's result record goes with it
    EXPECT_EQ(thread_prop(threadprop::kResultRecord), 0u);
    end_job();
    EXPECT_EQ(handle_count(), handles);
    EXPECT_EQ(view_count(), views);
}

TEST_F(JobTest, ForeignBlocksOfTheSameNamesDoNoHarm) {
    for (const DWORD size : {1u, 100u, 5000u}) {
        SCOPED_TRACE(size);
        const OtherSide<char> start(block_name(kStartBlockName), size),
            end(block_name(kResultBlockName), size);
        *start = *end = 'x';
        const Left left = start_job(L"title");
        if (left == kGood) {  // whether a view of the record's size fits is the system's to say
            EXPECT_STREQ(StartRecord(block_name(kStartBlockName))->title, L"title");
            EXPECT_EQ(*end, '\0') << "what stood there would be taken for a result";
        } else {
            EXPECT_EQ(left, (Left{DOCUMENTEVENT_FAILURE, ERROR_OUTOFMEMORY}));
        }
        EXPECT_EQ(end_job(), kGood);
    }
    EXPECT_TRUE(Outbox::boxes.empty());
}

TEST_F(JobTest, BlocksWithoutMemoryBehindThemCountAsAbsent) {
    constexpr Left kNoBlock = {DOCUMENTEVENT_FAILURE, ERROR_OUTOFMEMORY};
    const std::wstring common = qk::format(kCommonBlockName, here.printer.name.c_str(), user_name().c_str());
    struct {
        const char* label;
        std::wstring name;
        Left left;
    } const rows[] = {{"start record", block_name(kStartBlockName), kNoBlock},
                      {"result record", block_name(kResultBlockName), kGood},
                      {"common record", common, kGood},
                      {"list of files", pd_tk::file_list_name(), kGood}};
    script->expects_start_folder = true;
    here.folder.write(L"program.exe", "");
    here.write_external_calls("[DocStart]\r\nApp=" + qk::to_utf8(here.folder.file(L"program.exe")) +
                              "\r\n[Output]\r\nOutputFolder=C:\\\r\n");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        const OtherSide<char> reserved(row.name, 200'000, SEC_RESERVE);
        ASSERT_TRUE(reserved);
        EXPECT_EQ(start_job(L"title"), row.left);
        EXPECT_EQ(end_job(), kGood);
    }
    for (const auto& row : rows) {  // a file that is cut short once it is mapped
        SCOPED_TRACE(row.label);
        const qk::FileObj file(CreateFileW(here.folder.file(L"backing").c_str(), GENERIC_READ | GENERIC_WRITE,
                                           0, nullptr, CREATE_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE, nullptr));
        const OtherSide<char> block(row.name, 200'000, SEC_COMMIT, file.get());
        ASSERT_TRUE(block);
        // Windows refuses to cut a file that is mapped; the system below Wine does not.
        const std::vector<std::string> cut = {
            "truncate", "-s", "0",
            companions::wine::find_unix_path(here.folder.file(L"backing")).value_or("")};
        ASSERT_EQ(companions::wine::run_unix_program(cut), 0);
        EXPECT_EQ(start_job(L"title"), row.left);
        EXPECT_EQ(end_job(), kGood);
    }
}

TEST_F(JobTest, LiesOfTheDialogLibraryAreReadAsFarAsTheyAreTrue) {
    static const GuardedBuffer four_units(8, L"abcd");
    struct {
        const char* label;
        void (*lie)(Record&);
        Left left;
        const wchar_t* path;
    } const rows[] = {
        {"length above capacity", [](Record& record) { record.output_path.length = 5000; }, kGood, nullptr},
        {"address nowhere",
         [](Record& record) { record.output_path.address = reinterpret_cast<wchar_t*>(64); },
         {DOCUMENTEVENT_FAILURE, 2153},
         nullptr},
        {"all zero", [](Record& record) { record.output_path = {}; }, {DOCUMENTEVENT_FAILURE, 2153}, nullptr},
        {"past the end of its memory",
         [](Record& record) {
             record.output_path.address = four_units.as<wchar_t>();
             record.output_path.length = record.output_path.capacity = 100;
         },
         kGood, L"abcd"},
        {"third text nowhere",
         [](Record& record) { record.third_text.length = 99, record.third_text.address = nullptr; }, kGood,
         nullptr},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        meddle = row.lie;
        EXPECT_EQ(start_job(L"x"), row.left);
        if (row.left == kGood) {
            EXPECT_EQ(std::wstring(StartRecord(block_name(kStartBlockName))->output_path),
                      row.path ? row.path : path);
        }
        end_job();
    }
}
