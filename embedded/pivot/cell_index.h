// Finds a cell of a table by its coordinates.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "embedded/output/document.h"

namespace hierfit::pivot {

/// A hash index over the cells of one table; it keeps four bytes a slot and reads the coordinates
/// where they stand.
class CellIndex {
 public:
  /// The cell at the coordinates, or `output::kNone`.
  uint32_t find(const output::Cells& cells, std::span<const uint32_t> coordinates) const;
  /// The cell at the coordinates; when there is none yet, an empty one is appended to `cells`.
  uint32_t find_or_add(output::Cells& cells, std::span<const uint32_t> coordinates);
  /// Forgets all cells and takes up those of `cells`.
  void rebuild(const output::Cells& cells);

 private:
  size_t slot_of(const output::Cells& cells, std::span<const uint32_t> coordinates) const;
  void grow(const output::Cells& cells);

  std::vector<uint32_t> slots_;
};

}  // namespace hierfit::pivot
