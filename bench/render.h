// What a PDF costs beside the engine alone.
#pragma once

namespace bench {

// Prints documents of text and pictures on the installed printer into files, and turns each into a PDF by the
// renderer and by bare Ghostscript: a line a setting, then how time and memory grow to 1,000 pages. False
// when something is above its limit or cannot be measured.
[[nodiscard]] bool time_rendering();

}  // namespace bench
