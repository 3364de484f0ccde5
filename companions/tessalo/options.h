// How the dialog library is told to work: environment variables and "Tessalo80.ini" beside the library.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "common/qk/ms_wstring.h"
#include "common/rwPDFSet_functions.h"
#include "print_settings/PrintSettings.h"

namespace companions {

// Whether no window may be shown: always where the program's window station is not visible; else the variable
// ZR_UNATTENDED, a number, when it is set; else the key "Unattended" of section "Dialog" in the ini.
[[nodiscard]] bool unattended(const std::wstring& ini_path);

// The folder of a job that nobody watches: the first that is given of the record's, the setting's, the
// variable ZR_OUTPUT_FOLDER, the ini's "OutputFolder" and the user's documents.
[[nodiscard]] std::wstring unattended_folder(const std::wstring& record_folder,
                                             const ps::General_impl& general, const std::wstring& ini_path);

// The folder that the dialog opens in: the record's, else the setting's, else the user's documents.
[[nodiscard]] std::wstring dialog_folder(const std::wstring& record_folder, const ps::General_impl& general);

// Whether the setting has a folder for every PDF: nobody is to be asked for the place.
[[nodiscard]] bool has_fixed_folder(const ps::General_impl& general) noexcept;

// The setting file that a printer's next job uses: the choice made for the running process, when there is one
// that fits into `units` with its terminating zero, else the printer's own. A bare name or a path; never
// empty.
[[nodiscard]] std::wstring setting_name_for(const std::wstring& printer_name,
                                            size_t units = kSettingNameUnits);

// Replaces a text of the working record: in place where it fits into what stands there, as a string of a
// run-time library does, else by the address of `own`, which then holds the text and is the library's.
void assign(qk::MsWString& field, std::wstring_view text, std::wstring& own);

}  // namespace companions
