#include "companions/render/scratch_folder.h"

#include <windows.h>

#include <sddl.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <vector>

#include "common/qk/process.h"
#include "common/qk/text.h"
#include "companions/leftovers.h"
#include "companions/system_texts.h"

namespace companions::render {

namespace {

std::wstring user_sid() {
    qk::HandleObj token;
    DWORD size = 0;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, token.put()))
        return {};
    static_cast<void>(GetTokenInformation(token.get(), TokenUser, nullptr, 0, &size));
    std::vector<std::byte> user(size);
    if (size < sizeof(TOKEN_USER) || !GetTokenInformation(token.get(), TokenUser, user.data(), size, &size))
        return {};
    wchar_t* text = nullptr;
    if (!ConvertSidToStringSidW(reinterpret_cast<TOKEN_USER*>(user.data())->User.Sid, &text))
        return {};
    const qk::LocalMemory owner(text);
    return text;
}

bool make_private_folder(const std::wstring& path) {
    const std::wstring sid = user_sid();
    const std::wstring rules = L"D:P(A;OICI;FA;;;" + sid + L")";
    qk::LocalMemory descriptor;
    if (sid.empty() || !ConvertStringSecurityDescriptorToSecurityDescriptorW(rules.c_str(), SDDL_REVISION_1,
                                                                             descriptor.put(), nullptr))
        return false;  // others could read the passwords in it
    SECURITY_ATTRIBUTES attributes = {sizeof attributes, descriptor.get(), FALSE};
    return CreateDirectoryW(path.c_str(), &attributes);
}

constexpr wchar_t kPrefix[] = L"zr_render_";

// Removes what runs have left that were ended from outside: passwords may lie in it.
void remove_dead(const std::wstring& root) {
    delete_leftovers(
        root + kPrefix + L'*',
        [](std::wstring_view name) {
            const auto process = find_process(name, kPrefix, L'_');
            return process && qk::is_gone(*process);
        },
        [](std::wstring_view name) {
            constexpr std::wstring_view kOfRuns[] = {kOptionsFile,  kPasswordFile, kJobFile,   kChangesFile,
                                                     kMetadataFile, kBareFile,     kSpoolFile, kProfileFile,
                                                     kPrologueFile, kEpilogueFile, kLogFile,   kPidFile};
            return name.starts_with(kEnginesOwn) || std::ranges::find(kOfRuns, name) != std::end(kOfRuns);
        });
}

}  // namespace

ScratchFolder::ScratchFolder() {
    const std::wstring root = temporary_folder();
    remove_dead(root);
    // A crashed run may have left a folder under this process's id.
    for (unsigned attempt = 0; attempt < 100; ++attempt) {
        std::wstring path = qk::format(L"%s%s%lu_%u", root.c_str(), kPrefix, GetCurrentProcessId(), attempt);
        if (make_private_folder(path)) {
            path_ = std::move(path);
            return;
        }
        if (GetLastError() != ERROR_ALREADY_EXISTS)
            return;
    }
}

ScratchFolder::~ScratchFolder() {
    if (path_.empty())
        return;
    try {
        delete_leftovers(path_ + L"\\*", [](std::wstring_view) { return true; });
    } catch (...) {  // no memory: the files stay
    }
    RemoveDirectoryW(path_.c_str());
}

std::wstring ScratchFolder::write(std::wstring_view name, std::string_view bytes) const {
    ScratchFile file(*this, name);
    file.add(bytes);
    return file.finish();
}

ScratchFile::ScratchFile(const ScratchFolder& folder, std::wstring_view name)
    : path_(folder.path() + L'\\' + std::wstring(name)),
      file_(
          CreateFileW(path_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr)),
      error_(file_ ? ERROR_SUCCESS : GetLastError()) {}

void ScratchFile::add(std::string_view bytes) {
    constexpr size_t kMostWaiting = 1 << 16;
    if (waiting_.size() + bytes.size() > kMostWaiting) {
        put(waiting_);
        waiting_.clear();
    }
    if (bytes.size() > kMostWaiting)
        put(bytes);
    else
        waiting_ += bytes;
}

void ScratchFile::put(std::string_view bytes) {
    constexpr size_t kMostAtOnce = 1 << 30;
    while (error_ == ERROR_SUCCESS && !bytes.empty()) {
        const auto size = static_cast<DWORD>(std::min(bytes.size(), kMostAtOnce));
        DWORD written = 0;
        if (!WriteFile(file_.get(), bytes.data(), size, &written, nullptr))
            error_ = GetLastError();
        else if (written != size)  // which is no error to every system
            error_ = ERROR_DISK_FULL;
        bytes.remove_prefix(size);
    }
}

std::wstring ScratchFile::finish() {
    put(waiting_);
    waiting_.clear();
    const bool made = static_cast<bool>(file_);
    file_.reset();
    if (error_ == ERROR_SUCCESS)
        return path_;
    if (made)
        DeleteFileW(path_.c_str());
    SetLastError(error_);
    return {};
}

}  // namespace companions::render
