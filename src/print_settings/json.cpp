#include "print_settings/json.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>

#include "common/qk/trace.h"

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

// Checks a value as BoundedContext does and keeps nothing of it. (picojson's own null context loses count of
// the depth.)
class SkippingContext {
public:
    explicit SkippingContext(size_t depths) : depths_(depths) {}

    bool set_null() { return true; }
    bool set_bool(bool) { return true; }
    bool set_number(double number) {
        if (!std::isfinite(number))
            throw std::overflow_error("number in skipped JSON is not finite");
        return true;
    }
    template <class Iterator>
    bool parse_string(picojson::input<Iterator>& input) {
        struct {
            void push_back(int) {}
        } nowhere;
        return picojson::_parse_string(nowhere, input);
    }
    bool parse_array_start() { return descend(); }
    template <class Iterator>
    bool parse_array_item(picojson::input<Iterator>& input, size_t) {
        SkippingContext item(depths_);
        return picojson::_parse(item, input);
    }
    bool parse_array_stop(size_t) { return true; }
    bool parse_object_start() { return descend(); }
    template <class Iterator>
    bool parse_object_item(picojson::input<Iterator>& input, const std::string&) {
        SkippingContext item(depths_);
        return picojson::_parse(item, input);
    }
    bool parse_object_stop() { return true; }

private:
    bool descend() { return depths_ > 0 && depths_-- > 0; }

    size_t depths_;
};

// Checks a whole document and keeps the text of one member of its outermost object.
class MemberContext : public picojson::deny_parse_context {
public:
    MemberContext(std::string_view key, std::optional<std::string>& found) : key_(key), found_(found) {}

    bool parse_object_start() {
        found_.emplace();
        return true;
    }

    template <class Iterator>
    bool parse_object_item(picojson::input<Iterator>& input, const std::string& key) {
        if (key != key_) {
            SkippingContext rest(kDepthsBelow);
            return picojson::_parse(rest, input);
        }
        picojson::value value;
        BoundedContext item(&value, kDepthsBelow);
        if (!picojson::_parse(item, input))
            return false;
        found_ = value.is<std::string>() ? value.get<std::string>() : std::string();
        return true;
    }

    bool parse_object_stop() { return true; }

private:
    static constexpr size_t kDepthsBelow = picojson::DEFAULT_MAX_DEPTHS - 1;  // the outermost object is one

    std::string_view key_;
    std::optional<std::string>& found_;
};

// Where the input is. The text there is not told: it may be a password.
template <class Iterator>
std::string place(std::string_view text, const picojson::input<Iterator>& input) {
    const std::string_view before(text.data(), static_cast<size_t>(input.cur() - text.data()));
    const size_t line_start = before.rfind('\n') + 1;
    return "syntax error in line " + std::to_string(std::ranges::count(before, '\n') + 1) + ", column " +
           std::to_string(before.size() - line_start + 1);
}

}  // namespace

std::optional<std::string> find_text(std::string_view text, std::string_view key) {
    std::optional<std::string> found;
    MemberContext context(key, found);
    picojson::input input(text.data(), text.data() + text.size());
    return picojson::_parse(context, input) ? std::move(found) : std::nullopt;
}

bool try_parse(std::string_view text, picojson::value& value, std::string* fault) {
    BoundedContext context(&value);
    picojson::input input(text.data(), text.data() + text.size());
    if (picojson::_parse(context, input))
        return true;
    std::string error = place(text, input);
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
