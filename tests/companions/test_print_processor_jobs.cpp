// Jobs through the real spooler and the print processor: this process's, and a real program's.
#include <commdlg.h>
#include <dlgs.h>

#include <regex>

#include "common/qk/gdi_handle.h"
#include "companions/print_processor/names.h"
#include "companions/print_processor/resource.h"
#include "companions/wine_layer.h"
#include "support/installed_printer.h"
#include "support/printer_turn.h"

namespace {

// Sends bytes as a job; what EndDocPrinter says.
bool send_job(HANDLE printer, std::string bytes, std::wstring title, std::wstring type,
              std::wstring output = L"") {
    DOC_INFO_1W document = {title.data(), output.empty() ? nullptr : output.data(), type.data()};
    DWORD written = 0;
    EXPECT_NE(StartDocPrinterW(printer, 1, reinterpret_cast<BYTE*>(&document)), 0u);
    EXPECT_TRUE(WritePrinter(printer, bytes.data(), static_cast<DWORD>(bytes.size()), &written));
    return EndDocPrinter(printer) != FALSE;
}

std::string page_of(const std::string& words) {
    return "%!PS\n/Courier findfont 20 scalefont setfont 50 700 moveto (" + words + ") show showpage\n";
}

// Whether a spooled document of this process is there.
bool is_spooled() {
    const std::filesystem::path own = qk::format(L"zr_spool_%u_*", GetCurrentProcessId());
    WIN32_FIND_DATAW found = {};
    return static_cast<bool>(
        qk::FindObj(FindFirstFileW((std::filesystem::temp_directory_path() / own).c_str(), &found)));
}

bool come(const std::function<bool()>& condition) {
    for (int look = 0; look < 400; ++look, Sleep(50))
        if (condition())
            return true;
    return false;
}

// A visible window of a process, known by a control that it has and one that it lacks.
HWND await_window(DWORD process, int has, int lacks) {
    HWND found = nullptr;
    EXPECT_TRUE(come([&] {
        DWORD owner = 0;
        while ((found = FindWindowExW(nullptr, found, nullptr, nullptr)) != nullptr)
            if (GetWindowThreadProcessId(found, &owner) && owner == process && IsWindowVisible(found) &&
                GetDlgItem(found, has) && !GetDlgItem(found, lacks))
                return true;
        return false;
    }));
    return found;
}

struct PrintProcessorJob : testing::Test {
    PrintProcessorJob() {
        EXPECT_EQ(run_built(L"zr_print.exe", L"zr_print install --notify-channels 8"), 0);
        EXPECT_TRUE(OpenPrinterW(name_.data(), printer_.put(), nullptr));
    }

    bool send(const std::string& bytes, const wchar_t* datatype = L"RAW", const std::wstring& output = L"") {
        return send_job(printer_.get(), bytes, title_, datatype, output);
    }

    // What a command of the system below prints about the PDF, which is its $1.
    [[nodiscard]] std::string ask(const std::wstring& pdf, const std::string& question) const {
        using namespace companions::wine;
        const std::wstring answer = folder_.write(L"answer", "");
        const std::vector<std::string> command = {"/bin/sh",
                                                  "-c",
                                                  question + " >\"$2\"",
                                                  "sh",
                                                  find_unix_path(pdf).value_or(""),
                                                  find_unix_path(answer).value_or("")};
        EXPECT_EQ(run_unix_program(command), 0) << question;
        return TempFolder::read(answer);
    }
    void expect_text(const std::wstring& pdf, const std::string& text) const {
        const std::string found = ask(pdf, "pdftotext \"$1\" -");
        EXPECT_TRUE(found.starts_with(text)) << found;
    }

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
    const std::wstring lock =
        folder_.write(L"killer", "#!/bin/sh\nexec 9<\"$0\"\nflock 9\nkill -9 $PPID\nexec sleep 90\n");
    const std::string killer = ask(lock, "chmod +x \"$1\"; printf %s \"$1\"");
    const auto left = std::filesystem::temp_directory_path() / L"zr_spool_4294967292_0.ps";
    std::ofstream(left) << "of a program that was killed";
    // What is sent, its bytes and datatype, where to; whether it ends well and makes a PDF, the engine, the
    // failures that are told.
    const std::tuple<const char*, std::string, const wchar_t*, std::wstring, bool, bool, const char*, size_t>
        rows[] = {
            {"a file of the program's own", "short", L"RAW", file, true, false, "", 0},
            {"a file in no folder", "short", L"RAW", folder_.file(L"no\\file.ps"), false, false, "", 0},
            {"PostScript", page, L"RAW", L"", true, true, "", 0},
            {"the port by its name", page, L"RAW [FF auto]", processor::kPort, true, true, "", 0},
            {"text", "Words\r\n", L"TEXT", L"", true, true, "", 0},
            {"what is no document", "no PostScript (", L"RAW", L"", true, false, "", 1},
            {"no engine", page, L"RAW", L"", true, false, "/nowhere/gs", 1},
            {"a renderer that is killed", page, L"RAW", L"", true, false, killer.c_str(), 1},
        };
    for (const auto& [label, bytes, datatype, output, ends, makes_pdf, program, told] : rows) {
        SCOPED_TRACE(label);
        folder_.write(L"file.ps", "longer than the document");
        const Variable engine(L"ZR_GHOSTSCRIPT", qk::to_wide(program));
        const size_t before = messages();
        bool ended = false;
        {
            // A thread of its own, which a lock that the row before has left would hold up.
            companions::Thread thread(
                [&, &sent = bytes, &type = datatype, &to = output] { ended = send(sent, type, to); });
            ASSERT_TRUE(thread.ended_within(60'000));
        }
        EXPECT_EQ(ended, ends);
        EXPECT_EQ(TempFolder::read(file), output == file ? "short" : "longer than the document");
        if (makes_pdf)
            expect_text(pdf_, "Words");
        EXPECT_EQ(messages() - before, told);
        EXPECT_FALSE(is_spooled());
        EXPECT_EQ(DeleteFileW(pdf_.c_str()) != FALSE, makes_pdf);
        EXPECT_FALSE(!RemoveDirectoryW(folder_.file(L"out").c_str()) &&
                     GetLastError() == ERROR_DIR_NOT_EMPTY);
    }
    EXPECT_EQ(ask(lock, "flock -w 30 \"$1\" true"), "")
        << "the engine, which holds it, outlives its renderer";
    EXPECT_FALSE(exists(left));
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
        const HWND save = await_window(GetCurrentProcessId(), cmb13, rad1);
        EXPECT_TRUE(is_spooled());
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
            PostMessageW(progress, WM_SYSCOMMAND, SC_CLOSE, 0);
        }
        ASSERT_TRUE(job.ended_within(20'000));
        EXPECT_TRUE(ended);
        EXPECT_FALSE(qk::is_file(target));
        EXPECT_EQ(folder_.count(), 0u) << "what the renderer wrote beside it";
        EXPECT_FALSE(is_spooled());
    }
    EXPECT_EQ(messages(), before);
    EXPECT_TRUE(send(page_of("Words")));
    expect_text(pdf_, "Words");
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
    const HDC dc = context.get();
    DOCINFOW document = {sizeof document, title_.c_str()};
    ASSERT_GT(StartDocW(dc, &document), 0) << GetLastError();
    const int inch = GetDeviceCaps(dc, LOGPIXELSX);
    const std::wstring words = L"Words, a picture and lines";
    const BITMAPINFO picture = {{sizeof picture.bmiHeader, 32, 16, 1, 32, BI_RGB}};
    std::vector<uint32_t> pixels;
    for (uint32_t at = 0; at < 32 * 16; ++at)
        pixels.push_back(at * 0x010307);
    EXPECT_GT(StartPage(dc), 0);
    EXPECT_TRUE(TextOutW(dc, inch, inch, words.c_str(), static_cast<int>(words.size())));
    EXPECT_GT(StretchDIBits(dc, inch, 2 * inch, 2 * inch, inch, 0, 0, 32, 16, pixels.data(), &picture,
                            DIB_RGB_COLORS, SRCCOPY),
              0);
    {
        const qk::Pen thick(CreatePen(PS_SOLID, inch / 10, RGB(0, 0, 0)));
        const qk::Selected selected(dc, thick.get());
        MoveToEx(dc, inch, inch / 2, nullptr);
        EXPECT_TRUE(LineTo(dc, 7 * inch, inch / 2));
    }
    EXPECT_TRUE(EndPage(dc) > 0 && EndDoc(dc) > 0);
    expect_text(pdf_, qk::to_utf8(words));
    for (const auto& [question, wanted] :
         {std::pair{"pdfinfo \"$1\"", "Pages: +1\n"},
          // Not upright, nor of another size.
          {"pdfinfo \"$1\"", "Page size: +(59[4-6])[.0-9]* x (4(19|2[01]))[.0-9]* pts \\(A5\\)"},
          {"pdfimages -list \"$1\"", "image +32 +16 +(rgb|icc|index)"}}) {
        const std::string answer = ask(pdf_, question);
        EXPECT_TRUE(std::regex_search(answer, std::regex(wanted))) << answer;
    }
    // The line alone, above the text, at fifty dots an inch: five of its rows, three hundred of its columns.
    const std::string pixmap = ask(pdf_, "pdftoppm -r 50 -gray -y 15 -H 35 \"$1\"");
    EXPECT_GT(std::ranges::count_if(pixmap, [](char dot) { return static_cast<BYTE>(dot) < 0x80; }), 1000);
}

constexpr wchar_t kTurnToSpool[] = L"zr_tests.spooling";
constexpr int kJobsOfEach = 5;

// Jobs of four programs, one after another. The system below names their data by numbers that each counts for
// itself and takes it away by that name at the job's end, so a job of another program must not begin before.
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
        expect_text(entry.path().wstring(), qk::to_utf8(entry.path().stem().wstring()));
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
        const std::wstring title = qk::format(L"job %d of %u", job, GetCurrentProcessId());
        const std::string page = page_of(qk::to_utf8(title));
        WaitForSingleObject(to_spool.get(), 60'000);
        EXPECT_TRUE(send_job(printer.get(), page, title, L"RAW"));
        SetEvent(to_spool.get());
    }
}

// Programs whose print dialogs stand at once.
TEST_F(PrintProcessorJob, NotepadsPrintByKeyboard) {
    ASSERT_TRUE(SetDefaultPrinterW(name_.c_str()));
    struct {
        const wchar_t* document;
        const char *typed, *printed;
        qk::HandleObj process = {};
        HWND dialog = nullptr;
    } programs[] = {{L"first.txt", "The first line.\r\nAnd the second one.\r\n",
                     "The first line.\nAnd the second one.\n"},
                    {L"second.txt", "Of another program.\r\n", "Of another program.\n"}};
    for (auto& program : programs) {
        std::wstring line = L"notepad.exe /p \"" + folder_.write(program.document, program.typed) + L'"';
        STARTUPINFOW startup = {sizeof startup};
        PROCESS_INFORMATION made = {};
        EXPECT_TRUE(CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                                   &startup, &made));
        program.process.reset(made.hProcess);
        const qk::HandleObj thread(made.hThread);
        program.dialog = await_window(made.dwProcessId, rad1, IDC_STATE);
    }
    for (const auto& program : programs) {
        const HWND owner = GetWindow(program.dialog, GW_OWNER);
        PostMessageW(program.dialog, WM_KEYDOWN, VK_RETURN, 1);
        const std::wstring pdf = folder_.file(L"out\\") + program.document + L".pdf";
        EXPECT_TRUE(come([&pdf] { return TempFolder::read(pdf).starts_with("%PDF"); }));
        const std::string text = ask(pdf, "pdftotext \"$1\" -");
        EXPECT_NE(text.find(program.printed), std::string::npos) << text;
        PostMessageW(owner, WM_CLOSE, 0, 0);
        EXPECT_EQ(WaitForSingleObject(program.process.get(), 30'000), DWORD{WAIT_OBJECT_0});
        TerminateProcess(program.process.get(), 1);
    }
}

}  // namespace
