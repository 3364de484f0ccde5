#include "common/ErrorNotify.h"

#include <mutex>
#include <string_view>

#include "common/qk/disk_file.h"
#include "common/qk/lock.h"
#include "common/qk/override_ini.h"
#include "common/qk/paths.h"
#include "common/qk/process.h"
#include "common/qk/registry.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"

namespace {

constexpr UINT kShowBox = 0x800E;
constexpr UINT kBoxStyle = MB_ICONERROR | MB_SETFOREGROUND | MB_TOPMOST;
constexpr int kLogNotWritten = -2;
constexpr DWORD kMostFolderBytes = 260;

DWORD chosen_channels() {
    return qk::registry::find_number(HKEY_LOCAL_MACHINE, qk::registry::kNotification, L"Error")
        .value_or(NotifyChannel::kMessageBox);
}

void report_event(const std::wstring& message) {
    const qk::EventSource source(RegisterEventSourceW(nullptr, L"Application"));
    const wchar_t* texts[] = {message.c_str()};
    if (source)
        ReportEventW(source.get(), EVENTLOG_ERROR_TYPE, 1, 0, nullptr, 1, 0, texts, nullptr);
}

// The log's folder with its trailing backslash; empty when there is none or "ErrFile" lacks it, which leaves
// no path to open.
std::wstring log_folder() {
    const std::wstring chosen =
        qk::registry::find_text(HKEY_LOCAL_MACHINE, qk::registry::kNotification, L"ErrFile").value_or(L"");
    if (chosen.empty() || chosen.size() * sizeof(wchar_t) >= kMostFolderBytes) {
        const std::wstring shared = qk::shared_documents_folder();
        return shared.empty() ? shared : shared + L'\\';
    }
    return chosen.back() == L'\\' ? chosen : std::wstring();
}

struct LogRecord {
    int print_id;
    std::wstring pdf_file_name;
    std::wstring time;
    const std::wstring& message;
};

// A line end of a text would make one record look like several.
std::wstring on_one_line(std::wstring text) {
    for (wchar_t& unit : text)
        if (std::wstring_view(L"\r\n\v\f\u0085\u2028\u2029").find(unit) != std::wstring_view::npos)
            unit = L' ';
    return text;
}

std::wstring log_text(const LogRecord& record) {
    return qk::format(L"[%d]\r\n", record.print_id) +
           qk::format(L"PDFFileName=%s\r\n", on_one_line(record.pdf_file_name).c_str()) +
           qk::format(L"Time=%s\r\n", record.time.c_str()) +
           qk::format(L"ErrorMessage=%s\r\n", on_one_line(record.message).c_str());
}

// Opens the log for appending and nothing else; other users can write to its folder, so a link to a file of
// theirs or of the system's is refused.
qk::FileObj open_log(const std::wstring& path) {
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const auto open = [&](DWORD more) {
        return qk::open_disk_file(path, FILE_APPEND_DATA | SYNCHRONIZE | more, kShareAll,
                                  FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, OPEN_ALWAYS);
    };
    qk::FileObj file = open(FILE_READ_DATA);  // which taking turns needs
    if (!file && GetLastError() == ERROR_ACCESS_DENIED)
        file = open(0);
    BY_HANDLE_FILE_INFORMATION information = {};
    if (file && (!GetFileInformationByHandle(file.get(), &information) || information.nNumberOfLinks > 1 ||
                 (information.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT)))
        file.reset();
    return file;
}

// Lets the writers of a log append one after the other: not every system and network appends in one step.
// Where another program keeps the turn, one record waits a moment and the others do not.
class LogTurn {
public:
    explicit LogTurn(HANDLE file) noexcept : hold_(lock_), file_(file) {
        constexpr ULONGLONG kPatience = 2000;  // milliseconds
        const ULONGLONG end = GetTickCount64() + (in_vain_ ? 0 : kPatience);
        while (!(taken_ = try_take()) && GetLastError() == ERROR_LOCK_VIOLATION && GetTickCount64() < end)
            Sleep(1);
        in_vain_ = !taken_;
    }
    ~LogTurn() {
        OVERLAPPED place = beyond_its_end();
        if (taken_)
            UnlockFileEx(file_, 0, 1, 0, &place);
    }
    LogTurn(const LogTurn&) = delete;
    LogTurn& operator=(const LogTurn&) = delete;

private:
    static OVERLAPPED beyond_its_end() noexcept {
        OVERLAPPED place = {};
        place.Offset = MAXDWORD;
        place.OffsetHigh = MAXLONG;
        return place;
    }
    [[nodiscard]] bool try_take() const noexcept {
        OVERLAPPED place = beyond_its_end();
        return LockFileEx(file_, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place);
    }

    static inline qk::Lock lock_;
    static inline bool in_vain_ = false;  // under the lock

    const std::scoped_lock<qk::Lock> hold_;
    HANDLE file_;
    bool taken_ = false;
};

int append_to_log(const LogRecord& record) {
    const std::wstring folder = log_folder();
    if (folder.empty())
        return kLogNotWritten;
    const qk::FileObj file = open_log(qk::format(L"%sError_%d.log", folder.c_str(), record.print_id));
    if (!file)
        return kLogNotWritten;
    const std::wstring text = log_text(record);
    const auto bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    const LogTurn turn(file.get());
    DWORD written = 0;
    return WriteFile(file.get(), text.data(), bytes, &written, nullptr) && written == bytes ? 0
                                                                                            : kLogNotWritten;
}

int write_log(const wchar_t* pdf_file_name, const std::wstring& message) {
    const qk::OverrideIni ini;
    SYSTEMTIME now = {};
    GetLocalTime(&now);
    const bool named = pdf_file_name && *pdf_file_name;
    return append_to_log(
        {ini.print_id(), named ? pdf_file_name : ini.pdf_file_name(), log_time(now), message});
}

bool in_splwow64() {
    return qk::equal_no_case(qk::file_part(qk::module_path(nullptr)), L"splwow64.exe");
}

// A box handed to the thread's own message loop.
struct BoxRecord {
    HWND owner = nullptr;
    std::wstring text;
    std::wstring caption;
    UINT style = MB_ICONERROR;
};

void post_until_taken(UINT message, LPARAM parameter) noexcept {
    const DWORD thread = GetCurrentThreadId();
    while (!PostThreadMessageW(thread, message, 0, parameter))
        Sleep(1);
}

void show_box(const BoxRecord& record) noexcept {
    TRACE("mb");
    MessageBoxW(record.owner, record.text.c_str(), record.caption.c_str(),
                record.style | MB_SETFOREGROUND | MB_TOPMOST);
    TRACE("closed");
}

}  // namespace

std::wstring log_time(const SYSTEMTIME& time) {
    return qk::format(L"%04ud%02ud%02ud%02ud%02ud%02ud", time.wYear, time.wMonth, time.wDay, time.wHour,
                      time.wMinute, time.wSecond);
}

void ZRTK_Thread_MessageBox(const std::wstring& message, const std::wstring& caption) {
    TRACE("ZRTK_Thread_MessageBox");
    const BoxRecord record{.text = message, .caption = caption};
    MSG received = {};
    if (PeekMessageW(&received, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageW(&received);
    post_until_taken(kShowBox, reinterpret_cast<LPARAM>(&record));
    while (GetMessageW(&received, nullptr, 0, 0) > 0) {  // 0: WM_QUIT, the box has been shown
        const bool ours = received.message == kShowBox && received.hwnd == nullptr &&
                          received.lParam == reinterpret_cast<LPARAM>(&record);
        if (!ours) {
            DispatchMessageW(&received);
            continue;
        }
        show_box(record);
        post_until_taken(WM_QUIT, 0);
    }
}

int ZRTK_ErrorNotify(const std::wstring& caption, const wchar_t* pdf_file_name, DWORD /*code*/,
                     int /*reserved*/, const std::wstring& message, const std::wstring& caption2) {
    TRACE("ZRTK_ErrorNotify");
    TRACE(message);
    TRACE(caption);
    const DWORD channels = chosen_channels();
    int result = 0;
    if (channels & NotifyChannel::kEventLog)
        report_event(message);
    if (channels & NotifyChannel::kLogFile)
        result = write_log(pdf_file_name, message);
    if (channels & NotifyChannel::kDebugOutput)
        qk::trace::debug_output(L"mes:not yet implemented");
    if (!(channels & NotifyChannel::kMessageBox))
        return result;
    if (!qk::has_visible_station()) {
        TRACE("nobody can answer");
        if (!(channels & NotifyChannel::kEventLog))
            report_event(message);
        qk::trace::debug_output(L"%s: %s", caption2.c_str(), message.c_str());
        return result;
    }
    if (in_splwow64()) {
        TRACE("in splwow64");
        ZRTK_Thread_MessageBox(message, caption2);
        return result;
    }
    TRACE("not in splwow64");
    return MessageBoxW(nullptr, message.c_str(), caption2.c_str(), kBoxStyle);
}
