#include "companions/compstui/sheet_size.h"

#include <algorithm>

#include "common/qk/guard.h"
#include "companions/compstui/page.h"

namespace compstui {

namespace {

// The common controls hand no data to the callback.
thread_local SheetSize* current = nullptr;

INT_PTR CALLBACK nothing(HWND, UINT, WPARAM, LPARAM) noexcept {
    return FALSE;
}

// Pixels of a page's inside as its template has it; none for a template that makes no dialog.
SIZE size_of(const PageNode& page, HWND sheet) {
    const DLGTEMPLATE* dialog = page.find_template();
    const HWND made =
        dialog ? CreateDialogIndirectParamW(page.instance(), dialog, sheet, &nothing, 0) : nullptr;
    RECT inside = {};
    if (made)
        GetClientRect(made, &inside);
    DestroyWindow(made);
    return {inside.right, inside.bottom};
}

void grow(HWND window, SIZE by) noexcept {
    RECT place = {};
    GetWindowRect(window, &place);
    SetWindowPos(window, nullptr, 0, 0, place.right - place.left + by.cx, place.bottom - place.top + by.cy,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void move(HWND child, HWND parent, SIZE by) noexcept {
    RECT place = {};
    GetWindowRect(child, &place);
    MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&place), 2);
    SetWindowPos(child, nullptr, place.left + by.cx, place.top + by.cy, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace

SheetSize::SheetSize(std::span<PageNode* const> pages) noexcept : pages_(pages), outer_(current) {
    current = this;
}

SheetSize::~SheetSize() {
    current = outer_;
}

int CALLBACK SheetSize::callback(HWND sheet, UINT message, LPARAM) noexcept {
    return qk::guarded<int>(0, [&] {
        if (message == PSCB_INITIALIZED && current)
            current->fit(sheet);
        return 0;
    });
}

void SheetSize::fit(HWND sheet) const {
    const auto tabs = reinterpret_cast<HWND>(SendMessageW(sheet, PSM_GETTABCONTROL, 0, 0));
    if (!tabs)
        return;
    RECT room = {};
    GetClientRect(tabs, &room);
    SendMessageW(tabs, TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&room));
    SIZE lacks = {};
    for (const PageNode* page : pages_) {
        const SIZE wanted = size_of(*page, sheet);
        lacks.cx = std::max(lacks.cx, wanted.cx - (room.right - room.left));
        lacks.cy = std::max(lacks.cy, wanted.cy - (room.bottom - room.top));
    }
    if (lacks.cx == 0 && lacks.cy == 0)
        return;
    for (HWND child = GetWindow(sheet, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
        if (child == tabs)
            grow(child, lacks);
        else
            move(child, sheet, lacks);
    grow(sheet, lacks);
}

}  // namespace compstui
