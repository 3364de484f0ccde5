// Imported functions that a test answers itself, or looks at.
#pragma once

#include "support/import_patch.h"

// For an ImportPatch: a function that leaves a last error, 0 for none, and answers.
template <auto Answer, DWORD Error = ERROR_SUCCESS>
[[nodiscard]] void* always() {
    return reinterpret_cast<void*>(+[] {
        if (Error != ERROR_SUCCESS)
            SetLastError(Error);
        return Answer;
    });
}

// Shows each call of a function to `look`, which answers it or, with nothing, lets it go on. One at a time of
// each type of function.
template <class Function>
class Intercept;
template <class Result, class... Arguments>
class Intercept<Result(Arguments...)> {
public:
    using Look = std::function<std::optional<Result>(Arguments...)>;
    Intercept(std::string_view function, Look look)
        : patch_((look_ = std::move(look), function), reinterpret_cast<void*>(&on_call)) {
        original = reinterpret_cast<Result (*)(Arguments...)>(patch_.original());
    }

    static inline Result (*original)(Arguments...);

private:
    static Result WINAPI on_call(Arguments... arguments) {
        const auto answer = look_(arguments...);
        return answer ? *answer : original(arguments...);
    }

    static inline Look look_;
    ImportPatch patch_;
};
