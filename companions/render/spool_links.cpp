#include "companions/render/spool_links.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "companions/render/glyph_names.h"
#include "companions/render/letter_names.h"
#include "companions/render/pdfmark.h"
#include "companions/render/web_links.h"

namespace companions::render {

namespace {

constexpr std::string_view kMove = " moveto";
constexpr size_t kMostWord = 2000;

// ZRat keeps the current point under a number until the page ends. ZRlinked makes a link from the point of
// that number to the next one; the vector tells where letters have their upper side, and how far.
constexpr char kProcedures[] = R"(userdict /ZRplaces 50 dict put
userdict /ZRmarks 5 dict put
userdict /ZRat { ZRplaces exch [ currentpoint transform ] put } bind put
userdict /ZRlinked {
  ZRmarks begin /up exch def /right exch def /start exch def /address exch def
  [ /Rect [
  ZRplaces start get aload pop itransform up .2 mul sub exch right .2 mul sub exch
  ZRplaces start 1 add get aload pop itransform up .8 mul add exch right .8 mul add exch
  ] /Action << /Subtype /URI /URI address >> /Border [0 0 0] /F 4 /Subtype /Link /ANN pdfmark end
} bind put
)";

// The character of an address that a glyph's name stands for, a zero for anything else.
wchar_t character_of(std::string_view name) {
    const uint8_t code = glyph_code(name);
    if (code == ' ')
        return L'\0';
    return code != 0 && code < 0x7F ? static_cast<wchar_t>(code) : find_letter(name);
}

class Marker {
public:
    Marker(std::string_view body, const std::function<void(std::string_view)>& output)
        : body_(body), output_(output) {}

    void mark() {
        output_(kProcedures);
        for (size_t at = 0; at < body_.size();) {
            const size_t end = std::min(body_.find('\n', at), body_.size());
            take_line(body_.substr(at, end - at), at);
            at = end + 1;
        }
        insert(body_.size(), {});
    }

private:
    // Places of a glyph's line in the body.
    struct Line {
        size_t first, after;
    };

    void take_line(std::string_view line, size_t at) {
        // Most lines are the bytes of fonts and pictures.
        if (line.empty() || std::string_view("woe]").find(line.back()) == std::string_view::npos)
            return;
        if (const std::string_view glyph = drawn_glyph(line); !glyph.empty())
            take_glyph(glyph, {at, at + line.size() + 1});
        else if (line.ends_with(kMove))
            take_place(line);
        else if (line.starts_with('[') && line.ends_with(" 0 0]"))
            take_size(line);
        else if (line == "pgsave restore")
            end_page(at);
    }

    void take_glyph(std::string_view name, Line line) {
        const wchar_t character = character_of(name);
        if (character == L'\0' || word_.size() == kMostWord)
            end_word();
        ++since_move_;
        if (character == L'\0')
            return;
        word_ += character;
        lines_.push_back(line);
    }

    // A word goes on where each of its letters has a place of its own, near to the one before.
    void take_place(std::string_view line) {
        std::array<double, 2> place = {};
        const bool read = read_numbers(line, place);
        const auto [x, y] = place;
        const double step = x - x_;
        if (!read || since_move_ != 1 || right_ != 0 || std::fabs(y - y_) > size() / 10 || step < 0 ||
            step > size() * 1.3)
            end_word();
        x_ = x;
        y_ = y;
        since_move_ = 0;
    }

    void take_size(std::string_view line) {
        std::array<double, 4> matrix = {};
        if (!read_numbers(line.substr(1), matrix))
            return;
        const auto [right, up] = std::pair(matrix[2], matrix[3]);
        if (right != right_ || up != up_)
            end_word();
        right_ = right;
        up_ = up;
    }

    void end_word() {
        if (const auto address = find_address(word_)) {
            const std::string start = std::to_string(2 * links_);
            insert(lines_[address->first].first, start + " ZRat\n");
            insert(lines_[address->end - 1].after, std::to_string(2 * links_ + 1) + " ZRat\n");
            char letters[80];
            std::snprintf(letters, sizeof letters, " %.2f %.2f ZRlinked\n", right_, up_);
            at_end_ += postscript_literal(address->uri) + ' ' + start + letters;
            ++links_;
        }
        word_.clear();
        lines_.clear();
    }

    void end_page(size_t at) {
        end_word();
        insert(at, at_end_);
        at_end_.clear();
        links_ = 0;
    }

    // Lines before that place, which lies behind all that have been inserted before.
    void insert(size_t at, std::string_view lines) {
        output_(body_.substr(done_, at - done_));
        output_(lines);
        done_ = at;
    }

    [[nodiscard]] double size() const { return std::hypot(right_, up_); }

    std::string_view body_;
    const std::function<void(std::string_view)>& output_;
    size_t done_ = 0;  // of the body
    std::wstring word_;
    std::vector<Line> lines_;  // of the word's letters
    double x_ = 0, y_ = 0;     // where the last move went
    size_t since_move_ = 0;    // letters
    double right_ = 0, up_ = 0;
    std::string at_end_;  // of the page
    size_t links_ = 0;    // on the page
};

}  // namespace

void mark_links(std::string_view body, const std::function<void(std::string_view)>& output) {
    Marker(body, output).mark();
}

}  // namespace companions::render
