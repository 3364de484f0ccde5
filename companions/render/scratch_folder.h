// A folder for the files of one run.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "common/qk/handle.h"

namespace companions::render {

// The files of a run; passwords stand in the first three, and the fourth is the PDF before it is protected.
inline constexpr wchar_t kOptionsFile[] = L"options.txt";
inline constexpr wchar_t kPasswordFile[] = L"password.txt";
inline constexpr wchar_t kJobFile[] = L"job.json";
inline constexpr wchar_t kChangesFile[] = L"changes.json";
inline constexpr wchar_t kMetadataFile[] = L"metadata.xml";
inline constexpr wchar_t kBareFile[] = L"bare.pdf";
inline constexpr wchar_t kSpoolFile[] = L"spool.ps";            // prepared
inline constexpr wchar_t kProfileFile[] = L"default_cmyk.icc";  // as the engine asks for it
inline constexpr wchar_t kPrologueFile[] = L"prologue.ps";
inline constexpr wchar_t kEpilogueFile[] = L"epilogue.ps";
inline constexpr wchar_t kLogFile[] = L"engine.log";  // what a program says, the document's text among it
inline constexpr wchar_t kPidFile[] = L"engine.pid";
inline constexpr wchar_t kEnginesOwn[] = L"gs_";  // begins what the engine makes here for itself

// Made in the temporary folder, open to the current user only since passwords lie in it, and removed with all
// that it holds when this goes out of scope; after a run that was ended from outside, when the next one
// begins.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    // Without a trailing backslash; empty, with the last error of the attempt, when it could not be made.
    [[nodiscard]] const std::wstring& path() const noexcept { return path_; }

    // Writes a file into the folder: its full path, or empty with the last error when it could not be written
    // whole.
    [[nodiscard]] std::wstring write(std::wstring_view name, std::string_view bytes) const;

private:
    std::wstring path_;
};

// A file of the folder that is written piece by piece, some memory at a time however long it becomes.
class ScratchFile {
public:
    ScratchFile(const ScratchFolder& folder, std::wstring_view name);
    void add(std::string_view bytes);

    // The full path when all has been written; else the file is gone: empty, with the last error.
    [[nodiscard]] std::wstring finish();

private:
    void put(std::string_view bytes);

    std::wstring path_;
    qk::FileObj file_;
    DWORD error_;
    std::string waiting_;
};

}  // namespace companions::render
