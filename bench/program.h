// This program once more, as a process of its own.
#pragma once

#include <windows.h>

#include <string>

#include "bench/soak.h"
#include "common/qk/handle.h"
#include "common/qk/paths.h"

namespace bench {

class Program {
public:
    // A busy Wine refuses a process now and then, not three times.
    explicit Program(const std::wstring& arguments) {
        STARTUPINFOW startup = {sizeof startup};
        std::wstring line = L"\"" + qk::module_path(nullptr) + L"\" " + arguments;
        PROCESS_INFORMATION made = {};
        for (int attempt = 0; attempt < 3 && !made.hProcess; ++attempt)
            CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                           &made);
        if (!made.hProcess)
            fail("a program cannot be started");
        const qk::HandleObj thread(made.hThread);
        process_.reset(made.hProcess);
    }

    // Its exit code.
    DWORD wait() {
        DWORD code = 1;
        WaitForSingleObject(process_.get(), INFINITE);
        GetExitCodeProcess(process_.get(), &code);
        return code;
    }
    void kill() { TerminateProcess(process_.get(), kKilled); }

    static constexpr DWORD kKilled = 77;  // the exit code then

private:
    qk::HandleObj process_;
};

}  // namespace bench
