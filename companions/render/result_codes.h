// How a job can end in the renderer: the codes of the result record and what they tell a person.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace companions::render {

// Numbers are part of the interface: they go into notifications and error logs and are never given anew.
enum class ResultCode : uint32_t {
    kDone = 0,
    kSettingUnreadable = 1001,
    kSpoolUnreadable = 1002,  // missing or locked
    kNoPages = 1003,
    kSpoolDamaged = 1004,
    kTargetUnwritable = 1005,
    kEngineMissing = 1006,
    kEngineStopped = 1007,  // crashed, killed or out of time
    kPasswordUnusable = 1008,
    kCannotJoin = 1009,
    kNoTarget = 1010,
    kInternal = 1011,
    kPdfUnreadable = 1012,
    kStandardUnmet = 1013,
    kFontMissing = 1014,
};

// What each tells, in one sentence, without the details of the case.
inline constexpr struct {
    ResultCode code;
    std::wstring_view text;
} kMessages[] = {
    {ResultCode::kSettingUnreadable, L"The print setting could not be read."},
    {ResultCode::kSpoolUnreadable, L"The print data could not be read."},
    {ResultCode::kNoPages, L"The document has no pages, so no PDF was made."},
    {ResultCode::kSpoolDamaged, L"The print data is damaged, so no PDF was made."},
    {ResultCode::kTargetUnwritable, L"The PDF file could not be written."},
    {ResultCode::kEngineMissing,
     L"Ghostscript, which makes the PDF, was not found. Install it or name it in ZR_GHOSTSCRIPT."},
    {ResultCode::kEngineStopped, L"Ghostscript stopped before the PDF was complete."},
    {ResultCode::kPasswordUnusable,
     L"The setting's password is too long for the PDF's encryption, or holds characters that it cannot "
     L"take."},
    {ResultCode::kCannotJoin, L"This renderer cannot add a document to one that is still open."},
    {ResultCode::kNoTarget, L"The job names no PDF file."},
    {ResultCode::kStandardUnmet,
     L"The document cannot be made the PDF/A or PDF/X that the setting asks for."},
    {ResultCode::kFontMissing, L"A font could not be put into the PDF, so no PDF was made."},
    {ResultCode::kInternal, L"The renderer failed unexpectedly."},
    {ResultCode::kPdfUnreadable,
     L"The PDF was made, but opening it again found it damaged, so it was not kept."},
};

// Thrown within the renderer; becomes the job's result record.
struct Failure {
    ResultCode code;
    uint32_t win32_error;
    std::wstring detail;  // a path, or what a program said; may be empty
};

// What zr_render.exe returns to its caller.
enum ExitCode : int {
    kExitDone = 0,
    kExitFailed = 1,    // the result record says why
    kExitUsage = 2,     // wrong arguments; no record was touched
    kExitNoRecord = 3,  // there is no job on that thread
};

}  // namespace companions::render
