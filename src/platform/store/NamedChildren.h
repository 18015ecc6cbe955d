#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string_view>
#include <vector>

namespace pipespec::platform {

// The own members of one owner, in order, with names unique among them.
// A few members are found by a scan. From kIndexed members on, an index finds
// one by name in constant time: an open-addressed table of positions, four
// bytes a slot, as a chapter of a hundred attributes is the common owner and
// every attribute is meant to cost little memory. Positions move when a
// member is put in or taken out before others; the index follows them in one
// pass over its slots, without hashing the names again.
template <class T>
class NamedChildren {
public:
    const std::vector<std::shared_ptr<T>>& items() const { return items_; }
    std::size_t size() const { return items_.size(); }

    std::shared_ptr<T> find(std::string_view name) const
    {
        const auto at = positionOf(name);
        return at < items_.size() ? items_[at] : nullptr;
    }
    bool contains(std::string_view name) const { return positionOf(name) < items_.size(); }

    // Position of a member, or items().size() if it is not one. Found by its
    // name where that is indexed, else (also for a member renamed behind the
    // list's back) by a scan.
    std::size_t position(const T& member) const
    {
        if (!slots_.empty()) {
            const auto at = positionOf(member.nameView());
            if (at < items_.size() && items_[at].get() == &member) return at;
        }
        for (std::size_t i = 0; i < items_.size(); ++i)
            if (items_[i].get() == &member) return i;
        return items_.size();
    }

    // At a position past the end, the member goes last.
    void insert(std::size_t at, std::shared_ptr<T> member)
    {
        at = std::min(at, items_.size());
        const auto name = member->nameView();
        items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(at), std::move(member));
        if (slots_.empty()) {
            if (items_.size() >= kIndexed) rebuild();
            return;
        }
        if (at + 1 < items_.size()) shiftPositions(at, true);
        if (2 * items_.size() > slots_.size())
            rebuild();
        else
            place(name, static_cast<std::uint32_t>(at));
    }
    void append(std::shared_ptr<T> member) { insert(items_.size(), std::move(member)); }

    std::shared_ptr<T> erase(std::size_t at)
    {
        auto member = items_[at];
        if (!slots_.empty()) {
            unplace(slotOf(member->nameView()));
            if (at + 1 < items_.size()) shiftPositions(at + 1, false);
        }
        items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(at));
        return member;
    }

    // Keeps the index right when a member is renamed; called before the
    // member takes its new name.
    void rename(std::string_view from, std::string_view to)
    {
        if (slots_.empty()) return;
        const auto slot = slotOf(from);
        if (slots_[slot] == kFree) return;
        const auto at = slots_[slot];
        unplace(slot);
        place(to, at);
    }

private:
    static constexpr std::size_t kIndexed = 9;
    static constexpr std::uint32_t kFree = std::numeric_limits<std::uint32_t>::max();

    static std::size_t hashOf(std::string_view name) { return std::hash<std::string_view>{}(name); }
    std::size_t mask() const { return slots_.size() - 1; }

    // The slot that holds the member of that name, or the free slot where it would go.
    std::size_t slotOf(std::string_view name) const
    {
        for (auto slot = hashOf(name) & mask();; slot = (slot + 1) & mask())
            if (slots_[slot] == kFree || items_[slots_[slot]]->nameView() == name) return slot;
    }

    std::size_t positionOf(std::string_view name) const
    {
        if (slots_.empty()) {
            const auto found = std::find_if(items_.begin(), items_.end(),
                                            [name](const auto& item) { return item->nameView() == name; });
            return static_cast<std::size_t>(found - items_.begin());
        }
        const auto at = slots_[slotOf(name)];
        return at == kFree ? items_.size() : at;
    }

    void place(std::string_view name, std::uint32_t at) { slots_[slotOf(name)] = at; }

    // Frees a slot and moves later members of the same probe run back, so
    // that every member stays reachable from the slot its name hashes to.
    void unplace(std::size_t hole)
    {
        slots_[hole] = kFree;
        for (auto slot = (hole + 1) & mask(); slots_[slot] != kFree; slot = (slot + 1) & mask()) {
            const auto home = hashOf(items_[slots_[slot]]->nameView()) & mask();
            // Moves back unless its home lies cyclically in (hole, slot].
            if (((slot - home) & mask()) >= ((slot - hole) & mask())) {
                slots_[hole] = slots_[slot];
                slots_[slot] = kFree;
                hole = slot;
            }
        }
    }

    // The members from `first` on moved one place up (one was put in before
    // them) or down (one before them was taken out).
    void shiftPositions(std::size_t first, bool up)
    {
        for (auto& slot : slots_)
            if (slot != kFree && slot >= first) slot = up ? slot + 1 : slot - 1;
    }

    // At most half the slots are used, which keeps probe runs short.
    void rebuild()
    {
        slots_.assign(std::bit_ceil(2 * items_.size()), kFree);
        for (std::size_t i = 0; i < items_.size(); ++i) place(items_[i]->nameView(), static_cast<std::uint32_t>(i));
    }

    std::vector<std::shared_ptr<T>> items_;
    std::vector<std::uint32_t> slots_;
};

}  // namespace pipespec::platform
