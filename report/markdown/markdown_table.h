// Pipe tables.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace hierfit::report::markdown {

/// A table of a head row and body rows, filled cell by cell with finished Markdown.
class PipeTable {
 public:
  /// `numbers`: by column, whether it is set from the end.
  explicit PipeTable(std::vector<bool> numbers) : numbers_(std::move(numbers)) {}

  /// The next cell, row by row, the heads first.
  void cell(std::string content) { cells_.push_back(std::move(content)); }
  /// Fills up the row.
  void end_row();

  /// Appends the table with its columns lined up, as far as they are not very wide.
  void append_to(std::string& out) const;

 private:
  std::vector<size_t> widths() const;
  void append_row(std::string& out, size_t begin, const std::vector<size_t>& widths) const;

  std::vector<bool> numbers_;
  std::vector<std::string> cells_;
};

}  // namespace hierfit::report::markdown
