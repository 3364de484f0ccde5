// What a print setting holds.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "print_settings/sections.h"

namespace Corvanta::Vantrix::PrintSettings {

// The order of the members is the order of comparing, describing and reading.
struct PrintSettings_impl {
    using Comment = std::map<int32_t, std::wstring>;

    static constexpr int32_t kVersion = 70000;

    int32_t PSVersion = kVersion;
    std::wstring PSName;  // shown to the user
    Comment PSComment;    // texts by number, kept as they are
    General general;
    Compression compression;
    Font font;
    Summary summary;
    OpenAction openAction;
    PDFVersion pdfVersion;
    Security security;
    Watermark watermark;
    Color color;
    Notification notification;
    Addition addition;
};

}  // namespace Corvanta::Vantrix::PrintSettings
