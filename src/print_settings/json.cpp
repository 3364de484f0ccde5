#include "print_settings/json.h"

#include <string>

#include "common/trace.h"

namespace Corvanta::Vantrix::PrintSettings::json {

namespace {

// picojson counts the depth of arrays only: objects nested in objects would run through the whole stack.
class BoundedContext : public picojson::default_parse_context {
public:
    using picojson::default_parse_context::default_parse_context;

    bool parse_object_start() {
        if (depths_ == 0)
            return false;
        --depths_;
        *out_ = picojson::value(picojson::object_type, false);
        return true;
    }

    template <class Iterator>
    bool parse_object_item(picojson::input<Iterator>& input, const std::string& key) {
        BoundedContext item(&out_->get<picojson::object>()[key], depths_);
        return picojson::_parse(item, input);
    }

    template <class Iterator>
    bool parse_array_item(picojson::input<Iterator>& input, size_t) {
        auto& array = out_->get<picojson::array>();
        array.emplace_back();
        BoundedContext item(&array.back(), depths_);
        return picojson::_parse(item, input);
    }
};

// Checks a whole document and keeps the text of one member of its outermost object.
class MemberContext : public picojson::deny_parse_context {
public:
    MemberContext(std::string_view key, std::string& found) : key_(key), found_(found) {}

    bool parse_object_start() { return true; }

    template <class Iterator>
    bool parse_object_item(picojson::input<Iterator>& input, const std::string& key) {
        if (key != key_) {
            picojson::null_parse_context rest;
            return picojson::_parse(rest, input);
        }
        picojson::value value;
        BoundedContext item(&value);
        if (!picojson::_parse(item, input))
            return false;
        found_ = value.is<std::string>() ? value.get<std::string>() : std::string();
        return true;
    }

    bool parse_object_stop() { return true; }

private:
    std::string_view key_;
    std::string& found_;
};

}  // namespace

std::optional<std::string> find_text(std::string_view text, std::string_view key) {
    std::string found;
    MemberContext context(key, found);
    std::string error;
    picojson::_parse(context, text.data(), text.data() + text.size(), &error);
    return error.empty() ? std::optional(std::move(found)) : std::nullopt;
}

bool try_parse(std::string_view text, picojson::value& value, std::string* fault) {
    BoundedContext context(&value);
    std::string error;
    picojson::_parse(context, text.data(), text.data() + text.size(), &error);
    if (error.empty())
        return true;
    TRACE(error.c_str());
    if (fault)
        *fault = std::move(error);
    return false;
}

const picojson::value* find(const picojson::object& object, const char* key) {
    const auto member = object.find(key);
    return member == object.end() ? nullptr : &member->second;
}

}  // namespace Corvanta::Vantrix::PrintSettings::json
