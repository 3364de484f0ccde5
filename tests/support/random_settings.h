// Random print settings, made by walking the field tables: whatever a table lists gets a value in its range.
#pragma once

#include <cmath>

#include "print_settings/PrintSettings.h"
#include "print_settings/field_tables.h"
#include "support/prelude.h"

namespace random_settings {

namespace ps = Corvanta::Vantrix::PrintSettings;

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

    template <ps::SectionHandle Handle>
    void fill(const ps::FieldInfo&, Handle& section) {
        fill_fields(*section);
    }
    void fill(const ps::FieldInfo&, ps::Box& box) { fill_fields(box); }
    void fill(const ps::FieldInfo&, bool& value) { value = between(0, 1) == 1; }

    // Half of the numbers are a bound or a special value.
    template <class Integer>
    requires std::is_integral_v<Integer>
    void fill(const ps::FieldInfo& field, Integer& value) {
        using Limits = std::numeric_limits<Integer>;
        const auto& rule = field.rule;
        const auto low = rule.bounded ? static_cast<int64_t>(rule.low) : int64_t{Limits::min()};
        const auto high = rule.bounded ? static_cast<int64_t>(rule.high) : int64_t{Limits::max()};
        const int64_t special = rule.keeps_all_ones ? 0xFFFFFFFF : rule.zero_below ? 0 : high;
        const int64_t choices[] = {
            low, high, special, between(low, high), between(low, high), between(low, high)};
        value = static_cast<Integer>(choices[between(0, 5)]);
    }
    void fill(const ps::FieldInfo& field, float& value) {
        const double low = field.rule.bounded ? field.rule.low : -1e30;
        const double high = field.rule.bounded ? field.rule.high : 1e30;
        value = static_cast<float>(std::uniform_real_distribution(low, high)(engine_));
    }
    void fill(const ps::FieldInfo&, double& value) {
        value = std::uniform_real_distribution(-1.0, 1.0)(engine_) * std::pow(10.0, between(-300, 300));
    }
    void fill(const ps::FieldInfo&, std::wstring& text) {
        // Blanks, what JSON escapes, control characters, accents, the last unit of the BMP, a pair of
        // surrogates.
        static constexpr std::wstring_view kUnits(L"\0 a\"\\/\r\n\t\1\u00e9\u65e5\u672c\x7f\ufffd", 15);
        text.clear();
        for (int64_t pieces = between(0, 12); pieces > 0; --pieces)
            if (const auto at = static_cast<size_t>(between(0, 15)); at < kUnits.size())
                text += kUnits[at];
            else
                text += L"\U0001F5A8";
    }
    template <class Element>
    void fill(const ps::FieldInfo& field, std::vector<Element>& list) {
        list.clear();
        for (int64_t elements = between(0, 4); elements > 0; --elements) {
            Element element{};
            fill(field, element);
            list.push_back(std::move(element));
        }
    }
    template <class Key, class Value>
    void fill(const ps::FieldInfo& field, std::map<Key, Value>& named) {
        named.clear();
        for (int64_t entries = between(0, 4); entries > 0; --entries) {
            Key key{};
            fill({}, key);
            fill(field, named[key]);
        }
    }

    std::mt19937 engine_;
};

}  // namespace random_settings

using random_settings::RandomSettings;
