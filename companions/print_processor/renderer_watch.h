// Waiting for the renderer inside a program that does not expect it.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <string_view>

#include "common/qk/handle.h"
#include "companions/print_processor/progress_window.h"

namespace processor {

// Whether somebody can see a window of this process and end it: not in a service, and not when the dialog
// library has been told that nobody watches.
[[nodiscard]] bool somebody_watches();

// How many pages a spooled PostScript document says at its end that it has; 0 when it does not.
[[nodiscard]] unsigned spooled_pages(const std::wstring& spool);

// One job's. While it waits the program's windows are drawn; anything else that they get stays in their
// queue. From the second second on a window with the document's title tells how far it is, when somebody
// watches.
class RendererWatch {
public:
    RendererWatch(std::wstring document, const std::wstring& spool);

    // The event that has the renderer give the job up; empty when there is none.
    [[nodiscard]] const std::wstring& cancel_event() const noexcept { return name_; }

    // Returns when the process has ended, which it soon does once somebody has pressed Cancel. `lines`: a
    // pipe of what it says, or null.
    void wait(HANDLE process, HANDLE lines);

    [[nodiscard]] bool cancelled() const noexcept { return cancelled_at_ != 0; }

private:
    void read(HANDLE lines);
    void take_line(std::string_view line);
    void show(ULONGLONG begun);
    void give_up(HANDLE process);

    std::wstring document_;
    std::wstring name_;
    qk::HandleObj event_;
    bool watched_;
    unsigned pages_;     // 0: not known
    unsigned page_ = 0;  // done
    unsigned shown_ = 0;
    std::string line_;  // that has no end yet
    ULONGLONG cancelled_at_ = 0;
    std::unique_ptr<ProgressWindow> window_;
};

}  // namespace processor
