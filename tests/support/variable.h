// An environment variable of the process for the time of a scope.
#pragma once

#include "common/qk/text.h"
#include "support/prelude.h"

class Variable {
public:
    // An empty value takes the variable away.
    Variable(const wchar_t* name, const std::wstring& value)
        : name_(name), before_(qk::grow_until_it_fits([name](wchar_t* buffer, DWORD units) {
              return GetEnvironmentVariableW(name, buffer, units);
          })) {
        set(value);
    }
    ~Variable() { set(before_); }
    Variable(Variable&&) = delete;

private:
    void set(const std::wstring& value) const {
        SetEnvironmentVariableW(name_, value.empty() ? nullptr : value.c_str());
    }

    const wchar_t* name_;
    std::wstring before_;
};
