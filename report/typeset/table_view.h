// A table laid out and its numbers written: what the writers of typeset forms look at.
#pragma once

#include <string>
#include <vector>

#include "report/layout/table_layout.h"
#include "report/typeset/aligned_cells.h"
#include "report/typeset/texts.h"

namespace hierfit::report {

struct TableView {
  TableView(const output::Document& of, const output::Table& shown, Medium medium = Medium::Page);

  /// What a head shows; null for nothing.
  const output::Text* label_of(const Head& head) const;
  /// The title over a stub column; null for none.
  const output::Text* stub_title(size_t stub) const;
  bool has_stub_titles() const;
  /// The rows over the body, those of the columns or one for the titles of the stubs.
  uint32_t head_rows() const;
  uint32_t stubs() const { return static_cast<uint32_t>(layout.stubs.size()); }
  uint32_t lines() const { return static_cast<uint32_t>(layout.lines.size()); }

  /// The number of a cell that shows one.
  const output::Number& number_of(const PlacedCell& placed) const;
  /// What a text of the table shows, a cell, label, caption or note.
  std::string text(const output::Text& text) const { return texts.shown(text); }

  /// The numbers of notes, each once, in order.
  std::vector<uint32_t> marks(const std::vector<uint32_t>& notes) const;
  std::vector<uint32_t> marks(const Head& head) const;
  std::vector<uint32_t> marks(const PlacedCell& placed) const;
  bool captioned() const { return table.caption && !table.caption->shown.empty(); }

  const output::Document& document;
  const output::Table& table;
  Texts texts;
  TableLayout layout;
  AlignedCells cells;
};

}  // namespace hierfit::report
