#include "bench/job.h"

#include <windows.h>
#include <sddl.h>
#include <winspool.h>

#include <array>
#include <cstdlib>
#include <string>

#include "bench/measure.h"
#include "common/dialog_library.h"
#include "common/qk/handle.h"
#include "common/job_records.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "job/document_event.h"
#include "print_settings/PrintSettings.h"
#include "tests/support/user_registry.h"

namespace bench {

namespace {

volatile int sink = 0;

constexpr wchar_t kRoot[] = L"SOFTWARE\\Corvanta\\Vantrix\\8.0\\";
constexpr wchar_t kSpecial[] = L"SOFTWARE\\Corvanta\\Vantrix\\8.0\\Special";
constexpr wchar_t kSpecialFolder[] = L"SOFTWARE\\Dunmere\\Common\\SpecialFolder";

void read_value(HKEY hive, const wchar_t* path, const wchar_t* value) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(hive, path, 0, KEY_READ | KEY_WOW64_64KEY, &key) != ERROR_SUCCESS)
        return;
    wchar_t text[260];
    DWORD size = sizeof text;
    sink = static_cast<int>(
        RegQueryValueExW(key, value, nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size));
    RegCloseKey(key);
}

void read_users_value(const wchar_t* path, const wchar_t* value) {
    HKEY user = nullptr;
    if (RegOpenCurrentUser(KEY_READ | KEY_WRITE, &user) != ERROR_SUCCESS)
        return read_value(HKEY_CURRENT_USER, path, value);
    read_value(user, path, value);
    RegCloseKey(user);
}

void read_file(const wchar_t* path) {
    const HANDLE file = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    std::array<char, 16384> bytes;
    DWORD size = 0;
    while (ReadFile(file, bytes.data(), bytes.size(), &size, nullptr) && size > 0)
        sink = static_cast<int>(size);
    CloseHandle(file);  // lint: owner
}

// A block of shared memory, zeroed, as a record of a job: everybody may open it, at a low integrity, too.
class Block {
public:
    Block(const wchar_t* name, DWORD size) {
        SECURITY_DESCRIPTOR everybody;
        InitializeSecurityDescriptor(&everybody, SECURITY_DESCRIPTOR_REVISION);
        SetSecurityDescriptorDacl(&everybody, TRUE, nullptr, FALSE);
        PSECURITY_DESCRIPTOR low = nullptr;
        ConvertStringSecurityDescriptorToSecurityDescriptorW(L"S:(ML;;NW;;;LW)", SDDL_REVISION_1, &low,
                                                             nullptr);
        BOOL present = FALSE;
        BOOL defaulted = FALSE;
        PACL label = nullptr;
        GetSecurityDescriptorSacl(low, &present, &label, &defaulted);
        SetSecurityDescriptorSacl(&everybody, present, label, FALSE);
        SECURITY_ATTRIBUTES attributes = {sizeof attributes, &everybody, TRUE};
        mapping_ = CreateFileMappingW(INVALID_HANDLE_VALUE, &attributes, PAGE_READWRITE, 0, size, name);
        LocalFree(low);  // lint: owner
        view_ = MapViewOfFile(mapping_, FILE_MAP_READ | FILE_MAP_WRITE, 0, 0, size);
        ZeroMemory(view_, size);
    }
    ~Block() {
        UnmapViewOfFile(view_);  // lint: owner
        CloseHandle(mapping_);   // lint: owner
    }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;

private:
    HANDLE mapping_ = nullptr;
    void* view_ = nullptr;
};

// Every look-up in the order in which the events of a job demand them, each once, by the system's calls
// alone. What a process asks once, the user's and the common folders, is not among them.
class BareJob {
public:
    BareJob(std::wstring install, std::wstring setting)
        : library_(install + L"Tessalo80.dll"),
          administrator_(install + L"administrator.ps4a"),
          setting_(std::move(setting)),
          ini_(qk::shared_documents_folder() + L"\\DunmereVantrix.ini"),
          external_ini_(qk::roaming_folder() + L"\\Corvanta\\Vantrix\\8.0\\externalCallSetting.ini") {}

    void run() const {
        DWORD size = 0;
        GetPrinterW(nullptr, 4, nullptr, 0, &size);  // its name
        read_users_value(kRoot, L"PdfDllPath");
        read_value(HKEY_LOCAL_MACHINE, kRoot, L"PdfDllPath");
        const HMODULE library = LoadLibraryExW(library_.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
        sink = GetProcAddress(library, "GetFile2") && GetProcAddress(library, "GetSettingFN");
        sink = static_cast<int>(GetFileAttributesW(setting_.c_str()));
        read_file(setting_.c_str());
        sink = static_cast<int>(GetFileAttributesW(administrator_.c_str()));
        read_value(HKEY_LOCAL_MACHINE, kSpecial, L"Cutoff_by_period");
        read_users_value(kSpecial, L"Cutoff_by_period");
        find_ini();
        sink = static_cast<int>(GetFileAttributesW(external_ini_.c_str()));
        sink = OpenFileMappingW(FILE_MAP_READ, FALSE, L"zr_bench_no_job_mode") != nullptr;
        sink = static_cast<int>(GetFileAttributesW(L"C:\\zr_bench_no_such_file.pdf"));
        {
            const Block start(L"zr_bench_start", sizeof(ZRTKPrintStartInfoC));
            const Block result(L"zr_bench_result", sizeof(ZRTKPrintInfo));
            FreeLibrary(library);  // lint: owner
            find_ini();
            sink = static_cast<int>(GetPrivateProfileIntW(L"Vantrix", L"MessageID", 11, ini_.c_str()));
            PostMessageW(HWND_BROADCAST, RegisterWindowMessageW(L"zr_bench"), 0, 0);
        }
        forget_process_setting();
    }

private:
    void find_ini() const {
        read_value(HKEY_LOCAL_MACHINE, kSpecialFolder, L"CSIDL_COMMON_DOCUMENTS");
        sink = static_cast<int>(GetFileAttributesW(ini_.c_str()));
    }

    static void forget_process_setting() {
        DWORD size = 0;
        HKEY user = nullptr;
        HKEY key = nullptr;
        if (RegOpenCurrentUser(KEY_READ | KEY_WRITE, &user) != ERROR_SUCCESS)
            user = HKEY_CURRENT_USER;
        if (RegOpenKeyExW(user, kRoot, 0, KEY_WRITE | KEY_WOW64_64KEY, &key) == ERROR_SUCCESS) {
            GetPrinterW(nullptr, 4, nullptr, 0, &size);
            RegDeleteValueW(key, L"settingfile_for_process_");
            RegCloseKey(key);
        }
        RegCloseKey(user);
    }

    std::wstring library_, administrator_, setting_, ini_, external_ini_;
};

}  // namespace

// The dialog library answers at once.
bool time_job(const TempFolder& folder) {
    const MachineRegistry machine;
    const std::wstring program = qk::module_path(nullptr);
    const std::wstring install =
        program.substr(0, program.size() - qk::file_part(program).size()) + L"bench_install\\";
    machine.set_text(L"SOFTWARE\\Corvanta\\Vantrix\\8.0", L"PdfDllPath", install);
    const std::wstring setting = folder.file(L"job.ps4");  // as most are: little but the defaults
    if (!Corvanta::Vantrix::PrintSettings::PrintSettings().Save(setting))
        std::abort();
    // The shell looks here for the user's folders and would try to make it in the replaced hive each time.
    machine.set_text(L"Software\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList", L"ProfilesDirectory",
                     L"C:\\users");
    SetEnvironmentVariableW(L"ZR_BENCH_SETTING", setting.c_str());
    DOCINFOW document = {sizeof document, L"A document"};
    const BareJob bare(install, setting);
    const auto pair = compare(
        51, 5,
        [&] {
            sink = internal_DrvDocumentEvent(nullptr, nullptr, DOCUMENTEVENT_STARTDOCPRE, sizeof document,
                                             &document, 0, nullptr);
            if (sink != DOCUMENTEVENT_SUCCESS)
                std::abort();
            internal_DrvDocumentEvent(nullptr, nullptr, DOCUMENTEVENT_ENDDOCPOST, 0, nullptr, 0, nullptr);
        },
        [&] { bare.run(); });
    return report("a job, STARTDOCPRE to ENDDOCPOST", "its look-ups and calls, each once", pair, 1.3);
}

}  // namespace bench
