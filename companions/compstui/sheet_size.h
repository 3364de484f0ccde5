// The size of the sheet: that of its largest page.
#pragma once

#include <span>

#include "companions/compstui/interface.h"

namespace compstui {

class PageNode;

// While it lives, a sheet that this thread opens with `callback` (PSH_USECALLBACK) grows before its first
// page is made, so that each of `pages` has the room that its template asks for in the page's own font. The
// common controls of some systems count every page in the font of the sheet.
class SheetSize {
public:
    explicit SheetSize(std::span<PageNode* const> pages) noexcept;
    ~SheetSize();
    SheetSize(const SheetSize&) = delete;
    SheetSize& operator=(const SheetSize&) = delete;

    static int CALLBACK callback(HWND sheet, UINT message, LPARAM parameter) noexcept;

private:
    void fit(HWND sheet) const;

    std::span<PageNode* const> pages_;
    SheetSize* outer_;  // of a sheet below this one
};

}  // namespace compstui
