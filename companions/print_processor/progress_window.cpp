#include "companions/print_processor/progress_window.h"

#include <algorithm>
#include <iterator>

#include "common/qk/guard.h"
#include "common/qk/module.h"
#include "common/qk/resource_dll.h"
#include "common/qk/text.h"
#include "companions/print_processor/resource.h"

namespace processor {

namespace {

constexpr struct {
    const wchar_t* code;
    UINT texts;
} kLanguages[] = {{L"en", IDS_EN}, {L"ja", IDS_JA}, {L"kr", IDS_KR}, {L"chs", IDS_CHS}, {L"cht", IDS_CHT}};

UINT language_texts() {
    const std::wstring code = qk::language_code();
    const auto* row =
        std::ranges::find_if(kLanguages, [&code](const auto& language) { return code == language.code; });
    return row == std::end(kLanguages) ? IDS_EN : row->texts;
}

}  // namespace

ProgressWindow::ProgressWindow(const std::wstring& document) : language_(language_texts()) {
    window_ = CreateDialogParamW(qk::module_instance(), MAKEINTRESOURCEW(IDD_PROGRESS), GetActiveWindow(),
                                 &procedure, reinterpret_cast<LPARAM>(this));
    if (!window_)
        return;
    SetDlgItemTextW(window_, IDC_DOCUMENT, document.c_str());
    SetDlgItemTextW(window_, IDC_STATE, text(TEXT_BEGUN).c_str());
    SetDlgItemTextW(window_, IDCANCEL, text(TEXT_CANCEL).c_str());
    ShowWindow(window_, SW_SHOW);
}

ProgressWindow::~ProgressWindow() {
    if (window_)
        DestroyWindow(window_);
}

void ProgressWindow::show_page(unsigned page, unsigned pages) {
    if (!window_ || cancelled_)
        return;
    const std::wstring pattern = text(pages >= page ? TEXT_PAGE_OF : TEXT_PAGE);
    SetDlgItemTextW(window_, IDC_STATE, qk::format(pattern.c_str(), page, pages).c_str());
}

void ProgressWindow::handle_messages() {
    MSG message = {};
    while (window_ && PeekMessageW(&message, window_, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));  // the program's
            return;
        }
        // Enter has ended the dialog before this one, perhaps twice; it is not to end the job.
        if (message.message == WM_KEYDOWN && message.wParam == VK_RETURN)
            continue;
        IsDialogMessageW(window_, &message);
    }
}

INT_PTR CALLBACK ProgressWindow::procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) noexcept {
    if (message == WM_INITDIALOG)
        SetWindowLongPtrW(window, DWLP_USER, lparam);
    auto* self = reinterpret_cast<ProgressWindow*>(GetWindowLongPtrW(window, DWLP_USER));
    if (message == WM_COMMAND && LOWORD(wparam) == IDCANCEL && self)
        self->cancel();
    return message == WM_INITDIALOG || message == WM_COMMAND;
}

void ProgressWindow::cancel() noexcept {
    cancelled_ = qk::guarded<bool>(true, [this] {
        EnableWindow(GetDlgItem(window_, IDCANCEL), FALSE);
        SetDlgItemTextW(window_, IDC_STATE, text(TEXT_CANCELLING).c_str());
        return true;
    });
}

std::wstring ProgressWindow::text(UINT which) const {
    return qk::find_string(qk::module_instance(), language_ + which).value_or(std::wstring());
}

}  // namespace processor
