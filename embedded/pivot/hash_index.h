// Finds the number of an item by its hash.
#pragma once

#include <cstdint>
#include <vector>

#include "output/document.h"

namespace hierfit::pivot {

/// Numbers of items that are kept elsewhere, by hash, in eight bytes a slot. Open addressing:
/// hashes that follow each other lie side by side, and an item itself is looked at only when its
/// whole hash is equal.
class HashIndex {
 public:
  /// The number of the item of this hash for which `same(number)` holds, or `output::kNone`.
  template <class Same>
  uint32_t find(uint32_t hash, const Same& same) const {
    if (slots_.empty()) return output::kNone;
    for (size_t at = hash & mask();; at = (at + 1) & mask()) {
      const Slot& slot = slots_[at];
      if (slot.number == output::kNone) return output::kNone;
      if (slot.hash == hash && same(slot.number)) return slot.number;
    }
  }

  /// Adds an item that is not there yet.
  void add(uint32_t hash, uint32_t number) {
    if ((count_ + 1) * 2 > slots_.size()) grow();
    ++count_;
    place({hash, number});
  }

  void clear() {
    slots_.clear();
    count_ = 0;
  }

 private:
  struct Slot {
    uint32_t hash = 0;
    uint32_t number = output::kNone;
  };

  size_t mask() const { return slots_.size() - 1; }

  void place(Slot slot) {
    size_t at = slot.hash & mask();
    while (slots_[at].number != output::kNone) {
      at = (at + 1) & mask();
    }
    slots_[at] = slot;
  }

  void grow() {
    constexpr size_t kFirstSlots = 64;
    std::vector<Slot> old(slots_.empty() ? kFirstSlots : slots_.size() * 2);
    old.swap(slots_);
    for (const Slot& slot : old) {
      if (slot.number != output::kNone) place(slot);
    }
  }

  std::vector<Slot> slots_;  ///< a power of two of them, at least half of them empty
  size_t count_ = 0;
};

}  // namespace hierfit::pivot
