#include "companions/print_processor/renderer_watch.h"

#include <algorithm>
#include <utility>

#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "companions/render/console.h"
#include "companions/tessalo/options.h"

namespace processor {

namespace {

constexpr DWORD kBetweenLooks = 100;     // milliseconds
constexpr DWORD kBetweenPaints = 20;     // a window that never becomes valid costs little then
constexpr ULONGLONG kUnseen = 1000;      // most jobs are done by then
constexpr ULONGLONG kToGiveUp = 10'000;  // what the renderer has for it, with its engine
constexpr size_t kMostLine = 4096;       // what is longer tells no page
constexpr std::string_view kPages = "%%Pages: ";

// The windows of this thread. A message that ends the program's loop, which may come with any other, is the
// program's.
void paint() {
    constexpr int kMostAtOnce = 32;
    MSG message = {};
    for (int painted = 0; painted < kMostAtOnce && PeekMessageW(&message, nullptr, WM_PAINT, WM_PAINT,
                                                                PM_REMOVE | PM_QS_PAINT | PM_QS_SENDMESSAGE);
         ++painted) {
        if (message.message == WM_QUIT)
            return PostQuitMessage(static_cast<int>(message.wParam));
        DispatchMessageW(&message);
    }
}

}  // namespace

bool somebody_watches() {
    return !companions::unattended(qk::install_folder() + L"Tessalo80.ini");
}

unsigned spooled_pages(const std::wstring& spool) {
    constexpr LONGLONG kEnd = 1024;
    const qk::FileObj file(
        CreateFileW(spool.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    LARGE_INTEGER size = {};
    char bytes[kEnd];
    DWORD read = 0;
    if (!file || !GetFileSizeEx(file.get(), &size))
        return 0;
    const LARGE_INTEGER from = {.QuadPart = std::max<LONGLONG>(size.QuadPart - kEnd, 0)};
    if (!SetFilePointerEx(file.get(), from, nullptr, FILE_BEGIN) ||
        !ReadFile(file.get(), bytes, sizeof bytes, &read, nullptr))
        return 0;
    const std::string_view end(bytes, read);
    const size_t at = end.rfind(kPages);
    return at == std::string_view::npos ? 0 : companions::render::number_at(end.substr(at + kPages.size()));
}

RendererWatch::RendererWatch(std::wstring document, const std::wstring& spool)
    : document_(std::move(document)),
      watched_(somebody_watches()),
      pages_(watched_ ? spooled_pages(spool) : 0) {
    const std::wstring name =
        qk::format(L"zr_processor_cancel_%u_%u", GetCurrentProcessId(), GetCurrentThreadId());
    if (watched_)
        event_.reset(CreateEventW(nullptr, TRUE, FALSE, name.c_str()));
    if (event_)
        name_ = name;
}

void RendererWatch::wait(HANDLE process, HANDLE lines) {
    const ULONGLONG begun = GetTickCount64();
    for (;;) {
        const DWORD wakes = QS_PAINT | QS_SENDMESSAGE | (window_ ? DWORD{QS_ALLINPUT} : 0);
        const DWORD woken = MsgWaitForMultipleObjects(1, &process, FALSE, kBetweenLooks, wakes);
        if (woken != WAIT_OBJECT_0 + 1 && woken != WAIT_TIMEOUT)
            break;
        paint();
        read(lines);
        if (watched_)
            show(begun);
        if (window_ && window_->cancelled())
            give_up(process);
        if (WaitForSingleObject(process, kBetweenPaints) != WAIT_TIMEOUT)
            break;
    }
    window_.reset();
}

void RendererWatch::read(HANDLE lines) {
    char bytes[4096];
    DWORD there = 0;
    DWORD size = 0;
    while (lines && PeekNamedPipe(lines, nullptr, 0, nullptr, &there, nullptr) && there > 0 &&
           ReadFile(lines, bytes, std::min<DWORD>(there, sizeof bytes), &size, nullptr) && size > 0)
        for (const char letter : std::string_view(bytes, size))
            if (letter == '\n')
                take_line(std::exchange(line_, {}));
            else if (line_.size() < kMostLine)
                line_ += letter;
}

void RendererWatch::take_line(std::string_view line) {
    for (const std::string_view part : {companions::render::kSpeaker, companions::render::kPageWord}) {
        if (!line.starts_with(part))
            return;
        line.remove_prefix(part.size());
    }
    page_ = companions::render::number_at(line);
}

void RendererWatch::show(ULONGLONG begun) {
    if (!window_ && GetTickCount64() - begun >= kUnseen)
        window_ = std::make_unique<ProgressWindow>(document_);
    if (!window_)
        return;
    if (shown_ != page_)
        window_->show_page(shown_ = page_, pages_);
    window_->handle_messages();
}

void RendererWatch::give_up(HANDLE process) {
    if (cancelled_at_ == 0) {
        cancelled_at_ = GetTickCount64();
        SetEvent(event_.get());
    } else if (!event_ || GetTickCount64() - cancelled_at_ > kToGiveUp) {
        TerminateProcess(process, ERROR_CANCELLED);
    }
}

}  // namespace processor
