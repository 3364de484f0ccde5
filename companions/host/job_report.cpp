#include "companions/host/job_report.h"

#include <picojson.h>

#include <algorithm>
#include <utility>

#include "common/qk/text.h"
#include "companions/host/host_error.h"
#include "companions/host/report_parts.h"

namespace host {

namespace {

std::wstring result_text(const PlayedEvent& event) {
    if (!event.sent)
        return L"not sent: not subscribed";
    std::wstring text = qk::format(L"%d", event.result);
    if (event.error != ERROR_SUCCESS)
        text += qk::format(L", last error %u: %s", event.error, error_in_words(event.error).c_str());
    return text;
}

bool alike(const PlayedEvent& a, const PlayedEvent& b) noexcept {
    return a.number == b.number && a.sent == b.sent && a.result == b.result && a.error == b.error;
}

// The pairs STARTPAGE, ENDPAGE from `first` on that go like the first pair.
size_t alike_pairs(const std::vector<PlayedEvent>& events, size_t first) noexcept {
    if (events[first].page == 0)
        return 0;
    size_t pairs = 0;
    for (size_t at = first; at + 1 < events.size(); at += 2, ++pairs)
        if (!alike(events[at], events[first]) || !alike(events[at + 1], events[first + 1]) ||
            events[at].page == 0 || events[at + 1].page != events[at].page)
            break;
    return pairs;
}

void add_events(std::vector<std::wstring>& lines, const std::vector<PlayedEvent>& events) {
    lines.push_back(L"events:");
    for (size_t at = 0; at < events.size(); ++at) {
        const PlayedEvent& event = events[at];
        std::wstring line = L"  " + padded(event_name(event.number)) + result_text(event);
        if (const size_t pairs = alike_pairs(events, at); pairs > 1) {
            const PlayedEvent& second = events[at + 1];
            lines.push_back(qk::format(L"%s  (and %s: %s; the same for pages %llu to %llu)", line.c_str(),
                                       event_name(second.number).c_str(), result_text(second).c_str(),
                                       event.page, event.page + pairs - 1));
            at += 2 * pairs - 1;
            continue;
        }
        if (event.page != 0)
            line += qk::format(L"  (page %llu)", event.page);
        lines.push_back(line);
    }
}

picojson::value json_event(const PlayedEvent& event) {
    picojson::object object;
    object["event"] = picojson::value(static_cast<double>(event.number));
    object["name"] = json_text(event_name(event.number));
    object["sent"] = picojson::value(event.sent);
    object["result"] = picojson::value(static_cast<double>(event.result));
    object["last_error"] = json_number(event.error);
    if (event.page != 0)
        object["page"] = json_number(event.page);
    return picojson::value(object);
}

picojson::value json_events(const std::vector<PlayedEvent>& events) {
    picojson::array array;
    std::ranges::transform(events, std::back_inserter(array), json_event);
    return picojson::value(array);
}

}  // namespace

bool succeeded(Outcome outcome) noexcept {
    return outcome == Outcome::kPrinted || outcome == Outcome::kSpooled || outcome == Outcome::kAborted;
}

const wchar_t* outcome_name(Outcome outcome) noexcept {
    static constexpr const wchar_t* kNames[] = {L"printed",   L"spooled", L"refused",
                                                L"cancelled", L"aborted", L"failed"};
    return kNames[static_cast<size_t>(outcome)];
}

std::vector<std::wstring> report_lines(const JobReport& report) {
    std::vector<std::wstring> lines;
    const auto add = [&lines](const wchar_t* name, const std::wstring& value) {
        if (!value.empty())
            lines.push_back(padded(name) + value);
    };
    add(L"file", report.file + L" (" + report.encoding + L")");
    add(L"title", report.title);
    add(L"printer", report.printer);
    add(L"module", report.module);
    add(L"font", report.font);
    add(L"thread", qk::format(L"%u", report.thread));
    add(L"pages", qk::format(L"%llu of %llu printed", report.printed_pages, report.pages));
    for (const std::wstring& note : report.notes)
        add(L"note", note);
    add_events(lines, report.events);
    add_record(lines, L"start record", report.start_record);
    add_record(lines, L"result record", report.result_record);
    if (report.renderer_exit_code)
        add(L"renderer", qk::format(L"exit code %u", *report.renderer_exit_code));
    add(L"spooled", report.spool);
    add(L"PDF", report.pdf);
    add(L"last error", qk::format(L"%u: %s", report.last_error, error_in_words(report.last_error).c_str()));
    add(L"fault", report.fault);
    add(L"caption", report.caption);
    add(L"message", report.message);
    add(L"outcome", outcome_name(report.outcome));
    return lines;
}

std::string report_json(const JobReport& report) {
    const std::pair<const char*, const std::wstring&> texts[] = {
        {"file", report.file},       {"encoding", report.encoding}, {"title", report.title},
        {"printer", report.printer}, {"module", report.module},     {"font", report.font},
        {"spool", report.spool},     {"pdf", report.pdf},           {"fault", report.fault},
        {"caption", report.caption}, {"message", report.message}};
    picojson::object object;
    for (const auto& [name, text] : texts)
        object[name] = json_text(text);
    object["thread"] = json_number(report.thread);
    object["job"] = json_number(static_cast<size_t>(report.job));
    object["pages"] = json_number(report.pages);
    object["printed_pages"] = json_number(report.printed_pages);
    object["notes"] = json_texts(report.notes);
    object["events"] = json_events(report.events);
    object["start_record"] = json_record(report.start_record);
    object["result_record"] = json_record(report.result_record);
    object["renderer_exit_code"] =
        report.renderer_exit_code ? json_number(*report.renderer_exit_code) : picojson::value();
    object["last_error"] = json_number(report.last_error);
    object["last_error_text"] = json_text(error_in_words(report.last_error));
    object["outcome"] = json_text(outcome_name(report.outcome));
    object["trace"] = json_texts(report.trace);
    return picojson::value(object).serialize(true);
}

}  // namespace host
