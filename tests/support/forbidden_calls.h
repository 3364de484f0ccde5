// What no query may do: write the registry or a file, load a library. Such a call fails and is counted.
#pragma once

#include <windows.h>

#include "support/import_patch.h"

class ForbiddenCalls {
public:
    ForbiddenCalls() { made_ = 0; }
    [[nodiscard]] int made() const { return made_; }

private:
    // Whatever the arguments are: the caller removes them.
    static INT_PTR WINAPI count() {
        ++made_;
        return 0;
    }
    static void* counter() { return reinterpret_cast<void*>(&count); }

    static inline int made_ = 0;
    ImportPatch set_value_{"RegSetValueExW", counter()}, create_key_{"RegCreateKeyExW", counter()};
    ImportPatch create_file_{"CreateFileW", counter()}, write_file_{"WriteFile", counter()};
    ImportPatch load_{"LoadLibraryW", counter()}, load_ex_{"LoadLibraryExW", counter()};
};
