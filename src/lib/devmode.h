// The driver's DEVMODE: the public part of the system and 36 bytes of our own behind it, 256 bytes in all.
#pragma once

#include <windows.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "lib/forms.h"

// Behind the public part of every DEVMODE of this driver; little-endian.
struct PrivateDevmode {
    static constexpr uint32_t kSignature = 0x5045444D;  // "MDEP"
    static constexpr uint32_t kVersion = 0x07050200;
    static constexpr uint32_t kCarriedFlag = 1;  // the only flag that is carried over

    uint32_t signature;
    uint32_t version;
    uint32_t flags;
    COLORADJUSTMENT colour;
};

struct DriverDevmode {
    DEVMODEW dm;
    PrivateDevmode extra;
};

inline constexpr WORD kDevmodeSize = 220;
inline constexpr WORD kDevmodeSize351 = 188;
inline constexpr WORD kDevmodeSize400 = 212;
inline constexpr WORD kDevmodeExtra = 36;
// Resolutions in dots per inch: those that programs and people are offered, and those that a DEVMODE may ask
// for.
inline constexpr std::array<short, 10> kOfferedResolutions = {72,  96,  144,  300,  360,
                                                              600, 720, 1200, 2400, 3600};
inline constexpr std::array<short, 12> kKnownResolutions = {72,  96,  144,  150,  300,  360,
                                                            600, 720, 1200, 2400, 3600, 4000};

inline constexpr WORD kSpecVersion = 0x0401;
inline constexpr WORD kDriverVersion = 0x0800;
inline constexpr DWORD kDriverDevmodeSize = kDevmodeSize + kDevmodeExtra;

static_assert(sizeof(DEVMODEW) == kDevmodeSize);
static_assert(sizeof(PrivateDevmode) == kDevmodeExtra && offsetof(PrivateDevmode, colour) == 12);
static_assert(sizeof(DriverDevmode) == 256 && offsetof(DriverDevmode, extra) == kDevmodeSize);

// The modes of DrvConvertDevMode, which the tool chain's headers lack.
inline constexpr DWORD kConvert = 1;        // CDM_CONVERT
inline constexpr DWORD kConvert351 = 2;     // CDM_CONVERT351
inline constexpr DWORD kDriverDefault = 4;  // CDM_DRIVER_DEFAULT

inline constexpr DWORD kColourRefused = 0x20000000;  // in a merge's mask: the colour adjustment was mended
inline constexpr short kPaperCustom = DMPAPER_USER;

// The driver's default: A4, portrait, 600 dpi, colour, one copy.
[[nodiscard]] DriverDevmode default_devmode() noexcept;

// Copies `source` into `target`, keeping the target's size fields and writing the version that goes with
// them. Both are callers' memory: what is copied, the smaller of both parts, is checked before it is touched.
// The number of bytes copied, or -1. `source_extra` (may be null) receives the size of the source's private
// part as it was copied.
int ConvertDevmode(const DEVMODEW* source, DEVMODEW* target, WORD* source_extra = nullptr) noexcept;

// Shapes the driver's DEVMODE into the layout of the caller's (null: the driver's own). 1 on success, else 0.
int ConvertDevmodeOut(const DEVMODEW* driver, const DEVMODEW* caller, DEVMODEW* output) noexcept;

enum class ConvertResult { kFailed = 0, kDone = 1, kCallerFinishes = 2 };

// Everything of a conversion (the modes of DrvConvertDevMode) but the driver default, which the caller
// writes. `needed` holds the target's size in bytes and receives the size needed. Last error 87 or 122 on
// failure.
[[nodiscard]] ConvertResult CommonDrvConvertDevmode(const DEVMODEW* source, DEVMODEW* target, DWORD* needed,
                                                    DWORD mode) noexcept;

// What a merge reads of the outside world, so that rules can be told from calls.
class MergeSource {
public:
    virtual ~MergeSource() = default;
    // The papers of the printer; empty when it has none or cannot say. Asked at most once per merge.
    virtual const std::vector<FormRecord>& forms() = 0;
    // What the override file says of the orientation (DMORIENT_*), 0 when it says nothing.
    virtual short forced_orientation() = 0;
};

// Merges what `incoming` sets into `devmode` and returns the dmFields bits whose values were refused. An
// incoming DEVMODE that is no DEVMODE changes nothing.
DWORD merge_incoming(const DEVMODEW* incoming, DriverDevmode& devmode, MergeSource& source);

// Fills `devmode` with the default, then the printer's own DEVMODE, then the caller's (may be null), and
// returns the refusal mask of the last merge.
DWORD MergeDevmode(HANDLE printer, const DEVMODEW* caller, DriverDevmode& devmode);

// Puts every field of the record that is out of range back to its default; false when one was.
[[nodiscard]] bool validate_colour(COLORADJUSTMENT& colour) noexcept;
