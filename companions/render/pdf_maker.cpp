#include "companions/render/pdf_maker.h"

#include <windows.h>

#include <utility>

#include "common/qk/handle.h"
#include "common/qk/text.h"
#include "companions/render/console.h"
#include "companions/render/fonts.h"
#include "companions/render/mark_drawing.h"
#include "companions/render/metadata.h"
#include "companions/render/prepared_spool.h"
#include "companions/render/result_codes.h"
#include "companions/render/spool_pictures.h"
#include "companions/render/viewer.h"
#include "companions/system_texts.h"

namespace companions::render {

namespace {

namespace ps = Corvanta::Vantrix::PrintSettings;

bool is_full(const std::wstring& folder) noexcept {
    constexpr ULONGLONG kLeast = 1 << 16;  // bytes
    ULARGE_INTEGER left = {};
    return GetDiskFreeSpaceExW(folder.c_str(), &left, nullptr, nullptr) && left.QuadPart < kLeast;
}

}  // namespace

PdfMaker::PdfMaker(const Settings& settings, std::wstring_view title, std::function<void(unsigned)> page_done)
    : settings_(settings),
      page_done_(std::move(page_done)),
      standard_(ps::is_standard(settings.pdfVersion()->Version)),
      look_for_links_(settings.general()->URLLink && !ps::is_press_standard(settings.pdfVersion()->Version)) {
    if (scratch_.path().empty())
        throw Failure{ResultCode::kInternal, GetLastError(), L"no temporary folder"};
    info_ = document_info(settings, title);
    auto rules = find_standard(settings);
    if (!rules)
        throw Failure{ResultCode::kStandardUnmet, ERROR_FILE_NOT_FOUND, settings.pdfVersion()->ICCFileName};
    rules_ = std::move(*rules);
    const auto& security = *settings.security();
    const bool secret = wants_password(settings);
    if (refuses_passwords(settings))
        throw Failure{ResultCode::kPasswordUnusable, ERROR_INVALID_PASSWORD, {}};
    tool_.emplace(scratch_, !secret                           ? std::wstring()
                            : security.MasterPassword.empty() ? security.UserPassword
                                                              : security.MasterPassword);
    given_ = standard_texts(info_);
    if (given_ != info_ && !tool_->present()) {
        if (!standard_)
            given_ = info_;
        info_ = given_;
    }
    if (secret && tool_->present())
        encryption_ = find_encryption(settings);
}

unsigned PdfMaker::draw(const std::wstring& spool, bool landscape, PendingPdf& pdf) {
    EngineFiles files;
    if (wants_password(settings_) && !encryption_) {
        const auto options = find_password_options(settings_);
        if (!options)
            throw Failure{ResultCode::kPasswordUnusable, ERROR_INVALID_PASSWORD, {}};
        files.options = written(kOptionsFile, *options);
    }
    if (encryption_)
        bare_ = scratch_.path() + L'\\' + kBareFile;
    const PreparedSpool prepared = prepare_spool(spool, settings_, look_for_links_, scratch_);
    look_for_links_ = look_for_links_ && !prepared.linked;
    files.spool = engine_path(prepared.path);
    const PagesFound found = look_through(files.spool, landscape);
    files.prologue = written(kPrologueFile, prologue_text(landscape, found));
    files.epilogue = written(kEpilogueFile, epilogue_text(found));
    files.output = engine_path(encryption_ ? bare_ : pdf.path());
    files.rewritten = settings_.pdfVersion()->Version == ps::kPDF20 && tool_->present();
    files.more = rules_.arguments;
    if (!standard_ && settings_.color()->ColorMode != ps::Color_impl::kColour)
        files.more.emplace_back("-sColorConversionStrategy=Gray");
    check(engine_.run(engine_arguments(settings_, files), scratch_.path(),
                      [this](std::string_view bytes) { follow(bytes); }),
          pdf);
    return log_.pages();
}

// Which pages are blank, and where web addresses stand.
PagesFound PdfMaker::look_through(const std::string& spool, bool landscape) {
    PagesFound found;
    if (settings_.general()->NoOutputBlankPage) {
        std::string rest;
        // The resolution of the spool; the device's own is so high that letters take many times as long.
        run_pass("bbox", {"-r600"}, spool, landscape, [&](std::string_view bytes) {
            rest += bytes;
            for (size_t end; (end = rest.find('\n')) != std::string::npos; rest.erase(0, end + 1))
                if (rest.starts_with("%%BoundingBox:"))
                    found.blank.push_back(rest.starts_with("%%BoundingBox: 0 0 0 0"));
        });
    }
    if (look_for_links_) {
        WebLinkReader reader;
        run_pass("txtwrite", {"-dTextFormat=0", "-sOutputFile=-"}, spool, landscape,
                 [&](std::string_view bytes) { reader.feed(bytes); });
        found.links = reader.take();
    }
    return found;
}

void PdfMaker::run_pass(const char* device, const std::vector<std::string>& more, const std::string& spool,
                        bool landscape, const std::function<void(std::string_view)>& output) {
    std::vector<std::string> arguments = quiet_arguments(device);
    arguments.insert(arguments.end(), more.begin(), more.end());
    if (landscape)
        arguments.insert(arguments.end(), {"-c", "<</Orientation 3>> setpagedevice", "-f"});
    arguments.push_back(spool);
    // What is wrong with the document shows when it is drawn.
    static_cast<void>(engine_.run(arguments, scratch_.path(), output));
}

std::string PdfMaker::prologue_text(bool landscape, const PagesFound& found) {
    const auto& version = *settings_.pdfVersion();
    const auto mark = draw_watermark(*settings_.watermark(), !allows_transparency(version.Version));
    if (!mark)
        not_done_.emplace_back("the watermark, whose font or picture cannot be read");
    fonts_ = font_parameters(*settings_.font(), standard_);
    return prologue(standard_ ? DocumentInfo() : given_, landscape) + profiles_text() +
           image_parameters(settings_) + fonts_ + colour_work(settings_) + rules_.definition +
           page_work(*settings_.watermark(), version, mark.value_or(MarkDrawing()), found);
}

// The engine looks for its profile of CMYK in a folder that can be changed as long as it has not looked yet,
// which it does when the page is set up. The other profiles have been read by then.
std::string PdfMaker::profiles_text() {
    if (rules_.cmyk.empty())
        return {};
    static_cast<void>(written(kProfileFile, rules_.cmyk));
    return "<< /ICCProfilesDir " + postscript_literal(engine_path(scratch_.path()) + '/') +
           " >> setuserparams << >> setpagedevice\n";
}

std::string PdfMaker::epilogue_text(const PagesFound& found) const {
    const auto& action = *settings_.openAction();
    const bool chosen = action.StartPage != ps::OpenAction_impl::kNoStartPage;
    const unsigned first = page_left(chosen ? action.StartPage : 1, found.blank);
    const std::string opens =
        opening(action, first, compatibility_level(settings_.pdfVersion()->Version) > "1.4");
    return epilogue(standard_ ? DocumentInfo() : given_) + (standard_ ? standard_information(given_) : "") +
           opens;
}

PendingPdf& PdfMaker::finish(PendingPdf& drawn, PendingPdf& rewritten) {
    PdfTool& tool = *tool_;
    const bool linearize = settings_.general()->Linearize;
    const uint32_t version = settings_.pdfVersion()->Version;
    Rewriting how;
    how.linearized = linearize;
    how.own_lines = standard_;
    how.small = settings_.compression()->HighCompress && !settings_.compression()->ASCIIFormat &&
                compatibility_level(version) > "1.4";
    how.version = version == ps::kPDF20 ? "2.0" : nullptr;
    if (encryption_)
        how.encrypt = encryption_job(*settings_.security(), *encryption_);
    const std::wstring& made = encryption_ ? bare_ : drawn.path();
    if (has_hard_texts(info_))
        how.changes = tool.write_texts(made, info_, std::string(compatibility_level(version)));
    const ExpectedPdf expected = {log_.pages(), how.changes.empty() ? given_.title : info_.title};
    if (settings_.font()->WhenFailedToEmbed == ps::Font_impl::kNoPDF)
        check_fonts(made);
    const bool as_it_is = !linearize && !how.small && !how.version && !encryption_ && how.changes.empty();
    if (as_it_is && !tool.find_fault(drawn.path(), expected))
        return drawn;
    tool.rewrite(made, rewritten.path(), how);  // mends what engines leave damaged
    if (!tool.present()) {
        add_what_is_left(how.small);
        keep_if(find_fault_of_end(drawn.path()), drawn);
        return drawn;
    }
    if (!tool.is_as_expected(rewritten.path(), expected))
        keep_if(tool.find_fault(rewritten.path(), expected), rewritten);
    return rewritten;
}

// What the setting asks for and only qpdf does.
void PdfMaker::add_what_is_left(bool packs) {
    const auto encryption = wants_password(settings_) ? find_encryption(settings_) : std::nullopt;
    const struct {
        bool asked;
        const char* left;
    } rows[] = {
        {settings_.general()->Linearize, "the PDF is not linearized"},
        {packs, "its objects are not packed together"},
        {encryption && *encryption != Encryption::kRc4, "it is protected by RC4 only"},
        {settings_.font()->WhenFailedToEmbed == ps::Font_impl::kNoPDF, "its fonts are not looked through"},
    };
    warn("qpdf was not found: the PDF's end is looked at, not its title");
    for (const auto& row : rows)
        if (row.asked)
            not_done_.push_back(std::string(row.left) + ", since qpdf was not found");
}

// Nothing is kept of a PDF that has a fault.
void PdfMaker::keep_if(const std::optional<std::string>& fault, const PendingPdf& pdf) const {
    if (!fault)
        return;
    demand_room(pdf);
    throw Failure{ResultCode::kPdfUnreadable, ERROR_INVALID_DATA, qk::to_wide(*fault)};
}

// On a full disk programs fail as over damaged data, and their words find no room either.
void PdfMaker::demand_room(const PendingPdf& pdf) const {
    for (const std::wstring& folder : {scratch_.path(), folder_part(pdf.path())})
        if (is_full(folder))
            throw Failure{ResultCode::kTargetUnwritable, ERROR_DISK_FULL, folder};
}

void PdfMaker::check_fonts(const std::wstring& pdf) {
    const std::string name = missing_font(tool_->describe(pdf), fonts_);
    if (!name.empty())
        throw Failure{ResultCode::kFontMissing, ERROR_NOT_FOUND, qk::to_wide(name)};
}

std::string PdfMaker::written(const wchar_t* name, const std::string& text) {
    const std::wstring path = scratch_.write(name, text);
    if (path.empty())
        throw Failure{ResultCode::kInternal, GetLastError(), L"the temporary folder cannot be written"};
    return engine_path(path);
}

std::string PdfMaker::engine_path(const std::wstring& path) const {
    auto found = engine_.find_path(path);
    if (!found)
        throw Failure{ResultCode::kEngineMissing, ERROR_PATH_NOT_FOUND, path};
    return std::move(*found);
}

void PdfMaker::follow(std::string_view bytes) {
    log_.feed(bytes);
    while (told_ < log_.pages())
        page_done_(++told_);
}

void PdfMaker::check(Engine::End end, const PendingPdf& pdf) const {
    constexpr struct {
        ResultCode code;
        DWORD win32_error;
    } kErrors[] = {
        {ResultCode::kEngineMissing, ERROR_FILE_NOT_FOUND},
        {ResultCode::kTargetUnwritable, ERROR_WRITE_FAULT},
        {ResultCode::kEngineStopped, ERROR_PROCESS_ABORTED},
        {ResultCode::kSpoolDamaged, ERROR_INVALID_DATA},
        {ResultCode::kNoPages, ERROR_INVALID_DATA},
        {ResultCode::kStandardUnmet, ERROR_NOT_SUPPORTED},
    };
    const ResultCode code = engine_result(end, log_);
    if (code == ResultCode::kSpoolDamaged || code == ResultCode::kEngineStopped ||
        code == ResultCode::kNoPages)
        demand_room(pdf);
    for (const auto& row : kErrors)
        if (row.code == code)
            throw Failure{code, row.win32_error, qk::to_wide(log_.error())};
}

}  // namespace companions::render
