// What stands where in a table.
#include <doctest/doctest.h>

#include "report/layout/table_layout.h"
#include "report/wording.h"
#include "tests/report/table_builder.h"

namespace hierfit::test {

using output::kNone;
using report::Head;
using report::HeadKind;
using report::lay_out;
using report::TableLayout;

namespace {

std::string label_of(const output::Table& table, const Head& head) {
  if (head.kind == HeadKind::Blank) return "-";
  const output::Dimension& dimension = table.dimensions[head.dimension];
  return head.kind == HeadKind::Title ? "[" + dimension.title.shown + "]"
                                      : dimension.nodes[head.node].label.shown;
}

/// "label @level+depth first+span" for each head, one a line.
std::string heads(const output::Table& table, const std::vector<Head>& list) {
  std::string text;
  for (const Head& head : list) {
    text += label_of(table, head) + " @" + std::to_string(head.level) + "+" +
            std::to_string(head.depth) + " " + std::to_string(head.first) + "+" +
            std::to_string(head.span) + "\n";
  }
  return text;
}

/// The counts in the cells, row by row; "." where no cell is.
std::string grid(const output::Table& table, const TableLayout& layout) {
  std::string text;
  for (uint32_t row = 0; row < layout.rows; ++row) {
    std::vector<std::string> line(layout.columns, ".");
    for (const report::PlacedCell& placed : layout.row(row)) {
      const auto& number = std::get<output::Number>(table.cells.values[placed.cell]);
      line[placed.column] = std::to_string(static_cast<int>(number.value));
    }
    for (const std::string& cell : line)
      text += cell + " ";
    text.back() = '\n';
  }
  return text;
}

}  // namespace

TEST_CASE("heads over columns") {
  TableBuilder builder("t");
  builder.columns("Outer", 2).columns("Inner", 1).hide_title().rows("Rows");
  int value = 0;
  for (const char* outer : {"A", "B"}) {
    for (const Path& inner : {Path{"G", "x"}, Path{"G", "y"}, Path{"z"}}) {
      builder.cell({{outer}, inner, {"row"}}, count(++value));
    }
  }
  const TableLayout layout = lay_out(builder.table());
  SUBCASE("span what they enclose; a shown title stands over its categories") {
    CHECK(heads(builder.table(), layout.column_heads) ==
          "[Outer] @0+1 0+6\nA @1+1 0+3\nB @1+1 3+3\n"
          "G @2+1 0+2\nz @2+2 2+1\nG @2+1 3+2\nz @2+2 5+1\n"
          "x @3+1 0+1\ny @3+1 1+1\nx @3+1 3+1\ny @3+1 4+1\n");
  }
  SUBCASE("of a dimension with hidden labels there are none, but its columns stay apart") {
    builder.table().dimensions[0].labels_shown = false;
    const TableLayout hidden = lay_out(builder.table());
    CHECK(hidden.columns == 6);
    CHECK(heads(builder.table(), hidden.column_heads) ==
          "G @0+1 0+2\nz @0+2 2+1\nG @0+1 3+2\nz @0+2 5+1\n"
          "x @1+1 0+1\ny @1+1 1+1\nx @1+1 3+1\ny @1+1 4+1\n");
  }
}

TEST_CASE("cells without a category of a dimension stand together beneath one blank head") {
  TableBuilder builder("t");
  builder.columns("Outer", 2).hide_title().columns("Inner", 1).hide_title().rows("Rows");
  int value = 0;
  for (const Path& outer : {Path{"A"}, Path{}}) {
    for (const char* inner : {"x", "y"})
      builder.cell({outer, {inner}, {"row"}}, count(++value));
  }
  const TableLayout layout = lay_out(builder.table());
  CHECK(heads(builder.table(), layout.column_heads) ==
        "- @0+1 0+2\nA @0+1 2+2\n"
        "x @1+1 0+1\ny @1+1 1+1\nx @1+1 2+1\ny @1+1 3+1\n");
}

TEST_CASE("a dimension with hidden labels has no heads at the side, but its lines stay apart") {
  TableBuilder builder("t");
  builder.rows("Outer", 2).hide_labels().rows("Inner", 1).columns("Columns");
  int value = 0;
  for (const char* outer : {"A", "B"}) {
    for (const char* inner : {"x", "y"})
      builder.cell({{outer}, {inner}, {"c"}}, count(++value));
  }
  const TableLayout layout = lay_out(builder.table());
  CHECK(layout.stubs == std::vector<uint32_t>{1});
  CHECK(heads(builder.table(), layout.row_heads) ==
        "x @0+1 0+1\ny @0+1 1+1\nx @0+1 2+1\ny @0+1 3+1\n");
  CHECK(grid(builder.table(), layout) == "1\n2\n3\n4\n");
}

TEST_CASE("heads at the side") {
  TableBuilder builder("t");
  builder.rows("Inner", 1).rows("Outer", 2).columns("c");
  builder.cell({{"G", "x"}, {"A"}, {"c"}}, count(1))
      .cell({{"y"}, {"A"}, {"c"}}, count(2))
      .cell({{"G", "x"}, {"B"}, {"c"}}, count(3));
  const TableLayout layout = lay_out(builder.table());
  SUBCASE("outer ones cover the lines of inner groups; a group is a line of its own") {
    CHECK(layout.lines == std::vector<uint32_t>{kNone, 0, 1, kNone, 2});
    CHECK(heads(builder.table(), layout.row_heads) ==
          "A @0+1 0+3\nG @1+1 0+1\nx @1+1 1+1\ny @1+1 2+1\n"
          "B @0+1 3+2\nG @1+1 3+1\nx @1+1 4+1\n");
    CHECK(layout.row_heads[2].indent == 1);
  }
  SUBCASE("a hidden inner dimension leaves one head over its rows") {
    builder.table().dimensions[0].labels_shown = false;
    const TableLayout hidden = lay_out(builder.table());
    CHECK(heads(builder.table(), hidden.row_heads) == "A @0+1 0+2\nB @0+1 2+1\n");
  }
}

TEST_CASE("rows and columns") {
  SUBCASE("siblings stand in the order of the tree, not of the cells") {
    TableBuilder builder("t");
    builder.rows("r").columns("c");
    builder.category(0, {"first"}).category(0, {"G", "a"}).category(0, {"last"});
    builder.category(0, {"G", "b"});
    builder.cell({{"last"}, {"x"}}, count(4)).cell({{"G", "b"}, {"y"}}, count(3));
    const TableLayout layout = lay_out(builder.table());
    CHECK(grid(builder.table(), layout) == ". .\n. .\n. 3\n4 .\n");
  }
  SUBCASE("of crossed dimensions only the tuples that occur are there") {
    TableBuilder builder("t");
    for (int level = 10; level >= 1; --level)
      builder.rows("factor", level);
    for (int row = 0; row < 1000; ++row) {
      builder.cell(std::vector<Path>(10, Path{std::to_string(row)}), count(row));
    }
    const TableLayout layout = lay_out(builder.table());
    CHECK(layout.rows == 1000);
    CHECK(layout.row_heads.size() == 10000);
  }
  SUBCASE("a cell without a category stands ahead, under a blank head") {
    TableBuilder builder("t");
    builder.rows("r").columns("c");
    builder.cell({{"a"}, {"x"}}, count(1)).cell({{"a"}, {}}, count(2)).cell({{}, {"x"}}, count(3));
    const TableLayout layout = lay_out(builder.table());
    CHECK(grid(builder.table(), layout) == ". 3\n2 1\n");
    CHECK(layout.row_heads[0].kind == HeadKind::Blank);
  }
  SUBCASE("a place without dimensions has one row or column; nothing at all has none") {
    TableBuilder rows_only("t");
    rows_only.rows("r").cell({{"a"}}, count(1)).cell({{"b"}}, count(2));
    CHECK(grid(rows_only.table(), lay_out(rows_only.table())) == "1\n2\n");
    CHECK(lay_out(rows_only.table()).head_rows == 0);
    TableBuilder nothing("t");
    nothing.rows("r").columns("c");
    CHECK(lay_out(nothing.table()).empty());
  }
  SUBCASE("a cell written twice shows what was written last") {
    TableBuilder builder("t");
    builder.rows("r").cell({{"a"}}, count(1)).cell({{"b"}}, count(2)).cell({{"a"}}, count(3));
    CHECK(grid(builder.table(), lay_out(builder.table())) == "3\n2\n");
  }
}

TEST_CASE("notes are numbered in reading order") {
  TableBuilder builder("t");
  builder.rows("r").columns("c");
  builder.cell({{"a"}, {"x"}}, count(1)).cell({{"a"}, {"y"}}, count(2)).cell_note("second cell");
  builder.cell({{"b"}, {"x"}}, count(3)).cell_note("on a cell of b");
  builder.label_note(0, {"a"}, "on a").label_note(1, {"y"}, "on y").table_note("on the table");
  const auto read = [&builder] {
    std::string text;
    for (uint32_t note : lay_out(builder.table()).notes) {
      text += builder.table().notes[note].shown + "; ";
    }
    return text;
  };
  CHECK(read() == "on the table; on y; on a; second cell; on a cell of b; ");
  SUBCASE("one of a hidden label moves to the title") {
    builder.table().dimensions[1].labels_shown = false;
    CHECK(read() == "on the table; on y; on a; second cell; on a cell of b; ");
    CHECK(lay_out(builder.table()).title_notes.size() == 2);
  }
  SUBCASE("those of the same words share a number") {
    builder.table().notes[0].shown = "on a";
    CHECK(read() == "on the table; on y; on a; on a cell of b; ");
  }
  SUBCASE("their letters go on behind z") {
    CHECK(report::mark_letters(0) == "a");
    CHECK(report::mark_letters(25) == "z");
    CHECK(report::mark_letters(26) == "aa");
    CHECK(report::mark_letters(26 + 26 * 26) == "aaa");
  }
}

}  // namespace hierfit::test
