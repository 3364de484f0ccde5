// A thread that prints: the document events, the scripted dialog library and the job's records.
#pragma once

#include <gtest/gtest.h>

#include "UI_dll/ddi.h"
#include "common/job_records.h"
#include "common/threadprop.h"
#include "print_settings/PrintSettings.h"
#include "support/fake_tessalo.h"
#include "support/installation.h"

// What an event leaves: its result and the thread's last error.
struct Left {
    int result;
    DWORD error;
    bool operator==(const Left&) const = default;
};

inline constexpr Left kGood = {DOCUMENTEVENT_SUCCESS, ERROR_SUCCESS};

inline Left send_event(int event, void* in = nullptr, ULONG in_size = 0, void* out = nullptr,
                       ULONG out_size = 0) {
    SetLastError(ERROR_NO_TOKEN);  // an event that leaves the last error alone is found out
    const int result = DrvDocumentEvent(FakePrinter::handle(), nullptr, event, in_size, in, out_size, out);
    return {result, GetLastError()};
}

inline Left start_job(const wchar_t* document) {
    DOCINFOW info = {.cbSize = sizeof info, .lpszDocName = document};
    return send_event(DOCUMENTEVENT_STARTDOCPRE, &info, sizeof info);
}

inline Left end_job() {
    return send_event(DOCUMENTEVENT_ENDDOCPOST);
}

inline std::wstring block_name(const wchar_t* pattern) {
    return qk::format(pattern, static_cast<int>(GetCurrentThreadId()));
}

// A record of another side in shared memory: opened or, with `create`, made.
template <class T>
class OtherSide {
public:
    explicit OtherSide(const std::wstring& name, DWORD create = 0, DWORD kind = SEC_COMMIT)
        : mapping_(create ? CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE | kind, 0,
                                               create, name.c_str())
                          : OpenFileMappingW(FILE_MAP_WRITE, FALSE, name.c_str())),
          view_(mapping_ ? MapViewOfFile(mapping_.get(), FILE_MAP_WRITE, 0, 0, 0) : nullptr) {}

    explicit operator bool() const { return static_cast<bool>(view_); }
    T* operator->() const { return static_cast<T*>(view_.get()); }
    T& operator*() const { return *static_cast<T*>(view_.get()); }

private:
    qk::HandleObj mapping_;
    qk::View view_;
};
using StartRecord = OtherSide<ZRTKPrintStartInfoC>;
using ResultRecord = OtherSide<ZRTKPrintInfo>;

inline std::optional<std::string> start_record_bytes() {
    const StartRecord record(block_name(kStartBlockName));
    return record ? std::optional(raw_bytes(*record)) : std::nullopt;
}

inline ULONG_PTR thread_prop(std::wstring_view key) {
    ULONG_PTR value = 0;
    GetThreadProp(key, value);
    return value;
}

class JobTest : public testing::Test {
public:
    using Settings = Corvanta::Vantrix::PrintSettings::PrintSettings;

    // How the library puts its texts into the record: as a string of its run-time library does that is
    // assigned to or replaced, by the address of a text of its own, or in the field itself.
    enum class How { kAssigned, kReplaced, kByOwnAddress, kInTheField };

    JobTest() {
        here.copy_built(L"fake_tessalo.dll", L"Tessalo80.dll");
        load_dialog_library();
        script->context = this;
        script->answer = [](dialog_library::WorkingRecord& record, const wchar_t*, void* context) {
            return static_cast<JobTest*>(context)->answer(record);
        };
        here.user.set_text(Installation::kKey, L"Language", L"en");
    }
    ~JobTest() override {
        EXPECT_STREQ(script->misuse, "");
        for (wchar_t* text : library_texts)
            EXPECT_TRUE(library_free(GetProcessHeap(), 0, text)) << "the library's text has been freed";
        library_texts.clear();
    }

    void load_dialog_library() {
        library.reset(LoadLibraryW(here.folder.file(L"Tessalo80.dll").c_str()));
        script = qk::find_export<FakeTessaloScriptExport>(library.get(), "Script")();
        *script = {};
    }

    // Puts a text into a field of the working record.
    static void put(qk::MsWString& field, std::wstring& text, How how) {
        const bool in_place = field.capacity <= qk::MsWString::kInPlace;
        const bool fits = how == How::kAssigned &&
                          text.size() <= std::max<uint64_t>(field.capacity, qk::MsWString::kInPlace);
        if (how == How::kInTheField || (in_place && fits)) {
            field.set_in_place(text);
        } else if (how == How::kByOwnAddress) {
            field.address = text.data();
            field.capacity = field.length = text.size();
        } else {
            if (!fits) {
                EXPECT_TRUE(in_place || library_free(GetProcessHeap(), 0, field.address));
                field.capacity = std::max<size_t>(text.size(), 8);
                field.address = static_cast<wchar_t*>(
                    HeapAlloc(GetProcessHeap(), 0, (field.capacity + 1) * sizeof(wchar_t)));
                library_texts.push_back(field.address);
            }
            std::copy_n(text.c_str(), text.size() + 1, field.address);
            field.length = text.size();
        }
    }

    // Saves settings made by `change` and has the dialog library name them.
    std::wstring use_settings(const std::function<void(Settings&)>& change = [](Settings&) {}) {
        Settings settings;
        change(settings);
        const std::wstring file = here.folder.file(L"job.ps4");
        EXPECT_TRUE(settings.Save(file));
        name_setting(file);
        return file;
    }
    void name_setting(const std::wstring& name) const { qk::copy_zero_padded(script->setting, 512, name); }

    // Has a program called after each stage, and the dialog start in a folder.
    void call_program(const std::string& stage, const std::wstring& program, bool with_folder = true) const {
        here.write_external_calls("[" + stage + "]\r\nApp=" + qk::to_utf8(program) + "\r\n" +
                                  (with_folder ? "[Output]\r\nOutputFolder=C:\\start\\\r\n" : ""));
    }

    // A job that starts and ends; `while_it_runs` is called between.
    static void run_job(
        const std::function<void()>& while_it_runs = [] {}, const Left& wanted = kGood) {
        EXPECT_EQ(start_job(L"x"), wanted);
        while_it_runs();
        EXPECT_EQ(end_job(), kGood);
    }

    static bool has_state() {
        return thread_prop(threadprop::kStartRecord) != 0 || thread_prop(threadprop::kResultRecord) != 0 ||
               start_record_bytes() || ResultRecord(block_name(kResultBlockName));
    }

    Installation here;
    qk::DLL library;
    FakeTessaloScript* script = nullptr;

    // The user's part in the dialog.
    std::wstring path = here.folder.file(L"out\\report.pdf");
    std::wstring third;
    How how = How::kAssigned;
    int result = 0;
    std::function<void(dialog_library::WorkingRecord&)> meddle;  // a last word

private:
    // What the library's run-time library frees with, whatever a test has put in the place of our own.
    static inline const auto library_free =
        qk::find_export<decltype(HeapFree)>(GetModuleHandleW(L"kernel32.dll"), "HeapFree");
    static inline std::vector<wchar_t*> library_texts;

    int answer(dialog_library::WorkingRecord& record) {
        put(record.output_path, path, how);
        put(record.third_text, third, how);
        if (meddle)
            meddle(record);
        return result;
    }
};
