// The windows of the dialog library.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "companions/tessalo/output_choice.h"

namespace companions {

// The system's save dialog, owned by the calling thread's active window.
class SystemSaveDialog final : public SaveDialog {
public:
    [[nodiscard]] std::optional<std::wstring> ask(const std::wstring& folder, const std::wstring& name,
                                                  bool confirm_overwrite) override;
    void refuse(const std::wstring& path, UINT reason) override;
};

// Asks for a folder, with `current` selected at first; nothing when the user cancelled. The thread's COM
// apartment is entered for the time of the call.
[[nodiscard]] std::optional<std::wstring> browse_for_folder(const std::wstring& current);

}  // namespace companions
