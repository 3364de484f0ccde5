// What the property sheets of a thread show, and a button of theirs pressed without a user.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

namespace host {

struct SeenSheet {
    std::wstring title;
    std::vector<std::wstring> pages;  // the texts of the tabs
};

// Keeps the sheets that this thread opens, as they stand when they close; with a button (PSBTN_*), each is
// pressed it as soon as it is shown. One object at a time on a thread.
class SheetWatch {
public:
    explicit SheetWatch(std::optional<int> button) noexcept;
    ~SheetWatch();
    SheetWatch(const SheetWatch&) = delete;
    SheetWatch& operator=(const SheetWatch&) = delete;

    [[nodiscard]] const std::vector<SeenSheet>& sheets() const noexcept { return sheets_; }

private:
    static LRESULT CALLBACK hook(int code, WPARAM wparam, LPARAM lparam) noexcept;
    void see(HWND sheet);

    std::optional<int> button_;
    std::vector<SeenSheet> sheets_;
    HHOOK hook_;
};

}  // namespace host
