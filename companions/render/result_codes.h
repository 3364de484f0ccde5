// How a job can end in the renderer: the codes of the result record and what they tell a person.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "resources/ids.h"

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

// What each tells, in one sentence of the language library, without the details of the case.
inline constexpr struct {
    ResultCode code;
    UINT text;
} kMessages[] = {
    {ResultCode::kSettingUnreadable, IDS_RENDER_SETTING_UNREADABLE},
    {ResultCode::kSpoolUnreadable, IDS_RENDER_SPOOL_UNREADABLE},
    {ResultCode::kNoPages, IDS_RENDER_NO_PAGES},
    {ResultCode::kSpoolDamaged, IDS_RENDER_SPOOL_DAMAGED},
    {ResultCode::kTargetUnwritable, IDS_RENDER_TARGET_UNWRITABLE},
    {ResultCode::kEngineMissing, IDS_RENDER_ENGINE_MISSING},
    {ResultCode::kEngineStopped, IDS_RENDER_ENGINE_STOPPED},
    {ResultCode::kPasswordUnusable, IDS_RENDER_PASSWORD_UNUSABLE},
    {ResultCode::kCannotJoin, IDS_RENDER_CANNOT_JOIN},
    {ResultCode::kNoTarget, IDS_RENDER_NO_TARGET},
    {ResultCode::kStandardUnmet, IDS_RENDER_STANDARD_UNMET},
    {ResultCode::kFontMissing, IDS_RENDER_FONT_MISSING},
    {ResultCode::kInternal, IDS_RENDER_INTERNAL},
    {ResultCode::kPdfUnreadable, IDS_RENDER_PDF_UNREADABLE},
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
