#include "companions/template_check/checks.h"

#include <algorithm>

#include "companions/template_check/known_pages.h"

namespace template_check {

namespace {

// In dialog units.
constexpr int kMargin = 7;
constexpr int kGroupSide = 6;
constexpr int kGroupTop = 10;
constexpr int kGroupBottom = 4;
// In pixels at 96 dpi.
constexpr int kCheckMark = 13 + 5;  // the square or circle and the gap behind it
constexpr int kButtonPadding = 5;
constexpr int kGroupTitleIndent = 9;
constexpr int kEditBorders = 6;
constexpr int kComboBorders = 8;
constexpr int kComboArrow = 17 + 8;  // its borders included
// Places are rounded to pixels one by one.
constexpr int kRounding = 1;

struct Placed {
    const Control* control;
    Box box;  // in pixels; a combo box is closed
};

class LayoutCheck {
public:
    LayoutCheck(unsigned template_id, const DialogTemplate& page, const StringTable& strings,
                const Measure& measure, Findings& findings)
        : id_(template_id), page_(page), strings_(strings), measure_(measure), findings_(findings) {}

    void run() {
        place();
        for (size_t i = 0; i < placed_.size(); ++i) {
            check_margins(placed_[i]);
            check_text(*placed_[i].control, placed_[i].box);
            check_shown_texts(placed_[i]);
            for (size_t j = i + 1; j < placed_.size(); ++j)
                check_pair(placed_[i], placed_[j]);
        }
    }

private:
    void place() {
        for (size_t i = 0; i < page_.controls.size(); ++i) {
            const Control& control = page_.controls[i];
            if (!(control.style & WS_VISIBLE))
                continue;
            // A spin button moves into the edit before it.
            if (control.kind == Kind::kSpin && i > 0 && page_.controls[i - 1].kind == Kind::kEdit)
                continue;
            Placed placed{&control, measure_.pixels(control.box)};
            if (control.kind == Kind::kCombo)
                placed.box.bottom = placed.box.top + measure_.line_height() + measure_.scaled(kComboBorders);
            placed_.push_back(placed);
        }
    }

    void report(const std::wstring& what, int units) { findings_.add(what, measure_.dpi(), units); }

    // How far a box leaves another one that is smaller on each side by so many dialog units, or 0.
    int outside(const Box& inner, const Box& outer, int side, int top, int bottom) const {
        const Box inset = measure_.pixels({side, top, side, bottom});
        const int across =
            std::max(outer.left + inset.left - inner.left, inner.right - (outer.right - inset.left));
        const int along =
            std::max(outer.top + inset.top - inner.top, inner.bottom - (outer.bottom - inset.bottom));
        return std::max({0, measure_.width_units(std::max(0, across - kRounding)),
                         measure_.height_units(std::max(0, along - kRounding))});
    }

    void check_margins(const Placed& placed) {
        const Box page = measure_.pixels({0, 0, page_.width, page_.height});
        const std::wstring name = name_of(*placed.control);
        if (const int units = outside(placed.box, page, 0, 0, 0))
            report(name + L" leaves the page", units);
        else if (const int over = outside(placed.box, page, kMargin, kMargin, kMargin))
            report(name + L" is in the page's margin", over);
    }

    void check_pair(const Placed& one, const Placed& other) {
        const int across = std::min(one.box.right, other.box.right) - std::max(one.box.left, other.box.left);
        const int along = std::min(one.box.bottom, other.box.bottom) - std::max(one.box.top, other.box.top);
        if (across <= kRounding || along <= kRounding ||
            are_alternatives(id_, one.control->id, other.control->id))
            return;
        const bool group = one.control->kind == Kind::kGroup || other.control->kind == Kind::kGroup;
        if (group)
            return check_content(one, other);
        report(name_of(*one.control) + L" overlaps " + name_of(*other.control),
               std::min(measure_.width_units(across), measure_.height_units(along)));
    }

    void check_content(const Placed& one, const Placed& other) {
        const auto area = [](const Box& box) { return (box.right - box.left) * (box.bottom - box.top); };
        const bool first = one.control->kind == Kind::kGroup &&
                           (other.control->kind != Kind::kGroup || area(one.box) >= area(other.box));
        const Placed& group = first ? one : other;
        const Placed& content = first ? other : one;
        if (const int units = outside(content.box, group.box, kGroupSide, kGroupTop, kGroupBottom))
            report(name_of(*content.control) + L" is too near to the border of " + name_of(*group.control),
                   units);
    }

    void check_shown_texts(const Placed& placed) {
        const Strings shown = strings_of(id_, placed.control->id);
        for (auto string = strings_.lower_bound(shown.first);
             string != strings_.end() && string->first <= shown.last; ++string) {
            Control control = *placed.control;
            control.text = string->second;
            check_text(control, placed.box);
        }
    }

    void check_text(const Control& control, const Box& box) {
        const int width = box.right - box.left;
        const int height = box.bottom - box.top;
        switch (control.kind) {
            case Kind::kStatic:
                return check_static(control, width, height);
            case Kind::kCheck:
            case Kind::kRadio:
                return check_fit(control, width - measure_.scaled(kCheckMark), height,
                                 (control.style & BS_MULTILINE) != 0);
            case Kind::kButton:
                return check_fit(control, width - 2 * measure_.scaled(kButtonPadding), height, false);
            case Kind::kGroup:
                return check_fit(control, width - 2 * measure_.scaled(kGroupTitleIndent), height, false);
            case Kind::kCombo:
                return check_fit(control, width - measure_.scaled(kComboArrow), height, false);
            case Kind::kEdit:
                if (const int low =
                        measure_.line_height() + measure_.scaled(kEditBorders) - kRounding - height;
                    low > 0)
                    report(name_of(control) + L" is too low for its text", measure_.height_units(low));
                return;
            default:
                return;
        }
    }

    void check_static(const Control& control, int width, int height) {
        if (control.style & SS_ELLIPSISMASK)
            return;
        const DWORD type = control.style & SS_TYPEMASK;
        const bool one_line = type == SS_SIMPLE || type == SS_LEFTNOWORDWRAP;
        check_fit(control, width, height, !one_line && height >= 2 * measure_.line_height());
    }

    void check_fit(const Control& control, int width, int height, bool wraps) {
        if (control.text.empty())
            return;
        const bool as_written =
            control.kind == Kind::kCombo || (control.kind == Kind::kStatic && (control.style & SS_NOPREFIX));
        const std::wstring text = as_written ? control.text : shown_text(control.text);
        const int lines = wraps ? measure_.lines_of(text, std::max(width, 1)) : 1;
        if (const int narrow = measure_.width_of(text) - width; !wraps && narrow > 0)
            report(name_of(control) + L" is too narrow for its text", measure_.width_units(narrow));
        if (const int low = lines * measure_.line_height() - height; low > 0)
            report(name_of(control) + L" is too low for its text", measure_.height_units(low));
    }

    unsigned id_;
    const DialogTemplate& page_;
    const StringTable& strings_;
    const Measure& measure_;
    Findings& findings_;
    std::vector<Placed> placed_;
};

}  // namespace

void check_layout(unsigned template_id, const DialogTemplate& page, const StringTable& strings,
                  const Measure& measure, Findings& findings) {
    LayoutCheck(template_id, page, strings, measure, findings).run();
}

}  // namespace template_check
