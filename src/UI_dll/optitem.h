// The option items of the property sheets, built from static descriptors.
#pragma once

#include <windows.h>
#include <winspool.h>
#include <winddiui.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

static_assert(sizeof(OPTITEM) == 88 && sizeof(OPTTYPE) == 48 && sizeof(OPTPARAM) == 48);
static_assert(sizeof(DLGPAGE) == 40 && sizeof(COMPROPSHEETUI) == 128);
static_assert(sizeof(EXTCHKBOX) == 64 && sizeof(EXTPUSH) == 64);

// What an option item is made from.
struct OptionDescriptor {
    // Bits of `build`.
    static constexpr uint32_t kExtended = 1;      // an extended check box, named like it, goes with it
    static constexpr uint32_t kDataCountsUp = 2;  // a parameter's data is the first one's plus its index
    static constexpr uint32_t kIconsCountUp = 4;  // likewise its icon
    static constexpr uint32_t kDataAdvances = 8;  // each parameter takes the next of the given texts

    DWORD flags;     // OPTIF_*
    BYTE level;      // depth in the tree
    BYTE public_id;  // DMPUB_*, or one of our own from 101 on
    UINT name_id;    // string of the language library
    BYTE type;       // TVOT_*
    WORD count;      // parameters of a list or combo box; the other types have their own number
    WORD style;      // OTS_*
    UINT icon_id;
    uint32_t build;
};

inline constexpr size_t kMostParameters = 10;

// The number of parameters of an option type; 0 for a type that is not known or a count that is too large.
[[nodiscard]] size_t parameter_count(BYTE type, WORD own_count) noexcept;

// One item with its type, parameters and texts, which stay where they are while it lives.
class OptionItem {
public:
    OptionItem() = default;
    OptionItem(const OptionItem&) = delete;
    OptionItem& operator=(const OptionItem&) = delete;

    [[nodiscard]] OPTITEM* get() const noexcept { return reinterpret_cast<OPTITEM*>(storage_.get()); }

private:
    friend bool CreateOPTTYPE(const OptionDescriptor&, std::vector<std::wstring>, ULONG_PTR, OptionItem&);

    std::unique_ptr<std::byte[]> storage_;  // the item, then its type, parameters and extension
    std::wstring name_;
    std::vector<std::wstring> texts_;
};

// Fills a new `item` from a descriptor and the parameters' texts. `information` is what a push button gets
// added to its first parameter's value. False for a descriptor that makes no item or without memory.
[[nodiscard]] bool CreateOPTTYPE(const OptionDescriptor& descriptor, std::vector<std::wstring> texts,
                                 ULONG_PTR information, OptionItem& item);

struct SheetInformation;

// The one item of the document sheet (the setting in force) and of the printer sheet (the module's version).
// An item that cannot be made is left out; the sheet opens without it.
void SetupDPOptItems(SheetInformation& information);
void SetupPPOptItems(SheetInformation& information);
