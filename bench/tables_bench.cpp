// From the store to the finished tables.
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <stdexcept>

#include "bench/documents.h"
#include "bench/run.h"
#include "bench/tables.h"

namespace {

using namespace hierfit;
using namespace hierfit::bench;

size_t heap_bytes() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

void write_tables(benchmark::State& state, const TableSubject& subject) {
  Run run(subject.document());
  if (!run.read()) throw std::logic_error("the document does not read");
  size_t cells = 0;
  size_t bytes = 0;
  for (auto step : state) {
    const size_t before = heap_bytes();
    const output::Document document = run.write();
    state.PauseTiming();
    bytes = heap_bytes() - before;
    cells = cell_count(document.content);
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(cells));
  state.counters["cells"] = static_cast<double>(cells);
  state.counters["bytes_a_cell"] = static_cast<double>(bytes) / static_cast<double>(cells);
}

const bool kRegistered = [] {
  for (const TableSubject& subject : kTableSubjects) {
    benchmark::RegisterBenchmark(
        (std::string("tables/") + subject.name).c_str(),
        [&subject](benchmark::State& state) { write_tables(state, subject); })
        ->Unit(benchmark::kMillisecond);
  }
  return true;
}();

}  // namespace
