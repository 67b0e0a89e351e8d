// The forms of a report: bytes a second.
#include <benchmark/benchmark.h>
#include <stdexcept>

#include "bench/run.h"
#include "bench/tables.h"
#include "report/report.h"

namespace {

using namespace hierfit;
using namespace hierfit::bench;

void render(benchmark::State& state, const TableSubject& subject, const report::Form& form) {
  Run run(subject.document());
  if (!run.read()) throw std::logic_error("the document does not read");
  const output::Document document = run.write();
  size_t bytes = 0;
  for (auto step : state)
    bytes = form.render(document, report::Options{}).size();
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes));
}

const bool kRegistered = [] {
  for (const report::Form& form : report::kForms) {
    for (const TableSubject& subject : kTableSubjects) {
      const std::string name = "render/" + std::string(form.name) + "/" + subject.name;
      benchmark::RegisterBenchmark(name.c_str(), [&subject, &form](benchmark::State& state) {
        render(state, subject, form);
      })->Unit(benchmark::kMillisecond);
    }
  }
  return true;
}();

}  // namespace
