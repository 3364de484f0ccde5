// Setting up the printer, taking it away, and looking whether it is there.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "companions/host/stage_files.h"

namespace host {

// One thing that was done or looked at.
struct InstallStep {
    std::wstring what;
    std::wstring state;
    bool good = true;
};

using InstallSteps = std::vector<InstallStep>;

// Called with each step as it is done.
using StepSeen = std::function<void(const InstallStep&)>;

// Where this system's installation lies. Throws HostError (installation) when the system does not tell.
[[nodiscard]] InstallPlaces install_places();

// Sets everything up from the built tree `stage` (with its trailing backslash), or repairs what differs from
// it. Throws HostError (installation). Two installations at once wait for each other.
[[nodiscard]] InstallSteps install(const std::wstring& stage, const StepSeen& seen);

// Removes the printer, the driver, their files and the machine's registry values. Users' settings stay.
[[nodiscard]] InstallSteps uninstall(const StepSeen& seen);

// What is there; a step that is not good names what is missing.
[[nodiscard]] InstallSteps installation_status();

// How failed jobs are told, in words: "message box, log file in C:\\...".
[[nodiscard]] std::wstring notify_channels_text();

// Sets how failed jobs are told (the sum of NotifyChannel's values), for every printer job of the machine.
// Throws HostError (installation) when the registry refuses.
void set_notify_channels(DWORD channels);

}  // namespace host
