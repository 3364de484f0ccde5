#include "UI_dll/optitem.h"

#include <algorithm>
#include <array>
#include <new>

#include "UI_dll/PDFSettings/setting_list.h"
#include "UI_dll/sheet_information.h"
#include "common/qk/guard.h"
#include "common/qk/paths.h"
#include "common/qk/resource_dll.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "common/rwPDFSet_functions.h"
#include "resources/ids.h"
#include "zr_version.h"

namespace {

// An item that tells one text and offers no choice. Its name stands in the page's title text, not a second
// time in the frame.
constexpr OptionDescriptor telling(DWORD flags, UINT name_id, UINT icon_id) noexcept {
    return {.flags = flags | OPTIF_NO_GROUPBOX_NAME,
            .level = 0,
            .public_id = 101,
            .name_id = name_id,
            .type = TVOT_LISTBOX,
            .count = 1,
            .style = 0,
            .icon_id = icon_id,
            .build = OptionDescriptor::kDataAdvances};
}

constexpr OptionDescriptor kSettingInForce = telling(OPTIF_CALLBACK, IDS_SETTING_IN_FORCE, IDI_SETTINGS);
constexpr OptionDescriptor kModuleVersion = telling(0, IDS_MODULE_VERSION, IDI_SHEET);

constexpr wchar_t kVersion[] = L"" ZR_VERSION_TEXT;

size_t storage_bytes(size_t parameters, uint32_t build) noexcept {
    return sizeof(OPTITEM) + sizeof(OPTTYPE) + parameters * sizeof(OPTPARAM) +
           (build & OptionDescriptor::kExtended ? sizeof(EXTCHKBOX) : 0);
}

void fill_parameters(const OptionDescriptor& descriptor, std::span<OPTPARAM> parameters,
                     std::span<std::wstring> texts, ULONG_PTR information) {
    for (size_t i = 0; i < parameters.size(); ++i) {
        OPTPARAM& parameter = parameters[i];
        parameter.cbSize = sizeof parameter;
        const size_t text = descriptor.build & OptionDescriptor::kDataAdvances ? i : 0;
        if (text < texts.size())
            parameter.pData = texts[text].data();
        if (descriptor.build & OptionDescriptor::kDataCountsUp)
            parameter.lParam = static_cast<LPARAM>(i);
        parameter.IconID = descriptor.icon_id + (descriptor.build & OptionDescriptor::kIconsCountUp ? i : 0);
    }
    if (descriptor.type == TVOT_PUSHBUTTON)
        parameters[0].lParam += static_cast<LPARAM>(information);
}

// The name of the setting in force for the printer, as the list shows it; its file's where there is none.
std::wstring setting_in_force(const std::wstring& printer) {
    std::wstring file = GetSettingFileNameFromFD(printer);
    if (file.empty())
        file = kDefaultSettingFile;
    const std::wstring path = SettingPathOf(file);
    return qk::is_file(path) ? pdf_settings::shown_setting_name(path) : std::wstring(qk::file_part(file));
}

// Without memory the sheet goes without its item.
template <class TextOf>
void set_up(SheetInformation& information, const OptionDescriptor& descriptor, TextOf text_of) noexcept {
    const bool made = qk::guarded<bool>(false, [&] {
        return CreateOPTTYPE(descriptor, {text_of()}, reinterpret_cast<ULONG_PTR>(&information),
                             information.option.emplace());
    });
    if (!made)
        information.option.reset();
}

}  // namespace

size_t parameter_count(BYTE type, WORD own_count) noexcept {
    // By option type: two and three states, up-down arrow, track bar, scroll bar, list and combo box (their
    // own count), edit box, push button, check box.
    constexpr size_t kOwn = 0;
    constexpr std::array<size_t, 10> kCounts = {2, 3, 2, 3, 3, kOwn, kOwn, 2, 1, 1};
    if (type >= kCounts.size())
        return 0;
    const size_t count = kCounts[type] == kOwn ? own_count : kCounts[type];
    return count <= kMostParameters ? count : 0;
}

bool CreateOPTTYPE(const OptionDescriptor& descriptor, std::vector<std::wstring> texts, ULONG_PTR information,
                   OptionItem& item) {
    TRACE("CreateOPTTYPE");
    const size_t count = parameter_count(descriptor.type, descriptor.count);
    if (count == 0)
        return false;
    item.storage_.reset(new (std::nothrow) std::byte[storage_bytes(count, descriptor.build)]());
    if (!item.storage_)
        return false;
    item.name_ = qk::load_string(descriptor.name_id);
    item.texts_ = std::move(texts);
    std::byte* at = item.storage_.get();
    auto* option = new (at) OPTITEM{};
    auto* type = new (at += sizeof(OPTITEM)) OPTTYPE{};
    auto* parameters = reinterpret_cast<OPTPARAM*>(at += sizeof(OPTTYPE));
    option->cbSize = sizeof *option;
    option->Level = descriptor.level;
    option->Flags = descriptor.flags;
    option->pName = item.name_.data();
    option->pOptType = type;
    option->DMPubID = descriptor.public_id;
    type->cbSize = sizeof *type;
    type->Type = descriptor.type;
    type->Count = static_cast<WORD>(count);
    type->BegCtrlID = IDC_OPTION_ITEM;
    type->pOptParam = parameters;
    type->Style = descriptor.style;
    fill_parameters(descriptor, {parameters, count}, item.texts_, information);
    if (descriptor.build & OptionDescriptor::kExtended) {
        auto* extension = new (at + count * sizeof(OPTPARAM)) EXTCHKBOX{};
        extension->cbSize = sizeof *extension;
        extension->pTitle = item.name_.data();
        option->pExtChkBox = extension;
    }
    return true;
}

void SetupDPOptItems(SheetInformation& information) {
    TRACE("SetupDPOptItems");
    set_up(information, kSettingInForce, [&] { return setting_in_force(information.thread->name()); });
}

void SetupPPOptItems(SheetInformation& information) {
    TRACE("SetupPPOptItems");
    set_up(information, kModuleVersion, [] { return std::wstring(kVersion); });
}
