// Pieces for somebody else's page, article and text.
#include "report/docx/fragment.h"

#include <doctest/doctest.h>

#include "report/html/scoped_sheet.h"
#include "report/report.h"
#include "report/selection.h"
#include "tests/report/markup_reader.h"
#include "tests/report/sample_documents.h"

namespace hierfit::test {

namespace {

std::string fragment(std::string_view form, std::string_view prefix = "x-") {
  report::Options options;
  options.fragment = true;
  options.id_prefix = prefix;
  options.styles = false;
  return report::form_by_name(form)->render(procedure_document(), options);
}

bool has(const std::string& text, std::string_view piece) {
  return text.find(piece) != std::string::npos;
}

/// What stands in quotes behind each `name="`.
std::vector<std::string> values_of(const std::string& text, const std::string& name) {
  std::vector<std::string> values;
  const std::string begin = ' ' + name + "=\"";
  for (size_t at = 0; (at = text.find(begin, at)) != std::string::npos;) {
    at += begin.size();
    values.push_back(text.substr(at, text.find('"', at) - at));
  }
  return values;
}

}  // namespace

TEST_CASE("a style sheet holds inside its scope alone") {
  const auto scoped = [](std::string_view sheet) { return report::html::scoped_sheet(sheet, "s"); };
  CHECK(scoped("/* a { } */ th, td { top: 0 }") == ".s th, .s td { top: 0 }\n");
  CHECK(scoped(":root:not([data-theme=\"light\"]) { --a: 1 }") ==
        ".s:not([data-theme=\"light\"]) { --a: 1 }\n");
  CHECK(scoped("[dir=\"rtl\"] :is(h2, th) { top: 0 }") ==
        ".s[dir=\"rtl\"] :is(h2, th) { top: 0 }\n");
  CHECK(scoped("@page { margin: 0 } body, nav a, b { top: 0 } body { top: 1 }") ==
        ".s b { top: 0 }\n");
  CHECK(scoped("@media print { :root { --a: 1 } nav { top: 0 } } i { top: 0 }") ==
        "@media print {\n.s { --a: 1 }\n}\n.s i { top: 0 }\n");
}

TEST_CASE("a scoped sheet does not depend on the letters of another page's root") {
  CHECK(report::html::scoped_sheet(
            "td { font: .875rem/1.4 a; margin: -2.5rem 1rem; color: --remark }", "s") ==
        ".s td { font: 14px/1.4 a; margin: -40px 16px; color: --remark }\n");
}

TEST_CASE("a fragment of a page is one element, and its ids are its own") {
  const std::string piece = fragment("html");
  CHECK(piece.starts_with("<div class=\"hierfit\""));
  for (const char* part_of_pages : {"<html", "<head", "<body", "<script", "<style", "<main", "<h2"})
    CHECK_MESSAGE(!has(piece, part_of_pages), part_of_pages);
  const std::vector<std::string> ids = values_of(piece, "id");
  CHECK(ids.size() > 10);
  for (const std::string& id : ids)
    CHECK_MESSAGE(id.starts_with("x-"), id);
  for (const char* reference : {"aria-labelledby", "headers"}) {
    for (const std::string& value : values_of(piece, reference))
      CHECK_MESSAGE(value.starts_with("x-"), value);
  }
}

TEST_CASE("a fragment of an article leaves nothing behind") {
  const std::string piece = fragment("latex");
  CHECK(!has(piece, "\\documentclass"));
  CHECK(!has(piece, "\\newcommand"));
  CHECK(piece.find("\\begingroup") < piece.find("\\def\\"));
  CHECK(piece.ends_with("\\endgroup\n"));
}

TEST_CASE("a fragment of a text document brings what its styles say") {
  const std::string piece = fragment("docx");
  CHECK(markup_of("<w:body>" + piece + "</w:body>").tags.count("w:tbl") > 3);
  CHECK(!has(piece, "\"TableNumber\""));
  CHECK(!has(piece, "ReportTable"));
  CHECK(!has(piece, "<w:bookmark"));
  CHECK(!has(piece, "<w:drawing"));
  CHECK(has(piece, "<w:pStyle w:val=\"Caption\"/>"));
  CHECK(report::docx::fragment_of(
            "<w:p><w:pPr><w:pStyle w:val=\"TableNumber\"/><w:keepNext/>"
            "</w:pPr><w:r><w:rPr><w:i/></w:rPr><w:t>1 &lt; 2</w:t></w:r></w:p>") ==
        "<w:p><w:pPr><w:keepNext/><w:bidi w:val=\"0\"/><w:spacing w:before=\"28\" w:after=\"28\" "
        "w:line=\"240\" w:lineRule=\"auto\"/><w:jc w:val=\"right\"/></w:pPr><w:r><w:rPr><w:rFonts "
        "w:ascii=\"Arial\" w:hAnsi=\"Arial\" w:eastAsia=\"Arial\" w:cs=\"Arial\"/><w:i/><w:sz "
        "w:val=\"17\"/><w:szCs w:val=\"17\"/></w:rPr><w:t>1 &lt; 2</w:t></w:r></w:p>");
}

TEST_CASE("tables are chosen by their names, and headings go with what they hold") {
  output::Document document = procedure_document();
  const std::vector<std::string> names = report::names_in(document);
  REQUIRE(names.size() > 2);
  REQUIRE(names[0] == "About");
  const size_t messages = document.about.messages.size();
  REQUIRE(messages > 0);
  report::keep(std::vector<std::string>{names[1], "about"}, document);
  CHECK(report::names_in(document) == std::vector<std::string>{"About", names[1]});
  const std::vector<std::string> wanted = {names[1], "nothing"};
  report::keep(wanted, document);
  CHECK(report::names_in(document) == std::vector<std::string>{names[1]});
  CHECK(document.content.items.size() > messages);
  for (size_t at = 0; at < messages; ++at)
    CHECK(std::holds_alternative<std::unique_ptr<output::Message>>(document.content.items[at]));
  CHECK(report::is_among("MODELsummary", std::vector<std::string>{"a", "ModelSummary"}));
}

}  // namespace hierfit::test
