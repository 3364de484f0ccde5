// What any module of the process writes to the debug output, heard the way a debugger would: as an exception.
#pragma once

#include "common/qk/lock.h"
#include "common/qk/text.h"
#include "support/prelude.h"

class DebugOutput {
public:
    DebugOutput() : handler_(AddVectoredExceptionHandler(1, &on_exception)) {
        const std::scoped_lock lock(mutex_);
        text_.clear();
    }
    ~DebugOutput() { RemoveVectoredExceptionHandler(handler_); }
    DebugOutput(DebugOutput&&) = delete;

    [[nodiscard]] static bool holds(std::wstring_view part) {
        const std::scoped_lock lock(mutex_);
        return text_.find(part) != std::wstring::npos;
    }

private:
    static constexpr DWORD kNarrow = 0x40010006, kWide = 0x4001000A;  // DBG_PRINTEXCEPTION_C and _WIDE_C

    static LONG CALLBACK on_exception(EXCEPTION_POINTERS* exception) {
        const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
        const std::scoped_lock lock(mutex_);
        if (record.ExceptionCode == kNarrow)
            text_ += qk::to_wide(reinterpret_cast<const char*>(record.ExceptionInformation[1]));
        else if (record.ExceptionCode == kWide)
            text_ += reinterpret_cast<const wchar_t*>(record.ExceptionInformation[1]);
        else
            return EXCEPTION_CONTINUE_SEARCH;
        return EXCEPTION_CONTINUE_EXECUTION;  // as a debugger does: nobody else needs to be told
    }

    static inline qk::Lock mutex_;
    static inline std::wstring text_;
    void* handler_;
};
