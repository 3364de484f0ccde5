// What no query may do: write the registry or a file, load a library. Such a call fails and is counted.
#pragma once

#include "support/import_patch.h"

class ForbiddenCalls {
public:
    ForbiddenCalls() { made_ = 0; }
    [[nodiscard]] int made() const { return made_; }

private:
    // Whatever the arguments are: the caller removes them.
    static INT_PTR WINAPI count() { return made_++, 0; }

    static inline int made_ = 0;
    ImportPatch set_value_{"RegSetValueExW", &count}, create_key_{"RegCreateKeyExW", &count},
        create_file_{"CreateFileW", &count}, write_file_{"WriteFile", &count}, load_{"LoadLibraryW", &count},
        load_ex_{"LoadLibraryExW", &count};
};
