// An installation of the product in a temporary folder, and what a test takes of the world around it: the
// registry, the user's and the common folders, the printer, message boxes, posted messages.
#pragma once

#include <shlobj.h>

#include "common/qk/handle.h"
#include "common/qk/lock.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "support/fake_printer.h"
#include "support/import_patch.h"
#include "support/temp_folder.h"
#include "support/user_registry.h"

// Takes what would be shown or told to other programs.
class Outbox {
public:
    struct Box {
        std::wstring text, caption;
        UINT style;
    };
    struct Posted {
        HWND window;
        UINT message;
        WPARAM wparam;
        LPARAM lparam;
    };

    Outbox() {
        original_post_ = post_.original<decltype(PostMessageW)>();
        boxes.clear(), posted.clear(), events.clear();
        answer = IDOK;
    }

    static inline int answer;  // the button that ends every box
    static inline std::vector<Box> boxes;
    static inline std::vector<Posted> posted;
    static inline std::vector<std::wstring> events;

private:
    static int WINAPI on_box(HWND, const wchar_t* text, const wchar_t* caption, UINT style) {
        const std::scoped_lock lock(mutex_);
        boxes.push_back({text, caption, style});
        return answer;
    }
    static BOOL WINAPI on_post(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
        if (window != HWND_BROADCAST && IsWindow(window))  // a page's message to itself
            return original_post_(window, message, wparam, lparam);
        const std::scoped_lock lock(mutex_);
        posted.push_back({window, message, wparam, lparam});
        return TRUE;
    }
    static BOOL WINAPI on_event(HANDLE, WORD type, WORD category, DWORD id, PSID, WORD texts, DWORD,
                                const wchar_t** text, void*) {
        const std::scoped_lock lock(mutex_);
        if (type == EVENTLOG_ERROR_TYPE && category == 1 && id == 0 && texts == 1)
            events.push_back(*text);
        return TRUE;
    }

    static inline qk::Lock mutex_;
    static inline decltype(&PostMessageW) original_post_ = nullptr;
    ImportPatch box_{"MessageBoxW", &on_box}, post_{"PostMessageW", &on_post},
        event_{"ReportEventW", &on_event};
};

struct Installation {
    static constexpr wchar_t kExternalCalls[] = L"Profile\\Corvanta\\Vantrix\\8.0\\externalCallSetting.ini";
    static constexpr wchar_t kKey[] = L"SOFTWARE\\Corvanta\\Vantrix\\8.0";

    Installation() {
        profile_folder = folder.file(L"Profile");
        original_folder = default_folder.original<decltype(SHGetFolderPathW)>();
        for (const wchar_t* sub : {L"Settings\\legacy", L"CustomSettings", L"Dunmere\\Vantrix2", L"Roaming",
                                   L"Profile\\Corvanta\\Vantrix\\8.0", L"out"})
            ForceDirectories(folder.file(sub));
        machine.set_text(kKey, L"PdfDllPath", folder.path() + L"\\");
        machine.set_text(L"SOFTWARE\\Dunmere\\Common\\SpecialFolder", L"CSIDL_COMMON_DOCUMENTS",
                         folder.path() + L"\\");
        user.set_text(L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders",
                      L"AppData", folder.file(L"Roaming"));
    }

    void set_number(HKEY hive, const std::wstring& subkey, const wchar_t* value, DWORD number) const {
        UserRegistry::set_below(hive, std::wstring(kKey) + subkey, value, REG_DWORD, &number, sizeof number);
    }
    void write_ini(std::string_view lines, std::string_view version = "2.5") const {
        folder.write(L"Dunmere\\Vantrix2\\DunmereVantrix.ini",
                     "[Vantrix]\r\nIniVersion=" + std::string(version) + "\r\n" + std::string(lines));
    }
    // The ini file of the external programs.
    void write_external_calls(std::string_view lines) const {
        folder.write(kExternalCalls, std::string(lines));
    }
    // A file of the build, beside the test program.
    static std::wstring built(std::wstring_view name) {
        const std::wstring program = qk::module_path(nullptr);
        return program.substr(0, program.rfind(L'\\') + 1) + std::wstring(name);
    }
    // A file of the build, copied into the installation; its path there.
    std::wstring copy_built(std::wstring_view name, std::wstring_view target) const {
        CopyFileW(built(name).c_str(), folder.file(target).c_str(), FALSE);
        return folder.file(target);
    }
    // The file behind "Dunmere Vantrix" logs, read whole.
    [[nodiscard]] std::string log(const wchar_t* name = L"Error_0.log") const {
        return TempFolder::read(folder.file(L"Dunmere\\Vantrix2\\") + name);
    }

    MachineRegistry machine;
    UserRegistry user;
    TempFolder folder;
    FakePrinter printer;
    Outbox outbox;

private:
    // One for each test program: shared lists are named by the user.
    ImportPatch user_name{"GetUserNameW", [](wchar_t* buffer, DWORD* units) -> BOOL {
                              const auto name = L"tester " + std::to_wstring(GetCurrentProcessId());
                              qk::copy_zero_padded(buffer, *units, name);
                              *units = static_cast<DWORD>(name.size() + 1);
                              return TRUE;
                          }};
    ImportPatch default_folder{"SHGetFolderPathW", &on_folder};

    // The roaming folder by default, which no registry moves; the user's own is "Roaming".
    static HRESULT WINAPI on_folder(HWND window, int id, HANDLE token, DWORD type, wchar_t* path) {
        if (id != CSIDL_APPDATA || type != SHGFP_TYPE_DEFAULT)
            return original_folder(window, id, token, type, path);
        qk::copy_zero_padded(path, MAX_PATH, profile_folder);
        return S_OK;
    }
    static inline std::wstring profile_folder;
    static inline decltype(&SHGetFolderPathW) original_folder = nullptr;
};
