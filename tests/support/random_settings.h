// Random print settings, made by walking the field tables: whatever a table lists gets a value in its range.
#pragma once

#include <cmath>

#include "print_settings/PrintSettings.h"
#include "print_settings/field_tables.h"
#include "support/prelude.h"

class RandomSettings {
public:
    explicit RandomSettings(unsigned seed) : engine_(seed) {}

    [[nodiscard]] ps::PrintSettings next() {
        ps::PrintSettings settings;
        fill_fields(*settings);
        return settings;
    }

private:
    template <class Section>
    void fill_fields(Section& section) {
        ps::for_each_field<Section>([&](const auto& field) { fill(field, section.*field.member); });
    }

    int64_t between(int64_t low, int64_t high) { return std::uniform_int_distribution(low, high)(engine_); }
    double real(double low, double high) { return std::uniform_real_distribution(low, high)(engine_); }

    template <class Value>
    void fill(const ps::FieldInfo& field, Value& value) {
        if constexpr (ps::SectionHandle<Value>)
            fill_fields(*value);
        else if constexpr (std::is_same_v<Value, ps::Box>)
            fill_fields(value);
        else if constexpr (std::is_same_v<Value, bool>)
            value = between(0, 1) == 1;
        else if constexpr (std::is_integral_v<Value>)
            fill_integer(field.rule, value);
        else if constexpr (std::is_same_v<Value, float>)
            value = static_cast<float>(field.rule.bounded ? real(field.rule.low, field.rule.high)
                                                          : real(-1e30, 1e30));
        else if constexpr (std::is_same_v<Value, double>)
            value = real(-1.0, 1.0) * std::pow(10.0, between(-300, 300));
        else if constexpr (std::is_same_v<Value, std::wstring>)
            value = text();
        else
            fill_list(field, value);
    }

    // Half of the numbers are a bound or a special value.
    template <class Integer, class Rule>
    void fill_integer(const Rule& rule, Integer& value) {
        using Limits = std::numeric_limits<Integer>;
        const auto low = rule.bounded ? static_cast<int64_t>(rule.low) : int64_t{Limits::min()};
        const auto high = rule.bounded ? static_cast<int64_t>(rule.high) : int64_t{Limits::max()};
        const int64_t special = rule.keeps_all_ones ? 0xFFFFFFFF : rule.zero_below ? 0 : high;
        const int64_t choices[] = {
            low, high, special, between(low, high), between(low, high), between(low, high)};
        value = static_cast<Integer>(choices[between(0, 5)]);
    }
    // Blanks, what JSON escapes, control characters, accents, the last unit of the BMP, a pair of surrogates.
    std::wstring text() {
        static constexpr std::wstring_view kUnits(L"\0 a\"\\/\r\n\t\1\u00e9\u65e5\u672c\x7f\ufffd", 15);
        std::wstring made;
        for (int64_t pieces = between(0, 12); pieces > 0; --pieces) {
            const auto at = static_cast<size_t>(between(0, 15));
            made += at < kUnits.size() ? std::wstring(1, kUnits[at]) : L"\U0001F5A8";
        }
        return made;
    }
    template <class List>
    void fill_list(const ps::FieldInfo& field, List& list) {
        list.clear();
        for (int64_t elements = between(0, 4); elements > 0; --elements)
            if constexpr (requires { typename List::mapped_type; }) {
                typename List::key_type key{};
                fill({}, key);
                fill(field, list[key]);
            } else {
                typename List::value_type element{};
                fill(field, element);
                list.push_back(std::move(element));
            }
    }

    std::mt19937 engine_;
};
