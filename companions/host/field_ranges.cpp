#include "companions/host/field_ranges.h"

#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

#include "common/qk/text.h"
#include "companions/host/json_text.h"
#include "print_settings/field_tables.h"

namespace host {

namespace {

using Ranges = std::map<std::wstring, std::wstring>;

std::wstring number(double value) {
    return qk::format(std::trunc(value) == value ? L"%.0f" : L"%g", value);
}

template <class Value>
std::wstring range_text(const ps::Rule& rule) {
    using Limits = std::numeric_limits<Value>;
    const double low = rule.bounded ? rule.low : static_cast<double>(Limits::lowest());
    const double high = rule.bounded ? rule.high : static_cast<double>(Limits::max());
    return (rule.zero_below ? L"0, or " : L"") + number(low) + L" to " + number(high) +
           (rule.keeps_all_ones ? L", or 4294967295" : L"");
}

template <class Section>
void add_ranges(const std::wstring& path, Ranges& ranges) {
    ps::for_each_field<Section>([&](const auto& field) {
        using Value = std::remove_cvref_t<decltype(std::declval<Section&>().*field.member)>;
        const std::wstring place = place_in(path, field.key);
        if constexpr (ps::SectionHandle<Value>)
            add_ranges<typename Value::impl_type>(place, ranges);
        else if constexpr (std::is_same_v<Value, ps::Box>)
            add_ranges<ps::Box>(place, ranges);
        else if constexpr (std::is_arithmetic_v<Value> && !std::is_same_v<Value, bool>)
            if (field.rule.bounded || std::is_integral_v<Value>)
                ranges[place] = range_text<Value>(field.rule);
    });
}

}  // namespace

const Ranges& field_ranges() {
    static const Ranges ranges = [] {
        Ranges all;
        add_ranges<ps::PrintSettings_impl>({}, all);
        return all;
    }();
    return ranges;
}

}  // namespace host
