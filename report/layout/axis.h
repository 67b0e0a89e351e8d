// The rows or the columns of a table: which there are, in which order, and where each cell stands.
#pragma once

#include <cstdint>
#include <vector>

#include "output/document.h"

namespace hierfit::report {

/// One place of a table, laid out as a line of positions (rows from the top, columns from the
/// start).
struct Axis {
  std::vector<uint32_t> dimensions;  ///< indices into `Table::dimensions`, outermost first
  uint32_t size = 0;                 ///< the number of positions
  std::vector<uint32_t> leaves;      ///< by position, one leaf number (or `kNone`) a dimension
  std::vector<uint32_t> of_cell;     ///< by cell: its position

  const uint32_t* at(uint32_t position) const {
    return leaves.data() + size_t{position} * dimensions.size();
  }
};

/// The leaf numbers of a dimension in the order in which its tree shows them.
std::vector<uint32_t> leaves_in_order(const output::Dimension& dimension);

/// Orders one place of a table. A position is a tuple of categories that some cell stands at, so a
/// sparse crossing stays as small as its cells; a place of a single dimension also has the
/// categories without cells. Positions are ordered by the dimensions from the outermost to the
/// innermost; a cell without a category in a dimension stands ahead of those with one. A place
/// without dimensions has one position.
Axis order_axis(const output::Table& table, output::Place place);

}  // namespace hierfit::report
