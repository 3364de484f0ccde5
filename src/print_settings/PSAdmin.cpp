#include "print_settings/PSAdmin.h"

#include <exception>

#include "common/paths.h"
#include "common/trace.h"
#include "common/wipe.h"
#include "print_settings/ps4_reader.h"
#include "print_settings/restriction_fields.h"
#include "print_settings/setting_file.h"

namespace Corvanta::Vantrix {

namespace Administrator {

namespace {

namespace ps = Corvanta::Vantrix::PrintSettings;

// The file is kept as bytes, so that what is read here is what is laid over the user's setting later.
bool read_restriction(std::string_view bytes, Restriction& restriction) {
    try {
        picojson::value document;
        const ps::PasswordsWipedAtEnd wiped(document);
        if (ps::RecogniseBytes(bytes) != ps::kPS4 || !ps::json::try_parse(bytes.substr(3), document))
            return false;
        const picojson::value* own = ps::json::find(document.get<picojson::object>(), "Administrator");
        Restriction fresh;
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

}  // namespace

std::wstring find_file(const std::wstring& install_folder) {
    std::wstring path = install_folder.empty() ? install_folder : install_folder + kFileName;
    return qk::is_file(path) ? path : std::wstring();
}

bool load_restriction(Restriction& restriction) {
    TRACE("load_restriction");
    const std::wstring path = find_file(qk::install_folder());
    std::string bytes;
    const qk::WipedAtEnd wiped(bytes);
    if (!path.empty())
        return read_file(path, bytes, restriction);
    restriction = {};
    return true;
}

}  // namespace Administrator

namespace PrintSettings {

bool PrintSettingsAdmin::Load(const std::wstring& path) {
    TRACE("PrintSettingsAdmin::Load");
    std::string users;
    const qk::WipedAtEnd wiped(users);
    return setting_file::read(path, users) == kLoaded && LoadWithAdministrator(users);
}

bool PrintSettingsAdmin::LoadDefaults() {
    TRACE("PrintSettingsAdmin::LoadDefaults");
    return LoadWithAdministrator("\xEF\xBB\xBF{\"PSComment\": []}");  // a user's file that sets nothing
}

bool PrintSettingsAdmin::LoadWithAdministrator(std::string_view users) {
    const std::wstring forced_path =
        Administrator::find_file(install_folder_ ? *install_folder_ : qk::install_folder());
    std::string forced;
    const qk::WipedAtEnd wiped(forced);
    restriction_ = {};
    if (!forced_path.empty() && !Administrator::read_file(forced_path, forced, restriction_))
        return false;
    // Of this one only comments outlive the user's file, which replaces every section.
    if (!restriction_.PSFile.empty() && !PrintSettings::Load(restriction_.PSFile))
        TRACE("administrator's print setting cannot be read");
    if (LoadBytes(users, false) != kLoaded)
        return false;
    return forced_path.empty() || LoadBytes(forced, true) == kLoaded;
}

}  // namespace PrintSettings
}  // namespace Corvanta::Vantrix
