// What one session keeps; for the host's own parts alone.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>

#include "host/pivot.h"
#include "host/string_table.h"

#include "embedded/dictionary/data_dictionary.h"
#include "embedded/output/document.h"
#include "embedded/session.h"
#include "embedded/strings/string_table.h"

namespace hierfit::journal {
class Writer;
}

namespace hierfit {

/// What went wrong last while a document was read; an empty sentence when nothing did.
struct ReadFailure {
  std::string sentence;
  uint32_t line = 0;
  uint32_t column = 0;      ///< 0 when only the line is known
  bool well_formed = true;  ///< false: the parser refused the text
};

struct Session::State {
  SessionInput input;
  SessionOptions options;
  StringTable strings;
  DataDictionary dictionary;
  std::shared_ptr<PathFinder> paths;
  ReadFailure failure;

  output::Document document;                 ///< under construction
  std::shared_ptr<journal::Writer> journal;  ///< null: no journal is written
  std::unique_ptr<BpProcedure> procedure;
  /// Copies of texts that wait for their `BpAnnotation`, by the handle that `Replicate` gave.
  std::unordered_map<long, RefCountPtr<BpCellText::Impl>> replicas;
  long next_replica = 1;
};

}  // namespace hierfit

namespace hierfit::journal {
/// Starts the journal of a session.
std::shared_ptr<Writer> make_writer(std::ostream& out);
}  // namespace hierfit::journal

namespace hierfit::pivot {
/// The topmost heading, whose items go into the document of the session.
std::unique_ptr<BpProcedure> make_procedure(Session::State& state);
}  // namespace hierfit::pivot
