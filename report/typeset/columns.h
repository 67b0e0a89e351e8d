// The columns of a table: how wide they ask to be, and which stand side by side where a table is
// wider than its form. Each form brings a ruler; widths are in its unit and hold what stands around
// the text, padding or gap.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "report/typeset/part.h"
#include "report/typeset/table_view.h"

namespace hierfit::report {

/// The least width that something can do with, and what it would have.
struct Need {
  double least = 0;
  double wanted = 0;

  void cover(const Need& other) {
    least = std::max(least, other.least);
    wanted = std::max({wanted, other.wanted, least});
  }
};

/// What the columns of a table ask for.
struct Needs {
  std::vector<Need> stubs;
  std::vector<Need> columns;

  /// Of the stubs and the columns of a part together.
  Need of(const Part& part) const;
};

/// How wide things are in a form.
class Ruler {
 public:
  virtual ~Ruler() = default;

  /// Of each stub and column, whatever stands in it.
  virtual Need narrowest() const = 0;
  virtual Need stub_title(const output::Text& title) const = 0;
  /// Of a head beside lines that is no group: groups run over the columns.
  virtual Need row_head(const Head& head) const = 0;
  /// Of a head over columns, one or several, in one line or as its words come.
  virtual Need column_head(const Head& head) const = 0;
  /// Of a cell that shows a text.
  virtual Need text_cell(const PlacedCell& placed, const output::Text& text) const = 0;
  /// Of all the numbers of a column, lined up.
  virtual Need numbers(uint32_t column) const = 0;

  /// The row heads that are measured; what is longer further down is broken to fit.
  virtual size_t most_row_heads() const { return 20000; }
  /// Whether widths are whole numbers.
  virtual bool in_whole_units() const { return false; }
};

/// What row heads and cells ask for.
Needs body_needs(const TableView& view, const Ruler& ruler);
/// Raises needs to what the titles of the stubs and the heads over columns ask for. What a head
/// over several columns lacks these share, the heads nearest to the numbers first.
void cover_heads(const TableView& view, const Ruler& ruler, Needs& needs);

/// What all of a table asks for.
Needs measure(const TableView& view, const Ruler& ruler);

/// Divides the columns of a table into parts, each as many columns as fit into `room` beside the
/// stubs at their least, and one at least. Columns under a common head stay together when there is
/// room for them in a part. There is at least one part.
std::vector<Part> divide(const TableView& view, const Needs& needs, double room);

}  // namespace hierfit::report
