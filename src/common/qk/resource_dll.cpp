#include "common/qk/resource_dll.h"

#include <algorithm>
#include <mutex>
#include <optional>
#include <utility>

#include "common/qk/lock.h"
#include "common/qk/module.h"
#include "common/qk/paths.h"
#include "common/qk/private_copy.h"
#include "common/qk/registry.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"

extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace qk {

HINSTANCE module_instance() noexcept {
    return reinterpret_cast<HINSTANCE>(&__ImageBase);
}

namespace {

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

std::optional<std::wstring> find_source() {
    for (const std::wstring& code : {language_code(), std::wstring(L"en"), std::wstring(L"ja")})
        if (auto path = find_installed(L"Language\\zrtk_res_" + code + L".dll"))
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

}  // namespace

std::optional<std::wstring> find_installed(const std::wstring& name) {
    TRACE(name);
    for (const auto folder_of : {&module_folder, &trusted_install_folder})
        if (const std::wstring folder = folder_of(); !folder.empty() && is_file(folder + name))
            return folder + name;  // never below the host's current folder
    return std::nullopt;
}

std::wstring resource_library_path(bool cached_only) {
    TRACE("resource_library_path");
    const std::scoped_lock hold(loader.lock);
    return copy_path_locked(cached_only);
}

bool load_resource_library() {
    const std::scoped_lock hold(loader.lock);
    if (loader.module)
        return true;
    const std::wstring& path = copy_path_locked(false);
    if (path.empty())
        return false;
    HMODULE module = GetModuleHandleW(path.c_str());
    if (!module) {
        module = LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
        if (!module || module == INVALID_HANDLE_VALUE)
            return false;
        ++loader.load_count;
    }
    loader.module = module;
    return true;
}

HMODULE resource_module() noexcept {
    return loader.module;
}

std::optional<std::wstring> find_string(HMODULE library, UINT id, size_t most) {
    const wchar_t* text = nullptr;  // in the library itself, not terminated
    const int units = library ? LoadStringW(library, id, reinterpret_cast<wchar_t*>(&text), 0) : 0;
    if (units <= 0)
        return std::nullopt;
    return std::wstring(text, std::min(static_cast<size_t>(units), most));
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
    if (!load_resource_library()) {
        TRACE(resource_library_path(true));
        trace::debug_output(L"ERROR! no resource dll.");
        return L"ERROR! no resource dll.";
    }
    if (auto text = find_string(resource_module(), id))
        return *std::move(text);
    std::wstring text = format(L"ERROR! no resource string id=%ud", id);
    trace::debug_output(L"%s", text.c_str());
    return text;
}

void finalize_resource_library(bool process_ends) noexcept {
    try {
        const auto hold = lock_at_detach(loader.lock, process_ends);
        if (!hold)
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

std::wstring ResourceDLL::load_string(UINT id) const {
    TRACE_F(L"ResourceDLL::load_string %u", id);
    if (!library_)
        return L"(no resource dll)";
    if (auto text = find_string(library_.get(), id, units_ - 1))
        return *std::move(text);
    return format(L"(no resource string:ID=%u)", id);
}

}  // namespace qk
