// What a setting must say of its output intent before a job may start (PDF/A and PDF/X).
#pragma once

#include <optional>
#include <string>

#include "print_settings/PrintSettings.h"

namespace job {

// A reason not to start a job, for the error notifier.
struct Refusal {
    unsigned long code;
    unsigned caption_id;
    std::wstring caption_end;  // put behind the caption's text
};

// Nothing when the setting can be printed. Reads the profile that the setting names.
[[nodiscard]] std::optional<Refusal> find_refusal(
    const Corvanta::Vantrix::PrintSettings::PrintSettings& settings);

// Whether the page boxes go together. They are margins from the page's edges: the trim box lies inside the
// bleed box as long as no bleed margin is the greater one.
[[nodiscard]] bool is_trim_inside_bleed(
    const Corvanta::Vantrix::PrintSettings::PDFVersion_impl& section) noexcept;

}  // namespace job
