// What one session keeps; for the host's own parts alone.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>

#include "host/pivot.h"
#include "host/string_table.h"

#include "embedded/dictionary/data_dictionary.h"
#include "embedded/journal/journal.h"
#include "embedded/pivot/heading.h"
#include "embedded/session.h"
#include "embedded/strings/string_table.h"
#include "output/document.h"

namespace hierfit {

/// What went wrong last while a document was read; an empty sentence when nothing did.
struct ReadFailure {
  std::string sentence;
  uint32_t line = 0;
  uint32_t column = 0;      ///< 0 when only the line is known
  bool well_formed = true;  ///< false: the parser refused the text
};

/// The editor of one session and its virtual machine, with switches for tests.
struct EditorState {
  bool machine_can_start = true;
  bool embedding_throws = false;
  bool machine_is_started = false;
  bool editor_is_started = false;
};

struct Session::State {
  SessionInput input;
  SessionOptions options;
  StringTable strings;
  DataDictionary dictionary;
  std::shared_ptr<PathFinder> paths;
  ReadFailure failure;
  bool statxml_is_empty = false;

  output::Document document;                  ///< under construction
  std::unique_ptr<journal::Journal> journal;  ///< null: no journal is written
  OpenSections open_sections;
  std::unique_ptr<BpProcedure> procedure;
  /// Copies of texts that wait for their `BpAnnotation`, by the handle that `Replicate` gave.
  std::unordered_map<long, RefCountPtr<BpCellText::Impl>> replicas;
  long next_replica = 1;
  EditorState editor;

  /// Where a message or a chart goes: under the heading that was opened last and is still open.
  output::Section& open_section() {
    return open_sections.empty() ? document.content : *open_sections.back();
  }
};

/// The state of this thread's session, or null when the thread has none.
Session::State* state_of_thread();

/// The journal of this thread's session; null when none is written.
journal::Journal* journal_of_thread();

/// The topmost heading, whose items go into the document of the session.
std::unique_ptr<BpProcedure> make_procedure(Session::State& state);

}  // namespace hierfit
