#include "companions/compstui/page_template.h"

#include <algorithm>
#include <cstddef>

namespace compstui {

namespace {

// DLGTEMPLATEEX: its members after the sizes are variable, so that no header declares it.
#pragma pack(push, 2)
struct ExtendedTemplate {
    WORD version = 1;
    WORD signature = 0xFFFF;
    DWORD help = 0;
    DWORD extended_style = WS_EX_CONTROLPARENT;
    DWORD style = DS_SETFONT | DS_FIXEDSYS | DS_3DLOOK | DS_CONTROL | WS_CHILD | WS_CAPTION | WS_DISABLED;
    WORD controls = 0;
    short x = 0, y = 0, width = 252, height = 218;  // dialog units
    WORD menu = 0, window_class = 0, title = 0;
    WORD point_size = 8, weight = FW_NORMAL;
    BYTE italic = 0, charset = DEFAULT_CHARSET;
    wchar_t face[13] = L"MS Shell Dlg";
};
#pragma pack(pop)
static_assert(offsetof(ExtendedTemplate, controls) == 16 && offsetof(ExtendedTemplate, face) == 38);

alignas(4) constinit const ExtendedTemplate kPlainPage;

}  // namespace

const DLGTEMPLATE* plain_page_template() noexcept {
    return reinterpret_cast<const DLGTEMPLATE*>(&kPlainPage);
}

const DLGTEMPLATE* find_template(HINSTANCE instance, const wchar_t* name) noexcept {
    const HRSRC found = FindResourceW(instance, name, RT_DIALOG);
    const HGLOBAL loaded = found ? LoadResource(instance, found) : nullptr;
    return static_cast<const DLGTEMPLATE*>(loaded ? LockResource(loaded) : nullptr);
}

}  // namespace compstui
