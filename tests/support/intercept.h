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
    Intercept(std::string_view function, std::function<std::optional<Result>(Arguments...)> look)
        : hook_(function, [look](auto original, Arguments... arguments) {
              const auto answer = look(arguments...);
              return answer ? *answer : original(arguments...);
          }) {}

private:
    CallHook<Result(Arguments...)> hook_;
};
