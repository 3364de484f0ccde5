// Replaces a function that the test program (or another module) imports, so that a call of the code under
// test fails on demand or is counted.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstring>
#include <string_view>

class ImportPatch {
public:
    // Every call of `function` (a name of any imported library) goes to `replacement` while this object
    // lives.
    ImportPatch(std::string_view function, void* replacement, HMODULE module = nullptr)
        : slot_(find(function, module ? module : GetModuleHandleW(nullptr))) {
        if (slot_)
            original_ = exchange(replacement);
    }
    ~ImportPatch() {
        if (slot_)
            exchange(original_);
    }
    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;

    [[nodiscard]] bool found() const { return slot_ != nullptr; }
    [[nodiscard]] void* original() const { return original_; }

private:
    // Some linkers lay the tables of imports anywhere, so that none of their entries is read in place.
    template <class T>
    static T at(const BYTE* place) {
        T value;
        std::memcpy(&value, place, sizeof value);
        return value;
    }

    static BYTE* find(std::string_view function, HMODULE module) {
        auto* base = reinterpret_cast<BYTE*>(module);
        const auto headers = at<IMAGE_NT_HEADERS>(base + at<IMAGE_DOS_HEADER>(base).e_lfanew);
        const BYTE* row =
            base + headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
        for (;; row += sizeof(IMAGE_IMPORT_DESCRIPTOR)) {
            const auto library = at<IMAGE_IMPORT_DESCRIPTOR>(row);
            if (!library.Name)
                return nullptr;
            const BYTE* names = base + library.OriginalFirstThunk;
            for (BYTE* slot = base + library.FirstThunk;; slot += sizeof(void*), names += sizeof(void*)) {
                const auto name = at<ULONGLONG>(names);
                if (name == 0)
                    break;
                const auto* text = base + name + offsetof(IMAGE_IMPORT_BY_NAME, Name);
                if (!IMAGE_SNAP_BY_ORDINAL(name) && function == reinterpret_cast<const char*>(text))
                    return slot;
            }
        }
    }

    void* exchange(void* function) {
        DWORD protection = 0;
        VirtualProtect(slot_, sizeof(void*), PAGE_READWRITE, &protection);
        void* before = at<void*>(slot_);
        std::memcpy(slot_, &function, sizeof function);
        VirtualProtect(slot_, sizeof(void*), protection, &protection);
        return before;
    }

    BYTE* slot_;
    void* original_ = nullptr;
};
