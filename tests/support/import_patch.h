// Replaces a function that the test program (or another module) imports, so that a call of the code under
// test fails on demand or is counted.
#pragma once

#include "support/prelude.h"

// Some linkers lay the tables of imports anywhere, so that none of their entries is read in place.
template <class T>
T read_at(const BYTE* place) {
    T value;
    std::memcpy(&value, place, sizeof value);
    return value;
}

// Shows every function that a module imports by name: visit(name, slot), whose slot holds its address. Ends
// when `visit` returns true.
template <class Visit>
void for_each_import(HMODULE module, Visit visit) {
    auto* base = reinterpret_cast<BYTE*>(module);
    const auto headers = read_at<IMAGE_NT_HEADERS>(base + read_at<IMAGE_DOS_HEADER>(base).e_lfanew);
    const BYTE* row =
        base + headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (;; row += sizeof(IMAGE_IMPORT_DESCRIPTOR)) {
        const auto library = read_at<IMAGE_IMPORT_DESCRIPTOR>(row);
        if (!library.Name)
            return;
        BYTE* slot = base + library.FirstThunk;
        const BYTE* names = base + library.OriginalFirstThunk;
        for (; const auto name = read_at<ULONGLONG>(names); slot += sizeof(void*), names += sizeof(void*)) {
            const auto* text = base + name + offsetof(IMAGE_IMPORT_BY_NAME, Name);
            if (!IMAGE_SNAP_BY_ORDINAL(name) && visit(reinterpret_cast<const char*>(text), slot))
                return;
        }
    }
}

// Puts a function into a slot; the one that was there.
inline void* exchange_import(BYTE* slot, void* function) {
    DWORD protection = 0;
    VirtualProtect(slot, sizeof(void*), PAGE_READWRITE, &protection);
    void* before = read_at<void*>(slot);
    std::memcpy(slot, &function, sizeof function);
    VirtualProtect(slot, sizeof(void*), protection, &protection);
    return before;
}

class ImportPatch {
public:
    // Every call of `function` (a name of any imported library) goes to `replacement`, an address or a lambda
    // without captures, while this object lives. Throws where the module does not import it.
    template <class Replacement>
    ImportPatch(std::string_view function, Replacement replacement, HMODULE module = nullptr) {
        for_each_import(module ? module : GetModuleHandleW(nullptr), [&](const char* name, BYTE* slot) {
            return function == name && (slot_ = slot) != nullptr;
        });
        if (!slot_)
            throw std::invalid_argument("no import: " + std::string(function));
        original_ = exchange_import(slot_, reinterpret_cast<void*>(+replacement));
    }
    ~ImportPatch() { exchange_import(slot_, original_); }
    ImportPatch(ImportPatch&&) = delete;

    template <class Function = void>
    [[nodiscard]] Function* original() const {
        return reinterpret_cast<Function*>(original_);
    }

private:
    BYTE* slot_ = nullptr;
    void* original_ = nullptr;
};

// The same with what it stands for at hand: act(original, arguments of the call...). One for each kind of
// function (CallHook<decltype(CreateFileW)>) at a time.
template <class Function>
class CallHook;
template <class Result, class... Arguments>
class CallHook<Result(Arguments...)> {
public:
    using Original = Result (*)(Arguments...);

    CallHook(std::string_view function, std::function<Result(Original, Arguments...)> act)
        : patch_((act_ = std::move(act), function),
                 [](Arguments... arguments) { return act_(original_, arguments...); }) {
        original_ = patch_.template original<Result(Arguments...)>();
    }

private:
    static inline Original original_ = nullptr;
    static inline std::function<Result(Original, Arguments...)> act_;
    ImportPatch patch_;
};
