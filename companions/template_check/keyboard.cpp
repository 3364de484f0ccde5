#include "companions/template_check/checks.h"

#include <algorithm>
#include <string>

#include "companions/template_check/known_pages.h"

namespace template_check {

namespace {

constexpr int kClosedCombo = 13;  // dialog units
constexpr size_t kNone = static_cast<size_t>(-1);

bool is_inside(const Box& inner, const Box& outer) {
    const int x = (inner.left + inner.right) / 2;
    const int y = (inner.top + inner.bottom) / 2;
    return x > outer.left && x < outer.right && y > outer.top && y < outer.bottom;
}

bool shows_mnemonic(const Control& control) {
    return control.kind != Kind::kPicture && control.kind != Kind::kEdit &&
           !(control.kind == Kind::kStatic && (control.style & SS_NOPREFIX));
}

// What a program that reads the screen says of a text: without the mark for the keyboard, which may stand in
// brackets behind it.
std::wstring spoken(std::wstring text) {
    if (const size_t mark = text.find(L"(&"); mark != std::wstring::npos)
        text.erase(mark, 4);
    std::erase(text, L'&');
    const size_t last = text.find_last_not_of(L":. ");
    return last == std::wstring::npos ? std::wstring() : text.substr(0, last + 1);
}

class KeyboardCheck {
public:
    KeyboardCheck(unsigned template_id, const DialogTemplate& page, wchar_t sheet_mnemonic,
                  Findings& findings)
        : id_(template_id), is_box_(page.is_box), sheet_mnemonic_(sheet_mnemonic), findings_(findings) {
        for (Control control : page.controls) {
            if (!(control.style & WS_VISIBLE) || control.kind == Kind::kSpin)
                continue;
            if (control.kind == Kind::kCombo)
                control.box.bottom = control.box.top + kClosedCombo;
            controls_.push_back(control);
        }
    }

    void run() {
        for (size_t i = 0; i < controls_.size(); ++i) {
            check_mnemonic(i);
            check_label(i);
            check_stop(i);
        }
        check_default_button();
        find_containers();
        check_names();
        check_containers();
        check_order(kNone);
        for (size_t i = 0; i < controls_.size(); ++i)
            if (controls_[i].kind == Kind::kGroup)
                check_order(i);
    }

private:
    std::wstring name(size_t i) const { return name_of(controls_[i]); }

    void check_mnemonic(size_t i) {
        const Control& control = controls_[i];
        if (!shows_mnemonic(control))
            return;
        const wchar_t key = mnemonic_of(control.text);
        if (!key) {
            if (takes_focus(control.kind) && !needs_label(control.kind))
                findings_.add(name(i) + L" has no mnemonic");
            return;
        }
        if (!((key >= L'A' && key <= L'Z') || (key >= L'0' && key <= L'9')))
            findings_.add(name(i) + L" has a mnemonic that not every keyboard has");
        if (key == sheet_mnemonic_)
            findings_.add(name(i) + L" has the mnemonic of a button of the sheet");
        for (size_t j = 0; j < i; ++j)
            if (shows_mnemonic(controls_[j]) && mnemonic_of(controls_[j].text) == key &&
                !are_alternatives(id_, controls_[j].id, control.id))
                findings_.add(name(i) + L" has the mnemonic of " + name(j));
    }

    void check_label(size_t i) {
        const Control& control = controls_[i];
        if (!needs_label(control.kind))
            return;
        const bool has_label = i > 0 && controls_[i - 1].kind == Kind::kStatic;
        if (has_label && strings_of(id_, controls_[i - 1].id).last)
            return;  // the texts of the property-sheet service's items have no mnemonics
        if (!has_label || !mnemonic_of(controls_[i - 1].text))
            return findings_.add(name(i) + L" has no label with a mnemonic directly before it");
        const Box& label = controls_[i - 1].box;
        if (label.right > control.box.left && label.bottom > control.box.top)
            findings_.add(name(i) + L" has its label, " + name(i - 1) +
                          L", neither at its left nor above it");
    }

    // A group of radio buttons is one tab stop, and its arrow keys stay inside it.
    void check_stop(size_t i) {
        const Control& control = controls_[i];
        const bool after_radio = i > 0 && controls_[i - 1].kind == Kind::kRadio;
        const bool starts_group = (control.style & WS_GROUP) != 0;
        if (control.kind == Kind::kRadio && !after_radio && !starts_group)
            findings_.add(name(i) + L" is the first of its kind without WS_GROUP");
        if (control.kind != Kind::kRadio && after_radio && !starts_group)
            findings_.add(name(i) + L" follows radio buttons without WS_GROUP");
        const bool needs_stop = control.kind != Kind::kRadio || starts_group;
        if (takes_focus(control.kind) && needs_stop && !(control.style & WS_TABSTOP))
            findings_.add(name(i) + L" is no tab stop");
    }

    // The default button of a sheet is its OK; a box has one of its own.
    void check_default_button() {
        const size_t wanted = is_box_ ? 1 : 0;
        size_t found = 0;
        for (size_t i = 0; i < controls_.size(); ++i)
            if (controls_[i].kind == Kind::kButton &&
                (controls_[i].style & BS_TYPEMASK) == BS_DEFPUSHBUTTON && ++found > wanted)
                findings_.add(name(i) + L" is one default button too many");
        if (found < wanted)
            findings_.add(L"has no default button");
    }

    // A group box has its own title said before them: the same name may stand in two.
    void check_names() {
        const auto said = [this](size_t i) {
            const bool has_label = needs_label(controls_[i].kind) && i > 0;
            return spoken(controls_[has_label ? i - 1 : i].text);
        };
        for (size_t i = 0; i < controls_.size(); ++i)
            for (size_t j = 0; j < i; ++j)
                if (takes_focus(controls_[i].kind) && takes_focus(controls_[j].kind) &&
                    containers_[i] == containers_[j] && said(i) == said(j) &&
                    !are_alternatives(id_, controls_[j].id, controls_[i].id))
                    findings_.add(name(i) + L" has the name of " + name(j));
    }

    // The smallest group box around each control.
    void find_containers() {
        const auto height = [this](size_t i) { return controls_[i].box.bottom - controls_[i].box.top; };
        for (size_t i = 0; i < controls_.size(); ++i) {
            size_t found = kNone;
            for (size_t j = 0; j < controls_.size(); ++j)
                if (j != i && controls_[j].kind == Kind::kGroup &&
                    is_inside(controls_[i].box, controls_[j].box) &&
                    (controls_[i].kind != Kind::kGroup || height(i) < height(j)) &&
                    (found == kNone || height(j) < height(found)))
                    found = j;
            containers_.push_back(found);
        }
    }

    bool is_content(size_t i, size_t group) const {
        for (size_t at = containers_[i]; at != kNone; at = containers_[at])
            if (at == group)
                return true;
        return false;
    }

    // What a group box holds follows it without anything else between.
    void check_containers() {
        for (size_t group = 0; group < controls_.size(); ++group) {
            if (controls_[group].kind != Kind::kGroup)
                continue;
            size_t last = group;
            for (size_t i = 0; i < controls_.size(); ++i)
                if (is_content(i, group))
                    last = i;
            for (size_t i = 0; i < group; ++i)
                if (is_content(i, group))
                    findings_.add(name(i) + L" comes before " + name(group) + L", which holds it");
            for (size_t i = group + 1; i < last; ++i)
                if (!is_content(i, group) && takes_focus(controls_[i].kind))
                    findings_.add(name(i) + L" comes between the contents of " + name(group));
        }
    }

    // Controls that stand directly in one group box, or on the page.
    void check_order(size_t container) {
        size_t before = kNone;
        int column_right = 0;
        for (size_t i = 0; i < controls_.size(); ++i) {
            const bool counts = takes_focus(controls_[i].kind) || controls_[i].kind == Kind::kGroup;
            if (containers_[i] != container || !counts)
                continue;
            if (before != kNone && !are_alternatives(id_, controls_[before].id, controls_[i].id) &&
                !follows(controls_[before].box, controls_[i].box)) {
                // The next column starts at the right of all that came before.
                if (controls_[i].box.left < column_right)
                    findings_.add(name(i) + L" comes after " + name(before) + L" but is read before it");
                column_right = 0;
            }
            column_right = std::max(column_right, controls_[i].box.right);
            before = i;
        }
    }

    static bool follows(const Box& one, const Box& next) {
        const int shared = std::min(one.bottom, next.bottom) - std::max(one.top, next.top);
        const int lower = std::min(one.bottom - one.top, next.bottom - next.top);
        const bool same_row = shared * 2 > lower;
        return same_row ? next.left >= one.left : next.top > one.top;
    }

    unsigned id_;
    bool is_box_;
    wchar_t sheet_mnemonic_;
    Findings& findings_;
    std::vector<Control> controls_;
    std::vector<size_t> containers_;
};

}  // namespace

void check_keyboard(unsigned template_id, const DialogTemplate& page, wchar_t sheet_mnemonic,
                    Findings& findings) {
    KeyboardCheck(template_id, page, sheet_mnemonic, findings).run();
}

}  // namespace template_check
