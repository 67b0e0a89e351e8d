// One run of a procedure on the embedded host.
#pragma once

#include <iosfwd>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/framework.h"
#include "host/pivot.h"

#include "embedded/error.h"
#include "embedded/labels/labelled.h"
#include "embedded/shortfall.h"
#include "output/document.h"

namespace hierfit {

/// What a run starts from. Texts are whole documents, names are for messages.
struct SessionInput {
  std::string pmml_name;
  std::string pmml;
  std::string statxml_name;
  std::string statxml;
  std::string dictionary_name;
  std::optional<std::string> dictionary;  ///< a Table Schema laid over the model's dictionary
  std::vector<std::string> files = {};    ///< names for the report of what all this was read from
};

/// How a run behaves.
struct SessionOptions {
  std::string language = "en";      ///< BCP 47 tag, or "C": every key stands for itself
  std::string resource_directory;   ///< holds `locale/` and `template/`
  std::string title = {};           ///< of the report; empty: the documents tell
  Naming naming = Naming::Label;    ///< what fields and values are called
  std::ostream* journal = nullptr;  ///< where the host call journal goes; null: no journal
  std::span<const std::string_view> words = {};  ///< keys of `output::Document::words`
};

/// The host for one run: dictionary, string table, output document, journal. The host
/// calls of the thread that made a session belong to it until it is destroyed; one session a thread
/// at a time, and sessions of several threads do not touch each other.
class Session {
 public:
  /// Reads the dictionary from the model document and lays the overlay over it. Throws
  /// `DocumentError` for a model document that is refused, `FileError` for a bad overlay.
  Session(SessionInput input, const SessionOptions& options);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// Sets the three base class members of a procedure.
  void connect(CFProcCustom& procedure);
  /// `connect`, then `GenerateOutput`, once. Throws `DocumentError` with what is wrong, and where,
  /// when the procedure gives false.
  void run(CFProcCustom& procedure);

  /// What the run left; the session has an empty one then.
  output::Document take_document();

  /// What the run went on without, in its order.
  const std::vector<Shortfall>& shortfalls() const;

  struct State;
  /// For the host's own parts.
  State& state() { return *state_; }
  /// The state of this thread's session; there must be one.
  static State& current();

 private:
  void tell_about();
  void cut_long_labels();

  SessionInput input_;
  std::unique_ptr<State> state_;
};

}  // namespace hierfit
