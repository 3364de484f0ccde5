#include "fuzz/kinds.h"

#include "UI_dll/PDFSettings/setting_list.h"
#include "UI_dll/ddi.h"
#include "common/icc_folder.h"
#include "common/icc_profile.h"
#include "common/job_records.h"
#include "common/qk/override_ini.h"
#include "common/teskel_custom_2021.h"
#include "companions/host/options.h"
#include "companions/host/setting_check.h"
#include "companions/render/arguments.h"
#include "lib/devmode.h"
#include "print_settings/PSAdmin.h"
#include "print_settings/legacy_reader.h"
#include "support/fake_tessalo.h"
#include "support/guarded_buffer.h"
#include "support/installation.h"
#include "support/profile_folder.h"
#include "support/random_settings.h"

namespace fuzz {

namespace {

constexpr wchar_t kOwnFolder[] = L"Roaming\\Corvanta\\Vantrix\\8.0\\CustomSettings\\";

// What all kinds share: an installation with the scripted dialog library.
struct World {
    World() {
        ForceDirectories(here.folder.file(kOwnFolder));
        library.reset(LoadLibraryW(here.copy_built(L"fake_tessalo.dll", L"Tessalo80.dll").c_str()));
        qk::find_export<FakeTessaloScriptExport>(library.get(), "Script")()->answer =
            [](dialog_library::WorkingRecord& record, const wchar_t*, void*) {
                static wchar_t path[] = L"C:\\zr_fuzz_no_such_file.pdf";
                record.output_path.address = path;
                record.output_path.length = record.output_path.capacity = std::size(path) - 1;
                return 0;
            };
    }

    Installation here;
    qk::DLL library, colours{LoadLibraryW(L"mscms.dll")};  // not loaded anew for each profile
};

void expect(bool fulfilled, const char* what) {
    if (!fulfilled)
        throw WrongAnswer(what);
}

void send(int event, const char* what, const void* in = nullptr, size_t size = 0) {
    expect(DrvDocumentEvent(FakePrinter::handle(), nullptr, event, static_cast<ULONG>(size),
                            const_cast<void*>(in), 0, nullptr) == DOCUMENTEVENT_SUCCESS,
           what);
}

// --- Settings ---

bool feed_text(std::string_view text) {
    ps::PrintSettings settings;
    const ps::LoadResult result = settings.LoadPS4(text, text.size() % 2 == 0);
    expect(result == ps::kLoaded || result == ps::kUnreadable, "a result of loading that there is not");
    expect(!settings.Serialise().empty(), "what was read cannot be written");
    return result == ps::kLoaded;
}

// As a user's file: loaded, named, listed and checked.
bool feed_file(const World& world, std::string_view bytes) {
    const std::wstring path = world.here.folder.write(std::wstring(kOwnFolder) + L"fuzzed.ps4", bytes);
    ps::PrintSettings settings;
    const ps::LoadResult result = settings.Load(path, false);
    expect(result != ps::kMissing, "a file that is there is missing");
    const bool named = ps::ReadName(path).has_value();
    expect(named || result != ps::kLoaded, "a setting that can be loaded has no name");
    expect(pdf_settings::ListUpPSFiles().size() == 1, "the list has not the one file");
    const bool clean = host::check_setting(path).faults.empty();
    expect(result == ps::kLoaded || !clean, "the check finds nothing in a file that cannot be loaded");
    return result == ps::kLoaded;
}

bool feed_administrator(const World& world, std::string_view bytes) {
    const std::wstring path = world.here.folder.write(L"administrator.ps4a", bytes);
    const bool loaded = ps::PrintSettingsAdmin().LoadDefaults();
    const bool clean = host::check_setting(path).faults.empty();
    expect(loaded || !clean, "the check finds nothing in a file that cannot be loaded");
    DeleteFileW(path.c_str());
    return loaded;
}

std::string chunk(std::string_view id, std::string_view data) {
    return raw_bytes(static_cast<uint32_t>(data.size())).append(id).append(data);
}

bool feed_legacy(std::string_view bytes) {
    const GuardedBuffer guarded(bytes.size(), bytes.data());
    const std::string_view seen(guarded.as<char>(), bytes.size());
    expect(ps::RecogniseBytes(seen) <= ps::kPS4, "a kind that there is not");
    bool sound = true;  // the readers see what would not get as far as one of them, too
    for (const ps::SettingKind kind : {ps::kLegacyFirst, ps::kLegacyChunked}) {
        const ps::LoadResult result = ps::read_legacy(seen, kind);
        expect(result == ps::kLegacyPayload || result == ps::kUnreadable, "a result that there is not");
        sound &= kind != ps::RecogniseBytes(seen) || result == ps::kLegacyPayload;
    }
    return sound && ps::RecogniseBytes(seen) != ps::kUnknownKind;
}

// --- Profiles, DEVMODEs ---

bool feed_profile(const World& world, std::string_view bytes) {
    const GuardedBuffer guarded(bytes.size(), bytes.data());
    const auto text = icc::find_description(std::span<const std::byte>(guarded.as<>(), bytes.size()));
    expect(!text || text->size() <= 260, "a description above its limit");
    const std::wstring path = world.here.folder.write(L"fuzzed.icc", bytes);
    expect(icc::find_description(path) == text, "a file's description is not that of its bytes");
    return icc::read_profile(path).has_value() && text;
}

bool feed_devmode(World& world, std::string_view bytes) {
    // Whole units: callers' records are aligned.
    const GuardedBuffer input(bytes.size() & ~size_t{3}, bytes.data()), output(sizeof(DriverDevmode));
    auto* const in = input.as<DEVMODEW>();
    wchar_t* const name = world.here.printer.name.data();
    const LONG merged = DrvDocumentProperties(nullptr, FakePrinter::handle(), name, output.as<DEVMODEW>(), in,
                                              DM_COPY | DM_MODIFY);
    expect(merged == 1 || merged == -1, "a result of merging that there is not");
    for (const DWORD mode : {kConvert, kConvert351, kDriverDefault}) {
        DWORD needed = sizeof(DriverDevmode);
        DrvConvertDevMode(name, in, output.as<DEVMODEW>(), &needed, mode);
    }
    for (const WORD index : std::initializer_list<WORD>{DC_FIELDS, DC_SIZE, DC_COPIES})
        (void)DrvDeviceCapabilities(FakePrinter::handle(), name, index, nullptr, in);
    return merged == 1;
}

// --- A job's records ---

// The job's record of that name while it is there; `use` gets its view.
template <class Record, class Use>
void with_record(const wchar_t* pattern, Use use) {
    const std::wstring name = qk::format(pattern, static_cast<int>(GetCurrentThreadId()));
    const qk::HandleObj block(OpenFileMappingW(FILE_MAP_WRITE, FALSE, name.c_str()));
    const qk::View view(block ? MapViewOfFile(block.get(), FILE_MAP_WRITE, 0, 0, 0) : nullptr);
    expect(static_cast<bool>(view), "the job has no such record");
    use(*static_cast<Record*>(view.get()));
}

bool feed_result(std::string_view bytes) {
    send(DOCUMENTEVENT_STARTDOCPRE, "the job did not start");
    with_record<ZRTKPrintInfo>(kResultBlockName, [&](ZRTKPrintInfo& record) {
        std::memcpy(&record, bytes.data(), std::min(bytes.size(), sizeof record));
    });
    send(DOCUMENTEVENT_ENDDOCPOST, "the job did not end");
    return std::exchange(Outbox::boxes, {}).size() == 1;
}

constexpr wchar_t kDocument[] = L"A document's name";

bool feed_docinfo(std::string_view bytes) {
    const GuardedBuffer guarded(bytes.size() & ~size_t{7}, bytes.data());
    send(DOCUMENTEVENT_STARTDOCPRE, "the job did not start", guarded.as<>(), guarded.size());
    bool named = false;
    with_record<ZRTKPrintStartInfoC>(kStartBlockName, [&](const ZRTKPrintStartInfoC& record) {
        named = std::wstring_view(record.title) == kDocument;
    });
    send(DOCUMENTEVENT_ENDDOCPOST, "the job did not end");
    return named;
}

std::vector<std::string> result_records() {
    static std::wstring message = L"A message of more than seven units";
    ZRTKPrintInfo record = {.error_code = 9, .win32_error = 112};
    record.message.address = message.data();
    record.message.length = record.message.capacity = message.size();
    return {raw_bytes(record)};
}

std::vector<std::string> docinfos() {
    static DOCINFOW info = {.cbSize = sizeof info, .lpszDocName = kDocument, .lpszOutput = L"C:\\x.pdf"};
    return {raw_bytes(info), raw_bytes(&info)};
}

// --- Texts ---

bool feed_ini(const World& world, std::string_view bytes) {
    world.here.folder.write(L"Dunmere\\Vantrix2\\DunmereVantrix.ini", bytes);
    world.here.write_external_calls(bytes);
    const qk::OverrideIni ini;
    (void)ini.pdf_file_name(), (void)ini.print_id(), (void)ini.message_id(), (void)ini.find_orientation();
    const pd_tk::TeskelCustom2021 calls(L"A document");
    (void)calls.HasAnyExe(), (void)calls.GetOutputFolder();
    return ini.valid();
}

// The words of a command line, a bar between them, as the host program and the renderer read them.
bool feed_options(std::string_view bytes) {
    std::wstring line = qk::to_wide(bytes);
    std::vector<const wchar_t*> words = {line.c_str()};
    for (wchar_t& unit : line)
        if (unit == L'|')
            unit = L'\0', words.push_back(&unit + 1);
    const bool renders = companions::render::parse_arguments(words).fault.empty();
    return host::parse_options(words).fault.empty() || renders;
}

}  // namespace

std::vector<Kind> make_kinds() {
    static World world;
    RandomSettings random(4);
    const std::string setting = random.next().Serialise(), plain = ps::PrintSettings().Serialise();
    const std::string own = R"("Administrator": {"NoSettingTabs": true, "OutputFolder": "C:\\out\\"}, )";
    std::string container = "\xF0\x5ARTKS3\xF1\x03";
    container.resize(48);
    DriverDevmode devmode = default_devmode(), first = devmode;
    devmode.dm.dmFields = first.dm.dmFields = 0xFFFFFFFF;
    first.dm.dmSize = kDevmodeSize351, first.dm.dmDriverExtra = 0;
    return {
        {"setting", {setting.substr(3), plain.substr(3)}, &feed_text},
        {"setting-file", {plain, setting}, [&](auto bytes) { return feed_file(world, bytes); }},
        {"administrator",
         {plain.substr(0, 4) + own + plain.substr(4), "\xEF\xBB\xBF{\"General\": {\"Scale\": 50}}"},
         [&](auto bytes) { return feed_administrator(world, bytes); }},
        {"legacy",
         {std::string("\x09\0\2\0 and more", 13), container + chunk("DAT3", "payload") + chunk("CEND", ""),
          container + chunk("XXXX", std::string(40, 'x')) + chunk("DAT3", "data") + chunk("CEND", "")},
         &feed_legacy},
        {"profile",
         {ProfileFolder::profile("CMYK", "prtr", "Coated FOGRA39"),
          ProfileFolder::profile("RGB ", "mntr", "x")},
         [&](auto bytes) { return feed_profile(world, bytes); }},
        {"devmode",
         {raw_bytes(devmode), raw_bytes(first).substr(0, kDevmodeSize351)},
         [&](auto bytes) { return feed_devmode(world, bytes); }},
        {"result", result_records(), &feed_result},
        {"docinfo", docinfos(), &feed_docinfo},
        {"ini",
         {"[Vantrix]\r\nIniVersion=2.5\r\nPDFFileName=C:\\o\\x.pdf\r\nPrintID=7\r\nMessageID=4\r\nOrient="
          "1\r\n"
          "[DocEnd]\r\nApp=C:\\windows\\notepad.exe\r\n[Output]\r\nOutputFolder=C:\\start\\\r\n"},
         [&](auto bytes) { return feed_ini(world, bytes); }},
        {"options",
         {"print|--trace|5|--output|C:\\x.pdf|--abort-after-page|2|a b.txt", "check|a.ps4|--json|--|--b",
          "--thread|0x10|--printer|P|--spool|/s|--notify|7:0x10000:9999"},
         &feed_options},
    };
}

}  // namespace fuzz
