#include "app/import_fits.h"

#include <algorithm>
#include <deque>
#include <filesystem>
#include <unistd.h>
#include <utility>

#include "app/environment.h"
#include "app/folders.h"
#include "app/inputs.h"
#include "app/job.h"
#include "app/new_file.h"

namespace hierfit::app {
namespace {

namespace fs = std::filesystem;

void say_all(const Remarks& remarks, const Options& options) {
  const bool colour = uses_colour(options.colour, STDERR_FILENO);
  for (const Complaint& remark : remarks)
    say(remark, colour);
}

/// Does something with each pair; one that fails does not hold up the others.
template <typename Function>
int for_each_pair(const std::vector<Pair>& pairs, const Options& options, Function function) {
  int status = kWritten;
  for (const Pair& pair : pairs) {
    Remarks remarks;
    try {
      function(pair, remarks);
    } catch (...) {
      remarks.push_back(current_complaint());
      status = std::max(status, remarks.back().status);
    }
    say_all(remarks, options);
  }
  return status;
}

void write_documents(const fit::Documents& documents, const fs::path& folder, NewFolders& folders) {
  folders.make(folder.string());
  const std::pair<const char*, const std::string*> texts[] = {
      {"model.pmml", &documents.model},
      {"result.xml", &documents.result},
      {"dictionary.json", &documents.dictionary}};
  std::deque<NewFile> files;
  for (const auto& [name, text] : texts) {
    if (text->empty()) continue;
    files.emplace_back((folder / name).string());
    files.back().write(*text);
    files.back().flush();
  }
  for (NewFile& file : files)
    file.put_in_place();
}

}  // namespace

int import_fits(const Options& options) {
  if (options.outputs.size() != 1 || options.outputs[0] == kStandardStream) {
    throw UsageError("import needs one folder for the documents: -o FOLDER");
  }
  const Pairs pairs = find_pairs(options.inputs, options.dictionary);
  const fs::path folder = options.outputs[0];
  for (const Pair& pair : pairs.pairs) {
    if (pair.fit.empty()) throw UsageError("\"" + pair.model + "\" is no fit document (.json)");
  }
  NewFolders folders;
  return for_each_pair(pairs.pairs, options, [&](const Pair& pair, Remarks& remarks) {
    write_documents(read_fit(pair.fit, remarks), pairs.several ? folder / pair.name : folder,
                    folders);
  });
}

int check_documents(const Options& options) {
  if (!options.outputs.empty()) throw UsageError("check writes no report; leave -o away");
  const Workshop workshop(options);
  const Pairs pairs = find_pairs(options.inputs, options.dictionary);
  return for_each_pair(pairs.pairs, options, [&](const Pair& pair, Remarks& remarks) {
    make({.pair = pair, .outputs = {}, .charts_folder = {}, .chart_forms = {}, .journal = {}},
         workshop, remarks);
  });
}

}  // namespace hierfit::app
