// The page that lists the settings, on a parent of its own, over an installation with a setting in each
// folder and two of the user's.
#pragma once

#include "UI_dll/PDFSettings/list/setting_rows.h"
#include "UI_dll/PDFSettings/list/settings_page.h"
#include "common/rwPDFSet_functions.h"
#include "support/sheet_driver.h"

struct SettingsPage : EditSheet {
    static constexpr wchar_t kOwnFolder[] = L"Roaming\\Corvanta\\Vantrix\\8.0\\CustomSettings\\";

    SettingsPage() {
        SetThreadProp(threadprop::kPrinterName, reinterpret_cast<ULONG_PTR>(&here.printer.name));
        ForceDirectories(here.folder.file(kOwnFolder));
        add(L"Settings\\standard.ps4", L"Standard");
        add(L"CustomSettings\\office.ps4", L"Office");
        add_own(L"zeta");
        add_own(L"alpha");
    }
    ~SettingsPage() override {
        close();
        FreeThreadProp(threadprop::kPrinterName);
    }

    void add(const std::wstring& path, const std::wstring& name) const {
        pdf_settings::Setting setting;
        setting->PSName = name;
        EXPECT_TRUE(setting.Save(here.folder.file(path)));
    }
    void add_own(const std::wstring& name) const { add(kOwnFolder + name + L".ps4", name); }
    // Another's file of the user's.
    void write_own(const std::wstring& name, const char* bytes) const {
        here.folder.write(kOwnFolder + name + L".ps4", bytes);
    }
    [[nodiscard]] std::wstring own(const std::wstring& name) const {
        return here.folder.file(kOwnFolder) + name + L".ps4";
    }

    // The page, which is made when it is first looked at, and again after close().
    HWND window() const {
        if (!parent)
            open();
        return made;
    }
    void open() const {
        parent =
            CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 600, 500, nullptr, nullptr, nullptr, nullptr);
        made = CreateDialogParamW(qk::resource_module(), MAKEINTRESOURCEW(IDD_SETTINGS), parent,
                                  &settings_page_proc, 0);
        EXPECT_TRUE(made);
    }
    void close() {
        if (parent)
            DestroyWindow(std::exchange(parent, nullptr));
    }

    [[nodiscard]] HWND list() const { return GetDlgItem(window(), IDC_SETTINGS_LIST); }
    [[nodiscard]] std::wstring rows() const {  // "name name [selected] name"
        std::wstring all;
        for (int row = 0; row < ListView_GetItemCount(list()); ++row) {
            wchar_t text[200];
            ListView_GetItemText(list(), row, 0, text, 200);
            all += (row > 0 ? L" " : L"") +
                   (row == pdf_settings::selected_row(window()) ? L'[' + std::wstring(text) + L']' : text);
        }
        return all;
    }
    void select(int row) const {
        ListView_SetItemState(list(), row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    }
    [[nodiscard]] bool can_press(int button) const { return IsWindowEnabled(GetDlgItem(window(), button)); }
    void press(int button, int answer = IDOK) const {
        Outbox::answer = answer;
        SendMessageW(GetDlgItem(window(), button), BM_CLICK, 0, 0);
    }
    // Ends the sheet, and what the page says to it.
    LONG_PTR end(UINT code) const {
        const PSHNOTIFY notification = {{GetParent(window()), 0, code}, TRUE};
        SendMessageW(made, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&notification));
        return GetWindowLongPtrW(made, DWLP_MSGRESULT);
    }
    // Presses a button that opens the edit sheet, whose caption is asked for, and runs the script there.
    void in_sheet(int button, const std::function<void()>& script, const wchar_t* caption = nullptr) const {
        const auto act = [&] {
            EXPECT_EQ(caption ? pdf_settings::window_text(sheet()) : L"", caption ? caption : L"");
            script();
            cancel();
        };
        const Later later([] { return sheet() != nullptr; }, act);
        press(button, IDYES);
    }
    static std::wstring name() { return text(pdf_settings::kGeneralPage, IDC_NAME); }
    static void name_it(const wchar_t* name) {
        SetWindowTextW(control(pdf_settings::kGeneralPage, IDC_NAME), name);
        press_ok();
    }
    [[nodiscard]] std::wstring printers_setting() const { return GetSettingFileName(here.printer.name); }

    mutable HWND parent = nullptr, made = nullptr;  // the page and its parent
};
