#include "companions/host/text_file.h"

#include <windows.h>

#include <cstdint>

#include "common/qk/handle.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "common/setting_signatures.h"
#include "companions/host/host_error.h"

namespace host {

namespace {

constexpr UINT kWindows1252 = 1252;
constexpr wchar_t kReplacement = L'\xFFFD';

std::wstring from_windows_1252(std::string_view bytes) {
    std::wstring text(bytes.size(), L'\0');
    const int units = MultiByteToWideChar(kWindows1252, 0, bytes.data(), static_cast<int>(bytes.size()),
                                          text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<size_t>(units));
    return text;
}

// An odd byte at the end is half a unit, which nobody can read.
std::wstring from_utf16(std::string_view bytes, bool little_endian) {
    std::wstring text;
    text.reserve(bytes.size() / 2 + 1);
    for (size_t at = 0; at + 1 < bytes.size(); at += 2) {
        const auto first = static_cast<unsigned char>(bytes[at]);
        const auto second = static_cast<unsigned char>(bytes[at + 1]);
        const int unit = little_endian ? first | second << 8 : second | first << 8;
        text += static_cast<wchar_t>(unit);
    }
    if (bytes.size() % 2 != 0)
        text += kReplacement;
    return text;
}

}  // namespace

bool is_valid_utf8(std::string_view bytes) noexcept {
    return bytes.empty() || MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(),
                                                static_cast<int>(bytes.size()), nullptr, 0) > 0;
}

const wchar_t* encoding_name(Encoding encoding) noexcept {
    static constexpr const wchar_t* kNames[] = {L"UTF-8", L"UTF-16, little-endian", L"UTF-16, big-endian",
                                                L"Windows-1252"};
    return kNames[static_cast<size_t>(encoding)];
}

DecodedText decode_text(std::string_view bytes) {
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) {
        const bool little_endian = bytes[0] == '\xFF';
        const std::wstring text = from_utf16(bytes.substr(2), little_endian);
        return {qk::to_wide(qk::to_utf8(text)), little_endian ? Encoding::kUtf16Le : Encoding::kUtf16Be};
    }
    // The mark says UTF-8, so bad bytes are damage, not another encoding.
    if (bytes.starts_with(kByteOrderMark))
        return {qk::to_wide(bytes.substr(kByteOrderMark.size())), Encoding::kUtf8};
    if (is_valid_utf8(bytes))
        return {qk::to_wide(bytes), Encoding::kUtf8};
    return {from_windows_1252(bytes), Encoding::kWindows1252};
}

std::string read_text_file(const std::wstring& path) {
    if (qk::is_folder(path))
        throw HostError{ExitCode::kUsage, path + L" is a folder, not a text file"};
    const qk::FileObj file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                       nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!file)
        throw HostError{ExitCode::kUsage, with_reason(L"cannot open " + path, GetLastError())};
    LARGE_INTEGER size = {};
    if (!GetFileSizeEx(file.get(), &size))
        throw HostError{ExitCode::kUsage, with_reason(L"cannot read " + path, GetLastError())};
    if (static_cast<uint64_t>(size.QuadPart) > kMostTextBytes)
        throw HostError{ExitCode::kUsage,
                        qk::format(L"%s is too large to print: %llu MiB, at most %llu", path.c_str(),
                                   size.QuadPart >> 20, kMostTextBytes >> 20)};
    std::string bytes(static_cast<size_t>(size.QuadPart), '\0');
    DWORD read = 0;
    if (!ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr))
        throw HostError{ExitCode::kUsage, with_reason(L"cannot read " + path, GetLastError())};
    bytes.resize(read);
    return bytes;
}

}  // namespace host
