#include "embedded/pivot/cell_index.h"

#include <algorithm>

namespace hierfit::pivot {
namespace {

constexpr size_t kFirstSlots = 64;

/// All coordinates but the last are mixed, the last is added: the cells of one row, which a table
/// writes one after another, lie side by side in memory.
uint64_t hash_of(std::span<const uint32_t> coordinates) {
  if (coordinates.empty()) return 0;
  uint64_t hash = 0x9E3779B97F4A7C15u;
  for (const uint32_t coordinate : coordinates.first(coordinates.size() - 1)) {
    hash = (hash ^ coordinate) * 0xFF51AFD7ED558CCDu;
    hash ^= hash >> 32;
  }
  return hash + coordinates.back();
}

std::span<const uint32_t> coordinates_of(const output::Cells& cells, uint32_t cell) {
  return {cells.at(cell), cells.dimensions};
}

}  // namespace

size_t CellIndex::slot_of(const output::Cells& cells, std::span<const uint32_t> coordinates) const {
  const size_t mask = slots_.size() - 1;
  size_t slot = hash_of(coordinates) & mask;
  while (slots_[slot] != output::kNone &&
         !std::ranges::equal(coordinates_of(cells, slots_[slot]), coordinates)) {
    slot = (slot + 1) & mask;
  }
  return slot;
}

uint32_t CellIndex::find(const output::Cells& cells, std::span<const uint32_t> coordinates) const {
  return slots_.empty() ? output::kNone : slots_[slot_of(cells, coordinates)];
}

uint32_t CellIndex::find_or_add(output::Cells& cells, std::span<const uint32_t> coordinates) {
  if ((cells.size() + 1) * 4 > slots_.size() * 3) grow(cells);
  const size_t slot = slot_of(cells, coordinates);
  if (slots_[slot] == output::kNone) {
    slots_[slot] = static_cast<uint32_t>(cells.size());
    cells.coordinates.insert(cells.coordinates.end(), coordinates.begin(), coordinates.end());
    cells.values.emplace_back();
  }
  return slots_[slot];
}

void CellIndex::rebuild(const output::Cells& cells) {
  slots_.clear();
  grow(cells);
}

void CellIndex::grow(const output::Cells& cells) {
  size_t size = std::max(kFirstSlots, slots_.size() * 2);
  while ((cells.size() + 1) * 4 > size * 3)
    size *= 2;
  slots_.assign(size, output::kNone);
  for (uint32_t cell = 0; cell < cells.size(); ++cell) {
    slots_[slot_of(cells, coordinates_of(cells, cell))] = cell;
  }
}

}  // namespace hierfit::pivot
