#include "companions/render/viewer.h"

namespace companions::render {

namespace {

template <size_t Size>
std::string entry(const char* key, const char* const (&values)[Size], uint32_t code) {
    return code < Size && values[code] ? std::string(key) + ' ' + values[code] + '\n' : std::string();
}

std::string preferences(const ps::OpenAction_impl& action) {
    const struct {
        bool asked;
        const char* key;
    } flags[] = {
        {action.ShowDocumentTitle, "/DisplayDocTitle"},
        {action.HideMenu, "/HideMenubar"},
        {action.HideToolBar, "/HideToolbar"},
        {action.HideWindowControl, "/HideWindowUI"},
        {action.FitToPage, "/FitWindow"},
        {action.CenterWindow, "/CenterWindow"},
    };
    std::string entries;
    for (const auto& row : flags)
        if (row.asked)
            entries += std::string(row.key) + " true\n";
    constexpr const char* kBindings[] = {nullptr, nullptr, "/R2L"};  // from the left is a viewer's own
    entries += entry("/Direction", kBindings, action.Binding);
    constexpr const char* kModes[] = {nullptr, "/UseOutlines", "/UseThumbs", "/UseOC"};
    if (action.FullScreen)
        entries += entry("/NonFullScreenPageMode", kModes, action.PageMode);
    if (entries.empty())
        return {};
    return "[ {Catalog} << /ViewerPreferences <<\n" + entries + ">> >> /PUT pdfmark\n";
}

}  // namespace

std::string opening(const ps::OpenAction_impl& action, unsigned start_page, bool modern) {
    constexpr const char* kLayouts[] = {nullptr, "/SinglePage", "/OneColumn", "/TwoPageLeft",
                                        "/TwoColumnLeft"};
    constexpr const char* kOldLayouts[] = {nullptr, "/SinglePage", "/OneColumn", "/TwoColumnLeft",
                                           "/TwoColumnLeft"};
    constexpr const char* kModes[] = {nullptr, "/UseOutlines", "/UseThumbs", "/UseOC"};
    constexpr const char* kOldModes[] = {nullptr, "/UseOutlines", "/UseThumbs", nullptr};
    constexpr const char* kViews[] = {"[/XYZ null null null]", "[/XYZ null null 1]", "[/Fit]",
                                      "[/FitH -32768]", "[/FitBH -32768]"};
    std::string entries = entry("/PageLayout", modern ? kLayouts : kOldLayouts, action.PageLayout);
    if (action.FullScreen)
        entries += "/PageMode /FullScreen\n";
    else
        entries += entry("/PageMode", modern ? kModes : kOldModes, action.PageMode);
    const bool has_page = action.StartPage != ps::OpenAction_impl::kNoStartPage && start_page > 1;
    if (has_page || action.PageAdjust != ps::OpenAction_impl::kAnyZoom)
        entries += "/Page " + std::to_string(has_page ? start_page : 1) +
                   " currentpagedevice /PageCount get 2 copy gt { exch } if pop\n" +
                   entry("/View", kViews, action.PageAdjust);
    return (entries.empty() ? std::string() : "[\n" + entries + "/DOCVIEW pdfmark\n") + preferences(action);
}

}  // namespace companions::render
