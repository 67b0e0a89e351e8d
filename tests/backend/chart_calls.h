// The host calls of a chart writer, in forms that a test can compare.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "backend/hierfit/charts/HFITChartOutput.h"
#include "tests/backend/result_documents.h"

namespace hierfit::test {

/// The calls of a journal.
class ChartCalls {
 public:
  explicit ChartCalls(const std::string& journal);

  /// The names of all calls in order, one blank between them, without the class where it is that of
  /// the call before; rows of data are left out.
  std::string order() const;
  /// How often a call was made.
  std::size_t count(std::string_view call) const;
  /// The arguments of all calls of a name as JSON, one call a line.
  std::string arguments(std::string_view call) const;
  /// The values of a variable by row, "-" for a row that has none.
  std::string column(std::string_view source, std::string_view variable) const;
  /// The text that the n-th document was made of; a failed check when there is none.
  std::string document(std::size_t n = 0) const;
  /// What `XDocument` or its variables were told: "variable index: operation arguments" a line.
  std::string relabels() const;

 private:
  std::vector<nlohmann::json> calls_;
};

/// A read of documents and a writer of charts on its store, which a test may change first.
class ChartRun {
 public:
  explicit ChartRun(const ResultDocuments& documents = {}) : reading(documents) {}

  /// The calls of one operation of a fresh writer.
  template <class Operation>
  ChartCalls calls(const Operation& operation) {
    const std::size_t begin = reading.journal().size();
    {
      HFITChartOutput charts(reading.procedure(), reading.data_source(), &reading.store);
      operation(charts);
    }
    return ChartCalls(reading.journal().substr(begin));
  }

  BuildSettingsStruct& settings() { return *reading.store.GetBuildSettings(); }
  ModelDiagnostics& diagnostics() { return *reading.store.GetModelDiagnostics(); }
  EmmeansData& block() { return reading.store.GetEmmeansList()->at(0); }

  Reading reading;
};

/// One column of a table of means.
CoordinatesData column_of(std::string field, std::vector<std::string> values);

/// The base documents with labels: `g` is "Group" with the labels one and two of its levels 1 and
/// 2, and `s` has the label "A & B" of its level a.
ResultDocuments labelled_documents();

}  // namespace hierfit::test
