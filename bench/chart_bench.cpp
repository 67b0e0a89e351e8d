// Charts: from the store to delivery, and from a chart document to a drawing.
#include <benchmark/benchmark.h>
#include <stdexcept>

#include "bench/documents.h"
#include "bench/run.h"
#include "report/chart_files.h"

namespace {

using namespace hierfit;
using namespace hierfit::bench;

const output::Chart* first_chart(const output::Section& section) {
  for (const output::Item& item : section.items) {
    if (const auto* chart = std::get_if<std::unique_ptr<output::Chart>>(&item)) {
      return chart->get();
    }
    if (const auto* below = std::get_if<std::unique_ptr<output::Section>>(&item)) {
      if (const output::Chart* found = first_chart(**below)) return found;
    }
  }
  return nullptr;
}

size_t value_count(const output::Chart& chart) {
  size_t count = 0;
  for (const output::ChartSource& source : chart.sources) {
    for (const output::ChartVariable& variable : source.variables)
      count += variable.values.rows();
  }
  return count;
}

void read(Run& run) {
  if (!run.read()) throw std::logic_error("the document does not read");
}

void send(benchmark::State& state, std::string document) {
  Run run(std::move(document));
  read(run);
  size_t values = 0;
  for (auto step : state) {
    const output::Document written = run.write();
    const output::Chart* chart = first_chart(written.content);
    if (chart == nullptr) throw std::logic_error("the document makes no chart");
    values = value_count(*chart);
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(values));
}

void send_points(benchmark::State& state) {
  send(state, observed_by_predicted(static_cast<size_t>(state.range(0))));
}

/// Draws a scatter plot of as many points as the state says.
void draw(benchmark::State& state, std::string_view form) {
  Run run(observed_by_predicted(static_cast<size_t>(state.range(0))));
  read(run);
  const output::Document document = run.write();
  const output::Chart* chart = first_chart(document.content);
  if (chart == nullptr) throw std::logic_error("the document makes no chart");
  const auto render = report::chart_form_by_name(form)->render;
  size_t bytes = 0;
  for (auto step : state)
    bytes = render(*chart, document, {}).size();
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.counters["bytes"] = static_cast<double>(bytes);
}

BENCHMARK(send_points)->Name("charts/send/points")->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(draw, svg, "svg")
    ->Name("charts/draw/points")
    ->Arg(100)
    ->Arg(1'000)
    ->Arg(10'000)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(draw, png, "png")
    ->Name("charts/draw/png")
    ->Arg(1'000)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(draw, pdf, "pdf")
    ->Name("charts/draw/pdf")
    ->Arg(1'000)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
