#include "companions/leftovers.h"

#include <cwchar>

#include "common/qk/handle.h"
#include "companions/system_texts.h"

namespace companions {

void delete_leftovers(const std::wstring& pattern, const IsLeft& is_left, const IsLeft& is_inside) {
    const bool wants_folders = static_cast<bool>(is_inside);
    const std::wstring place = folder_part(pattern);
    WIN32_FIND_DATAW found = {};
    const qk::FindObj search(FindFirstFileW(pattern.c_str(), &found));
    for (bool more = static_cast<bool>(search); more; more = FindNextFileW(search.get(), &found) != FALSE) {
        const bool is_folder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 || is_folder != wants_folders ||
            !is_left(found.cFileName))
            continue;
        const std::wstring path = place + found.cFileName;
        if (!is_folder) {
            DeleteFileW(path.c_str());
            continue;
        }
        delete_leftovers(path + L"\\*", is_inside);
        RemoveDirectoryW(path.c_str());
    }
}

std::optional<DWORD> find_process(std::wstring_view name, std::wstring_view start, wchar_t end) {
    if (!name.starts_with(start))
        return std::nullopt;
    name.remove_prefix(start.size());
    const std::wstring number(name.substr(0, name.find(end)));
    if (number.empty() || number.find_first_not_of(L"0123456789") != std::wstring::npos)
        return std::nullopt;
    return std::wcstoul(number.c_str(), nullptr, 10);
}

}  // namespace companions
