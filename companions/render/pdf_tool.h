// qpdf: the finished PDF is opened again, put right where it is damaged, and linearized.
#pragma once

#include <picojson.h>

#include <optional>
#include <string>
#include <vector>

#include "companions/render/engine.h"
#include "companions/render/pdfmark.h"
#include "companions/render/scratch_folder.h"

namespace companions::render {

// What is asked of a finished PDF.
struct ExpectedPdf {
    unsigned pages = 0;
    std::wstring title;  // of the document information; empty: whatever is there
};

// What the last bytes of a PDF alone tell, where there is no qpdf: what is wrong with them, in one line.
[[nodiscard]] std::optional<std::string> find_fault_of_end(const std::wstring& path);

// How a PDF is written anew.
struct Rewriting {
    bool linearized = false;
    bool small = false;             // its objects packed together
    bool own_lines = false;         // the ends of streams, as PDF/A has it
    const char* version = nullptr;  // that it says it has; null: as it says
    picojson::value encrypt;        // see encryption_job; null: as it is
    std::wstring changes;           // see write_texts; empty: none
};

class Objects;

class PdfTool {
public:
    // `password` opens the PDF, UTF-16; empty when it has none. `scratch` has to live longer.
    PdfTool(const ScratchFolder& scratch, const std::wstring& password);

    // Whether qpdf can be run: ZR_QPDF names it, as ZR_GHOSTSCRIPT names the engine, else it is looked up.
    // The first question runs it, unless something else has.
    [[nodiscard]] bool present();

    // Writes the PDF `from` anew as `to`; what qpdf can mend is mended. A PDF that is protected stays so.
    // find_fault tells whether it came out well.
    void rewrite(const std::wstring& from, const std::wstring& to, const Rewriting& how);

    // Writes the changes that give a PDF these texts, in its document information and its metadata: a file
    // for `Rewriting::changes`; empty when the PDF cannot be read. `version` ("1.7") is what it says it has
    // then.
    [[nodiscard]] std::wstring write_texts(const std::wstring& path, const DocumentInfo& info,
                                           const std::string& version);

    // Opens the PDF, from its end to its first page: what is wrong with it in one line, nothing when it is
    // whole and has the pages and the title that it should have.
    [[nodiscard]] std::optional<std::string> find_fault(const std::wstring& path,
                                                        const ExpectedPdf& expected);

    // Opens a PDF that `rewrite` has made and looks at no more than its tables, its pages' number and its
    // title, which takes a fraction of the time where there are many objects: true when these are as
    // expected. False tells nothing; find_fault does then.
    [[nodiscard]] bool is_as_expected(const std::wstring& path, const ExpectedPdf& expected);

    // What the PDF says of its fonts in JSON; empty when it cannot be read.
    [[nodiscard]] std::string describe(const std::wstring& path);

private:
    // Tells the objects of the trailer, the catalogue, the document information and, as a rule, the pages.
    [[nodiscard]] bool look_into(const std::wstring& path, Objects& objects, std::string& output);
    // Adds the objects of these names; false when the PDF cannot be read, with qpdf's words in `output`.
    [[nodiscard]] bool ask(const std::wstring& path, const std::vector<std::string>& names, Objects& objects,
                           std::string& output);
    [[nodiscard]] Engine::End run(std::vector<std::string> arguments, std::string& output);
    [[nodiscard]] std::string path_for_tool(const std::wstring& path) const;

    const ScratchFolder& scratch_;
    Engine program_;
    std::string password_;
    std::vector<std::string> password_arguments_;
    std::optional<bool> present_;  // nothing: not run yet
};

}  // namespace companions::render
