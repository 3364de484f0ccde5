#include "companions/host/report_parts.h"

#include <algorithm>

#include "common/qk/text.h"

namespace host {

namespace {

constexpr size_t kNameColumns = 16;

}  // namespace

std::wstring padded(const std::wstring& text) {
    return text + std::wstring(text.size() < kNameColumns ? kNameColumns - text.size() : 1, L' ');
}

void add_record(std::vector<std::wstring>& lines, const wchar_t* name, const std::optional<Fields>& record) {
    if (!record) {
        lines.push_back(std::wstring(name) + L": none");
        return;
    }
    lines.push_back(std::wstring(name) + L":");
    for (const Field& field : *record)
        lines.push_back(L"  " + padded(field.name) +
                        (field.is_number ? field.value : L"\"" + field.value + L"\""));
}

picojson::value json_text(const std::wstring& text) {
    return picojson::value(qk::to_utf8(text));
}

picojson::value json_number(size_t number) {
    return picojson::value(static_cast<double>(number));
}

picojson::value json_texts(const std::vector<std::wstring>& texts) {
    picojson::array array;
    std::ranges::transform(texts, std::back_inserter(array), json_text);
    return picojson::value(array);
}

picojson::value json_record(const std::optional<Fields>& record) {
    if (!record)
        return {};
    picojson::object object;
    for (const Field& field : *record)
        object[qk::to_utf8(field.name)] =
            field.is_number ? picojson::value(std::stod(field.value)) : json_text(field.value);
    return picojson::value(object);
}

}  // namespace host
