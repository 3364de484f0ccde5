// A folder of a test's own, removed with what is in it.
#pragma once

#include "common/qk/handle.h"
#include "support/prelude.h"

// A file held open as another program would, which lets others do as `share` says.
[[nodiscard]] inline qk::FileObj hold(const std::wstring& path, DWORD share = 0,
                                      DWORD access = GENERIC_READ) {
    return qk::FileObj(CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING, 0, nullptr));
}

// The bytes of a value, and of a text's units, as they lie in memory.
template <class T>
requires std::is_trivially_copyable_v<T>
[[nodiscard]] std::string raw_bytes(const T& value) {
    return {reinterpret_cast<const char*>(&value), sizeof value};
}
[[nodiscard]] inline std::string raw_bytes(std::wstring_view text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
}

class TempFolder {
public:
    TempFolder() {
        wchar_t temp[MAX_PATH + 1] = {};
        GetTempPathW(MAX_PATH, temp);
        const std::wstring name = temp + (L"zr_test_" + std::to_wstring(GetCurrentProcessId()) + L"_");
        // The first that is free: what the module looks up once in a process is there for every test.
        unsigned number = 0;
        do
            path_ = name + std::to_wstring(++number);
        while (!CreateDirectoryW(path_.c_str(), nullptr) && GetLastError() == ERROR_ALREADY_EXISTS);
    }
    ~TempFolder() {
        std::vector<std::wstring> entries = {path_};  // each folder before what is in it
        std::error_code error;
        for (std::filesystem::recursive_directory_iterator at(path_, error), end; !error && at != end;
             at.increment(error))
            entries.push_back(at->path());
        for (; !entries.empty(); entries.pop_back()) {
            SetFileAttributesW(entries.back().c_str(), FILE_ATTRIBUTE_NORMAL);
            if (!DeleteFileW(entries.back().c_str()))
                RemoveDirectoryW(entries.back().c_str());
        }
    }
    TempFolder(TempFolder&&) = delete;

    [[nodiscard]] const std::wstring& path() const { return path_; }  // no trailing backslash
    [[nodiscard]] std::wstring file(std::wstring_view name) const {
        return path_ + L"\\" + std::wstring(name);
    }

    // Writes a file of the folder and returns its path.
    std::wstring write(std::wstring_view name, std::string_view bytes) const {
        std::ofstream(std::filesystem::path(file(name)), std::ios::binary) << bytes;
        return file(name);
    }

    // The bytes of a file, or "<missing>".
    [[nodiscard]] static std::string read(const std::wstring& path) {
        std::ifstream file(std::filesystem::path(path), std::ios::binary);
        return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "<missing>";
    }

    // How many files and folders lie in it.
    [[nodiscard]] size_t count() const {
        return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(path_), {}));
    }

private:
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
    CurrentFolder(CurrentFolder&&) = delete;

private:
    wchar_t before_[MAX_PATH] = {};
};
