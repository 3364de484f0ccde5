// From STARTDOCPRE to the published records.
#include <cstdint>

#include "common/driver_util.h"
#include "common/teskel_custom_2021.h"
#include "companions/wine_layer.h"
#include "job/job_fixture.h"
#include "support/guarded_buffer.h"
#include "support/handle_count.h"
#include "support/intercept.h"
#include "support/trace_capture.h"

namespace {

using Record = dialog_library::WorkingRecord;

void put_text(std::string& record, size_t offset, std::wstring_view text) {
    text = text.substr(0, 259);
    record.replace(offset, text.size() * 2, reinterpret_cast<const char*>(text.data()), text.size() * 2);
}
void put_number(std::string& record, size_t offset, uint64_t number) {
    record.replace(offset, 8, reinterpret_cast<const char*>(&number), 8);
}

}  // namespace

TEST_F(JobTest, TracesTellEveryStepInOrder) {
    use_settings();
    here.write_external_calls("[DocEnd]\r\nApp=" + qk::to_utf8(here.folder.write(L"app.exe", "")) +
                              "\r\n[Output]\r\nOutputFolder=C:\\start\\\r\n");
    script->expects_start_folder = true;
    const std::vector<std::wstring> start = {L">>5",
                                             L"internal_DrvDocumentEvent",
                                             L"DOCUMENTEVENT_STARTDOCPRE",
                                             L"sd1",
                                             L"LoadInstallDll",
                                             L"call GetSettingFN@Tessalo",
                                             L"sd2",
                                             L"PrintSettingsAdmin::Load",
                                             L"sd3",
                                             L"SetPDFname",
                                             L"Visio-x",
                                             L"Visio-x.pdf",
                                             L"CleanJobTitle",
                                             L"jobname is ",
                                             L"Visio-x",
                                             L"pd_tk::TeskelCustom2021::IsActive",
                                             L"pd_tk::TeskelCustom2021::HasAnyExe",
                                             L"pd_tk::TeskelCustom2021::HasExe",
                                             L"pd_tk::TeskelCustom2021::getExeName",
                                             L"pd_tk::TeskelCustom2021::GetOutputFolder"};
    const std::vector<std::wstring> confirmed = {L"ret=0", L"C.1", L"fdlg_GetMMFJobMode", L"no GetMMFJobMode",
                                                 L"<<sd!"},
                                    resumed = {L"ret=555", L"C.2...", L"resume"};
    const std::vector<std::wstring> end = {L">>12",
                                           L"internal_DrvDocumentEvent",
                                           L"DOCUMENTEVENT_ENDDOCPOST",
                                           L"FreeThreadProp",
                                           L"pd_tk::TeskelCustom2021::remove_fn_from_mmf",
                                           L"delete",
                                           path,
                                           L"ZRTKPrintInfo@end of document"};
    for (const bool resumes : {false, true}) {
        meddle = [&](Record& record) { record.hand_over = resumes; };
        const TraceCapture trace;
        EXPECT_EQ(start_job(L"Visio-x"), kGood);
        EXPECT_EQ(end_job(), kGood);
        std::vector<std::wstring> wanted = start;
        for (const auto& steps :
             {resumes ? resumed : confirmed, end, std::vector<std::wstring>(resumes, L"404")})
            wanted.insert(wanted.end(), steps.begin(), steps.end());
        size_t seen = 0;
        for (const std::wstring& record : trace.records())
            seen += seen < wanted.size() && record.ends_with(L"  " + wanted[seen] + L"\r\n");
        EXPECT_EQ(seen, wanted.size()) << "no " << qk::to_utf8(wanted[std::min(seen, wanted.size() - 1)]);
        for (const auto& absent : resumes ? confirmed : resumed)
            EXPECT_FALSE(trace.holds(absent)) << qk::to_utf8(absent);
        EXPECT_EQ(trace.holds(L"404"), resumes);
    }
}

TEST_F(JobTest, StartRecordIsRightToTheByte) {
    const std::wstring pair_at_the_cut = std::wstring(258, L'p') + L"\U0001F5A8";
    const struct {
        const char* label;
        std::wstring document, title, path, third;
        How how = How::kAssigned;
        uint8_t hand_over = 0;
        int result = 0;
    } rows[] = {
        {"assigned", L"Report", L"Report", L"C:\\out\\Report.pdf", L"third text"},
        {"by the library's address", L"Visio-a", L"a", L"C:\\out\\a longer path.pdf", L"a longer text",
         How::kByOwnAddress},
        {"in the field itself", L"Visio-", L"", L"a.pdf", L"1234567", How::kInTheField},
        {"title as long as a field", L"1234567", L"1234567", L"b.pdf", L"", How::kInTheField},
        {"all cut", pair_at_the_cut, pair_at_the_cut, std::wstring(400, L'p'), std::wstring(1000, L't')},
        {"other result", L"x", L"x", L"C:\\e.pdf", L"3", How::kAssigned, 0, 1},
        {"flag", L"x", L"x", L"", L"", How::kAssigned, 200},
        {"flag and negative result", L"x", L"x", L"C:\\f.pdf", L"", How::kAssigned, 1, -1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        const bool resumes = row.hand_over || row.result;
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
        ASSERT_EQ(start_job(row.document.c_str()), kGood);
        std::string expected(1608, '\0');
        expected[0] = resumes ? 1 : 0;
        put_text(expected, 2, row.title);
        put_text(expected, 522, row.path);
        put_text(expected, 1042, row.third);
        put_number(expected, 1576, 0x1122334455667788);
        put_number(expected, 1584, 2);
        put_number(expected, 1600, UINT64_MAX);
        EXPECT_EQ(start_record_bytes(), expected);
        const ResultRecord record(block_name(kResultBlockName));
        EXPECT_EQ(static_cast<bool>(record), !resumes);
        if (record) {
            EXPECT_EQ(std::string(reinterpret_cast<const char*>(&*record), 104), std::string(104, '\0'));
        }
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
    const struct {
        const char *version, *lines;
        const wchar_t* folder;
    } rows[] = {
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
    constexpr uint32_t kValid = ZRTK_COMMON_MMF::kJobModeValid;
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    constexpr Left kCancelled = {DOCUMENTEVENT_FAILURE, 2153};
    const struct {
        const char* label;
        uint32_t flags, mode;
        Left left;
    } rows[] = {
        {"no block", 0, 0, kCancelled},
        {"mode 0", kValid, 0, kCancelled},
        {"mode 1", kValid, 1, kCancelled},
        {"mode 2", kValid | 3, 2, kGood},
        {"mode 3", kValid, 3, kGood},
        {"mode 4", kValid, 4, kCancelled},
        {"mode 2, not valid", ~kValid, 2, kCancelled},
    };
    const std::wstring chosen = here.folder.write(L"out\\report.pdf", "old");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        std::optional<OtherSide<ZRTK_COMMON_MMF>> block;
        if (row.flags) {
            block.emplace(qk::format(kCommonBlockName, here.printer.name.c_str(), user_name().c_str()),
                          DWORD{4120});
            (*block)->flags = row.flags;
            (*block)->job_mode = row.mode;
        }
        const auto start = [&](const Left& wanted) {
            EXPECT_EQ(start_job(L"x"), wanted);
            EXPECT_EQ(has_state(), wanted == kGood);
            end_job();
        };
        path = chosen;
        start(kGood);
        {
            const TraceCapture trace;
            const qk::FileObj reader(
                CreateFileW(chosen.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
            const Intercept<decltype(CreateFileW)> open(
                "CreateFileW", [&](auto* name, DWORD access, auto...) {
                    EXPECT_TRUE(name != chosen || access == GENERIC_WRITE);
                    return std::nullopt;
                });
            start(row.left);
            EXPECT_EQ(trace.holds(L"sd5.2"), row.left == kCancelled);
        }
        path.clear();
        start(row.left);
    }
    EXPECT_EQ(TempFolder::read(chosen), "old");
    EXPECT_TRUE(Outbox::boxes.empty());
}

TEST_F(JobTest, SecondStartReplacesTheFirstAndLeaksNothing) {
    start_job(L"warm");
    end_job();
    const unsigned handles = handle_count(), views = view_count();
    for (const wchar_t* title : {L"never ended", L"nor this", L"second"}) {
        EXPECT_EQ(start_job(title), kGood);
        EXPECT_STREQ(StartRecord(block_name(kStartBlockName))->title, title);
    }
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
        const auto run = [&](const OtherSide<char>& block) {
            ASSERT_TRUE(block);
            EXPECT_EQ(start_job(L"title"), row.left);
            EXPECT_EQ(end_job(), kGood);
        };
        run(OtherSide<char>(row.name, 200'000, SEC_RESERVE));
        // A file that is cut short once it is mapped: Windows refuses to, the system below Wine does not.
        const std::wstring backing = here.folder.file(L"backing");
        const qk::FileObj file(CreateFileW(backing.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                           CREATE_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE, nullptr));
        const OtherSide<char> block(row.name, 200'000, SEC_COMMIT, file.get());
        const std::vector<std::string> cut = {"truncate", "-s", "0",
                                              companions::wine::find_unix_path(backing).value_or("")};
        ASSERT_EQ(companions::wine::run_unix_program(cut), 0);
        run(block);
    }
}

TEST_F(JobTest, LiesOfTheDialogLibraryAreReadAsFarAsTheyAreTrue) {
    static const GuardedBuffer four_units(8, L"abcd");
    constexpr Left kCancelled = {DOCUMENTEVENT_FAILURE, 2153};
    const struct {
        const char* label;
        void (*lie)(Record&);
        Left left;
        std::wstring path;
    } rows[] = {
        {"length above capacity", [](Record& record) { record.output_path.length = 5000; }, kGood, path},
        {"address nowhere",
         [](Record& record) { record.output_path.address = reinterpret_cast<wchar_t*>(64); }, kCancelled,
         L""},
        {"all zero", [](Record& record) { record.output_path = {}; }, kCancelled, L""},
        {"past the end of its memory",
         [](Record& record) {
             record.output_path.address = four_units.as<wchar_t>();
             record.output_path.length = record.output_path.capacity = 100;
         },
         kGood, L"abcd"},
        {"third text nowhere",
         [](Record& record) { record.third_text.length = 99, record.third_text.address = nullptr; }, kGood,
         path},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        meddle = row.lie;
        EXPECT_EQ(start_job(L"x"), row.left);
        if (row.left == kGood) {
            EXPECT_EQ(StartRecord(block_name(kStartBlockName))->output_path, row.path);
        }
        end_job();
    }
}
