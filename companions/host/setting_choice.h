// The choice of a print setting for one job.
#pragma once

#include <string>

#include "companions/host/turn.h"

namespace host {

// What the module and the dialog library are told of the job's setting: a registry value of the current user
// that names it for the printer's next job and that the module removes at a job's end. Since it is one value
// for all jobs of the user, jobs of this program take turns while it matters: make one of these around the
// start of the job and around its end.
class SettingTurn {
public:
    SettingTurn();
    ~SettingTurn();
    SettingTurn(const SettingTurn&) = delete;
    SettingTurn& operator=(const SettingTurn&) = delete;

    // From now on, until this object goes, the printer's jobs use `setting` (a bare name or a full path).
    void choose(const std::wstring& setting);

private:
    Turn turn_;
    bool chosen_ = false;
};

// What SettingTurn takes for a setting named on the command line: a path when it looks like one, made
// absolute, else a name that the settings folders are searched for. Throws HostError for one that is too long
// for the dialog library.
[[nodiscard]] std::wstring setting_for_module(const std::wstring& setting);

}  // namespace host
