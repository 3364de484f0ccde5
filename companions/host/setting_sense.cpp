#include "companions/host/setting_sense.h"

#include <cstdint>
#include <string>

#include "common/icc_folder.h"
#include "common/qk/paths.h"
#include "common/qk/resource_dll.h"
#include "companions/host/json_text.h"
#include "companions/render/protection.h"
#include "companions/render/result_codes.h"
#include "job/output_intent.h"
#include "print_settings/pdf_version.h"

namespace host {

namespace {

namespace render = companions::render;

class Sense {
public:
    Sense(const ps::PrintSettings& settings, const JsonText* given, SettingFindings& findings)
        : settings_(settings), version_(settings.pdfVersion()->Version), given_(given), findings_(findings) {}

    void check() {
        check_output();
        check_watermark();
        check_version();
        check_password(L"Security.MasterPassword", settings_.security()->MasterPassword);
        check_password(L"Security.UserPassword", settings_.security()->UserPassword);
        if (!settings_.security()->UserPassword.empty() &&
            settings_.security()->UserPassword == settings_.security()->MasterPassword)
            tell(L"Security.UserPassword",
                 L"is the same as MasterPassword: whoever opens the document has every permission");
    }

private:
    void tell(const std::wstring& place, const std::wstring& what) {
        if (!given_ || given_->places.contains(place))
            findings_.add(place, what);
    }

    void check_output() {
        const auto& general = *settings_.general();
        if (!general.OutputFolder.empty() && !qk::is_folder(general.OutputFolder))
            tell(L"General.OutputFolder", L"there is no folder " + general.OutputFolder);
        if (general.SaveStyle == ps::General_impl::kFixedFolder && general.OutputFolder.empty())
            tell(L"General.SaveStyle", L"1 is a fixed folder, but OutputFolder names none");
    }

    void check_watermark() {
        const auto& mark = *settings_.watermark();
        if (mark.Style != ps::Watermark_impl::kPictureMark)
            return;
        if (mark.PictureFileName.empty())
            tell(L"Watermark.Style", L"2 is a picture, but PictureFileName names none");
        else if (!qk::is_file(mark.PictureFileName))
            tell(L"Watermark.PictureFileName", L"there is no file " + mark.PictureFileName);
    }

    void check_version() {
        const std::wstring& profile = settings_.pdfVersion()->ICCFileName;
        if (!ps::is_standard(version_) && !profile.empty() && !icc::find_profile(profile))
            tell(L"PDFVersion.ICCFileName", L"there is no colour profile " + profile);
        if (const auto refusal = job::find_refusal(settings_))
            findings_.add(L"PDFVersion", L"a job is refused with error " + std::to_wstring(refusal->code) +
                                             L": " + qk::load_string(refusal->caption_id) +
                                             refusal->caption_end +
                                             (given_ ? L" (unless the user's setting has it)" : L""));
        if (ps::is_press_standard(version_) && settings_.general()->URLLink)
            tell(L"General.URLLink", L"a PDF/X file cannot hold links: none are made");
    }

    void check_password(const std::wstring& place, const std::wstring& password) {
        if (password.empty())
            return;
        if (ps::is_standard(version_))
            tell(place, L"PDF/A and PDF/X allow no passwords: the document is not protected");
        if (const auto fault = render::find_protection_fault(settings_, password))
            tell(place, words(*fault));
    }

    static std::wstring words(render::ProtectionFault fault) {
        const std::wstring end =
            L": a job fails with error " +
            std::to_wstring(static_cast<unsigned>(render::ResultCode::kPasswordUnusable));
        switch (fault) {
            case render::ProtectionFault::kControl:
                return L"has a control character, which no PDF takes" + end;
            case render::ProtectionFault::kNotLatin:
                return L"has a character that only PDF 1.7 (4) and 2.0 (12) take" + end;
            case render::ProtectionFault::kTooLong:
                return L"is longer than 127 bytes of UTF-8" + end;
            case render::ProtectionFault::kCut:
                break;
        }
        return L"is longer than the 32 characters that count in this PDF";
    }

    const ps::PrintSettings& settings_;
    uint32_t version_;
    const JsonText* given_;
    SettingFindings& findings_;
};

}  // namespace

void check_sense(const ps::PrintSettings& settings, const JsonText* given, SettingFindings& findings) {
    Sense(settings, given, findings).check();
}

}  // namespace host
