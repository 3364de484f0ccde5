#include "companions/render/glyph_names.h"

#include <algorithm>
#include <cctype>
#include <map>

namespace companions::render {

namespace {

constexpr uint8_t kFirst = ' ';
constexpr std::string_view kGlyph = " glyphshow";
constexpr std::string_view kNone = ".notdef";

// Of the codes from the blank on, as Windows' Western code page has them. The second blank and the hyphen
// that is not seen are left out: a name has one code.
constexpr std::string_view kNames =
    "space exclam quotedbl numbersign dollar percent ampersand quotesingle parenleft parenright asterisk "
    "plus comma hyphen period slash zero one two three four five six seven eight nine colon semicolon "
    "less equal greater question at A B C D E F G H I J K L M N O P Q R S T U V W X Y Z bracketleft "
    "backslash bracketright asciicircum underscore grave a b c d e f g h i j k l m n o p q r s t u v w x "
    "y z braceleft bar braceright asciitilde .notdef Euro .notdef quotesinglbase florin quotedblbase "
    "ellipsis dagger daggerdbl circumflex perthousand Scaron guilsinglleft OE .notdef Zcaron .notdef "
    ".notdef quoteleft quoteright quotedblleft quotedblright bullet endash emdash tilde trademark scaron "
    "guilsinglright oe .notdef zcaron Ydieresis .notdef exclamdown cent sterling currency yen brokenbar "
    "section dieresis copyright ordfeminine guillemotleft logicalnot .notdef registered macron degree "
    "plusminus twosuperior threesuperior acute mu paragraph periodcentered cedilla onesuperior "
    "ordmasculine guillemotright onequarter onehalf threequarters questiondown Agrave Aacute Acircumflex "
    "Atilde Adieresis Aring AE Ccedilla Egrave Eacute Ecircumflex Edieresis Igrave Iacute Icircumflex "
    "Idieresis Eth Ntilde Ograve Oacute Ocircumflex Otilde Odieresis multiply Oslash Ugrave Uacute "
    "Ucircumflex Udieresis Yacute Thorn germandbls agrave aacute acircumflex atilde adieresis aring ae "
    "ccedilla egrave eacute ecircumflex edieresis igrave iacute icircumflex idieresis eth ntilde ograve "
    "oacute ocircumflex otilde odieresis divide oslash ugrave uacute ucircumflex udieresis yacute thorn "
    "ydieresis";

// Every code from the blank on with its name.
template <class Take>
void each_name(Take take) {
    unsigned code = kFirst;
    for (std::string_view rest = kNames; !rest.empty(); ++code) {
        const std::string_view name = rest.substr(0, rest.find(' '));
        take(static_cast<uint8_t>(code), name);
        rest.remove_prefix(std::min(name.size() + 1, rest.size()));
    }
}

}  // namespace

std::string_view drawn_glyph(std::string_view line) noexcept {
    return line.ends_with(kGlyph) && line.starts_with('/') ? line.substr(1, line.size() - kGlyph.size() - 1)
                                                           : std::string_view();
}

uint8_t glyph_code(std::string_view name) {
    static const auto known = [] {
        std::map<std::string_view, uint8_t> codes;
        each_name([&codes](uint8_t code, std::string_view each) {
            if (each != kNone)
                codes[each] = code;
        });
        return codes;
    }();
    if (name.size() == 1 && std::isalpha(static_cast<unsigned char>(name[0])))
        return static_cast<uint8_t>(name[0]);  // most of them
    const auto found = known.find(name);
    return found == known.end() ? uint8_t{0} : found->second;
}

std::string glyph_array() {
    std::string text = "[ 32 { /.notdef } repeat";
    each_name([&text](uint8_t, std::string_view name) { text.append(" /").append(name); });
    return text + " ]";
}

}  // namespace companions::render
