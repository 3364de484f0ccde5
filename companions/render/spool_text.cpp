#include "companions/render/spool_text.h"

#include <algorithm>
#include <string>

#include "companions/render/glyph_names.h"
#include "companions/render/pdfmark.h"
#include "companions/render/spool_links.h"

namespace companions::render {

namespace {

constexpr std::string_view kEndOfProlog = "%%EndProlog\n";

constexpr size_t kMostString = 1000;

// The driver's fonts have no codes, since it draws by names.
constexpr std::string_view kNoCodes = " /Encoding 256 array 0 1 255{1 index exch /.notdef put} for";

// A font from elsewhere keeps its own codes and is drawn by names.
constexpr std::string_view kShow = R"(userdict /ZRshow {
  currentfont /Encoding get ZRcodes eq { show } { { ZRcodes exch get glyphshow } forall } ifelse
} bind put
)";

class Joiner {
public:
    explicit Joiner(const std::function<void(std::string_view)>& output) : output_(output) {}

    // Takes whole lines.
    void feed(std::string_view lines) {
        size_t kept = 0;  // from there on lines are handed on as they are
        for (size_t at = 0, end = 0; at < lines.size(); at = end) {
            end = std::min(lines.find('\n', at), lines.size() - 1) + 1;
            std::string_view line = lines.substr(at, end - at);
            line.remove_suffix(line.ends_with('\n') ? 1 : 0);
            const uint8_t code = glyph_code(drawn_glyph(line));
            if (code == 0 || string_.size() == kMostString)
                end_string();
            if (code == 0 && line != kNoCodes)
                continue;
            if (at > kept)
                output_(lines.substr(kept, at - kept));
            kept = end;
            if (code == 0)
                output_(" /Encoding ZRcodes\n");
            else
                string_ += static_cast<char>(code);
        }
        output_(lines.substr(kept));
    }

    void end_string() {
        if (!string_.empty())
            output_(postscript_literal(string_) + " ZRshow\n");
        string_.clear();
    }

private:
    const std::function<void(std::string_view)>& output_;
    std::string string_;
};

size_t end_of_prolog(std::string_view document) {
    const size_t at = document.find(kEndOfProlog);
    return at == std::string_view::npos ? 0 : at + kEndOfProlog.size();
}

}  // namespace

bool has_wine_text(std::string_view document) {
    constexpr size_t kMostHead = 1 << 16;  // another program's document may have no end of comments
    const std::string_view start = document.substr(0, kMostHead);
    const std::string_view head = start.substr(0, start.find("\n%%EndComments"));
    return head.find(kWineCreator) != std::string_view::npos && end_of_prolog(document) != 0;
}

void change_text(std::string_view document, bool links, const std::function<void(std::string_view)>& output) {
    const size_t body = end_of_prolog(document);
    output(document.substr(0, body));
    output("userdict /ZRcodes " + glyph_array() + " put\n" + std::string(kShow));
    Joiner joiner(output);
    if (links)
        mark_links(document.substr(body), [&joiner](std::string_view lines) { joiner.feed(lines); });
    else
        joiner.feed(document.substr(body));
    joiner.end_string();
}

}  // namespace companions::render
