#include "UI_dll/PDFSettings/pages/common_dialogs.h"

#include <commdlg.h>

#include "common/qk/handle.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"

namespace pdf_settings {

namespace {

template <class Function, class Record>
bool ask(const char* name, Record& record) {
    const qk::DLL library(LoadLibraryExW(L"comdlg32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
    const auto function = library ? qk::find_export<Function>(library.get(), name) : nullptr;
    return function && function(&record);
}

}  // namespace

namespace {

constexpr size_t kMostPathUnits = 32768;

OPENFILENAMEW file_dialog(HWND owner, const std::wstring& title, const std::wstring& filter,
                          std::wstring& path, DWORD flags) {
    OPENFILENAMEW dialog = {sizeof dialog};
    dialog.hwndOwner = owner;
    dialog.lpstrFilter = filter.c_str();
    dialog.lpstrFile = path.data();
    dialog.nMaxFile = static_cast<DWORD>(path.size());
    dialog.lpstrTitle = title.c_str();
    dialog.Flags =
        flags | OFN_EXPLORER | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_DONTADDTORECENT;
    return dialog;
}

}  // namespace

std::optional<std::wstring> choose_new_file(HWND owner, const std::wstring& title, const std::wstring& filter,
                                            const wchar_t* extension, const std::wstring& name) {
    TRACE("choose_new_file");
    std::wstring path(kMostPathUnits, L'\0');
    qk::copy_zero_padded(path.data(), path.size(), name);
    OPENFILENAMEW dialog = file_dialog(owner, title, filter, path, 0);
    dialog.lpstrDefExt = extension;
    if (!ask<decltype(GetSaveFileNameW)>("GetSaveFileNameW", dialog))
        return std::nullopt;
    return std::wstring(path.c_str());
}

std::optional<std::wstring> choose_file(HWND owner, const std::wstring& title, const std::wstring& filter,
                                        const std::wstring& current) {
    TRACE("choose_file");
    std::wstring path(kMostPathUnits, L'\0');
    if (qk::is_file(current))  // the dialog does not open on a name that cannot be one
        qk::copy_zero_padded(path.data(), path.size(), current);
    OPENFILENAMEW dialog = file_dialog(owner, title, filter, path, OFN_FILEMUSTEXIST);
    if (!ask<decltype(GetOpenFileNameW)>("GetOpenFileNameW", dialog))
        return std::nullopt;
    return std::wstring(path.c_str());
}

std::optional<COLORREF> choose_colour(HWND owner, COLORREF current, std::array<COLORREF, 16>& custom) {
    TRACE("choose_colour");
    CHOOSECOLORW dialog = {sizeof dialog};
    dialog.hwndOwner = owner;
    dialog.rgbResult = current;
    dialog.lpCustColors = custom.data();
    dialog.Flags = CC_RGBINIT | CC_ANYCOLOR | CC_FULLOPEN;
    if (!ask<decltype(ChooseColorW)>("ChooseColorW", dialog))
        return std::nullopt;
    return dialog.rgbResult;
}

}  // namespace pdf_settings
