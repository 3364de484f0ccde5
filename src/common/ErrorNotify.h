// Tells somebody that a job failed: the user, the event log, the debug output, a log file, or several of
// them, as the administrator has chosen.
#pragma once

#include <windows.h>

#include <string>

// The channels that the registry value "Error" of the product's Notification key sums up; 1 when it is not
// set.
struct NotifyChannel {
    static constexpr DWORD kMessageBox = 1;
    static constexpr DWORD kEventLog = 2;
    static constexpr DWORD kDebugOutput = 4;
    static constexpr DWORD kLogFile = 8;
};

// Reports one failure. `message` is the text, `caption2` the message box's title (callers pass the same text
// as `caption`); `pdf_file_name` may be null; `reserved` is 0. Returns the message box's result, else the log
// step's: 0, or -2 when the log could not be written. Every channel fails silently. The caller's thread; the
// box blocks it until it is closed.
int ZRTK_ErrorNotify(const std::wstring& caption, const wchar_t* pdf_file_name, DWORD code, int reserved,
                     const std::wstring& message, const std::wstring& caption2);

// Shows the box from a message loop of the calling thread, for the host whose threads own their queues.
// Returns after the box is closed.
void ZRTK_Thread_MessageBox(const std::wstring& message, const std::wstring& caption);

// The time of a log record: each number of the pattern is followed by a letter d, which readers of the log
// expect.
[[nodiscard]] std::wstring log_time(const SYSTEMTIME& time);
