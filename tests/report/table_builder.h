// Builds tables of an output document by hand.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "output/document.h"

namespace hierfit::test {

/// The labels from the top of a dimension's tree down to a category; empty for no category.
using Path = std::vector<std::string>;

inline output::Number coefficient(double value) { return {value, output::Format::Coefficient}; }
inline output::Number count(double value) { return {value, output::Format::Count}; }
inline output::Number statistic(double value) { return {value, output::Format::GeneralStat}; }
inline output::Number percent(double value) { return {value, output::Format::Percent}; }
inline output::Number significance(double value) { return {value, output::Format::Significance}; }
inline output::Number missing() { return {}; }

/// A text with a number in place of "^1".
output::Text text_with(std::string pattern, output::Number number);

/// A table under construction. Groups and categories come to be where a path first names them.
class TableBuilder {
 public:
  explicit TableBuilder(std::string title, std::string subtype = "Sample");

  TableBuilder& rows(std::string title, int level = 1);
  TableBuilder& columns(std::string title, int level = 1);
  /// Of the dimension made last.
  TableBuilder& hide_title();
  TableBuilder& hide_labels();

  /// Makes a category without a cell.
  TableBuilder& category(size_t dimension, const Path& path);
  /// Writes a cell; one path a dimension, in the order of their making.
  TableBuilder& cell(const std::vector<Path>& paths, output::Number number);
  TableBuilder& cell(const std::vector<Path>& paths, std::string text);

  TableBuilder& table_note(std::string text);
  TableBuilder& cell_note(std::string text);  ///< on the cell written last
  TableBuilder& label_note(size_t dimension, const Path& path, std::string text);
  TableBuilder& caption(output::Text text);
  TableBuilder& column_width(int points);

  output::Table& table() { return *table_; }
  std::unique_ptr<output::Table> take() { return std::move(table_); }

 private:
  TableBuilder& dimension(std::string title, output::Place place, int level);
  uint32_t node(size_t dimension, const Path& path);
  void place(const std::vector<Path>& paths);
  uint32_t note(std::string text);

  std::unique_ptr<output::Table> table_;
  std::vector<std::map<std::pair<uint32_t, std::string>, uint32_t>> nodes_;
};

}  // namespace hierfit::test
