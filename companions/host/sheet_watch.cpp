#include "companions/host/sheet_watch.h"

#include <commctrl.h>

#include <string_view>

namespace host {

namespace {

constexpr wchar_t kDialogClass[] = L"#32770";
constexpr size_t kMostUnits = 260;

thread_local SheetWatch* watch = nullptr;

// The tab control of this thread's property sheet; null for any other window. A thread that closes its last
// window tries to activate another program's, and asks its hook about it.
HWND find_tabs(HWND window) noexcept {
    if (GetWindowThreadProcessId(window, nullptr) != GetCurrentThreadId())
        return nullptr;
    wchar_t name[16] = {};
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    return std::wstring_view(name) == kDialogClass ? FindWindowExW(window, nullptr, WC_TABCONTROLW, nullptr)
                                                   : nullptr;
}

std::wstring tab_text(HWND tabs, WPARAM index) {
    wchar_t text[kMostUnits] = {};
    TCITEMW item = {};
    item.mask = TCIF_TEXT;
    item.pszText = text;
    item.cchTextMax = static_cast<int>(std::size(text));
    SendMessageW(tabs, TCM_GETITEMW, index, reinterpret_cast<LPARAM>(&item));
    return text;
}

}  // namespace

SheetWatch::SheetWatch(std::optional<int> button) noexcept
    : button_(button), hook_(SetWindowsHookExW(WH_CBT, &SheetWatch::hook, nullptr, GetCurrentThreadId())) {
    watch = this;
}

SheetWatch::~SheetWatch() {
    UnhookWindowsHookEx(hook_);
    watch = nullptr;
}

LRESULT CALLBACK SheetWatch::hook(int code, WPARAM wparam, LPARAM lparam) noexcept {
    const auto window = reinterpret_cast<HWND>(wparam);
    try {
        if (code == HCBT_ACTIVATE && watch->button_ && find_tabs(window))
            PostMessageW(window, PSM_PRESSBUTTON, static_cast<WPARAM>(*watch->button_), 0);
        else if (code == HCBT_DESTROYWND && find_tabs(window))
            watch->see(window);
    } catch (...) {  // no memory for the texts: the sheet is not reported
    }
    return CallNextHookEx(nullptr, code, wparam, lparam);
}

void SheetWatch::see(HWND sheet) {
    SeenSheet seen;
    seen.title.resize(kMostUnits);
    seen.title.resize(static_cast<size_t>(GetWindowTextW(sheet, seen.title.data(), int{kMostUnits})));
    const HWND tabs = find_tabs(sheet);
    const auto count = static_cast<WPARAM>(SendMessageW(tabs, TCM_GETITEMCOUNT, 0, 0));
    for (WPARAM at = 0; at < count; ++at)
        seen.pages.push_back(tab_text(tabs, at));
    sheets_.push_back(std::move(seen));
}

}  // namespace host
