#include "companions/render/arguments.h"

#include <algorithm>
#include <charconv>

#include "common/qk/text.h"

namespace companions::render {

namespace {

std::optional<uint64_t> find_unsigned(std::wstring_view text) {
    const bool hexadecimal = text.starts_with(L"0x") || text.starts_with(L"0X");
    const std::string digits = qk::to_utf8(hexadecimal ? text.substr(2) : text);
    uint64_t number = 0;
    const char* end = digits.data() + digits.size();
    const auto [stopped, error] = std::from_chars(digits.data(), end, number, hexadecimal ? 16 : 10);
    if (digits.empty() || error != std::errc{} || stopped != end)
        return std::nullopt;
    return number;
}

std::optional<DWORD> find_id(std::wstring_view text) {
    const auto number = find_unsigned(text);
    if (!number || *number == 0 || *number > MAXDWORD)
        return std::nullopt;
    return static_cast<DWORD>(*number);
}

std::optional<TextArena> find_arena(std::wstring_view text) {
    const size_t first = text.find(L':');
    const size_t second = first == std::wstring_view::npos ? first : text.find(L':', first + 1);
    if (second == std::wstring_view::npos)
        return std::nullopt;
    const auto process = find_id(text.substr(0, first));
    const auto address = find_unsigned(text.substr(first + 1, second - first - 1));
    const auto bytes = find_unsigned(text.substr(second + 1));
    if (!process || !address || *address == 0 || !bytes)
        return std::nullopt;
    return TextArena{*process, *address, static_cast<size_t>(std::min<uint64_t>(*bytes, kMostArenaBytes))};
}

// True when `value` was wanted for the option and is in order.
bool try_take(Arguments& arguments, std::wstring_view option, std::wstring_view value) {
    if (option == L"--thread") {
        arguments.thread = find_id(value).value_or(0);
        return arguments.thread != 0;
    }
    if (option == L"--notify") {
        arguments.arena = find_arena(value);
        return arguments.arena.has_value();
    }
    const struct {
        std::wstring_view option;
        std::wstring& target;
    } texts[] = {
        {L"--printer", arguments.printer}, {L"--spool", arguments.spool}, {L"--setting", arguments.setting}};
    const auto* found =
        std::ranges::find_if(texts, [option](const auto& text) { return text.option == option; });
    if (found == std::end(texts) || value.empty())
        return false;
    found->target = value;
    return true;
}

bool takes_value(std::wstring_view option) noexcept {
    constexpr std::wstring_view kOptions[] = {L"--thread", L"--printer", L"--spool", L"--setting",
                                              L"--notify"};
    return std::ranges::find(kOptions, option) != std::end(kOptions);
}

std::wstring missing(const Arguments& arguments) {
    if (arguments.thread == 0)
        return L"--thread is missing";
    if (arguments.discard)
        return {};
    if (arguments.printer.empty())
        return L"--printer is missing";
    return arguments.spool.empty() ? L"--spool is missing" : L"";
}

}  // namespace

ParsedArguments parse_arguments(std::span<const wchar_t* const> words) {
    ParsedArguments parsed;
    for (size_t i = 0; i < words.size(); ++i) {
        const std::wstring option = words[i];
        if (option == L"--help" || option == L"-h") {
            parsed.help = true;
            return parsed;
        }
        if (option == L"--keep-spool" || option == L"--discard") {
            (option == L"--discard" ? parsed.arguments.discard : parsed.arguments.keep_spool) = true;
        } else if (!takes_value(option)) {
            parsed.fault = L"unknown argument " + option;
            return parsed;
        } else if (i + 1 == words.size()) {
            parsed.fault = option + L" needs a value";
            return parsed;
        } else if (!try_take(parsed.arguments, option, words[++i])) {
            parsed.fault = option + L" cannot be " + (words[i][0] ? words[i] : L"empty");
            return parsed;
        }
    }
    parsed.fault = missing(parsed.arguments);
    return parsed;
}

}  // namespace companions::render
