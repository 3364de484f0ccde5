#include "UI_dll/PDFSettings/pages/page_pdf_version_boxes.h"

#include <array>

#include "UI_dll/PDFSettings/pages/exchange.h"
#include "UI_dll/PDFSettings/pages/page_pdf_version_rules.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

using Corvanta::Vantrix::PrintSettings::Box;
using Corvanta::Vantrix::PrintSettings::PDFVersion_impl;

constexpr std::array kEdges = {&Box::left, &Box::top, &Box::right, &Box::bottom};

struct BoxControls {
    int use;         // check box
    int first_edge;  // edits of the four edges follow each other
    bool PDFVersion_impl::*used;
    Box PDFVersion_impl::*box;
};
constexpr BoxControls kBoxes[] = {
    {IDC_PV_USE_TRIM, IDC_PV_TRIM_LEFT, &PDFVersion_impl::UseTrimBox, &PDFVersion_impl::TrimBox},
    {IDC_PV_USE_BLEED, IDC_PV_BLEED_LEFT, &PDFVersion_impl::UseBleedBox, &PDFVersion_impl::BleedBox},
};

}  // namespace

void load_boxes(HWND page, const PDFVersion_impl& section) {
    for (const BoxControls& box : kBoxes)
        for (size_t i = 0; i < kEdges.size(); ++i)
            SetDlgItemTextW(page, box.first_edge + static_cast<int>(i),
                            margin_text(section.*box.box.*kEdges[i]).c_str());
}

void store_boxes(HWND page, PDFVersion_impl& section) {
    for (const BoxControls& box : kBoxes)
        for (size_t i = 0; i < kEdges.size(); ++i) {
            const int edit = box.first_edge + static_cast<int>(i);
            const auto margin = is_touched(page, edit) ? find_margin(control_text(page, edit)) : std::nullopt;
            if (margin)
                section.*box.box.*kEdges[i] = *margin;
        }
}

std::vector<int> find_bad_margins(HWND page) {
    std::vector<int> bad;
    for (const BoxControls& box : kBoxes)
        for (int edit = box.first_edge; edit < box.first_edge + static_cast<int>(kEdges.size()); ++edit)
            if (is_checked(page, box.use) && is_touched(page, std::array{box.use, edit}) &&
                !find_margin(control_text(page, edit)))
                bad.push_back(edit);
    return bad;
}

int box_to_mend(HWND page, const PDFVersion_impl& section) {
    for (size_t i = 0; i < kEdges.size(); ++i) {
        if (!(section.BleedBox.*kEdges[i] > section.TrimBox.*kEdges[i]))
            continue;
        const int edge = static_cast<int>(i);
        return is_checked(page, IDC_PV_USE_BLEED)  ? IDC_PV_BLEED_LEFT + edge
               : is_checked(page, IDC_PV_USE_TRIM) ? IDC_PV_TRIM_LEFT + edge
                                                   : IDC_PV_USE_BLEED;
    }
    return IDC_PV_USE_BLEED;
}

void enable_boxes(HWND page, bool offered) {
    for (const BoxControls& box : kBoxes) {
        enable(page, box.use, offered);
        const bool typed = offered && is_checked(page, box.use);
        for (int edit = box.first_edge; edit < box.first_edge + static_cast<int>(kEdges.size()); ++edit)
            enable(page, std::array{edit, edit + IDC_PV_LABEL_STEP, edit + IDC_PV_UNIT_STEP}, typed);
    }
}

}  // namespace pdf_settings
