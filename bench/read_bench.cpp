// The read of a result document: a bare parse of its text against the module's whole read.
#include <benchmark/benchmark.h>
#include <expat.h>
#include <stdexcept>

#include "bench/documents.h"
#include "bench/run.h"

namespace {

using namespace hierfit::bench;

constexpr size_t kMegabyte = 1'000'000;

void bare_parse(benchmark::State& state, const std::string& text) {
  for (auto step : state) {
    XML_Parser parser = XML_ParserCreate(nullptr);
    const auto status = XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1);
    XML_ParserFree(parser);
    if (status != XML_STATUS_OK) throw std::logic_error("the document is not well-formed");
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

void whole_read(benchmark::State& state, const std::string& text) {
  Run run(text);
  for (auto step : state) {
    if (!run.read()) throw std::logic_error("the document does not read");
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

struct Subject {
  const char* name;
  std::string (*document)(size_t);
  size_t size;
};

constexpr Subject kSubjects[] = {
    {"settings_and_tests/1MB", settings_and_tests, kMegabyte},
    {"settings_and_tests/10MB", settings_and_tests, 10 * kMegabyte},
    {"settings_and_tests/100MB", settings_and_tests, 100 * kMegabyte},
    {"parameter_estimates/1e5", parameter_estimates, 100'000},
    {"estimated_means/1e6_values", estimated_means, 250'000},
    {"pairwise_contrasts/124750", pairwise_contrasts, 500},
    {"observed_by_predicted/1e6", observed_by_predicted, 1'000'000},
};

void register_subject(const Subject& subject) {
  const std::string name = subject.name;
  benchmark::RegisterBenchmark(("parse/" + name).c_str(), [&subject](benchmark::State& state) {
    bare_parse(state, subject.document(subject.size));
  })->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark(("read/" + name).c_str(), [&subject](benchmark::State& state) {
    whole_read(state, subject.document(subject.size));
  })->Unit(benchmark::kMillisecond);
}

const bool kRegistered = [] {
  for (const Subject& subject : kSubjects)
    register_subject(subject);
  return true;
}();

}  // namespace
