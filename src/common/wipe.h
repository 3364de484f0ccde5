// Memory in which a password stood.
#pragma once

#include <windows.h>

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

}  // namespace qk
