// The built module's document sheets, shown by the stand-in service and ended at once.
#pragma once

#include <gtest/gtest.h>

#include <windows.h>

#include <prsht.h>

#include "UI_dll/ddi.h"
#include "companions/compstui/sheet.h"
#include "lib/devmode.h"
#include "support/installation.h"

class ModuleSheets {
public:
    ModuleSheets()
        : module_(LoadLibraryW(Installation::built(L"ZR_UI80.dll").c_str())),
          function_(qk::find_export<std::remove_pointer_t<PFNPROPSHEETUI>>(module_.get(),
                                                                           "DrvDocumentPropertySheets")) {}

    // Shows a sheet, presses the button once it stands, and tells whether it ended so.
    [[nodiscard]] bool open_and_close(int button) {
        DriverDevmode out = {};
        DocumentPropertyHeader header = {.cbSize = sizeof header, .pdmOut = &out.dm, .fMode = DM_COPY};
        pressed_ = button;
        const int presses = presses_;
        const UINT_PTR timer = SetTimer(nullptr, 0, 10, [](HWND, UINT, UINT_PTR, DWORD) {
            EnumThreadWindows(GetCurrentThreadId(), &press, 0);
        });
        DWORD result = 99;
        const bool shown =
            compstui::show_sheet(nullptr, function_, reinterpret_cast<LPARAM>(&header), &result) >= 0;
        KillTimer(nullptr, timer);
        return shown && presses_ > presses && result == (button == PSBTN_OK ? CPSUI_OK : CPSUI_CANCEL);
    }

private:
    static BOOL CALLBACK press(HWND window, LPARAM) {
        if (SendMessageW(window, PSM_GETCURRENTPAGEHWND, 0, 0)) {
            ++presses_;
            PostMessageW(window, PSM_PRESSBUTTON, static_cast<WPARAM>(pressed_), 0);
        }
        return TRUE;
    }

    static inline int pressed_ = 0, presses_ = 0;
    qk::DLL module_;
    PFNPROPSHEETUI function_;
};
