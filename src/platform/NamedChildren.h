#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace pipespec::platform {

// The own members of one owner, in order, with names unique among them and a
// hashed look-up by name.
template <class T>
class NamedChildren {
public:
    const std::vector<std::shared_ptr<T>>& items() const { return items_; }
    std::size_t size() const { return items_.size(); }

    std::shared_ptr<T> find(std::string_view name) const
    {
        const auto it = index_.find(name);
        return it == index_.end() ? nullptr : it->second;
    }
    bool contains(std::string_view name) const { return index_.find(name) != index_.end(); }

    // Position of a member, or items().size() if it is not one.
    std::size_t position(const T& member) const
    {
        for (std::size_t i = 0; i < items_.size(); ++i)
            if (items_[i].get() == &member) return i;
        return items_.size();
    }

    // At a position past the end, the member goes last.
    void insert(std::size_t at, std::shared_ptr<T> member)
    {
        index_.emplace(member->Name(), member);
        items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(std::min(at, items_.size())), std::move(member));
    }
    void append(std::shared_ptr<T> member) { insert(items_.size(), std::move(member)); }

    std::shared_ptr<T> erase(std::size_t at)
    {
        auto member = items_[at];
        index_.erase(member->Name());
        items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(at));
        return member;
    }

    // Keeps the index right when a member is renamed.
    void rename(const std::string& from, const std::string& to)
    {
        const auto it = index_.find(from);
        if (it == index_.end()) return;
        auto member = it->second;
        index_.erase(it);
        index_.emplace(to, std::move(member));
    }

private:
    std::vector<std::shared_ptr<T>> items_;
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view s) const noexcept { return std::hash<std::string_view>{}(s); }
    };
    std::unordered_map<std::string, std::shared_ptr<T>, Hash, std::equal_to<>> index_;
};

}  // namespace pipespec::platform
