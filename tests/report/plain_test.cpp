// The forms of plain text for programs: CSV, Markdown, LaTeX and Vega-Lite.
#include <algorithm>
#include <doctest/doctest.h>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "report/report.h"
#include "tests/report/chart_samples.h"
#include "tests/report/sample_documents.h"
#include "tests/report/table_builder.h"

namespace hierfit::test {

namespace {

output::Document with_table(TableBuilder builder) {
  output::Document document;
  document.content.items.emplace_back(builder.take());
  return document;
}

bool has(const std::string& text, std::string_view piece) {
  return text.find(piece) != std::string::npos;
}

/// Labels that are markup somewhere, a group, a mark, a missing number and a text among numbers.
output::Document hostile_document() {
  TableBuilder builder("=cmd|' /C calc'!A0 & 50% $x_1$", "PairwiseMeans");
  builder.rows("a|b").columns("c").hide_title();
  builder.cell({{"-2 log", "x*y"}, {"95% CI", "Lower"}}, coefficient(-0.1)).cell_note("n\nm");
  builder.cell({{"-2 log", "x*y"}, {"95% CI", "Upper"}}, significance(1e-6));
  builder.cell({{"-7"}, {"95% CI", "Lower"}}, missing());
  builder.cell({{"-7"}, {"95% CI", "Upper"}}, count(3));
  builder.cell({{"\"q\", r"}, {"Text"}}, "@sum(1)\n<b>");
  return with_table(std::move(builder));
}

}  // namespace

TEST_CASE("CSV gives each cell whole, and no text that a spreadsheet would run") {
  const output::Document document = hostile_document();
  const std::string title = "1,PairwiseMeans,'=cmd|' /C calc'!A0 & 50% $x_1$,";
  const std::string tidy = report::render_csv(document, {});
  CHECK(has(tidy, title + "1,'-2 log / x*y,1,95% CI / Lower,-0.1,-0.100,\"n\nm\"\r\n"));
  CHECK(has(tidy, title + "1,'-2 log / x*y,2,95% CI / Upper,1e-06,<0.001,\r\n"));
  CHECK(has(tidy, title + "2,-7,1,95% CI / Lower,,,\r\n"));
  CHECK(has(tidy, title + "3,\"\"\"q\"\", r\",3,Text,,\"'@sum(1)\n<b>\",\r\n"));
}

TEST_CASE("a folder of CSV has a file for each table, and for the data of each chart") {
  output::Document document = hostile_document();
  document.content.items.emplace_back(std::make_unique<output::Chart>(scatter_chart(3)));
  const std::vector<report::File> files = report::render_csv_folder(document, {});
  REQUIRE(files.size() >= 2);
  CHECK(files[0].name == "01-pairwise-means.csv");
  CHECK(files[0].text ==
        "a|b,95% CI / Lower,95% CI / Upper,Text\r\n"
        "'-2 log / x*y,-0.1,1e-06,\r\n-7,,3,\r\n"
        "\"\"\"q\"\", r\",,,\"'@sum(1)\n<b>\"\r\n");
  CHECK(files[1].name.starts_with("figure-01-"));
  CHECK(std::ranges::count(files[1].text, '\n') == 4);
}

TEST_CASE("Markdown flattens heads, keeps marks, and escapes what is markup") {
  const std::string text = report::render_markdown(hostile_document(), {});
  CHECK(has(text, "*\\=cmd\\|\\' /C calc\\'!A0 & 50% \\$x\\_1\\$*\n"));
  CHECK(has(text,
            "| a\\|b       | 95% CI: Lower | 95% CI: Upper | Text           |\n"
            "|:-----------|--------------:|--------------:|:---------------|\n"
            "| \\-2 log    |               |               |                |\n"
            "| &emsp;x\\*y |       −0.100ᵃ |       \\<0.001 |                |\n"));
  CHECK(has(text, "| \\@sum(1) \\<b\\> |\n"));
  CHECK(has(text, "\nᵃ n\\\nm\n"));
}

TEST_CASE("LaTeX lines numbers up, merges heads, and has no command that a label gives") {
  const std::string text = report::render_latex(hostile_document(), {});
  CHECK(has(text, "\\textit{=cmd{\\textbar}' /C calc'!A0 \\& 50\\% \\$x\\_1\\$}"));
  CHECK(has(text, "{95\\% CI}"));
  CHECK(has(text, "\\cmidrule(lr){2-3}"));
  CHECK(has(text, "\\hspace*{1em}x*y & $-$0.100\\rlap{\\textsuperscript{a}} & $<$0.001 &  \\\\\n"));
  CHECK(has(text, "-7 &  & \\lead{$<$0}{3}\\trail{.001}{} &  \\\\\n"));
  CHECK(has(text, "\\textsuperscript{a} n\\newline m\\par\n"));
  SUBCASE("and declares the characters that not every engine has") {
    output::Document document;
    document.title = "\u4E2D e\u0301 \u03B1 **--";
    const std::string declared = report::render_latex(document, {});
    CHECK(has(declared, "\\declarecharacter{\u4E2D}{4E2D}\n"));
    CHECK(has(declared, "\u4E2D \u00E9 $\\alpha$ **-{}-}"));
  }
}

TEST_CASE("a chart for Vega-Lite") {
  using nlohmann::json;
  const auto spec_of = [](output::Chart chart) {
    output::Document document;
    document.content.items.emplace_back(std::make_unique<output::Chart>(std::move(chart)));
    return json::parse(report::render_vega(document, {}));
  };
  const auto count = [](const json& spec, std::string_view part) {
    return std::ranges::count_if(spec["data"]["values"], [&](const json& row) {
      return row["part"].get<std::string>().starts_with(part);
    });
  };
  SUBCASE("has a row for each mark, and the line across") {
    const json spec = spec_of(scatter_chart(25));
    CHECK(count(spec, "point") == 25);
    CHECK(count(spec, "guide") == 1);
    CHECK(spec["layer"][0]["encoding"]["x"]["type"] == "quantitative");
    CHECK(spec["layer"][0]["transform"][0]["filter"] == "datum.part === 'point 1'");
  }
  SUBCASE("tells factors by colour and symbol, side by side, and by panel") {
    const json spec = spec_of(means_chart(4, 2, 3));
    CHECK(count(spec, "interval") == 24);
    CHECK(count(spec, "point") == 24);
    const json& interval = spec["data"]["values"][0];
    CHECK(interval["x"] == "None");
    CHECK(interval["y2"] > interval["y"]);
    CHECK_FALSE(interval.contains("x2"));
    CHECK(spec["facet"]["sort"].size() == 3);
    const json& encoding = spec["spec"]["layer"].back()["encoding"];
    CHECK(encoding["xOffset"]["field"] == "color");
    CHECK(encoding["color"]["scale"]["range"].size() == 2);
    CHECK(encoding["shape"]["scale"]["range"][0] != encoding["shape"]["scale"]["range"][1]);
  }
  SUBCASE("has both bounds of its interval in a mean's tooltip") {
    const json values = spec_of(means_chart(4))["data"]["values"];
    CHECK(values.back()["part"] == "point 2");
    CHECK(values.back()["tooltip"].get<std::string>().find(": [") != std::string::npos);
  }
  SUBCASE("leaves out what stands at no category of the axis") {
    output::Chart chart = means_chart(2);
    ChartData(chart, "texts").categories("effect1").text(0, "elsewhere").variable("y").number(0, 1);
    output::Element& text = chart.document.child("graph")->add("text");
    text.set("source", "texts");
    text.add("y").set("variable", "y");
    CHECK(count(spec_of(std::move(chart)), "text") == 0);
  }
  SUBCASE("joins the nodes of a circle where they lie, and stands beside a histogram") {
    const json pairs = spec_of(pairwise_chart(5));
    CHECK(count(pairs, "node") == 5);
    const json& values = pairs["data"]["values"];
    for (const json& row : values) {
      if (row.contains("x2")) {
        CHECK(std::ranges::any_of(values, [&](const json& node) {
          return node["part"].get<std::string>().starts_with("node") && node["x"] == row["x2"] &&
                 node["y"] == row["y2"];
        }));
      }
    }
    const json diagram = spec_of(diagram_chart(6, 8));
    CHECK(diagram["hconcat"].size() == 2);
    CHECK(count(diagram, "bin") > 1);
    CHECK(count(diagram, "curve") > 50);
  }
  SUBCASE("has a bar for each category of a target") {
    output::Chart chart = diagram_chart(3, 8);
    for (output::Element* element : output::elements_of(chart.document))
      if (element->name == "embedded") element->set("fieldType", "1");
    const json diagram = spec_of(std::move(chart));
    CHECK(count(diagram, "bin") == 20);
    CHECK(count(diagram, "curve") == 0);
  }
  SUBCASE("is one of many, or says that there are none") {
    output::Document document;
    CHECK(json::parse(report::render_vega(document, {}))["mark"]["text"] == "No charts");
    document.content.items.emplace_back(std::make_unique<output::Chart>(broken_chart()));
    document.content.items.emplace_back(std::make_unique<output::Chart>(scatter_chart(2)));
    CHECK(json::parse(report::render_vega(document, {}))["vconcat"].size() == 2);
    report::Options options;
    options.chart = 3;
    CHECK_THROWS_AS(report::render_vega(document, options), std::out_of_range);
  }
}

}  // namespace hierfit::test
