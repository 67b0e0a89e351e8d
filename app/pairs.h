// Which documents belong together.
#pragma once

#include <string>
#include <vector>

#include "embedded/error.h"

namespace hierfit::app {

/// A model document and its result document, or the fit that they are made from.
struct Pair {
  std::string fit = {};    ///< a file's path; "-" is standard input; empty: two documents
  std::string model;       ///< likewise
  std::string result;      ///< empty: none was found beside the model document
  std::string dictionary;  ///< empty: none
  /// What its report is called: a path without an ending, seen from the folder of the reports;
  /// unique among the pairs of a run, in any case of its letters.
  std::string name;
};

/// The pairs of a command line.
struct Pairs {
  std::vector<Pair> pairs;  ///< in the order of the inputs, within a folder by path
  bool several = false;     ///< whether more than one pair, or a folder, was asked for
  /// The folders within those that were searched that cannot be read.
  std::vector<FileError> unreadable;
};

/// Takes documents in twos, fits (.json, or a "-" that stands alone) one by one, and searches
/// folders, with all that are in them but not through links. In a folder "x.pmml" belongs to
/// "x.xml", and a model document that is alone with a single result document to that;
/// "dictionary.json" beside them lays over the model's dictionary, unless `dictionary` names
/// another. Where no model document is, "fit.json" and "x.fit.json" are fits. Throws `UsageError`
/// when a document is left over or a folder holds neither, `FileError` when that is because it
/// cannot be read.
Pairs find_pairs(const std::vector<std::string>& inputs, const std::string& dictionary);

}  // namespace hierfit::app
