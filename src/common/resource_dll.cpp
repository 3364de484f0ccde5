#include "common/resource_dll.h"

#include <mutex>
#include <optional>
#include <utility>

#include "common/lock.h"
#include "common/module.h"
#include "common/paths.h"
#include "common/private_copy.h"
#include "common/registry.h"
#include "common/text.h"
#include "common/trace.h"

extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace qk {

HINSTANCE module_instance() noexcept {
    return reinterpret_cast<HINSTANCE>(&__ImageBase);
}

namespace {

constexpr size_t kStringUnits = 10000;
constexpr const wchar_t* kCodes[] = {L"ja", L"kr", L"chs", L"cht", L"en"};

// The module-wide state: the copy, and the loader's handle with its count.
struct Loader {
    Lock lock;
    PrivateCopy copy;
    HMODULE module = nullptr;
    unsigned load_count = 0;
};

Loader loader;

std::wstring module_folder() {
    const std::wstring path = module_path(module_instance());
    return path.substr(0, path.size() - file_part(path).size());
}

// The installed library of a language, beside the module or in the installation folder.
std::optional<std::wstring> find_installed(const std::wstring& code) {
    const std::wstring name = L"Language\\zrtk_res_" + code + L".dll";
    TRACE(name);
    for (const auto folder_of : {&module_folder, &install_folder})
        if (const std::wstring folder = folder_of(); !folder.empty() && is_file(folder + name))
            return folder + name;  // never below the host's current folder
    return std::nullopt;
}

std::optional<std::wstring> find_source() {
    for (const std::wstring& code : {language_code(), std::wstring(L"en"), std::wstring(L"ja")})
        if (auto path = find_installed(code))
            return path;
    return std::nullopt;
}

// Without a path, with the last error, when there is no library.
PrivateCopy copy_library() {
    const auto source = find_source();
    if (!source) {
        trace::debug_output(L"cant open src lr");
        SetLastError(ERROR_FILE_NOT_FOUND);
        return {};
    }
    PrivateCopy copy = make_private_copy(*source);
    if (copy.path.empty())
        return copy;
    TRACE("resouece_dll is");
    TRACE(copy.path);
    return copy;
}

const std::wstring& copy_path_locked(bool cached_only) {
    if (loader.copy.path.empty() && !cached_only)
        loader.copy = copy_library();
    return loader.copy.path;
}

HMODULE string_module() {
    const std::scoped_lock hold(loader.lock);
    if (loader.module)
        return loader.module;
    const std::wstring& path = copy_path_locked(false);
    if (path.empty())
        return nullptr;
    loader.module = GetModuleHandleW(path.c_str());
    if (!loader.module) {
        loader.module = LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
        loader.load_count += loader.module != nullptr;
    }
    return loader.module;
}

}  // namespace

std::wstring resource_library_path(bool cached_only) {
    TRACE("resource_library_path");
    const std::scoped_lock hold(loader.lock);
    return copy_path_locked(cached_only);
}

const wchar_t* language_code_of(LANGID language) noexcept {
    switch (language) {
        case 0x0004:  // Chinese, Simplified
        case 0x0C04:  // Chinese, Hong Kong SAR: deliberately the simplified library
            return L"chs";
        case 0x0411:
            return L"ja";
        case 0x0412:
            return L"kr";
        case 0x7C04:  // Chinese, Traditional
            return L"cht";
        default:
            return L"en";
    }
}

std::wstring language_code() {
    const std::wstring root = registry::kRoot;
    const registry::CurrentUser user;
    for (const HKEY hive : {user.get(), HKEY_LOCAL_MACHINE}) {
        const std::wstring chosen = registry::find_text(hive, root, L"Language").value_or(L"");
        for (const wchar_t* code : kCodes)  // anything else would name a file of the user's choice
            if (equal_no_case(chosen, code))
                return code;
    }
    return language_code_of(GetUserDefaultUILanguage());
}

std::wstring load_string(UINT id) {
    TRACE_F(L"load_string %u", id);
    const HMODULE module = string_module();
    if (!module) {
        TRACE(resource_library_path(true));
        trace::debug_output(L"ERROR! no resource dll.");
        return L"ERROR! no resource dll.";
    }
    std::vector<wchar_t> buffer(kStringUnits);
    const int units = LoadStringW(module, id, buffer.data(), static_cast<int>(buffer.size()));
    if (units > 0)  // a text of its own size: dialogs keep many
        return {buffer.data(), static_cast<size_t>(units)};
    const std::wstring text = format(L"ERROR! no resource string id=%ud", id);
    trace::debug_output(L"%s", text.c_str());
    return text;
}

void finalize_resource_library(bool process_ends) noexcept {
    try {
        std::unique_lock hold(loader.lock, std::defer_lock);
        // The other threads of an ending process are gone, perhaps with the lock.
        if (process_ends ? !hold.try_lock() : (hold.lock(), false))
            return;
        for (; loader.load_count > 0; --loader.load_count)
            FreeLibrary(loader.module);
        loader.module = nullptr;
        remove_private_copy(std::exchange(loader.copy, {}));
    } catch (...) {  // a copy that stays is removed by the next process that ends
    }
}

ResourceDLL::ResourceDLL(size_t units) : units_(units) {
    const std::wstring path = resource_library_path(false);
    if (!path.empty())
        library_.reset(LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
}

std::wstring ResourceDLL::load_string(UINT id) {
    TRACE_F(L"ResourceDLL::load_string %u", id);
    if (!library_)
        return L"(no resource dll)";
    if (buffer_.empty())
        buffer_.resize(units_);
    const int units = LoadStringW(library_.get(), id, buffer_.data(), static_cast<int>(buffer_.size()));
    if (units <= 0)
        return format(L"(no resource string:ID=%u)", id);
    return {buffer_.data(), static_cast<size_t>(units)};
}

}  // namespace qk
