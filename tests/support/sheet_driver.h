// Shows the settings dialog on the test's thread and drives it by messages. A script runs inside the modal
// loop, as a timer's callback, once the sheet stands with all its pages; what the script leaves open is
// cancelled.
#pragma once

#include <gtest/gtest.h>

#include <cderr.h>
#include <commctrl.h>
#include <commdlg.h>

#include <source_location>

#include "UI_dll/PDFSettings/dialog_state.h"
#include "UI_dll/PDFSettings/edit/edit_sheet.h"
#include "UI_dll/PDFSettings/pages/exchange.h"
#include "UI_dll/PDFSettings/edit/page_table.h"
#include "UI_dll/PDFSettings/messages.h"
#include "UI_dll/PDFSettings/pages/page_pdf_version_rules.h"
#include "UI_dll/plotui.h"
#include "common/threadprop.h"
#include "resources/ids.h"
#include "support/installation.h"

// Runs `script` once `ready` holds, inside whatever message loop the thread is in by then.
class Later {
public:
    Later(std::function<bool()> ready, std::function<void()> script)
        : ready_(std::move(ready)), script_(std::move(script)), timer_(SetTimer(nullptr, 0, 10, &on_timer)) {
        waiting_[timer_] = this;
    }
    ~Later() {
        KillTimer(nullptr, timer_);
        EXPECT_EQ(waiting_.erase(timer_), 0u) << "the script did not run";
    }
    Later(Later&&) = delete;

private:
    static void CALLBACK on_timer(HWND, UINT, UINT_PTR timer, DWORD) {
        const auto self = waiting_.find(timer);
        if (self == waiting_.end() || !self->second->ready_())
            return;
        const auto script = self->second->script_;
        waiting_.erase(self);
        script();
    }

    static inline std::map<UINT_PTR, Later*> waiting_;
    const std::function<bool()> ready_;
    const std::function<void()> script_;
    const UINT_PTR timer_;
};

// While it lives the system's dialog for files gives `answer`, or has no room when that is empty or of
// several files where one is asked for.
struct FileDialog {
    static inline std::wstring answer;

    static BOOL choose(OPENFILENAMEW* dialog) {
        std::ranges::copy(answer + L'\0', dialog->lpstrFile);
        const bool is_one = answer.find(L'\0') == std::wstring::npos;
        return !answer.empty() && (is_one || (dialog->Flags & OFN_ALLOWMULTISELECT));
    }
    static DWORD error() { return FNERR_BUFFERTOOSMALL; }

    CallHook<decltype(GetProcAddress)> system{
        "GetProcAddress", [](auto original, HMODULE module, const char* name) -> FARPROC {
            const std::string_view wanted = name;
            return wanted == "GetOpenFileNameW" ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&choose))
                   : wanted == "CommDlgExtendedError"
                       ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&error))
                       : original(module, name);
        }};
};

// The edit sheet for one setting.
class EditSheet : public testing::Test {
protected:
    using PageIndex = pdf_settings::PageIndex;

    EditSheet() {
        EXPECT_TRUE(plotui::attach_process(GetModuleHandleW(nullptr)));
        pdf_settings::release_dialog_state();
        SetThreadProp(threadprop::kPrinter, reinterpret_cast<ULONG_PTR>(FakePrinter::handle()));
        setting()->PSName = L"Tested";
    }
    ~EditSheet() override {
        FreeThreadProp(threadprop::kPrinter);
        pdf_settings::release_dialog_state();
        plotui::detach_process(false);
    }

    // The setting that the sheet edits: set it before, look at it afterwards.
    static pdf_settings::Setting& setting() { return pdf_settings::edited_setting(); }

    // Shows the sheet for a new setting, or for the file at `path` with what setting() holds, and runs the
    // script. Returns when the sheet is closed.
    void show(const std::function<void()>& script, const std::wstring& path = {}) {
        auto& state = pdf_settings::dialog_state().file;
        state.path = path;
        state.saved = std::make_unique<pdf_settings::Setting>(setting());
        const Later later([] { return sheet() != nullptr; },
                          [&] {
                              script();
                              cancel();
                          });
        EXPECT_GE(pdf_settings::DoPropertySheet(nullptr, path.empty()), 0) << GetLastError();
    }

    // Null until every page is there.
    static HWND sheet() {
        for (const HWND page : pdf_settings::dialog_state().sheet.pages)
            if (!page)
                return nullptr;
        return GetParent(pdf_settings::dialog_state().sheet.pages[0]);
    }
    static HWND page(PageIndex index) { return pdf_settings::dialog_state().sheet.pages[index]; }
    static HWND control(PageIndex index, int id) { return GetDlgItem(page(index), id); }

    // Turns to a page, as its tab does; false when the current one does not let go.
    static bool go_to(PageIndex index) {
        SendMessageW(sheet(), PSM_SETCURSEL, index, 0);
        return is_in_front(index);
    }
    static bool is_in_front(PageIndex index) {
        const auto front = reinterpret_cast<HWND>(SendMessageW(sheet(), PSM_GETCURRENTPAGEHWND, 0, 0));
        return front && front == page(index);
    }
    // Leaves the page, which lets go when `message` is 0, and else stays with that message and the focus on
    // the control at fault.
    static void expect_check(PageIndex index, UINT message, int focus = 0, UINT icon = MB_ICONERROR,
                             const std::source_location& where = std::source_location::current()) {
        const testing::ScopedTrace trace(where.file_name(), static_cast<int>(where.line()), "");
        if (!is_in_front(index))  // a page in front would be asked whether it lets go
            go_to(index);
        Outbox::boxes.clear();
        const PageIndex other =
            index == pdf_settings::kGeneralPage ? pdf_settings::kColorPage : pdf_settings::kGeneralPage;
        EXPECT_EQ(go_to(other), message == 0);
        ASSERT_EQ(Outbox::boxes.size(), message ? 1u : 0u);
        if (message == 0)
            return;
        const auto& [text, caption, style] = Outbox::boxes[0];
        EXPECT_EQ(text, pdf_settings::dialog_text(message));
        EXPECT_TRUE(caption == pdf_settings::dialog_text(4396) && (style & MB_ICONMASK) == icon);
        const HWND wanted = control(index, focus);
        EXPECT_TRUE(GetFocus() == wanted || IsChild(wanted, GetFocus()));
    }
    static void press_ok() { SendMessageW(sheet(), PSM_PRESSBUTTON, PSBTN_OK, 0); }
    static void press_apply() { SendMessageW(sheet(), PSM_PRESSBUTTON, PSBTN_APPLYNOW, 0); }

    // Nothing when the sheet is on its way out: no message reaches it then.
    static void cancel() {
        if (sheet())
            PostMessageW(sheet(), PSM_PRESSBUTTON, PSBTN_CANCEL, 0);
    }
    // Whether the sheet stayed open for show() to cancel it.
    static bool stayed_open() { return pdf_settings::dialog_state().list.edit_cancelled; }

    // What a user does with a control, with the notifications that follow.
    static void click(PageIndex index, int id) { SendMessageW(control(index, id), BM_CLICK, 0, 0); }
    static void set_check(PageIndex index, int id, bool checked) {
        if (pdf_settings::is_checked(page(index), id) != checked)
            click(index, id);
    }
    static void type(PageIndex index, int id, const wchar_t* text) {
        SetWindowTextW(control(index, id), text);
        notify(index, id, EN_KILLFOCUS);
    }
    static void choose(PageIndex index, int id, int position) {
        SendMessageW(control(index, id), CB_SETCURSEL, static_cast<WPARAM>(position), 0);
        notify(index, id, CBN_SELCHANGE);
    }
    static void choose_version(uint32_t version) {
        const auto place = std::ranges::find(pdf_settings::kVersionOrder, version);
        choose(pdf_settings::kPDFVersionPage, IDC_PV_VERSION,
               static_cast<int>(place - pdf_settings::kVersionOrder.begin()));
    }
    static void notify(PageIndex index, int id, int notification) {
        SendMessageW(page(index), WM_COMMAND, MAKEWPARAM(id, notification),
                     reinterpret_cast<LPARAM>(control(index, id)));
    }
    static std::wstring text(PageIndex index, int id) { return pdf_settings::control_text(page(index), id); }
    static bool enabled(PageIndex index, int id) { return IsWindowEnabled(control(index, id)) != FALSE; }
    static bool checked(PageIndex index, int id) { return pdf_settings::is_checked(page(index), id); }
    // Shown on its page, whether or not that page is in front.
    static bool shown(PageIndex index, int id) {
        return (GetWindowLongPtrW(control(index, id), GWL_STYLE) & WS_VISIBLE) != 0;
    }

    // Gives a file an old time stamp, so that any writing shows.
    static void make_old(const std::wstring& path) {
        const FILETIME old = {0, kOld};
        EXPECT_TRUE(SetFileTime(hold(path, 0, FILE_WRITE_ATTRIBUTES).get(), nullptr, nullptr, &old));
    }
    static bool is_old(const std::wstring& path) {
        WIN32_FILE_ATTRIBUTE_DATA data = {};
        GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data);
        return data.ftLastWriteTime.dwHighDateTime == kOld;
    }

    static constexpr DWORD kOld = 0x01C00000;
    Installation here;
};
