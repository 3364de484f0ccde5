// From the spooled document to a PDF that does what the setting says.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "companions/render/engine.h"
#include "companions/render/engine_arguments.h"
#include "companions/render/engine_log.h"
#include "companions/render/page_work.h"
#include "companions/render/pdf_tool.h"
#include "companions/render/pdfmark.h"
#include "companions/render/pending_pdf.h"
#include "companions/render/protection.h"
#include "companions/render/scratch_folder.h"
#include "companions/render/standards.h"
#include "print_settings/PrintSettings.h"

namespace companions::render {

// One job. Every step throws Failure.
class PdfMaker {
public:
    using Settings = Corvanta::Vantrix::PrintSettings::PrintSettings;

    // `page_done` is told the number of each page as it is done.
    PdfMaker(const Settings& settings, std::wstring_view title, std::function<void(unsigned)> page_done);

    // Draws the spooled document into a PDF: its pages. `landscape`: they lie on their side.
    unsigned draw(const std::wstring& spool, bool landscape, PendingPdf& pdf);

    // Protects, packs and linearizes what was drawn where the setting says so, and opens what a reader will
    // open. The file that is to be kept, one of the two.
    PendingPdf& finish(PendingPdf& drawn, PendingPdf& rewritten);

    // What the setting asks for and this job is without; whole when it is finished.
    [[nodiscard]] const std::vector<std::string>& not_done() const noexcept { return not_done_; }

private:
    [[nodiscard]] PagesFound look_through(const std::string& spool, bool landscape);
    [[nodiscard]] std::string prologue_text(bool landscape, const PagesFound& found);
    [[nodiscard]] std::string profiles_text();
    [[nodiscard]] std::string epilogue_text(const PagesFound& found) const;
    [[nodiscard]] std::string written(const wchar_t* name, const std::string& text);
    [[nodiscard]] std::string engine_path(const std::wstring& path) const;
    void run_pass(const char* device, const std::vector<std::string>& more, const std::string& spool,
                  bool landscape, const std::function<void(std::string_view)>& output);
    void follow(std::string_view bytes);
    void check(Engine::End end, const PendingPdf& pdf) const;
    void keep_if(const std::optional<std::string>& fault, const PendingPdf& pdf) const;
    void add_what_is_left(bool packs);
    void demand_room(const PendingPdf& pdf) const;
    void check_fonts(const std::wstring& pdf);

    const Settings& settings_;
    std::function<void(unsigned)> page_done_;
    bool standard_ = false;        // PDF/A or PDF/X
    bool look_for_links_ = false;  // in a pass of its own, since the document has no marks for them
    DocumentInfo info_;
    DocumentInfo given_;  // to the engine: what is too hard for it is changed afterwards
    std::string fonts_;
    Standard rules_;
    ScratchFolder scratch_;
    Engine engine_;
    EngineLog log_;
    std::optional<PdfTool> tool_;
    std::optional<Encryption> encryption_;  // that qpdf applies
    std::wstring bare_;                     // the PDF before its encryption; empty: none
    std::vector<std::string> not_done_;
    unsigned told_ = 0;
};

}  // namespace companions::render
