// What the settings dialog keeps for the thread that shows it.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/qk/gdi_handle.h"
#include "common/qk/wipe.h"
#include "print_settings/PrintSettings.h"

namespace pdf_settings {

using Setting = ps::PrintSettings;

// The pages of the edit sheet, in their order.
enum PageIndex : size_t {
    kGeneralPage,
    kPDFVersionPage,
    kColorPage,
    kCompressPage,
    kFontPage,
    kSecuritiesPage,
    kWaterMarkPage,
    kOpenActionPage,
    kInfoPage,
    kPageCount
};

// What a page keeps for itself while the sheet is open; a page derives its own from this.
class PageHelper {
public:
    virtual ~PageHelper() = default;
};

// The list page's pictures, for one DPI.
struct PageIcons {
    UINT dpi = 0;          // 0: none loaded
    qk::ImageList images;  // the rows' icons: 0 = an administrator's setting, 1 = one of the installation
    qk::Icon page, make, edit, remove, no_remove;
};

// Three records by lifetime; each is released as a whole, by an empty one in its place.

// As long as the list page is open.
struct ListPageState {
    PageIcons icons;
    std::optional<int> last_row;           // the list row that was selected last
    bool filling = false;                  // the list is being filled: its notifications are not the user's
    bool imported = false;                 // older versions' settings have been looked for
    std::wstring install_folder;           // looked up once: it does not move while a dialog is open
    std::unique_ptr<PageHelper> view_box;  // what the drawing of the page keeps
    std::unique_ptr<PageHelper> font_states;  // the table of font_states.h
    HWND page = nullptr;
    HWND sheet = nullptr;         // the page's parent, whose window procedure is replaced
    bool edit_cancelled = false;  // the last edit sheet was
    bool may_rename = false;      // a row's text may become an edit now
    std::wstring renamed_path;    // the file whose row's text was edited, and to what
    std::wstring new_name;
    HANDLE dpi_context = nullptr;  // the thread's, before the page was opened
};

// As long as one setting is selected.
struct EditedFile {
    std::unique_ptr<Setting> edited;  // the setting being edited, see edited_setting()
    std::unique_ptr<Setting> saved;   // as it was loaded; compared with on OK
    std::wstring path;                // the file that both were loaded from
    std::optional<uint64_t> mark;     // of that file's bytes as they were then; nothing: not known
};

// What a check of all pages has found.
struct Finding {
    HWND page;
    int control;
    std::wstring text;
};

// As long as the edit sheet is open.
struct OpenSheet {
    std::array<std::unique_ptr<PageHelper>, kPageCount> helpers;
    std::array<HWND, kPageCount> pages = {};
    std::map<HWND, qk::SecretText> shown;      // what its controls showed at first, see is_touched()
    bool opening = false;                      // its pages are being made: nothing is checked
    std::vector<Finding>* findings = nullptr;  // where refusals go instead of a box, see refuse()
};

struct DialogState {
    ListPageState list;
    EditedFile file;
    OpenSheet sheet;
    std::unique_ptr<DialogState> before;  // of the list page that the thread showed already
};

// The state of the calling thread's dialog, made on first use. Of several, one opened from the other, it is
// that of the page whose message is handled (DialogOfPage), else the newest.
[[nodiscard]] DialogState& dialog_state();

// Begins and ends the state of one list page; those of the thread's other pages stay as they are.
void open_dialog_state(HWND list_page);
void close_dialog_state(HWND list_page) noexcept;

// Forgets all of the calling thread's states.
void release_dialog_state() noexcept;

// The list page whose sheet that window is; null when it is of none.
[[nodiscard]] HWND list_page_in(HWND sheet) noexcept;

// While it lives, dialog_state() is that of the list page.
class DialogOfPage {
public:
    explicit DialogOfPage(HWND list_page) noexcept;
    ~DialogOfPage();
    DialogOfPage(const DialogOfPage&) = delete;
    DialogOfPage& operator=(const DialogOfPage&) = delete;

    explicit operator bool() const noexcept { return found_; }  // whether the page has one

private:
    HWND outer_;
    bool found_;
};

// The setting that the calling thread's dialog edits, made with default values on first use.
[[nodiscard]] Setting& edited_setting();

// The same as it was loaded. Made from the edited one where nothing was loaded.
[[nodiscard]] Setting& loaded_setting();

// The page's helper, made on first use.
template <class Helper>
[[nodiscard]] Helper& page_helper(PageIndex page) {
    auto& slot = dialog_state().sheet.helpers[page];
    if (!slot)
        slot = std::make_unique<Helper>();
    return static_cast<Helper&>(*slot);
}

}  // namespace pdf_settings
