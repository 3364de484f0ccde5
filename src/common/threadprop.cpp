#include "common/threadprop.h"

#include <algorithm>
#include <list>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>

#include "common/qk/lock.h"
#include "common/qk/trace.h"

namespace {

struct Entry {
    std::wstring key;
    ULONG_PTR value;
    DWORD thread;
};

struct Store {
    qk::Lock lock;
    std::list<Entry> entries;

    auto find(std::wstring_view key) {
        return std::ranges::find_if(entries, [key, thread = GetCurrentThreadId()](const Entry& entry) {
            return entry.thread == thread && entry.key == key;
        });
    }
};

Store store;

}  // namespace

ULONG_PTR SetThreadProp(std::wstring_view key, ULONG_PTR value) {
    TRACE("SetThreadProp");
    const std::scoped_lock hold(store.lock);
    if (store.entries.size() == store.entries.max_size())
        throw std::length_error("list<T> too long");
    store.entries.push_back({std::wstring(key), value, GetCurrentThreadId()});
    return 0;
}

void GetThreadProp(std::wstring_view key, ULONG_PTR& value) {
    TRACE("GetThreadProp");
    const std::scoped_lock hold(store.lock);
    const auto entry = store.find(key);
    value = entry == store.entries.end() ? 0 : entry->value;
}

std::optional<ULONG_PTR> ExchangeThreadProp(std::wstring_view key, ULONG_PTR value) {
    TRACE("ExchangeThreadProp");
    const std::scoped_lock hold(store.lock);
    const auto entry = store.find(key);
    if (entry == store.entries.end())
        return std::nullopt;
    return std::exchange(entry->value, value);
}

ULONG_PTR FreeThreadProp(std::wstring_view key) {
    TRACE("FreeThreadProp");
    const std::scoped_lock hold(store.lock);
    const auto entry = store.find(key);
    if (entry == store.entries.end())
        return 0;
    const ULONG_PTR value = entry->value;
    store.entries.erase(entry);
    return value;
}

void FinalizeThreadProp(bool process_ends) {
    TRACE("FinalizeThreadProp");
    if (const auto hold = qk::lock_at_detach(store.lock, process_ends))
        store.entries.clear();
}
