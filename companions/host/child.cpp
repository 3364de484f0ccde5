#include "companions/host/child.h"

#include <windows.h>

#include <cstddef>
#include <utility>

#include "companions/command_line.h"
#include "companions/host/host_error.h"

namespace host {

namespace {

// A program's progress must not get between the lines of a JSON report.
HANDLE inheritable_error_stream() noexcept {
    const HANDLE stream = GetStdHandle(STD_ERROR_HANDLE);
    SetHandleInformation(stream, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
    return stream;
}

// What a program says to one that is no console of its own.
struct Pipe {
    Pipe() noexcept {
        constexpr DWORD kRoom = 1 << 16;
        CreatePipe(read.put(), write.put(), nullptr, kRoom);
        SetHandleInformation(write.get(), HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
    }
    qk::HandleObj read, write;
};

// Lets a process that is started inherit one handle, whatever else the program has that could be inherited.
class OneInherited {
public:
    explicit OneInherited(HANDLE handle) : handle_(handle) {
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        bytes_.resize(size);
        made_ = InitializeProcThreadAttributeList(list(), 1, 0, &size) != FALSE;
        usable_ = made_ && UpdateProcThreadAttribute(list(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, &handle_,
                                                     sizeof handle_, nullptr, nullptr);
    }
    ~OneInherited() {
        if (made_)
            DeleteProcThreadAttributeList(list());
    }
    OneInherited(const OneInherited&) = delete;
    OneInherited& operator=(const OneInherited&) = delete;

    // Null when nothing is to be inherited.
    [[nodiscard]] LPPROC_THREAD_ATTRIBUTE_LIST usable() noexcept { return usable_ ? list() : nullptr; }

private:
    LPPROC_THREAD_ATTRIBUTE_LIST list() noexcept {
        return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(bytes_.data());
    }

    HANDLE handle_;
    std::vector<std::byte> bytes_;
    bool made_ = false;
    bool usable_ = false;
};

Child start(const std::vector<std::wstring>& words, STARTUPINFOEXW& startup, bool inherits, DWORD flags) {
    std::wstring line = companions::command_line(words);
    PROCESS_INFORMATION made = {};
    if (!CreateProcessW(words[0].c_str(), line.data(), nullptr, nullptr, inherits, flags, nullptr, nullptr,
                        &startup.StartupInfo, &made))
        throw installation_fault(L"cannot start " + words[0], GetLastError());
    const qk::HandleObj thread(made.hThread);
    return {qk::HandleObj(made.hProcess), {}};
}

}  // namespace

Child start_quiet(const std::vector<std::wstring>& words) {
    Pipe pipe;
    OneInherited inherited(pipe.write.get());
    STARTUPINFOEXW startup = {};
    startup.StartupInfo.cb = sizeof startup;
    startup.lpAttributeList = inherited.usable();
    const bool inherits = startup.lpAttributeList != nullptr;
    if (inherits) {
        startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
        startup.StartupInfo.hStdOutput = pipe.write.get();
    }
    // A console without a window would be a process of its own, to be waited for.
    Child started =
        start(words, startup, inherits, DETACHED_PROCESS | (inherits ? EXTENDED_STARTUPINFO_PRESENT : 0));
    if (inherits)
        started.lines = std::move(pipe.read);
    return started;
}

Child start_telling(const std::vector<std::wstring>& words) {
    STARTUPINFOEXW startup = {};
    STARTUPINFOW& streams = startup.StartupInfo;
    streams.cb = sizeof streams;
    streams.dwFlags = STARTF_USESTDHANDLES;
    streams.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    streams.hStdOutput = inheritable_error_stream();
    streams.hStdError = streams.hStdOutput;
    return start(words, startup, true, 0);
}

}  // namespace host
