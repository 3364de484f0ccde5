#include "lib/devmode.h"

#include <algorithm>
#include <cstring>

#include "common/memory_probe.h"
#include "common/module.h"
#include "common/text.h"
#include "common/trace.h"

namespace {

constexpr size_t kHeaderBytes = offsetof(DEVMODEW, dmFields);  // name, versions and sizes
constexpr WORD kOldSpecVersion = 0x0320;
constexpr WORD kOldDriverVersion = 0x0350;
constexpr DWORD kOldDevmodeSize = kDevmodeSize351 + kDevmodeExtra;

// The version written beside a size of the public part; 0 for a size that none goes with.
constexpr WORD spec_version_of(WORD size) noexcept {
    switch (size) {
        case kDevmodeSize351:
            return kOldSpecVersion;
        case kDevmodeSize400:
            return 0x0400;
        case kDevmodeSize:
            return kSpecVersion;
        default:
            return 0;
    }
}

std::byte* bytes_of(DEVMODEW* devmode) noexcept {
    return reinterpret_cast<std::byte*>(devmode);
}
const std::byte* bytes_of(const DEVMODEW* devmode) noexcept {
    return reinterpret_cast<const std::byte*>(devmode);
}

COLORADJUSTMENT default_colour() noexcept {
    return {.caSize = sizeof(COLORADJUSTMENT),
            .caFlags = 0,
            .caIlluminantIndex = 0,
            .caRedGamma = 10000,
            .caGreenGamma = 10000,
            .caBlueGamma = 10000,
            .caReferenceBlack = 0,
            .caReferenceWhite = 10000,
            .caContrast = 0,
            .caBrightness = 0,
            .caColorfulness = 0,
            .caRedGreenTint = 0};
}

template <class T>
bool keep_in_range(T& field, int lowest, int highest, T fallback) noexcept {
    if (field >= lowest && field <= highest)
        return true;
    field = fallback;
    return false;
}

}  // namespace

DriverDevmode default_devmode() noexcept {
    constexpr int32_t kWidth = 210000;  // A4 in thousandths of a millimetre
    constexpr int32_t kLength = 297000;
    DriverDevmode devmode = {};
    DEVMODEW& dm = devmode.dm;
    qk::copy_zero_padded(dm.dmDeviceName, std::size(dm.dmDeviceName), qk::kProductName);
    dm.dmSpecVersion = kSpecVersion;
    dm.dmDriverVersion = kDriverVersion;
    dm.dmSize = kDevmodeSize;
    dm.dmDriverExtra = kDevmodeExtra;
    // Not DM_COPIES, deliberately: the driver makes no copies itself.
    dm.dmFields = DM_ORIENTATION | DM_PAPERSIZE | DM_SCALE | DM_PRINTQUALITY | DM_COLOR | DM_FORMNAME;
    dm.dmOrientation = DMORIENT_PORTRAIT;
    dm.dmPaperSize = DMPAPER_A4;
    dm.dmPaperWidth = static_cast<short>(tenths_of_mm(kWidth));
    dm.dmPaperLength = static_cast<short>(tenths_of_mm(kLength));
    dm.dmScale = 100;
    dm.dmCopies = 1;
    dm.dmPrintQuality = 600;
    dm.dmYResolution = 600;
    dm.dmColor = DMCOLOR_COLOR;
    dm.dmDuplex = DMDUP_SIMPLEX;
    qk::copy_zero_padded(dm.dmFormName, std::size(dm.dmFormName), L"A4");
    dm.dmPelsWidth = static_cast<DWORD>(dm.dmPaperWidth);
    dm.dmPelsHeight = static_cast<DWORD>(dm.dmPaperLength);
    devmode.extra = {PrivateDevmode::kSignature, PrivateDevmode::kVersion, PrivateDevmode::kCarriedFlag,
                     default_colour()};
    return devmode;
}

int ConvertDevmode(const DEVMODEW* source, DEVMODEW* target) noexcept {
    TRACE("ConvertDevmode");
    if (!qk::is_writable(target, kHeaderBytes) || !qk::is_readable(source, kHeaderBytes))
        return -1;
    if (spec_version_of(source->dmSize) == 0 && source->dmSpecVersion == 0)
        return -1;
    const WORD known = spec_version_of(target->dmSize);
    const WORD spec_version = known != 0 ? known : target->dmSpecVersion;
    if (spec_version == 0)
        return -1;
    const WORD size = target->dmSize;
    const WORD extra = target->dmDriverExtra;
    const WORD driver_version = target->dmDriverVersion;
    const WORD source_size = source->dmSize;
    const WORD public_bytes = std::min(source_size, size);
    const WORD extra_bytes = std::min(source->dmDriverExtra, extra);
    if (!qk::is_readable(source, public_bytes) || !qk::is_writable(target, public_bytes) ||
        !qk::is_readable(bytes_of(source) + source_size, extra_bytes) ||
        !qk::is_writable(bytes_of(target) + size, extra_bytes))
        return -1;
    std::memmove(target, source, public_bytes);  // a caller may convert a buffer onto itself
    target->dmSize = size;
    target->dmDriverExtra = extra;
    target->dmDriverVersion = driver_version;
    target->dmSpecVersion = spec_version;
    std::memmove(bytes_of(target) + size, bytes_of(source) + source_size, extra_bytes);
    return public_bytes + extra_bytes;
}

int ConvertDevmodeOut(const DEVMODEW* driver, const DEVMODEW* caller, DEVMODEW* output) noexcept {
    TRACE("ConvertDevmodeOut");
    if (!driver || !output)
        return 0;
    const DEVMODEW* smaller_public = driver;
    const DEVMODEW* smaller_extra = driver;
    if (caller) {
        if (!qk::is_readable(caller, kHeaderBytes))
            return 0;
        smaller_public = caller->dmSize < driver->dmSize ? caller : driver;
        smaller_extra = caller->dmDriverExtra < driver->dmDriverExtra ? caller : driver;
    }
    // Taken before the output is touched: it may be the caller's DEVMODE itself.
    const WORD size = smaller_public->dmSize;
    const WORD spec_version = smaller_public->dmSpecVersion;
    const WORD extra = smaller_extra->dmDriverExtra;
    const WORD driver_version = smaller_extra->dmDriverVersion;
    if (!qk::is_writable(output, std::max<size_t>(kHeaderBytes, size_t{size} + extra)))
        return 0;
    output->dmSize = size;
    output->dmSpecVersion = spec_version;
    output->dmDriverExtra = extra;
    output->dmDriverVersion = driver_version;
    return ConvertDevmode(driver, output) > 0 ? 1 : 0;
}

ConvertResult CommonDrvConvertDevmode(const DEVMODEW* source, DEVMODEW* target, DWORD* needed,
                                      DWORD mode) noexcept {
    TRACE("CommonDrvConvertDevmode");
    const auto fail = [](DWORD error) {
        SetLastError(error);
        return ConvertResult::kFailed;
    };
    switch (mode) {
        case kConvert: {
            if (!target || !source || !qk::is_readable(target, kHeaderBytes))
                return fail(ERROR_INVALID_PARAMETER);
            const DWORD size = DWORD{target->dmSize} + target->dmDriverExtra;
            if (*needed < size || ConvertDevmode(source, target) <= 0)
                return fail(ERROR_INVALID_PARAMETER);
            *needed = size;
            return ConvertResult::kDone;
        }
        case kConvert351: {
            if (*needed < kOldDevmodeSize || !target) {
                *needed = kOldDevmodeSize;
                return fail(ERROR_INSUFFICIENT_BUFFER);
            }
            if (!qk::is_writable(target, kOldDevmodeSize))
                return fail(ERROR_INVALID_PARAMETER);
            target->dmSize = kDevmodeSize351;
            target->dmSpecVersion = kOldSpecVersion;
            target->dmDriverVersion = kOldDriverVersion;
            target->dmDriverExtra = kDevmodeExtra;
            if (ConvertDevmode(source, target) <= 0)
                return fail(ERROR_INVALID_PARAMETER);
            *needed = kOldDevmodeSize;
            return ConvertResult::kDone;
        }
        case kDriverDefault: {
            const bool fits = *needed >= kDriverDevmodeSize && target;
            *needed = kDriverDevmodeSize;
            return fits ? ConvertResult::kCallerFinishes : fail(ERROR_INSUFFICIENT_BUFFER);
        }
        default:
            return ConvertResult::kCallerFinishes;
    }
}

bool validate_colour(COLORADJUSTMENT& colour) noexcept {
    const COLORADJUSTMENT fallback = default_colour();
    if (colour.caSize != sizeof colour) {
        colour = fallback;
        return false;
    }
    constexpr int kLastIlluminant = 8;
    constexpr int kLowestGamma = 02500;  // as the system's headers write it: octal, 1344
    constexpr int kHighestGamma = 65000;
    bool good = keep_in_range(colour.caIlluminantIndex, 0, kLastIlluminant, fallback.caIlluminantIndex);
    for (WORD* gamma : {&colour.caRedGamma, &colour.caGreenGamma, &colour.caBlueGamma})
        good &= keep_in_range(*gamma, kLowestGamma, kHighestGamma, fallback.caRedGamma);
    good &= keep_in_range(colour.caReferenceBlack, 0, 4000, fallback.caReferenceBlack);
    good &= keep_in_range(colour.caReferenceWhite, 6000, 10000, fallback.caReferenceWhite);
    for (SHORT* value :
         {&colour.caContrast, &colour.caBrightness, &colour.caColorfulness, &colour.caRedGreenTint})
        good &= keep_in_range(*value, -100, 100, SHORT{0});
    return good;
}
