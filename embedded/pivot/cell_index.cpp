#include "embedded/pivot/cell_index.h"

#include <algorithm>

namespace hierfit::pivot {
namespace {

constexpr uint32_t kNeighbours = 8;

uint64_t mixed(uint64_t hash, uint32_t coordinate) {
  hash = (hash ^ coordinate) * 0xFF51AFD7ED558CCDu;
  return hash ^ (hash >> 32);
}

/// The last coordinate is mixed in steps of eight: the cells of one row, which a table writes one
/// after another, lie side by side in memory, and yet no long run grows.
uint32_t hash_of(std::span<const uint32_t> coordinates) {
  if (coordinates.empty()) return 0;
  uint64_t hash = 0x9E3779B97F4A7C15u;
  for (const uint32_t coordinate : coordinates.first(coordinates.size() - 1)) {
    hash = mixed(hash, coordinate);
  }
  hash = mixed(hash, coordinates.back() / kNeighbours);
  return static_cast<uint32_t>(hash) * kNeighbours + coordinates.back() % kNeighbours;
}

std::span<const uint32_t> coordinates_of(const output::Cells& cells, uint32_t cell) {
  return {cells.at(cell), cells.dimensions};
}

}  // namespace

uint32_t CellIndex::find(const output::Cells& cells, std::span<const uint32_t> coordinates) const {
  return index_.find(hash_of(coordinates), [&](uint32_t cell) {
    return std::ranges::equal(coordinates_of(cells, cell), coordinates);
  });
}

uint32_t CellIndex::find_or_add(output::Cells& cells, std::span<const uint32_t> coordinates) {
  if (const uint32_t cell = find(cells, coordinates); cell != output::kNone) return cell;
  const auto cell = static_cast<uint32_t>(cells.size());
  index_.add(hash_of(coordinates), cell);
  cells.coordinates.insert(cells.coordinates.end(), coordinates.begin(), coordinates.end());
  cells.values.emplace_back();
  return cell;
}

void CellIndex::rebuild(const output::Cells& cells) {
  index_.clear();
  for (uint32_t cell = 0; cell < cells.size(); ++cell) {
    index_.add(hash_of(coordinates_of(cells, cell)), cell);
  }
}

}  // namespace hierfit::pivot
