// The import of fit documents against the read of what it writes.
#include <benchmark/benchmark.h>
#include <stdexcept>
#include <string>

#include "bench/fit_documents.h"
#include "bench/run.h"
#include "import/import.h"

namespace {

using namespace hierfit;
using namespace hierfit::bench;

void import_it(benchmark::State& state, const std::string& text) {
  for (auto step : state) {
    fit::Problems problems;
    if (!fit::import_fit(text, problems)) throw std::logic_error("the fit is refused");
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

void read_what_it_writes(benchmark::State& state, const std::string& text) {
  fit::Problems problems;
  const auto documents = fit::import_fit(text, problems);
  if (!documents) throw std::logic_error("the fit is refused");
  Run run(documents->result, documents->model);
  for (auto step : state) {
    if (!run.read()) throw std::logic_error("the document does not read");
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(documents->result.size()));
}

struct Subject {
  const char* name;
  std::string (*document)(size_t);
  size_t size;
};

constexpr Subject kSubjects[] = {
    {"coefficients/1e4", fit_of_coefficients, 10'000},
    {"coefficients/1e5", fit_of_coefficients, 100'000},
    {"records/1e5", fit_of_records, 100'000},
    {"records/1e6", fit_of_records, 1'000'000},
    {"pairs/1e5", fit_of_pairs, 100'000},
    {"pairs/1e6", fit_of_pairs, 1'000'000},
};

const bool kRegistered = [] {
  for (const Subject& subject : kSubjects) {
    const std::string name = subject.name;
    benchmark::RegisterBenchmark(("import/" + name).c_str(), [&subject](benchmark::State& state) {
      import_it(state, subject.document(subject.size));
    })->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("read_import/" + name).c_str(), [&](benchmark::State& state) {
      read_what_it_writes(state, subject.document(subject.size));
    })->Unit(benchmark::kMillisecond);
  }
  return true;
}();

}  // namespace
