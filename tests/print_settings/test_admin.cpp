#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "common/qk/paths.h"
#include "print_settings/PSAdmin.h"
#include "support/registry_override.h"
#include "support/temp_folder.h"
#include "support/user_registry.h"

namespace ps = Corvanta::Vantrix::PrintSettings;
namespace admin = Corvanta::Vantrix::Administrator;

namespace {

class PrintSettingsAdmin : public testing::Test {
protected:
    PrintSettingsAdmin() {
        registry_.set_text(L"SOFTWARE\\Corvanta\\Vantrix\\8.0", L"PdfDllPath", folder_.path() + L"\\");
        user_.summary()->Title = L"the user's";
        user_.watermark()->Transparency = 5;
        user_->PSName = L"mine";
        user_->PSComment[1] = L"user";
        EXPECT_TRUE(user_.Save(user_path_));
    }

    // What a job gets from the user's file, with `forced` (JSON text) as the administrator's file.
    std::optional<ps::PrintSettings> load(const std::string& forced) {
        folder_.write(L"administrator.ps4a", "\xEF\xBB\xBF" + forced);
        if (!settings_.Load(user_path_))
            return std::nullopt;
        return settings_;
    }

    MachineRegistry registry_;
    TempFolder folder_;
    std::wstring user_path_ = folder_.file(L"user.ps4");
    ps::PrintSettings user_;
    ps::PrintSettingsAdmin settings_;
};

}  // namespace

TEST_F(PrintSettingsAdmin, WithoutAFileTheUsersSettingHolds) {
    EXPECT_TRUE(settings_.Load(user_path_));
    EXPECT_EQ(settings_, user_);
    admin::Restriction restriction;
    restriction.NoSettingTabs = true;
    EXPECT_TRUE(admin::load_restriction(restriction));
    EXPECT_FALSE(restriction.NoSettingTabs);

    registry_.set_text(L"SOFTWARE\\Corvanta\\Vantrix\\8.0", L"PdfDllPath", L"");
    EXPECT_TRUE(settings_.Load(user_path_));
    CreateDirectoryW(folder_.file(L"administrator.ps4a").c_str(), nullptr);
    registry_.set_text(L"SOFTWARE\\Corvanta\\Vantrix\\8.0", L"PdfDllPath", folder_.path() + L"\\");
    EXPECT_TRUE(settings_.Load(user_path_));
}

TEST_F(PrintSettingsAdmin, NamedValuesAreForcedAndTheOthersStay) {
    ps::PrintSettings expected = user_;
    expected.watermark()->Style = 1;
    expected.watermark()->Text = L"DRAFT";
    EXPECT_EQ(load(R"({"Watermark": {"Style": 1, "Text": "DRAFT", "Transparency": "none"}})"), expected);
    EXPECT_TRUE(settings_.restriction().OutputFolder.empty());

    expected = user_;
    expected->PSComment[2] = L"admin";
    EXPECT_EQ(load(R"({"PSComment": [[2, "admin"]]})"), expected);
}

TEST_F(PrintSettingsAdmin, RestrictionStandsBesideTheSettings) {
    EXPECT_EQ(load(R"({"Administrator": {"OutputFolder": "C:\\Out", "PDFFileName": "fixed.pdf",
                                         "NoSettingTabs": true, "PSFile": 5}})"),
              user_);
    EXPECT_EQ(settings_.restriction().OutputFolder, L"C:\\Out");
    EXPECT_EQ(settings_.restriction().PDFFileName, L"fixed.pdf");
    EXPECT_TRUE(settings_.restriction().PSFile.empty());
    admin::Restriction alone;
    EXPECT_TRUE(admin::load_restriction(alone));
    EXPECT_TRUE(alone.NoSettingTabs);
    EXPECT_EQ(alone.OutputFolder, L"C:\\Out");

    EXPECT_EQ(load(R"({"Administrator": {"NoSettingTabs": 1}})"), user_);
    EXPECT_FALSE(settings_.restriction().NoSettingTabs);
    EXPECT_TRUE(settings_.restriction().OutputFolder.empty());  // nothing is left of the load before
    EXPECT_EQ(load(R"({"Administrator": []})"), user_);
}

TEST_F(PrintSettingsAdmin, OfTheAdministratorsSettingOnlyCommentsOutliveTheUsers) {
    ps::PrintSettings first;
    first.summary()->Title = L"first";
    first->PSComment = {{1, L"first"}, {7, L"first"}};
    ASSERT_TRUE(first.Save(folder_.file(L"first.ps4")));
    std::string path;
    for (const wchar_t unit : folder_.file(L"first.ps4"))
        path += unit == L'\\' ? std::string("\\\\") : std::string(1, static_cast<char>(unit));

    ps::PrintSettings expected = user_;
    expected->PSComment = {{1, L"user"}, {7, L"first"}};
    EXPECT_EQ(load(R"({"Administrator": {"PSFile": ")" + path + R"("}})"), expected);

    settings_ = {};
    EXPECT_EQ(load(R"({"Administrator": {"PSFile": "C:\\no such file.ps4"}})"), user_);
}

TEST_F(PrintSettingsAdmin, UsersFolderLiftsNothingAndNoUserIsBelievedForAnother) {
    constexpr wchar_t kKey[] = L"SOFTWARE\\Corvanta\\Vantrix\\8.0";
    const UserRegistry users;
    const TempFolder other;
    other.write(L"administrator.ps4a",
                "\xEF\xBB\xBF"
                R"({"Summary": {"Title": "other", "Author": "other"},
                "Administrator": {"PDFFileName": "other.pdf", "OutputFolder": "C:\\other"}})");
    const std::string forced =
        R"({"Summary": {"Title": "machine"}, "Administrator": {"OutputFolder": "C:\\machine"}})";
    struct {
        const char* label;
        std::wstring users_folder;
        bool for_another;
        const wchar_t *title, *author, *pdf;
    } const rows[] = {{"the machine's alone", L"", false, L"machine", L"", L""},
                      {"a folder of the user's", other.path(), false, L"machine", L"other", L"other.pdf"},
                      {"the same folder", folder_.path(), false, L"machine", L"", L""},
                      {"no full path", L"Settings", false, L"machine", L"", L""},
                      {"another user's", other.path() + L"\\", true, L"machine", L"", L""}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        users.set_text(kKey, L"PdfDllPath", row.users_folder);
        if (row.for_another)
            ImpersonateSelf(SecurityImpersonation);
        EXPECT_TRUE(load(forced));
        const std::wstring trusted = qk::trusted_install_folder();
        RevertToSelf();
        EXPECT_EQ(settings_.summary()->Title, row.title);
        EXPECT_EQ(settings_.summary()->Author, row.author);
        EXPECT_EQ(settings_.restriction().OutputFolder, L"C:\\machine");
        EXPECT_EQ(settings_.restriction().PDFFileName, row.pdf);
        EXPECT_EQ(trusted == folder_.path() + L"\\", row.users_folder != other.path());
    }
    registry_.set_text(kKey, L"PdfDllPath", L"relative\\");
    users.set_text(kKey, L"PdfDllPath", L"");
    EXPECT_EQ(qk::install_folder() + qk::machine_install_folder(), L"");
}

TEST_F(PrintSettingsAdmin, AFileThatCannotBeReadFailsEveryLoad) {
    for (const char* forced : {"", "{", "[]", "not JSON", R"({"General": 5})", R"({"PSComment": 5})"})
        EXPECT_FALSE(load(forced)) << forced;

    admin::Restriction restriction;
    restriction.PDFFileName = L"before";
    folder_.write(L"administrator.ps4a", "{}");  // no byte-order mark
    EXPECT_FALSE(settings_.Load(user_path_));
    EXPECT_FALSE(admin::load_restriction(restriction));
    EXPECT_EQ(restriction.PDFFileName, L"before");

    const std::wstring path = folder_.write(L"administrator.ps4a", "\xEF\xBB\xBF{}");
    const HANDLE owner = CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_FALSE(settings_.Load(user_path_));
    EXPECT_FALSE(admin::load_restriction(restriction));
    CloseHandle(owner);
    EXPECT_TRUE(settings_.Load(user_path_));
    EXPECT_FALSE(settings_.Load(folder_.file(L"missing.ps4")));
    EXPECT_FALSE(settings_.Load(folder_.path()));
}
