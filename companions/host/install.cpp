#include "companions/host/install.h"

#include <shlobj.h>

#include "common/ErrorNotify.h"
#include "common/printer_handle.h"
#include "common/qk/handle.h"
#include "common/qk/module.h"
#include "common/qk/paths.h"
#include "common/qk/registry.h"
#include "common/qk/text.h"
#include "companions/host/host_error.h"
#include "companions/host/print_processor.h"
#include "companions/host/printer_setup.h"
#include "companions/host/sheet_host.h"
#include "companions/host/spooler.h"
#include "companions/host/turn.h"
#include "companions/print_processor/names.h"
#include "companions/render/engine.h"
#include "companions/render/scratch_folder.h"
#include "companions/system_texts.h"
#include "companions/wine_layer.h"

namespace host {

namespace {

constexpr wchar_t kFolderValue[] = L"PdfDllPath";
using qk::registry::kNotification;
constexpr wchar_t kChannelsValue[] = L"Error";
constexpr wchar_t kProcessor[] = L"print processor";
constexpr wchar_t kOneAtATime[] = L"zr_print_installation";
constexpr DWORD kMostWait = 120000;  // milliseconds

// An installation changes only while no other does.
void demand(const Turn& turn) {
    if (!turn.came())
        throw HostError{ExitCode::kInstallation, L"another installation does not come to its end"};
}

// Collects the steps and shows each at once.
class Steps {
public:
    explicit Steps(const StepSeen& seen) : seen_(seen) {}

    void add(const std::wstring& what, const std::wstring& state, bool good = true) {
        steps_.push_back({what, state, good});
        if (seen_)
            seen_(steps_.back());
    }
    [[nodiscard]] InstallSteps take() { return std::move(steps_); }

private:
    const StepSeen& seen_;
    InstallSteps steps_;
};

qk::RegKey machine_key(const std::wstring& path) {
    qk::RegKey key = qk::registry::create(HKEY_LOCAL_MACHINE, path, KEY_READ | KEY_WRITE);
    if (!key)
        throw HostError{ExitCode::kInstallation,
                        L"the machine's registry key " + path + L" cannot be written"};
    return key;
}

bool set_text(HKEY key, const wchar_t* value, const std::wstring& text) {
    if (qk::registry::find_text(key, value) == text)
        return false;
    if (const DWORD error = companions::store_text(key, value, text); error != ERROR_SUCCESS)
        throw installation_fault(std::wstring(L"the registry refuses ") + value, error);
    return true;
}

void make_folder(const std::wstring& folder) {
    if (!ForceDirectories(folder))
        throw installation_fault(L"cannot make " + folder, GetLastError());
}

void copy_files(const std::wstring& stage, const InstallPlaces& places, Steps& steps) {
    const std::vector<FileCopy> copies = plan_copies(stage, places);
    for (const wchar_t* folder : {L"Settings\\legacy\\", L"CustomSettings\\"})
        make_folder(places.installation + folder);
    make_folder(places.drivers);
    make_folder(places.processors);
    make_folder(qk::shared_documents_folder());  // of the error logs, which do not make it themselves
    for (const FileCopy& copy : copies)
        steps.add(copy.target, outcome_name(bring_up_to_date(copy)));
    const std::wstring sheet_host = sheet_host_path();
    steps.add(sheet_host, install_sheet_host(stage + L"compstui.dll", sheet_host));
}

void remove_file(const std::wstring& path, Steps& steps) {
    delete_leftovers_of(path);
    if (!qk::is_file(path))
        return;
    const bool gone = DeleteFileW(path.c_str()) != FALSE;
    steps.add(path, gone ? L"removed" : error_in_words(GetLastError()), gone);
}

// The files that an installation made; what an administrator has added stays, and its folders with it. The
// guide and its pictures are the product's alone.
void remove_files(const InstallPlaces& places, Steps& steps) {
    for (const wchar_t* code : {L"en", L"ja", L"kr", L"chs", L"cht"})
        for (const std::wstring& place : {places.drivers, places.installation})
            remove_file(qk::format(L"%sLanguage\\zrtk_res_%s.dll", place.c_str(), code), steps);
    remove_file(places.drivers + kConfigFile, steps);
    remove_file(places.drivers + kDataFile, steps);
    remove_file(places.processors + processor::kLibrary, steps);
    for (const wchar_t* name :
         {L"Tessalo80.dll", L"Tessalo80.ini", L"zr_render.exe", L"Settings\\standard.ps4",
          L"Settings\\smallest.ps4", L"Settings\\everyday.ps4", L"Settings\\quality.ps4",
          L"Settings\\archive.ps4", L"Settings\\press.ps4", L"Settings\\protected.ps4"})
        remove_file(places.installation + name, steps);
    for (const std::wstring& name : files_below(places.installation + kHelpFolder))
        remove_file(places.installation + kHelpFolder + name, steps);
    RemoveDirectoryW((places.drivers + L"Language").c_str());
    for (const wchar_t* folder : {L"Language", L"Help\\img\\en", L"Help\\img", L"Help", L"Settings\\legacy",
                                  L"Settings", L"CustomSettings", L"", L".."})
        RemoveDirectoryW((places.installation + folder).c_str());
    const std::wstring shared = qk::shared_documents_folder();
    for (const std::wstring& folder : {shared, shared.substr(0, shared.rfind(L'\\'))})
        RemoveDirectoryW(folder.c_str());
    RemoveDirectoryW(ZRTK_TempRoot().c_str());
}

// The product's keys, and those that Wine has made around its printer, as far as nothing is left in them.
void remove_empty_keys() {
    for (const wchar_t* path :
         {kNotification, L"SOFTWARE\\Corvanta\\Vantrix\\8.0\\Corvanta Vantrix 8.0",
          L"SOFTWARE\\Corvanta\\Vantrix\\8.0", L"SOFTWARE\\Corvanta\\Vantrix", L"SOFTWARE\\Corvanta"})
        for (const HKEY hive : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER})
            remove_key_if_empty(hive, path);
    if (!companions::wine::present())
        return;
    for (const wchar_t* name : {L"Devices", L"PrinterPorts", L"Windows"})
        remove_key_if_empty(HKEY_CURRENT_USER,
                            std::wstring(L"Software\\Microsoft\\Windows NT\\CurrentVersion\\") + name);
    for (const wchar_t* name : {L"Drivers\\Version-3", L"Drivers"})
        remove_key_if_empty(HKEY_LOCAL_MACHINE, environment_key() + L'\\' + name);
}

std::wstring log_folder() {
    const auto chosen = qk::registry::find_text(HKEY_LOCAL_MACHINE, kNotification, L"ErrFile");
    return chosen && !chosen->empty() ? *chosen : qk::shared_documents_folder();
}

void look_for_file(const std::wstring& path, Steps& steps) {
    const bool there = qk::is_file(path);
    steps.add(path, there ? L"there" : L"missing", there);
}

// A printer that was made before the system below was renewed takes a way that no longer leads anywhere.
void add_way(HANDLE printer, Steps& steps) {
    const PrinterWay way = printer_way(printer);
    const bool fits = leads_to_pdf(way);
    const std::wstring advice = fits ? L"" : L"; install again: programs' documents do not become PDFs";
    steps.add(kProcessor, print_processor_text(way.processor) + advice, fits);
    steps.add(L"port", way.port, qk::equal_no_case(way.port, processor::kPort));
}

void look_for_processor(Steps& steps) {
    const std::wstring library = find_processor_library();
    if (library.empty())
        steps.add(processor::kLibrary, L"not registered", false);
    else
        look_for_file(library, steps);
}

// Asks Ghostscript for its version.
void look_for_engine(Steps& steps) {
    const companions::render::ScratchFolder scratch;
    std::string version;
    const auto end = companions::render::Engine().run(
        {"--version"}, scratch.path(), [&version](std::string_view piece) { version += piece; });
    const bool there = end == companions::render::Engine::End::kDone;
    version = version.substr(0, version.find_first_of("\r\n"));
    steps.add(L"engine", there ? L"Ghostscript " + qk::to_wide(version) : L"Ghostscript is missing", there);
}

}  // namespace

InstallPlaces install_places() {
    wchar_t programs[MAX_PATH + 1] = {};
    if (!SHGetSpecialFolderPathW(nullptr, programs, CSIDL_PROGRAM_FILES, TRUE))
        throw HostError{ExitCode::kInstallation, L"the system names no folder for programs"};
    return {std::wstring(programs) + L"\\Corvanta\\Vantrix\\", driver_folder(), processor_folder()};
}

InstallSteps install(const std::wstring& stage, const StepSeen& seen) {
    const Turn turn(kOneAtATime, kMostWait);
    demand(turn);
    const InstallPlaces places = install_places();
    Steps steps(seen);
    copy_files(stage, places, steps);
    steps.add(places.drivers + kDataFile, provide_data_file(places.drivers) ? L"written" : L"up to date");
    const qk::RegKey root = machine_key(qk::registry::kRoot);
    const bool changed = set_text(root.get(), kFolderValue, places.installation);
    steps.add(kFolderValue, changed ? L"set to " + places.installation : L"up to date");
    steps.add(L"driver", ensure_driver() ? L"installed" : L"there");
    steps.add(kProcessor, ensure_print_processor() ? L"installed" : L"there");
    steps.add(std::wstring(L"printer ") + qk::kProductName, ensure_printer() ? L"installed" : L"there");
    add_way(open_printer().get(), steps);
    return steps.take();
}

InstallSteps uninstall(const StepSeen& seen) {
    const Turn turn(kOneAtATime, kMostWait);
    demand(turn);
    const InstallPlaces places = install_places();
    Steps steps(seen);
    const bool was_default = is_default_printer();
    steps.add(std::wstring(L"printer ") + qk::kProductName, remove_printer() ? L"removed" : L"was not there");
    if (const std::wstring former = restore_default_printer(was_default); !former.empty())
        steps.add(L"default printer", former + L" again");
    steps.add(kProcessor, remove_print_processor() ? L"removed" : L"was not there");
    steps.add(L"driver", remove_driver() ? L"removed" : L"was not there");
    remove_files(places, steps);
    if (const std::wstring sheet_host = sheet_host_path(); remove_sheet_host(sheet_host))
        steps.add(sheet_host, L"the system's own again");
    const bool had_folder =
        RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, qk::registry::kRoot, kFolderValue) == ERROR_SUCCESS;
    RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kNotification, kChannelsValue);
    remove_empty_keys();
    steps.add(kFolderValue, had_folder ? L"removed" : L"was not there");
    return steps.take();
}

InstallSteps installation_status() {
    const StepSeen nobody;
    Steps steps(nobody);
    const qk::PrinterHandleObj printer = open_printer();
    const bool there = static_cast<bool>(printer);
    steps.add(std::wstring(L"printer ") + qk::kProductName, there ? L"there" : L"missing", there);
    if (there)
        add_way(printer.get(), steps);
    look_for_processor(steps);
    const auto module = find_driver_module();
    steps.add(L"driver", module ? L"there" : L"missing", module.has_value());
    if (module)
        look_for_file(*module, steps);
    look_for_file(driver_folder() + kDataFile, steps);
    const std::wstring folder = qk::install_folder();
    steps.add(kFolderValue, folder.empty() ? L"missing" : folder, !folder.empty());
    for (const wchar_t* name : {L"Tessalo80.dll", L"zr_render.exe", L"Settings\\standard.ps4"})
        look_for_file(folder + name, steps);
    look_for_engine(steps);
    steps.add(sheet_host_path(), sheet_host_state(sheet_host_path()));
    steps.add(L"failed jobs are told through", notify_channels_text());
    return steps.take();
}

std::wstring notify_channels_text() {
    struct Name {
        DWORD channel;
        std::wstring text;
    };
    const Name names[] = {{NotifyChannel::kMessageBox, L"message box"},
                          {NotifyChannel::kEventLog, L"event log"},
                          {NotifyChannel::kDebugOutput, L"debug output"},
                          {NotifyChannel::kLogFile, L"log file in " + log_folder()}};
    const DWORD channels = qk::registry::find_number(HKEY_LOCAL_MACHINE, kNotification, kChannelsValue)
                               .value_or(NotifyChannel::kMessageBox);
    std::wstring text;
    for (const Name& name : names)
        if (channels & name.channel)
            text += (text.empty() ? L"" : L", ") + name.text;
    return text.empty() ? L"nothing" : text;
}

void set_notify_channels(DWORD channels) {
    const LSTATUS error = RegSetKeyValueW(HKEY_LOCAL_MACHINE, kNotification, kChannelsValue, REG_DWORD,
                                          &channels, sizeof channels);
    if (error != ERROR_SUCCESS)
        throw installation_fault(L"the notification channels cannot be set", static_cast<DWORD>(error));
}

}  // namespace host
