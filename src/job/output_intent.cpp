#include "job/output_intent.h"

#include "common/icc_folder.h"
#include "common/icc_profile.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "resources/ids.h"

namespace job {

namespace {

using Settings = ps::PrintSettings;

// The text "OutputCondition"; settings older than it get the identifier of the profile's description. An
// entry that is there and empty stays empty.
std::wstring output_condition(const Settings& settings, const std::wstring& profile_path) {
    const auto& texts = settings.addition()->Str;
    const auto entry = texts.find(L"OutputCondition");
    if (entry != texts.end())
        return entry->second;
    return qk::to_wide(icc_ConditionIdFromDesc(icc::find_description(profile_path).value_or(L"")));
}

}  // namespace

bool is_trim_inside_bleed(const Corvanta::Vantrix::PrintSettings::PDFVersion_impl& section) noexcept {
    const auto& trim = section.TrimBox;
    const auto& bleed = section.BleedBox;
    return !(bleed.left > trim.left || bleed.top > trim.top || bleed.right > trim.right ||
             bleed.bottom > trim.bottom);
}

std::optional<Refusal> find_refusal(const Settings& settings) {
    const unsigned version = settings.pdfVersion()->Version;
    if (!ps::is_standard(version))
        return std::nullopt;
    const std::wstring& profile = settings.pdfVersion()->ICCFileName;
    const auto path = icc::find_profile(profile);
    if (!path)
        return Refusal{164, IDS_NO_COLOUR_PROFILE, profile};
    if (!ps::is_press_standard(version))
        return std::nullopt;
    if (output_condition(settings, *path).empty())
        return Refusal{50, IDS_NO_OUTPUT_CONDITION, {}};
    if (!is_trim_inside_bleed(*settings.pdfVersion()))
        return Refusal{51, IDS_BAD_PAGE_BOXES, {}};
    return std::nullopt;
}

}  // namespace job
