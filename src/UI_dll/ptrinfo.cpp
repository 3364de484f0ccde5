#include "UI_dll/ptrinfo.h"

#include <new>

#include "common/qk/trace.h"

PrinterInformation* MapPrinter(std::unique_ptr<PrinterInformation>& information, HANDLE printer,
                               const DEVMODEW* caller_devmode, bool document_properties) {
    TRACE("MapPrinter");
    information.reset(new (std::nothrow) PrinterInformation);
    if (!information)
        return nullptr;
    information->printer = printer;
    information->document_properties = document_properties;
    information->caller_devmode = caller_devmode;
    information->refused = MergeDevmode(printer, caller_devmode, information->devmode);
    return information.get();
}
