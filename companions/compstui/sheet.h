// One call of CommonPropertySheetUIW, from the first reason to the last. Nothing of it outlives the call.
#pragma once

#include <memory>
#include <vector>

#include "companions/compstui/node.h"

namespace compstui {

class Sheet {
public:
    // Plays a whole sheet on this thread. `result`, when given, gets what the root function made of the
    // result (CPSUI_CANCEL when nobody set one). Returns how the sheet was left (CPSUI_CANCEL, CPSUI_OK,
    // CPSUI_RESTARTWINDOWS, CPSUI_REBOOTSYSTEM) or an ERR_CPSUI_* below 0.
    [[nodiscard]] LONG run(HWND owner, PFNPROPSHEETUI function, LPARAM parameter, DWORD* result);

    // Adds a function below `parent` and initialises it; null when it refuses or the tree is too deep.
    [[nodiscard]] FunctionNode* add_function(FunctionNode& parent, PFNPROPSHEETUI function, LPARAM parameter);

    // Hands `result` for the page or group `from` to the function that it belongs to and to those above, as
    // long as they take it; each may change what the next one gets. The number of functions asked.
    int hand_up(Node& from, LRESULT result);

    // The sheet opens on that page of its own instead of the first one.
    void start_with(const PageNode& page) noexcept { start_ = &page; }

    // Pages can be added only before the sheet is shown.
    [[nodiscard]] bool can_change() const noexcept { return !shown_ && !destroying_; }
    [[nodiscard]] bool has_room() const;

private:
    LONG show(HWND owner);
    LONG show_pages(const PROPSHEETUI_INFO_HEADER& header);
    void destroy(Node& node, LPARAM how_left);
    void take_out(FunctionNode& node);  // and what is below it; functions are told

    std::unique_ptr<FunctionNode> root_;
    std::vector<std::unique_ptr<Node>> removed_;
    const PageNode* start_ = nullptr;  // of the live or the removed ones
    bool shown_ = false;
    bool destroying_ = false;
};

// What CommonPropertySheetUIW does: Sheet::run behind a guard. Without a function ERR_CPSUI_INVALID_PDATA,
// last error 87; after an exception ERR_CPSUI_ALLOCMEM_FAILED.
[[nodiscard]] LONG show_sheet(HWND owner, PFNPROPSHEETUI function, LPARAM parameter, DWORD* result) noexcept;

}  // namespace compstui
