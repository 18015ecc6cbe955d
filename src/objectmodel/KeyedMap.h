#pragma once

#include "objectmodel/Errors.h"
#include "objectmodel/TextHash.h"

#include <list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace pipespec {

// Ordered map with text keys (binary compare): items keep the order in which
// they were added, adding a key twice is an error, look-ups are hashed.
template <class T>
class KeyedMap {
public:
    using Entry = std::pair<std::string, T>;

    bool Exists(std::string_view key) const { return index_.find(key) != index_.end(); }

    void Add(std::string_view key, T value)
    {
        if (Exists(key))
            throw PlatformError(err::DuplicateKey,
                                "Key is already associated with an element of this collection: " + std::string(key));
        entries_.emplace_back(std::string(key), std::move(value));
        auto it = std::prev(entries_.end());
        index_.emplace(std::string_view(it->first), it);
    }

    void Remove(std::string_view key)
    {
        const auto found = index_.find(key);
        if (found == index_.end()) throw PlatformError(err::SubscriptOutOfRange, "Key not found: " + std::string(key));
        const auto it = found->second;
        index_.erase(found);
        entries_.erase(it);
    }

    const T& Item(std::string_view key) const
    {
        const auto found = index_.find(key);
        if (found == index_.end()) throw PlatformError(err::SubscriptOutOfRange, "Key not found: " + std::string(key));
        return found->second->second;
    }

    int Count() const { return static_cast<int>(entries_.size()); }

    std::vector<std::string> Keys() const
    {
        std::vector<std::string> keys;
        keys.reserve(entries_.size());
        for (const auto& e : entries_) keys.push_back(e.first);
        return keys;
    }

    std::vector<T> Items() const
    {
        std::vector<T> items;
        items.reserve(entries_.size());
        for (const auto& e : entries_) items.push_back(e.second);
        return items;
    }

    auto begin() const { return entries_.begin(); }
    auto end() const { return entries_.end(); }

    KeyedMap() = default;
    KeyedMap(const KeyedMap& other)
    {
        for (const auto& e : other.entries_) Add(e.first, e.second);
    }
    KeyedMap& operator=(const KeyedMap& other)
    {
        if (this != &other) {
            KeyedMap copy(other);
            swap(copy);
        }
        return *this;
    }
    KeyedMap(KeyedMap&&) noexcept = default;
    KeyedMap& operator=(KeyedMap&&) noexcept = default;
    void swap(KeyedMap& other) noexcept
    {
        entries_.swap(other.entries_);
        index_.swap(other.index_);
    }

private:
    // The index keys view the strings held by the list nodes, which never move.
    std::list<Entry> entries_;
    std::unordered_map<std::string_view, typename std::list<Entry>::iterator, TextHash, std::equal_to<>> index_;
};

}  // namespace pipespec
