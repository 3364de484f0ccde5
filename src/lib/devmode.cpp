#include "lib/devmode.h"

#include <algorithm>

#include "common/qk/memory_probe.h"
#include "common/qk/module.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"

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

// What a DEVMODE says of itself. Read once: the callers' other threads may change it meanwhile.
struct Layout {
    WORD spec_version;
    WORD driver_version;
    WORD size;
    WORD extra;
};
static_assert(sizeof(Layout) == kHeaderBytes - offsetof(DEVMODEW, dmSpecVersion));

bool read_layout(const DEVMODEW* devmode, Layout& layout) noexcept {
    return devmode && qk::try_copy(&layout, &devmode->dmSpecVersion, sizeof layout);
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

// Copies what `source` and a target laid out as `to` have in common, behind which the target says `to` of
// itself, with the version that goes with its size.
int convert(const DEVMODEW* source, DEVMODEW* target, const Layout& to,
            WORD* source_extra = nullptr) noexcept {
    TRACE("ConvertDevmode");
    Layout from = {};
    if (!qk::is_writable(target, kHeaderBytes) || !read_layout(source, from))
        return -1;
    if (spec_version_of(from.size) == 0 && from.spec_version == 0)
        return -1;
    const WORD known = spec_version_of(to.size);
    const WORD spec_version = known != 0 ? known : to.spec_version;
    if (spec_version == 0)
        return -1;
    const WORD public_bytes = std::min(from.size, to.size);
    const WORD extra_bytes = std::min(from.extra, to.extra);
    if (!qk::is_readable(source, public_bytes) || !qk::is_writable(target, public_bytes) ||
        !qk::is_readable(bytes_of(source) + from.size, extra_bytes) ||
        !qk::is_writable(bytes_of(target) + to.size, extra_bytes))
        return -1;
    // A caller may convert a buffer onto itself, or let go of one meanwhile.
    const Layout made = {spec_version, to.driver_version, to.size, to.extra};
    if (!qk::try_copy(target, source, public_bytes) ||
        !qk::try_copy(&target->dmSpecVersion, &made, sizeof made) ||
        !qk::try_copy(bytes_of(target) + to.size, bytes_of(source) + from.size, extra_bytes))
        return -1;
    if (source_extra)
        *source_extra = from.extra;
    return public_bytes + extra_bytes;
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

int ConvertDevmode(const DEVMODEW* source, DEVMODEW* target, WORD* source_extra) noexcept {
    Layout to = {};
    return convert(source, read_layout(target, to) ? target : nullptr, to, source_extra);
}

int ConvertDevmodeOut(const DEVMODEW* driver, const DEVMODEW* caller, DEVMODEW* output) noexcept {
    TRACE("ConvertDevmodeOut");
    Layout own = {};
    if (!output || !read_layout(driver, own))
        return 0;
    Layout callers = own;
    if (caller && !read_layout(caller, callers))
        return 0;
    // The output may be the caller's DEVMODE itself: nothing of that is read from here on.
    const Layout& public_part = callers.size < own.size ? callers : own;
    const Layout& extra_part = callers.extra < own.extra ? callers : own;
    const Layout to = {public_part.spec_version, extra_part.driver_version, public_part.size,
                       extra_part.extra};
    if (!qk::is_writable(output, std::max<size_t>(kHeaderBytes, size_t{to.size} + to.extra)))
        return 0;
    return convert(driver, output, to) > 0 ? 1 : 0;
}

ConvertResult CommonDrvConvertDevmode(const DEVMODEW* source, DEVMODEW* target, DWORD* needed,
                                      DWORD mode) noexcept {
    TRACE("CommonDrvConvertDevmode");
    const auto fail = [](DWORD error) {
        SetLastError(error);
        return ConvertResult::kFailed;
    };
    const DWORD given = *needed;
    switch (mode) {
        case kConvert: {
            Layout to = {};
            if (!source || !read_layout(target, to))
                return fail(ERROR_INVALID_PARAMETER);
            const DWORD size = DWORD{to.size} + to.extra;
            if (given < size || convert(source, target, to) <= 0)
                return fail(ERROR_INVALID_PARAMETER);
            *needed = size;
            return ConvertResult::kDone;
        }
        case kConvert351: {
            if (given < kOldDevmodeSize || !target) {
                *needed = kOldDevmodeSize;
                return fail(ERROR_INSUFFICIENT_BUFFER);
            }
            if (!qk::is_writable(target, kOldDevmodeSize))
                return fail(ERROR_INVALID_PARAMETER);
            constexpr Layout kOld = {kOldSpecVersion, kOldDriverVersion, kDevmodeSize351, kDevmodeExtra};
            if (convert(source, target, kOld) <= 0)
                return fail(ERROR_INVALID_PARAMETER);
            *needed = kOldDevmodeSize;
            return ConvertResult::kDone;
        }
        case kDriverDefault: {
            const bool fits = given >= kDriverDevmodeSize && target;
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
