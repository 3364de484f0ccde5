// The modal property sheet that edits one print setting.
#pragma once

#include <windows.h>

#include <prsht.h>

#include <cstdint>
#include <string>

namespace pdf_settings {

// Shows the nine pages and returns when the sheet is closed: PropertySheet's result. `copied` is the name of
// the setting that a new one is a copy of, where the caption is to say so.
INT_PTR DoPropertySheet(HWND list_page, bool is_new, const std::wstring& copied = {});

// The name of the paper of that number, as the printer has it; empty when it has none.
[[nodiscard]] std::wstring name_of_paper(int32_t number);

// Whether the checks of all pages of the open sheet pass.
[[nodiscard]] bool CheckAllProperties(HWND page);

// Results of the save step.
inline constexpr int kSaveRefused = 0;   // the name is another setting's
inline constexpr int kSaved = 1;         // written, or nothing to write
inline constexpr int kNotSaved = 2;      // invalid, not by the OK button, or the file cannot be written
inline constexpr int kSaveDeclined = 7;  // the user does not want the changes

// Saves the edited setting, the last step of OK. Unless the result is kSaved the sheet has to stay open: the
// page answers the notification with PSNRET_INVALID_NOCHANGEPAGE.
[[nodiscard]] int save_step(HWND page, bool from_ok);

// The caption of the sheet for a setting of that name.
[[nodiscard]] std::wstring sheet_caption(const std::wstring& name, bool is_new,
                                         const std::wstring& copied = {});

}  // namespace pdf_settings
