// The setting that a job starts with, or why it does not start.
#pragma once

#include <optional>
#include <string>

#include "job/output_intent.h"
#include "print_settings/PSAdmin.h"

namespace job {

// Loads the setting of that name as load_printer_setting does, the defaults where there is none, and looks
// whether a job may start with it. Nothing when it may; else `settings` is not to be used.
[[nodiscard]] std::optional<Refusal> load_job_setting(
    const std::wstring& name, Corvanta::Vantrix::PrintSettings::PrintSettingsAdmin& settings);

// What the user is told: the caption in full, and below it the message that all refusals share.
[[nodiscard]] std::wstring caption_of(const Refusal& refusal);
[[nodiscard]] std::wstring refusal_message();

// Of a refusal for a file that cannot be read: the administrator's file when it is the cause, else an empty
// text.
[[nodiscard]] std::wstring administrator_file_to_blame(const Refusal& refusal, const std::wstring& name);

}  // namespace job
