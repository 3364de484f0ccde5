// The end of a job: its result is read back and reported, its state freed.
#include <exception>
#include <memory>
#include <string>

#include "common/ErrorNotify.h"
#include "common/driver_util.h"
#include "common/qk/memory_probe.h"
#include "common/qk/module.h"
#include "common/qk/override_ini.h"
#include "common/qk/registry.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "common/threadprop.h"
#include "job/document_event.h"

namespace job {

namespace {

void tell_listeners() {
    const qk::OverrideIni ini;
    const UINT message = RegisterWindowMessageW(L"Dunmere Vantrix Stop");
    PostMessageW(HWND_BROADCAST, message, ini.message_id(), 0);
}

// The choice of a setting file for one process ends with its job.
void forget_process_setting(HANDLE printer) {
    const qk::RegKey key =
        qk::registry::open(qk::registry::CurrentUser().get(), qk::registry::kRoot, KEY_WRITE);
    if (key)
        RegDeleteValueW(key.get(),
                        qk::format(L"settingfile_for_process_%s", printer_name(printer).c_str()).c_str());
}

// A text of the result record, which another process has written: as much of it as is true.
std::wstring text_of(const qk::MsWString& field) {
    if (auto text = field.find_text())
        return std::move(*text);
    TRACE("ZRTKPrintInfo: a text is not readable");
    return field.readable_text();
}

void report(const ZRTKPrintInfo& result) {
    const std::wstring given = result.caption.length == 0 ? std::wstring() : text_of(result.caption);
    const std::wstring caption = given.empty() ? qk::kProductName : given;
    const std::wstring pdf = text_of(result.pdf_file_name);
    ZRTK_ErrorNotify(caption, pdf.c_str(), result.error_code, 0, text_of(result.message), caption);
}

// A step of the end that may fail without keeping the others from being made.
template <class Step>
void attempt(Step step) noexcept {
    try {
        step();
    } catch (const std::exception& exception) {
        TRACE(exception.what());
    } catch (...) {
        TRACE("a step of the end failed");
    }
}

}  // namespace

void release_start_state() noexcept {
    TRACE("FreeThreadProp");
    const std::unique_ptr<StartState> state(
        reinterpret_cast<StartState*>(FreeThreadProp(threadprop::kStartRecord)));
    if (state)
        state->block.write({});  // whoever still has the block open finds no job in it
}

std::unique_ptr<ResultState> take_result_state() noexcept {
    return std::unique_ptr<ResultState>(
        reinterpret_cast<ResultState*>(FreeThreadProp(threadprop::kResultRecord)));
}

Outcome end(HANDLE printer) noexcept {
    // Both first, so that nothing of the job stays whatever happens to the rest.
    release_start_state();
    const auto state = take_result_state();
    attempt(&tell_listeners);
    attempt([printer] { forget_process_setting(printer); });
    TRACE("ZRTKPrintInfo@end of document");
    Outcome outcome;
    if (!state) {
        TRACE("404");
        return outcome;
    }
    ZRTKPrintInfo result;  // a copy, made once: its writer may not be done with it
    if (!state->read(result))
        return outcome;
    if (result.error_code != 0)
        attempt([&result] { report(result); });
    outcome.status = result.win32_error;
    return outcome;
}

}  // namespace job
