// A page of the sheet: the caller's own page or one of a group's, and what the host keeps about it.
#pragma once

#include <string>

#include "companions/compstui/node.h"

namespace compstui {

class GroupNode;

class PageNode : public Node {
public:
    PageNode(Sheet& its_sheet, Node* its_parent) noexcept;
    ~PageNode() override;

    // Makes the property page from the caller's description; what is in it stays the caller's, the structure
    // is copied. False, with the last error, for a size that no version of PROPSHEETPAGEW has or when the
    // page cannot be made. `title`, when not empty, replaces the description's.
    [[nodiscard]] bool try_create(const PROPSHEETPAGEW& description, std::wstring title = {});

    [[nodiscard]] HPROPSHEETPAGE property_page() const noexcept { return property_page_; }

    // The page's dialog template; null for a number that its library has no template of.
    [[nodiscard]] const DLGTEMPLATE* find_template() const noexcept;
    [[nodiscard]] HINSTANCE instance() const noexcept;

    // The sheet that is about to be shown frees the page.
    void give_up_property_page() noexcept { property_page_ = nullptr; }

    ULONG_PTR user_data = 0;
    size_t index = 0;            // of a group's page: its place in the group
    GroupNode* group = nullptr;  // of a group's page

private:
    friend ULONG_PTR page_user_data(HWND window) noexcept;
    friend BOOL try_set_page_user_data(HWND window, ULONG_PTR data) noexcept;

    static INT_PTR CALLBACK procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) noexcept;
    static UINT CALLBACK callback(HWND window, UINT message, PROPSHEETPAGEW* page) noexcept;
    [[nodiscard]] static PageNode* of(HWND window) noexcept;

    INT_PTR initialise(HWND window, WPARAM focus);
    INT_PTR answer(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

    // The caller's page as its procedure gets to see it, PSPINFO behind its last byte.
    alignas(8) BYTE seen_[kLargestPage + sizeof(PSPINFO)] = {};
    std::wstring title_;
    DLGPROC procedure_ = nullptr;
    LPFNPSPCALLBACKW callback_ = nullptr;
    HPROPSHEETPAGE property_page_ = nullptr;
};

// The dialog template `name` (a text or a number) of `instance`; null when it has none. Lives as long as
// `instance` is loaded.
[[nodiscard]] const DLGTEMPLATE* find_template(HINSTANCE instance, const wchar_t* name) noexcept;

// GetCPSUIUserData and SetCPSUIUserData: a number that each page of the sheet keeps. 0 and FALSE, last error
// 1400, for a window that is no page of this host.
[[nodiscard]] ULONG_PTR page_user_data(HWND window) noexcept;
[[nodiscard]] BOOL try_set_page_user_data(HWND window, ULONG_PTR data) noexcept;

}  // namespace compstui
