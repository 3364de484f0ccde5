// The spooled document as the engine takes it.
#pragma once

#include <string>

#include "companions/render/scratch_folder.h"
#include "print_settings/PrintSettings.h"

namespace companions::render {

struct PreparedSpool {
    std::wstring path;
    bool linked = false;  // web addresses become links as it is drawn
};

// The document, or a copy in the folder: with its pictures changed where the setting asks for it, and with
// its text made easier to draw, which includes `links`, where Wine's PostScript driver has written it. Throws
// Failure.
[[nodiscard]] PreparedSpool prepare_spool(const std::wstring& spool,
                                          const Corvanta::Vantrix::PrintSettings::PrintSettings& settings,
                                          bool links, const ScratchFolder& scratch);

}  // namespace companions::render
