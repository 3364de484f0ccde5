// Jobs that do not start: who is told what, and what is left behind.
#include "job/job_fixture.h"
#include "resources/ids.h"

namespace {

using Corvanta::Vantrix::PrintSettings::Box;

constexpr Left kTold = {DOCUMENTEVENT_FAILURE, ERROR_SUCCESS};
constexpr Left kNoLibrary = {DOCUMENTEVENT_FAILURE, ERROR_FILE_NOT_FOUND};

}  // namespace

TEST_F(JobTest, EveryRefusalIsTold) {
    const std::wstring good_profile =
        here.folder.write(L"press.icc", ProfileFolder::profile("CMYK", "prtr", "Coated FOGRA39"));
    const std::wstring folder = here.folder.path(), empty = here.folder.write(L"empty.ps4", ""),
                       rubbish = here.folder.write(L"rubbish.ps4", "\xEF\xBB\xBF{\"PSComment\": ["),
                       older = here.folder.write(L"Settings\\legacy\\old.printSetting2",
                                                 std::string("\x09\x00\x02\x00 and more", 13)),
                       locked = here.folder.write(L"locked.ps4", "\xEF\xBB\xBF{\"PSComment\": []}");
    const qk::FileObj lock = hold(locked);
    const std::wstring message = qk::load_string(IDS_JOB_FAILED);
    ASSERT_NE(message.find(L"PDF"), std::wstring::npos);
    const auto check = [&](int code, UINT caption, const std::wstring& caption_end) {
        SCOPED_TRACE(testing::Message() << code << qk::to_utf8(caption_end));
        Outbox::boxes.clear();
        const TraceCapture trace;
        EXPECT_EQ(start_job(L"x"), code ? kTold : kGood);
        EXPECT_EQ(has_state(), code == 0);
        end_job();
        ASSERT_EQ(Outbox::boxes.size(), code ? 1u : 0u);
        if (!code)
            return;
        EXPECT_TRUE(trace.holds(qk::format(L"refused: %d", code)));
        EXPECT_EQ(Outbox::boxes[0].text, message);
        EXPECT_EQ(Outbox::boxes[0].caption, qk::load_string(caption) + caption_end);
    };
    const std::tuple<int, UINT, std::vector<std::wstring>> files[] = {
        {100, IDS_NO_SETTING_FILE, {L"C:\\none\\a.ps4", L"nowhere", folder}},
        {101, IDS_BAD_SETTING_FILE, {empty, rubbish, older, L"old", locked}}};
    for (const auto& [code, caption, names] : files)
        for (const std::wstring& name : names) {
            name_setting(name);
            check(code, caption, name);
        }
    const std::map<int, UINT> captions = {
        {164, IDS_NO_COLOUR_PROFILE}, {50, IDS_NO_OUTPUT_CONDITION}, {51, IDS_BAD_PAGE_BOXES}, {0, 0}};
    // The code (0: the job starts), the version, the profile ("-": one that is there), the condition (none:
    // the profile's), the bleed of 3 mm trimmed. An archive needs a profile only.
    const std::tuple<int, unsigned, std::wstring, std::optional<std::wstring>, float> press[] = {
        {164, 5, L"", L"id", 0}, {164, 11, L"gone.icc", L"id", 0}, {164, 6, folder, L"id", 0},
        {50, 6, L"-", L"", 0},   {50, 10, L"-", L"", 0},           {51, 8, L"-", L"id", 3.5f},
        {51, 6, L"-", {}, 4},    {0, 7, L"-", L"id", 3},           {0, 5, L"-", L"", 9},
        {0, 11, L"-", L"", 9},   {0, 4, L"gone.icc", L"", 9},      {0, 12, L"", L"", 9}};
    for (const auto& [code, number, icc, condition, bleed] : press)
        for (float Box::*const edge : {&Box::left, &Box::top, &Box::right, &Box::bottom}) {
            use_settings(
                [&, number = number, &icc = icc, &condition = condition, bleed = bleed](Settings& settings) {
                    auto& version = *settings.pdfVersion();
                    version.Version = number;
                    version.ICCFileName = icc == L"-" ? good_profile : icc;
                    version.TrimBox = {3, 3, 3, 3};
                    version.BleedBox.*edge = bleed;
                    if (condition)
                        settings.addition()->Str[L"OutputCondition"] = *condition;
                });
            check(code, captions.at(code), code == 164 ? icc : L"");
        }
    EXPECT_EQ(script->file_calls, 5 * 4);
}

TEST_F(JobTest, WithoutTheDialogLibraryThereIsNoJob) {
    const std::wstring good = here.folder.path(), bare = here.folder.file(L"bare"),
                       broken = here.folder.file(L"broken");
    for (const std::wstring& folder : {bare, broken})
        CreateDirectoryW(folder.c_str(), nullptr);
    here.copy_built(L"Language\\zrtk_res_en.dll", L"bare\\Tessalo80.dll");
    here.folder.write(L"broken\\Tessalo80.dll", "MZ");
    const wchar_t* const no_library = L"failed LoadLibrary:Tessalo80.dll";
    // The folder, and what is traced.
    const std::pair<std::wstring, const wchar_t*> rows[] = {
        {good + L"\\", nullptr}, {good, nullptr},      {good + L"\\Tessalo80.dll", no_library},
        {L"", no_library},       {broken, no_library}, {bare, L"failed GetProcAddress:GetFile2"}};
    for (const auto& [folder, traced] : rows) {
        SCOPED_TRACE(qk::to_utf8(folder));
        here.machine.set_text(Installation::kKey, L"PdfDllPath", folder);
        if (traced)
            library.reset();  // a library that is loaded already would be found by its name alone
        const TraceCapture trace;
        EXPECT_EQ(start_job(L"x"), traced ? kNoLibrary : kGood);
        EXPECT_NE(has_state(), traced != nullptr);
        EXPECT_TRUE(!traced || trace.holds(traced));
        end_job();
    }
    EXPECT_TRUE(Outbox::boxes.empty());
    load_dialog_library();
}
