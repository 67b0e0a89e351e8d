// What the output document may hold, in proportion to the documents that it is made from.
//
// A few bytes of a document can stand for much: a diagonal matrix for a table of all its cells, a
// label for a text in every row, a list of labels for a part of every chart. Beyond the budget such
// things are cut, and the report says so.
#pragma once

#include <cstddef>

#include "output/document.h"

namespace hierfit {

class Budget {
 public:
  explicit Budget(size_t input_bytes = 0);

  /// The most cells of the next table. What the tables before it leave is not for it alone.
  size_t cells_of_table() const;
  void spend_cells(size_t count);

  /// Whether texts of so many bytes may go into the data of charts as they are.
  bool spend_chart_texts(size_t bytes);

  /// The most bytes that the labels of tables may take where each row repeats them.
  size_t repeated_labels() const { return repeated_labels_; }

 private:
  size_t cells_;
  size_t chart_texts_;
  size_t repeated_labels_;
};

/// Cuts the labels of the tables, the longest ones first, until they take no more than `most` bytes
/// in all rows together. Gives the length in bytes that they are cut to; 0 when none is cut.
size_t cut_labels(output::Section& section, size_t most);

}  // namespace hierfit
