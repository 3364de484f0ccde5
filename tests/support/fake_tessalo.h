// A save-file dialog library that does what a test says. The test loads it itself, fills the script that the
// library exports as "Script", and keeps it loaded: the library that the module loads is then the same one.
#pragma once

#include "common/dialog_library.h"
#include "support/prelude.h"

struct FakeTessaloScript {
    // What "GetSettingFN" answers.
    wchar_t setting[512];
    int setting_result;

    // Plays the dialog: fills the record and gives the result of "GetFile2". Null: no file is chosen.
    int (*answer)(dialog_library::WorkingRecord& record, const wchar_t* printer, void* context);
    void* context;
    bool expects_start_folder;  // the path is not empty before the call

    // What "GetBrowsePath" answers, nothing chosen when empty, and the folder that it was last given.
    wchar_t folder[512];
    wchar_t browsed_from[512];

    volatile LONG setting_calls;
    volatile LONG file_calls;
    char misuse[200];  // the first fault in how the library was called, empty when there was none
};

using FakeTessaloScriptExport = FakeTessaloScript*();
