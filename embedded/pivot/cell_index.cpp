#include "embedded/pivot/cell_index.h"

#include <algorithm>

namespace hierfit::pivot {
namespace {

constexpr size_t kFirstSlots = 64;

constexpr uint32_t kNeighbours = 8;

uint64_t mixed(uint64_t hash, uint32_t coordinate) {
  hash = (hash ^ coordinate) * 0xFF51AFD7ED558CCDu;
  return hash ^ (hash >> 32);
}

/// The last coordinate is mixed in steps of eight: the cells of one row, which a table writes one
/// after another, lie side by side in memory, and yet no long run grows.
uint64_t hash_of(std::span<const uint32_t> coordinates) {
  if (coordinates.empty()) return 0;
  uint64_t hash = 0x9E3779B97F4A7C15u;
  for (const uint32_t coordinate : coordinates.first(coordinates.size() - 1)) {
    hash = mixed(hash, coordinate);
  }
  return mixed(hash, coordinates.back() / kNeighbours) + coordinates.back() % kNeighbours;
}

std::span<const uint32_t> coordinates_of(const output::Cells& cells, uint32_t cell) {
  return {cells.at(cell), cells.dimensions};
}

uint32_t tag_of(uint64_t hash) { return static_cast<uint32_t>(hash >> 32); }

}  // namespace

size_t CellIndex::slot_of(const output::Cells& cells,
                          std::span<const uint32_t> coordinates,
                          uint64_t hash) const {
  const size_t mask = slots_.size() - 1;
  for (size_t slot = hash & mask;; slot = (slot + 1) & mask) {
    if (slots_[slot].cell == output::kNone) return slot;
    const bool may_be = slots_[slot].tag == tag_of(hash);
    if (may_be && std::ranges::equal(coordinates_of(cells, slots_[slot].cell), coordinates)) {
      return slot;
    }
  }
}

uint32_t CellIndex::find(const output::Cells& cells, std::span<const uint32_t> coordinates) const {
  if (slots_.empty()) return output::kNone;
  return slots_[slot_of(cells, coordinates, hash_of(coordinates))].cell;
}

uint32_t CellIndex::find_or_add(output::Cells& cells, std::span<const uint32_t> coordinates) {
  if ((cells.size() + 1) * 2 > slots_.size()) grow(cells);
  const uint64_t hash = hash_of(coordinates);
  Slot& slot = slots_[slot_of(cells, coordinates, hash)];
  if (slot.cell == output::kNone) {
    slot = {static_cast<uint32_t>(cells.size()), tag_of(hash)};
    cells.coordinates.insert(cells.coordinates.end(), coordinates.begin(), coordinates.end());
    cells.values.emplace_back();
  }
  return slot.cell;
}

void CellIndex::rebuild(const output::Cells& cells) {
  slots_.clear();
  grow(cells);
}

/// Cells are distinct, so that each takes the first empty slot.
void CellIndex::grow(const output::Cells& cells) {
  size_t size = std::max(kFirstSlots, slots_.size() * 2);
  while ((cells.size() + 1) * 2 > size)
    size *= 2;
  slots_.assign(size, Slot{});
  for (uint32_t cell = 0; cell < cells.size(); ++cell) {
    const uint64_t hash = hash_of(coordinates_of(cells, cell));
    size_t slot = hash & (size - 1);
    while (slots_[slot].cell != output::kNone)
      slot = (slot + 1) & (size - 1);
    slots_[slot] = {cell, tag_of(hash)};
  }
}

}  // namespace hierfit::pivot
