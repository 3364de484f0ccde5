#include "bench/dialog.h"

#include <windows.h>

#include <picojson.h>
#include <prsht.h>

#include <array>
#include <vector>

#include "UI_dll/PDFSettings/dialog_state.h"
#include "UI_dll/PDFSettings/edit/edit_sheet.h"
#include "UI_dll/PDFSettings/setting_list.h"
#include "UI_dll/plotui.h"
#include "bench/measure.h"
#include "bench/objects.h"
#include "common/qk/text.h"
#include "print_settings/PrintSettings.h"
#include "print_settings/setting_file.h"
#include "tests/support/temp_folder.h"
#include "tests/support/user_registry.h"

namespace bench {

namespace {

using namespace pdf_settings;

// A user's folder of so many settings, and nothing else that is listed.
class SettingFolder {
public:
    explicit SettingFolder(int count) {
        machine_.set_text(L"SOFTWARE\\Corvanta\\Vantrix\\8.0", L"PdfDllPath", folder_.path() + L"\\none\\");
        user_.set_text(L"SOFTWARE\\Corvanta\\Vantrix\\8.0\\Debug", L"AppDataPath", folder_.path() + L"\\");
        Setting setting;
        for (int i = 0; i < count; ++i) {
            setting->PSName = qk::format(L"Setting %d", i);
            paths_.push_back(folder_.file(qk::format(L"setting %d.ps4", i)));
            good_ &= setting.Save(paths_.back());
        }
    }

    [[nodiscard]] bool good() const { return good_; }
    [[nodiscard]] const std::vector<std::wstring>& paths() const { return paths_; }

private:
    TempFolder folder_;
    MachineRegistry machine_;
    UserRegistry user_;
    std::vector<std::wstring> paths_;
    bool good_ = true;
};

// What listing cannot do without: each file read whole, and its JSON looked through once.
void read_and_parse(const SettingFolder& folder) {
    constexpr size_t kByteOrderMark = 3;
    for (const std::wstring& path : folder.paths()) {
        std::string bytes;
        if (ps::setting_file::read(path, bytes) != ps::kLoaded)
            continue;
        picojson::value document;
        picojson::parse(document, bytes.substr(kByteOrderMark));
    }
}

bool time_list() {
    bool good = true;
    std::array<double, 3> ratios = {};
    size_t column = 0;
    for (const int count : {10, 100, 1000}) {
        const SettingFolder folder(count);
        const auto files = static_cast<size_t>(count);
        good &= folder.good() && ListUpPSFiles().size() == files;
        const int runs = 5 + 500 / count;
        const Pair list = compare(
            runs, 1, [] { (void)ListUpPSFiles(); }, [&] { read_and_parse(folder); });
        ratios[column++] = list.ratio;
        good &= report(qk::to_utf8(qk::format(L"list of %d settings", count)).c_str(),
                       "reading and parsing the files once", list, 1.3);
        const Pair query = compare(
            runs, 1, [] { (void)is_name_taken(L"no such name", {}); }, [&] { read_and_parse(folder); });
        good &= report(qk::to_utf8(qk::format(L"name query over %d settings", count)).c_str(),
                       "reading and parsing the files once", query, 1.3);
    }
    const double growth = ratios[2] / ratios[0];  // the system's own time for a file grows with the folder
    std::printf("%-44s x%.2f beside the files alone from 10 to 1,000 %s\n", "the list's growth", growth,
                growth < 1.5 ? "ok" : "NOT LINEAR");
    return good && growth < 1.5;
}

// --- The edit sheet ---

double shown_after = 0;  // microseconds from the call to the sheet with all its pages
double called_at = 0;

int ticks = 0;

BOOL CALLBACK cancel_sheet(HWND window, LPARAM) {
    if (SendMessageW(window, PSM_GETCURRENTPAGEHWND, 0, 0) || ticks > 500)
        PostMessageW(window, PSM_PRESSBUTTON, PSBTN_CANCEL, 0);
    return TRUE;
}

// Ends a sheet that stays without its pages, too: it is not measured then.
void CALLBACK close_when_shown(HWND, UINT, UINT_PTR timer, DWORD) {
    bool complete = true;
    for (const HWND page : dialog_state().sheet.pages)
        complete &= page != nullptr;
    if (!complete && ++ticks <= 500)
        return;
    shown_after = complete ? now_microseconds() - called_at : 0;
    KillTimer(nullptr, timer);
    EnumThreadWindows(GetCurrentThreadId(), &cancel_sheet, 0);
}

}  // namespace

double open_and_close() {
    called_at = now_microseconds();
    shown_after = 0;
    ticks = 0;
    SetTimer(nullptr, 0, USER_TIMER_MINIMUM, &close_when_shown);
    (void)DoPropertySheet(nullptr, true);
    release_dialog_state();
    return shown_after;
}

namespace {

bool time_sheet() {
    constexpr int kCycles = 100;
    for (int i = 0; i < 3; ++i)
        open_and_close();
    const Objects before = count_objects();
    double best = 0;
    for (int i = 0; i < kCycles; ++i)
        if (const double took = open_and_close(); best == 0 || (took > 0 && took < best))
            best = took;
    const Objects after = count_objects();
    const bool good = best > 0 && !has_grown(before, after);
    std::printf("%-44s %12.3f us\n", "opening the edit sheet with its nine pages", best);
    std::printf("%-44s handles %u -> %u, GDI %llu -> %llu, USER %llu -> %llu %s\n",
                "100 times opened and closed", before.handles, after.handles, before.gdi, after.gdi,
                before.user, after.user, good ? "ok" : "LEAKS");
    return good;
}

}  // namespace

bool time_dialog() {
    if (!plotui::attach_process(GetModuleHandleW(nullptr))) {
        std::printf("no language library: the dialog is not measured\n");
        return false;
    }
    bool good = time_list();
    good &= time_sheet();
    plotui::detach_process(false);
    return good;
}

}  // namespace bench
