// Names that come from elsewhere lead to files of a disk, or to nothing.
#include <gtest/gtest.h>

#include <functional>

#include "UI_dll/PDFSettings/preview/picture_file.h"
#include "common/qk/disk_file.h"
#include "common/icc_folder.h"
#include "common/icc_profile.h"
#include "common/qk/paths.h"
#include "common/rwPDFSet_functions.h"
#include "common/qk/text.h"
#include "print_settings/PSAdmin.h"
#include "support/import_patch.h"
#include "support/profile_folder.h"

namespace {

namespace ps = Corvanta::Vantrix::PrintSettings;

// What takes the name of a file from elsewhere; true when it took something else for a file.
const struct {
    const char* label;
    bool (*uses)(const std::wstring& name);
} kUsers[] = {
    {"probe", [](const std::wstring& name) { return ProbeSettingFile(name) != SettingFormat::kNone; }},
    {"kind", [](const std::wstring& name) { return ps::Recognise(name) != ps::kUnknownKind; }},
    {"name", [](const std::wstring& name) { return ps::ReadName(name).has_value(); }},
    {"load", [](const std::wstring& name) { return ps::PrintSettings().Load(name, false) == ps::kLoaded; }},
    {"load for a job", [](const std::wstring& name) { return ps::PrintSettingsAdmin().Load(name); }},
    {"save", [](const std::wstring& name) { return ps::PrintSettings().Save(name); }},
    {"profile", [](const std::wstring& name) { return icc::is_cmyk_profile(name); }},
    {"profile's header", [](const std::wstring& name) { return icc::read_profile(name).has_value(); }},
    {"description", [](const std::wstring& name) { return icc::find_description(name).has_value(); }},
    {"picture",
     [](const std::wstring& name) { return static_cast<bool>(pdf_settings::load_picture(name).bitmap); }},
    {"is a file", [](const std::wstring& name) { return qk::is_file(name); }},
    {"is a folder", [](const std::wstring& name) { return qk::is_folder(name); }},
};

std::vector<DWORD> opened;  // the flags with which files were
decltype(&CreateFileW) create_file;
HANDLE WINAPI note_flags(const wchar_t* name, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                         DWORD how, DWORD flags, HANDLE like) {
    if (how == OPEN_EXISTING && !std::wstring_view(name).ends_with(L".tmp"))
        opened.push_back(flags);
    return create_file(name, access, share, security, how, flags, like);
}

}  // namespace

TEST(DiskFiles, NamesOfDevicesAreKnownByTheirLetters) {
    const struct {
        const wchar_t* name;
        bool device;
    } rows[] = {
        {L"C:\\x.ps4", false},
        {L"x.ps4", false},
        {L"", false},
        {L"\\", false},
        {L"C:\\CON\\x.ps4", false},
        {L"C:\\console.ps4", false},
        {L"\\\\server\\share\\x.ps4", false},
        {L"\\\\server\\pipes\\x.ps4", false},
        {L"\\\\server", false},
        {L"\\\\?\\C:\\x.ps4", false},
        {L"\\\\.\\C:\\x.ps4", false},
        {L"\\\\?\\UNC\\server\\share\\x.ps4", false},
        {L"CON", true},
        {L"C:\\x\\nul", true},
        {L"com1", true},
        {L"C:\\x\\LPT9", true},
        {L"\\\\.\\pipe\\x", true},
        {L"//./pipe/x", true},
        {L"\\\\?\\pipe\\x", true},
        {L"\\??\\pipe\\x", true},
        {L"\\\\.\\mailslot\\x", true},
        {L"\\\\.\\C:", true},
        {L"\\\\.\\PhysicalDrive0", true},
        {L"\\\\?\\GLOBALROOT\\Device\\NamedPipe\\x", true},
        {L"\\\\server\\PIPE\\x", true},
        {L"//server/mailslot/x", true},
        {L"\\\\?\\UNC\\server\\pipe\\x", true},
    };
    for (const auto& row : rows)
        EXPECT_EQ(qk::names_device(row.name), row.device) << qk::to_utf8(row.name);
}

// A server waits behind the name: whoever opened it would be seen, and perhaps wait for it.
TEST(DiskFiles, NobodyTurnsToAPipe) {
    const std::wstring pipe = L"\\\\.\\pipe\\zr_test_" + std::to_wstring(GetCurrentProcessId());
    const qk::FileObj server(CreateNamedPipeW(pipe.c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE | PIPE_NOWAIT,
                                              1, 100, 100, 0, nullptr));
    ASSERT_TRUE(server);
    for (const auto& user : kUsers) {
        EXPECT_FALSE(user.uses(pipe)) << user.label;
        EXPECT_FALSE(user.uses(L"C:\\NUL")) << user.label;
        ASSERT_FALSE(ConnectNamedPipe(server.get(), nullptr));
        ASSERT_EQ(GetLastError(), DWORD{ERROR_PIPE_LISTENING}) << user.label;
    }
    EXPECT_EQ(ps::PrintSettings().Load(pipe, false), ps::kUnreadable);
}

// A drive's letter may stand for anything.
TEST(DiskFiles, WhatIsNoFileBehindItsNameIsNotRead) {
    const ProfileFolder profiles;
    const std::wstring path = profiles.files.file(L"mine.ps4");
    ASSERT_TRUE(ps::PrintSettings().Save(path));
    const std::wstring profile = profiles.add(L"a.icc", "CMYK", "prtr", "description");
    const ImportPatch pipe("GetFileType",
                           reinterpret_cast<void*>(+[](HANDLE) -> DWORD { return FILE_TYPE_PIPE; }));
    const ImportPatch read("ReadFile", reinterpret_cast<void*>(+[]() -> BOOL {
                               ADD_FAILURE() << "it was read";
                               return FALSE;
                           }));
    for (const auto& user : kUsers)
        if (user.label != std::string_view("is a file")) {
            EXPECT_FALSE(user.uses(path)) << user.label;
            EXPECT_FALSE(user.uses(profile)) << user.label;
        }
}

TEST(DiskFiles, ServersOfNamesLearnOnlyWhoAsks) {
    constexpr DWORD kWanted = SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION;
    const ProfileFolder profiles;
    const std::wstring path = profiles.files.file(L"mine.ps4");
    ASSERT_TRUE(ps::PrintSettings().Save(path));
    const ImportPatch open("CreateFileW", reinterpret_cast<void*>(&note_flags));
    create_file = reinterpret_cast<decltype(&CreateFileW)>(open.original());
    for (const auto& user : kUsers) {
        opened.clear();
        static_cast<void>(user.uses(path));
        EXPECT_EQ(opened.empty(), std::string_view(user.label).starts_with("is a ")) << user.label;
        for (const DWORD flags : opened)
            EXPECT_EQ(flags & (SECURITY_VALID_SQOS_FLAGS), kWanted) << user.label;
    }
}
