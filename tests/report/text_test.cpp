// The text form.
#include <algorithm>
#include <doctest/doctest.h>
#include <sstream>

#include "report/report.h"
#include "report/text/display_text.h"
#include "tests/report/sample_documents.h"
#include "tests/report/table_builder.h"

namespace hierfit::test {

namespace {

std::string text_of(TableBuilder builder, size_t width) {
  output::Document document;
  document.content.items.emplace_back(builder.take());
  return report::render_text(document, {.width = width});
}

/// The same table at several widths.
std::vector<std::string> texts_of(TableBuilder builder, std::initializer_list<size_t> widths) {
  output::Document document;
  document.content.items.emplace_back(builder.take());
  std::vector<std::string> texts;
  for (size_t width : widths)
    texts.push_back(report::render_text(document, {.width = width}));
  return texts;
}

bool has(const std::string& text, std::string_view part) {
  return text.find(part) != std::string::npos;
}

size_t widest_line(const std::string& text) { return report::text::longest_line(text); }

}  // namespace

TEST_CASE("text tables") {
  TableBuilder builder("t");
  builder.rows("Row").columns("c").hide_title();
  SUBCASE("line numbers up on their decimal marks, whatever their form") {
    builder.cell({{"a"}, {"x"}}, coefficient(-12.5)).cell({{"b"}, {"x"}}, count(3)).cell_note("n");
    builder.cell({{"c"}, {"x"}}, coefficient(2.5e-5)).cell({{"d"}, {"x"}}, missing());
    builder.cell({{"e"}, {"x"}}, significance(1e-9));
    CHECK(text_of(std::move(builder), 80) ==
          "Table 1\nt\n"
          "━━━━━━━━━━━━━━━━━━━━━━━━\n"
          "Row       x\n"
          "────────────────────────\n"
          "a    -12.500\n"
          "b      3ᵃ\n"
          "c      2.500E-5\n"
          "d       .\n"
          "e     <0.001\n"
          "━━━━━━━━━━━━━━━━━━━━━━━━\n"
          "ᵃ n\n");
  }
  SUBCASE("that do not fit are divided by columns and repeat the row heads") {
    for (int column = 0; column < 12; ++column) {
      builder.cell({{"row"}, {"G", "c" + std::to_string(column)}}, coefficient(column));
    }
    const std::string text = text_of(std::move(builder), 40);
    CHECK(widest_line(text) <= 40);
    CHECK(text.find("Table 1 (continued)") != std::string::npos);
    size_t rows = 0;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
      rows += line.starts_with("row") ? 1 : 0;
    CHECK(rows == 3);
  }
  SUBCASE("are divided between the groups of their columns, with each head over its column") {
    for (const std::string group : {"First group", "Second group"}) {
      builder.cell({{"row"}, {group, "Lower"}}, coefficient(-1234.5));
      builder.cell({{"row"}, {group, "Upper"}}, coefficient(1234.5));
      builder.cell({{"row"}, {"after " + group}}, coefficient(123.25));
    }
    const std::string text = text_of(std::move(builder), 36);
    CAPTURE(text);
    CHECK(has(text,
              "         First group\n"
              "     ───────────────────\n"
              "                           after\n"
              "                           First\n"
              "Row    Lower     Upper     group\n"));
    CHECK(has(text, "        Second group\n"));
  }
  SUBCASE("wrap their heads before their labels, and their labels before they are divided") {
    builder.cell({{"a label"}, {"Std. error of x"}}, count(1));
    builder.cell({{"a label"}, {"Exp(coefficient)"}}, count(2));
    const std::vector<std::string> texts = texts_of(std::move(builder), {50, 30, 20});
    CAPTURE(texts[0]);
    CAPTURE(texts[1]);
    CHECK(has(texts[0], "Std. error of\nRow            x         Exp(coefficient)\n"));
    CHECK(has(texts[1], "error       Exp\nRow      of x   (coefficient)\n"));
    CHECK(has(texts[2], "Table 1 (continued)\n"));
  }
  SUBCASE("give long labels further lines when there is no room") {
    builder.cell({{"a label of several words"}, {"x"}}, count(1)).cell({{"b"}, {"x"}}, count(2));
    const std::vector<std::string> texts = texts_of(std::move(builder), {30, 25});
    CHECK(has(texts[0], "a label of several words  1\n"));
    CAPTURE(texts[1]);
    CHECK(has(texts[1], "a label of several      1\nwords\nb                       2\n"));
  }
}

TEST_CASE("the awkward document keeps to the width that is given") {
  for (size_t width : {40, 80, 120}) {
    CAPTURE(width);
    CHECK(widest_line(report::render_text(awkward_document(), {.width = width})) <= width);
  }
  CHECK(widest_line(report::render_text(awkward_document(), {.width = 0})) > 300);
}

TEST_CASE("text for a terminal") {
  using namespace report::text;
  SUBCASE("wide characters take two columns, combining ones none") {
    CHECK(display_width("日本") == 4);
    CHECK(display_width("e\u0301") == 1);
    CHECK(wrapped("日本語", 4) == std::vector<std::string>{"日本", "語"});
    CHECK(wrapped("a 値が小さい。次（x）", 8) ==
          std::vector<std::string>{"a 値が小", "さい。次", "（x）"});
    CHECK(wrapped("p=0,05: 97,5%-KI", 9) == std::vector<std::string>{"p=0,05:", "97,5%-KI"});
    CHECK(wrapped("e\u0301e\u0301e\u0301", 2) ==
          std::vector<std::string>{"e\u0301e\u0301", "e\u0301"});
  }
  SUBCASE("lines break at feeds, then at blanks, then in words") {
    CHECK(wrapped("a\nbc def ghijkl", 4) ==
          std::vector<std::string>{"a", "bc", "def", "ghij", "kl"});
    CHECK(wrapped("", 4) == std::vector<std::string>{""});
  }
  SUBCASE("nothing steers the terminal") {
    CHECK(printable("\x1b[31m\x07\u009b\ta\nb\u202e") == "\uFFFD[31m\uFFFD\uFFFD a\nb");
  }
}

}  // namespace hierfit::test
