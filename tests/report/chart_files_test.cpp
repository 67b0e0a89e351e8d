// Charts as files of their own.
#include "report/chart_files.h"

#include <doctest/doctest.h>
#include <memory>
#include <set>
#include <stdexcept>

#include "report/chart/metadata.h"
#include "tests/report/chart_samples.h"
#include "tests/report/markup_reader.h"

namespace hierfit::test {

namespace {

output::Document document_of(std::vector<output::Chart> charts) {
  output::Document document;
  document.content.items.emplace_back(std::make_unique<output::Section>());
  auto& section = *std::get<std::unique_ptr<output::Section>>(document.content.items.front());
  for (output::Chart& chart : charts)
    section.items.emplace_back(std::make_unique<output::Chart>(std::move(chart)));
  return document;
}

size_t big_endian(std::string_view bytes, size_t at) {
  size_t value = 0;
  for (size_t i = 0; i < 4; ++i)
    value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
  return value;
}

size_t count(std::string_view text, std::string_view piece) {
  size_t found = 0;
  for (size_t at = 0; (at = text.find(piece, at)) != std::string_view::npos; ++at)
    ++found;
  return found;
}

}  // namespace

TEST_CASE("charts as files") {
  const output::Document document = document_of({scatter_chart(3), means_chart(3, 2, 4)});
  SUBCASE("each has a name by its place and kind") {
    const auto files = render_charts(document, *report::chart_form_by_name("pdf"), {});
    REQUIRE(files.size() == 2);
    CHECK(files[0].name == "01-predicted-by-observed.pdf");
    CHECK(files[1].name == "02-custom-effects.pdf");
    CHECK(files[0].text.starts_with("%PDF"));
  }
  SUBCASE("all in one picture: well-formed, and every id once") {
    const Markup picture = markup_of(report::render_svg(document, {}));
    CHECK(picture.tags.count("svg") == 3);
    CHECK(picture.ids.size() ==
          std::set<std::string>(picture.ids.begin(), picture.ids.end()).size());
  }
  SUBCASE("a grid of points knows its size and its resolution") {
    const std::string png =
        report::render_png(document, {.chart = 2, .chart_width = 400, .resolution = 144});
    CHECK(big_endian(png, 16) == 600);
    const size_t at = png.find("pHYs");
    REQUIRE(at < 60);
    CHECK(big_endian(png, at + 4) == 5669);  // 144 an inch
  }
  SUBCASE("a chart that is not there is refused; a document without charts says so") {
    CHECK_THROWS_AS(report::render_svg(document, {.chart = 3}), std::out_of_range);
    CHECK(report::render_svg(document_of({}), {}).find(">No charts</text>") != std::string::npos);
    CHECK(report::render_png(document_of({}), {}).starts_with("\x89PNG"));
  }
}

TEST_CASE("a picture holds its data") {
  const auto data = [](const output::Chart& chart, size_t room = 1000000) {
    std::string out;
    report::chart::append_metadata(out, chart, room);
    return out;
  };
  SUBCASE("numbers whole, texts escaped, what is missing as such") {
    output::Chart chart = broken_chart();
    chart.sources[0].variables[1].values.set(6, 0.1 + 0.2);
    const std::string text = data(chart);
    CHECK(markup_of(text).tags.count("row") == chart.sources[0].rows);
    CHECK(text.find("<n>0.30000000000000004</n>") != std::string::npos);
    CHECK(text.find("<s>&lt;b onclick=") != std::string::npos);
    CHECK(text.find("<u/>") != std::string::npos);
    CHECK(count(text, "inf") == 0);
  }
  SUBCASE("of many rows the count alone") {
    const std::string text = data(scatter_chart(30000));
    CHECK(text.find("rows=\"30000\"") != std::string::npos);
    CHECK(count(text, "<see form=\"json\"/>") == 1);
    CHECK(count(text, "<row>") == 0);
    CHECK(count(data(scatter_chart(300), 1000), "<see form=\"json\"/>") == 1);
  }
}

}  // namespace hierfit::test
