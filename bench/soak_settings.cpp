// Scenes of the soak around settings: sheets, the list, files that several programs write and are killed at.
#include <windows.h>

#include <prsht.h>
#include <winspool.h>
#include <winddiui.h>

#include <chrono>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "UI_dll/PDFSettings/setting_list.h"
#include "UI_dll/ddi.h"
#include "bench/dialog.h"
#include "bench/program.h"
#include "bench/soak.h"
#include "common/qk/text.h"
#include "lib/devmode.h"
#include "print_settings/PrintSettings.h"

namespace bench {

namespace {

using Corvanta::Vantrix::PrintSettings::PrintSettings;

constexpr int kSavers = 3;
constexpr size_t kListed = 1000;
constexpr wchar_t kCopy[] = L"Copy of the name";

// A setting of some length whose beginning and end say the same.
bool save_numbered(const std::wstring& path, unsigned number) {
    PrintSettings settings;
    settings->PSName = std::to_wstring(number);
    settings.font()->Fonts.assign(200, L"A font with a name");
    settings.addition()->Str[kCopy] = settings->PSName;
    return settings.Save(path);
}

bool is_whole(const std::wstring& path) {
    PrintSettings settings;
    return settings.Load(path) && settings.addition()->Str[kCopy] == settings->PSName;
}

// The document's sheet with its list page, as the property-sheet service makes them.
PROPSHEETPAGEW list_page;

LONG_PTR CALLBACK add_to_sheet(HANDLE, UINT function, LPARAM what, LPARAM) {
    if (function == CPSFUNC_ADD_PROPSHEETPAGEW)
        list_page = *reinterpret_cast<const PROPSHEETPAGEW*>(what);
    return 1;
}

bool show_document_sheet() {
    DriverDevmode output = {};
    DocumentPropertyHeader header = {.cbSize = sizeof header,
                                     .hPrinter = FakePrinter::handle(),
                                     .pdmOut = &output.dm,
                                     .fMode = DM_COPY | DM_PROMPT};
    PROPSHEETUI_INFO info = {.cbSize = sizeof info, .Version = PROPSHEETUI_INFO_VERSION};
    info.pfnComPropSheet = &add_to_sheet;
    info.lParamInit = reinterpret_cast<LPARAM>(&header);
    list_page = {};
    bool good = DrvDocumentPropertySheets(&info, 0) == 1;
    const HWND parent =
        CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 600, 500, nullptr, nullptr, nullptr, nullptr);
    good &= CreateDialogParamW(list_page.hInstance, list_page.pszTemplate, parent, list_page.pfnDlgProc, 0) !=
            nullptr;
    DestroyWindow(parent);
    const SETRESULT_INFO set = {sizeof set, 0, reinterpret_cast<HANDLE>(INT_PTR{1}), CPSUI_OK};
    info.Reason = PROPSHEETUI_REASON_SET_RESULT;
    good &= DrvDocumentPropertySheets(&info, reinterpret_cast<LPARAM>(&set)) == 1 &&
            output.dm.dmSize == kDevmodeSize;
    info.Reason = PROPSHEETUI_REASON_DESTROY;
    return DrvDocumentPropertySheets(&info, 0) == 1 && good;
}

}  // namespace

void play_sheets(const World& /*world*/, ULONGLONG end, Played& played) {
    do {
        played.wrong += !show_document_sheet();
        played.wrong += open_and_close() <= 0;
        played.done += 2;
    } while (GetTickCount64() < end);
}

void play_list(const World& world, ULONGLONG end, Played& played) {
    const std::wstring last = world.folder.file(L"listed 999.ps4");
    if (GetFileAttributesW(last.c_str()) == INVALID_FILE_ATTRIBUTES)
        for (size_t i = 0; i < kListed; ++i)
            played.wrong +=
                !save_numbered(world.folder.file(qk::format(L"listed %03u.ps4", static_cast<unsigned>(i))),
                               static_cast<unsigned>(i));
    do {
        size_t named = 0;
        for (const auto& entry : pdf_settings::ListUpPSFiles())
            named += entry.path.find(L"\\listed ") != std::wstring::npos && entry.is_readable;
        played.wrong += named != kListed || !pdf_settings::is_name_taken(L"500", {});
        ++played.done;
    } while (GetTickCount64() < end);
}

int save_and_load(const std::wstring& path, ULONGLONG milliseconds) {
    bool good = true;
    const ULONGLONG end = GetTickCount64() + milliseconds;
    for (unsigned number = 0; good && GetTickCount64() < end; ++number)
        good = save_numbered(path, GetCurrentProcessId() + number) && is_whole(path);
    return good ? 0 : 1;
}

void play_savers(const World& world, ULONGLONG end, Played& played) {
    const std::wstring path = world.folder.file(L"shared.ps4");
    do {
        played.wrong += !save_numbered(path, 0);
        std::vector<Program> programs;
        for (int i = 0; i < kSavers; ++i)
            programs.emplace_back(L"--save-and-load \"" + path + L"\" 2000");
        for (const ULONGLONG pause = GetTickCount64() + 2000; GetTickCount64() < pause; ++played.done)
            played.wrong += !is_whole(path);
        for (Program& program : programs)
            played.wrong += program.wait() != 0;
    } while (GetTickCount64() < end);
}

void play_kills(const World& world, ULONGLONG end, Played& played) {
    static std::mt19937 engine(static_cast<unsigned>(GetTickCount64()));
    const std::wstring path = world.folder.file(L"killed.ps4");
    played.wrong += !save_numbered(path, 0);
    do {
        Program program(L"--save-and-load \"" + path + L"\" 60000");
        std::this_thread::sleep_for(std::chrono::milliseconds(engine() % 400));
        program.kill();
        played.wrong += program.wait() != Program::kKilled;  // it has failed before
        played.wrong += !is_whole(path);
        ++played.done;
    } while (GetTickCount64() < end);
}

}  // namespace bench
