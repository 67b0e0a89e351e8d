// Finds a cell of a table by its coordinates.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "embedded/output/document.h"

namespace hierfit::pivot {

/// A hash index over the cells of one table. It keeps a part of each hash, so that the coordinates
/// themselves, which stay where they stand, are read for a cell that is there alone.
class CellIndex {
 public:
  /// The cell at the coordinates, or `output::kNone`.
  uint32_t find(const output::Cells& cells, std::span<const uint32_t> coordinates) const;
  /// The cell at the coordinates; when there is none yet, an empty one is appended to `cells`.
  uint32_t find_or_add(output::Cells& cells, std::span<const uint32_t> coordinates);
  /// Forgets all cells and takes up those of `cells`.
  void rebuild(const output::Cells& cells);

 private:
  struct Slot {
    uint32_t cell = output::kNone;
    uint32_t tag = 0;
  };

  /// The slot of the cell at the coordinates, or the empty one that it would take.
  size_t slot_of(const output::Cells& cells,
                 std::span<const uint32_t> coordinates,
                 uint64_t hash) const;
  void grow(const output::Cells& cells);

  std::vector<Slot> slots_;
};

}  // namespace hierfit::pivot
