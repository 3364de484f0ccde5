#include "UI_dll/PDFSettings/pages/common_dialogs.h"

#include <cderr.h>
#include <commdlg.h>

#include "common/qk/handle.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"

namespace pdf_settings {

namespace {

// Shows the dialog of that name; whether it was answered. If not, `error` says why: 0, or one of cderr.h.
template <class Function, class Record>
bool ask(const char* name, Record& record, DWORD* error = nullptr) {
    const qk::DLL library(LoadLibraryExW(L"comdlg32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
    const auto function = library ? qk::find_export<Function>(library.get(), name) : nullptr;
    if (!function || function(&record))
        return function != nullptr;
    const auto last_error =
        error ? qk::find_export<decltype(CommDlgExtendedError)>(library.get(), "CommDlgExtendedError")
              : nullptr;
    if (last_error)
        *error = last_error();
    return false;
}

constexpr size_t kMostPathUnits = 32768;
constexpr size_t kMostChosenUnits = 1 << 18;  // some thousand names

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

// One path, or a folder and the names of files in it: a zero ends each text, and one more all of them.
std::vector<std::wstring> chosen_paths(const std::wstring& answer) {
    std::vector<std::wstring> texts;
    for (size_t at = 0; at < answer.size() && answer[at]; at += texts.back().size() + 1)
        texts.emplace_back(answer.c_str() + at);
    if (texts.size() < 2)
        return texts;
    const std::wstring folder = std::wstring(qk::without_trailing_backslashes(texts.front())) + L'\\';
    texts.erase(texts.begin());
    for (std::wstring& name : texts)
        if (!qk::is_full_path(name))  // as they are where the folder is a search's
            name.insert(0, folder);
    return texts;
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

ChosenFiles choose_files(HWND owner, const std::wstring& title, const std::wstring& filter) {
    TRACE("choose_files");
    std::wstring answer(kMostChosenUnits, L'\0');
    OPENFILENAMEW dialog =
        file_dialog(owner, title, filter, answer, OFN_FILEMUSTEXIST | OFN_ALLOWMULTISELECT);
    DWORD error = 0;
    if (!ask<decltype(GetOpenFileNameW)>("GetOpenFileNameW", dialog, &error))
        return {.too_many = error == FNERR_BUFFERTOOSMALL};
    return {.paths = chosen_paths(answer)};
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
