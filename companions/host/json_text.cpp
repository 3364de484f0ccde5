#include "companions/host/json_text.h"

#include <picojson.h>

#include <algorithm>
#include <utility>

#include "common/qk/text.h"

namespace host {

namespace {

class Scanner {
public:
    explicit Scanner(std::string_view text) : text_(text) {}

    JsonText run() {
        value({});
        found_.end = at_;
        return std::move(found_);
    }

private:
    [[nodiscard]] char next() {
        at_ = std::min(text_.find_first_not_of(" \t\r\n", at_), text_.size());
        return at_ < text_.size() ? text_[at_] : '\0';
    }

    void value(const std::wstring& place) {
        found_.places.insert(place);
        const char first = next();
        if (first == '{')
            return members(place);
        if (first == '[')
            return items(place);
        if (first == '"') {
            take_string();
            return;
        }
        const size_t start = at_;
        at_ = std::min(text_.find_first_of(",]} \t\r\n", at_), text_.size());
        if (first == '-' || (first >= '0' && first <= '9'))
            found_.numbers[place] = qk::to_wide(text_.substr(start, at_ - start));
    }

    void members(const std::wstring& place) {
        std::set<std::wstring> seen;
        for (++at_; next() == '"';) {
            const std::wstring inner = place_in(place, take_string());
            if (!seen.insert(inner).second)
                found_.repeated.push_back(inner);
            if (next() == ':')
                ++at_;
            value(inner);
            if (next() == ',')
                ++at_;
        }
        ++at_;  // the brace
    }

    void items(const std::wstring& place) {
        size_t index = 0;
        for (++at_; next() != ']' && at_ < text_.size();) {
            value(place_in(place, index++));
            if (next() == ',')
                ++at_;
        }
        ++at_;
    }

    std::string take_string() {
        const size_t start = at_++;
        while (at_ < text_.size() && text_[at_] != '"')
            at_ += text_[at_] == '\\' ? 2 : 1;
        at_ = std::min(at_ + 1, text_.size());
        picojson::value string;
        picojson::parse(string, std::string(text_.substr(start, at_ - start)));
        return string.is<std::string>() ? string.get<std::string>() : std::string();
    }

    std::string_view text_;
    size_t at_ = 0;
    JsonText found_;
};

}  // namespace

JsonText scan_json(std::string_view text) {
    return Scanner(text).run();
}

std::wstring place_in(const std::wstring& place, const std::string& key) {
    return place.empty() ? qk::to_wide(key) : place + L"." + qk::to_wide(key);
}

std::wstring place_in(const std::wstring& place, size_t index) {
    return place + L"[" + std::to_wstring(index) + L"]";
}

}  // namespace host
