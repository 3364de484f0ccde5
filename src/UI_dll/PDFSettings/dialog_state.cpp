#include "UI_dll/PDFSettings/dialog_state.h"

namespace pdf_settings {

namespace {

thread_local std::unique_ptr<DialogState> state_of_thread;

}  // namespace

DialogState& dialog_state() {
    if (!state_of_thread)
        state_of_thread = std::make_unique<DialogState>();
    return *state_of_thread;
}

void release_dialog_state() noexcept {
    state_of_thread.reset();
}

Setting& edited_setting() {
    auto& edited = dialog_state().edited;
    if (!edited)
        edited = std::make_unique<Setting>();
    return *edited;
}

}  // namespace pdf_settings
