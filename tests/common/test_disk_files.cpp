// Names that come from elsewhere lead to files of a disk, or to nothing.
#include "UI_dll/PDFSettings/preview/picture_file.h"
#include "common/icc_folder.h"
#include "common/icc_profile.h"
#include "common/qk/disk_file.h"
#include "common/rwPDFSet_functions.h"

namespace {

constexpr DWORD kRead = FILE_SHARE_READ, kReadAndReplace = FILE_SHARE_READ | FILE_SHARE_DELETE,
                kAll = kReadAndReplace | FILE_SHARE_WRITE, kNotOpened = MAXDWORD;

// What takes the name of a file from elsewhere; true when it took something else for a file.
// Which, and what others may do meanwhile with a file that is there.
const std::tuple<std::string_view, DWORD, bool (*)(const std::wstring& name)> kUsers[] = {
    {"probe", kReadAndReplace, [](auto& name) { return ProbeSettingFile(name) != SettingFormat::kNone; }},
    {"kind", kAll, [](auto& name) { return ps::Recognise(name) != ps::kUnknownKind; }},
    {"name", kReadAndReplace, [](auto& name) { return ps::ReadName(name).has_value(); }},
    {"load", kReadAndReplace,
     [](auto& name) { return ps::PrintSettings().Load(name, false) == ps::kLoaded; }},
    {"load for a job", kReadAndReplace, [](auto& name) { return ps::PrintSettingsAdmin().Load(name); }},
    {"save", kAll, [](auto& name) { return ps::PrintSettings().Save(name); }},
    {"profile", kRead, [](auto& name) { return icc::is_cmyk_profile(name); }},
    {"profile's header", kRead, [](auto& name) { return icc::read_profile(name).has_value(); }},
    {"description", kRead, [](auto& name) { return icc::find_description(name).has_value(); }},
    {"picture", kRead, [](auto& name) { return bool{pdf_settings::load_picture(name).bitmap}; }},
    {"is a file", kNotOpened, [](auto& name) { return qk::is_file(name); }},
    {"is a folder", kNotOpened, [](auto& name) { return qk::is_folder(name); }},
};

}  // namespace

TEST(DiskFiles, NamesOfDevicesAreKnownByTheirLetters) {
    for (const wchar_t* name :
         {L"C:\\x.ps4", L"x.ps4", L"", L"\\", L"C:\\CON\\x.ps4", L"C:\\console.ps4", L"\\\\server",
          L"\\\\server\\share\\x.ps4", L"\\\\server\\pipes\\x.ps4", L"\\\\?\\C:\\x.ps4", L"\\\\.\\C:\\x.ps4",
          L"\\\\?\\UNC\\server\\share\\x.ps4"})
        EXPECT_FALSE(qk::names_device(name)) << qk::to_utf8(name);
    for (const wchar_t* name :
         {L"CON", L"C:\\x\\nul", L"com1", L"C:\\x\\LPT9", L"\\\\.\\pipe\\x", L"//./pipe/x", L"\\\\?\\pipe\\x",
          L"\\??\\pipe\\x", L"\\\\.\\mailslot\\x", L"\\\\.\\C:", L"\\\\.\\PhysicalDrive0",
          L"\\\\?\\GLOBALROOT\\Device\\NamedPipe\\x", L"\\\\server\\PIPE\\x", L"//server/mailslot/x",
          L"\\\\?\\UNC\\server\\pipe\\x", L"\\\\server\\\\pipe\\x", L"\\\\.\\C:\\..\\pipe\\x",
          L"\\\\.\\UNC/server/share/../pipe/x"})
        EXPECT_TRUE(qk::names_device(name)) << qk::to_utf8(name);
}

// A server waits behind the name: whoever opened it would be seen, and perhaps wait for it.
TEST(DiskFiles, NobodyTurnsToAPipe) {
    const std::wstring pipe = L"\\\\.\\pipe\\zr_test_" + std::to_wstring(GetCurrentProcessId());
    const qk::FileObj server(CreateNamedPipeW(pipe.c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE | PIPE_NOWAIT,
                                              1, 100, 100, 0, nullptr));
    ASSERT_TRUE(server);
    for (const auto& [label, share, uses] : kUsers) {
        EXPECT_FALSE(uses(pipe) || uses(L"C:\\NUL")) << label;
        ASSERT_FALSE(ConnectNamedPipe(server.get(), nullptr));
        ASSERT_EQ(GetLastError(), DWORD{ERROR_PIPE_LISTENING}) << label;
    }
    EXPECT_EQ(ps::PrintSettings().Load(pipe, false), ps::kUnreadable);
}

TEST(DiskFiles, FilesAreSharedAndWhatIsNoFileBehindItsNameIsNotRead) {
    constexpr DWORD kWhoAsksOnly = SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION;
    const ProfileFolder profiles;
    const std::wstring path = profiles.files.file(L"mine.ps4");
    ASSERT_TRUE(ps::PrintSettings().Save(path));
    const std::wstring profile = profiles.add(L"a.icc", "CMYK", "prtr", "description");
    DWORD opened = 0, asked_for = 0;
    const Intercept<decltype(CreateFileW)> open(
        "CreateFileW",
        [&](auto* name, DWORD, DWORD share, auto*, DWORD how, DWORD flags, HANDLE) -> std::optional<HANDLE> {
            if (how == OPEN_EXISTING && !std::wstring_view(name).ends_with(L".tmp")) {
                opened = share;
                EXPECT_EQ(flags & SECURITY_VALID_SQOS_FLAGS, kWhoAsksOnly);
            }
            return {};
        });
    for (const auto& [label, share, uses] : kUsers) {
        SCOPED_TRACE(label);
        opened = kNotOpened;
        static_cast<void>(uses(path));
        EXPECT_EQ(opened, share);
    }
    // A drive's letter may stand for anything.
    const ImportPatch pipe("GetFileType", always<DWORD{FILE_TYPE_PIPE}>());
    const Intercept<decltype(ReadFile)> read("ReadFile", [&](auto...) { return ++asked_for, FALSE; });
    for (const auto& [label, share, uses] : kUsers)
        if (label != "is a file") {
            EXPECT_FALSE(uses(path) || uses(profile)) << label;
        }
    EXPECT_EQ(asked_for, 0u) << "it was read";
}
