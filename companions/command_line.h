// Windows command lines: how words are put together for another program, and how a program's own are read.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace companions {

// Words as one command line, each quoted so that a C run-time library reads it back as it is.
[[nodiscard]] std::wstring command_line(const std::vector<std::wstring>& words);

// Makes `app`, and the commands that are added to it afterwards, take words as these programs do: of an
// option given twice the last counts, and what begins with a slash is a path.
void prepare(CLI::App& app);

// An option, or by a name without dashes a word, whose value is kept as UTF-16; an empty one is refused.
CLI::Option* add_text(CLI::App& app, const std::string& name, std::wstring& target, const std::string& help);

// A check of options that take a number: what is wrong with one that is 0; empty for any other text.
[[nodiscard]] std::string above_zero(const std::string& number);

// What came of reading a command line; both are empty when everything is in order.
struct ReadWords {
    std::wstring fault;  // one sentence
    std::wstring help;   // was asked for
};

// Has `app` take the words behind the program's name.
[[nodiscard]] ReadWords read_words(CLI::App& app, std::span<const wchar_t* const> words);

}  // namespace companions
