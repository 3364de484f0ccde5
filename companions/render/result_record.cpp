#include "companions/render/result_record.h"

#include <windows.h>

#include <cstdint>

#include "common/qk/handle.h"
#include "common/qk/text.h"

namespace companions::render {

namespace {

class Placer {
public:
    explicit Placer(const std::optional<TextArena>& arena) {
        if (arena) {
            address_ = arena->address;
            room_ = arena->bytes / sizeof(wchar_t);
        }
    }

    void place(qk::MsWString& field, std::wstring_view text, bool may_cut) {
        if (text.size() <= qk::MsWString::kInPlace) {
            field.set_in_place(text);
            return;
        }
        const size_t free = room_ - texts_.size();
        if (may_cut && free > 0)
            text = qk::cut(text, free - 1);
        if (text.size() >= free || text.size() <= qk::MsWString::kInPlace)
            return;  // an all-zero field is an empty text
        field.address = reinterpret_cast<wchar_t*>(address_ + texts_.size() * sizeof(wchar_t));
        field.length = field.capacity = text.size();
        texts_.insert(texts_.end(), text.begin(), text.end());
        texts_.push_back(L'\0');
    }

    [[nodiscard]] std::vector<wchar_t> take_texts() { return std::move(texts_); }

private:
    uint64_t address_ = 0;
    size_t room_ = 0;  // in units
    std::vector<wchar_t> texts_;
};

bool try_write(const TextArena& arena, std::span<const wchar_t> texts) noexcept {
    if (texts.empty())
        return true;
    const qk::HandleObj process(OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_WRITE, FALSE, arena.process));
    SIZE_T written = 0;
    return process &&
           WriteProcessMemory(process.get(), reinterpret_cast<void*>(arena.address), texts.data(),
                              texts.size_bytes(), &written) &&
           written == texts.size_bytes();
}

}  // namespace

FilledRecord fill_record(const Result& result, const std::optional<TextArena>& arena) {
    FilledRecord filled;
    filled.record.error_code = static_cast<uint32_t>(result.code);
    filled.record.win32_error = result.win32_error;
    Placer placer(arena);
    placer.place(filled.record.caption, result.caption, false);
    placer.place(filled.record.pdf_file_name, result.pdf_file_name, false);
    placer.place(filled.record.message, result.message, true);
    filled.texts = placer.take_texts();
    return filled;
}

bool publish(const Result& result, const std::optional<TextArena>& arena, ZRTKPrintInfo& record) {
    const FilledRecord filled = fill_record(result, arena);
    const bool written = !arena || try_write(*arena, filled.texts);
    const qk::LastErrorKeeper keep;
    record = written ? filled.record : fill_record(result, std::nullopt).record;
    return written;
}

}  // namespace companions::render
