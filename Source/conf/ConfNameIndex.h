#ifndef CONF_CONFNAMEINDEX_H
#define CONF_CONFNAMEINDEX_H

#include <cstddef>
#include <string_view>
#include <vector>

#include "xpl/Xbytes.h"

// Finds, by name, items that are kept in order elsewhere: a hash table of pointers, without an
// allocation for each. An item and its name stay where they are until it is removed.
template <typename Item>
class ConfNameIndex {
 public:
    // Null when there is none of that name.
    Item* find(std::string_view name) const noexcept {
        return count_ == 0 ? nullptr : slots_[slotOf(name)].item;
    }

    // Makes room for one more item, so that adding it cannot fail.
    void reserveOne() {
        if (2 * (count_ + 1) <= slots_.size()) return;
        std::vector<Slot> before(slots_.empty() ? kSmallest : 2 * slots_.size());
        before.swap(slots_);
        for (const Slot& slot : before) {
            if (slot.item != nullptr) slots_[slotOf(slot.name)] = slot;
        }
    }

    // After reserveOne(), of a name that is not there.
    void add(std::string_view name, Item& item) noexcept {
        slots_[slotOf(name)] = {name, &item};
        ++count_;
    }

    // What stands behind in the same row moves up, so that it is still found.
    void remove(std::string_view name) noexcept {
        if (find(name) == nullptr) return;
        std::size_t gap = slotOf(name);
        for (std::size_t at = next(gap); slots_[at].item != nullptr; at = next(at)) {
            const std::size_t home = homeOf(slots_[at].name);
            if (((at - home) & mask()) < ((at - gap) & mask())) continue;
            slots_[gap] = slots_[at];
            gap = at;
        }
        slots_[gap] = {};
        --count_;
    }

    void clear() noexcept {
        slots_.clear();
        count_ = 0;
    }

 private:
    struct Slot {
        std::string_view name;
        Item* item = nullptr;
    };

    static constexpr std::size_t kSmallest = 8;  // a power of two, as every size

    std::size_t mask() const noexcept { return slots_.size() - 1; }
    std::size_t next(std::size_t slot) const noexcept { return (slot + 1) & mask(); }
    std::size_t homeOf(std::string_view name) const noexcept { return xbytesHash(name) & mask(); }

    // Where an item of that name is, or would be. At least half of the slots are free.
    std::size_t slotOf(std::string_view name) const noexcept {
        std::size_t at = homeOf(name);
        while (slots_[at].item != nullptr && !xbytesSame(slots_[at].name, name)) at = next(at);
        return at;
    }

    std::vector<Slot> slots_;
    std::size_t count_ = 0;
};

#endif
