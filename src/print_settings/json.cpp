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

}  // namespace

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
