#include "bench/queries.h"

#include <functional>
#include <vector>

#include "UI_dll/ddi.h"
#include "bench/measure.h"
#include "common/printer_handle.h"
#include "common/qk/handle.h"
#include "lib/devmode.h"
#include "tests/support/capability_rows.h"
#include "tests/support/handle_count.h"

namespace bench {

namespace {

using Capabilities = DWORD WINAPI(HANDLE, LPWSTR, WORD, void*, DEVMODEW*);
using Sheets = LONG WINAPI(PROPSHEETUI_INFO*, LPARAM);

volatile DWORD sink = 0;

// A printer of the driver, asked through the module as it is installed.
class Asked {
public:
    Asked(std::wstring printer, const std::wstring& module_path)
        : name(std::move(printer)), library_(LoadLibraryW(module_path.c_str())) {
        if (!library_ || !OpenPrinterW(name.data(), handle_.put(), nullptr))
            return;
        ours = qk::find_export<Capabilities>(library_.get(), "DrvDeviceCapabilities");
        sheets = qk::find_export<Sheets>(library_.get(), "DrvDocumentPropertySheets");
    }

    explicit operator bool() const { return ours && sheets; }
    [[nodiscard]] HANDLE printer() const { return handle_.get(); }
    DWORD ask(WORD index, void* buffer) { return ours(printer(), name.data(), index, buffer, nullptr); }

    // The direct DEVMODE query.
    LONG copy_devmode() {
        DriverDevmode out = {};
        DocumentPropertyHeader header = {sizeof header, 0,       printer(),  name.data(),
                                         nullptr,       &out.dm, sizeof out, DM_COPY};
        return sheets(nullptr, reinterpret_cast<LPARAM>(&header));
    }

    std::wstring name;
    Capabilities* ours = nullptr;
    Sheets* sheets = nullptr;

private:
    qk::DLL library_;
    qk::PrinterHandleObj handle_;
};

std::vector<BYTE>& scratch() {
    static std::vector<BYTE> buffer(1 << 20);
    return buffer;
}

DWORD list_forms(HANDLE printer) {
    DWORD size = 0;
    DWORD count = 0;
    EnumFormsW(printer, 1, nullptr, 0, &size, &count);
    EnumFormsW(printer, 1, scratch().data(), size, &size, &count);
    return count;
}

// What a query for the DEVMODE cannot do without.
void read_printer_and_forms(HANDLE printer) {
    DWORD size = 0;
    GetPrinterW(printer, 2, nullptr, 0, &size);
    GetPrinterW(printer, 2, scratch().data(), size, &size);
    list_forms(printer);
}

std::string label(const char* what, bool buffer) {
    return std::string(what) + (buffer ? " into a buffer" : "");
}

bool time_constants(Asked& asked) {
    wchar_t folder[MAX_PATH] = {};
    DWORD size = 0;
    GetPrinterDriverDirectoryW(nullptr, nullptr, 1, reinterpret_cast<BYTE*>(folder), sizeof folder, &size);
    const qk::DLL other(LoadLibraryW((folder + std::wstring(L"\\3\\wineps.drv")).c_str()));
    auto* theirs = other ? qk::find_export<Capabilities>(other.get(), "DrvDeviceCapabilities") : nullptr;
    if (!theirs) {
        std::puts("constant answers are not measured: no wineps.drv");
        return false;
    }
    bool good = true;
    for (const WORD index :
         std::initializer_list<WORD>{DC_COPIES, DC_ORIENTATION, DC_DUPLEX, DC_BINNAMES, DC_ENUMRESOLUTIONS}) {
        for (const bool into_buffer : {false, true}) {
            BYTE* buffer = into_buffer ? scratch().data() : nullptr;
            const auto pair = compare(
                101, 2000, [&] { sink = asked.ask(index, buffer); },
                [&] { sink = theirs(asked.printer(), asked.name.data(), index, buffer, nullptr); });
            good &= report(label(kCapabilityRows[index].name, into_buffer).c_str(),
                           "DrvDeviceCapabilities of wineps.drv", pair, 1.5);
        }
    }
    return good;
}

bool time_lists(Asked& asked) {
    bool good = true;
    for (const WORD index : std::initializer_list<WORD>{DC_PAPERS, DC_PAPERSIZE, DC_PAPERNAMES}) {
        const auto pair = compare(
            101, 100, [&] { sink = asked.ask(index, scratch().data()); },
            [&] { sink = list_forms(asked.printer()); });
        good &= report(kCapabilityRows[index].name, "EnumFormsW twice", pair, 2.0);
    }
    return good;
}

bool time_devmode(Asked& asked) {
    const auto floor = [&] { read_printer_and_forms(asked.printer()); };
    bool good = true;
    for (const WORD index : std::initializer_list<WORD>{DC_FIELDS, DC_SIZE})
        good &= report(kCapabilityRows[index].name, "GetPrinterW twice and EnumFormsW twice",
                       compare(
                           101, 20, [&] { sink = asked.ask(index, nullptr); }, floor),
                       1.2);
    const auto pair = compare(
        101, 20, [&] { sink = static_cast<DWORD>(asked.copy_devmode()); }, floor);
    const bool answered = sink == 1;  // by the last call: a refusal would be fast
    return report("direct DEVMODE query", "GetPrinterW twice and EnumFormsW twice", pair, 1.2) && answered &&
           good;
}

bool stays_level(const char* what, const std::function<void()>& query) {
    for (int i = 0; i < 100; ++i)
        query();
    const size_t bytes = private_bytes();
    const unsigned handles = handle_count();
    for (int i = 0; i < 10000; ++i)
        query();
    const auto grown = static_cast<long long>(private_bytes()) - static_cast<long long>(bytes);
    const int more = static_cast<int>(handle_count()) - static_cast<int>(handles);
    const bool good = grown <= 0 && more <= 0;
    std::printf("10,000 times %-31s %+12lld bytes %+12d handles  %s\n", what, grown, more,
                good ? "ok" : "GROWS");
    return good;
}

}  // namespace

bool time_queries(const std::wstring& printer, const std::wstring& module_path) {
    Asked asked(printer, module_path);
    if (!asked) {
        std::printf("the queries are not measured: no printer \"%ls\"\n", printer.c_str());
        return false;
    }
    bool good = time_constants(asked);
    good &= time_lists(asked);
    good &= time_devmode(asked);
    good &= stays_level("DC_COPIES", [&] { asked.ask(DC_COPIES, nullptr); });
    good &= stays_level("DC_PAPERNAMES", [&] { asked.ask(DC_PAPERNAMES, scratch().data()); });
    good &= stays_level("DC_FIELDS", [&] { asked.ask(DC_FIELDS, nullptr); });
    good &= stays_level("direct DEVMODE query", [&] { asked.copy_devmode(); });
    return good;
}

bool print_answers(const std::wstring& printer, const std::wstring& module_path) {
    Asked asked(printer, module_path);
    if (!asked) {
        std::printf("no printer \"%ls\"\n", printer.c_str());
        return false;
    }
    const DWORD papers = list_forms(asked.printer()) + 5;  // none of this system's forms is the printer's own
    bool good = true;
    std::printf("%-6s%-22s%12s%12s%12s\n", "index", "name", "expected", "export", "system");
    for (const CapabilityRow& row : kCapabilityRows) {
        const DWORD expected = row.kind == CapabilityRow::kPapers ? papers : row.value;
        const DWORD ours = asked.ask(row.index, nullptr);
        const auto system =
            static_cast<DWORD>(DeviceCapabilitiesW(asked.name.c_str(), nullptr, row.index, nullptr, nullptr));
        const bool same = ours == expected && system == expected;
        std::printf("%-6u%-22s%12lu%12lu%12lu%s\n", unsigned{row.index}, row.name,
                    static_cast<unsigned long>(expected), static_cast<unsigned long>(ours),
                    static_cast<unsigned long>(system), same ? "" : "  DIFFERENT");
        good &= same;
    }
    return good;
}

}  // namespace bench
