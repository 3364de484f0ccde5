#include "print_settings/PSAdmin.h"

#include <windows.h>

#include <algorithm>
#include <exception>
#include <utility>

#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "common/qk/wipe.h"
#include "common/rwPDFSet_functions.h"
#include "common/setting_signatures.h"
#include "print_settings/ps4_reader.h"
#include "print_settings/restriction_fields.h"
#include "print_settings/setting_file.h"

namespace Corvanta::Vantrix {

namespace Administrator {

namespace {

// The file is kept as bytes, so that what is read here is what is laid over the user's setting later.
bool read_restriction(std::string_view bytes, Restriction& restriction) {
    try {
        picojson::value document;
        const ps::PasswordsWipedAtEnd wiped(document);
        if (ps::RecogniseBytes(bytes) != ps::kPS4 ||
            !ps::json::try_parse(bytes.substr(kByteOrderMark.size()), document))
            return false;
        const picojson::value* own = ps::json::find(document.get<picojson::object>(), "Administrator");
        Restriction fresh = restriction;
        if (own && own->is<picojson::object>())
            ps::reader::read_fields(own->get<picojson::object>(), fresh);
        restriction = fresh;
        return true;
    } catch (const std::exception& error) {
        TRACE(error.what());
        return false;
    }
}

bool read_file(const std::wstring& path, std::string& bytes, Restriction& restriction) {
    const bool read =
        ps::setting_file::read(path, bytes) == ps::kLoaded && read_restriction(bytes, restriction);
    if (!read)
        TRACE("administrator file cannot be read");
    return read;
}

// The machine's own, of which nobody can tell, holds too, and then refuses: a user cannot lift restrictions
// by keeping its folder out of reach.
bool is_absent(const std::wstring& path) noexcept {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES)
        return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    const DWORD error = GetLastError();
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND || error == ERROR_INVALID_NAME;
}

}  // namespace

std::vector<std::wstring> find_files(const std::wstring& install_folder) {
    std::vector<std::wstring> files;
    const std::wstring machine = qk::machine_install_folder();
    if (std::wstring path = install_folder + kFileName;
        !install_folder.empty() && !qk::equal_no_case(machine, install_folder) && qk::is_file(path))
        files.push_back(std::move(path));
    if (std::wstring path = machine + kFileName; !machine.empty() && !is_absent(path))
        files.push_back(std::move(path));
    return files;
}

bool load_restriction(Restriction& restriction) {
    TRACE("load_restriction");
    Restriction found;
    for (const std::wstring& path : find_files(qk::trusted_install_folder())) {
        std::string bytes;
        const qk::WipedAtEnd wiped(bytes);
        if (!read_file(path, bytes, found))
            return false;
    }
    restriction = found;
    return true;
}

}  // namespace Administrator

namespace PrintSettings {

namespace {

// The same as qk::WipedAtEnd for several.
class WipedTexts {
public:
    explicit WipedTexts(std::vector<std::string>& texts) noexcept : texts_(texts) {}
    ~WipedTexts() { std::ranges::for_each(texts_, qk::wipe<std::string>); }
    WipedTexts(const WipedTexts&) = delete;
    WipedTexts& operator=(const WipedTexts&) = delete;

private:
    std::vector<std::string>& texts_;
};

}  // namespace

bool PrintSettingsAdmin::Load(const std::wstring& path) {
    TRACE("PrintSettingsAdmin::Load");
    std::string users;
    const qk::WipedAtEnd wiped(users);
    return setting_file::read(path, users) == kLoaded && LoadWithAdministrator(users);
}

bool PrintSettingsAdmin::LoadDefaults() {
    TRACE("PrintSettingsAdmin::LoadDefaults");
    return LoadWithAdministrator(std::string(kByteOrderMark) +
                                 "{\"PSComment\": []}");  // a user's file that sets nothing
}

bool PrintSettingsAdmin::LoadWithAdministrator(std::string_view users) {
    const auto files =
        Administrator::find_files(install_folder_ ? *install_folder_ : qk::trusted_install_folder());
    std::vector<std::string> forced(files.size());
    const WipedTexts wiped(forced);
    restriction_ = {};
    for (size_t i = 0; i < files.size(); ++i)
        if (!Administrator::read_file(files[i], forced[i], restriction_))
            return false;
    // Of this one only comments outlive the user's file, which replaces every section.
    if (!restriction_.PSFile.empty() && !PrintSettings::Load(SettingPathOf(restriction_.PSFile)))
        TRACE("administrator's print setting cannot be read");
    if (LoadBytes(users, false) != kLoaded)
        return false;
    return std::ranges::all_of(
        forced, [this](const std::string& values) { return LoadBytes(values, true) == kLoaded; });
}

}  // namespace PrintSettings
}  // namespace Corvanta::Vantrix
