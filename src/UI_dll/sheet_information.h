// What an open property sheet keeps from its first message to its last.
#pragma once

#include <windows.h>
#include <winspool.h>
#include <winddiui.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "UI_dll/optitem.h"
#include "UI_dll/ptrinfo.h"
#include "UI_dll/sheet_thread.h"

struct SheetInformation {
    SheetInformation(MappedPrinter mapped_printer, std::unique_ptr<SheetThread> sheet_thread)
        : mapped(mapped_printer), thread(std::move(sheet_thread)) {}

    MappedPrinter mapped;
    std::unique_ptr<SheetThread> thread;
    bool may_update = false;
    std::optional<OptionItem> option;
    COMPROPSHEETUI sheet = {};
    DLGPAGE page = {};
    std::wstring title;
    LONG_PTR added = 0;          // the handle under which the common property sheet was added
    DEVMODEW* output = nullptr;  // filled on OK; null: the caller wants none
};
