// What all forms that people read have in common: rows of tables, parts, blocks and texts.
#include <doctest/doctest.h>

#include "report/typeset/blocks.h"
#include "report/typeset/columns.h"
#include "report/typeset/table_rows.h"
#include "report/typeset/texts.h"
#include "report/wording.h"
#include "tests/report/table_builder.h"

namespace hierfit::test {

using report::Part;
using report::RowCell;
using report::TableRows;
using report::TableView;

namespace {

output::Document with_table(TableBuilder builder) {
  output::Document document;
  document.content.items.emplace_back(builder.take());
  return document;
}

const output::Table& table_of(const output::Document& document) {
  return *std::get<std::unique_ptr<output::Table>>(document.content.items[0]);
}

/// "a" for what stands in a cell, with its marks behind "^"; "-" for nothing. Then, where it covers
/// several columns, "x2"; where it begins above, "|"; where it reaches down, "+" and the rows; "_"
/// for a rule, and "<" for what begins at the start.
std::string told(const TableView& view, const RowCell& cell) {
  std::string text = "-";
  if (cell.label != nullptr) text = cell.label->shown;
  if (cell.cell != nullptr) {
    text = cell.cell->kind == report::CellKind::Text ? view.table.texts[cell.cell->begin].shown
                                                     : std::string(view.cells.number(*cell.cell));
  }
  if (cell.role == RowCell::Role::Gap) text = ".";
  if (!cell.marks.empty()) text += '^' + report::mark_letters(cell.marks);
  if (cell.columns > 1) text += 'x' + std::to_string(cell.columns);
  if (!cell.begins()) text += '|';
  if (!cell.ends()) text += '+' + std::to_string(cell.below);
  if (cell.over_heads) text += '_';
  if (cell.at_start) text += '<';
  return text;
}

/// The rows of a part, one a line, those of the head behind "#".
std::string walked(const TableView& view, const Part& part, uint32_t slice_lines = 1000) {
  std::string text;
  TableRows rows(view, part, slice_lines);
  do {
    while (rows.next()) {
      text += rows.in_head() ? "#" : "";
      uint32_t column = 0;
      for (const RowCell& cell : rows.cells()) {
        CHECK(cell.column == column);
        column = cell.end();
        text += " " + told(view, cell);
      }
      CHECK(column == rows.columns());
      text += '\n';
    }
  } while (rows.next_slice());
  return text;
}

std::string walked(TableBuilder builder) {
  const output::Document document = with_table(std::move(builder));
  const TableView view(document, table_of(document));
  return walked(view, {0, view.layout.columns});
}

}  // namespace

TEST_CASE("the rows of a table") {
  TableBuilder builder("t");
  builder.rows("r").columns("c").hide_title();
  SUBCASE("have heads that span and reach down, groups over their line, gaps and marks") {
    builder.cell({{"G", "a"}, {"H", "x"}}, count(1)).cell({{"G", "a"}, {"H", "y"}}, count(2));
    builder.cell({{"G", "a"}, {"z"}}, "text").cell_note("n").cell({{"b"}, {"z"}}, count(3));
    builder.label_note(0, {"G"}, "g").label_note(1, {"H"}, "h").label_note(1, {"z"}, "h");
    CHECK(walked(std::move(builder)) ==
          "# r+1 H^ax2_ z^a+1<\n"
          "# r| x y z^a|<\n"
          " G^bx4\n"
          " a 1 2 text^c<\n"
          " b .x2 3<\n");
  }
  SUBCASE("keep a head beside all its lines, also that of a group inside it") {
    TableBuilder nested("t");
    nested.rows("o", 2).rows("i").columns("c").hide_title();
    nested.cell({{"A"}, {"G", "x"}, {"c"}}, count(1)).cell({{"A"}, {"y"}, {"c"}}, count(2));
    CHECK(walked(std::move(nested)) ==
          "# o i c\n"
          " A+2 Gx2\n"
          " A|+1 x 1\n"
          " A| y 2\n");
  }
  SUBCASE("have one blank cell where nothing stands over the columns, and none without titles") {
    TableBuilder plain("t");
    plain.rows("r").cell({{"a"}}, count(1));
    CHECK(walked(std::move(plain)) == "# r -\n a 1\n");
    TableBuilder bare("t");
    bare.rows("r").hide_title().cell({{"a"}}, count(1));
    CHECK(walked(std::move(bare)) == " a 1\n");
  }
  SUBCASE("of an empty table are those of its head") {
    CHECK(walked(std::move(builder)) == "# r -\n");
  }
}

TEST_CASE("the rows of a part and of a slice") {
  TableBuilder builder("t");
  builder.rows("o", 2).hide_title().rows("i").hide_title().columns("c").hide_title();
  for (const char* row : {"1", "2", "3"}) {
    builder.cell({{"A"}, {row}, {"G", "x"}}, count(1)).cell({{"A"}, {row}, {"G", "y"}}, count(2));
    builder.cell({{"A"}, {row}, {"z"}}, count(3));
  }
  const output::Document document = with_table(std::move(builder));
  const TableView view(document, table_of(document));
  SUBCASE("are cut to the columns of the part") {
    CHECK(walked(view, {1, 3}) ==
          "# -+1 -+1 G_ z+1\n# -| -| y z|\n"
          " A+2 1 2 3\n A|+1 2 2 3\n A| 3 2 3\n");
  }
  SUBCASE("begin with the heads in each slice, and end with it") {
    CHECK(walked(view, {0, 1}, 2) ==
          "# -+1 -+1 G_\n# -| -| x\n A+1 1 1\n A| 2 1\n"
          "# -+1 -+1 G_\n# -| -| x\n A| 3 1\n");
  }
  SUBCASE("know what is ahead of them and behind") {
    TableRows rows(view, {0, 3}, 2);
    CHECK_FALSE(rows.continues());
    CHECK_FALSE(rows.ends_table());
    REQUIRE(rows.next_slice());
    CHECK(rows.continues());
    CHECK(rows.ends_table());
    CHECK_FALSE(rows.next_slice());
    CHECK(TableRows(view, {2, 3}).continues());
    CHECK_FALSE(TableRows(view, {0, 2}).ends_table());
  }
}

namespace {

/// Characters, with one around each; heads and texts may break at half their length.
class CharacterRuler : public report::Ruler {
 public:
  explicit CharacterRuler(const TableView& view) : view_(view) {}

  report::Need narrowest() const override { return {2, 2}; }
  report::Need stub_title(const output::Text& title) const override { return need(title.shown); }
  report::Need row_head(const report::Head& head) const override { return of(head); }
  report::Need column_head(const report::Head& head) const override { return of(head); }
  report::Need text_cell(const report::PlacedCell&, const output::Text& text) const override {
    return need(text.shown);
  }
  report::Need numbers(uint32_t column) const override {
    const double width = 1.0 + view_.cells.columns[column].whole;
    return {width, width};
  }
  bool in_whole_units() const override { return true; }

 private:
  static report::Need need(const std::string& text) {
    const auto length = static_cast<double>(text.size());
    return {1 + length / 2, 1 + length};
  }
  report::Need of(const report::Head& head) const {
    const output::Text* label = view_.label_of(head);
    return label == nullptr ? report::Need() : need(label->shown);
  }

  const TableView& view_;
};

std::string told(const std::vector<report::Need>& needs) {
  std::string text;
  for (const report::Need& need : needs)
    text += std::to_string(static_cast<int>(need.least)) + "-" +
            std::to_string(static_cast<int>(need.wanted)) + " ";
  return text;
}

std::string told(const std::vector<Part>& parts) {
  std::string text;
  for (const Part& part : parts)
    text += std::to_string(part.first) + "-" + std::to_string(part.end) + " ";
  return text;
}

}  // namespace

TEST_CASE("columns ask for what stands in them; what a common head lacks they share") {
  TableBuilder builder("t");
  builder.rows("row").columns("c").hide_title();
  builder.cell({{"long label"}, {"outer head of all", "in", "x"}}, count(12345));
  builder.cell({{"long label"}, {"outer head of all", "in", "y"}}, count(1));
  builder.cell({{"long label"}, {"outer head of all", "wide"}}, "a text");
  const output::Document document = with_table(std::move(builder));
  const TableView view(document, table_of(document));
  const report::Needs needs = measure(view, CharacterRuler(view));
  CHECK(told(needs.stubs) == "6-11 ");
  // 17 characters want 18: 6, 2 and 7 have 15.
  CHECK(told(needs.columns) == "6-7 2-3 4-8 ");
  CHECK(needs.of({1, 3}).wanted == 11 + 3 + 8);
}

TEST_CASE("a table that is wider than its form is divided") {
  struct Case {
    const char* what;
    std::vector<Path> columns;
    double room;
    const char* parts;
  };
  // Each column is 2 wide, and so are the row heads.
  const Case cases[] = {
      {"not at all where it fits", {{"a"}, {"b"}, {"c"}}, 8, "0-3 "},
      {"where the room ends", {{"a"}, {"b"}, {"c"}}, 7, "0-2 2-3 "},
      {"into one column at least", {{"a"}, {"b"}}, 1, "0-1 1-2 "},
      {"ahead of a group", {{"a"}, {"G", "b"}, {"G", "c"}}, 6, "0-1 1-3 "},
      {"inside a group that is wider", {{"a"}, {"G", "b"}, {"G", "c"}}, 5, "0-1 1-2 2-3 "},
      {"ahead of an inner group, inside a wider one",
       {{"G", "a"}, {"G", "H", "b"}, {"G", "H", "c"}},
       6,
       "0-1 1-3 "},
  };
  for (const auto& [what, columns, room, parts] : cases) {
    CAPTURE(what);
    TableBuilder builder("t");
    builder.rows("r").columns("c").hide_title();
    for (const Path& column : columns)
      builder.cell({{"x"}, column}, count(1));
    const output::Document document = with_table(std::move(builder));
    const TableView view(document, table_of(document));
    CHECK(told(divide(view, measure(view, CharacterRuler(view)), room)) == parts);
  }
}

TEST_CASE("texts are shown as their medium takes them") {
  output::Document document;
  output::Text text = text_with("a ^1\t\x1b\u202E\xFF\n", coefficient(-1.5));
  const report::Texts page(document);
  const report::Texts terminal(document, report::Medium::Terminal);
  CHECK(page.shown(text) == "a \u22121.500 \uFFFD\u202E\uFFFD\n");
  CHECK(terminal.shown(text) == "a -1.500 \uFFFD\uFFFD\n");
}

TEST_CASE("patterns are filled by number; a hole without an argument stays") {
  CHECK(report::filled("^2 of ^1^", "a", "b") == "b of a^");
  CHECK(report::filled("^1 ^2 ^x", "^2") == "^2 ^2 ^x");
}

}  // namespace hierfit::test
