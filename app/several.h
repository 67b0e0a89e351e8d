// The reports of many pairs of documents, and their index.
#pragma once

#include <string>
#include <vector>

#include "app/job.h"

namespace hierfit::app {

/// The reports to make, all below one folder.
struct SeveralJobs {
  std::string folder;
  std::vector<Job> jobs;
  std::vector<FileError> unreadable;  ///< folders whose documents get no report
};

/// What to make of the pairs: each form that the options name (HTML when they name none) of
/// each pair, as "<folder>/<name>.<ending>", and its charts in "<charts>/<name>/". Throws
/// `UsageError` when the options do not fit several pairs.
SeveralJobs several_jobs(const Pairs& pairs,
                         const std::vector<const report::ChartForm*>& chart_forms,
                         const Options& options);

/// Refuses collisions, then makes the reports on all cores, each whole or not at all, and then the
/// index of all, "index.html". A report that cannot be made does not hold up the others: in the end
/// standard error says which, in the order of the pairs, and which folders could not be read. Gives
/// the highest exit status of all.
int make_several(const SeveralJobs& several, const Workshop& workshop);

}  // namespace hierfit::app
