// A whole run of the module over a pair of documents: its tables, and its charts apart from them.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "output/document.h"

namespace hierfit::test {

/// The texts of the files of one run.
struct DocumentFiles {
  std::string model;
  std::string result;
  std::optional<std::string> dictionary;
};

/// A pair below examples/, with its dictionary when it has one.
DocumentFiles example_files(const std::string& name);
/// A pair below tests/documents/: the model that all of them share, and the result of that name.
DocumentFiles document_files(const std::string& name);

/// What a run left.
struct TableRun {
  bool reads = false;
  output::Document document;                           ///< without charts
  std::vector<std::unique_ptr<output::Chart>> charts;  ///< in their order
  std::string journal;                                 ///< one call a line

  /// The subtypes of the tables in their order, headings in brackets, messages as "!".
  std::string outline() const;
  /// The first table of that subtype, or null.
  const output::Table* table(const std::string& subtype) const;
  /// The shown text of a table's cell, or "(none)". `labels` name one category of each dimension
  /// in the order of their making.
  std::string cell(const std::string& subtype, const std::vector<std::string>& labels) const;
};

/// Runs the documents. In the language "C" every text shows its key.
TableRun run(const DocumentFiles& files, const std::string& language);

}  // namespace hierfit::test
