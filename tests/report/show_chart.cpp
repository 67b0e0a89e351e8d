// Prints sample charts, for looking at: show_chart html [NAME...], or show_chart (svg|scene) NAME
#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>

#include "report/chart/chart.h"
#include "report/chart/layout.h"
#include "report/report.h"
#include "tests/report/chart_samples.h"

namespace {

using namespace hierfit;

std::string shown(const std::string& form, output::Document& document) {
  if (form == "html" || document.content.items.empty()) return report::render_html(document, {});
  const auto& chart = *std::get<std::unique_ptr<output::Chart>>(document.content.items.front());
  if (form == "svg") return report::render_svg(chart, document);
  return report::chart::to_text(report::chart::lay_out(chart, document, {}));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return 2;
  std::vector<tests::ChartSample> samples = tests::chart_samples();
  std::ranges::move(tests::hard_chart_samples(), std::back_inserter(samples));
  output::Document document;
  document.title = "Charts";
  for (tests::ChartSample& sample : samples) {
    const bool wanted = argc == 2 || std::any_of(argv + 2, argv + argc, [&](const char* name) {
                          return sample.name == name;
                        });
    if (!wanted) continue;
    sample.chart.title += " (" + sample.name + ")";
    document.content.items.emplace_back(std::make_unique<output::Chart>(std::move(sample.chart)));
  }
  const std::string text = shown(argv[1], document);
  std::fwrite(text.data(), 1, text.size(), stdout);
  return 0;
}
