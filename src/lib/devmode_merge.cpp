// Merging a caller's DEVMODE into the driver's: what is taken, what is refused.
#include <windows.h>
#include <winspool.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <string_view>

#include "common/qk/override_ini.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "lib/devmode.h"

namespace {

constexpr DWORD kPaperBits = DM_PAPERSIZE | DM_PAPERLENGTH | DM_PAPERWIDTH | DM_FORMNAME;
constexpr DWORD kCustomBits = DM_PAPERSIZE | DM_PAPERLENGTH | DM_PAPERWIDTH;
constexpr short kDefaultResolution = 600;

struct Paper {
    short number;
    short width;  // tenths of a millimetre
    short length;
    std::wstring_view name;
};

// One merge of one DEVMODE: `in` is the caller's in our own layout.
class Merge {
public:
    Merge(const DriverDevmode& in, bool has_extra, DriverDevmode& out, MergeSource& source) noexcept
        : in_(in), has_extra_(has_extra), out_(out), source_(source) {}

    DWORD run() {
        refused_ = in_.dm.dmFields & kPaperBits;
        merge_orientation();
        merge_paper();
        merge_scalars();
        if (has_extra_)
            merge_extra();
        return refused_;
    }

private:
    // Takes a field whose bit is set when `good`, else notes it as refused.
    template <class T>
    void take(DWORD bit, T& out, T in, bool good) noexcept {
        if (!(in_.dm.dmFields & bit))
            return;
        if (!good) {
            refused_ |= bit;
            return;
        }
        out = in;
        out_.dm.dmFields |= bit;
    }

    void merge_orientation() {
        const short orientation = in_.dm.dmOrientation;
        take(DM_ORIENTATION, out_.dm.dmOrientation, orientation,
             orientation == DMORIENT_PORTRAIT || orientation == DMORIENT_LANDSCAPE);
        if (const short forced = source_.forced_orientation())
            out_.dm.dmOrientation = forced;
    }

    void merge_paper() {
        const DEVMODEW& in = in_.dm;
        TRACE_F(L"PlotDMIn.dm: dmPaperSize=%d, dmPaperWidth=%d, dmPaperLength=%d", int{in.dmPaperSize},
                int{in.dmPaperWidth}, int{in.dmPaperLength});
        if (is_custom_paper())
            take_custom_paper();
        else if (in.dmFields & (DM_PAPERSIZE | DM_FORMNAME))
            take_form();
        TRACE_F(L"pPlotDMTo->dm: dmPaperWidth=%d, dmPaperLength=%d", int{out_.dm.dmPaperWidth},
                int{out_.dm.dmPaperLength});
    }

    [[nodiscard]] bool is_custom_paper() const noexcept {
        const DEVMODEW& in = in_.dm;
        return (in.dmFields & kCustomBits) == kCustomBits &&
               (in.dmPaperSize == 0 || in.dmPaperSize == kPaperCustom) && in.dmPaperWidth != 0 &&
               in.dmPaperLength != 0;
    }

    void take_custom_paper() noexcept {
        DEVMODEW& out = out_.dm;
        out.dmPaperWidth = in_.dm.dmPaperWidth;
        out.dmPaperLength = in_.dm.dmPaperLength;
        out.dmPaperSize = kPaperCustom;
        out.dmFields = (out.dmFields | kCustomBits) & ~static_cast<DWORD>(DM_FORMNAME);
        std::ranges::fill(out.dmFormName, L'\0');
        refused_ &= ~kPaperBits;
    }

    void take_form() {
        const std::vector<FormRecord>& forms = source_.forms();
        if (forms.empty())
            return;
        const auto paper = find_paper(forms);
        if (!paper)
            return;
        DEVMODEW& out = out_.dm;
        out.dmPaperSize = paper->number;
        out.dmPaperWidth = paper->width;
        out.dmPaperLength = paper->length;
        qk::copy_zero_padded(out.dmFormName, std::size(out.dmFormName), paper->name);
        out.dmFields |= DM_PAPERSIZE | DM_FORMNAME;
        out.dmFields &= ~static_cast<DWORD>(DM_PAPERLENGTH | DM_PAPERWIDTH);
        refused_ &= ~kPaperBits;
    }

    [[nodiscard]] std::optional<Paper> find_paper(const std::vector<FormRecord>& forms) const noexcept {
        const DEVMODEW& in = in_.dm;
        if (in.dmPaperSize == kDriverPaperA0)
            return Paper{in.dmPaperSize, 8410, 11889, L"A0"};  // 1188.9 mm long, as it has always been
        if (in.dmPaperSize == kDriverPaperA1)
            return Paper{in.dmPaperSize, 5940, 8410, L"A1"};
        const std::wstring_view name(in.dmFormName, wcsnlen(in.dmFormName, std::size(in.dmFormName)));
        const FormRecord* form = in.dmFields & DM_PAPERSIZE
                                     ? find_form(forms, static_cast<uint16_t>(in.dmPaperSize))
                                     : find_form(forms, name);
        if (!form)
            return std::nullopt;
        return Paper{static_cast<short>(form->paper_number), static_cast<short>(tenths_of_mm(form->size.cx)),
                     static_cast<short>(tenths_of_mm(form->size.cy)), form->name};
    }

    void merge_scalars() noexcept {
        const DEVMODEW& in = in_.dm;
        DEVMODEW& out = out_.dm;
        take(DM_SCALE, out.dmScale, in.dmScale, in.dmScale >= 1 && in.dmScale <= 400);
        take(DM_COPIES, out.dmCopies, in.dmCopies, in.dmCopies == 1);
        const bool relative = in.dmPrintQuality <= DMRES_DRAFT && in.dmPrintQuality >= DMRES_HIGH;
        take(DM_PRINTQUALITY, out.dmPrintQuality, relative ? kDefaultResolution : in.dmPrintQuality,
             relative || std::ranges::find(kKnownResolutions, in.dmPrintQuality) != kKnownResolutions.end());
        take(DM_COLOR, out.dmColor, in.dmColor,
             in.dmColor == DMCOLOR_MONOCHROME || in.dmColor == DMCOLOR_COLOR);
    }

    void merge_extra() noexcept {
        const PrivateDevmode& in = in_.extra;
        if (in.signature != PrivateDevmode::kSignature || in.version != PrivateDevmode::kVersion)
            return;
        out_.extra.colour = in.colour;
        out_.extra.flags = in.flags & PrivateDevmode::kCarriedFlag;
        if (!validate_colour(out_.extra.colour))
            refused_ |= kColourRefused;
    }

    const DriverDevmode& in_;
    bool has_extra_;
    DriverDevmode& out_;
    MergeSource& source_;
    DWORD refused_ = 0;
};

// The printer's forms and the override file, each asked once and only when a merge needs it.
class PrinterSource final : public MergeSource {
public:
    explicit PrinterSource(HANDLE printer) noexcept : printer_(printer) {}

    const std::vector<FormRecord>& forms() override {
        if (!asked_) {
            asked_ = true;
            (void)ZRTK_EnumForms(printer_, nullptr, forms_);  // without papers the merge keeps its own
        }
        return forms_.list;
    }

    short forced_orientation() override {
        if (!orientation_) {
            const auto orientation = qk::OverrideIni().find_orientation();
            orientation_ = !orientation ? 0 : *orientation == 0 ? DMORIENT_PORTRAIT : DMORIENT_LANDSCAPE;
        }
        return static_cast<short>(*orientation_);
    }

private:
    HANDLE printer_;
    bool asked_ = false;
    FormRecords forms_;
    std::optional<int> orientation_;
};

// A copy of the printer's own DEVMODE inside its information block, empty when it has none that fits into the
// block. A copy, since the spooler places it behind texts, at an address that need not suit a DEVMODEW.
std::vector<std::byte> devmode_of(const qk::SizedAnswer& info) {
    // One that has just been changed does not count: the default serves better than half of it.
    if (!info.bytes || info.stored != info.size)
        return {};
    const auto* devmode = reinterpret_cast<const PRINTER_INFO_2W*>(info.bytes.get())->pDevMode;
    const auto start = reinterpret_cast<uintptr_t>(info.bytes.get());
    const auto at = reinterpret_cast<uintptr_t>(devmode);
    if (at < start || at - start > info.size)
        return {};
    std::vector<std::byte> copy(info.bytes.get() + (at - start), info.bytes.get() + info.size);
    const auto* header = reinterpret_cast<const DEVMODEW*>(copy.data());
    if (copy.size() < offsetof(DEVMODEW, dmFields) ||
        copy.size() < size_t{header->dmSize} + header->dmDriverExtra)
        return {};
    return copy;
}

// Some spoolers ask the driver for a DEVMODE in order to tell the printer's; that inner query gets the
// default.
class AskingOnce {
public:
    AskingOnce() noexcept : first_(!std::exchange(asking_, true)) {}
    ~AskingOnce() {
        if (first_)
            asking_ = false;
    }
    AskingOnce(const AskingOnce&) = delete;
    AskingOnce& operator=(const AskingOnce&) = delete;

    explicit operator bool() const noexcept { return first_; }

private:
    static inline thread_local bool asking_ = false;
    bool first_;
};

qk::SizedAnswer read_printer_info(HANDLE printer) {
    const AskingOnce first;
    if (!first)
        return {};
    return qk::read_sized([&](BYTE* buffer, DWORD bytes,
                              DWORD* needed) { return GetPrinterW(printer, 2, buffer, bytes, needed); },
                          sizeof(PRINTER_INFO_2W));
}

}  // namespace

DWORD merge_incoming(const DEVMODEW* incoming, DriverDevmode& devmode, MergeSource& source) {
    DriverDevmode in = {};
    in.dm.dmSize = kDevmodeSize;
    in.dm.dmDriverExtra = kDevmodeExtra;
    in.dm.dmDriverVersion = kDriverVersion;
    WORD extra = 0;
    if (ConvertDevmode(incoming, &in.dm, &extra) < 0) {
        TRACE("no DEVMODE");
        return 0;
    }
    return Merge(in, extra == kDevmodeExtra, devmode, source).run();
}

DWORD MergeDevmode(HANDLE printer, const DEVMODEW* caller, DriverDevmode& devmode) {
    TRACE("MergeDevmode");
    devmode = default_devmode();
    PrinterSource source(printer);
    DWORD refused = 0;
    const std::vector<std::byte> own = devmode_of(read_printer_info(printer));
    if (!own.empty())
        refused = merge_incoming(reinterpret_cast<const DEVMODEW*>(own.data()), devmode, source);
    if (caller)
        refused = merge_incoming(caller, devmode, source);
    return refused;
}
