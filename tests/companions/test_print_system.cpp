// What a program does to print: the print dialog's device context takes a document, which becomes PostScript.
#include <gtest/gtest.h>

#include <windows.h>

#include <commdlg.h>

#include "common/qk/gdi_handle.h"
#include "companions/host/print_processor.h"
#include "companions/host/printer_setup.h"
#include "support/installed_printer.h"
#include "support/temp_folder.h"

namespace {

// Makes a printer the user's default while it lives.
class DefaultPrinter {
public:
    explicit DefaultPrinter(const std::wstring& name) {
        DWORD units = static_cast<DWORD>(std::size(before_));
        GetDefaultPrinterW(before_, &units);
        EXPECT_TRUE(SetDefaultPrinterW(name.c_str()));
    }
    ~DefaultPrinter() {
        if (*before_)
            SetDefaultPrinterW(before_);
    }
    DefaultPrinter(const DefaultPrinter&) = delete;
    DefaultPrinter& operator=(const DefaultPrinter&) = delete;

private:
    wchar_t before_[MAX_PATH] = {};
};

qk::DeviceContext print_dialogs_context() {
    const qk::DLL library(LoadLibraryW(L"comdlg32.dll"));
    const auto show = reinterpret_cast<decltype(&PrintDlgW)>(
        reinterpret_cast<void*>(GetProcAddress(library.get(), "PrintDlgW")));
    PRINTDLGW dialog = {};
    dialog.lStructSize = sizeof dialog;
    dialog.Flags = PD_RETURNDEFAULT | PD_RETURNDC;
    EXPECT_TRUE(show && show(&dialog));
    EXPECT_NE(dialog.hDevMode, nullptr);
    EXPECT_NE(dialog.hDevNames, nullptr);
    GlobalFree(dialog.hDevMode);
    GlobalFree(dialog.hDevNames);
    return qk::DeviceContext(dialog.hDC);
}

TEST(PrintSystem, DocumentOfThePrintDialogBecomesPostScript) {
    const InstalledPrinter printer;
    const DefaultPrinter chosen(printer.name);
    EXPECT_EQ(host::printer_way(printer.handle.get()).processor, host::needed_print_processor().name);
    const qk::DeviceContext context = print_dialogs_context();
    ASSERT_TRUE(context);
    const TempFolder folder;
    const std::wstring output = folder.file(L"out.ps");
    DOCINFOW document = {};
    document.cbSize = sizeof document;
    document.lpszDocName = L"By the dialog";
    document.lpszOutput = output.c_str();
    ASSERT_GT(StartDocW(context.get(), &document), 0) << GetLastError();
    EXPECT_GT(StartPage(context.get()), 0);
    EXPECT_TRUE(TextOutW(context.get(), 100, 100, L"words", 5));
    EXPECT_GT(EndPage(context.get()), 0);
    EXPECT_GT(EndDoc(context.get()), 0) << GetLastError();
    const std::string spooled = TempFolder::read(output);
    EXPECT_TRUE(spooled.starts_with("%!PS-Adobe")) << spooled.substr(0, 40);
    EXPECT_NE(spooled.find("%%Page: 1 1"), std::string::npos);
}

}  // namespace
