#include "embedded/session.h"

#include <stdexcept>

#include "embedded/dictionary/read_dictionary.h"
#include "embedded/files/paths.h"
#include "embedded/pmml/model_document.h"
#include "embedded/session_state.h"
#include "embedded/strings/language.h"
#include "embedded/strings/report_words.h"

namespace hierfit {
namespace {

thread_local Session* session_of_thread = nullptr;

constexpr const char* kReportTitle = "Generalized Linear Mixed Models";
constexpr const char* kLanguageOfKeys = "en";

output::Document empty_document(const Session::State& state) {
  output::Document document;
  const bool has_catalogue = state.strings.language() != "C";
  document.language = has_catalogue ? state.options.language : kLanguageOfKeys;
  document.right_to_left = is_right_to_left(document.language);
  document.numbers = number_style(document.language);
  document.title = state.strings.text(kReportTitle);
  for (const std::string_view key : kReportWords) {
    document.words.emplace(key, state.strings.text(key));
  }
  return document;
}

void read_dictionary(Session::State& state) {
  const SessionInput& input = state.input;
  add_model_fields(state.dictionary, read_model_document(input.pmml, input.pmml_name));
  if (input.dictionary) {
    overlay_table_schema(state.dictionary, *input.dictionary, input.dictionary_name);
  }
}

/// Why the procedure gave false. The model document was read once before, so the result document is
/// what failed.
DocumentError explain(const Session::State& state) {
  const std::string& file = state.input.statxml_name;
  if (state.statxml_is_empty) return {{file, 0, 0}, "the document is empty"};
  const ReadFailure& failure = state.failure;
  if (failure.sentence.empty()) {
    return {{file, 0, 0}, "the document cannot be read as a result of this procedure"};
  }
  return {{file, failure.line, failure.column}, failure.sentence};
}

}  // namespace

Session::Session(SessionInput input, SessionOptions options) : state_(std::make_unique<State>()) {
  if (session_of_thread != nullptr) {
    throw std::logic_error("a thread has one session at a time");
  }
  state_->input = std::move(input);
  state_->options = std::move(options);
  const std::string& resources = state_->options.resource_directory;
  state_->strings = StringTable(resources + "/locale", state_->options.language);
  state_->paths = make_paths(resources, state_->strings.language());
  read_dictionary(*state_);
  state_->document = empty_document(*state_);
  if (state_->options.journal != nullptr) {
    state_->journal = std::make_unique<journal::Journal>(*state_->options.journal);
  }
  state_->procedure = make_procedure(*state_);
  session_of_thread = this;
}

Session::~Session() { session_of_thread = nullptr; }

Session& Session::current() {
  if (session_of_thread == nullptr) throw std::logic_error("the thread has no session");
  return *session_of_thread;
}

Session::State* state_of_thread() {
  return session_of_thread == nullptr ? nullptr : &session_of_thread->state();
}

journal::Journal* journal_of_thread() {
  const Session::State* state = state_of_thread();
  return state == nullptr ? nullptr : state->journal.get();
}

void Session::connect(CFProcCustom& procedure) {
  procedure.fpProcedure = state_->procedure.get();
  procedure.fpDataSource = &state_->dictionary;
  procedure.fpMetaData = &state_->dictionary;
}

void Session::run(CFProcCustom& procedure) {
  connect(procedure);
  state_->failure = {};
  state_->statxml_is_empty = state_->input.statxml.empty();
  std::vector<std::string> models;
  models.push_back(std::move(state_->input.pmml));
  std::vector<StatXMLBlock> blocks;
  blocks.push_back({std::move(state_->input.statxml)});
  if (!procedure.GenerateOutput(models, blocks, {})) throw explain(*state_);
}

output::Document Session::take_document() {
  return std::exchange(state_->document, empty_document(*state_));
}

}  // namespace hierfit
