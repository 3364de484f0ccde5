// From STARTDOCPRE to the published records.
#include "common/driver_util.h"
#include "common/qk/override_ini.h"
#include "common/teskel_custom_2021.h"
#include "companions/host/record_fields.h"
#include "job/job_fixture.h"

namespace {

using Record = dialog_library::WorkingRecord;

constexpr Left kCancelled = {DOCUMENTEVENT_FAILURE, 2153},
               kNoBlock = {DOCUMENTEVENT_FAILURE, ERROR_OUTOFMEMORY};

const JobTest::Settings& settings_of(const Record& record) {
    return *static_cast<const JobTest::Settings*>(record.settings);
}

}  // namespace

TEST_F(JobTest, TracesTellEveryStepInOrder) {
    use_settings();
    call_program("DocEnd", here.folder.write(L"app.exe", ""));
    script->expects_start_folder = true;
    const std::wstring start =
        L">>5|internal_DrvDocumentEvent|DOCUMENTEVENT_STARTDOCPRE|sd1|LoadInstallDll|"
        L"GetSettingFileNameFromFD|call "
        L"GetSettingFN@Tessalo|sd2|PrintSettingsAdmin::Load|sd3|SetPDFname|Visio-x|Visio-x.pdf|"
        L"CleanJobTitle|jobname is |Visio-x|pd_tk::TeskelCustom2021::IsActive|"
        L"pd_tk::TeskelCustom2021::HasAnyExe|pd_tk::TeskelCustom2021::HasExe|"
        L"pd_tk::TeskelCustom2021::getExeName|pd_tk::TeskelCustom2021::GetOutputFolder|";
    const std::wstring end =
        L">>12|internal_DrvDocumentEvent|DOCUMENTEVENT_ENDDOCPOST|FreeThreadProp|"
        L"pd_tk::TeskelCustom2021::remove_fn_from_mmf|delete|" +
        path + L"|ZRTKPrintInfo@end of document|";
    const std::wstring ways[] = {L"ret=0|C.1|fdlg_GetMMFJobMode|no GetMMFJobMode|<<sd!|",
                                 L"ret=555|C.2...|resume|"};
    for (const size_t resumes : {0, 1}) {
        meddle = [&](Record& record) { record.hand_over = resumes != 0; };
        const TraceCapture trace;
        EXPECT_EQ(start_job(L"Visio-x"), kGood);
        EXPECT_EQ(end_job(), kGood);
        std::wstring wanted = start + ways[resumes] + end + (resumes ? L"404|" : L"");
        for (const std::wstring& record : trace.records())
            if (record.ends_with(L"  " + wanted.substr(0, wanted.find(L'|')) + L"\r\n"))
                wanted.erase(0, wanted.find(L'|') + 1);
        EXPECT_EQ(wanted, L"");
        EXPECT_EQ(trace.holds(L"ret=0") || trace.holds(L"<<sd!"), !resumes);
        EXPECT_EQ(trace.holds(L"ret=555") || trace.holds(L"404"), resumes);
    }
}

TEST_F(JobTest, StartRecordIsRightToTheByte) {
    const std::wstring pair_at_the_cut = std::wstring(258, L'p') + L"\U0001F5A8";
    // The document, its title, the path, the third text, how they are put, the flag, the result.
    const std::tuple<std::wstring, std::wstring, std::wstring, std::wstring, How, uint8_t, int> rows[] = {
        {L"Report", L"Report", L"C:\\out\\Report.pdf", L"third text", How::kAssigned, 0, 0},
        {L"Visio-a", L"a", L"C:\\out\\a longer path.pdf", L"a longer text", How::kByOwnAddress, 0, 0},
        {L"Visio-", L"", L"a.pdf", L"1234567", How::kInTheField, 0, 0},
        {pair_at_the_cut, pair_at_the_cut, std::wstring(400, L'p'), std::wstring(1000, L't'), How::kAssigned,
         0, 0},
        {L"x", L"x", L"C:\\e.pdf", L"3", How::kAssigned, 0, 1},
        {L"x", L"x", L"", L"", How::kAssigned, 200, 0},
        {L"x", L"x", L"C:\\f.pdf", L"", How::kAssigned, 1, -1}};
    for (const auto& [document, title, chosen, last, way, hand_over, answer] : rows) {
        SCOPED_TRACE(qk::to_utf8(title + L" to " + chosen));
        const bool resumes = hand_over || answer;
        path = chosen, third = last, how = way, result = answer;
        meddle = [&, flag = hand_over](Record& record) {
            record.hand_over = flag;
            record.first_value = 0x1122334455667788;
            record.second_value = 2;
            record.third_value = UINT64_MAX;
        };
        ASSERT_EQ(start_job(document.c_str()), kGood);
        std::string expected(1608, '\0');
        expected[0] = resumes ? 1 : 0;
        for (const auto& [offset, bytes] :
             {std::pair<size_t, std::string>(2, raw_bytes(title.substr(0, 259))),
              {522, raw_bytes(chosen.substr(0, 259))},
              {1042, raw_bytes(last.substr(0, 259))},
              {1576, raw_bytes(uint64_t{0x1122334455667788})},
              {1584, raw_bytes(uint64_t{2})},
              {1600, raw_bytes(UINT64_MAX)}})
            expected.replace(offset, bytes.size(), bytes);
        EXPECT_EQ(start_record_bytes(), expected);
        const ResultRecord record(block_name(kResultBlockName));
        EXPECT_EQ(record ? raw_bytes(*record) : "", std::string(resumes ? 0 : 104, '\0'));
        EXPECT_EQ(end_job(), kGood);
    }
    EXPECT_FALSE(has_state());
}

TEST_F(JobTest, DocumentNameIsReadWhereverTheCallerPutIt) {
    std::wstring title;
    meddle = [&](Record& record) { title = record.title.find_text().value_or(L"<unreadable>"); };
    const GuardedBuffer unterminated(6, L"abc");
    const std::wstring endless(2047, L'e');  // of which the library gets one unit less
    const auto of_name = [](const wchar_t* name) {
        return DOCINFOW{.cbSize = sizeof(DOCINFOW), .lpszDocName = name};
    };
    DOCINFOW info = of_name(L"Letter"), nameless = of_name(nullptr), *pointer = &info,
             bad = of_name(reinterpret_cast<const wchar_t*>(16)),
             open_end = of_name(unterminated.as<wchar_t>()), too_long = of_name(endless.c_str());
    const GuardedBuffer short_info(12, &info);
    // The event's input (a structure, a pointer to one, neither), its size, the title.
    const std::tuple<void*, ULONG, const wchar_t*> rows[] = {{&info, sizeof info, L"Letter"},
                                                             {&pointer, sizeof pointer, L"Letter"},
                                                             {nullptr, 0, L"no_name"},
                                                             {&nameless, sizeof nameless, L"no_name"},
                                                             {&bad, sizeof bad, L"no_name"},
                                                             {&open_end, sizeof open_end, L"abc"},
                                                             {&too_long, sizeof too_long, &endless[1]},
                                                             {short_info.as<>(), 40, L"no_name"},
                                                             {reinterpret_cast<void*>(24), 40, L"no_name"}};
    for (const auto& [in, size, wanted] : rows) {
        SCOPED_TRACE(testing::Message() << size << " bytes, " << qk::to_utf8(wanted));
        EXPECT_EQ(send_event(DOCUMENTEVENT_STARTDOCPRE, in, size), kGood);
        EXPECT_EQ(title, wanted);
        end_job();
    }
}

TEST_F(JobTest, SettingReachesTheDialog) {
    std::wstring seen;
    meddle = [&](Record& record) { seen = settings_of(record).summary()->Title; };
    const std::wstring file = use_settings([](Settings& settings) { settings.summary()->Title = L"mine"; });
    CopyFileW(file.c_str(), here.folder.file(L"Settings\\bare.ps4").c_str(), FALSE);
    for (const std::wstring& name : {file, std::wstring(L"bare")}) {
        name_setting(name);
        seen.clear();
        run_job();
        EXPECT_EQ(seen, L"mine") << qk::to_utf8(name);
    }
    for (const bool forces : {false, true}) {
        if (forces)
            here.folder.write(L"administrator.ps4a", "\xEF\xBB\xBF{\"Summary\": {\"Title\": \"forced\"}}");
        for (const int failed : {0, 1}) {  // no name, and a library that cannot say: the defaults
            name_setting(failed ? L"bare.ps4" : L"");
            script->setting_result = failed;
            run_job();
            EXPECT_EQ(seen, forces ? L"forced" : L"");
        }
    }
    here.folder.write(L"administrator.ps4a", "rubbish");
    run_job([] { EXPECT_FALSE(has_state()); }, {DOCUMENTEVENT_FAILURE, ERROR_SUCCESS});
    EXPECT_NE(Outbox::boxes.at(0).caption.find(L"administrator.ps4a"), std::wstring::npos);
}

TEST_F(JobTest, OverrideFileSetsTheFolderWhileItsVersionCounts) {
    std::wstring folder;
    meddle = [&](Record& record) {
        folder = settings_of(record).general()->OutputFolder;
        EXPECT_EQ(settings_of(record).general()->SaveStyle, 0) << "the user is not asked any more";
    };
    use_settings([](Settings& settings) { settings.general()->OutputFolder = L"C:\\own\\"; });
    const std::tuple<const char*, const char*, const wchar_t*> rows[] = {
        {"2.0", "PDFFileName=C:\\a\\b\\c.pdf", L"C:\\a\\b\\"},
        {"3.0", "PDFFileName=C:\\c.pdf", L"C:\\"},
        {"2.99", "PDFFileName=c.pdf", L"C:\\own\\"},
        {"2.5", "PrintID=abc\r\nOrient=xyz\r\nMessageID=\r\nPDFFileName=D:\\q\\", L"D:\\q\\"},
        {"3.01", "PDFFileName=C:\\a\\c.pdf", L"C:\\own\\"}};
    for (const auto& [version, lines, wanted] : rows) {
        here.write_ini(lines, version);
        run_job();
        EXPECT_EQ(folder, wanted) << version << lines;
    }
    here.write_ini("MessageID=5");
    const ImportPatch pipe("GetFileType", always<DWORD{FILE_TYPE_PIPE}>());
    EXPECT_EQ(qk::OverrideIni().message_id(), 11u) << "whatever has the name is read";
}

TEST_F(JobTest, ChosenFileIsCheckedUnlessTheJobModeForbids) {
    constexpr uint32_t kValid = ZRTK_COMMON_MMF::kJobModeValid;
    const std::tuple<uint32_t, uint32_t, Left> rows[] = {
        // without flags there is no block
        {0, 0, kCancelled}, {kValid, 0, kCancelled}, {kValid, 1, kCancelled}, {kValid | 3, 2, kGood},
        {kValid, 3, kGood}, {kValid, 4, kCancelled}, {~kValid, 2, kCancelled}};
    const std::wstring chosen = here.folder.write(L"out\\report.pdf", "old");
    for (const auto& [flags, mode, wanted] : rows) {
        SCOPED_TRACE(testing::Message() << "mode " << mode << ", flags " << flags);
        std::optional<OtherSide<ZRTK_COMMON_MMF>> block;
        if (flags) {
            block.emplace(qk::format(kCommonBlockName, here.printer.name.c_str(), user_name().c_str()),
                          DWORD{4120});
            (*block)->flags = flags;
            (*block)->job_mode = mode;
        }
        const auto start = [](const Left& left) {
            run_job([&] { EXPECT_EQ(has_state(), left == kGood); }, left);
        };
        path = chosen;
        start(kGood);
        {
            const TraceCapture trace;
            const qk::FileObj reader = hold(chosen, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
            start(wanted);
            EXPECT_EQ(trace.holds(L"sd5.2"), wanted == kCancelled);
        }
        path.clear();
        start(wanted);
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
    result = 1;
    EXPECT_EQ(start_job(L"handed over"), kGood);  // the first job's result record goes with it
    EXPECT_EQ(thread_prop(threadprop::kResultRecord), 0u);
    end_job();
    EXPECT_TRUE(!has_state() && handle_count() == handles && view_count() == views);
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
            EXPECT_EQ(left, kNoBlock);
        }
        EXPECT_EQ(end_job(), kGood);
    }
    EXPECT_TRUE(Outbox::boxes.empty());
}

TEST_F(JobTest, BlocksWithoutMemoryBehindThemCountAsAbsent) {
    const std::wstring common = qk::format(kCommonBlockName, here.printer.name.c_str(), user_name().c_str());
    const std::pair<std::wstring, Left> rows[] = {{block_name(kStartBlockName), kNoBlock},
                                                  {block_name(kResultBlockName), kGood},
                                                  {common, kGood},
                                                  {pd_tk::file_list_name(), kGood}};
    script->expects_start_folder = true;
    call_program("DocStart", here.folder.write(L"program.exe", ""));
    for (const auto& [name, left] : rows) {
        SCOPED_TRACE(qk::to_utf8(name));
        const OtherSide<char> block(name, 200'000, SEC_RESERVE);
        ASSERT_TRUE(block);
        run_job([] {}, left);
        EXPECT_FALSE(host::find_start_record(GetCurrentThreadId()));
    }
}

TEST_F(JobTest, LiesOfTheDialogLibraryAreReadAsFarAsTheyAreTrue) {
    static const GuardedBuffer four_units(8, L"abcd");
    // The address, length and capacity of the path; null: as they are. Empty: the job is cancelled.
    const std::tuple<wchar_t*, uint64_t, uint64_t, std::wstring> rows[] = {
        {nullptr, 5000, 0, path},
        {reinterpret_cast<wchar_t*>(64), path.size(), path.size(), L""},
        {four_units.as<wchar_t>(), 100, 100, L"abcd"}};
    for (const auto& [address, length, capacity, wanted] : rows) {
        SCOPED_TRACE(length);
        meddle = [&, address = address, length = length, capacity = capacity](Record& record) {
            record.output_path.length = length;
            if (address)
                record.output_path.address = address, record.output_path.capacity = capacity;
            record.third_text.length = 99, record.third_text.address = nullptr;
        };
        const auto look = [&wanted = wanted] {
            const StartRecord record(block_name(kStartBlockName));
            EXPECT_EQ(record ? record->output_path : L"", wanted);
        };
        run_job(look, wanted.empty() ? kCancelled : kGood);
    }
}
