#include "embedded/session.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "embedded/about/messages.h"
#include "embedded/chart/complete.h"
#include "embedded/dictionary/read_dictionary.h"
#include "embedded/files/paths.h"
#include "embedded/labels/relabel.h"
#include "embedded/pmml/model_document.h"
#include "embedded/session_state.h"

namespace hierfit {
namespace {

thread_local Session* session_of_thread = nullptr;

constexpr const char* kLanguageOfKeys = "en";

output::Document empty_document(const Inputs& inputs) {
  output::Document document;
  const bool has_catalogue = inputs.strings.language() != "C";
  document.language = has_catalogue ? inputs.language : kLanguageOfKeys;
  document.right_to_left = inputs.strings.marks().right_to_left;
  document.numbers = inputs.strings.marks().numbers;
  document.title = inputs.title;
  for (const std::string_view key : inputs.words) {
    document.words.emplace(key, inputs.strings.text(key));
  }
  return document;
}

Inputs read_inputs(const SessionInput& input, const SessionOptions& options) {
  const std::string& resources = options.resource_directory;
  Inputs inputs;
  inputs.language = options.language;
  inputs.words = options.words;
  inputs.strings = StringTable(resources + "/locale", options.language);
  inputs.paths = make_paths(resources, inputs.strings.language());
  const ModelDocument model = read_model_document(input.pmml, input.pmml_name);
  add_model_fields(inputs.dictionary, model);
  inputs.model = about::model_facts(model);
  inputs.files = input.files;
  inputs.title =
      options.title.empty() ? about::title_of(inputs.model, inputs.strings) : options.title;
  if (input.dictionary) {
    overlay_table_schema(inputs.dictionary, *input.dictionary, input.dictionary_name);
  }
  apply(options.naming, inputs.dictionary);
  return inputs;
}

/// The topmost heading, whose items go into the document.
std::unique_ptr<BpProcedure> make_procedure(Session::State& state) {
  return std::make_unique<BpProcedure>(std::make_shared<BpHeading::Impl>(
      state.outputs.document.content, state.outputs.open_sections,
      pivot::Wording{state.inputs.strings, state.outputs.document, state.inputs.dictionary},
      state.journal.get()));
}

/// Why the procedure gave false. The model document was read once before, so the result document is
/// what failed.
DocumentError explain(const std::string& file, const ReadFailure& failure) {
  if (failure.sentence.empty()) {
    return {{file, 0, 0}, "the document cannot be read as a result of this procedure"};
  }
  return {{file, failure.line, failure.column}, failure.sentence};
}

}  // namespace

void Outputs::tell(const StringTable& strings, const char* key) {
  auto message = std::make_unique<output::Message>();
  message->text.shown = strings.text(key);
  open_section().items.emplace_back(std::move(message));
}

Session::Session(SessionInput input, const SessionOptions& options)
    : input_(std::move(input)), state_(std::make_unique<State>()) {
  if (session_of_thread != nullptr) {
    throw std::logic_error("a thread has one session at a time");
  }
  state_->inputs = read_inputs(input_, options);
  state_->outputs.document = empty_document(state_->inputs);
  state_->outputs.budget = Budget(input_.pmml.size() + input_.statxml.size() +
                                  (input_.dictionary ? input_.dictionary->size() : size_t{0}));
  if (options.journal != nullptr) {
    state_->journal = std::make_unique<journal::Journal>(*options.journal);
  }
  state_->handles.procedure = make_procedure(*state_);
  state_->handles.editor = editor::make_editor();
  session_of_thread = this;
}

Session::~Session() { session_of_thread = nullptr; }

Session::State& Session::current() {
  if (session_of_thread == nullptr) throw std::logic_error("the thread has no session");
  return session_of_thread->state();
}

Session::State* state_of_thread() {
  return session_of_thread == nullptr ? nullptr : &session_of_thread->state();
}

journal::Journal* journal_of_thread() {
  const Session::State* state = state_of_thread();
  return state == nullptr ? nullptr : state->journal.get();
}

void Session::connect(CFProcCustom& procedure) {
  procedure.fpProcedure = state_->handles.procedure.get();
  procedure.fpDataSource = &state_->inputs.dictionary;
  procedure.fpMetaData = &state_->inputs.dictionary;
}

/// Keeps what tables repeat in proportion to the documents.
void Session::cut_long_labels() {
  Outputs& outputs = state_->outputs;
  if (cut_labels(outputs.document.content, outputs.budget.repeated_labels()) == 0) return;
  outputs.tell(state_->inputs.strings,
               "The labels of the tables are cut: repeated in every row, they are out of "
               "proportion to the documents.");
}

void Session::run(CFProcCustom& procedure) {
  connect(procedure);
  ReadFailure& failure = state_->outputs.failure;
  failure = {};
  const bool is_empty = input_.statxml.empty();
  std::vector<std::string> models;
  models.push_back(std::move(input_.pmml));
  std::vector<StatXMLBlock> blocks;
  blocks.push_back({std::move(input_.statxml)});
  if (procedure.GenerateOutput(models, blocks, {})) {
    cut_long_labels();
    return tell_about();
  }
  if (is_empty) failure = {"the document is empty", 1, 1};
  throw explain(input_.statxml_name, failure);
}

/// Behind the run: what the tables hold is told, too.
void Session::tell_about() {
  const Inputs& inputs = state_->inputs;
  output::Document& document = state_->outputs.document;
  if (!state_->outputs.result) return;
  relabel(document, inputs.dictionary, inputs.strings, state_->outputs.result->target);
  const about::Wording wording = {inputs.strings, inputs.dictionary};
  about::add_notes(*state_->outputs.result, document.content, wording);
  std::vector<output::Message> of_tables = std::move(document.about.messages);
  document.about =
      about::about(inputs.model, *state_->outputs.result, inputs.files, document, wording);
  std::vector<output::Message>& messages = document.about.messages;
  std::ranges::move(of_tables, std::back_inserter(messages));
  about::sort_by_severity(messages);
}

const std::vector<Shortfall>& Session::shortfalls() const { return state_->outputs.shortfalls; }

output::Document Session::take_document() {
  chart::complete_charts(state_->outputs.document, state_->inputs.strings,
                         state_->inputs.dictionary);
  return std::exchange(state_->outputs.document, empty_document(state_->inputs));
}

}  // namespace hierfit
