// The row of a field table. One table per section (field_tables.h) drives reading, writing, comparing,
// describing differences, checking and the tests' random settings: in a setting file a new field is one line.
#pragma once

#include <windows.h>

#include <cstdint>
#include <tuple>
#include <type_traits>

namespace Corvanta::Vantrix::PrintSettings {

// How a number that was read is brought into range.
struct Rule {
    bool bounded = false;  // false: only the limits of the field's type hold
    double low = 0;
    double high = 0;
    uint32_t mask = 0;            // not 0: only these bits of the integer are kept, before the range
    bool zero_below = false;      // 0 and what is below it give 0, whatever the range
    bool keeps_all_ones = false;  // 4294967295 stays: it is how a field with every bit set is written
};

[[nodiscard]] constexpr Rule range(double low, double high) {
    return {true, low, high};
}
[[nodiscard]] constexpr Rule range_or_all_ones(double low, double high) {
    return {true, low, high, 0, false, true};
}
[[nodiscard]] constexpr Rule zero_or_range(double low, double high) {
    return {true, low, high, 0, true};
}
[[nodiscard]] constexpr Rule low_bits(uint32_t mask) {
    return {true, 0, static_cast<double>(mask), mask};
}
[[nodiscard]] constexpr Rule low_bits_range(uint32_t mask, double low, double high) {
    return {true, low, high, mask};
}

// How a value is shown to a person.
enum class Shown : uint8_t {
    kPlain,
    kNamed,        // a code: one string resource per value
    kSecret,       // never: a change is told, not the value
    kColour,       // a COLORREF
    kZeroIsAuto,   // 0 reads "automatic"
    kOnesAreAuto,  // every bit set reads "automatic"
    kOnesAreNone,  // every bit set reads "no"
    kPaper,        // the number of a form: by its name, where it is known
};

// What a row says beside its member.
struct FieldInfo {
    const char* key;       // JSON
    const char* read_key;  // JSON; the same but for one field
    // String resource of the display name, in the words of the page that edits it (see display::plain); 0:
    // the field adds nothing to the section's name.
    UINT name;
    Rule rule = {};
    Shown shown = Shown::kPlain;
    uint8_t value_count = 0;  // kNamed: string resources from first_value on, for the codes 0, 1, 2, ...
    UINT first_value = 0;
    uint16_t units = 0;  // texts: the most UTF-16 units that can be typed; a file may hold more. 0: no limit
};

template <class Section, class Value>
struct Field : FieldInfo {
    Value Section::*member;

    [[nodiscard]] constexpr Field as(Shown how) const {
        Field field = *this;
        field.shown = how;
        return field;
    }
    // The codes 0, 1, 2, ..., which are its range, by the names from `first` on.
    [[nodiscard]] constexpr Field values(UINT first, uint8_t count) const {
        Field field = as(Shown::kNamed);
        field.rule = range(0, count - 1);
        field.first_value = first;
        field.value_count = count;
        return field;
    }
    [[nodiscard]] constexpr Field typed(uint16_t most_units) const {
        Field field = *this;
        field.units = most_units;
        return field;
    }
    [[nodiscard]] constexpr Field read_from(const char* other_key) const {
        Field field = *this;
        field.read_key = other_key;
        return field;
    }
};

template <class Section, class Value>
[[nodiscard]] constexpr Field<Section, Value> field(const char* key, Value Section::*member, UINT name,
                                                    Rule rule = {}) {
    return {{key, key, name, rule}, member};
}

// The table of a section, and the string resource of its name.
template <class Section>
inline constexpr auto kFields = Section::has_no_field_table;
template <class Section>
inline constexpr UINT kName = Section::has_no_name;

// A nested section, which is named as its own table says.
template <class Section, class Handle>
[[nodiscard]] constexpr Field<Section, Handle> section(const char* key, Handle Section::*member) {
    return field(key, member, kName<typename Handle::impl_type>);
}

template <class Section, class Visit>
constexpr void for_each_field(Visit visit) {
    std::apply([&](const auto&... row) { (visit(row), ...); }, kFields<Section>);
}

// Whether `test` holds for every row, asked in order up to the first that fails.
template <class Section, class Test>
[[nodiscard]] constexpr bool all_fields(Test test) {
    return std::apply([&](const auto&... row) { return (test(row) && ...); }, kFields<Section>);
}

// The row of a member of the section.
template <class Section, class Value>
[[nodiscard]] constexpr FieldInfo field_of(Value Section::*member) {
    FieldInfo found = {};
    for_each_field<Section>([&](const auto& row) {
        if constexpr (std::is_same_v<decltype(row.member), Value Section::*>)
            if (row.member == member)
                found = row;
    });
    return found;
}

template <class Value>
concept SectionHandle = requires {
    typename Value::impl_type;
};

}  // namespace Corvanta::Vantrix::PrintSettings
