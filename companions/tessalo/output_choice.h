// The file that a job's PDF is written to: where it goes, what it is called and what happens to one of that
// name.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "companions/tessalo/safe_name.h"
#include "print_settings/sections.h"

namespace companions {

// What a setting says of an output file that exists (`WhenSameName`).
enum class SameName : int32_t { kOverwrite, kAsk, kNumber, kRefuse };
static_assert(static_cast<int32_t>(SameName::kRefuse) == ps::General_impl::kRefuse);

// Codes outside 0 to 3 count as kAsk, which loses nothing.
[[nodiscard]] SameName same_name_rule(int32_t code) noexcept;

struct OutputFile {
    std::wstring path;
    bool reserved = false;  // an empty file of that name was made for this job
};

enum class Reservation {
    kMade,
    kTaken,   // something of that name exists
    kFailed,  // the file cannot be made; the last error says why
};

// Makes an empty file where there is none, so that no other job takes the name; the file is closed again.
[[nodiscard]] Reservation reserve(const std::wstring& path) noexcept;

// The first of "title.pdf", "title(1).pdf", ... that is free, reserved. Where no file can be made at all the
// first name comes back unreserved, and writing it will tell why. Nothing when the folder leaves no room for
// a name or 9,999 are taken.
[[nodiscard]] std::optional<OutputFile> find_numbered(std::wstring_view folder, std::wstring_view title,
                                                      const NameLimits& limits);

// The name that a job's PDF is to have: a title, with a number that the name itself has where it `counts`.
struct WantedName {
    std::function<std::wstring(unsigned number)> title;
    bool counts = false;
};

// The title of such a name: with the first number from 1 on whose file does not exist.
[[nodiscard]] std::wstring find_free_title(std::wstring_view folder, const WantedName& name,
                                           const NameLimits& limits);

// The file of a job that nobody watches; nothing when the rule refuses it. kAsk numbers: there is nobody to
// ask.
[[nodiscard]] std::optional<OutputFile> choose_unattended(std::wstring_view folder, std::wstring_view title,
                                                          SameName rule, const NameLimits& limits);
// The same for a name. One that counts is reserved with its first free number, whatever the rule.
[[nodiscard]] std::optional<OutputFile> choose_unattended(std::wstring_view folder, const WantedName& name,
                                                          SameName rule, const NameLimits& limits);

// The window that asks for a file, as `choose_with_dialog` needs it.
class SaveDialog {
public:
    virtual ~SaveDialog() = default;

    // The full path that the user chose, starting from the file `name` in `folder`; nothing when the user
    // cancelled. With `confirm_overwrite` the dialog itself asks before it returns a file that exists.
    [[nodiscard]] virtual std::optional<std::wstring> ask(const std::wstring& folder,
                                                          const std::wstring& name,
                                                          bool confirm_overwrite) = 0;

    // Tells the user why the file cannot be taken, by a text of the language library; the question is put
    // again afterwards.
    virtual void refuse(const std::wstring& path, UINT reason) = 0;
};

// Asks until the user names a file that can be taken or cancels (nothing). ".pdf" is added where it is
// missing.
[[nodiscard]] std::optional<OutputFile> choose_with_dialog(SaveDialog& dialog, std::wstring folder,
                                                           std::wstring_view title, SameName rule,
                                                           const NameLimits& limits);

// The file of a job whose setting has a fixed folder: asks only where the name is taken and the rule is kAsk,
// or where no file can be made; never for a name that counts. Nothing when the rule refuses the name, which
// is told, or the user cancelled.
[[nodiscard]] std::optional<OutputFile> choose_in_folder(SaveDialog& dialog, const std::wstring& folder,
                                                         const WantedName& name, SameName rule,
                                                         const NameLimits& limits);

}  // namespace companions
