// Plays the print system's part of the document events.
#pragma once

#include <windows.h>
#include <winspool.h>

#include <array>
#include <string>
#include <vector>

namespace host {

// The exported "DrvDocumentEvent" of a printer driver's user-interface module.
using DocumentEvent = int WINAPI(HANDLE printer, HDC context, int event, ULONG in_size, void* in,
                                 ULONG out_size, void* out);

// One event of the job as it went.
struct PlayedEvent {
    int number;
    bool sent;    // false: the module has not subscribed to it
    LONG result;  // 1 success, 0 not supported, -1 failure
    DWORD error;  // the thread's last error after the call
    size_t page;  // of a page event, from 1; else 0
};

// "STARTDOCPRE" for 5; "event <number>" for a number without a name.
[[nodiscard]] std::wstring event_name(int number);

// Sends the events of one job to a module and keeps what it answered. One thread.
class EventPlayer {
public:
    EventPlayer(DocumentEvent* module, HANDLE printer) noexcept : module_(module), printer_(printer) {
        subscribed_.fill(true);  // a module that does not answer the query gets everything
    }

    // Asks which events the module wants; from now on the others are not sent.
    void query_filter(const wchar_t* device);

    // Each returns the module's result, 1 for an event that is not sent.
    LONG create_dc_pre(const wchar_t* device, DEVMODEW* mode);
    LONG create_dc_post(DEVMODEW* mode);
    LONG start_doc_pre(const DOCINFOW& document);
    LONG start_doc_post(int job);
    LONG send(int event, size_t page = 0);  // one that carries no data

    // The device context that the later events are about.
    void set_context(HDC context) noexcept { context_ = context; }

    [[nodiscard]] const std::vector<PlayedEvent>& events() const noexcept { return events_; }
    [[nodiscard]] DWORD last_error() const noexcept { return events_.empty() ? 0 : events_.back().error; }

private:
    struct Data {
        const void* in = nullptr;
        size_t in_size = 0;
        void* out = nullptr;
        size_t out_size = 0;
    };

    LONG send(int event, const Data& data, size_t page);
    LONG call(int event, const Data& data, size_t page);

    static constexpr size_t kEvents = 16;  // 0 stands for none

    DocumentEvent* module_;
    HANDLE printer_;
    HDC context_ = nullptr;
    std::array<bool, kEvents> subscribed_ = {};
    std::vector<PlayedEvent> events_;
};

}  // namespace host
