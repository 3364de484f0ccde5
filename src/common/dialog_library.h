// The interface of the save-file dialog library "Tessalo80.dll", which lies in the installation folder.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>

#include "common/qk/ms_wstring.h"

namespace dialog_library {

inline constexpr wchar_t kFileName[] = L"Tessalo80.dll";

// The working record of "GetFile2". All zero before the call but for what the handler fills: title and
// settings, and for a job with external programs output_path and external_record.
//
// The library may treat the texts as strings of its C run-time library: what the handler put there it may
// overwrite within its capacity, or free (it lies in the process's heap) and replace. What the library puts
// there stays the library's and must be readable until its next call on the thread or until it is unloaded.
struct WorkingRecord {
    uint8_t hand_over;  // set by the library: the job goes on with one that it already holds
    uint8_t padding[7];
    qk::MsWString title;        // of the document
    qk::MsWString output_path;  // full path of the PDF; empty after the call: the user cancelled. Before the
                                // call: empty, or the folder that the dialog should open in
    qk::MsWString third_text;   // the library's own, passed on to the rendering module
    const void* settings;       // the job's PrintSettings object, read only; valid during the call
    uint64_t first_value;       // the library's own, passed on to the rendering module
    uint64_t second_value;
    uint64_t third_value;
    uint64_t external_record;  // address of the external-call record, or 0
};
static_assert(sizeof(WorkingRecord) == 144);
static_assert(offsetof(WorkingRecord, title) == 8);
static_assert(offsetof(WorkingRecord, output_path) == 40);
static_assert(offsetof(WorkingRecord, third_text) == 72);
static_assert(offsetof(WorkingRecord, settings) == 104);
static_assert(offsetof(WorkingRecord, first_value) == 112);
static_assert(offsetof(WorkingRecord, external_record) == 136);

// "GetFile2": 0 when the user confirmed a file or cancelled (empty path), anything else when the library
// hands the job over to one that it already holds open.
using GetFile2 = int WINAPI(WorkingRecord* record, const wchar_t* printer_name);

// "GetSettingFN": writes the name of the printer's setting file (a bare name or a full path) into `buffer`;
// 0 on success. `scratch` points at kScratchBytes zeroed bytes that the library may fill.
using GetSettingFN = int WINAPI(wchar_t* buffer, int capacity, const wchar_t* printer_name, void* scratch);
inline constexpr size_t kScratchBytes = 4096;

// "GetBrowsePath": asks the user for a folder, starting at `current`; non-zero when one was chosen and
// written into `buffer` (512 units).
using GetBrowsePath = int WINAPI(wchar_t* buffer, const wchar_t* current);

}  // namespace dialog_library
