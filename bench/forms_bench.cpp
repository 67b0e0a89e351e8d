// Whole reports as people make them, with charts: each form.
#include <benchmark/benchmark.h>
#include <stdexcept>

#include "bench/documents.h"
#include "bench/run.h"
#include "report/report.h"

namespace {

using namespace hierfit;
using namespace hierfit::bench;

/// A report whose scatter plot has this many points.
constexpr size_t kPoints = 10'000;

void make(benchmark::State& state, const report::Form& form) {
  Run run(observed_by_predicted(kPoints));
  if (!run.read()) throw std::logic_error("the document does not read");
  const output::Document document = run.write();
  size_t bytes = 0;
  for (auto step : state)
    bytes = form.render(document, report::Options{}).size();
  state.counters["bytes"] = static_cast<double>(bytes);
}

const bool kRegistered = [] {
  for (const report::Form& form : report::kForms) {
    const std::string name = "forms/" + std::string(form.name);
    benchmark::RegisterBenchmark(name.c_str(), [&form](benchmark::State& state) {
      make(state, form);
    })->Unit(benchmark::kMillisecond);
  }
  return true;
}();

}  // namespace
