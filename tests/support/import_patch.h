// Replaces a function that the test program (or another module) imports, so that a call of the code under
// test fails on demand or is counted.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstring>
#include <string_view>

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
        const BYTE* names = base + library.OriginalFirstThunk;
        for (BYTE* slot = base + library.FirstThunk;; slot += sizeof(void*), names += sizeof(void*)) {
            const auto name = read_at<ULONGLONG>(names);
            if (name == 0)
                break;
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
    // Every call of `function` (a name of any imported library) goes to `replacement` while this object
    // lives.
    ImportPatch(std::string_view function, void* replacement, HMODULE module = nullptr) {
        for_each_import(module ? module : GetModuleHandleW(nullptr), [&](const char* name, BYTE* slot) {
            return function == name && (slot_ = slot) != nullptr;
        });
        if (slot_)
            original_ = exchange_import(slot_, replacement);
    }
    ~ImportPatch() {
        if (slot_)
            exchange_import(slot_, original_);
    }
    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;

    [[nodiscard]] bool found() const { return slot_ != nullptr; }
    [[nodiscard]] void* original() const { return original_; }

private:
    BYTE* slot_ = nullptr;
    void* original_ = nullptr;
};
