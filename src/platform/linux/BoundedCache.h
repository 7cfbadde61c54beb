#pragma once

#include <cstddef>
#include <list>
#include <utility>

namespace norvane {

// What was made with some effort, kept for as long as it is asked for again: never more than the bounds, the
// longest unused going first. There are so few entries that they are simply looked through.
template <typename Key, typename Value>
class BoundedCache {
 public:
    BoundedCache(std::size_t mostEntries, std::size_t mostBytes)
        : mostEntries_(mostEntries), mostBytes_(mostBytes) {}

    // Null where it is not kept. Valid until the next `keep`, `dropIf` or `clear`.
    const Value* find(const Key& key) {
        for (auto entry = entries_.begin(); entry != entries_.end(); ++entry) {
            if (!(entry->key == key)) continue;
            entries_.splice(entries_.begin(), entries_, entry);
            return &entries_.front().value;
        }
        return nullptr;
    }

    // What is larger than all that may be kept is not kept.
    void keep(Key key, Value value, std::size_t bytes) {
        if (bytes > mostBytes_) return;
        entries_.push_front({std::move(key), std::move(value), bytes});
        bytes_ += bytes;
        while (entries_.size() > mostEntries_ || bytes_ > mostBytes_) {
            bytes_ -= entries_.back().bytes;
            entries_.pop_back();
        }
    }

    template <typename Predicate>
    void dropIf(Predicate predicate) {
        entries_.remove_if([&](const Entry& entry) {
            const bool goes = predicate(entry.key);
            if (goes) bytes_ -= entry.bytes;
            return goes;
        });
    }

    void clear() {
        entries_.clear();
        bytes_ = 0;
    }

    std::size_t count() const { return entries_.size(); }
    std::size_t bytes() const { return bytes_; }
    std::size_t mostEntries() const { return mostEntries_; }
    std::size_t mostBytes() const { return mostBytes_; }

 private:
    struct Entry {
        Key key;
        Value value;
        std::size_t bytes = 0;
    };

    std::size_t mostEntries_;
    std::size_t mostBytes_;
    std::list<Entry> entries_;  // the latest used first
    std::size_t bytes_ = 0;
};

}  // namespace norvane
