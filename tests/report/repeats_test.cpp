// Tables and charts that repeat earlier ones.
#include "report/repeats.h"

#include <algorithm>
#include <doctest/doctest.h>
#include <memory>

#include "report/report.h"
#include "tests/report/chart_samples.h"
#include "tests/report/table_builder.h"

namespace hierfit::test {

namespace {

std::unique_ptr<output::Table> table(double value, const std::string& note = "") {
  TableBuilder builder("Estimates");
  builder.rows("Dose").columns("Statistics").cell({{"1"}, {"Mean"}}, coefficient(value));
  if (!note.empty()) builder.cell_note(note);
  return builder.take();
}

std::unique_ptr<output::Section> section(const std::string& title) {
  auto made = std::make_unique<output::Section>();
  made->title.shown = title;
  return made;
}

}  // namespace

TEST_CASE("repeats go, with headings that hold nothing else") {
  output::Document document;
  auto first = section("First");
  first->items.emplace_back(table(1));
  first->items.emplace_back(table(1, "a note"));
  first->items.emplace_back(std::make_unique<output::Chart>(means_chart(3, 2)));
  auto second = section("Second");
  second->items.emplace_back(table(1));
  second->items.emplace_back(table(1.25));
  // The same means in another order, under the same title.
  output::Chart again = means_chart(3, 2);
  std::ranges::reverse(again.sources[0].variables);
  second->items.emplace_back(std::make_unique<output::Chart>(again));
  output::Chart other = means_chart(3, 2);
  other.sources[0].variables[0].number_labels[1] = "another";
  second->items.emplace_back(std::make_unique<output::Chart>(other));
  auto third = section("Third");
  third->items.emplace_back(table(1.25));
  auto fourth = section("Fourth");
  for (auto* each : {&first, &second, &third, &fourth})
    document.content.items.emplace_back(std::move(*each));

  report::leave_out_repeats(document);
  const auto items = [&](size_t i) {
    return std::get<std::unique_ptr<output::Section>>(document.content.items.at(i))->items.size();
  };
  REQUIRE(document.content.items.size() == 3);
  CHECK(items(0) == 3);
  CHECK(items(1) == 2);
  // A heading that was empty stays.
  CHECK(items(2) == 0);
  const std::string text = report::render_text(document, {});
  CHECK(text.find("1.250") != std::string::npos);
  CHECK(text.find("another") != std::string::npos);
}

}  // namespace hierfit::test
