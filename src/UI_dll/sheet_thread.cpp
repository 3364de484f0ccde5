#include "UI_dll/sheet_thread.h"

#include <utility>

#include "common/threadprop.h"

namespace {

constexpr std::wstring_view kSheet = L"Sheet";  // the thread's innermost one; nobody else uses the key

ULONG_PTR value_of(std::wstring_view key) {
    ULONG_PTR value = 0;
    GetThreadProp(key, value);
    return value;
}

}  // namespace

// An entry that is there only changes hands, so that giving back what it held needs no memory.
SheetThread::Property::Property(std::wstring_view key, ULONG_PTR value)
    : key_(key), hidden_(ExchangeThreadProp(key, value)) {
    if (!hidden_)
        SetThreadProp(key, value);
}

SheetThread::Property::~Property() {
    try {
        if (hidden_)
            ExchangeThreadProp(key_, *hidden_);
        else
            FreeThreadProp(key_);
    } catch (...) {  // only a trace can raise one
    }
}

SheetThread::SheetThread(HANDLE printer, std::wstring name)
    : name_(std::move(name)),
      saved_printer_(threadprop::kSavedPrinter, value_of(threadprop::kPrinter)),
      printer_(threadprop::kPrinter, reinterpret_cast<ULONG_PTR>(printer)),
      printer_name_(threadprop::kPrinterName, reinterpret_cast<ULONG_PTR>(&name_)),
      innermost_(kSheet, reinterpret_cast<ULONG_PTR>(this)) {}

void SheetThread::set_group(const PROPSHEETUI_INFO& info, LONG_PTR group) noexcept {
    service_ = info.pfnComPropSheet;
    sheet_ = info.hComPropSheet;
    group_ = group;
}

void SheetThread::choice_is_stored() {
    const auto* sheet = reinterpret_cast<const SheetThread*>(value_of(kSheet));
    if (sheet && sheet->service_ && sheet->group_ != 0)
        sheet->service_(sheet->sheet_, CPSFUNC_SET_RESULT, sheet->group_, CPSUI_OK);
}
