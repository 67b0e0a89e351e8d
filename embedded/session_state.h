// What one session keeps; for the host's own parts alone.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

#include "host/pivot.h"
#include "host/string_table.h"

#include "embedded/about/about.h"
#include "embedded/budget.h"
#include "embedded/dictionary/data_dictionary.h"
#include "embedded/editor/editor.h"
#include "embedded/error.h"
#include "embedded/journal/journal.h"
#include "embedded/pivot/heading.h"
#include "embedded/session.h"
#include "embedded/strings/string_table.h"
#include "output/document.h"

namespace hierfit {

/// What a run looks up. It stays as it is as long as the session.
struct Inputs {
  std::string language;                     ///< that was asked for
  std::span<const std::string_view> words;  ///< for the document
  StringTable strings;
  DataDictionary dictionary;
  about::ModelFacts model;
  std::vector<std::string> files;  ///< the names of what the documents were read from
  std::string title;               ///< of the report
  std::shared_ptr<PathFinder> paths;
};

/// What a run leaves. It grows.
struct Outputs {
  output::Document document;
  OpenSections open_sections;
  ReadFailure failure;  ///< the last one; an empty sentence when nothing went wrong
  std::vector<Shortfall> shortfalls;
  std::optional<about::ResultFacts> result;  ///< none as long as no result document is read
  Budget budget;

  /// Where a message or a chart goes: under the heading that was opened last and is still open.
  output::Section& open_section() {
    return open_sections.empty() ? document.content : *open_sections.back();
  }
  /// Says there, in the words of a key, what the report lacks.
  void tell(const StringTable& strings, const char* key);
};

/// What the module holds of the host while a run lasts.
struct Handles {
  std::unique_ptr<BpProcedure> procedure;
  /// Copies of texts that wait for their `BpAnnotation`, by the handle that `Replicate` gave.
  std::unordered_map<long, RefCountPtr<BpCellText::Impl>> replicas;
  long next_replica = 1;
  std::unique_ptr<editor::Editor> editor;
  bool machine_is_started = false;
  bool editor_is_started = false;
};

struct Session::State {
  Inputs inputs;
  Outputs outputs;
  std::unique_ptr<journal::Journal> journal;  ///< null: no journal is written
  Handles handles;
};

/// The state of this thread's session, or null when the thread has none.
Session::State* state_of_thread();

/// The journal of this thread's session; null when none is written.
journal::Journal* journal_of_thread();

}  // namespace hierfit
