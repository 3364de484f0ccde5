// The user's guide behind every page, and the room of pages in a larger font.
#include <shellapi.h>

#include "support/sheet_driver.h"

namespace {

using namespace pdf_settings;

class Help : public EditSheet {
protected:
    Help() { ForceDirectories(here.folder.file(L"Help")); }
    std::wstring install(const std::wstring& page) { return here.folder.write(L"Help\\" + page, ""); }
    std::vector<std::wstring> opened;
    const CallHook<decltype(ShellExecuteExW)> shell{
        "ShellExecuteExW",
        [this](auto, SHELLEXECUTEINFOW* file) -> BOOL { return opened.push_back(file->lpFile), TRUE; }};
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

TEST_F(Help, PagesInALargerFontHaveRoom) {
    plotui::detach_process(false);
    here.user.set_text(Installation::kKey, L"Language", L"ja");
    ASSERT_TRUE(plotui::attach_process(GetModuleHandleW(nullptr)));
    SetThreadProp(threadprop::kPrinter, reinterpret_cast<ULONG_PTR>(FakePrinter::handle()));
    show([] {
        RECT wanted = {0, 0, PAGE_WIDTH, PAGE_HEIGHT}, room = {};
        MapDialogRect(page(kGeneralPage), &wanted);
        GetClientRect(page(kInfoPage), &room);
        EXPECT_TRUE(room.right >= wanted.right && room.bottom >= wanted.bottom);
    });
}

}  // namespace
