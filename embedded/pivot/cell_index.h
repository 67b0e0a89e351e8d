// Finds a cell of a table by its coordinates.
#pragma once

#include <cstdint>
#include <span>

#include "embedded/pivot/hash_index.h"
#include "output/document.h"

namespace hierfit::pivot {

/// A hash index over the cells of one table, whose coordinates stay where they stand.
class CellIndex {
 public:
  /// The cell at the coordinates, or `output::kNone`.
  uint32_t find(const output::Cells& cells, std::span<const uint32_t> coordinates) const;
  /// The cell at the coordinates; when there is none yet, an empty one is appended to `cells`.
  uint32_t find_or_add(output::Cells& cells, std::span<const uint32_t> coordinates);
  /// Forgets all cells and takes up those of `cells`.
  void rebuild(const output::Cells& cells);

 private:
  HashIndex index_;
};

}  // namespace hierfit::pivot
