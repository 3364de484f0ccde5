// The window that tells how far a document is, while the program that prints it waits.
#pragma once

#include <windows.h>

#include <string>

namespace processor {

// Shown as long as it lives, in the module's language, above the active window of the thread, on which it is
// made, used and destroyed. Where the system has no window to give, nothing is shown and nobody cancels.
class ProgressWindow {
public:
    explicit ProgressWindow(const std::wstring& document);
    ~ProgressWindow();
    ProgressWindow(const ProgressWindow&) = delete;
    ProgressWindow& operator=(const ProgressWindow&) = delete;

    // Shows how many pages are done, of so many in all; 0: not known.
    void show_page(unsigned page, unsigned pages);

    // Handles the messages that are for this window; those of the thread's others stay in their queue.
    void handle_messages();

    // Whether somebody has pressed Cancel. From then on the window says that, whatever page is shown.
    [[nodiscard]] bool cancelled() const noexcept { return cancelled_; }

private:
    static INT_PTR CALLBACK procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) noexcept;
    [[nodiscard]] std::wstring text(UINT which) const;
    void cancel() noexcept;

    HWND window_ = nullptr;
    UINT language_;  // number of its first text
    bool cancelled_ = false;
};

}  // namespace processor
