// The fonts of this computer and what their licences say of embedding.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace pdf_settings {

// What a font's licence allows, from most to least; the order of the texts IDS_FONT_INSTALLABLE onwards.
enum class Embedding : uint8_t { kInstallable, kEditable, kPreview, kRestricted, kUnknown, kNotInstalled };

struct FontState {
    std::wstring name;  // of the family, as dialogs offer it
    Embedding embedding = Embedding::kUnknown;
};

// What the licence bits of a font's 'OS/2' table (fsType) allow; where several are set the least strict
// counts.
[[nodiscard]] Embedding embedding_of(uint16_t licence_bits) noexcept;

// Reads the installed fonts that have outlines into the calling thread's table, sorted by name. Works on some
// threads at once and returns when all have ended. Without fonts the table is empty.
void build_font_states();

// The calling thread's table, built on first use. Part of its dialog state.
[[nodiscard]] const std::vector<FontState>& font_states();

// What is known of the font of that name, without regard to case.
[[nodiscard]] Embedding find_embedding(std::wstring_view name);

}  // namespace pdf_settings
