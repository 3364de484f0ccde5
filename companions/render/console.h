// What the renderer tells whoever watches it.
#pragma once

#include <string>

namespace companions::render {

// A line of UTF-8 behind the program's name, to the standard output or the standard error stream.
void say(const std::string& line);
void warn(const std::string& line);

}  // namespace companions::render
