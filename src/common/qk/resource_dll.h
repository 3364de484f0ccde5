// The language library: texts, dialog templates and icons, one library per language beside the module.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "common/qk/handle.h"

namespace qk {

// The full path of a file that is installed with the module, beside it or else in the installation folder;
// `name` may have folders. Nothing when neither has it.
[[nodiscard]] std::optional<std::wstring> find_installed(const std::wstring& name);

// The path of this process's private copy of the language library, so that programs which print never hold
// the installed file open; of that file itself where no copy can be made. Made and cached on the first call;
// with `cached_only` the cached path, possibly empty. Empty when there is no library. Any thread.
[[nodiscard]] std::wstring resource_library_path(bool cached_only);

// The language code of the library to use, "ja", "kr", "chs", "cht" or "en": the registry value "Language",
// the current user's before the machine's, else by the user's default UI language. Other values do not count.
[[nodiscard]] std::wstring language_code();
[[nodiscard]] const wchar_t* language_code_of(LANGID language) noexcept;

// Loads the library as data for the whole module, on the first call. False, with the last error of the
// attempt, when there is none. Any thread.
[[nodiscard]] bool load_resource_library();

// The library that load_resource_library has loaded, for dialogs and icons; null before and after.
[[nodiscard]] HMODULE resource_module() noexcept;

// The text of a string resource, cut to `most` UTF-16 units; nothing without a library (null) or when it has
// no such text or an empty one. Any thread.
inline constexpr size_t kStringUnits = 10000;  // with a terminating zero
[[nodiscard]] std::optional<std::wstring> find_string(HMODULE library, UINT id,
                                                      size_t most = kStringUnits - 1);

// The text of the module-wide library, loaded on first use. A missing string or library gives a text that
// says so. Any thread.
[[nodiscard]] std::wstring load_string(UINT id);

// Forgets the module-wide handle and its count, removes this process's copy of the library and copies that
// processes without a chance to clean up have left. Process detach only.
void finalize_resource_library(bool process_ends) noexcept;

// The same library through an object that owns its handle; texts have room in a buffer of `units` characters
// (at least 2), with a terminating zero.
class ResourceDLL {
public:
    explicit ResourceDLL(size_t units = kStringUnits);

    [[nodiscard]] HMODULE module() const noexcept { return library_.get(); }
    [[nodiscard]] std::wstring load_string(UINT id) const;

private:
    DLL library_;
    size_t units_;
};

}  // namespace qk
