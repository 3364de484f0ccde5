// The user's guide behind every page, tooltips, and the room of pages in a larger font.
#include <shellapi.h>

#include "UI_dll/PDFSettings/list/settings_page.h"
#include "common/qk/resource_dll.h"
#include "support/sheet_driver.h"

namespace {

using namespace pdf_settings;

class Help : public EditSheet {
protected:
    Help() { ForceDirectories(here.folder.file(L"Help")); }
    std::wstring install(const std::wstring& page) { return here.folder.write(L"Help\\" + page, ""); }
    std::vector<std::wstring> opened;
    DWORD refusal = ERROR_SUCCESS;
    const CallHook<decltype(ShellExecuteExW)> shell{
        "ShellExecuteExW", [this](auto, SHELLEXECUTEINFOW* file) -> BOOL {
            opened.push_back(file->lpFile);
            return SetLastError(refusal), refusal == ERROR_SUCCESS;
        }};
};

TEST_F(Help, ButtonAndF1OpenTheChapterInTheLanguageOfTheTexts) {
    here.user.set_text(Installation::kKey, L"Language", L"ja");
    const std::pair<PageIndex, std::wstring> rows[] = {{kGeneralPage, install(L"general.html")},
                                                       {kColorPage, install(L"colour.ja.html")},
                                                       {kOpenActionPage, L""}};
    install(L"colour.html");
    show([&] {
        for (const auto& [index, path] : rows) {
            go_to(index);
            const HWND control = GetWindow(page(index), GW_CHILD);
            HELPINFO key = {sizeof key, HELPINFO_WINDOW, GetDlgCtrlID(control), control};
            SendMessageW(control, WM_HELP, 0, reinterpret_cast<LPARAM>(&key));  // as F1 does
            SendMessageW(GetDlgItem(sheet(), IDC_SHEET_HELP), BM_CLICK, 0, 0);
            EXPECT_EQ(std::exchange(opened, {}), std::vector<std::wstring>(path.empty() ? 0 : 2, path));
        }
    });
}

TEST_F(Help, ListPageHasItWhereItIsInstalledAndTellsWhatFails) {
    refusal = ERROR_NO_ASSOCIATION;
    for (const bool installed : {false, true}) {
        install(installed ? L"settings.html" : L"general.html");
        const HWND parent =
            CreateWindowW(L"STATIC", L"", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
        const HWND list = CreateDialogParamW(qk::resource_module(), MAKEINTRESOURCEW(IDD_SETTINGS), parent,
                                             &settings_page_proc, 0);
        const auto style = GetWindowLongPtrW(GetDlgItem(list, IDC_SETTINGS_HELP), GWL_STYLE);
        EXPECT_EQ((style & WS_VISIBLE) != 0, installed);
        SendMessageW(list, WM_HELP, 0, 0);
        DestroyWindow(parent);
        EXPECT_EQ(Outbox::boxes.size(), installed ? 1u : 0u);
    }
}

TEST_F(Help, PagesInALargerFontHaveRoomAndTheirTooltips) {
    plotui::detach_process(false);
    here.user.set_text(Installation::kKey, L"Language", L"ja");
    ASSERT_TRUE(plotui::attach_process(GetModuleHandleW(nullptr)));
    SetThreadProp(threadprop::kPrinter, reinterpret_cast<ULONG_PTR>(FakePrinter::handle()));
    LRESULT tools = 0;
    const auto count = [](HWND tips, LPARAM most) -> BOOL {
        wchar_t name[32] = {};
        GetClassNameW(tips, name, 32);
        if (auto& known = *reinterpret_cast<LRESULT*>(most); std::wstring_view(name) == TOOLTIPS_CLASSW)
            known = std::max(known, SendMessageW(tips, TTM_GETTOOLCOUNT, 0, 0));
        return TRUE;
    };
    show([&] {
        RECT wanted = {0, 0, PAGE_WIDTH, PAGE_HEIGHT}, room = {};
        MapDialogRect(page(kGeneralPage), &wanted);
        GetClientRect(page(kInfoPage), &room);
        EXPECT_TRUE(room.right >= wanted.right && room.bottom >= wanted.bottom);
        EnumThreadWindows(GetCurrentThreadId(), count, reinterpret_cast<LPARAM>(&tools));
    });
    EXPECT_EQ(tools, 32);  // thirty controls, and the boxes inside two of them
}

}  // namespace
