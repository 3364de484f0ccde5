#include "bench/render.h"

#include <windows.h>

#include <psapi.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench/measure.h"
#include "common/job_records.h"
#include "common/qk/MMF.h"
#include "common/qk/handle.h"
#include "common/qk/module.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "companions/wine_layer.h"
#include "print_settings/PrintSettings.h"
#include "tests/support/temp_folder.h"

namespace bench {

namespace {

using companions::wine::find_unix_path;

constexpr int kRuns = 5;
constexpr int kPages = 44;
constexpr int kManyPages = 1000;
constexpr int kSide = 160;  // of a picture, in pixels

// A page: a picture and lines of text, an address among them.
void draw_page(HDC page, int number) {
    std::vector<uint8_t> pixels(kSide * kSide * 3);
    for (size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<uint8_t>(i * 7 / (i % 3 + 3) + static_cast<size_t>(number) * 11);
    BITMAPINFO picture = {};
    picture.bmiHeader = {sizeof(BITMAPINFOHEADER), kSide, kSide, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    StretchDIBits(page, 600, 400, 1200, 1200, 0, 0, kSide, kSide, pixels.data(), &picture, DIB_RGB_COLORS,
                  SRCCOPY);
    const int line_height = GetDeviceCaps(page, LOGPIXELSY) / 5;
    for (int line = 0; line < 40; ++line) {
        const std::wstring text = qk::format(
            L"Page %d, line %d: see https://example.org/%d for a text of usual length", number, line, line);
        TextOutW(page, 600, 1800 + line * line_height, text.c_str(), static_cast<int>(text.size()));
    }
}

bool print_document(const std::wstring& spool, int pages) {
    const HDC printer = CreateDCW(L"WINSPOOL", qk::kProductName, nullptr, nullptr);
    const DOCINFOW document = {sizeof document, L"bench", spool.c_str(), nullptr, 0};
    bool good = printer && StartDocW(printer, &document) > 0;
    for (int page = 1; good && page <= pages; ++page) {
        good = StartPage(printer) > 0;
        draw_page(printer, page);
        good = good && EndPage(printer) > 0;
    }
    good = good && EndDoc(printer) > 0;
    DeleteDC(printer);
    return good;
}

// A job as the module leaves it for the renderer.
class Job {
public:
    Job(const TempFolder& folder, const ps::PrintSettings& settings)
        : setting_(folder.file(L"setting.ps4")), output_(folder.file(L"out.pdf")) {
        if (!settings.Save(setting_))
            std::abort();
        qk::copy_zero_padded(start_.view()->output_path, kRecordTextUnits, output_);
    }

    // Memory of the renderer at its most, in MiB; 0 when it failed.
    size_t render(const std::wstring& spool) {
        const std::wstring own = qk::module_path(nullptr);
        const std::wstring program =
            own.substr(0, own.size() - qk::file_part(own).size()) + L"..\\stage\\zr_render.exe";
        std::wstring line = L"\"" + program + L"\" --thread " + std::to_wstring(GetCurrentThreadId()) +
                            L" --printer Bench --keep-spool --spool \"" + spool + L"\" --setting \"" +
                            setting_ + L"\"";
        STARTUPINFOW startup = {sizeof startup};
        PROCESS_INFORMATION made = {};
        // As the print processor starts it.
        if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS, nullptr,
                            nullptr, &startup, &made))
            return 0;
        const qk::HandleObj process(made.hProcess);
        const qk::HandleObj thread(made.hThread);
        WaitForSingleObject(process.get(), INFINITE);
        DWORD code = 1;
        GetExitCodeProcess(process.get(), &code);
        PROCESS_MEMORY_COUNTERS memory = {};
        K32GetProcessMemoryInfo(process.get(), &memory, sizeof memory);
        return code == 0 ? (memory.PeakWorkingSetSize >> 20) + 1 : 0;
    }

private:
    std::wstring setting_;
    std::wstring output_;
    const qk::MMF<ZRTKPrintStartInfoC> start_{
        qk::format(kStartBlockName, static_cast<int>(GetCurrentThreadId()))};
    const qk::MMF<ZRTKPrintInfo> result_{
        qk::format(kResultBlockName, static_cast<int>(GetCurrentThreadId()))};
};

bool run_engine(const TempFolder& folder, const std::wstring& spool) {
    const std::string output = find_unix_path(folder.file(L"bare.pdf")).value_or("");
    const std::vector<std::string> command = {"gs",
                                              "-q",
                                              "-dSAFER",
                                              "-dBATCH",
                                              "-dNOPAUSE",
                                              "-sDEVICE=pdfwrite",
                                              "-sOutputFile=" + output,
                                              find_unix_path(spool).value_or("")};
    return companions::wine::run_unix_program(command) == 0;
}

void everything(ps::PrintSettings& settings) {
    settings.general()->URLLink = true;
    settings.watermark()->Style = ps::Watermark_impl::kTextMark;
    settings.pdfVersion()->Version = ps::kPDF20;
    settings.security()->MasterPassword = L"owner";
    settings.security()->UserPassword = L"user";
}

bool compare_with_engine(const TempFolder& folder, const std::wstring& spool) {
    const struct {
        const char* what;
        void (*change)(ps::PrintSettings&);
        double limit;
    } rows[] = {{"44 pages, standard setting", [](ps::PrintSettings&) {}, 1.15},
                {"... links, watermark, linearized, AES-256", &everything, 1.6}};
    bool good = true;
    for (const auto& row : rows) {
        ps::PrintSettings settings;
        row.change(settings);
        Job job(folder, settings);
        bool done = true;
        const auto pair = compare(
            kRuns, 1, [&] { done = job.render(spool) != 0 && done; },
            [&] { done = run_engine(folder, spool) && done; });
        good = report(row.what, "bare Ghostscript", pair, row.limit) && done && good;
    }
    return good;
}

// In the engine's place: notes its memory at its most while it works, in KiB.
std::wstring watched_engine(const TempFolder& folder) {
    const std::wstring script =
        folder.write(L"engine",
                     "#!/bin/sh\ngs \"$@\" &\np=$!\nwhile kill -0 $p 2>/dev/null; do\n"
                     "  m=$(sed -n 's/^VmHWM:[^0-9]*\\([0-9]*\\).*/\\1/p' /proc/$p/status 2>/dev/null)\n"
                     "  [ -z \"$m\" ] || echo $m >\"${0%engine}memory\"\n  sleep 0.1\ndone\nwait $p\n");
    const std::string path = find_unix_path(script).value_or("");
    const std::vector<std::string> command = {"chmod", "+x", path};
    return companions::wine::run_unix_program(command) == 0 ? qk::to_wide(path) : std::wstring();
}

bool measure_growth(const TempFolder& folder, const std::wstring& few, const std::wstring& many) {
    SetEnvironmentVariableW(L"ZR_GHOSTSCRIPT", watched_engine(folder).c_str());
    Job job(folder, ps::PrintSettings());
    double per_page[2] = {};
    double engine[2] = {};
    size_t renderer[2] = {};
    for (const int run : {0, 1}) {
        const double start = now_microseconds();
        renderer[run] = job.render(run ? many : few);
        per_page[run] = (now_microseconds() - start) / 1000 / (run ? kManyPages : kPages);
        engine[run] = std::atof(TempFolder::read(folder.file(L"memory")).c_str()) / 1024;
        std::printf("%4d pages: %.2f ms a page, renderer %zu MiB, engine %.0f MiB\n",
                    run ? kManyPages : kPages, per_page[run], renderer[run], engine[run]);
    }
    const bool good = renderer[0] && renderer[1] && per_page[1] < 1.2 * per_page[0] &&
                      renderer[1] < 2 * renderer[0] && engine[1] < 2 * engine[0];
    std::printf("growth to 1,000 pages: time x%.2f a page, memory x%.2f and x%.2f  %s\n",
                per_page[1] / per_page[0],
                static_cast<double>(renderer[1]) / static_cast<double>(renderer[0]), engine[1] / engine[0],
                good ? "ok" : "TOO MUCH");
    return good;
}

}  // namespace

bool time_rendering() {
    SetEnvironmentVariableW(L"ZR_UNATTENDED", L"1");
    const TempFolder folder;
    const std::wstring few = folder.file(L"few.ps");
    const std::wstring many = folder.file(L"many.ps");
    if (!print_document(few, kPages) || !print_document(many, kManyPages)) {
        std::printf("the documents could not be printed: error %lu\n", GetLastError());
        return false;
    }
    const bool good = compare_with_engine(folder, few);
    return measure_growth(folder, few, many) && good;
}

}  // namespace bench
