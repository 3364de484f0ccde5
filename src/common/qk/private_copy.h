// A private copy of a library, so that programs never hold the installed file open.
#pragma once

#include <string>

#include "common/qk/handle.h"

namespace qk {

struct PrivateCopy {
    std::wstring path;  // full; the installed file's own where no copy can be made; empty: it cannot be read
    FileObj held;  // while it is open nobody else writes, moves or deletes the copy; empty without a copy
};

// Copies the file into the temporary folder, else into the user's folder for programs of low integrity; where
// neither lets copies have a folder of their own, under a random name; else there is no copy. What a link
// leads to is not written, and what lies there already is not used. The last error when the file cannot be
// read.
[[nodiscard]] PrivateCopy make_private_copy(const std::wstring& source);

// Deletes the copy, which nobody may have mapped any more, and those in its folder that processes without a
// chance to clean up have left.
void remove_private_copy(PrivateCopy copy);

}  // namespace qk
