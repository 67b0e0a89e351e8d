// The charts that the report makes of tables.
#include "report/extra/extra_charts.h"

#include <cmath>
#include <doctest/doctest.h>
#include <memory>

#include "report/chart/figure.h"
#include "report/report.h"
#include "tests/report/table_builder.h"

namespace hierfit::test {

namespace {

constexpr char kInterval[] = "^1% Confidence Interval";
constexpr char kExpInterval[] = "^1% Confidence Interval for Exp(Coefficient)";

struct Line {
  std::vector<std::string> heads;
  double estimate, lower, upper, sig;
};

/// A table with the keys that the procedure's tables have.
std::unique_ptr<output::Table> table(const std::string& subtype,
                                     const std::vector<std::string>& titles,
                                     const std::string& estimate,
                                     const std::string& sig,
                                     const std::vector<Line>& lines,
                                     bool exponentials = false) {
  TableBuilder builder("Fixed coefficients", subtype);
  for (const std::string& title : titles)
    builder.rows(title);
  builder.columns("Statistics");
  for (const Line& line : lines) {
    const auto at = [&](Path column) {
      std::vector<Path> paths;
      for (const std::string& head : line.heads)
        paths.push_back({head});
      paths.push_back(std::move(column));
      return paths;
    };
    builder.cell(at({estimate}), coefficient(line.estimate));
    builder.cell(at({sig}), significance(line.sig));
    builder.cell(at({kInterval, "Lower"}), coefficient(line.lower));
    builder.cell(at({kInterval, "Upper"}), coefficient(line.upper));
    if (!exponentials) continue;
    builder.cell(at({"Exp(Coefficient)"}), coefficient(10 * line.estimate));
    builder.cell(at({kExpInterval, "Lower"}), coefficient(10 * line.lower));
    builder.cell(at({kExpInterval, "Upper"}), coefficient(10 * line.upper));
  }
  for (output::Node& node : builder.table().dimensions.back().nodes)
    node.label.key = node.label.shown;
  return builder.take();
}

/// What is added to a document of one table.
std::vector<output::Chart> charts_of(std::unique_ptr<output::Table> table) {
  output::Document document;
  document.content.items.emplace_back(std::move(table));
  report::add_extra_charts(document);
  std::vector<output::Chart> charts;
  if (document.content.items.size() < 2) return charts;
  auto& section = std::get<std::unique_ptr<output::Section>>(document.content.items.back());
  CHECK(section->title.shown == "Made by the report");
  for (output::Item& item : section->items)
    charts.push_back(std::move(*std::get<std::unique_ptr<output::Chart>>(item)));
  return charts;
}

constexpr double kNone = output::kSystemMissing;

}  // namespace

TEST_CASE("a table of coefficients gives a forest plot, and one of exponentials") {
  const auto charts = charts_of(table("FixedCoefficients", {"Model Term"}, "Coefficient", "Sig.",
                                      {{{"Intercept"}, 0.125, 0.0625, 0.5, 0.0001},
                                       {{"a=1"}, 0, kNone, kNone, kNone},
                                       {{"x"}, 0.75, 0.5, 1, 0.25}},
                                      true));
  REQUIRE(charts.size() == 2);
  const output::Document document;
  const report::chart::Figure plain(charts[0], document);
  CHECK(plain.description().starts_with("Estimates with intervals: 2 rows."));
  const auto scene = plain.scene({.width = 720, .texts = true});
  const auto text_at = [&](const std::string& text) {
    for (const auto& mark : scene.marks) {
      if (mark.text == text) return mark.box.y;
    }
    return -1.0;
  };
  // Numbers are those of the table, in their row.
  CHECK(text_at("0.125 [0.062, 0.500]") == text_at("<0.001"));
  CHECK(text_at("0.750 [0.500, 1.000]") == text_at("0.250"));
  CHECK(text_at("Intercept") < text_at("x"));
  CHECK(text_at("a=1") == -1);
  CHECK(charts[1].sources[0].by_role("bounds")->values.number(1) == 5);
  // The same ratio takes the same length along logarithms.
  const report::chart::Figure exponentials(charts[1], document);
  std::vector<std::pair<double, double>> spans;
  for (const auto& mark : exponentials.scene({.width = 720, .texts = true}).marks) {
    if (mark.kind == report::chart::MarkKind::Path) {
      spans.emplace_back(mark.points.front().x, mark.points.back().x);
    }
  }
  REQUIRE(spans.size() == 2);
  const double eightfold = spans[0].second - spans[0].first;
  const double twofold = spans[1].second - spans[1].first;
  CHECK(eightfold == doctest::Approx(3 * twofold));
}

TEST_CASE("contrasts have a panel for each level of the other factors") {
  const auto charts =
      charts_of(table("Contrasts", {"Site", "Contrasts of Dose"}, "Contrast Estimate", "Adj. Sig.",
                      {{{"A", "2 - 1"}, 1, 0, 2, 0.5},
                       {{"A", "3 - 1"}, 3, 2, 4, 0.01},
                       {{"B", "2 - 1"}, 2, kNone, 3, kNone}}));
  REQUIRE(charts.size() == 1);
  const output::Document document;
  const report::chart::Figure figure(charts[0], document);
  REQUIRE(figure.binding().panels.size() == 2);
  CHECK(figure.binding().panels[1].titles == std::vector<std::string>{"Site: B"});
  CHECK(figure.title().starts_with("Contrasts of Dose with "));
}

TEST_CASE("without two lines to compare there is no chart") {
  CHECK(charts_of(table("Contrasts", {"Contrasts of Dose"}, "Contrast Estimate", "Adj. Sig.",
                        {{{"2 - 1"}, 1, 0, 2, 0.5}}))
            .empty());
  CHECK(charts_of(table("OverallTestResults", {"Dose"}, "Coefficient", "Sig.",
                        {{{"1"}, 1, 0, 2, 0.5}, {{"2"}, 1, 0, 2, 0.5}}))
            .empty());
}

TEST_CASE("forest plots of any size stay readable") {
  std::vector<Line> lines;
  for (int i = 0; i < 300; ++i) {
    const double estimate = (i % 7) - 3 + 1e3 * (i == 5);
    lines.push_back({{"A term that is far too long for one line of a row no " + std::to_string(i)},
                     estimate,
                     estimate - 1,
                     estimate + 1,
                     0.5});
  }
  const auto charts =
      charts_of(table("FixedCoefficients", {"Model Term"}, "Coefficient", "Sig.", lines));
  REQUIRE(charts.size() == 1);
  const output::Document document;
  const report::chart::Figure figure(charts[0], document);
  for (const double width : {330.0, 720.0}) {
    const auto scene = figure.scene({.width = width, .texts = true});
    size_t squares = 0;
    bool says_so = false;
    for (const auto& mark : scene.marks) {
      squares += mark.kind == report::chart::MarkKind::Symbol ? 1 : 0;
      says_so = says_so || mark.text == "The first 120 of 300 are shown.";
      const auto box = report::chart::box_of(mark);
      CHECK(box.x >= -0.5);
      CHECK(box.right() <= scene.width + 0.5);
    }
    CHECK(squares == 120);
    CHECK(says_so);
  }
}

TEST_CASE("random effect covariances come as standard deviations and correlations, too") {
  const auto random_part_of = [](const std::vector<std::vector<double>>& covariances) {
    TableBuilder builder("Block 1", "RandomEffects");
    builder.rows("Effect").columns("Effect");
    for (size_t row = 0; row < covariances.size(); ++row) {
      for (size_t column = 0; column < covariances.size(); ++column) {
        builder.cell({{"e" + std::to_string(row)}, {"e" + std::to_string(column)}},
                     statistic(covariances[row][column]));
      }
    }
    output::Document document;
    document.content.items.emplace_back(builder.take());
    report::add_extra_charts(document);
    const auto& section =
        *std::get<std::unique_ptr<output::Section>>(document.content.items.back());
    return std::move(*std::get<std::unique_ptr<output::Table>>(section.items.at(0)));
  };
  const auto value = [](const output::Table& table, size_t cell) {
    return std::get<output::Number>(table.cells.values.at(cell)).value;
  };
  SUBCASE("as other programs print them for the same fit") {
    // sleepstudy by lme4: VarCorr() and eigen() of R 4.2.2.
    const output::Table table = random_part_of(
        {{612.1001580247688, 9.604408951157756}, {9.604408951157756, 35.07171445093885}});
    REQUIRE(table.cells.size() == 3);
    CHECK(value(table, 0) == doctest::Approx(24.7406580).epsilon(1e-8));
    CHECK(value(table, 1) == doctest::Approx(5.9221376).epsilon(1e-8));
    CHECK(value(table, 2) == doctest::Approx(0.0655512).epsilon(1e-5));
    CHECK(table.dimensions[1].nodes.size() == 3);
    CHECK(table.caption->shown.ends_with("eigenvalue is 34.912."));
  }
  SUBCASE("and are called singular when they are") {
    const output::Table table = random_part_of({{2, 1, 3}, {1, 2, 3}, {3, 3, 6}});
    CHECK(table.caption->shown.find("lies on its boundary") != std::string::npos);
    CHECK(value(table, 5) == doctest::Approx(3 / std::sqrt(12)));
    const output::Table zero = random_part_of({{0, 0}, {0, 4}});
    CHECK(zero.cells.size() == 2);  // no correlation with what does not vary
    CHECK(zero.caption->shown.find("lies on its boundary") != std::string::npos);
  }
}

}  // namespace hierfit::test
