#include "companions/render/outside.h"

#include <windows.h>

#include <shellapi.h>

#include <iterator>
#include <utility>
#include <vector>

#include "common/qk/handle.h"
#include "companions/command_line.h"
#include "companions/render/cancelling.h"
#include "companions/system_texts.h"

namespace companions::render {

namespace {

// The process, empty when it could not be started.
qk::HandleObj start(const std::vector<std::wstring>& words) {
    std::wstring line = command_line(words);
    STARTUPINFOW startup = {sizeof startup};
    PROCESS_INFORMATION made = {};
    // Without a console here it would get one of its own, with a window.
    const DWORD flags = GetConsoleCP() == 0 ? CREATE_NO_WINDOW : 0;
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, flags, nullptr, nullptr, &startup,
                        &made))
        return {};
    const qk::HandleObj thread(made.hThread);
    return qk::HandleObj(made.hProcess);
}

}  // namespace

StagePrograms::StagePrograms(const std::wstring& document, std::wstring pdf) : pdf_(std::move(pdf)) {
    using pd_tk::TeskelCustom2021;
    if (!TeskelCustom2021::IsActive())
        return;
    const TeskelCustom2021 programs(document);
    for (size_t stage = 0; stage < std::size(programs_); ++stage)
        if (programs.HasExe(stage))
            programs_[stage] = programs.getExeName(stage);
}

void StagePrograms::run(size_t stage, unsigned page) const {
    if (programs_[stage].empty())
        return;
    std::vector<std::wstring> words = {programs_[stage], pdf_};
    if (page > 0)
        words.push_back(std::to_wstring(page));
    if (const qk::HandleObj process = start(words); process)
        wait_unless_cancelled(process.get(), kStageSeconds * 1000);
}

void open_with_viewer(const std::wstring& pdf) {
    const std::wstring viewer = variable(L"ZR_VIEWER");
    if (viewer == L"none")
        return;
    if (viewer.empty())
        ShellExecuteW(nullptr, nullptr, pdf.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    else
        start({viewer, pdf});
}

}  // namespace companions::render
