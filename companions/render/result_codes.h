// How a job can end in the renderer: the codes of the result record and what they tell a person.
#pragma once

#include <cstdint>
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

// One sentence, without the details of the case; empty for kDone.
[[nodiscard]] constexpr std::wstring_view message_of(ResultCode code) noexcept {
    switch (code) {
        case ResultCode::kDone:
            break;
        case ResultCode::kSettingUnreadable:
            return L"The print setting could not be read.";
        case ResultCode::kSpoolUnreadable:
            return L"The print data could not be read.";
        case ResultCode::kNoPages:
            return L"The document has no pages, so no PDF was made.";
        case ResultCode::kSpoolDamaged:
            return L"The print data is damaged, so no PDF was made.";
        case ResultCode::kTargetUnwritable:
            return L"The PDF file could not be written.";
        case ResultCode::kEngineMissing:
            return L"Ghostscript, which makes the PDF, was not found. Install it or name it in "
                   L"ZR_GHOSTSCRIPT.";
        case ResultCode::kEngineStopped:
            return L"Ghostscript stopped before the PDF was complete.";
        case ResultCode::kPasswordUnusable:
            return L"The setting's password holds characters that the PDF's encryption cannot take.";
        case ResultCode::kCannotJoin:
            return L"This renderer cannot add a document to one that is still open.";
        case ResultCode::kNoTarget:
            return L"The job names no PDF file.";
        case ResultCode::kStandardUnmet:
            return L"The document cannot be made the PDF/A or PDF/X that the setting asks for.";
        case ResultCode::kFontMissing:
            return L"A font could not be put into the PDF, so no PDF was made.";
        case ResultCode::kPdfUnreadable:
            return L"The PDF was made, but opening it again found it damaged, so it was not kept.";
        case ResultCode::kInternal:
            return L"The renderer failed unexpectedly.";
    }
    return {};
}

// What zr_render.exe returns to its caller.
enum ExitCode : int {
    kExitDone = 0,
    kExitFailed = 1,    // the result record says why
    kExitUsage = 2,     // wrong arguments; no record was touched
    kExitNoRecord = 3,  // there is no job on that thread
};

}  // namespace companions::render
