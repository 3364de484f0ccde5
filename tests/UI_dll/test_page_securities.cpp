#include <gtest/gtest.h>

#include <cstdint>

#include "UI_dll/PDFSettings/pages/page_securities_rules.h"
#include "resources/ids.h"
#include "support/sheet_driver.h"

namespace {

using namespace pdf_settings;
using Fault = PasswordFault;

constexpr PageIndex kPage = kSecuritiesPage;

TEST(PasswordRules, FirstFaultCounts) {
    const std::wstring fits(127, L'a');
    const std::wstring accents(64, L'é');  // 128 bytes
    struct {
        uint32_t version;
        std::wstring open, permissions;
        bool needs_open, needs_permissions;
        std::optional<Fault> fault;
        bool is_open_new = true, is_permissions_new = true;
    } const rows[] = {
        {4, L"", L"", false, false, {}},
        {4, L"one", L"two", true, true, {}},
        {4, L"one", L"one", true, true, Fault::kSame},
        {4, L"one", L"one", false, false, Fault::kSame},
        {4, L"", L"", true, true, Fault::kNoOpen},
        {4, L"", L"", false, true, Fault::kNoPermissions},
        {4, L"a b", L"a\x7F\xFE!", true, true, Fault::kOpenCharacter},
        {0, L"a b", L"\xFF", true, true, Fault::kPermissionsCharacter},
        {12, L"a b", L"\x3042\xFF", true, true, {}},
        {4, fits, fits + L"b", true, true, Fault::kPermissionsTooLong},
        {4, accents, fits, true, true, Fault::kOpenTooLong},
        {12, L"a", std::wstring(42, L'\x3042'), true, true, {}},
        {12, L"a", std::wstring(43, L'\x3042'), true, true, Fault::kPermissionsTooLong},
        {5, L"one", L"one", true, true, {}},
        {11, L"", L"", true, true, {}},
        {4, L"a b", L"a b", true, true, {}, false, false},  // as the file has them
        {4, L"", fits + L"b", true, true, Fault::kNoOpen, true, false},
        {4, L"a b", L"c d", true, true, Fault::kOpenCharacter, true, false},
        {4, L"a", L"a", true, true, Fault::kSame, false, true},
    };
    for (const auto& row : rows)
        EXPECT_EQ(find_password_fault(row.version,
                                      {row.open, row.permissions, row.needs_open, row.needs_permissions,
                                       row.is_open_new, row.is_permissions_new}),
                  row.fault)
            << &row - rows;
}

class SecuritiesPage : public EditSheet {};

TEST_F(SecuritiesPage, OffersWhatTheVersionAllows) {
    struct {
        uint32_t version;
        bool low, protects;
    } const rows[] = {
        {0, true, true}, {1, false, true}, {12, false, true}, {5, false, false}, {11, false, false}};
    setting().security()->MasterPassword = L"master";
    show([&] {
        for (const auto& row : rows) {
            SCOPED_TRACE(row.version);
            // Not through the PDF version page's own check: a machine has no profiles.
            choose_version(row.version);
            notify(kPage, IDC_SEC_COPY, BN_CLICKED);
            for (const int id : {IDC_SEC_NO_PRINT, IDC_SEC_NO_MODIFY, IDC_SEC_NO_COPY, IDC_SEC_NO_ANNOTATE}) {
                EXPECT_EQ(shown(kPage, id), row.low) << id;
                EXPECT_EQ(enabled(kPage, id), row.protects) << id;
            }
            for (const int id : {IDC_SEC_COPY, IDC_SEC_READER, IDC_SEC_EDIT, IDC_SEC_EDIT_LABEL,
                                 IDC_SEC_PRINT, IDC_SEC_PRINT_LABEL}) {
                EXPECT_EQ(shown(kPage, id), !row.low) << id;
                EXPECT_EQ(enabled(kPage, id), row.protects) << id;
            }
            EXPECT_EQ(enabled(kPage, IDC_SEC_USE_OPEN), row.protects);
            EXPECT_EQ(enabled(kPage, IDC_SEC_USE_PERMISSIONS), row.protects);
        }
        choose_version(4);
        EXPECT_TRUE(go_to(kPage));  // looks at the version again
        EXPECT_TRUE(enabled(kPage, IDC_SEC_USE_OPEN));
        set_check(kPage, IDC_SEC_COPY, true);
        EXPECT_FALSE(enabled(kPage, IDC_SEC_READER));
    });
}

TEST_F(SecuritiesPage, PasswordGoesAndComesWithItsCheckBox) {
    setting().security()->UserPassword = L"open";
    show([] {
        EXPECT_TRUE(checked(kPage, IDC_SEC_USE_OPEN));
        EXPECT_FALSE(checked(kPage, IDC_SEC_USE_PERMISSIONS));
        click(kPage, IDC_SEC_USE_OPEN);
        EXPECT_EQ(text(kPage, IDC_SEC_OPEN_PASSWORD), L"");
        EXPECT_FALSE(enabled(kPage, IDC_SEC_OPEN_PASSWORD));
        click(kPage, IDC_SEC_USE_OPEN);
        EXPECT_EQ(text(kPage, IDC_SEC_OPEN_PASSWORD), L"open");
    });
}

TEST_F(SecuritiesPage, FaultyPasswordsKeepThePageOpen) {
    struct {
        const wchar_t *open, *permissions;
        UINT message, icon;
        int focus;
    } const rows[] = {
        {L"x", L"x", IDS_SEC_SAME_PASSWORDS, MB_ICONERROR, IDC_SEC_OPEN_PASSWORD},
        {L"", L"x", IDS_SEC_NO_OPEN_PASSWORD, MB_ICONEXCLAMATION, IDC_SEC_OPEN_PASSWORD},
        {L"x", L"", IDS_SEC_NO_PASSWORD, MB_ICONEXCLAMATION, IDC_SEC_PASSWORD},
        {L"x", L"y z", IDS_SEC_BAD_CHARACTER, MB_ICONERROR, IDC_SEC_PASSWORD},
        {L"y z", L"x", IDS_SEC_BAD_CHARACTER, MB_ICONERROR, IDC_SEC_OPEN_PASSWORD},
    };
    show([&] {
        EXPECT_TRUE(go_to(kPage));
        set_check(kPage, IDC_SEC_USE_OPEN, true);
        set_check(kPage, IDC_SEC_USE_PERMISSIONS, true);
        for (const auto& row : rows) {
            SCOPED_TRACE(row.message);
            type(kPage, IDC_SEC_OPEN_PASSWORD, row.open);
            type(kPage, IDC_SEC_PASSWORD, row.permissions);
            expect_check(kPage, row.message, row.focus);
            EXPECT_EQ(Outbox::boxes.back().style & MB_ICONMASK, row.icon);
        }
    });
}

}  // namespace
