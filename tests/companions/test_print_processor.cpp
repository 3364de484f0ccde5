// The print processor: its exports, jobs of this process through the real spooler, and a real program's.

#include <commdlg.h>
#include <dlgs.h>
#include <winsplp.h>

#include <regex>
#include <set>

#include "common/qk/gdi_handle.h"
#include "common/qk/resource_dll.h"
#include "companions/print_processor/names.h"
#include "companions/print_processor/resource.h"
#include "companions/thread.h"
#include "companions/wine_layer.h"
#include "support/child_process.h"
#include "support/installed_printer.h"
#include "support/printer_turn.h"
#include "support/variable.h"

namespace {

using EnumDatatypes = BOOL WINAPI(wchar_t*, wchar_t*, DWORD, BYTE*, DWORD, DWORD*, DWORD*);

struct Processor {
    qk::DLL library{LoadLibraryW(Installation::built(processor::kLibrary).c_str())};
    template <class Function>
    Function* find(const char* name) const {
        Function* function = qk::find_export<Function>(library.get(), name);
        EXPECT_NE(function, nullptr) << name;
        return function;
    }
};

TEST(PrintProcessor, DatatypesComeWithTheirSize) {
    const Processor processor;
    auto* enumerate = processor.find<EnumDatatypes>("EnumPrintProcessorDatatypesW");
    DWORD needed = 0;
    DWORD count = 7;
    EXPECT_FALSE(enumerate(nullptr, nullptr, 1, nullptr, 0, &needed, &count));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER}) << "what the spooler goes by";
    EXPECT_EQ(count, 0u);
    std::vector<BYTE> buffer(needed, 0xAB);
    EXPECT_FALSE(enumerate(nullptr, nullptr, 1, buffer.data(), needed - 1, &needed, &count));
    EXPECT_EQ(buffer, std::vector<BYTE>(needed, 0xAB));
    EXPECT_FALSE(enumerate(nullptr, nullptr, 2, buffer.data(), needed, &needed, &count));
    EXPECT_FALSE(enumerate(nullptr, nullptr, 1, buffer.data(), needed, nullptr, nullptr));
    ASSERT_TRUE(enumerate(nullptr, nullptr, 1, buffer.data(), needed, &needed, &count));
    std::vector<std::wstring> names;
    for (DWORD at = 0; at < count; ++at)
        names.emplace_back(reinterpret_cast<const DATATYPES_INFO_1W*>(buffer.data())[at].pName);
    EXPECT_EQ(names, (std::vector<std::wstring>{L"RAW", L"RAW [FF appended]", L"RAW [FF auto]", L"TEXT",
                                                L"NT EMF 1.003"}));
}

TEST(PrintProcessor, OpeningNeverFailsAndBadCallsDo) {
    const Processor processor;
    auto* open = processor.find<decltype(OpenPrintProcessor)>("OpenPrintProcessor");
    auto* print = processor.find<decltype(PrintDocumentOnPrintProcessor)>("PrintDocumentOnPrintProcessor");
    auto* close = processor.find<decltype(ClosePrintProcessor)>("ClosePrintProcessor");
    wchar_t job[] = L"no such printer, Job 7";
    PRINTPROCESSOROPENDATA nothing = {};
    for (PRINTPROCESSOROPENDATA* data : {static_cast<PRINTPROCESSOROPENDATA*>(nullptr), &nothing}) {
        const HANDLE handle = open(nullptr, data);
        ASSERT_NE(handle, nullptr) << "a spooler whose open fails keeps its lock";
        EXPECT_FALSE(print(handle, nullptr));
        EXPECT_FALSE(print(handle, job));
        EXPECT_NE(GetLastError(), DWORD{ERROR_SUCCESS});
        EXPECT_TRUE(close(handle));
    }
    EXPECT_FALSE(print(nullptr, job));
    EXPECT_FALSE(close(nullptr));
}

// The texts that a job has no other test for: each language has its own, with the same numbers in them.
TEST(PrintProcessor, ProgressIsToldInEveryLanguage) {
    const qk::DLL library(LoadLibraryExW(Installation::built(processor::kLibrary).c_str(), nullptr,
                                         LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE));
    const wchar_t* const pages[] = {L"Page 7 of 12", L"7 / 12 \u30DA\u30FC\u30B8", L"7/12\uD398\uC774\uC9C0",
                                    L"\u7B2C 7 \u9875\uFF0C\u5171 12 \u9875",
                                    L"\u7B2C 7 \u9801\uFF0C\u5171 12 \u9801"};
    std::set<std::wstring> all;
    for (UINT language = 0; language < std::size(pages); ++language) {
        std::wstring texts[TEXT_CANCELLING + 1];
        for (UINT which = 0; which < std::size(texts); ++which)
            texts[which] = qk::find_string(library.get(), IDS_EN + 16 * language + which).value_or(L"");
        EXPECT_EQ(qk::format(texts[TEXT_PAGE_OF].c_str(), 7u, 12u), pages[language]);
        EXPECT_NE(qk::format(texts[TEXT_PAGE].c_str(), 7u).find(L'7'), std::wstring::npos);
        all.insert({texts[TEXT_BEGUN], texts[TEXT_CANCELLING]});
    }
    EXPECT_EQ(all.size(), 2 * std::size(pages)) << "a text is missing or another language's";
}

// Sends bytes as a job; what EndDocPrinter says, and nothing when the job cannot be started.
std::optional<bool> send_job(HANDLE printer, std::string bytes, std::wstring title, std::wstring type,
                             std::wstring output = L"") {
    DOC_INFO_1W document = {title.data(), output.empty() ? nullptr : output.data(), type.data()};
    DWORD written = 0;
    if (StartDocPrinterW(printer, 1, reinterpret_cast<BYTE*>(&document)) == 0)
        return std::nullopt;
    EXPECT_TRUE(WritePrinter(printer, bytes.data(), static_cast<DWORD>(bytes.size()), &written));
    return EndDocPrinter(printer) != FALSE;
}

std::string page_of(const std::string& words) {
    return "%!PS\n/Courier findfont 20 scalefont setfont 50 700 moveto (" + words + ") show showpage\n";
}

// How many bytes this process's spooled documents have together; nothing when there are none.
std::optional<uint64_t> spooled_bytes() {
    wchar_t temp[MAX_PATH + 1] = {};
    GetTempPathW(MAX_PATH, temp);
    std::optional<uint64_t> bytes;
    WIN32_FIND_DATAW found = {};
    const std::wstring pattern = qk::format(L"%szr_spool_%u_*", temp, GetCurrentProcessId());
    const qk::FindObj search(FindFirstFileW(pattern.c_str(), &found));
    for (bool more = static_cast<bool>(search); more; more = FindNextFileW(search.get(), &found) != FALSE)
        bytes = bytes.value_or(0) + found.nFileSizeLow;
    return bytes;
}

template <class Condition>
bool come(Condition condition) {
    for (int look = 0; look < 400; ++look, Sleep(50))
        if (condition())
            return true;
    return false;
}

// A visible window of a process, known by a control that it has and one that it lacks.
struct Search {
    DWORD process;
    int has, lacks;
    HWND window = nullptr;
};

BOOL CALLBACK look_for_window(HWND window, LPARAM parameter) {
    auto& search = *reinterpret_cast<Search*>(parameter);
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process == search.process && IsWindowVisible(window) && GetDlgItem(window, search.has) &&
        !GetDlgItem(window, search.lacks))
        search.window = window;
    return TRUE;
}

HWND await_window(DWORD process, int has, int lacks) {
    Search search = {process, has, lacks};
    EXPECT_TRUE(come([&search] {
        EnumWindows(&look_for_window, reinterpret_cast<LPARAM>(&search));
        return search.window != nullptr;
    }));
    return search.window;
}

HWND await_save_dialog() {
    return await_window(GetCurrentProcessId(), cmb13, rad1);
}

class PrintProcessorJob : public testing::Test {
protected:
    PrintProcessorJob() {
        EXPECT_EQ(run_built(L"zr_print.exe", L"zr_print install --notify-channels 8"), 0);
        EXPECT_TRUE(OpenPrinterW(name_.data(), printer_.put(), nullptr));
    }

    bool send(const std::string& bytes, const wchar_t* datatype = L"RAW", const std::wstring& output = L"") {
        return send_job(printer_.get(), bytes, title_, datatype, output).value();
    }

    // What a program of the system below prints, its last word a Windows path.
    [[nodiscard]] std::string ask(std::vector<std::string> words, const std::wstring& pdf,
                                  const char* more = "") const {
        const std::wstring answer = folder_.write(L"answer", "");
        std::vector<std::string> command = {"/bin/sh", "-c", "out=$1; shift; exec \"$@\" >\"$out\"", "sh",
                                            companions::wine::find_unix_path(answer).value_or("")};
        command.insert(command.end(), words.begin(), words.end());
        command.push_back(companions::wine::find_unix_path(pdf).value_or(""));
        if (*more)
            command.emplace_back(more);
        EXPECT_EQ(companions::wine::run_unix_program(command), 0) << words[0];
        return TempFolder::read(answer);
    }
    [[nodiscard]] std::string text_of(const std::wstring& pdf) const { return ask({"pdftotext"}, pdf, "-"); }

    // How many failures have been told so far.
    [[nodiscard]] static size_t messages() {
        const std::string log = TempFolder::read(qk::shared_documents_folder() + L"\\Error_0.log");
        const std::string_view mark("E\0r\0r\0o\0r\0M\0", 12);
        size_t count = 0;
        for (size_t at = 0; (at = log.find(mark, at)) != std::string::npos; ++at)
            ++count;
        return count;
    }

    const PrinterTurn turn_;
    const TempFolder folder_;
    const Variable unattended_{L"ZR_UNATTENDED", L"1"};
    const Variable output_{L"ZR_OUTPUT_FOLDER", folder_.file(L"out")};
    const std::wstring title_ = L"A d\u00e9j\u00e0 vu";
    const std::wstring pdf_ = folder_.file(L"out\\A d\u00e9j\u00e0 vu.pdf");
    std::wstring name_ = qk::kProductName;
    qk::PrinterHandleObj printer_;
};

TEST_F(PrintProcessorJob, DocumentGoesWhereItIsSent) {
    const std::string page = page_of("Words");
    const std::wstring file = folder_.file(L"file.ps");
    const struct {
        const char* label;
        std::string bytes;
        const wchar_t* datatype;
        std::wstring output;
        bool ends, makes_pdf;
        const char* engine;
        size_t messages;
    } rows[] = {
        {"a file of the program's own", "short", L"RAW", file, true, false, "", 0},
        {"a file in no folder", "short", L"RAW", folder_.file(L"no\\file.ps"), false, false, "", 0},
        {"PostScript", page, L"RAW", L"", true, true, "", 0},
        {"the port by its name", page, L"RAW [FF auto]", processor::kPort, true, true, "", 0},
        {"text", "Words\r\n", L"TEXT", L"", true, true, "", 0},
        {"what is no document", "no PostScript (", L"RAW", L"", true, false, "", 1},
        {"no engine", page, L"RAW", L"", true, false, "/nowhere/gs", 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        folder_.write(L"file.ps", "longer than the document");
        const Variable engine(L"ZR_GHOSTSCRIPT", qk::to_wide(row.engine));
        const size_t before = messages();
        bool ended = false;
        {
            // A thread of its own, which a lock that the row before has left would hold up.
            companions::Thread thread([&] { ended = send(row.bytes, row.datatype, row.output); });
            ASSERT_TRUE(thread.ended_within(60'000));
        }
        EXPECT_EQ(ended, row.ends);
        EXPECT_EQ(TempFolder::read(file), row.output == file ? "short" : "longer than the document");
        EXPECT_EQ(qk::is_file(pdf_), row.makes_pdf);
        if (row.makes_pdf) {
            EXPECT_TRUE(text_of(pdf_).starts_with("Words")) << text_of(pdf_);
        }
        EXPECT_EQ(messages() - before, row.messages);
        EXPECT_FALSE(spooled_bytes());
        DeleteFileW(pdf_.c_str());
    }
}

// Somebody watches and thinks better of it: before the job begins, or while it is at work.
TEST_F(PrintProcessorJob, CancelledJobLeavesNothing) {
    // Each of its pages takes the engine some tenths of a second.
    const std::string slow =
        "%!PS\n90 { usertime 300 add { usertime 1 index ge { exit } if } loop pop showpage } repeat\n"
        "%%Trailer\n%%Pages: 90\n%%EOF\n";
    const std::wstring target = folder_.file(L"chosen.pdf");
    const size_t before = messages();
    for (const bool at_work : {false, true}) {
        SCOPED_TRACE(at_work);
        const Variable watched(L"ZR_UNATTENDED", L"0");
        bool ended = false;
        companions::Thread job([&] { ended = send(slow); });
        const HWND save = await_save_dialog();
        SendDlgItemMessageW(save, cmb13, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(target.c_str()));
        PostMessageW(save, WM_COMMAND, at_work ? IDOK : IDCANCEL, 0);
        if (at_work) {
            const HWND progress = await_window(GetCurrentProcessId(), IDC_STATE, cmb13);
            wchar_t text[100] = {};
            GetDlgItemTextW(progress, IDC_DOCUMENT, text, 100);
            EXPECT_EQ(text, title_);
            EXPECT_TRUE(come([&] {
                GetDlgItemTextW(progress, IDC_STATE, text, 100);
                return std::wstring(text).ends_with(L" of 90");
            })) << qk::to_utf8(text);
            PostMessageW(progress, WM_COMMAND, IDCANCEL, 0);
        }
        ASSERT_TRUE(job.ended_within(20'000));
        EXPECT_TRUE(ended);
        EXPECT_FALSE(qk::is_file(target));
        EXPECT_EQ(folder_.count(), 0u) << "what the renderer wrote beside it";
        EXPECT_FALSE(spooled_bytes());
    }
    EXPECT_EQ(messages(), before);
    EXPECT_TRUE(send(page_of("Words")));
    EXPECT_TRUE(text_of(pdf_).starts_with("Words"));
}

// What a program draws on a paper that it has chosen itself.
TEST_F(PrintProcessorJob, DrawingKeepsItsPaperAndItsParts) {
    const auto ask_mode = [this](DEVMODEW* out, DEVMODEW* in, DWORD what) {
        return DocumentPropertiesW(nullptr, printer_.get(), name_.data(), out, in, what);
    };
    std::vector<BYTE> bytes(static_cast<size_t>(ask_mode(nullptr, nullptr, 0)));
    auto* mode = reinterpret_cast<DEVMODEW*>(bytes.data());
    ASSERT_EQ(ask_mode(mode, nullptr, DM_OUT_BUFFER), IDOK);
    mode->dmFields |= DM_PAPERSIZE | DM_ORIENTATION;
    mode->dmPaperSize = DMPAPER_A5;
    mode->dmOrientation = DMORIENT_LANDSCAPE;
    ASSERT_EQ(ask_mode(mode, mode, DM_IN_BUFFER | DM_OUT_BUFFER), IDOK);
    const qk::DeviceContext context(CreateDCW(nullptr, name_.c_str(), nullptr, mode));
    DOCINFOW document = {sizeof document, title_.c_str()};
    ASSERT_GT(StartDocW(context.get(), &document), 0) << GetLastError();
    EXPECT_GT(StartPage(context.get()), 0);
    const int inch = GetDeviceCaps(context.get(), LOGPIXELSX);
    const std::wstring words = L"Words, a picture and lines";
    EXPECT_TRUE(TextOutW(context.get(), inch, inch, words.c_str(), static_cast<int>(words.size())));
    BITMAPINFO picture = {{sizeof picture.bmiHeader, 32, 16, 1, 32, BI_RGB}};
    std::vector<uint32_t> pixels;
    for (uint32_t at = 0; at < 32 * 16; ++at)
        pixels.push_back(at * 0x010307);
    EXPECT_GT(StretchDIBits(context.get(), inch, 2 * inch, 2 * inch, inch, 0, 0, 32, 16, pixels.data(),
                            &picture, DIB_RGB_COLORS, SRCCOPY),
              0);
    {
        const qk::Pen thick(CreatePen(PS_SOLID, inch / 10, RGB(0, 0, 0)));
        const qk::Selected selected(context.get(), thick.get());
        MoveToEx(context.get(), inch, inch / 2, nullptr);
        EXPECT_TRUE(LineTo(context.get(), 7 * inch, inch / 2));
    }
    EXPECT_GT(EndPage(context.get()), 0);
    EXPECT_GT(EndDoc(context.get()), 0);
    const std::string info = ask({"pdfinfo"}, pdf_);
    EXPECT_NE(info.find("Pages:           1\n"), std::string::npos) << info;
    EXPECT_NE(info.find("(A5)"), std::string::npos) << info;
    const std::regex size("Page size: +(59[4-6])[.0-9]* x (4(19|2[01]))[.0-9]* pts");
    EXPECT_TRUE(std::regex_search(info, size)) << "upright or of another size: " << info;
    EXPECT_TRUE(text_of(pdf_).starts_with("Words, a picture and lines")) << text_of(pdf_);
    const std::string pictures = ask({"pdfimages", "-list"}, pdf_);
    EXPECT_TRUE(std::regex_search(pictures, std::regex("image +32 +16 +(rgb|icc|index)"))) << pictures;
    // The line alone, above the text, at fifty dots an inch: five of its rows, three hundred of its columns.
    const std::string pixmap = ask({"pdftoppm", "-r", "50", "-gray", "-y", "15", "-H", "35"}, pdf_);
    EXPECT_GT(std::ranges::count_if(pixmap, [](char pixel) { return static_cast<BYTE>(pixel) < 0x80; }),
              1000);
}

constexpr wchar_t kTurnToSpool[] = L"zr_tests.spooling";
constexpr int kJobsOfEach = 5;

std::wstring title_of(DWORD process, int job) {
    return qk::format(L"job %d of %u", job, process);
}

// Four programs print at once. The system below names their data by numbers that each counts for itself, so
// they take turns until the data is copied; all else overlaps.
TEST_F(PrintProcessorJob, JobsOfFourProgramsEachGetTheirOwnPdf) {
    const qk::HandleObj to_spool(CreateEventW(nullptr, FALSE, TRUE, kTurnToSpool));
    {
        std::vector<companions::Thread> programs;
        for (int program = 0; program < 4; ++program)
            programs.emplace_back([] {
                EXPECT_EQ(run_built(L"zr_tests.exe",
                                    L"zr_tests --gtest_also_run_disabled_tests "
                                    L"--gtest_filter=PrintProcessorHelper.DISABLED_Prints"),
                          0);
            });
    }
    int found = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.file(L"out"))) {
        ++found;
        const std::string title = qk::to_utf8(entry.path().stem().wstring());
        EXPECT_TRUE(text_of(entry.path().wstring()).starts_with(title)) << title;
    }
    EXPECT_EQ(found, 4 * kJobsOfEach);
}

// Not a test but the program that the one above runs.
TEST(PrintProcessorHelper, DISABLED_Prints) {
    qk::PrinterHandleObj printer;
    std::wstring name = qk::kProductName;
    ASSERT_TRUE(OpenPrinterW(name.data(), printer.put(), nullptr));
    const qk::HandleObj to_spool(OpenEventW(SYNCHRONIZE | EVENT_MODIFY_STATE, FALSE, kTurnToSpool));
    for (int job = 0; job < kJobsOfEach; ++job) {
        const std::wstring title = title_of(GetCurrentProcessId(), job);
        const std::string page = page_of(qk::to_utf8(title));
        WaitForSingleObject(to_spool.get(), 60'000);
        const companions::Thread copied([&] {
            EXPECT_TRUE(come([&] { return spooled_bytes().value_or(0) == page.size(); }));
            SetEvent(to_spool.get());
        });
        EXPECT_EQ(send_job(printer.get(), page, title, L"RAW"), true);
    }
}

// Opens its print dialog at once.
struct Notepad {
    explicit Notepad(const std::wstring& document) {
        std::wstring line = L"notepad.exe /p \"" + document + L"\"";
        STARTUPINFOW startup = {sizeof startup};
        PROCESS_INFORMATION made = {};
        EXPECT_TRUE(CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                                   &startup, &made));
        process.reset(made.hProcess);
        const qk::HandleObj thread(made.hThread);
        dialog = await_window(made.dwProcessId, rad1, IDC_STATE);
        owner = GetWindow(dialog, GW_OWNER);
    }
    ~Notepad() {
        PostMessageW(owner, WM_CLOSE, 0, 0);
        EXPECT_EQ(WaitForSingleObject(process.get(), 30'000), DWORD{WAIT_OBJECT_0});
        TerminateProcess(process.get(), 1);
    }
    Notepad(const Notepad&) = delete;
    Notepad& operator=(const Notepad&) = delete;

    qk::HandleObj process;
    HWND dialog = nullptr, owner = nullptr;
};

TEST_F(PrintProcessorJob, NotepadsPrintByKeyboard) {
    ASSERT_TRUE(SetDefaultPrinterW(name_.c_str()));
    const Notepad first(folder_.write(L"first.txt", "The first line.\r\nAnd the second one.\r\n"));
    const Notepad second(folder_.write(L"second.txt", "Of another program.\r\n"));
    const struct {
        const Notepad& program;
        const wchar_t* pdf;
        const char* text;
    } rows[] = {{first, L"out\\first.txt.pdf", "The first line.\nAnd the second one.\n"},
                {second, L"out\\second.txt.pdf", "Of another program.\n"}};
    for (const auto& row : rows) {
        PostMessageW(row.program.dialog, WM_KEYDOWN, VK_RETURN, 1);
        const std::wstring pdf = folder_.file(row.pdf);
        EXPECT_TRUE(come([&pdf] { return TempFolder::read(pdf).starts_with("%PDF"); }));
        const std::string text = text_of(pdf);
        EXPECT_NE(text.find(row.text), std::string::npos) << text;
    }
}

}  // namespace
