// The print processor: its exports, jobs of this process through the real spooler, and a real program's.
#include <gtest/gtest.h>

#include <windows.h>

#include <winspool.h>
#include <winsplp.h>

#include <array>

#include "common/qk/paths.h"
#include "companions/print_processor/names.h"
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

class PrintProcessorJob : public testing::Test {
protected:
    PrintProcessorJob() {
        EXPECT_EQ(run_built(L"zr_print.exe", L"zr_print install --notify-channels 8"), 0);
        EXPECT_TRUE(OpenPrinterW(name_.data(), printer_.put(), nullptr));
    }

    // Sends bytes as a job; what EndDocPrinter says.
    bool send(std::string bytes, const wchar_t* datatype, const std::wstring& output) {
        std::wstring title = L"A d\u00e9j\u00e0 vu";
        std::wstring type = datatype;
        std::wstring file = output;
        DOC_INFO_1W document = {title.data(), file.empty() ? nullptr : file.data(), type.data()};
        DWORD written = 0;
        EXPECT_NE(StartDocPrinterW(printer_.get(), 1, reinterpret_cast<BYTE*>(&document)), 0u);
        EXPECT_TRUE(WritePrinter(printer_.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written));
        return EndDocPrinter(printer_.get()) != FALSE;
    }

    // The words of a PDF.
    [[nodiscard]] std::string text_of(const std::wstring& pdf) const {
        const std::wstring text = folder_.write(L"text", "");
        const std::array<std::string, 3> words = {"pdftotext",
                                                  companions::wine::find_unix_path(pdf).value_or(""),
                                                  companions::wine::find_unix_path(text).value_or("")};
        EXPECT_EQ(companions::wine::run_unix_program(words), 0);
        return TempFolder::read(text);
    }

    [[nodiscard]] static size_t spools() {
        wchar_t temp[MAX_PATH + 1] = {};
        GetTempPathW(MAX_PATH, temp);
        size_t count = 0;
        WIN32_FIND_DATAW found = {};
        const std::wstring pattern = qk::format(L"%szr_spool_%u_*", temp, GetCurrentProcessId());
        const qk::FindObj search(FindFirstFileW(pattern.c_str(), &found));
        for (bool more = static_cast<bool>(search); more; more = FindNextFileW(search.get(), &found) != FALSE)
            ++count;
        return count;
    }

    const PrinterTurn turn_;
    const TempFolder folder_;
    const Variable unattended_{L"ZR_UNATTENDED", L"1"};
    const Variable output_{L"ZR_OUTPUT_FOLDER", folder_.file(L"out")};
    const std::wstring pdf_ = folder_.file(L"out\\A d\u00e9j\u00e0 vu.pdf");
    std::wstring name_ = qk::kProductName;
    qk::PrinterHandleObj printer_;
};

TEST_F(PrintProcessorJob, DocumentGoesWhereItIsSent) {
    const std::string page =
        "%!PS\n/Courier findfont 20 scalefont setfont 50 700 moveto (Words) show showpage\n";
    const std::wstring file = folder_.file(L"file.ps");
    const struct {
        const char* label;
        std::string bytes;
        const wchar_t* datatype;
        std::wstring output;
        bool ends, makes_pdf;
        const char* engine;
    } rows[] = {
        {"a file of the program's own", "short", L"RAW", file, true, false, ""},
        {"a file in no folder", "short", L"RAW", folder_.file(L"no\\file.ps"), false, false, ""},
        {"PostScript", page, L"RAW", L"", true, true, ""},
        {"the port by its name", page, L"RAW [FF auto]", processor::kPort, true, true, ""},
        {"text", "Words\r\n", L"TEXT", L"", true, true, ""},
        {"what is no document", "no PostScript (", L"RAW", L"", true, false, ""},
        {"no engine", page, L"RAW", L"", true, false, "/nowhere/gs"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        folder_.write(L"file.ps", "longer than the document");
        const Variable engine(L"ZR_GHOSTSCRIPT", qk::to_wide(row.engine));
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
        EXPECT_EQ(spools(), 0u);
        DeleteFileW(pdf_.c_str());
    }
}

struct Search {
    DWORD process;
    HWND dialog = nullptr;
};

BOOL CALLBACK look_for_dialog(HWND window, LPARAM parameter) {
    auto& search = *reinterpret_cast<Search*>(parameter);
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    wchar_t name[16] = {};
    GetClassNameW(window, name, 16);
    if (process == search.process && name == std::wstring(L"#32770") && IsWindowVisible(window))
        search.dialog = window;
    return TRUE;
}

// Notepad opens its print dialog for "/p"; Enter presses the dialog's button.
TEST_F(PrintProcessorJob, NotepadPrintsByKeyboard) {
    const std::wstring document = folder_.write(L"notes.txt", "The first line.\r\nAnd the second one.\r\n");
    std::wstring line = L"notepad.exe /p \"" + document + L"\"";
    ASSERT_TRUE(SetDefaultPrinterW(name_.c_str()));
    STARTUPINFOW startup = {sizeof startup};
    PROCESS_INFORMATION made = {};
    ASSERT_TRUE(
        CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &made));
    const qk::HandleObj thread(made.hThread);
    const qk::HandleObj notepad(made.hProcess);
    Search search = {made.dwProcessId};
    for (int look = 0; look < 600 && !search.dialog; ++look) {
        EnumWindows(&look_for_dialog, reinterpret_cast<LPARAM>(&search));
        Sleep(100);
    }
    EXPECT_NE(search.dialog, nullptr);
    PostMessageW(search.dialog, WM_KEYDOWN, VK_RETURN, 1);
    const std::wstring pdf = folder_.file(L"out\\notes.txt.pdf");
    for (int look = 0; look < 600 && !TempFolder::read(pdf).starts_with("%PDF"); ++look)
        Sleep(100);
    PostMessageW(FindWindowW(L"Notepad", nullptr), WM_CLOSE, 0, 0);
    EXPECT_EQ(WaitForSingleObject(notepad.get(), 30'000), DWORD{WAIT_OBJECT_0});
    TerminateProcess(notepad.get(), 1);
    const std::string text = text_of(pdf);
    EXPECT_NE(text.find("The first line.\nAnd the second one.\n"), std::string::npos) << text;
}

}  // namespace
