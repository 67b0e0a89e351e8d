// The columns of a table that stand side by side.
#pragma once

#include <cstdint>

namespace hierfit::report {

/// The columns of a table that stand side by side, from `first` up to `end`. A table that is wider
/// than its form has several parts, each with the row heads.
struct Part {
  uint32_t first = 0;
  uint32_t end = 0;

  uint32_t columns() const { return end - first; }
  /// The columns that the part takes: those of a table without any are one.
  uint32_t width() const { return columns() == 0 ? 1 : columns(); }

  bool operator==(const Part&) const = default;
};

}  // namespace hierfit::report
