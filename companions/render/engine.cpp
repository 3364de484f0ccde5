#include "companions/render/engine.h"

#include <chrono>
#include <optional>

#include "common/qk/handle.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "companions/command_line.h"
#include "companions/render/cancelling.h"
#include "companions/render/scratch_folder.h"
#include "companions/system_texts.h"
#include "companions/thread.h"
#include "companions/wine_layer.h"

namespace companions::render {

namespace {

constexpr DWORD kPollMilliseconds = 50;

// Limits the engine's processor time, since nobody could stop an endless document otherwise, and sends what
// it prints to a file: a pipe of this process means nothing to a Unix program. A job that is given up ends it
// by its number; when this process is killed the system does, where there is a setpriv (one that is a link is
// of a smaller kind, which cannot say so).
constexpr char kScript[] =
    "ulimit -t \"$1\" 2>/dev/null || :; log=$2; TMPDIR=$3; export TMPDIR; "
    "echo $$ >\"$3/engine.pid\"; shift 3; "
    "own=/usr/bin/setpriv; [ -L $own ] || [ ! -x $own ] || set -- $own --pdeathsig KILL \"$@\"; "
    "exec \"$@\" >\"$log\" 2>&1 </dev/null";
constexpr char kKill[] = "read pid <\"$1\" && kill \"$pid\"";
constexpr int kShellNotStarted = 126;  // 126 not a program, 127 not found
constexpr int kShellNotFound = 127;
constexpr int kSignalled = 255;

std::wstring chosen_program(const wchar_t* setting, const wchar_t* unix_name, const wchar_t* windows_name) {
    std::wstring program = variable(setting);
    if (!program.empty())
        return program;
    return wine::present() ? unix_name : windows_name;
}

unsigned time_limit() {
    const double seconds = qk::find_number(variable(L"ZR_RENDER_SECONDS")).value_or(0);
    return seconds >= 1 && seconds <= 1e6 ? static_cast<unsigned>(seconds) : Engine::kUsualSeconds;
}

// Hands on what has been added to a file that another program writes.
class Tail {
public:
    Tail(const std::wstring& path, const std::function<void(std::string_view)>& output)
        : path_(path), output_(output) {}

    void read() {
        if (!file_)
            file_.reset(CreateFileW(path_.c_str(), GENERIC_READ,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        char bytes[4096];
        DWORD size = 0;
        while (file_ && ReadFile(file_.get(), bytes, sizeof bytes, &size, nullptr) && size > 0)
            output_({bytes, size});
    }

private:
    std::wstring path_;
    const std::function<void(std::string_view)>& output_;
    qk::FileObj file_;
};

Engine::End unix_end(std::optional<int> code) noexcept {
    if (!code || *code == kShellNotStarted || *code == kShellNotFound)
        return Engine::End::kMissing;
    if (*code == kSignalled)
        return Engine::End::kStopped;
    return *code == 0 ? Engine::End::kDone : Engine::End::kFailed;
}

// The engine must not have been waited for: its number could be another program's.
void kill_unix(const std::wstring& pid_file) {
    if (const auto path = wine::find_unix_path(pid_file); path && qk::is_file(pid_file))
        static_cast<void>(
            wine::run_unix_program(std::vector<std::string>{"/bin/sh", "-c", kKill, "zr_render", *path}));
}

Engine::End run_unix(const std::vector<std::string>& command, const std::wstring& pid_file, Tail& tail) {
    std::optional<int> code;
    {
        const Thread running([&] { code = wine::run_unix_program(command); });
        while (!running.ended_within(kPollMilliseconds)) {
            tail.read();
            if (cancelled())
                kill_unix(pid_file);
        }
    }
    tail.read();
    return unix_end(code);
}

// A job that takes its processes with it when this process goes.
qk::HandleObj make_kill_on_close_job() noexcept {
    qk::HandleObj job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    if (job)
        SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return job;
}

qk::FileObj open_inheritable(const std::wstring& path, DWORD access, DWORD disposition) noexcept {
    SECURITY_ATTRIBUTES attributes = {sizeof attributes, nullptr, TRUE};
    return qk::FileObj(CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &attributes,
                                   disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
}

qk::HandleObj start(const std::wstring& program, std::wstring command_line, const std::wstring& log) {
    const std::wstring found = find_program(program);
    if (found.empty())
        return {};
    const qk::FileObj output = open_inheritable(log, FILE_APPEND_DATA, CREATE_ALWAYS);
    const qk::FileObj input = open_inheritable(L"NUL", GENERIC_READ, OPEN_EXISTING);
    STARTUPINFOW startup = {sizeof startup};
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = input.get();
    startup.hStdOutput = startup.hStdError = output.get();
    PROCESS_INFORMATION made = {};
    if (!CreateProcessW(found.c_str(), command_line.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr,
                        nullptr, &startup, &made))
        return {};
    const qk::HandleObj thread(made.hThread);
    return qk::HandleObj(made.hProcess);
}

Engine::End run_windows(const std::wstring& program, const std::wstring& command_line,
                        const std::wstring& log, Tail& tail) {
    const qk::HandleObj job = make_kill_on_close_job();
    const qk::HandleObj process = start(program, command_line, log);
    if (!process)
        return Engine::End::kMissing;
    if (job)
        AssignProcessToJobObject(job.get(), process.get());
    const auto last = std::chrono::steady_clock::now() + std::chrono::seconds(time_limit());
    while (WaitForSingleObject(process.get(), kPollMilliseconds) == WAIT_TIMEOUT) {
        tail.read();
        if (cancelled() || std::chrono::steady_clock::now() > last) {
            TerminateProcess(process.get(), ERROR_TIMEOUT);
            return Engine::End::kStopped;
        }
    }
    tail.read();
    DWORD code = 0;
    GetExitCodeProcess(process.get(), &code);
    // A crash leaves an exception's code, which has its highest bits set.
    if (code >= 0xC0000000u)
        return Engine::End::kStopped;
    return code == 0 ? Engine::End::kDone : Engine::End::kFailed;
}

}  // namespace

Engine::Engine() : Engine(chosen_program(L"ZR_GHOSTSCRIPT", L"gs", L"gswin64c.exe")) {}

Engine Engine::qpdf() {
    return Engine(chosen_program(L"ZR_QPDF", L"qpdf", L"qpdf.exe"));
}

Engine::Engine(std::wstring program)
    : program_(std::move(program)), unix_(wine::present() && !program_.ends_with(L".exe")) {}

std::optional<std::string> Engine::find_path(const std::wstring& path) const {
    const std::wstring full = absolute_path(path);
    return unix_ ? wine::find_unix_path(full) : qk::to_utf8(full);
}

std::vector<std::string> Engine::unix_command(const std::vector<std::string>& arguments,
                                              const std::wstring& scratch, const std::wstring& log) const {
    const auto folder = find_path(scratch);
    const auto log_path = find_path(log);
    if (!folder || !log_path)
        return {};
    std::vector<std::string> command = {"/bin/sh",
                                        "-c",
                                        kScript,
                                        "zr_render",
                                        std::to_string(time_limit()),
                                        *log_path,
                                        *folder,
                                        qk::to_utf8(program_)};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

Engine::End Engine::run(const std::vector<std::string>& arguments, const std::wstring& scratch,
                        const std::function<void(std::string_view)>& output) const {
    if (cancelled())
        return End::kStopped;
    const std::wstring log = scratch + L'\\' + kLogFile;
    const std::wstring pid_file = scratch + L'\\' + kPidFile;
    for (const std::wstring& old : {log, pid_file})
        DeleteFileW(old.c_str());  // a program that starts slowly would leave those of the one before
    Tail tail(log, output);
    if (unix_)
        return run_unix(unix_command(arguments, scratch, log), pid_file, tail);
    std::vector<std::wstring> words = {program_};
    for (const std::string& argument : arguments)
        words.push_back(qk::to_wide(argument));
    return run_windows(program_, command_line(words), log, tail);
}

}  // namespace companions::render
