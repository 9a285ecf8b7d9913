#pragma once

#include <cstddef>
#include <functional>
#include <list>
#include <unordered_map>
#include <utility>

namespace tovi {

/// Keeps values up to a number of entries and a sum of costs; what was not used for the longest
/// time goes first. Used by one thread at a time.
template <typename Key, typename Value, typename Hash = std::hash<Key>>
class LruCache {
  public:
    LruCache(std::size_t maximumEntries, std::size_t maximumCost)
        : maximumEntries_(maximumEntries), maximumCost_(maximumCost) {}

    /// Null if there is none; else it lives until the next change of the cache.
    const Value* find(const Key& key) {
        const auto found = index_.find(key);
        if (found == index_.end()) return nullptr;
        entries_.splice(entries_.begin(), entries_, found->second);
        return &found->second->value;
    }

    /// Replaces what has the key. A value that costs more than the whole cache is not kept.
    void insert(const Key& key, Value value, std::size_t cost) {
        erase(key);
        if (cost > maximumCost_) return;
        entries_.push_front({key, std::move(value), cost});
        index_.emplace(key, entries_.begin());
        cost_ += cost;
        while (entries_.size() > maximumEntries_ || cost_ > maximumCost_)
            erase(Key(entries_.back().key));
    }

    void erase(const Key& key) {
        const auto found = index_.find(key);
        if (found == index_.end()) return;
        cost_ -= found->second->cost;
        entries_.erase(found->second);
        index_.erase(found);
    }

  private:
    struct Entry {
        Key key;
        Value value;
        std::size_t cost;
    };

    std::size_t maximumEntries_;
    std::size_t maximumCost_;
    std::size_t cost_ = 0;
    std::list<Entry> entries_; // the latest used first
    std::unordered_map<Key, typename std::list<Entry>::iterator, Hash> index_;
};

} // namespace tovi
