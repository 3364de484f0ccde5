#include "companions/host/page_layout.h"

#include <windows.h>

#include <algorithm>

namespace host {

namespace {

constexpr wchar_t kFormFeed = L'\f';

bool is_control(wchar_t unit) noexcept {
    return unit < L' ' || (unit >= 0x7F && unit < 0xA0);
}

// Where to break a line of which `fits` units fit.
size_t break_position(std::wstring_view line, size_t fits) noexcept {
    fits = std::max<size_t>(fits, 1);
    const size_t blank = line.rfind(L' ', fits);  // one that hangs over the edge is not seen
    const bool only_indent = blank == std::wstring_view::npos || line.find_first_not_of(L' ') > blank;
    if (!only_indent)
        return blank + 1;
    if (IS_LOW_SURROGATE(line[fits]))  // line[fits] is there: a line that fits whole is not broken
        return fits > 1 ? fits - 1 : fits + 1;
    return fits;
}

// Collects lines into pages.
class PageBuilder {
public:
    explicit PageBuilder(const PageLayout& layout) : layout_(layout), pages_(1) {}

    void add(std::wstring_view line) {
        for (std::wstring& piece : wrap_line(drawable_line(line), layout_.fitting_units)) {
            if (ended_ || pages_.back().size() == layout_.lines_per_page)
                pages_.emplace_back();
            ended_ = false;
            pages_.back().push_back(std::move(piece));
        }
    }

    void end_page() {
        if (ended_)
            pages_.emplace_back();  // two form feeds in a row mean an empty page
        ended_ = true;
    }

    [[nodiscard]] std::vector<Page> take() { return std::move(pages_); }

private:
    const PageLayout& layout_;
    std::vector<Page> pages_;
    bool ended_ = false;
};

// Adds the lines of a text without form feeds, but not the empty one that stands behind the last line's end.
void add_lines(PageBuilder& pages, std::wstring_view text) {
    while (!text.empty()) {
        const size_t end = text.find_first_of(L"\r\n");
        pages.add(text.substr(0, end));
        if (end == std::wstring_view::npos)
            return;
        text.remove_prefix(end + (text.substr(end).starts_with(L"\r\n") ? 2 : 1));
    }
}

}  // namespace

std::wstring drawable_line(std::wstring_view line) {
    std::wstring drawn;
    drawn.reserve(line.size());
    for (const wchar_t unit : line)
        if (unit == L'\t')
            drawn.append(kTabColumns - drawn.size() % kTabColumns, L' ');
        else
            drawn += is_control(unit) ? L' ' : unit;
    return drawn;
}

std::vector<std::wstring> wrap_line(std::wstring_view line, const FittingUnits& fitting_units) {
    std::vector<std::wstring> pieces;
    for (;;) {
        const size_t fits = fitting_units(line);
        const size_t length = fits < line.size() ? break_position(line, fits) : line.size();
        pieces.emplace_back(line.substr(0, length));
        if (length >= line.size())
            return pieces;
        line.remove_prefix(length);
    }
}

std::vector<Page> paginate(std::wstring_view text, const PageLayout& layout) {
    PageBuilder pages(layout);
    for (;;) {
        const size_t feed = text.find(kFormFeed);
        add_lines(pages, text.substr(0, feed));
        if (feed == std::wstring_view::npos)
            return pages.take();
        pages.end_page();
        text.remove_prefix(feed + 1);
    }
}

}  // namespace host
