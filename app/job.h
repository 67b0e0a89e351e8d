// One report: two documents in, files out.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/folders.h"
#include "app/inputs.h"
#include "app/module.h"
#include "app/options.h"
#include "app/pairs.h"
#include "report/chart_files.h"
#include "report/report.h"

namespace hierfit::app {

/// "-" as a file is standard input or standard output.
inline constexpr std::string_view kStandardStream = "-";

/// Where one form of a report goes.
struct Output {
  std::string path;
  const report::Form* form;
  bool folder = false;  ///< whether the form is written as a folder of files

  bool to_standard_output() const { return path == kStandardStream; }
};

/// A report to make.
struct Job {
  Pair pair;
  std::vector<Output> outputs;
  std::string charts_folder;  ///< empty: no charts as files
  std::vector<const report::ChartForm*> chart_forms;
  std::string journal;  ///< empty: none
};

/// What every job of a run needs.
struct Workshop {
  ProgramPaths program;
  Module module;
  std::string language;
  const Options& options;
  mutable NewFolders folders;

  /// Finds and loads the module.
  explicit Workshop(const Options& wanted);
};

/// Makes the report. No file is replaced before every form is made and safe on the disk. Gives the
/// language, the words, the title and the messages of its document, without content. What is odd
/// about the documents, and what they say against the result, goes to `remarks`. Throws `Error` and
/// what the forms throw.
output::Document make(const Job& job, const Workshop& workshop, Remarks& remarks);

}  // namespace hierfit::app
