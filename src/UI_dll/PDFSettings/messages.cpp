#include "UI_dll/PDFSettings/messages.h"

#include "UI_dll/PDFSettings/dialog_state.h"
#include "common/qk/process.h"
#include "common/qk/resource_dll.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

int show_box(HWND owner, const wchar_t* text, const wchar_t* caption, UINT style) noexcept {
    if (qk::has_visible_station())
        return MessageBoxW(owner, text, caption, style);
    qk::trace::debug_output(L"%s: %s", caption, text);
    return 0;
}

}  // namespace

std::wstring dialog_text(UINT id) {
    const HMODULE library = qk::resource_module();
    // Strings lie in blocks of sixteen; an id whose block is there has an empty text, at least.
    if (!library || !FindResourceW(library, MAKEINTRESOURCEW(id / 16 + 1), RT_STRING))
        return qk::format(L"(no id{%u})", id);
    if (auto text = qk::find_string(library, id))
        return *std::move(text);
    return qk::format(L"(no string{%u})", id);
}

int show_message(HWND owner, const std::wstring& text, UINT caption_id, UINT style) {
    return show_box(owner, text.c_str(), dialog_text(caption_id).c_str(), style);
}

void tell_failure(HWND owner) noexcept {
    TRACE("err:tell_failure");
    const HMODULE library = qk::resource_module();
    wchar_t text[600] = {}, caption[100] = {};
    LoadStringW(library, IDS_FAILED, text, static_cast<int>(std::size(text)));
    LoadStringW(library, IDS_REFUSED, caption, static_cast<int>(std::size(caption)));
    show_box(owner, text, caption, MB_OK | MB_ICONERROR);
}

bool refuse(HWND page, int control, UINT text_id, UINT icon) {
    return refuse(page, control, dialog_text(text_id), icon);
}

bool refuse(HWND page, int control, const std::wstring& text, UINT icon) {
    TRACE_F(L"refused: %d", control);
    if (auto* findings = dialog_state().sheet.findings) {
        findings->push_back({page, control, text});
        return true;
    }
    show_message(page, text, IDS_REFUSED, MB_OK | icon);
    if (const HWND window = GetDlgItem(page, control)) {
        SetFocus(window);
        SendMessageW(window, EM_SETSEL, 0, -1);
    }
    return false;
}

std::wstring system_text(DWORD error) {
    wchar_t text[400] = {};
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                        error, 0, text, static_cast<DWORD>(std::size(text)), nullptr);
    return length > 0 ? std::wstring(text, length) : qk::format(L"%lu", error);
}

}  // namespace pdf_settings
