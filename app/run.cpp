#include "app/run.h"

#include <cerrno>
#include <deque>
#include <fstream>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

#include "app/environment.h"
#include "app/module.h"
#include "app/new_file.h"
#include "app/progress.h"
#include "embedded/files/whole_file.h"
#include "embedded/session.h"
#include "embedded/strings/string_table.h"
#include "report/report.h"

namespace hierfit::app {
namespace {

constexpr const char* kStandardStream = "-";

/// One output: where it goes, its form and, once rendered, its text.
struct Output {
  std::string path;
  const report::Form* form;
  std::string text;

  bool to_standard_output() const { return path == kStandardStream; }
};

const report::Form& form_of(const std::string& path, const Options& options) {
  const report::Form* named = report::form_by_name(options.format);
  const report::Form* by_ending = report::form_by_ending(path);
  if (named != nullptr && (by_ending == nullptr || options.outputs.size() == 1)) return *named;
  if (by_ending != nullptr) return *by_ending;
  if (path == kStandardStream) return *report::form_by_name("text");
  throw UsageError("the ending of \"" + path + "\" tells no form; say it with --format");
}

std::vector<Output> outputs_of(const Options& options) {
  std::vector<Output> outputs;
  for (const std::string& path : options.outputs) {
    outputs.push_back({path, &form_of(path, options), {}});
  }
  if (outputs.empty()) {
    outputs.push_back({kStandardStream, &form_of(kStandardStream, options), {}});
  }
  return outputs;
}

std::string name_of(const std::string& path) {
  return path == kStandardStream ? "standard input" : path;
}

SessionInput read_inputs(const Options& options) {
  SessionInput input;
  input.pmml_name = name_of(options.model);
  input.pmml = read_whole_file(options.model);
  input.statxml_name = name_of(options.result);
  input.statxml = read_whole_file(options.result);
  if (!options.dictionary.empty()) {
    input.dictionary_name = name_of(options.dictionary);
    input.dictionary = read_whole_file(options.dictionary);
  }
  return input;
}

/// The language asked for; one that only the environment asks for gives way to English when there
/// is no catalogue for it.
std::string language_of(const Options& options, const std::string& resources) {
  if (!options.language.empty()) return options.language;
  std::string language = language_of_environment();
  const bool has_catalogue = StringTable(resources + "/locale", language).language() != "C";
  return has_catalogue ? language : "en";
}

/// The journal on its way to a file.
class JournalFile {
 public:
  explicit JournalFile(const std::string& path)
      : path_(path), file_(path), stream_(file_.writable_path(), std::ios::binary) {
    check();
  }

  std::ostream& stream() { return stream_; }

  void finish() {
    stream_.close();
    check();
    file_.flush();
  }

  void put_in_place() { file_.put_in_place(); }

 private:
  void check() const {
    if (!stream_) throw FileError({path_, 0, 0}, "the journal cannot be written");
  }

  std::string path_;
  NewFile file_;
  std::ofstream stream_;
};

output::Document make_document(const Options& options,
                               SessionInput input,
                               const ProgramPaths& program,
                               std::ostream* journal) {
  const Module module(program.module);
  Session session(std::move(input), {.language = language_of(options, program.resources),
                                     .resource_directory = program.resources,
                                     .journal = journal});
  const std::unique_ptr<CFProcCustom> procedure = module.make_procedure();
  session.run(*procedure);
  return session.take_document();
}

void render(std::vector<Output>& outputs,
            const output::Document& document,
            const Options& options) {
  for (Output& output : outputs) {
    report::Options look;
    if (output.to_standard_output()) {
      look.width = display_width(STDOUT_FILENO);
      look.colour = uses_colour(options.colour, STDOUT_FILENO);
    }
    output.text = output.form->render(document, look);
  }
}

/// Writes every file beside its place, then standard output, and only then replaces the files.
void deliver(const std::vector<Output>& outputs, JournalFile* journal) {
  std::deque<NewFile> files;
  for (const Output& output : outputs) {
    if (output.to_standard_output()) continue;
    files.emplace_back(output.path).write(output.text);
    files.back().flush();
  }
  if (journal != nullptr) journal->finish();
  for (const Output& output : outputs) {
    if (!output.to_standard_output()) continue;
    if (write_standard_output(output.text) == Written::PipeClosed) break;
  }
  for (NewFile& file : files) {
    file.put_in_place();
  }
  if (journal != nullptr) journal->put_in_place();
}

}  // namespace

void run(const Options& options) {
  std::vector<Output> outputs = outputs_of(options);
  const Progress progress(!options.quiet, "hierfit: making the report \u2026");
  SessionInput input = read_inputs(options);
  std::optional<JournalFile> journal;
  if (!options.journal.empty()) journal.emplace(options.journal);
  render(outputs,
         make_document(options, std::move(input), find_program(),
                       journal ? &journal->stream() : nullptr),
         options);
  deliver(outputs, journal ? &*journal : nullptr);
}

}  // namespace hierfit::app
