// Memory in which a password stood.
#pragma once

#include <windows.h>

#include <string>
#include <utility>

namespace qk {

// Overwrites the whole memory of a text (std::string or std::wstring) and empties it.
template <class Text>
void wipe(Text& text) noexcept {
    text.resize(text.capacity());  // what stood behind its end too; takes no new memory
    SecureZeroMemory(text.data(), text.size() * sizeof(typename Text::value_type));
    text.clear();
}

// Does so as it goes out of scope. The text has to live longer.
template <class Text>
class WipedAtEnd {
public:
    explicit WipedAtEnd(Text& text) noexcept : text_(text) {}
    ~WipedAtEnd() { wipe(text_); }
    WipedAtEnd(const WipedAtEnd&) = delete;
    WipedAtEnd& operator=(const WipedAtEnd&) = delete;

private:
    Text& text_;
};

// A text of its own that nobody reads from freed memory. Move only.
class SecretText {
public:
    SecretText() noexcept = default;
    explicit SecretText(std::wstring text) noexcept : text_(std::move(text)) {}
    SecretText(SecretText&& other) noexcept { text_.swap(other.text_); }
    SecretText& operator=(SecretText&& other) noexcept {
        text_.swap(other.text_);
        return *this;
    }
    ~SecretText() { wipe(text_); }

    [[nodiscard]] const std::wstring& get() const noexcept { return text_; }

private:
    std::wstring text_;
};

}  // namespace qk
