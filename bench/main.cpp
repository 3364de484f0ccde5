// Prints each cost of the module beside the system calls that it must make. Exit code 1 when one is too slow.
//
//   zr_bench.exe [printer name]
//   zr_bench.exe --answers [printer name]    prints what each capability index answers instead
//   zr_bench.exe --dialog                    measures the settings dialog alone
//   zr_bench.exe --render                    measures the renderer beside bare Ghostscript instead
#include <windows.h>
#include <winspool.h>
#include <picojson.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "UI_dll/ddi.h"
#include "bench/dialog.h"
#include "bench/job.h"
#include "bench/measure.h"
#include "bench/queries.h"
#include "bench/render.h"
#include "common/qk/handle.h"
#include "common/qk/module.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "lib/forms.h"
#include "print_settings/PrintSettings.h"
#include "tests/support/import_patch.h"
#include "tests/support/temp_folder.h"

namespace {

using bench::compare;
using bench::report;
using Corvanta::Vantrix::PrintSettings::PrintSettings;

volatile DWORD bare_level = 0;
volatile int sink = 0;

std::wstring program_folder() {
    const std::wstring path = qk::module_path(nullptr);
    return path.substr(0, path.size() - qk::file_part(path).size());
}

std::wstring built_module() {
    return program_folder() + L"..\\stage\\ZR_UI80.dll";
}

// Ten of them in each turn, so that where the compiler happens to place the loop counts for little.
template <class Step>
[[gnu::noinline]] void thousand_times(Step step) {
    for (int i = 0; i < 1000; i += 10) {
        step(i), step(i + 1), step(i + 2), step(i + 3), step(i + 4);
        step(i + 5), step(i + 6), step(i + 7), step(i + 8), step(i + 9);
    }
}

bool bench_trace() {
    const auto trace_off = [](int i) __attribute__((always_inline)) {
        TRACE("bench");
        sink = i;
    };
    const auto comparison = [](int i) __attribute__((always_inline)) {
        if (bare_level >= 5)
            std::abort();
        sink = i;
    };
    const auto pair = compare(
        201, 100, [&] { thousand_times(trace_off); }, [&] { thousand_times(comparison); });
    return report("1,000 trace calls at level 0", "1,000 comparisons", pair, 1.5);
}

std::string full_setting(const TempFolder& folder) {
    PrintSettings settings;
    settings->PSName = L"bench";
    for (int key = 0; key < 20; ++key)
        settings->PSComment[key] = L"A comment of some length, under a key of its own";
    for (int i = 0; i < 40; ++i)
        settings.font()->Fonts.push_back(L"Font number " + std::to_wstring(i));
    for (int i = 0; i < 20; ++i)
        settings.addition()->Str[L"Name " + std::to_wstring(i)] = L"Value";
    if (!settings.Save(folder.file(L"bench.ps4")))
        std::abort();
    return TempFolder::read(folder.file(L"bench.ps4"));
}

bool bench_settings(const TempFolder& folder) {
    const std::string bytes = full_setting(folder);
    const std::wstring path = folder.file(L"bench.ps4");
    const std::string_view text = std::string_view(bytes).substr(3);
    const auto parse_alone = [&] {
        picojson::value value;
        std::string error;
        picojson::parse(value, text.begin(), text.end(), &error);
        sink = static_cast<int>(value.get<picojson::object>().size());
    };
    const auto read = compare(
        101, 50,
        [&] {
            PrintSettings settings;
            sink = static_cast<int>(settings.LoadPS4(text, false));
        },
        parse_alone);
    bool good = report("read a full setting", "picojson's parse of the same bytes", read, 1.5);
    const auto load = compare(
        101, 20,
        [&] {
            PrintSettings settings;
            sink = settings.Load(path);
        },
        [&] {
            const std::string read_text = TempFolder::read(path).substr(3);
            picojson::value value;
            std::string error;
            picojson::parse(value, read_text.data(), read_text.data() + read_text.size(), &error);
            sink = static_cast<int>(value.get<picojson::object>().size());
        });
    good &= report("load a full setting file", "read it and let picojson parse it", load, 1.5);
    PrintSettings settings;
    if (!settings.Load(path))
        std::abort();
    const std::wstring saved = folder.file(L"saved.ps4");
    const std::wstring bare = folder.file(L"bare");
    const auto save = compare(
        51, 5, [&] { sink = settings.Save(saved); },
        [&] {
            folder.write(L"bare.tmp", bytes);
            MoveFileExW((bare + L".tmp").c_str(), bare.c_str(), MOVEFILE_REPLACE_EXISTING);
        });
    good &= report("save it", "write the bytes and replace a file", save, 0);
    return good;
}

// Forms of a spooler that has as many as it is told to.
DWORD form_count = 0;

BOOL WINAPI enum_many_forms(HANDLE, DWORD, LPBYTE buffer, DWORD size, LPDWORD needed, LPDWORD count) {
    static wchar_t name[] = L"A form with a name";
    *needed = form_count * static_cast<DWORD>(sizeof(FORM_INFO_1W));
    *count = 0;
    if (size < *needed) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    auto* forms = reinterpret_cast<FORM_INFO_1W*>(buffer);
    for (DWORD i = 0; i < form_count; ++i)
        forms[i] = {FORM_USER, name, {210000, 297000}, {0, 0, 210000, 297000}};
    *count = form_count;
    return TRUE;
}

bool bench_forms() {
    const ImportPatch patch("EnumFormsW", reinterpret_cast<void*>(&enum_many_forms));
    double ratios[3] = {};
    int index = 0;
    for (const DWORD count : {100u, 1000u, 10000u}) {
        form_count = count;
        FormRecords records;
        const auto ours = [&] { sink = ZRTK_EnumForms(nullptr, nullptr, records); };
        const auto pair = compare(51, 5, ours, [] {
            DWORD needed = 0;
            DWORD got = 0;
            std::string buffer(form_count * sizeof(FORM_INFO_1W), '\0');
            enum_many_forms(nullptr, 1, reinterpret_cast<BYTE*>(buffer.data()),
                            static_cast<DWORD>(buffer.size()), &needed, &got);
        });
        const std::string what = "ZRTK_EnumForms over " + std::to_string(count) + " forms";
        report(what.c_str(), "the forms call alone", pair, 0);
        if (records.list.size() < count)
            return false;
        ratios[index++] = pair.ratio;
    }
    const double growth = ratios[2] / ratios[0];  // the call itself grows as caches fill
    std::printf("%-44s x%.2f beside the forms call from 100 to 10,000 forms (linear: about 1)\n",
                "growth of ZRTK_EnumForms", growth);
    return growth < 2.0;
}

// In a process of its own, for the module is never unloaded: prints its own measures.
int measure_load() {
    const std::wstring path = built_module();
    const size_t before = bench::private_bytes();
    const double start = bench::now_microseconds();
    HMODULE module = LoadLibraryW(path.c_str());
    const double loaded = bench::now_microseconds();
    if (!module)
        return 1;
    FreeLibrary(module);
    const double freed = bench::now_microseconds();
    module = LoadLibraryW(path.c_str());
    FreeLibrary(module);
    const double again = bench::now_microseconds();
    std::printf("%.1f %.1f %llu\n", loaded - start, again - freed,
                static_cast<unsigned long long>((bench::private_bytes() - before) / 1024));
    return 0;
}

std::string run_self(const wchar_t* argument) {
    SECURITY_ATTRIBUTES inherit = {sizeof inherit, nullptr, TRUE};
    HANDLE read = nullptr;
    HANDLE write = nullptr;
    CreatePipe(&read, &write, &inherit, 0);
    const qk::HandleObj reader(read);
    STARTUPINFOW startup = {sizeof startup};
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = write;
    PROCESS_INFORMATION process = {};
    std::wstring command = L"\"" + qk::module_path(nullptr) + L"\" " + argument;
    const BOOL started = CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                                        &startup, &process);
    qk::HandleObj(write).reset();
    if (!started)
        return {};
    const qk::HandleObj owner(process.hProcess);
    const qk::HandleObj thread(process.hThread);
    WaitForSingleObject(owner.get(), INFINITE);
    char text[200] = {};
    DWORD size = 0;
    ReadFile(reader.get(), text, sizeof text - 1, &size, nullptr);
    return text;
}

bool bench_load() {
    std::vector<double> first;
    std::vector<double> again;
    unsigned long long private_kib = 0;
    for (int run = 0; run < 15; ++run) {
        double cold = 0;
        double warm = 0;
        if (std::sscanf(run_self(L"--measure-load").c_str(), "%lf %lf %llu", &cold, &warm, &private_kib) != 3)
            return false;
        first.push_back(cold);
        again.push_back(warm);
    }
    std::printf("%-44s %12.1f us  (the very first in this run: %.1f us)\n",
                "load the module into a new process", bench::median(first), first.front());
    std::printf("%-44s %12.1f us\n", "load and free it again in that process", bench::median(again));
    std::printf("%-44s %12llu KiB\n", "private memory added to the host", private_kib);
    WIN32_FILE_ATTRIBUTE_DATA file = {};
    GetFileAttributesExW(built_module().c_str(), GetFileExInfoStandard, &file);
    std::printf("%-44s %12lu bytes  limit 1048576 %s\n", "size of ZR_UI80.dll",
                static_cast<unsigned long>(file.nFileSizeLow),
                file.nFileSizeLow < 1048576 ? "ok" : "TOO LARGE");
    return file.nFileSizeLow < 1048576;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc > 1 && std::wcscmp(argv[1], L"--measure-load") == 0)
        return measure_load();
    if (argc > 1 && std::wcscmp(argv[1], L"--answers") == 0)
        return bench::print_answers(argc > 2 ? argv[2] : qk::kProductName, built_module()) ? 0 : 1;
    if (argc > 1 && std::wcscmp(argv[1], L"--dialog") == 0)
        return bench::time_dialog() ? 0 : 1;
    if (argc > 1 && std::wcscmp(argv[1], L"--render") == 0)
        return bench::time_rendering() ? 0 : 1;
    bool good = bench_trace();
    const TempFolder folder;
    good &= bench_settings(folder);
    good &= bench::time_queries(argc > 1 ? argv[1] : qk::kProductName, built_module());
    good &= bench_load();
    good &= bench::time_job(folder);
    good &= bench_forms();
    good &= bench::time_dialog();
    std::printf("%s\n",
                good ? "bench: all within their limits" : "bench: something is too slow or not measured");
    return good ? 0 : 1;
}
