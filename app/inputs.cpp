#include "app/inputs.h"

#include <filesystem>

#include "app/job.h"
#include "embedded/files/whole_file.h"
#include "import/pair_check.h"

namespace hierfit::app {
namespace {

SessionInput inputs_of_fit(const Pair& pair, Remarks& remarks) {
  fit::Documents documents = read_fit(pair.fit, remarks);
  SessionInput input;
  input.pmml_name = name_of(pair.fit) + " (model)";
  input.pmml = std::move(documents.model);
  input.statxml_name = name_of(pair.fit) + " (result)";
  input.statxml = std::move(documents.result);
  if (!documents.dictionary.empty()) {
    input.dictionary_name = name_of(pair.fit) + " (formats)";
    input.dictionary = std::move(documents.dictionary);
  }
  return input;
}

SessionInput inputs_of_pair(const Pair& pair) {
  SessionInput input;
  input.pmml_name = name_of(pair.model);
  input.pmml = read_whole_file(pair.model);
  if (pair.result.empty()) {
    throw FileError({pair.model, 0, 0}, "has no result document (.xml) beside it");
  }
  input.statxml_name = name_of(pair.result);
  input.statxml = read_whole_file(pair.result);
  return input;
}

/// A pair of documents is never refused here; what cannot be read, its reader tells.
void check_pair(const Pair& pair, const SessionInput& input, Remarks& remarks) {
  fit::Problems of_model;
  fit::Problems of_result;
  fit::check_pair(input.pmml, input.statxml, input.dictionary.value_or(""), of_model, of_result);
  take_problems(of_model, pair.model, remarks);
  take_problems(of_result, pair.result, remarks);
}

}  // namespace

std::string name_of(const std::string& path) {
  return path == kStandardStream ? "standard input" : path;
}

void take_problems(const fit::Problems& problems, const std::string& path, Remarks& remarks) {
  const fit::Problem* last = nullptr;
  const auto where = [&](const fit::Problem& problem) {
    return Location{name_of(path), static_cast<uint32_t>(problem.line),
                    static_cast<uint32_t>(problem.column)};
  };
  for (const fit::Problem& problem : problems.list()) {
    if (problem.severity == fit::Severity::Warning) {
      remarks.push_back({where(problem), problem.sentence, kWritten, true});
      continue;
    }
    if (last != nullptr) remarks.push_back({where(*last), last->sentence, kNotReadable});
    last = &problem;
  }
  if (last != nullptr) throw DocumentError(where(*last), last->sentence);
}

fit::Documents read_fit(const std::string& path, Remarks& remarks) {
  fit::Problems problems;
  std::optional<fit::Documents> documents = fit::import_fit(read_whole_file(path), problems);
  take_problems(problems, path, remarks);
  return std::move(*documents);
}

/// A report is the same wherever its documents lie.
std::string base_name(const std::string& path) {
  return std::filesystem::path(path).filename().string();
}

SessionInput read_inputs(const Pair& pair, Remarks& remarks) {
  SessionInput input = pair.fit.empty() ? inputs_of_pair(pair) : inputs_of_fit(pair, remarks);
  if (!pair.dictionary.empty()) {
    input.dictionary_name = name_of(pair.dictionary);
    input.dictionary =
        fit::laid_over(input.dictionary.value_or(""), read_whole_file(pair.dictionary));
  }
  if (pair.fit.empty()) check_pair(pair, input, remarks);
  for (const std::string& path : {pair.fit, pair.model, pair.result, pair.dictionary})
    if (!path.empty()) input.files.push_back(base_name(name_of(path)));
  return input;
}

}  // namespace hierfit::app
