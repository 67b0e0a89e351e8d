// Fit documents for the tests, and what the import makes of them.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "import/import.h"
#include "tests/backend/table_run.h"

namespace hierfit::test {

/// The fit document of a shipped example.
std::string example_fit(const std::string& name);
/// A small whole fit: y by the factor g and the covariate x, a random intercept of s, means of g.
nlohmann::ordered_json small_fit();
/// The same with a target of three categories (nominal, or ordinal with thresholds), and with
/// events of trials.
nlohmann::ordered_json nominal_fit();
nlohmann::ordered_json ordinal_fit();
nlohmann::ordered_json events_fit();

/// What an import came to.
struct Imported {
  std::optional<fit::Documents> documents;
  fit::Problems problems;

  /// The sentences of the problems, one a line, errors with "error: " ahead.
  std::string said() const;
  /// The run of the documents, which must be there.
  TableRun run(const std::string& language = "en") const;
};

Imported import_text(const std::string& text);
Imported import_json(const nlohmann::ordered_json& fit);

}  // namespace hierfit::test
