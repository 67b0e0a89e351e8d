// The forms for office programs: what goes wrong at their edges.
#include <doctest/doctest.h>
#include <memory>
#include <string>

#include "report/report.h"
#include "report/typeset/paper.h"
#include "report/xlsx/table_sheets.h"
#include "tests/report/markup_reader.h"
#include "tests/report/sample_documents.h"
#include "tests/report/table_builder.h"

namespace hierfit::test {

namespace {

bool holds(const std::string& text, std::string_view what) {
  return text.find(what) != std::string::npos;
}

output::Document with_table(TableBuilder builder) {
  output::Document document;
  document.content.items.emplace_back(builder.take());
  return document;
}

}  // namespace

TEST_CASE("office forms and pages") {
  SUBCASE("are the same bytes for the same document, whatever it holds") {
    for (const char* name : {"xlsx", "docx", "pdf"}) {
      CAPTURE(name);
      const report::Form& form = *report::form_by_name(name);
      for (const output::Document& document : {awkward_document(), output::Document()}) {
        const std::string once = form.render(document, {});
        CHECK(once.size() > 800);
        CHECK((once == form.render(document, {})));
      }
    }
  }
  SUBCASE("keep control characters, markup and formulas as the text that they are") {
    TableBuilder builder("=1+1");
    builder.rows("r").cell({{"\x01</w:t>&\xFF"}}, "=cmd|' /C calc'!A0");
    const output::Document document = with_table(std::move(builder));
    const std::string sheet = part(report::render_xlsx(document, {}), "xl/worksheets/sheet2.xml");
    CHECK(holds(sheet, "t=\"s\""));
    CHECK_FALSE(holds(sheet, "<f>"));
    const std::string text = part(report::render_docx(document, {}), "word/document.xml");
    CHECK(holds(text, "\uFFFD&lt;/w:t&gt;&amp;\uFFFD"));
  }
}

TEST_CASE("a text that is longer than a page of a PDF goes on on the next ones") {
  const auto size_with = [](int lines) {
    TableBuilder builder("t");
    std::string note;
    uint32_t letter = 1;  // such that it does not compress
    for (int i = 0; i < lines * 60; ++i, letter = letter * 1664525 + 1013904223)
      note += i % 60 == 59 ? '\n' : static_cast<char>('a' + (letter >> 24) % 26);
    builder.rows("r").cell({{"a"}}, count(1)).caption({note, {}});
    return report::render_pdf(with_table(std::move(builder)), {}).size();
  };
  CHECK(size_with(200) > size_with(100) + 3000);
}

TEST_CASE("workbooks show numbers as the report does") {
  TableBuilder builder("t");
  builder.rows("r").cell({{"a"}}, coefficient(0.1)).cell({{"b"}}, significance(1e-9));
  builder.cell({{"c"}}, coefficient(2e-7)).cell({{"d"}}, percent(50)).cell({{"e"}}, count(3));
  builder.cell_note("note");
  const std::string styles =
      part(report::render_xlsx(with_table(std::move(builder)), {}), "xl/styles.xml");
  for (const char* format : {"\"0.000", "[&lt;0.001]&quot;&lt;0.001&quot;", "\"0.000E-0",
                             "\"0.0&quot;%&quot;", "\"0&quot;ᵃ&quot;"}) {
    CAPTURE(format);
    CHECK(holds(styles, format));
  }
}

TEST_CASE("a cell of a workbook is full by its characters, not their bytes") {
  const auto strings_of = [](int characters) {
    std::string title;
    for (int i = 0; i < characters; ++i)
      title += "\u65E5";
    TableBuilder builder(title);
    builder.rows("r").cell({{"a"}}, count(1)).table_note("n");
    return part(report::render_xlsx(with_table(std::move(builder)), {}), "xl/sharedStrings.xml");
  };
  // The mark of the note stands behind the title in its cell.
  CHECK(holds(strings_of(20000), "\u65E5</t></r><r>"));
  CHECK_FALSE(holds(strings_of(20000), "\u2026"));
  CHECK(holds(strings_of(40000), "\u65E5\u2026</t>"));
}

TEST_CASE("a table beyond the limits of a sheet goes on on further ones") {
  TableBuilder builder("Large");
  builder.rows("Row").columns("Column").hide_title();
  for (int row = 0; row < 9; ++row) {
    for (int column = 0; column < 5; ++column)
      builder.cell({{"r" + std::to_string(row)}, {"c" + std::to_string(column)}}, count(row));
  }
  const output::Document document = with_table(std::move(builder));
  report::xlsx::Workbook workbook(false, false);
  report::xlsx::write_table(workbook, document, report::blocks_of(document)[0],
                            {.lines = 10, .columns = 4});
  const std::string package = workbook.take();
  // Five lines beside title, head and a note, and three columns beside the row heads.
  const std::string names = part(package, "xl/workbook.xml");
  CHECK(holds(names, "\"Table 1 Large\""));
  CHECK(holds(names, "\"Table 1 (4) Large\""));
  CHECK_FALSE(holds(names, "(5)"));
  CHECK(holds(part(package, "xl/worksheets/sheet4.xml"), "<dimension ref=\"A1:C8\"/>"));
}

TEST_CASE("sheets have names that programs take") {
  CHECK(report::xlsx::sheet_name("Table 1 [a/b]: \"c\"?") == "Table 1 a b c");
  CHECK(report::xlsx::sheet_name(std::string(40, 'x')).size() == 31);
  CHECK(report::xlsx::sheet_name(
            "Table 1 \U0001F600\U0001F600\U0001F600\U0001F600\U0001F600\U0001F600"
            "\U0001F600\U0001F600\U0001F600\U0001F600\U0001F600\U0001F600")
            .size() == 8 + 11 * 4);
}

TEST_CASE("tables on paper") {
  const auto plan = [](int columns, int groups) {
    TableBuilder builder("t");
    builder.rows("Row").columns("Column").hide_title();
    for (int column = 0; column < columns; ++column) {
      const Path path =
          groups == 0 ? Path{"c" + std::to_string(column)}
                      : Path{"g" + std::to_string(column / groups), "c" + std::to_string(column)};
      builder.cell({{"row"}, path}, coefficient(-123456.789));
    }
    const output::Document document = with_table(std::move(builder));
    const auto& table = *std::get<std::unique_ptr<output::Table>>(document.content.items[0]);
    return report::plan_table(report::TableView(document, table));
  };
  SUBCASE("lie upright, on their side where they must, and are divided beyond") {
    CHECK_FALSE(plan(7, 0).landscape);
    CHECK(plan(12, 0).landscape);
    CHECK(plan(12, 0).parts.size() == 1);
    const report::PageTable wide = plan(40, 0);
    CHECK(wide.parts.size() > 1);
    CHECK(wide.parts.back().end == 40);
    for (const report::Part& part : wide.parts)
      CHECK(wide.width(part) <= report::kPaperHeight - 2 * report::kSideMargin + 0.01);
  }
  SUBCASE("are divided between groups of columns") {
    for (const report::Part& part : plan(40, 5).parts)
      CHECK(part.end % 5 == 0);
  }
}

namespace {

/// What a form writes for a document; of a package the parts that tables are made of.
std::string written(const char* form, const output::Document& document) {
  const std::string whole = report::form_by_name(form)->render(document, {});
  std::string parts;
  for (const char* name : {"word/document.xml", "xl/sharedStrings.xml", "xl/styles.xml"})
    parts += whole.starts_with("PK") ? part(whole, name) : "";
  return parts.empty() ? whole : parts;
}

}  // namespace

TEST_CASE("heads have their marks and their rules in each form") {
  TableBuilder builder("t");
  builder.rows("r").columns("c").hide_title();
  builder.cell({{"Group", "a"}, {"Over", "x"}}, count(1));
  builder.cell({{"Group", "a"}, {"Over", "y"}}, count(2)).cell({{"Last"}, {"Z"}}, count(3));
  builder.label_note(1, {"Over"}, "1").label_note(1, {"Z"}, "2");
  builder.label_note(0, {"Group"}, "3").label_note(0, {"Last"}, "4");
  const output::Document document = with_table(std::move(builder));
  struct Case {
    const char* form;
    std::vector<const char*> pieces;
  };
  const Case cases[] = {
      {"html",
       {">Over<sup><a role=\"doc-noteref\" href=\"#t1n0\" id=\"t1m0\">a</a></sup></span></th>",
        ">Z<sup><a role=\"doc-noteref\" href=\"#t1n1\"", ">Group<sup><a role=\"doc-noteref\"",
        ">Last<sup><a role=\"doc-noteref\"", "<th scope=\"colgroup\" class=\"g\""}},
      {"text", {"Over\u1D43", "Z\u1D47", "Group\u1D9C", "Last\u1D48", "\n       \u2500"}},
      {"markdown", {"Over: x\u1D43", "Z\u1D47", "Group\u1D9C", "Last\u1D48"}},
      {"latex",
       {"{Over\\textsuperscript{a}}", "Z\\textsuperscript{b}", "{Group\\textsuperscript{c}}",
        "Last\\textsuperscript{d}", "\\cmidrule(lr){2-3}\n"}},
      {"docx",
       {"w:anchor=\"t1na\"", "w:anchor=\"t1nb\"", "w:anchor=\"t1nc\"", "w:anchor=\"t1nd\"",
        "<w:pBdr><w:bottom"}},
      {"xlsx",
       {"Over</t></r><r>", "Z</t></r><r>", "Group</t></r><r>", "Last</t></r><r>",
        "<bottom style=\"hair\">"}},
  };
  for (const auto& [form, pieces] : cases) {
    CAPTURE(std::string(form));
    const std::string text = written(form, document);
    for (const char* piece : pieces) {
      CAPTURE(std::string(piece));
      CHECK(holds(text, piece));
    }
  }
}

TEST_CASE("a group beside the head that encloses it keeps its label") {
  TableBuilder builder("t");
  builder.rows("o", 2).rows("i").columns("c").hide_title();
  builder.cell({{"Outer"}, {"Group", "x"}, {"c"}}, count(1));
  builder.cell({{"Outer"}, {"Group", "y"}, {"c"}}, count(2));
  const output::Document document = with_table(std::move(builder));
  CHECK(holds(written("latex", document), "Outer & \\multicolumn{2}{"));
  CHECK(holds(written("latex", document), "{Group} \\\\*\n"));
  // A merged cell would belong to the one above it.
  CHECK(holds(written("docx", document), "<w:gridSpan w:val=\"2\"/></w:tcPr>"));
}

TEST_CASE("a wide table has the same parts on paper, whatever the form") {
  TableBuilder builder("t");
  builder.rows("Row").columns("c").hide_title();
  for (int column = 0; column < 40; ++column) {
    const Path path = {"group " + std::to_string(column / 3), "c" + std::to_string(column)};
    builder.cell({{"row"}, path}, coefficient(-1234.5 * column));
  }
  const output::Document document = with_table(std::move(builder));
  const auto& table = *std::get<std::unique_ptr<output::Table>>(document.content.items[0]);
  std::vector<size_t> planned;
  for (const report::Part& part : report::PaperTable(document, table).page.parts)
    planned.push_back(part.columns());
  REQUIRE(planned.size() > 1);
  // By the heads of single columns, and in DOCX by the columns of the grid, less the row heads'.
  const auto counted = [](std::string text, std::string_view begin, std::string_view column) {
    std::vector<size_t> columns;
    for (size_t at; (at = text.find(begin)) != std::string::npos;) {
      text.erase(0, at + begin.size());
      columns.push_back(0);
      const std::string_view one = std::string_view(text).substr(0, text.find(begin));
      for (at = one.find(column); at != one.npos; at = one.find(column, at + 1))
        ++columns.back();
    }
    return columns;
  };
  const std::string page = written("html", document);
  CHECK(counted(page.substr(page.find("<div class=\"parts\">")), "<table>",
                "<th scope=\"col\">c") == planned);
  std::vector<size_t> in_text = counted(written("docx", document), "<w:tbl>", "<w:gridCol");
  for (size_t& columns : in_text)
    --columns;
  CHECK(in_text == planned);
}

}  // namespace hierfit::test
