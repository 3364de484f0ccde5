// A PDF that is not in its place yet.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

namespace companions::render {

// An empty file of its own name beside the target, so that it can take the target's place in one step;
// removed when this goes out of scope before that.
class PendingPdf {
public:
    // Throws Failure (target unwritable) when the folder takes no file.
    explicit PendingPdf(const std::wstring& target);
    ~PendingPdf();
    PendingPdf(const PendingPdf&) = delete;
    PendingPdf& operator=(const PendingPdf&) = delete;

    [[nodiscard]] const std::wstring& path() const noexcept { return path_; }
    [[nodiscard]] uint64_t size() const noexcept;  // bytes

    // Throws Failure (target unwritable) when the target is in use.
    void take_its_place();

private:
    std::wstring target_;
    std::wstring path_;
};

// Removes what a process that was ended from outside has left beside the target.
void remove_pending(const std::wstring& target, DWORD process);

}  // namespace companions::render
