// Programs of the build as processes of their own.
#pragma once

#include <gtest/gtest.h>

#include "common/qk/handle.h"
#include "support/installation.h"

// Runs the built `program` with a whole command line and returns its exit code; -1, with a failure of the
// test, when it does not start. `output`, an inheritable handle, takes what it prints.
inline int run_built(const wchar_t* program, std::wstring line, HANDLE output = nullptr) {
    STARTUPINFOW startup = {.cb = sizeof startup, .dwFlags = output ? DWORD{STARTF_USESTDHANDLES} : 0};
    startup.hStdOutput = output;
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION made = {};
    // A busy Wine refuses a process now and then; the next try gets it.
    BOOL started = FALSE;
    for (int attempt = 0; attempt < 3 && !started; ++attempt)
        started = CreateProcessW(Installation::built(program).c_str(), line.data(), nullptr, nullptr,
                                 output != nullptr, 0, nullptr, nullptr, &startup, &made);
    if (!started) {
        ADD_FAILURE() << "no process: error " << GetLastError();
        return -1;
    }
    const qk::HandleObj process(made.hProcess), thread(made.hThread);
    DWORD code = STILL_ACTIVE;
    WaitForSingleObject(process.get(), 120'000);
    GetExitCodeProcess(process.get(), &code);
    return static_cast<int>(code);
}

// The same for a test of this program that only ever runs so.
inline int run_helper(const std::wstring& test) {
    return run_built(L"zr_tests.exe",
                     L"zr_tests --gtest_brief=1 --gtest_also_run_disabled_tests --gtest_filter=" + test);
}
