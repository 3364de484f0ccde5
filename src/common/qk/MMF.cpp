#include "common/qk/MMF.h"

#include <sddl.h>

#include <cstddef>
#include <cstring>
#include <string>

#include "common/qk/memory_probe.h"
#include "common/qk/trace.h"

bool qk::let_everybody_in(PSECURITY_DESCRIPTOR descriptor) noexcept {
    return InitializeSecurityDescriptor(descriptor, SECURITY_DESCRIPTOR_REVISION) &&
           SetSecurityDescriptorDacl(descriptor, TRUE, nullptr, FALSE);
}

namespace qk::mmf {

namespace {

constexpr wchar_t kLowIntegrity[] = L"S:(ML;;NW;;;LW)";

// The label that admits low-integrity writers comes on top.
void fill_descriptor(std::vector<std::byte>& descriptor) {
    descriptor.resize(SECURITY_DESCRIPTOR_MIN_LENGTH);
    if (!let_everybody_in(descriptor.data()))
        trace::debug_output(L"failed:SecurityDescriptr@MMF::init");
}

// The label's list lies inside the returned memory, which must outlive the use of the descriptor.
LocalMemory add_low_integrity_label(std::vector<std::byte>& descriptor) noexcept {
    LocalMemory converted;
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(kLowIntegrity, SDDL_REVISION_1, converted.put(),
                                                              nullptr))
        return {};
    BOOL present = FALSE;
    BOOL defaulted = FALSE;
    PACL list = nullptr;
    if (GetSecurityDescriptorSacl(converted.get(), &present, &list, &defaulted))
        SetSecurityDescriptorSacl(descriptor.data(), present, list, FALSE);
    return converted;
}

void create(Block& block, const wchar_t* name, size_t size) {
    fill_descriptor(block.descriptor);
    const LocalMemory label = add_low_integrity_label(block.descriptor);
    SECURITY_ATTRIBUTES attributes = {sizeof attributes, block.descriptor.data(), TRUE};
    SetLastError(0);
    block.mapping.reset(CreateFileMappingW(INVALID_HANDLE_VALUE, &attributes, PAGE_READWRITE, 0,
                                           static_cast<DWORD>(size), name));
    const DWORD error = GetLastError();
    if (error == ERROR_SUCCESS || error == ERROR_ALREADY_EXISTS) {
        block.created = error == ERROR_SUCCESS;
        return;
    }
    trace::debug_output(L"failed to create mmf. gle=%u", error);
    block.mapping.reset();
}

void map(Block& block, size_t size) noexcept {
    if (!block.mapping) {
        trace::debug_output(L"no mmf");
        return;
    }
    block.view.reset(MapViewOfFile(block.mapping.get(), FILE_MAP_READ | FILE_MAP_WRITE, 0, 0, size));
    if (!block.view) {
        trace::debug_output(L"Error@qk::MMF MapViewOfFile:gle=%u", GetLastError());
    } else if (!is_readable(block.view.get(), size) || !is_writable(block.view.get(), size)) {
        trace::debug_output(L"Error@qk::MMF no memory behind the view");
        block.view.reset();
    } else {
        if (block.created)
            std::memset(block.view.get(), 0, size);
        return;
    }
    block.created = false;
    block.mapping.reset();
}

}  // namespace

Block open_or_create(std::wstring_view name, size_t size) noexcept {
    TRACE("MMF::init");
    try {
        Block block;
        create(block, std::wstring(name).c_str(), size);
        map(block, size);
        return block;
    } catch (...) {  // no memory for the name or the descriptor: a block that is not there
        trace::debug_output(L"no mmf");
        return {};
    }
}

Block open_existing(std::wstring_view name, size_t size) noexcept {
    TRACE("MMF::open");
    try {
        Block block;
        block.mapping.reset(
            OpenFileMappingW(FILE_MAP_READ | FILE_MAP_WRITE, FALSE, std::wstring(name).c_str()));
        if (block.mapping)
            map(block, size);
        return block;
    } catch (...) {
        return {};
    }
}

}  // namespace qk::mmf
