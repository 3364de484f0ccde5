// Walks two sections side by side and describes what differs.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "print_settings/display.h"
#include "print_settings/field_tables.h"

namespace Corvanta::Vantrix::PrintSettings::display {

// One value as a person reads it: texts in quotation marks, or "(empty)"; codes by name.
[[nodiscard]] std::wstring in_words(const FieldInfo& field, bool value);
[[nodiscard]] std::wstring in_words(const FieldInfo& field, int64_t value);
[[nodiscard]] std::wstring in_words(const FieldInfo& field, double value);
[[nodiscard]] std::wstring in_words(const FieldInfo& field, const std::wstring& value);
template <class Number>
requires std::is_integral_v<Number>
[[nodiscard]] std::wstring in_words(const FieldInfo& field, Number value) {
    return in_words(field, static_cast<int64_t>(value));
}
template <class Element>
[[nodiscard]] std::wstring in_words(const FieldInfo& field, const std::vector<Element>& list) {
    std::wstring text;
    for (const Element& element : list) {
        if (!text.empty())
            text += L", ";
        text += in_words(field, element);
    }
    return text.empty() ? in_words(field, std::wstring()) : text;
}

// A text of the pages without its mark for the keyboard and its colon: "&Width: (mm)" gives "Width (mm)".
[[nodiscard]] std::wstring plain(std::wstring text);

// The name of an additional value: that of the pages where the dialog writes it.
[[nodiscard]] std::wstring key_in_words(const std::wstring& name);
[[nodiscard]] inline std::wstring key_in_words(int32_t number) {
    return std::to_wstring(number);
}
[[nodiscard]] std::wstring nothing();  // the place of a value that is not there
[[nodiscard]] std::wstring secret_change(const std::wstring& what);

// "Compression - Colour images - JPEG quality": the names from the section down to a field.
[[nodiscard]] std::wstring join(const std::wstring& path, const std::wstring& name);
[[nodiscard]] std::wstring join(const std::wstring& path, const FieldInfo& field);

// Appends a sentence per difference to `lines`. `path` names the sections around. The papers' names where
// they are known.
class Differences {
public:
    explicit Differences(std::vector<std::wstring>& lines, std::wstring older_paper = {},
                         std::wstring newer_paper = {})
        : lines_(lines), older_paper_(std::move(older_paper)), newer_paper_(std::move(newer_paper)) {}

    template <class Section>
    void compare(const std::wstring& path, const Section& older, const Section& newer) {
        for_each_field<Section>([&](const auto& field) {
            compare_values(path, field, older.*field.member, newer.*field.member);
        });
    }

private:
    // One function per type of value, not per field: the rows add a call each to the module's size.
    template <class Value>
    void compare_values(const std::wstring& path, const FieldInfo& field, const Value& older,
                        const Value& newer) {
        // The paper's name is kept elsewhere than its number, so a section that is equal is looked into as
        // well.
        if (SectionHandle<Value> || !(older == newer) ||
            (field.shown == Shown::kPaper && older_paper_ != newer_paper_))
            tell(join(path, field), field, older, newer);
    }

    template <class Value>
    void tell(const std::wstring& what, const FieldInfo& field, const Value& older, const Value& newer) {
        if (field.shown == Shown::kSecret)
            lines_.push_back(secret_change(what));
        else if (field.shown == Shown::kPaper)
            tell_paper(what, in_words(field, older), in_words(field, newer));
        else
            lines_.push_back(Changed2Str(what, in_words(field, older), in_words(field, newer)));
    }

    // By the names, unless they do not tell the two apart.
    void tell_paper(const std::wstring& what, const std::wstring& older, const std::wstring& newer) {
        const bool named = older_paper_ != newer_paper_;
        lines_.push_back(Changed2Str(what, named && !older_paper_.empty() ? older_paper_ : older,
                                     named && !newer_paper_.empty() ? newer_paper_ : newer));
    }

    template <SectionHandle Handle>
    void tell(const std::wstring& what, const FieldInfo&, const Handle& older, const Handle& newer) {
        compare(what, *older, *newer);
    }

    void tell(const std::wstring& what, const FieldInfo&, const Box& older, const Box& newer) {
        compare(what, older, newer);
    }

    template <class Key, class Value>
    void tell(const std::wstring& what, const FieldInfo& field, const std::map<Key, Value>& older,
              const std::map<Key, Value>& newer) {
        for (const auto& [key, value] : older) {
            const auto other = newer.find(key);
            if (other == newer.end())
                lines_.push_back(
                    Changed2Str(join(what, key_in_words(key)), in_words(field, value), nothing()));
            else if (!(other->second == value))
                lines_.push_back(Changed2Str(join(what, key_in_words(key)), in_words(field, value),
                                             in_words(field, other->second)));
        }
        for (const auto& [key, value] : newer)
            if (!older.contains(key))
                lines_.push_back(
                    Changed2Str(join(what, key_in_words(key)), nothing(), in_words(field, value)));
    }

    std::vector<std::wstring>& lines_;
    std::wstring older_paper_;
    std::wstring newer_paper_;
};

}  // namespace Corvanta::Vantrix::PrintSettings::display
