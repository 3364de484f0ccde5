// The table of installed fonts, and the page that lists them.

#include "UI_dll/PDFSettings/pages/font_states.h"
#include "common/qk/gdi_handle.h"
#include "support/sheet_driver.h"

namespace {

using namespace pdf_settings;

TEST(FontStates, LicenceBitsGiveTheLeastStrictPermission) {
    using enum Embedding;
    const std::pair<uint16_t, Embedding> rows[] = {{0, kInstallable},  {2, kRestricted},
                                                   {0xE, kEditable},   {6, kPreview},
                                                   {0x108, kEditable}, {0x208, kRestricted}};
    for (const auto& [bits, wanted] : rows)
        EXPECT_EQ(embedding_of(bits), wanted) << bits;
}

// What another function of the system says of each font.
TEST(FontStates, TableHoldsEachFontOnceWithItsOwnLicence) {
    build_font_states();
    const auto fonts = font_states();
    std::set<std::wstring> names;
    size_t compared = 0;
    const qk::DeviceContext dc(CreateCompatibleDC(nullptr));
    for (const FontState& font : fonts) {
        EXPECT_TRUE(names.insert(font.name).second && find_embedding(font.name) == font.embedding)
            << qk::to_utf8(font.name);
        const qk::Font handle(
            CreateFontW(0, 0, 0, 0, 0, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, font.name.c_str()));
        const qk::Selected selected(dc.get(), handle.get());
        std::vector<char> bytes(GetOutlineTextMetricsW(dc.get(), 0, nullptr));
        auto* metrics = reinterpret_cast<OUTLINETEXTMETRICW*>(bytes.data());
        if (bytes.empty() || !GetOutlineTextMetricsW(dc.get(), static_cast<UINT>(bytes.size()), metrics))
            continue;
        ++compared;
        EXPECT_EQ(font.embedding, embedding_of(static_cast<uint16_t>(metrics->otmfsType)))
            << qk::to_utf8(font.name);
    }
    EXPECT_GT(compared, 0u);
    EXPECT_EQ(find_embedding(L"No Such Font"), Embedding::kNotInstalled);
    release_dialog_state();
}

struct FontPage : EditSheet {
    static HWND list(int id) { return control(kFontPage, id); }
    static int count(int id) { return ListView_GetItemCount(list(id)); }
    static void pick(int id, int row) {
        ListView_SetItemState(list(id), row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    }
    static std::wstring cell(int id, int row, int column) {
        wchar_t cell_text[100] = {};
        ListView_GetItemText(list(id), row, column, cell_text, 100);
        return cell_text;
    }
};

TEST_F(FontPage, FontsAreFoundAddedAndRemoved) {
    setting().font()->Fonts = {L"From elsewhere"};
    show([] {
        EXPECT_EQ(cell(IDC_FONT_LISTED, 0, 1), dialog_text(IDS_FONT_ABSENT));
        EXPECT_EQ(count(IDC_FONT_INSTALLED), static_cast<int>(font_states().size()));
        const FontState last = font_states().back();
        type(kFontPage, IDC_FONT_FIND, last.name.c_str());
        ASSERT_GE(count(IDC_FONT_INSTALLED), 1);
        EXPECT_FALSE(enabled(kFontPage, IDC_FONT_ADD));
        const std::wstring part = last.name.substr(1);
        type(kFontPage, IDC_FONT_FIND, part.c_str());
        pick(IDC_FONT_INSTALLED, count(IDC_FONT_INSTALLED) - 1);
        click(kFontPage, IDC_FONT_ADD);
        ASSERT_EQ(count(IDC_FONT_LISTED), 2);
        EXPECT_EQ(cell(IDC_FONT_LISTED, 1, 0), last.name);
        EXPECT_EQ(cell(IDC_FONT_LISTED, 1, 1),
                  dialog_text(IDS_FONT_INSTALLABLE + static_cast<UINT>(last.embedding)));
        pick(IDC_FONT_LISTED, 0);
        click(kFontPage, IDC_FONT_REMOVE);
        for (const std::wstring& name : {L' ' + part, part, std::wstring(L"no such")}) {
            type(kFontPage, IDC_FONT_FIND, name.c_str());
            click(kFontPage, IDC_FONT_ADD);  // it may be another computer's
        }
        EXPECT_EQ(count(IDC_FONT_INSTALLED), 0);
        const HWND find = control(kFontPage, IDC_FONT_FIND);
        MSG enter = {find, WM_KEYDOWN, VK_RETURN, 0, 0, {}};
        EXPECT_TRUE(SendMessageW(find, WM_GETDLGCODE, VK_RETURN, reinterpret_cast<LPARAM>(&enter)) &
                    DLGC_WANTMESSAGE);
        type(kFontPage, IDC_FONT_FIND, L"");
        SendMessageW(find, WM_KEYDOWN, VK_RETURN, 0);
        EXPECT_GE(ListView_GetNextItem(control(kFontPage, IDC_FONT_INSTALLED), -1, LVNI_SELECTED), 0);
        press_apply();
    });
    const std::wstring last = font_states().back().name;
    EXPECT_EQ(setting().font()->Fonts, (std::vector<std::wstring>{last, last.substr(1), L"no such"}));
}

}  // namespace
