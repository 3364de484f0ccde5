#include "support/random_settings.h"

namespace admin = Corvanta::Vantrix::Administrator;

namespace {

constexpr wchar_t kFolder[] = L"PdfDllPath", kFile[] = L"administrator.ps4a";
constexpr auto& kKey = Installation::kKey;

class PrintSettingsAdmin : public testing::Test {
protected:
    PrintSettingsAdmin() {
        registry_.set_text(kKey, kFolder, folder_.path() + L"\\");
        user_.summary()->Title = L"the user's";
        user_.watermark()->Transparency = 5;
        user_->PSName = L"mine";
        user_->PSComment[1] = L"user";
        EXPECT_TRUE(user_.Save(user_path_));
    }

    // What a job gets from the user's file, with `forced` (JSON text) as the administrator's file.
    std::optional<ps::PrintSettings> load(const std::string& forced) {
        folder_.write(kFile, "\xEF\xBB\xBF" + forced);
        return settings_.Load(user_path_) ? std::optional<ps::PrintSettings>(settings_) : std::nullopt;
    }
    // The folder and the name that it restricts a job to.
    [[nodiscard]] std::wstring restricted_to() const {
        return settings_.restriction().OutputFolder + L"|" + settings_.restriction().PDFFileName;
    }

    MachineRegistry registry_;
    TempFolder folder_;
    std::wstring user_path_ = folder_.file(L"user.ps4");
    ps::PrintSettings user_;
    ps::PrintSettingsAdmin settings_;
};

}  // namespace

TEST_F(PrintSettingsAdmin, NamedValuesAreForcedAndTheOthersStay) {
    user_ = RandomSettings(3).next();
    user_.font()->Fonts = {L"one", L"two"};
    user_.addition()->Int = {{L"a", 1}, {L"b", 2}};
    user_.notification()->V6->PrintError = user_.notification()->V6->PrintEnd;
    user_->PSComment = {{1, L"user"}};
    ASSERT_TRUE(user_.Save(user_path_));
    ps::PrintSettings expected = user_;
    EXPECT_EQ(load("{}"), expected);
    expected.watermark()->Text = L"DRAFT";
    expected.compression()->Gray->JpegQuality = 50;
    expected.font()->Fonts = {L"three"};
    expected.addition()->Int[L"b"] = 3;
    expected->PSComment[2] = L"admin";
    EXPECT_EQ(
        load(R"({"Watermark": {"Text": "DRAFT", "Style": "x"}, "Compression": {"Gray": {"JpegQuality": 50}},
                       "Font": {"Fonts": ["three"]}, "Addition": {"Int": {"b": 3}}, "PSName": 1,
                       "PSComment": [[2, "admin"]], "Notification": {"V6": {}}})"),
        expected);
    EXPECT_EQ(restricted_to(), L"|");
}

TEST_F(PrintSettingsAdmin, RestrictionStandsBesideTheSettingsUntilTheNextLoad) {
    const std::string whole =
        R"({"Administrator": {"OutputFolder": "C:\\Out", "PDFFileName": "fixed.pdf", "NoSettingTabs": true,
                              "PSFile": 5}})";
    admin::Restriction alone;
    for (const char* next :
         {R"({"Administrator": {"NoSettingTabs": 1}})", R"({"Administrator": []})", "", "nowhere"}) {
        SCOPED_TRACE(next);
        EXPECT_EQ(load(whole), user_);
        EXPECT_EQ(restricted_to(), L"C:\\Out|fixed.pdf");
        EXPECT_TRUE(settings_.restriction().NoSettingTabs && settings_.restriction().PSFile.empty());
        EXPECT_TRUE(admin::load_restriction(alone) && alone.NoSettingTabs);
        DeleteFileW(folder_.file(kFile).c_str());
        if (*next == '{')
            load(next);
        if (*next == 'n')
            registry_.set_text(kKey, kFolder, L"");
        EXPECT_TRUE(settings_.Load(user_path_) && settings_ == user_);
        EXPECT_EQ(restricted_to(), L"|");
        EXPECT_FALSE(settings_.restriction().NoSettingTabs);
        EXPECT_TRUE(admin::load_restriction(alone) && !alone.NoSettingTabs);
    }
}

TEST_F(PrintSettingsAdmin, OfTheAdministratorsSettingOnlyCommentsOutliveTheUsers) {
    ps::PrintSettings first, expected = user_;
    first.summary()->Title = L"first";
    first->PSComment = {{1, L"first"}, {7, L"first"}};
    ASSERT_TRUE(first.Save(folder_.file(L"first.ps4")));
    std::wstring path = folder_.file(L"first.ps4");
    std::ranges::replace(path, L'\\', L'/');
    expected->PSComment = {{1, L"user"}, {7, L"first"}};
    EXPECT_EQ(load(R"({"Administrator": {"PSFile": ")" + qk::to_utf8(path) + R"("}})"), expected);
    settings_ = {};
    const CurrentFolder in(folder_.path());
    EXPECT_EQ(load(R"({"Administrator": {"PSFile": "first.ps4"}})"), user_) << "out of the program's folder";
}

TEST_F(PrintSettingsAdmin, UsersFolderLiftsNothingAndNoUserIsBelievedForAnother) {
    const UserRegistry users;
    const TempFolder other;
    other.write(kFile,
                "\xEF\xBB\xBF"
                R"({"Summary": {"Title": "other", "Author": "other"},
                        "Administrator": {"PDFFileName": "other.pdf", "OutputFolder": "C:\\other"}})");
    // The user's folder, whether the thread acts for another user, the author, the restriction.
    const std::tuple<std::wstring, bool, const wchar_t*, const wchar_t*> rows[] = {
        {L"", false, L"", L"C:\\machine|"},
        {other.path(), false, L"other", L"C:\\machine|other.pdf"},
        {L"Settings", false, L"", L"C:\\machine|"},
        {other.path() + L"\\", true, L"", L"C:\\machine|"}};
    for (const auto& [users_folder, for_another, author, restriction] : rows) {
        SCOPED_TRACE(qk::to_utf8(users_folder));
        users.set_text(kKey, kFolder, users_folder);
        if (for_another)
            ImpersonateSelf(SecurityImpersonation);
        EXPECT_TRUE(
            load(R"({"Summary": {"Title": "machine"}, "Administrator": {"OutputFolder": "C:\\machine"}})"));
        const std::wstring trusted = qk::trusted_install_folder();
        RevertToSelf();
        EXPECT_TRUE(settings_.summary()->Title == L"machine" && settings_.summary()->Author == author);
        EXPECT_EQ(restricted_to(), restriction);
        EXPECT_EQ(trusted == folder_.path() + L"\\", users_folder != other.path());
    }
    users.set_text(kKey, kFolder, L"");
    for (const wchar_t* folder : {L"relative\\", L"\\\\.\\pipe\\"}) {
        registry_.set_text(kKey, kFolder, folder);
        EXPECT_EQ(qk::install_folder() + qk::machine_install_folder(), L"");
    }
}

TEST_F(PrintSettingsAdmin, AFileThatCannotBeReadFailsEveryLoad) {
    admin::Restriction restriction;
    restriction.PDFFileName = L"before";
    for (const char* forced : {"", "{", "[]", "not JSON", R"({"General": 5})", R"({"PSComment": 5})"})
        EXPECT_FALSE(load(forced)) << forced;
    const auto fails = [&] { return !settings_.Load(user_path_) && !admin::load_restriction(restriction); };
    folder_.write(kFile, "{}");  // no byte-order mark
    EXPECT_TRUE(fails());
    qk::FileObj owner = hold(folder_.write(kFile, "\xEF\xBB\xBF{}"));
    EXPECT_TRUE(fails());
    owner.reset();
    EXPECT_EQ(restriction.PDFFileName, L"before");
    EXPECT_TRUE(settings_.Load(user_path_));
    EXPECT_FALSE(settings_.Load(folder_.file(L"missing.ps4")) || settings_.Load(folder_.path()));
    DeleteFileW(folder_.file(kFile).c_str());
    EXPECT_FALSE(fails());
    const ImportPatch away("GetFileAttributesW", always<INVALID_FILE_ATTRIBUTES, DWORD{ERROR_BAD_NETPATH}>());
    EXPECT_TRUE(fails()) << "a folder that cannot be reached lifts nothing";
}
