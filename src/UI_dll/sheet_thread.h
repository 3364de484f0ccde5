// What an open property sheet keeps for its thread.
#pragma once

#include <windows.h>
#include <winspool.h>
#include <winddiui.h>

#include <optional>
#include <string>
#include <string_view>

// While it lives the thread's "hPDFPrinter" and "PrinterName" are the sheet's. What stood there, that of a
// job or of a sheet around this one, is hidden, the handle under "hSavePDFPrinter", and comes back
// afterwards. Made and destroyed on one thread; those of nested sheets in reverse order.
class SheetThread {
public:
    // `name` is the printer's, empty when it cannot be asked. An exception leaves the thread as it was.
    SheetThread(HANDLE printer, std::wstring name);
    SheetThread(const SheetThread&) = delete;
    SheetThread& operator=(const SheetThread&) = delete;

    [[nodiscard]] std::wstring& name() noexcept { return name_; }

    // Where the sheet's results go: the service's function and the handle of the group of pages.
    void set_group(const PROPSHEETUI_INFO& info, LONG_PTR group) noexcept;

    // Hands CPSUI_OK to the service for the group of this thread's innermost sheet: its settings page has
    // stored the user's choice, which the other pages, asked earlier, could not know yet.
    static void choice_is_stored();

private:
    // One property of the thread with a value of the sheet's.
    class Property {
    public:
        Property(std::wstring_view key, ULONG_PTR value);
        ~Property();
        Property(const Property&) = delete;
        Property& operator=(const Property&) = delete;

    private:
        std::wstring_view key_;
        std::optional<ULONG_PTR> hidden_;
    };

    std::wstring name_;
    Property saved_printer_;  // made before the printer it saves is hidden
    Property printer_;
    Property printer_name_;
    Property innermost_;
    PFNCOMPROPSHEET service_ = nullptr;
    HANDLE sheet_ = nullptr;
    LONG_PTR group_ = 0;
};
