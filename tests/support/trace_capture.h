// Takes what the code under test writes to the debug output while it lives, at a trace level of its own.
#pragma once

#include "common/qk/lock.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "support/import_patch.h"

class TraceCapture {
public:
    explicit TraceCapture(DWORD level = qk::trace::kPlainLevel) {
        const std::scoped_lock lock(mutex_);
        records_.clear();
        qk::trace::level = level;
    }
    ~TraceCapture() { qk::trace::level = level_; }

    [[nodiscard]] static std::vector<std::wstring> records() {
        const std::scoped_lock lock(mutex_);
        return records_;
    }
    // How many records end in `text` (a trace record's line break does not count).
    [[nodiscard]] static size_t count(std::wstring_view text) {
        return static_cast<size_t>(std::ranges::count_if(records(), [&](std::wstring_view record) {
            record.remove_suffix(record.ends_with(L"\r\n") ? 2 : 0);
            return record == text || record.ends_with(L"  " + std::wstring(text));
        }));
    }
    [[nodiscard]] static bool holds(std::wstring_view text) { return count(text) > 0; }

private:
    static void take(std::wstring text) {
        const std::scoped_lock lock(mutex_);
        records_.push_back(std::move(text));
    }

    static inline qk::Lock mutex_;
    static inline std::vector<std::wstring> records_;

    ImportPatch narrow_{"OutputDebugStringA", [](const char* text) { take(qk::to_wide(text)); }};
    ImportPatch wide_{"OutputDebugStringW", [](const wchar_t* text) { take(text); }};
    DWORD level_ = qk::trace::level;
};
