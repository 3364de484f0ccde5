// What the renderer tells whoever watches it: lines of UTF-8 behind the program's name. Flushed line by line,
// since the host shows the progress as it comes.
#pragma once

#include <charconv>
#include <cstdio>
#include <string>
#include <string_view>

namespace companions::render {

// What stands before each line, and in the line before the number of a page that is done.
inline constexpr char kSpeaker[] = "zr_render: ";
inline constexpr char kPageWord[] = "page ";

// The number that a text begins with; 0 when it begins with none.
inline unsigned number_at(std::string_view text) noexcept {
    unsigned number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

inline void tell(std::FILE* stream, const std::string& line) {
    std::fprintf(stream, "%s%s\n", kSpeaker, line.c_str());
    std::fflush(stream);
}
inline void say(const std::string& line) {
    tell(stdout, line);
}
inline void warn(const std::string& line) {
    tell(stderr, line);
}

}  // namespace companions::render
