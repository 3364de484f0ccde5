#include "companions/tessalo/dialogs.h"

#include <commdlg.h>
#include <objbase.h>
#include <shlobj.h>

#include <vector>

#include "common/qk/handle.h"
#include "common/qk/module.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "companions/language_text.h"

namespace companions {

namespace {

constexpr size_t kPathUnits = 1024;

// The shell's dialogs want a single-threaded apartment; a thread that has another one keeps it.
class Apartment {
public:
    Apartment() : ole_(qk::load_system_library(L"ole32.dll")) {
        auto* enter =
            ole_ ? qk::find_export<decltype(CoInitializeEx)>(ole_.get(), "CoInitializeEx") : nullptr;
        entered_ = enter && SUCCEEDED(enter(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE));
    }
    ~Apartment() {
        auto* leave =
            entered_ ? qk::find_export<decltype(CoUninitialize)>(ole_.get(), "CoUninitialize") : nullptr;
        if (leave)
            leave();
    }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;

private:
    qk::DLL ole_;
    bool entered_ = false;
};

int CALLBACK select_current(HWND window, UINT message, LPARAM, LPARAM current) noexcept {
    if (message == BFFM_INITIALIZED && *reinterpret_cast<const wchar_t*>(current) != L'\0')
        SendMessageW(window, BFFM_SETSELECTIONW, TRUE, current);
    return 0;
}

}  // namespace

std::optional<std::wstring> SystemSaveDialog::ask(const std::wstring& folder, const std::wstring& name,
                                                  bool confirm_overwrite) {
    // Loaded here and not with the library: a job that nobody watches has no use for it.
    const qk::DLL library = qk::load_system_library(L"comdlg32.dll");
    auto* save =
        library ? qk::find_export<decltype(GetSaveFileNameW)>(library.get(), "GetSaveFileNameW") : nullptr;
    if (!save)
        return std::nullopt;
    std::vector<wchar_t> path(kPathUnits);
    qk::copy_zero_padded(path.data(), path.size(), name);
    OPENFILENAMEW question = {};
    question.lStructSize = sizeof question;
    question.hwndOwner = GetActiveWindow();
    question.lpstrFilter = L"PDF (*.pdf)\0*.pdf\0";
    question.lpstrFile = path.data();
    question.nMaxFile = static_cast<DWORD>(path.size());
    question.lpstrInitialDir = folder.empty() ? nullptr : folder.c_str();
    question.lpstrDefExt = L"pdf";
    question.Flags = OFN_EXPLORER | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_PATHMUSTEXIST;
    if (confirm_overwrite)
        question.Flags |= OFN_OVERWRITEPROMPT;
    if (!save(&question))
        return std::nullopt;
    return std::wstring(path.data());
}

void SystemSaveDialog::refuse(const std::wstring& path, UINT reason) {
    const std::wstring text = path + L"\n\n" + language_text(reason);
    MessageBoxW(GetActiveWindow(), text.c_str(), qk::kProductName, MB_ICONEXCLAMATION | MB_SETFOREGROUND);
}

std::optional<std::wstring> browse_for_folder(const std::wstring& current) {
    const Apartment apartment;
    wchar_t name[MAX_PATH] = {};
    BROWSEINFOW question = {};
    question.hwndOwner = GetActiveWindow();
    question.pszDisplayName = name;
    question.lpszTitle = qk::kProductName;
    question.ulFlags = BIF_RETURNONLYFSDIRS | BIF_NEWDIALOGSTYLE;
    question.lpfn = select_current;
    question.lParam = reinterpret_cast<LPARAM>(current.c_str());
    PIDLIST_ABSOLUTE chosen = SHBrowseForFolderW(&question);
    if (!chosen)
        return std::nullopt;
    wchar_t path[MAX_PATH] = {};
    const bool has_path = SHGetPathFromIDListW(chosen, path);
    ILFree(chosen);
    return has_path ? std::optional<std::wstring>(path) : std::nullopt;
}

}  // namespace companions
