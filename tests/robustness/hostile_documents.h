// Documents that nobody should write.
#pragma once

#include <string>
#include <vector>

#include "tests/backend/table_run.h"

namespace hierfit::test {

/// A pair of documents, and what it must come to.
struct HostileCase {
  std::string what;
  DocumentFiles files;
  bool reads = false;
};

/// A label that tries to be markup, a pattern, a list and an escape at once, as XML text.
extern const char kHostileLabel[];

/// Documents that break one rule each, or that are far larger than their text.
std::vector<HostileCase> hostile_cases();

/// The documents of the tests with one attribute value in so many replaced by a value that is
/// none, out of range or too large.
std::vector<DocumentFiles> altered_documents();

/// Documents of some hundred kilobytes that stand for much more.
std::vector<DocumentFiles> documents_that_stand_for_much();

}  // namespace hierfit::test
