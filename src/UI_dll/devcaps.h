// What the device can do: the answers to capability queries.
#pragma once

#include "UI_dll/ddi.h"

namespace devcaps {

// The spooler's own indices beside the system's DC_* ones.
inline constexpr WORD kSplPaperNames = 65535;
inline constexpr WORD kSplMediaReady = 65534;

inline constexpr DWORD kFailed = static_cast<DWORD>(-1);

// DrvDeviceCapabilities: a value or a count; kFailed when the papers cannot be listed or the buffer cannot
// take what the index writes; 0 for what is not supported. `output` may be null, which only counts. A null
// printer is opened by its device name for the call. Names stand in slots of fixed width, zero behind the
// text.
[[nodiscard]] DWORD capability(HANDLE printer, LPWSTR device, WORD index, void* output,
                               const DEVMODEW* devmode);

// DrvSplDeviceCaps: the same for paper names and media ready only, with the buffer's size in units.
[[nodiscard]] DWORD spooler_capability(HANDLE printer, LPWSTR device, WORD index, void* output,
                                       DWORD output_units, const DEVMODEW* devmode);

}  // namespace devcaps
