#include "UI_dll/PDFSettings/help.h"

#include <shellapi.h>

#include "UI_dll/PDFSettings/messages.h"
#include "common/qk/resource_dll.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "resources/ids.h"

namespace pdf_settings {

// A chapter is a file of its own, which leads to its place in the guide: the shell takes the path of a file
// everywhere, but loses the place behind it ("#general").
std::optional<std::wstring> find_chapter(const std::wstring& chapter) {
    const std::wstring page = L"Help\\" + chapter;
    if (auto own = qk::find_installed(page + L'.' + qk::language_code() + L".html"))
        return own;
    return qk::find_installed(page + L".html");
}

void show_help(HWND owner, const std::wstring& chapter) {
    TRACE("show_help");
    const auto path = find_chapter(chapter);
    if (!path)
        return;
    SHELLEXECUTEINFOW file = {sizeof file};
    file.fMask = SEE_MASK_NOASYNC | SEE_MASK_FLAG_NO_UI;
    file.hwnd = owner;
    file.lpFile = path->c_str();
    file.nShow = SW_SHOWNORMAL;
    const DWORD error = ShellExecuteExW(&file) ? DWORD{ERROR_SUCCESS} : GetLastError();
    if (error == ERROR_SUCCESS || error == ERROR_CANCELLED)  // asked for a program, the user has chosen none
        return;
    show_message(owner,
                 qk::format(dialog_text(IDS_HELP_FAILED).c_str(), path->c_str(), system_text(error).c_str()),
                 IDS_REFUSED, MB_OK | MB_ICONERROR);
}

}  // namespace pdf_settings
