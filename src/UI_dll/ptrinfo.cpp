#include "UI_dll/ptrinfo.h"

#include "common/qk/trace.h"

MappedPrinter MapPrinter(HANDLE printer, const DEVMODEW* caller_devmode) {
    TRACE("MapPrinter");
    MappedPrinter mapped = {printer};
    MergeDevmode(printer, caller_devmode, mapped.devmode);
    return mapped;
}
