#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace ovix::kit::layout {

/// A hash map keyed by handles (`Variable`, `Constraint`: anything with `hash()` and `==`), stored
/// flat with open addressing, so adding an entry allocates only when the table doubles.
///
/// Pointers returned by `find` and `tryEmplace` stay valid until the next `tryEmplace` or `erase`
/// (entries move when the table grows or closes a gap). Not thread-safe.
template <class Key, class Value>
class HandleMap {
  public:
    std::size_t size() const { return size_; }

    Value* find(const Key& key) {
        std::size_t i = slotOf(key);
        return slots_.empty() || !slots_[i] ? nullptr : &slots_[i]->second;
    }
    const Value* find(const Key& key) const { return const_cast<HandleMap*>(this)->find(key); }
    bool contains(const Key& key) const { return find(key) != nullptr; }

    /// The value under `key`, inserted from `value` when absent; second is true when inserted.
    std::pair<Value*, bool> tryEmplace(const Key& key, Value value) {
        if ((size_ + 1) * 2 > slots_.size()) {
            grow();
        }
        std::size_t i = slotOf(key);
        if (slots_[i]) {
            return {&slots_[i]->second, false};
        }
        slots_[i].emplace(key, std::move(value));
        ++size_;
        return {&slots_[i]->second, true};
    }

    /// Removes `key` if present; false when it was not.
    bool erase(const Key& key) {
        if (slots_.empty()) {
            return false;
        }
        std::size_t hole = slotOf(key);
        if (!slots_[hole]) {
            return false;
        }
        // Shift later entries of the same probe run back into the hole, so lookups never need
        // tombstones.
        const std::size_t mask = slots_.size() - 1;
        for (std::size_t j = (hole + 1) & mask; slots_[j]; j = (j + 1) & mask) {
            std::size_t home = homeOf(slots_[j]->first);
            bool movable = hole <= j ? (home <= hole || home > j) : (home <= hole && home > j);
            if (movable) {
                slots_[hole] = std::move(slots_[j]);
                hole = j;
            }
        }
        slots_[hole].reset();
        --size_;
        return true;
    }

    /// Empties the map, keeping its table for the next entries.
    void clear() {
        for (auto& slot : slots_) {
            slot.reset();
        }
        size_ = 0;
    }

  private:
    std::size_t homeOf(const Key& key) const {
        // Handles hash to addresses, whose low bits are all alike: spread them (Fibonacci hashing).
        std::uint64_t h = static_cast<std::uint64_t>(key.hash()) * 0x9E3779B97F4A7C15ull;
        return static_cast<std::size_t>(h >> (64 - bits_));
    }
    // The slot holding `key`, or the empty slot where it would go. The table is never full.
    std::size_t slotOf(const Key& key) const {
        if (slots_.empty()) {
            return 0;
        }
        const std::size_t mask = slots_.size() - 1;
        std::size_t i = homeOf(key);
        while (slots_[i] && !(slots_[i]->first == key)) {
            i = (i + 1) & mask;
        }
        return i;
    }
    void grow() {
        std::vector<std::optional<std::pair<Key, Value>>> old(slots_.empty() ? 16 : slots_.size() * 2);
        old.swap(slots_);
        bits_ = 0;
        while ((std::size_t{1} << bits_) < slots_.size()) {
            ++bits_;
        }
        for (auto& slot : old) {
            if (slot) {
                slots_[slotOf(slot->first)] = std::move(slot);
            }
        }
    }

    std::vector<std::optional<std::pair<Key, Value>>> slots_;
    std::size_t size_ = 0;
    unsigned bits_ = 0;
};

}  // namespace ovix::kit::layout
