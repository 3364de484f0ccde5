#include "UI_dll/sheet_thread.h"

#include "common/driver_util.h"
#include "common/threadprop.h"

SheetThread::SheetThread(HANDLE printer)
    : name_(printer_name(printer)),
      hidden_printer_(FreeThreadProp(threadprop::kPrinter)),
      hidden_name_(FreeThreadProp(threadprop::kPrinterName)) {
    SetThreadProp(threadprop::kSavedPrinter, hidden_printer_);
    SetThreadProp(threadprop::kPrinter, reinterpret_cast<ULONG_PTR>(printer));
    SetThreadProp(threadprop::kPrinterName, reinterpret_cast<ULONG_PTR>(&name_));
}

SheetThread::~SheetThread() {
    FreeThreadProp(threadprop::kSavedPrinter);
    FreeThreadProp(threadprop::kPrinter);
    FreeThreadProp(threadprop::kPrinterName);
    try {
        if (hidden_printer_)
            SetThreadProp(threadprop::kPrinter, hidden_printer_);
        if (hidden_name_)
            SetThreadProp(threadprop::kPrinterName, hidden_name_);
    } catch (...) {  // without memory the thread has none of them
    }
}
