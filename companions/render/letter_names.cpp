#include "companions/render/letter_names.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string>
#include <system_error>

#include "companions/render/glyph_names.h"
#include "companions/render/web_links.h"

namespace companions::render {

namespace {

// The names of letters one after another from the first on; a dash has none or shares it.
constexpr struct {
    int first;
    std::string_view names;
} kLetters[] = {
    {0x100,
     " Amacron amacron Abreve abreve Aogonek aogonek Cacute cacute Ccircumflex"
     " ccircumflex Cdotaccent cdotaccent Ccaron ccaron Dcaron dcaron Dcroat dcroat Emacron emacron Ebreve"
     " ebreve Edotaccent edotaccent Eogonek eogonek Ecaron ecaron Gcircumflex gcircumflex Gbreve gbreve"
     " Gdotaccent gdotaccent Gcommaaccent gcommaaccent Hcircumflex hcircumflex Hbar hbar Itilde itilde"
     " Imacron imacron Ibreve ibreve Iogonek iogonek Idotaccent dotlessi IJ ij Jcircumflex jcircumflex"
     " Kcommaaccent kcommaaccent kgreenlandic Lacute lacute Lcommaaccent lcommaaccent Lcaron lcaron Ldot"
     " ldot Lslash lslash Nacute nacute Ncommaaccent ncommaaccent Ncaron ncaron napostrophe Eng eng Omacron"
     " omacron Obreve obreve Ohungarumlaut ohungarumlaut OE oe Racute racute Rcommaaccent rcommaaccent"
     " Rcaron rcaron Sacute sacute Scircumflex scircumflex Scedilla scedilla Scaron scaron - - Tcaron"
     " tcaron Tbar tbar Utilde utilde Umacron umacron Ubreve ubreve Uring uring Uhungarumlaut uhungarumlaut"
     " Uogonek uogonek Wcircumflex wcircumflex Ycircumflex ycircumflex Ydieresis Zacute zacute Zdotaccent"
     " zdotaccent Zcaron zcaron "},
    {0x386,
     " Alphatonos - Epsilontonos Etatonos Iotatonos - Omicrontonos - Upsilontonos Omegatonos"
     " iotadieresistonos Alpha Beta Gamma - Epsilon Zeta Eta Theta Iota Kappa Lambda Mu Nu Xi Omicron Pi"
     " Rho - Sigma Tau Upsilon Phi Chi Psi - Iotadieresis Upsilondieresis alphatonos epsilontonos etatonos"
     " iotatonos upsilondieresistonos alpha beta gamma delta epsilon zeta eta theta iota kappa lambda - nu"
     " xi omicron pi rho sigma1 sigma tau upsilon phi chi psi omega iotadieresis upsilondieresis"
     " omicrontonos upsilontonos omegatonos "},
};

// A number that is all of the text; -1 for any other.
int number_in(std::string_view text, int base) {
    int number = -1;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    return error == std::errc() && end == text.data() + text.size() ? number : -1;
}

// "afii10017" is the first of the Cyrillic capitals, the small ones begin 48 behind; Io stands where it does
// in the alphabet, unlike in the encoding.
int cyrillic(int number) {
    constexpr int kFirst = 10017, kSmall = 48, kIo = 6, kCount = 33;
    const bool small = number >= kFirst + kSmall;
    const int at = number - kFirst - (small ? kSmall : 0);
    if (at < 0 || at >= kCount)
        return 0;
    return at == kIo ? (small ? 0x451 : 0x401) : (small ? 0x430 : 0x410) + at - (at > kIo ? 1 : 0);
}

int code_of(std::string_view name) {
    constexpr std::string_view kCode = "uni", kCyrillic = "afii";
    constexpr size_t kWithCode = 7;
    constexpr uint8_t kFirstLetter = 0xC0;  // from there on the code page is Unicode's
    if (name.size() == kWithCode && name.starts_with(kCode))
        return number_in(name.substr(kCode.size()), 16);
    if (const uint8_t code = glyph_code(name); code >= kFirstLetter)
        return code;
    if (name.starts_with(kCyrillic))
        return cyrillic(number_in(name.substr(kCyrillic.size()), 10));
    for (const auto& [first, names] : kLetters)
        if (const size_t at = names.find(' ' + std::string(name) + ' '); at != std::string_view::npos)
            return first + static_cast<int>(std::ranges::count(names.substr(0, at), ' '));
    return 0;
}

}  // namespace

wchar_t find_letter(std::string_view name) {
    if (name.size() < 2)
        return L'\0';
    const auto letter = static_cast<wchar_t>(std::max(code_of(name), 0));
    return is_address_letter(letter) ? letter : L'\0';
}

}  // namespace companions::render
