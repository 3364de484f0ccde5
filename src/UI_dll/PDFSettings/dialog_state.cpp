#include "UI_dll/PDFSettings/dialog_state.h"

namespace pdf_settings {

namespace {

// The newest dialog's, and through `before` those that the thread shows beside it.
thread_local std::unique_ptr<DialogState> newest_of_thread;
// Of the dialog whose message is handled; null: the newest.
thread_local DialogState* current_of_thread = nullptr;

std::unique_ptr<DialogState>& place_of(HWND list_page) noexcept {
    auto* place = &newest_of_thread;
    while (*place && (*place)->list.page != list_page)
        place = &(*place)->before;
    return *place;
}

}  // namespace

DialogState& dialog_state() {
    if (current_of_thread)
        return *current_of_thread;
    if (!newest_of_thread)
        newest_of_thread = std::make_unique<DialogState>();
    return *newest_of_thread;
}

void open_dialog_state(HWND list_page) {
    auto state = std::make_unique<DialogState>();
    state->list.page = list_page;
    state->before = std::move(newest_of_thread);
    newest_of_thread = std::move(state);
}

void close_dialog_state(HWND list_page) noexcept {
    auto& place = place_of(list_page);
    if (!place)
        return;
    const auto closed = std::move(place);
    place = std::move(closed->before);
    if (current_of_thread == closed.get())
        current_of_thread = nullptr;
}

void release_dialog_state() noexcept {
    current_of_thread = nullptr;
    newest_of_thread.reset();
}

HWND list_page_in(HWND sheet) noexcept {
    for (const DialogState* state = newest_of_thread.get(); state; state = state->before.get())
        if (state->list.sheet == sheet)
            return state->list.page;
    return nullptr;
}

DialogOfPage::DialogOfPage(HWND list_page) noexcept
    : outer_(current_of_thread ? current_of_thread->list.page : nullptr) {
    DialogState* const state = list_page ? place_of(list_page).get() : nullptr;
    found_ = state != nullptr;
    current_of_thread = state;
}

// The state of before may have gone in between.
DialogOfPage::~DialogOfPage() {
    current_of_thread = outer_ ? place_of(outer_).get() : nullptr;
}

Setting& edited_setting() {
    auto& edited = dialog_state().file.edited;
    if (!edited)
        edited = std::make_unique<Setting>();
    return *edited;
}

Setting& loaded_setting() {
    auto& saved = dialog_state().file.saved;
    if (!saved)
        saved = std::make_unique<Setting>(edited_setting());
    return *saved;
}

}  // namespace pdf_settings
