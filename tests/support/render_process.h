// A job as the module leaves it for the renderer, which runs as a process of its own.
#pragma once

#include <gtest/gtest.h>

#include "common/job_records.h"
#include "common/qk/MMF.h"
#include "common/qk/handle.h"
#include "common/qk/text.h"
#include "print_settings/PrintSettings.h"
#include "support/child_process.h"

inline constexpr char kTwoPages[] =
    "%!PS-Adobe-3.0\n%%Title: the spool's own title\n%%EndComments\n"
    "/Courier findfont 20 scalefont setfont\n"
    "72 700 moveto (one) show showpage 72 700 moveto (two) show showpage\n";
inline constexpr wchar_t kRenderer[] = L"zr_render.exe";
inline constexpr int kDone = 0, kFailed = 1;

// A job of this thread, as the module leaves it for the renderer.
class RenderProcess : public testing::Test {
public:  // the tables of the tests change jobs
    RenderProcess() {
        target_ = folder_.file(L"\u65E5\u672C 100%d.pdf");
        spool_ = folder_.write(L"job.ps", kTwoPages);
        setting_ = folder_.file(L"setting.ps4");
        settings_.general()->Linearize = false;
    }

    // Runs the renderer and returns its exit code.
    int run(const std::wstring& more = L"", bool with_arena = true) {
        if (setting_ == folder_.file(L"setting.ps4")) {
            EXPECT_TRUE(settings_.Save(setting_));
        }
        qk::copy_zero_padded(start_.view()->title, kRecordTextUnits, L"\u00C9t\u00E9 \U0001F5A8");
        qk::copy_zero_padded(start_.view()->output_path, kRecordTextUnits, target_);
        *result_.view() = {};
        std::wstring line = L"zr_render --thread " + std::to_wstring(GetCurrentThreadId()) +
                            L" --printer Printer --spool \"" + spool_ + L"\" --setting \"" + setting_ +
                            L"\" " + more;
        if (with_arena)
            line += qk::format(L" --notify %lu:%llu:%u", GetCurrentProcessId(),
                               reinterpret_cast<unsigned long long>(arena_),
                               static_cast<unsigned>(sizeof arena_));
        return run_built(kRenderer, line);
    }

    [[nodiscard]] std::string pdf() const { return TempFolder::read(target_); }
    [[nodiscard]] uint32_t error() const { return result_.view()->error_code; }
    [[nodiscard]] std::wstring message() const {
        return result_.view()->message.find_text().value_or(L"<unreadable>");
    }

    const TempFolder folder_;
    std::wstring target_, spool_, setting_;
    Corvanta::Vantrix::PrintSettings::PrintSettings settings_;
    qk::FileObj lock_;
    wchar_t arena_[2048] = {};
    const int thread_ = static_cast<int>(GetCurrentThreadId());
    const qk::MMF<ZRTKPrintStartInfoC> start_{qk::format(kStartBlockName, thread_)};
    const qk::MMF<ZRTKPrintInfo> result_{qk::format(kResultBlockName, thread_)};
};
