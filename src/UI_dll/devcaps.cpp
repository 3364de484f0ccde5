#include "UI_dll/devcaps.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "UI_dll/ptrinfo.h"
#include "common/qk/handle.h"
#include "common/qk/memory_probe.h"
#include "common/qk/resource_dll.h"
#include "common/qk/trace.h"
#include "lib/devmode.h"
#include "lib/forms.h"
#include "resources/ids.h"

namespace devcaps {

namespace {

constexpr size_t kNameUnits = 64;  // a paper's name
constexpr size_t kBinNameUnits = 24;
constexpr size_t kPersonalityUnits = 32;
constexpr POINTS kSmallest = {254, 254};  // tenths of a millimetre
constexpr POINTS kLargest = {32767, 32767};
constexpr POINT kCustomSize = {2100, 2970};  // what the custom-size entry tells, deliberately that of A4

constexpr DWORD extent(POINTS size) noexcept {
    return static_cast<DWORD>(static_cast<WORD>(size.y)) << 16 | static_cast<WORD>(size.x);
}

// The answers that do not depend on the printer and write nothing, by index.
constexpr auto kConstants = [] {
    std::array<std::optional<DWORD>, DC_NUP + 1> answers = {};
    answers[DC_MINEXTENT] = extent(kSmallest);
    answers[DC_MAXEXTENT] = extent(kLargest);
    answers[DC_DUPLEX] = 0;
    answers[DC_SIZE] = kDevmodeSize;  // merging never changes the layout
    answers[DC_EXTRA] = kDevmodeExtra;
    answers[DC_VERSION] = kSpecVersion;
    answers[DC_DRIVER] = kDriverVersion;
    answers[DC_TRUETYPE] = DCTT_DOWNLOAD;
    answers[DC_ORIENTATION] = 90;
    answers[DC_COPIES] = 1;
    answers[DC_COLLATE] = 0;
    answers[DC_PRINTRATE] = 100;
    answers[DC_PRINTRATEUNIT] = PRINTRATEUNIT_PPM;
    answers[DC_PRINTERMEM] = 0x40000;
    answers[DC_STAPLE] = 0;
    answers[DC_PRINTRATEPPM] = 100;
    answers[DC_COLORDEVICE] = 1;
    answers[DC_NUP] = 0;
    return answers;
}();

// A caller's buffer, of which nobody says how large it is.
class Buffer {
public:
    explicit Buffer(void* start) noexcept : at_(static_cast<std::byte*>(start)) {}

    // False with last error 87.
    [[nodiscard]] bool can_take(size_t bytes) const noexcept {
        if (!at_ || qk::is_writable(at_, bytes))
            return true;
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }

    template <class T>
    void put(const T& value) noexcept {
        std::memcpy(at_, &value, sizeof value);
        at_ += sizeof value;
    }

    void clear(size_t bytes) noexcept { std::memset(at_, 0, bytes); }

    // A text in a cleared slot of fixed width, cut to leave a zero behind it, but not within a surrogate
    // pair.
    template <size_t kUnits>
    void put_name(const wchar_t* name) noexcept {
        std::byte* const slot = std::exchange(at_, at_ + kUnits * sizeof(wchar_t));
        size_t units = 0;  // in one go: a list has a hundred names
        for (; units < kUnits - 1 && name[units]; ++units)
            std::memcpy(slot + units * sizeof *name, name + units, sizeof *name);
        wchar_t last = 0;
        std::byte* const last_place = slot + (kUnits - 2) * sizeof last;
        std::memcpy(&last, last_place, sizeof last);
        if (IS_HIGH_SURROGATE(last))  // half a pair
            std::memset(last_place, 0, sizeof last);
    }

    explicit operator bool() const noexcept { return at_ != nullptr; }

private:
    std::byte* at_;
};

constexpr LONG short_tenths(LONG thousandths) noexcept {
    return static_cast<short>(tenths_of_mm(thousandths));
}

// Looked up once: the language library of a process stays the same.
const std::wstring& custom_paper_name() {
    static const std::wstring name = qk::load_string(IDS_CUSTOM_PAPER);
    return name;
}

// Writes one entry per paper and the custom-size entry behind them.
class PaperWriter final : public FormCallback {
public:
    PaperWriter(WORD index, Buffer buffer, const std::vector<FormRecord>& forms) noexcept
        : index_(index), buffer_(buffer), forms_(forms) {}

    void operator()(const FormRecord* form) override {
        if (!fits_)
            prepare();
        if (!*fits_)
            return;
        switch (index_) {
            case DC_PAPERS:
                buffer_.put(form ? form->paper_number : static_cast<uint16_t>(kPaperCustom));
                break;
            case DC_PAPERSIZE:
                buffer_.put(form ? POINT{short_tenths(form->size.cx), short_tenths(form->size.cy)}
                                 : kCustomSize);
                break;
            default:
                buffer_.put_name<kNameUnits>(form ? form->name : custom_paper_name().c_str());
                break;
        }
    }

    // Whether the buffer could take them all; else nothing has been written.
    [[nodiscard]] bool done() const noexcept { return fits_.value_or(false); }

private:
    void prepare() noexcept {
        const size_t entry = index_ == DC_PAPERS      ? sizeof(uint16_t)
                             : index_ == DC_PAPERSIZE ? sizeof(POINT)
                                                      : kNameUnits * sizeof(wchar_t);
        const size_t bytes = (forms_.size() + 1) * entry;
        fits_ = buffer_.can_take(bytes);
        if (*fits_)
            buffer_.clear(bytes);
    }

    WORD index_;
    Buffer buffer_;
    const std::vector<FormRecord>& forms_;
    std::optional<bool> fits_;  // known with the first paper, when their number is
};

DWORD list_papers(HANDLE printer, WORD index, Buffer buffer) {
    FormRecords forms;
    PaperWriter write(index, buffer, forms.list);
    if (!ZRTK_EnumForms(printer, buffer ? &write : nullptr, forms) || (buffer && !write.done()))
        return kFailed;
    return static_cast<DWORD>(forms.list.size() + 1);
}

template <size_t kUnits>
DWORD name_in_slot(const wchar_t* name, Buffer buffer) noexcept {
    if (!buffer.can_take(kUnits * sizeof(wchar_t)))
        return kFailed;
    if (buffer) {
        buffer.clear(kUnits * sizeof(wchar_t));
        buffer.put_name<kUnits>(name);
    }
    return 1;
}

DWORD list_resolutions(Buffer buffer) noexcept {
    if (!buffer.can_take(kOfferedResolutions.size() * sizeof(POINT)))
        return kFailed;
    if (buffer)
        for (const LONG resolution : kOfferedResolutions)
            buffer.put(POINT{resolution, resolution});
    return static_cast<DWORD>(kOfferedResolutions.size());
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

DWORD fields_of_devmode(HANDLE printer, const DEVMODEW* devmode) {
    return MapPrinter(printer, devmode).devmode.dm.dmFields;
}

DWORD bad_parameter() noexcept {
    SetLastError(ERROR_INVALID_PARAMETER);
    return kFailed;
}

// The printer is asked only for the answers that depend on it: programs ask dozens of these while a window
// opens, and each call of the spooler may go over a network.
DWORD answer(HANDLE printer, LPWSTR device, WORD index, Buffer buffer, const DEVMODEW* devmode) {
    if (index < kConstants.size() && kConstants[index])
        return *kConstants[index];
    switch (index) {
        case DC_FIELDS:
            return fields_of_devmode(CallPrinter(printer, device).get(), devmode);
        case kSplPaperNames:
            if (!buffer)
                return bad_parameter();
            [[fallthrough]];
        case DC_PAPERS:
        case DC_PAPERSIZE:
        case DC_PAPERNAMES:
            return list_papers(CallPrinter(printer, device).get(), index, buffer);
        case kSplMediaReady:
            if (!buffer)
                return bad_parameter();
            [[fallthrough]];
        case DC_MEDIAREADY:
            return name_in_slot<kNameUnits>(kCurrentForm, buffer);
        case DC_BINS:
            return one_value(WORD{1}, 1, buffer);
        case DC_BINNAMES:
            return name_in_slot<kBinNameUnits>(L"PDF", buffer);
        case DC_ENUMRESOLUTIONS:
            return list_resolutions(buffer);
        case DC_FILEDEPENDENCIES:
            return one_value(L'\0', 0, buffer);
        case DC_PERSONALITY:
            return name_in_slot<kPersonalityUnits>(L"NONE", buffer);
        default:
            TRACE_F(L"defaullt:Capability=%d", int{index});
            return 0;
    }
}

}  // namespace

DWORD capability(HANDLE printer, LPWSTR device, WORD index, void* output, const DEVMODEW* devmode) {
    TRACE("DrvDeviceCapabilities");
    const DWORD result = answer(printer, device, index, Buffer(output), devmode);
    TRACE_F(L"<<DrvDeviceCapabilities:ret=%d", static_cast<int>(result));
    return result;
}

DWORD spooler_capability(HANDLE printer, LPWSTR device, WORD index, void* output, DWORD output_units,
                         const DEVMODEW* devmode) {
    if (index != DC_PAPERNAMES && index != DC_MEDIAREADY)
        return bad_parameter();
    WORD asked = index;  // without a buffer the index goes on unchanged, which counts
    if (output) {
        const auto slots = static_cast<DWORD>(output_units / kNameUnits);
        if (slots == 0) {
            SetLastError(ERROR_INSUFFICIENT_BUFFER);
            return kFailed;
        }
        if (!Buffer(output).can_take(sizeof slots))
            return kFailed;
        std::memcpy(output, &slots, sizeof slots);
        asked = index == DC_PAPERNAMES ? kSplPaperNames : kSplMediaReady;
    }
    return capability(printer, device, asked, output, devmode);
}

}  // namespace devcaps
