#include "companions/render/console.h"

#include <cstdio>

namespace companions::render {

namespace {

// Flushed line by line: the host shows the progress as it comes.
void print(std::FILE* stream, const std::string& line) {
    std::fprintf(stream, "zr_render: %s\n", line.c_str());
    std::fflush(stream);
}

}  // namespace

void say(const std::string& line) {
    print(stdout, line);
}

void warn(const std::string& line) {
    print(stderr, line);
}

}  // namespace companions::render
