// A folder of a test's own, removed with what is in it.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

class TempFolder {
public:
    TempFolder() {
        static std::atomic<unsigned> count = 0;
        wchar_t temp[MAX_PATH + 1] = {};
        GetTempPathW(MAX_PATH, temp);
        path_ =
            temp + (L"zr_test_" + std::to_wstring(GetCurrentProcessId()) + L"_" + std::to_wstring(++count));
        CreateDirectoryW(path_.c_str(), nullptr);
    }
    ~TempFolder() { remove(path_); }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    [[nodiscard]] const std::wstring& path() const { return path_; }  // no trailing backslash
    [[nodiscard]] std::wstring file(std::wstring_view name) const {
        return path_ + L"\\" + std::wstring(name);
    }

    // Writes a file of the folder and returns its path.
    std::wstring write(std::wstring_view name, std::string_view bytes) const {
        const std::wstring target = file(name);
        const HANDLE handle =
            CreateFileW(target.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        DWORD written = 0;
        WriteFile(handle, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
        CloseHandle(handle);
        return target;
    }

    // The bytes of a file, or "<missing>".
    [[nodiscard]] static std::string read(const std::wstring& path) {
        const HANDLE handle =
            CreateFileW(path.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr);
        if (handle == INVALID_HANDLE_VALUE)
            return "<missing>";
        std::string bytes(GetFileSize(handle, nullptr), '\0');
        DWORD got = 0;
        ReadFile(handle, bytes.data(), static_cast<DWORD>(bytes.size()), &got, nullptr);
        CloseHandle(handle);
        bytes.resize(got);
        return bytes;
    }

    // How many files and folders lie in it.
    [[nodiscard]] size_t count() const {
        size_t entries = 0;
        for_each(path_, [&](const std::wstring&, bool) { ++entries; });
        return entries;
    }

private:
    static constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

    template <class Visit>
    static void for_each(const std::wstring& folder, Visit visit) {
        WIN32_FIND_DATAW found;
        const HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &found);
        if (search == INVALID_HANDLE_VALUE)
            return;
        do {
            const std::wstring_view name = found.cFileName;
            if (name != L"." && name != L"..")
                visit(folder + L"\\" + found.cFileName,
                      (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0);
        } while (FindNextFileW(search, &found));
        FindClose(search);
    }

    static void remove(const std::wstring& folder) {
        for_each(folder, [](const std::wstring& entry, bool is_folder) {
            SetFileAttributesW(entry.c_str(), FILE_ATTRIBUTE_NORMAL);
            is_folder ? remove(entry) : static_cast<void>(DeleteFileW(entry.c_str()));
        });
        RemoveDirectoryW(folder.c_str());
    }

    std::wstring path_;
};

// The program's current folder while it lives.
class CurrentFolder {
public:
    explicit CurrentFolder(const std::wstring& folder) {
        GetCurrentDirectoryW(static_cast<DWORD>(std::size(before_)), before_);
        SetCurrentDirectoryW(folder.c_str());
    }
    ~CurrentFolder() { SetCurrentDirectoryW(before_); }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;

private:
    wchar_t before_[MAX_PATH] = {};
};
