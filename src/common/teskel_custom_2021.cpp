#include "common/teskel_custom_2021.h"

#include <array>
#include <string_view>
#include <utility>

#include "common/driver_util.h"
#include "common/qk/handle.h"
#include "common/qk/memory_probe.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"

namespace pd_tk {

namespace {

constexpr std::array<const wchar_t*, 4> kStages = {L"DocStart", L"PageStart", L"PageEnd", L"DocEnd"};

constexpr std::wstring_view cut_as_entries(std::wstring_view path) noexcept {
    return path.substr(0, kRecordTextUnits - 1);
}

using Entry = wchar_t[kRecordTextUnits];

// Puts `text` in the place of the first entry that reads `entry`; false when none does. The list lies in
// memory that others have made, so each entry is copied out before it is looked at.
bool replace_entry(TKFileNames& files, std::wstring_view entry, std::wstring_view text) noexcept {
    for (Entry& shared : files.names) {
        Entry name;
        if (!qk::try_copy(name, shared, sizeof name))
            return false;
        if (std::wstring_view(name, wcsnlen(name, kRecordTextUnits)) != entry)
            continue;
        put_record_text(name, text);
        return qk::try_copy(shared, name, sizeof name);
    }
    return false;
}

}  // namespace

std::wstring file_list_name() {
    return qk::format(L"zrtk_80tkcustom_mmf_4tgoeyrgblyi_%s", user_name().c_str());
}

ListLock::ListLock() noexcept {
    wchar_t name[128];
    qk::format_into(name, std::size(name), L"Global\\ZR_4tm_mutex_w089ps89ghps9gr87osygh9t_%s",
                    L"q3y8rfnoty__TeskelCustom2021;");
    SECURITY_DESCRIPTOR everyone = {};
    (void)qk::let_everybody_in(&everyone);
    SECURITY_ATTRIBUTES attributes = {sizeof attributes, &everyone, FALSE};
    SetLastError(0);
    mutex_.reset(CreateMutexW(&attributes, TRUE, name));
    const DWORD error = GetLastError();
    if (error == ERROR_ACCESS_DENIED)
        mutex_.reset(OpenMutexW(SYNCHRONIZE, FALSE, name));
    if (mutex_ && (error == ERROR_ALREADY_EXISTS || error == ERROR_ACCESS_DENIED))
        WaitForSingleObject(mutex_.get(), INFINITE);
}

ListLock::~ListLock() {
    if (mutex_)
        ReleaseMutex(mutex_.get());
}

TeskelCustom2021::TeskelCustom2021(std::wstring document_name, std::wstring output_path)
    : document_name_(std::move(document_name)) {
    if (!output_path.empty())
        set_output_path(std::move(output_path));
}

TeskelCustom2021::~TeskelCustom2021() {
    if (!files_.view())
        return;  // never in the list
    last_.emplace();
    remove_fn_from_mmf();
}

bool TeskelCustom2021::IsActive() {
    TRACE("pd_tk::TeskelCustom2021::IsActive");
    return ExternalCallIni().exists();
}

std::wstring TeskelCustom2021::getExeName(size_t stage) const {
    TRACE("pd_tk::TeskelCustom2021::getExeName");
    std::wstring program = stage < kStages.size() ? ini_.value(kStages[stage], L"App") : std::wstring();
    TRACE(program);
    return program;
}

bool TeskelCustom2021::HasExe(size_t stage) const {
    TRACE("pd_tk::TeskelCustom2021::HasExe");
    return qk::is_file(getExeName(stage));
}

bool TeskelCustom2021::HasAnyExe() const {
    TRACE("pd_tk::TeskelCustom2021::HasAnyExe");
    return HasExe(kPageStart) || HasExe(kPageEnd) || HasExe(kDocStart) || HasExe(kDocEnd);
}

std::wstring TeskelCustom2021::GetOutputFolder() const {
    TRACE("pd_tk::TeskelCustom2021::GetOutputFolder");
    return ini_.value(L"Output", L"OutputFolder");
}

void TeskelCustom2021::set_output_path(std::wstring output_path) {
    if (output_path.empty() && !files_.view())
        return;
    const ListLock lock;
    if (!files_.view())
        files_.init(file_list_name());
    remove_fn_from_mmf();
    output_path_ = std::move(output_path);
    add_fn_to_mmf();
}

void TeskelCustom2021::add_fn_to_mmf() noexcept {
    if (!files_.view() || output_path_.empty())
        return;
    if (!replace_entry(*files_.view(), L"", output_path_))
        TRACE("pd_tk::TeskelCustom2021: the list is full");
}

void TeskelCustom2021::remove_fn_from_mmf() noexcept {
    if (!files_.view() || output_path_.empty())
        return;
    TRACE("pd_tk::TeskelCustom2021::remove_fn_from_mmf");
    TRACE("delete");
    TRACE(output_path_);
    replace_entry(*files_.view(), cut_as_entries(output_path_), L"");
}

}  // namespace pd_tk
