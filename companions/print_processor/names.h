// What the print processor is called, by the print system and by who installs it.
#pragma once

namespace processor {

inline constexpr wchar_t kName[] = L"Vantrix";
inline constexpr wchar_t kLibrary[] = L"zr_processor.dll";
inline constexpr wchar_t kSystemLibrary[] = L"wineps.drv";  // draws pages as PostScript

// The port of a printer whose documents become PDFs. The print system takes it for no file, so it asks for
// none.
inline constexpr wchar_t kPort[] = L"VANTRIX:";

inline constexpr wchar_t kRaw[] = L"RAW";
inline constexpr wchar_t kText[] = L"TEXT";
inline constexpr wchar_t kEmf[] = L"NT EMF 1.003";

}  // namespace processor
