#include "UI_dll/devcaps.h"

#include <array>
#include <cstring>

#include "UI_dll/ptrinfo.h"
#include "common/handle.h"
#include "common/memory_probe.h"
#include "common/resource_dll.h"
#include "common/text.h"
#include "common/trace.h"
#include "lib/devmode.h"
#include "lib/forms.h"
#include "resources/ids.h"

namespace devcaps {

namespace {

constexpr DWORD kNameUnits = 64;  // a paper's name
constexpr DWORD kBinNameUnits = 24;
constexpr DWORD kPersonalityUnits = 32;
constexpr std::array<LONG, 10> kResolutions = {72, 96, 144, 300, 360, 600, 720, 1200, 2400, 3600};
constexpr POINTS kSmallest = {254, 254};  // tenths of a millimetre
constexpr POINTS kLargest = {32767, 32767};
constexpr POINT kCustomSize = {2100, 2970};  // what the custom-size entry tells, deliberately that of A4

// An answer that does not depend on the printer; nothing for every other index.
struct Constant {
    WORD index;
    DWORD value;
};

constexpr DWORD extent(POINTS size) noexcept {
    return static_cast<DWORD>(static_cast<WORD>(size.y)) << 16 | static_cast<WORD>(size.x);
}

constexpr Constant kConstants[] = {
    {DC_MINEXTENT, extent(kSmallest)},
    {DC_MAXEXTENT, extent(kLargest)},
    {DC_DUPLEX, 0},
    {DC_TRUETYPE, DCTT_DOWNLOAD},
    {DC_ORIENTATION, 90},
    {DC_COPIES, 1},
    {DC_COLLATE, 0},
    {DC_PRINTRATE, 100},
    {DC_PRINTRATEUNIT, PRINTRATEUNIT_PPM},
    {DC_PRINTERMEM, 0x40000},
    {DC_STAPLE, 0},
    {DC_PRINTRATEPPM, 100},
    {DC_COLORDEVICE, 1},
    {DC_NUP, 0},
};

// A caller's buffer, of which nobody says how large it is.
class Buffer {
public:
    explicit Buffer(void* start) noexcept : at_(static_cast<std::byte*>(start)) {}

    [[nodiscard]] bool can_take(size_t bytes) const noexcept { return !at_ || qk::is_writable(at_, bytes); }

    template <class T>
    void put(const T& value) noexcept {
        std::memcpy(at_, &value, sizeof value);
        at_ += sizeof value;
    }

    void put_name(std::wstring_view name, size_t units) noexcept {
        std::array<wchar_t, kNameUnits> slot = {};
        qk::copy_zero_padded(slot.data(), units, name);
        std::memcpy(at_, slot.data(), units * sizeof(wchar_t));
        at_ += units * sizeof(wchar_t);
    }

    explicit operator bool() const noexcept { return at_ != nullptr; }

private:
    std::byte* at_;
};

constexpr LONG short_tenths(LONG thousandths) noexcept {
    return static_cast<short>(tenths_of_mm(thousandths));
}

// Writes one entry per paper and the custom-size entry behind them.
class PaperWriter final : public FormCallback {
public:
    PaperWriter(WORD index, Buffer& buffer) noexcept : index_(index), buffer_(buffer) {}

    void operator()(const FormRecord* record) override {
        switch (index_) {
            case DC_PAPERS:
                buffer_.put(record ? record->paper_number : static_cast<uint16_t>(DMPAPER_USER));
                break;
            case DC_PAPERSIZE:
                buffer_.put(record ? POINT{short_tenths(record->size.cx), short_tenths(record->size.cy)}
                                   : kCustomSize);
                break;
            default:
                buffer_.put_name(record ? record->name : qk::load_string(IDS_CUSTOM_PAPER), kNameUnits);
                break;
        }
    }

    [[nodiscard]] static size_t entry_bytes(WORD index) noexcept {
        return index == DC_PAPERS      ? sizeof(uint16_t)
               : index == DC_PAPERSIZE ? sizeof(POINT)
                                       : kNameUnits * sizeof(wchar_t);
    }

private:
    WORD index_;
    Buffer& buffer_;
};

// A printer handle for the call: the caller's, or the printer of that name where the caller has none.
class CallPrinter {
public:
    CallPrinter(HANDLE printer, LPWSTR device) noexcept : printer_(printer) {
        if (!printer && device && OpenPrinterW(device, opened_.put(), nullptr))
            printer_ = opened_.get();
    }
    [[nodiscard]] HANDLE get() const noexcept { return printer_; }

private:
    qk::PrinterHandleObj opened_;
    HANDLE printer_;
};

DWORD list_papers(HANDLE printer, WORD index, Buffer buffer) {
    std::vector<FormRecord> records;
    if (!ZRTK_EnumForms(printer, nullptr, records))
        return kFailed;
    const size_t count = records.size() + 1;
    if (!buffer)
        return static_cast<DWORD>(count);
    if (!buffer.can_take(count * PaperWriter::entry_bytes(index)))
        return kFailed;
    PaperWriter write(index, buffer);
    report_forms(records, write);
    return static_cast<DWORD>(count);
}

DWORD name_in_slot(std::wstring_view name, size_t units, Buffer buffer) noexcept {
    if (!buffer.can_take(units * sizeof(wchar_t)))
        return kFailed;
    if (buffer)
        buffer.put_name(name, units);
    return 1;
}

DWORD list_resolutions(Buffer buffer) noexcept {
    if (!buffer.can_take(kResolutions.size() * sizeof(POINT)))
        return kFailed;
    if (buffer)
        for (const LONG resolution : kResolutions)
            buffer.put(POINT{resolution, resolution});
    return static_cast<DWORD>(kResolutions.size());
}

// A value in a buffer that is there; `result` whether it is or not.
template <class T>
DWORD one_value(const T& value, DWORD result, Buffer buffer) noexcept {
    if (!buffer.can_take(sizeof value))
        return kFailed;
    if (buffer)
        buffer.put(value);
    return result;
}

DWORD devmode_figure(const DEVMODEW& dm, WORD index) noexcept {
    switch (index) {
        case DC_FIELDS:
            return dm.dmFields;
        case DC_SIZE:
            return dm.dmSize;
        case DC_EXTRA:
            return dm.dmDriverExtra;
        case DC_VERSION:
            return dm.dmSpecVersion;
        default:
            return dm.dmDriverVersion;
    }
}

DWORD devmode_answer(HANDLE printer, const DEVMODEW* devmode, WORD index) {
    std::unique_ptr<PrinterInformation> information;
    if (!MapPrinter(information, printer, devmode, false))
        return kFailed;
    return devmode_figure(information->devmode.dm, index);
}

// The printer is asked only for the answers that depend on it: programs ask dozens of these while a window
// opens, and each call of the spooler may go over a network.
DWORD answer(HANDLE printer, LPWSTR device, WORD index, Buffer buffer, const DEVMODEW* devmode) {
    for (const Constant& constant : kConstants)
        if (constant.index == index)
            return constant.value;
    switch (index) {
        case DC_FIELDS:
        case DC_SIZE:
        case DC_EXTRA:
        case DC_VERSION:
        case DC_DRIVER:
            return devmode_answer(CallPrinter(printer, device).get(), devmode, index);
        case kSplPaperNames:
            if (!buffer)
                return kFailed;
            [[fallthrough]];
        case DC_PAPERS:
        case DC_PAPERSIZE:
        case DC_PAPERNAMES:
            return list_papers(CallPrinter(printer, device).get(), index, buffer);
        case kSplMediaReady:
            if (!buffer)
                return kFailed;
            [[fallthrough]];
        case DC_MEDIAREADY:
            return name_in_slot(PrinterInformation{}.form_name, kNameUnits, buffer);
        case DC_BINS:
            return one_value(WORD{1}, 1, buffer);
        case DC_BINNAMES:
            return name_in_slot(L"PDF", kBinNameUnits, buffer);
        case DC_ENUMRESOLUTIONS:
            return list_resolutions(buffer);
        case DC_FILEDEPENDENCIES:
            return one_value(L'\0', 0, buffer);
        case DC_PERSONALITY:
            return name_in_slot(L"NONE", kPersonalityUnits, buffer);
        default:
            TRACE_F(L"defaullt:Capability=%d", int{index});
            return 0;
    }
}

}  // namespace

DWORD capability(HANDLE printer, LPWSTR device, WORD index, void* output, const DEVMODEW* devmode) {
    const DWORD result = answer(printer, device, index, Buffer(output), devmode);
    TRACE_F(L"<<DrvDeviceCapabilities:ret=%d", static_cast<int>(result));
    return result;
}

DWORD spooler_capability(HANDLE printer, LPWSTR device, WORD index, void* output, DWORD output_units,
                         const DEVMODEW* devmode) {
    if (index != DC_PAPERNAMES && index != DC_MEDIAREADY)
        return kFailed;
    WORD asked = index;  // without a buffer the index goes on unchanged, which counts
    if (output) {
        const DWORD slots = output_units / kNameUnits;
        if (slots == 0 || !qk::is_writable(output, size_t{slots} * kNameUnits * sizeof(wchar_t)))
            return kFailed;
        std::memcpy(output, &slots, sizeof slots);
        asked = index == DC_PAPERNAMES ? kSplPaperNames : kSplMediaReady;
    }
    return capability(printer, device, asked, output, devmode);
}

}  // namespace devcaps
