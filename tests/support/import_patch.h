// Replaces a function that the test program (or another module) imports, so that a call of the code under
// test fails on demand or is counted.
#pragma once

#include <windows.h>

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
    static void** find(std::string_view function, HMODULE module) {
        auto* base = reinterpret_cast<BYTE*>(module);
        const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
        const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
        const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
        auto* library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
        for (; library->Name; ++library) {
            auto* names = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
            auto* slots = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->FirstThunk);
            for (; names->u1.AddressOfData; ++names, ++slots) {
                if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal))
                    continue;
                const auto* entry =
                    reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
                if (function == reinterpret_cast<const char*>(entry->Name))
                    return reinterpret_cast<void**>(&slots->u1.Function);
            }
        }
        return nullptr;
    }

    void* exchange(void* function) {
        DWORD protection = 0;
        VirtualProtect(slot_, sizeof(void*), PAGE_READWRITE, &protection);
        void* before = *slot_;
        *slot_ = function;
        VirtualProtect(slot_, sizeof(void*), protection, &protection);
        return before;
    }

    void** slot_;
    void* original_ = nullptr;
};
