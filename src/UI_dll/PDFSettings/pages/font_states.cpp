#include "UI_dll/PDFSettings/pages/font_states.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>

#include "UI_dll/PDFSettings/dialog_state.h"
#include "common/qk/gdi_handle.h"
#include "common/qk/guard.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"

namespace pdf_settings {

namespace {

struct Table final : PageHelper {
    std::vector<FontState> fonts;
};

constexpr size_t kChunk = 16;       // fonts that a thread takes at once
constexpr size_t kMostHelpers = 3;  // the fonts' server is one for all: more would wait for each other

int compare_names(std::wstring_view a, std::wstring_view b) noexcept {
    const auto length = [](std::wstring_view text) { return static_cast<int>(text.size()); };
    return CompareStringW(LOCALE_USER_DEFAULT, NORM_IGNORECASE, a.data(), length(a), b.data(), length(b)) -
           CSTR_EQUAL;
}

int CALLBACK add_name(const LOGFONTW* font, const TEXTMETRICW*, DWORD type, LPARAM names) {
    return qk::guarded<int>(0, [&] {
        // Names with @ are the same fonts turned for vertical writing.
        if (!(type & RASTER_FONTTYPE) && font->lfFaceName[0] && font->lfFaceName[0] != L'@')
            reinterpret_cast<std::vector<FontState>*>(names)->push_back({font->lfFaceName});
        return 1;
    });
}

// A family comes once for each of its character sets.
std::vector<FontState> list_families() {
    std::vector<FontState> fonts;
    const qk::DeviceContext dc(CreateCompatibleDC(nullptr));
    LOGFONTW all = {};
    all.lfCharSet = DEFAULT_CHARSET;
    if (dc)
        EnumFontFamiliesExW(dc.get(), &all, &add_name, reinterpret_cast<LPARAM>(&fonts), 0);
    std::ranges::sort(fonts, [](const auto& a, const auto& b) { return compare_names(a.name, b.name) < 0; });
    const auto same = [](const auto& a, const auto& b) { return compare_names(a.name, b.name) == 0; };
    fonts.erase(std::unique(fonts.begin(), fonts.end(), same), fonts.end());
    return fonts;
}

Embedding read_embedding(HDC dc, const std::wstring& name) noexcept {
    LOGFONTW wanted = {};
    wanted.lfCharSet = DEFAULT_CHARSET;
    qk::copy_zero_padded(wanted.lfFaceName, std::size(wanted.lfFaceName), name);
    const qk::Font font(CreateFontIndirectW(&wanted));
    if (!font)
        return Embedding::kUnknown;
    const qk::Selected selected(dc, font.get());
    constexpr DWORD kTable = 0x322F534F;  // 'OS/2', first letter in the low byte
    constexpr DWORD kLicenceOffset = 8;
    unsigned char bits[2] = {};
    if (GetFontData(dc, kTable, kLicenceOffset, bits, sizeof bits) != sizeof bits)
        return Embedding::kUnknown;
    return embedding_of(static_cast<uint16_t>(bits[0] << 8 | bits[1]));
}

struct Work {
    std::vector<FontState>& fonts;
    std::atomic<size_t> next = 0;
    std::atomic<int> helpers = 0;  // that have not let go of it

    // Takes chunks of the table until none is left.
    void share() noexcept {
        const qk::DeviceContext dc(CreateCompatibleDC(nullptr));
        if (!dc)
            return;
        for (size_t first = next.fetch_add(kChunk); first < fonts.size(); first = next.fetch_add(kChunk))
            for (size_t i = first; i < std::min(first + kChunk, fonts.size()); ++i)
                fonts[i].embedding = read_embedding(dc.get(), fonts[i].name);
    }
};

DWORD WINAPI help(void* given) {
    auto* const work = static_cast<Work*>(given);
    work->share();
    --work->helpers;
    return 0;
}

// The system's own threads: the library's keep a handle for the rest of the process when two of them meet.
void fill_in_parallel(std::vector<FontState>& fonts) {
    Work work = {fonts};
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    const size_t chunks = (fonts.size() + kChunk - 1) / kChunk;
    const size_t useful = std::min<size_t>(system.dwNumberOfProcessors, chunks);
    std::array<qk::HandleObj, kMostHelpers> helpers;
    for (size_t i = 0; i < kMostHelpers && i + 1 < useful; ++i) {
        ++work.helpers;
        helpers[i].reset(CreateThread(nullptr, 0, &help, &work, 0, nullptr));
        if (!helpers[i])
            --work.helpers;
    }
    work.share();
    for (const qk::HandleObj& helper : helpers)
        if (helper)
            WaitForSingleObject(helper.get(), INFINITE);
    while (work.helpers != 0)  // a wait that fails must not take the work from under a helper
        Sleep(1);
}

}  // namespace

Embedding embedding_of(uint16_t licence_bits) noexcept {
    constexpr uint16_t kRestrictedBit = 0x2;
    constexpr uint16_t kPreviewBit = 0x4;
    constexpr uint16_t kEditableBit = 0x8;
    constexpr uint16_t kBitmapsOnlyBit = 0x200;
    if (licence_bits & kBitmapsOnlyBit)
        return Embedding::kRestricted;
    if (licence_bits & kEditableBit)
        return Embedding::kEditable;
    if (licence_bits & kPreviewBit)
        return Embedding::kPreview;
    return licence_bits & kRestrictedBit ? Embedding::kRestricted : Embedding::kInstallable;
}

void build_font_states() {
    TRACE("build_font_states");
    auto table = std::make_unique<Table>();
    table->fonts = list_families();
    fill_in_parallel(table->fonts);
    TRACE_F(L"fonts=%d", static_cast<int>(table->fonts.size()));
    dialog_state().list.font_states = std::move(table);
}

const std::vector<FontState>& font_states() {
    if (!dialog_state().list.font_states)
        build_font_states();
    return static_cast<const Table&>(*dialog_state().list.font_states).fonts;
}

Embedding find_embedding(std::wstring_view name) {
    const auto& fonts = font_states();
    const auto before = [](const FontState& font, std::wstring_view wanted) {
        return compare_names(font.name, wanted) < 0;
    };
    const auto found = std::lower_bound(fonts.begin(), fonts.end(), name, before);
    const bool is_there = found != fonts.end() && compare_names(found->name, name) == 0;
    return is_there ? found->embedding : Embedding::kNotInstalled;
}

}  // namespace pdf_settings
