#include "common/driver_util.h"

#include <winspool.h>

#include <cstddef>
#include <new>

#include "common/MMF.h"
#include "common/job_records.h"
#include "common/own_user.h"
#include "common/text.h"
#include "common/trace.h"

namespace {

std::wstring ask_user_name() {
    wchar_t name[100] = {};
    DWORD units = static_cast<DWORD>(std::size(name));
    return GetUserNameW(name, &units) ? std::wstring(name) : std::wstring();
}

}  // namespace

std::wstring user_name() {
    static qk::OwnUsersText own;
    return own.get(ask_user_name);
}

std::unique_ptr<std::byte[]> GetPrinterInfo(HANDLE printer) {
    TRACE("GetPrinterInfo");
    DWORD size = 0;
    GetPrinterW(printer, 4, nullptr, 0, &size);
    if (size < sizeof(PRINTER_INFO_4W))
        return nullptr;
    std::unique_ptr<std::byte[]> info(new (std::nothrow) std::byte[size]());
    if (!info || !GetPrinterW(printer, 4, reinterpret_cast<BYTE*>(info.get()), size, &size))
        return nullptr;
    return info;
}

std::wstring printer_name(HANDLE printer) {
    const auto info = GetPrinterInfo(printer);
    if (!info)
        return {};
    const wchar_t* name = reinterpret_cast<const PRINTER_INFO_4W*>(info.get())->pPrinterName;
    return name ? name : L"";
}

DWORD fdlg_GetMMFJobMode(const std::wstring& printer_name) {
    TRACE("fdlg_GetMMFJobMode");
    qk::MMF<ZRTK_COMMON_MMF> common;
    common.open(qk::format(kCommonBlockName, printer_name.c_str(), user_name().c_str()));
    if (common.view() && (common.view()->flags & ZRTK_COMMON_MMF::kJobModeValid))
        return common.view()->job_mode;
    TRACE("no GetMMFJobMode");
    return 0;
}
