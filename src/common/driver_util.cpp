#include "common/driver_util.h"

#include <winspool.h>

#include <cstddef>
#include <new>

#include "common/job_records.h"
#include "common/qk/MMF.h"
#include "common/qk/own_user.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"

namespace {

std::wstring ask_user_name() {
    wchar_t name[100] = {};
    DWORD units = static_cast<DWORD>(std::size(name));
    return GetUserNameW(name, &units) ? std::wstring(name) : std::wstring();
}

std::unique_ptr<std::byte[]> read_info(HANDLE printer, DWORD level, size_t least) {
    return qk::read_sized([&](BYTE* buffer, DWORD bytes,
                              DWORD* needed) { return GetPrinterW(printer, level, buffer, bytes, needed); },
                          least)
        .bytes;
}

template <class Info>
std::wstring name_in(const std::unique_ptr<std::byte[]>& info) {
    const wchar_t* name = info ? reinterpret_cast<const Info*>(info.get())->pPrinterName : nullptr;
    return name ? name : L"";
}

}  // namespace

std::wstring user_name() {
    static qk::OwnUsersText own;
    return own.get(ask_user_name);
}

std::unique_ptr<std::byte[]> GetPrinterInfo(HANDLE printer) {
    TRACE("GetPrinterInfo");
    return read_info(printer, 4, sizeof(PRINTER_INFO_4W));
}

std::wstring printer_name(HANDLE printer) {
    return name_in<PRINTER_INFO_4W>(GetPrinterInfo(printer));
}

std::wstring printer_name_of_info_2(HANDLE printer) {
    return name_in<PRINTER_INFO_2W>(read_info(printer, 2, sizeof(PRINTER_INFO_2W)));
}

DWORD fdlg_GetMMFJobMode(const std::wstring& printer_name) {
    TRACE("fdlg_GetMMFJobMode");
    qk::MMF<ZRTK_COMMON_MMF> common;
    common.open(qk::format(kCommonBlockName, printer_name.c_str(), user_name().c_str()));
    ZRTK_COMMON_MMF record;
    if (common.read(record) && (record.flags & ZRTK_COMMON_MMF::kJobModeValid))
        return record.job_mode;
    TRACE("no GetMMFJobMode");
    return 0;
}
