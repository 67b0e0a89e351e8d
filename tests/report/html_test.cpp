// The HTML form, tag by tag. tests/report/check_html.py checks whole pages.
#include <doctest/doctest.h>

#include "report/report.h"
#include "tests/report/sample_documents.h"
#include "tests/report/table_builder.h"

namespace hierfit::test {

namespace {

output::Document with_table(TableBuilder builder) {
  output::Document document;
  document.content.items.emplace_back(builder.take());
  return document;
}

/// A page without its script, which names tags, too.
std::string page_of(TableBuilder builder) {
  const std::string page = report::render_html(with_table(std::move(builder)), {});
  return page.substr(0, page.find("<template"));
}

bool has(const std::string& page, std::string_view piece) {
  return page.find(piece) != std::string::npos;
}

size_t occurrences(const std::string& page, std::string_view piece) {
  size_t count = 0;
  for (size_t at = page.find(piece); at != std::string::npos; at = page.find(piece, at + 1))
    ++count;
  return count;
}

}  // namespace

TEST_CASE("cells of a page") {
  TableBuilder builder("t");
  builder.rows("r");
  SUBCASE("carry the whole number, show a true minus and line up on the decimal mark") {
    builder.cell({{"a"}}, coefficient(-1.00049)).cell({{"b"}}, count(12));
    const std::string page = page_of(std::move(builder));
    CHECK(has(page, "<td data-value=\"-1.00049\">\u22121.000</td>"));
    // The mark and three digits are seven half digits.
    CHECK(has(page, "<td class=\"r7\" data-value=\"12\">12</td>"));
  }
  SUBCASE("make room for an exponent") {
    builder.cell({{"a"}}, coefficient(2.5e-5)).cell({{"b"}}, coefficient(1));
    const std::string page = page_of(std::move(builder));
    CHECK(has(page, ">2.500<span class=\"e3\">E\u22125</span></td>"));
    CHECK(has(page, "<td class=\"r7\" data-value=\"1\">1.000</td>"));
  }
  SUBCASE("of a significance say so; a symbol at their head is in italics") {
    builder.cell({{"a"}}, significance(0.0123)).cell({{"b"}}, significance(1e-9));
    builder.table().dimensions[0].nodes[0].label.symbol = true;
    const std::string page = page_of(std::move(builder));
    CHECK(has(page, "<i>a</i></th><td class=\"p l1\" data-value=\"0.0123\">0.012</td>"));
    CHECK(has(page, "<td class=\"p\" data-value=\"1e-09\">&lt;0.001</td>"));
  }
  SUBCASE("that are missing are empty to the eye and spoken") {
    output::Document document = with_table(std::move(builder.cell({{"a"}}, missing())));
    document.words["missing"] = "fehlt";
    CHECK(has(report::render_html(document, {}), "<td><span class=\"v\">fehlt</span></td>"));
  }
  SUBCASE("name their heads where there are two rows of them") {
    builder.columns("c").hide_title();
    builder.cell({{"a"}, {"G", "x"}}, count(1)).cell({{"a"}, {"y"}}, count(2));
    const std::string page = page_of(std::move(builder));
    CHECK(has(page, "<th scope=\"colgroup\" class=\"g\" id=\"t1c0\"><span>G</span></th>"));
    CHECK(has(page, "<th scope=\"col\" rowspan=\"2\" id=\"t1c1\">y</th>"));
    CHECK(has(page, "<td headers=\"t1r0 t1c0 t1c2\" data-value=\"1\">1</td>"));
  }
}

TEST_CASE("texts of a page are data") {
  const std::string hostile = "</title><script>\"'&\x01";
  TableBuilder builder(hostile);
  builder.rows(hostile).columns(hostile);
  builder.cell({{hostile}, {hostile}}, hostile).cell_note(hostile).caption({hostile, {}});
  output::Document document = with_table(std::move(builder));
  document.title = document.language = hostile;
  document.words["Contents"] = document.words["Theme: light"] = hostile;
  const std::string page = report::render_html(document, {});
  CHECK(occurrences(page, "<script") == 1);
  CHECK(occurrences(page, "</title>") == 1);
  CHECK(occurrences(page, "&lt;/title&gt;&lt;script&gt;&quot;&#39;&amp;\uFFFD") >= 9);
}

TEST_CASE("a long term may be divided behind its signs, a short one not") {
  TableBuilder builder("t");
  builder.rows("R").columns("C");
  builder.cell({{"a=1*b"}, {"c"}}, count(1));
  builder.cell({{"[species=P. ruber]*[site=Not <mined>] * x"}, {"c"}}, count(2));
  const std::string page = report::render_html(with_table(std::move(builder)), {});
  CHECK(occurrences(page, ">a=1*b</th>") == 1);
  CHECK(occurrences(page, ">[species=<wbr>P. ruber]*<wbr>[site=<wbr>Not &lt;mined&gt;] * x</th>") ==
        1);
}

TEST_CASE("note marks link to their notes and back, once") {
  TableBuilder builder("t");
  builder.rows("r").cell({{"a"}}, count(1)).cell_note("n").cell({{"b"}}, count(2)).cell_note("n");
  const std::string page = page_of(std::move(builder));
  CHECK(occurrences(page, "href=\"#t1n0\"") == 2);
  CHECK(occurrences(page, "id=\"t1m0\"") == 1);
  CHECK(occurrences(page, "id=\"t1n0\" href=\"#t1m0\" role=\"doc-backlink\"") == 1);
}

TEST_CASE("a long table is written in slices, each with its heads") {
  TableBuilder builder("t");
  builder.rows("outer", 2).rows("inner").columns("c");
  for (int row = 0; row < 1200; ++row) {
    const std::string outer = row < 700 ? "first" : "second";
    builder.cell({{outer}, {std::to_string(row)}, {"x"}}, count(row));
  }
  builder.table_note("below");
  const std::string page = page_of(std::move(builder));
  CHECK(occurrences(page, "<table") == 3);
  CHECK(occurrences(page, "<thead>") == 3);
  CHECK(occurrences(page, "Table 1 (continued)") == 2);
  CHECK(occurrences(page, "<tfoot>") == 1);
  CHECK(occurrences(page, "<td class=") + occurrences(page, "<td data-value") == 1200);
  // 500 lines of the first head, the 200 that are left, then the second: 300 and 200.
  CHECK(has(page, "<th scope=\"rowgroup\" rowspan=\"500\">first</th>"));
  CHECK(occurrences(page, "rowspan=\"200\">first</th>") == 1);
  CHECK(occurrences(page, "rowspan=\"300\">second</th>") == 1);
  CHECK(occurrences(page, "rowspan=\"200\">second</th>") == 1);
}

TEST_CASE("a table wider than a page is there again for paper, divided between column groups") {
  TableBuilder builder("t");
  builder.rows("r").columns("c");
  for (int pair = 0; pair < 12; ++pair) {
    const std::string group = "group " + std::to_string(pair);
    builder.cell({{"row"}, {group, "Lower"}}, coefficient(pair));
    builder.cell({{"row"}, {group, "Upper"}}, coefficient(pair + 0.5));
  }
  builder.table_note("below");
  const std::string page = page_of(std::move(builder));
  const size_t parts = page.find("<div class=\"parts\">");
  REQUIRE(parts != std::string::npos);
  const std::string paper = page.substr(parts);
  CHECK(occurrences(paper, "<table") == 2);
  CHECK(occurrences(paper, ">group ") == 12);
  CHECK(occurrences(paper, "colspan=\"2\">") == 12);
  CHECK(occurrences(paper, "<th scope=\"row\">row</th>") == 2);
  CHECK(occurrences(paper, "data-value") == 24);
  CHECK(occurrences(paper, " id=") == 0);
  CHECK(occurrences(paper, "<tfoot>") == 1);
}

TEST_CASE("the same document gives the same bytes") {
  CHECK(report::render_html(procedure_document(), {}) ==
        report::render_html(procedure_document(), {}));
}

}  // namespace hierfit::test
