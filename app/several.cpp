#include "app/several.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <mutex>
#include <new>
#include <optional>
#include <thread>
#include <unistd.h>

#include "app/collisions.h"
#include "app/complaint.h"
#include "app/environment.h"
#include "app/memory.h"
#include "app/new_file.h"
#include "app/progress.h"
#include "report/index.h"

namespace hierfit::app {
namespace {

namespace fs = std::filesystem;

constexpr const char* kIndexFile = "index.html";
constexpr const char* kFormWithoutOption = "html";

std::string folder_of(const Options& options) {
  if (options.outputs.size() != 1 || options.outputs[0] == kStandardStream) {
    throw UsageError("several reports need one folder: -o FOLDER");
  }
  if (!options.journal.empty()) throw UsageError("--journal is for one pair of documents");
  if (!options.title.empty()) throw UsageError("--title is for one report");
  std::error_code unknown;
  const std::string& folder = options.outputs[0];
  if (!fs::is_directory(folder, unknown) && report::form_by_ending(folder) != nullptr) {
    throw UsageError("several reports need a folder, and \"" + folder + "\" names a file");
  }
  return folder;
}

std::vector<const report::Form*> forms_of(const Options& options) {
  std::vector<const report::Form*> forms;
  for (const std::string& name : options.forms) {
    const report::Form* form = report::form_by_name(name);
    if (std::ranges::find(forms, form) == forms.end()) forms.push_back(form);
  }
  if (forms.empty()) forms.push_back(report::form_by_name(kFormWithoutOption));
  return forms;
}

std::string usual_ending(const report::Form& form) {
  return std::string(form.endings.substr(0, form.endings.find(' ')));
}

/// What the index tells of a report.
struct Made {
  std::string title;
  std::vector<output::Message> messages;
};

/// What the makers of the reports share.
class Makers {
 public:
  Makers(const SeveralJobs& several, const Workshop& workshop)
      : several_(several),
        workshop_(workshop),
        failures_(several.jobs.size()),
        remarks_(several.jobs.size()),
        made_(several.jobs.size()) {}

  /// Gives when every report is made or has failed; the progress has gone then.
  void make_all() {
    Progress progress(!workshop_.options.quiet, progress_line(0));
    progress_ = &progress;
    size_t count = workshop_.options.jobs;
    if (count == 0) count = std::max(1U, std::thread::hardware_concurrency());
    std::vector<std::jthread> threads;
    start(threads, std::min(count, several_.jobs.size()) - 1);
    work();
  }

  const std::vector<std::optional<Complaint>>& failures() const { return failures_; }
  const std::vector<Remarks>& remarks() const { return remarks_; }
  /// Of each report its title and what is said about its result.
  const std::vector<Made>& made() const { return made_; }
  /// The language and words of the reports; plain English when none was made.
  const output::Document& words() const { return words_; }

 private:
  /// As many threads as the system has for us: those that are there do the work of the others.
  void start(std::vector<std::jthread>& threads, size_t count) {
    try {
      while (threads.size() < count)
        threads.emplace_back([this] { work(); });
    } catch (const std::exception&) {
      forget_memory();
    }
  }

  /// Takes jobs until none is left.
  void work() noexcept {
    for (size_t job; (job = next_++) < several_.jobs.size();) {
      try {
        make_one(several_.jobs[job], remarks_[job], made_[job]);
      } catch (...) {
        failures_[job] = current_complaint(first_document(several_.jobs[job].pair));
      }
      say_done();
    }
  }

  void say_done() noexcept {
    try {
      progress_->say(progress_line(++done_));
    } catch (const std::bad_alloc&) {
      // The line stays as it was.
    }
  }

  static const std::string& first_document(const Pair& pair) {
    return pair.fit.empty() ? pair.model : pair.fit;
  }

  void make_one(const Job& job, Remarks& remarks, Made& made) {
    for (const Output& output : job.outputs)
      workshop_.folders.make(fs::path(output.path).parent_path().string());
    output::Document words = make(job, workshop_, remarks);
    made = {words.title, std::move(words.about.messages)};
    words.about = {};
    const std::lock_guard lock(words_mutex_);
    if (words_.words.empty()) words_ = std::move(words);
  }

  std::string progress_line(size_t done) const {
    return "hierfit: " + std::to_string(done) + " of " + std::to_string(several_.jobs.size()) +
           " reports \u2026";
  }

  const SeveralJobs& several_;
  const Workshop& workshop_;
  std::atomic<size_t> next_ = 0;
  std::atomic<size_t> done_ = 0;
  std::vector<std::optional<Complaint>> failures_;  ///< by job; each written by one thread
  std::vector<Remarks> remarks_;                    ///< likewise
  std::vector<Made> made_;                          ///< likewise
  std::mutex words_mutex_;
  output::Document words_;
  Progress* progress_ = nullptr;
};

report::IndexEntry entry_of(const Job& job,
                            const std::optional<Complaint>& failure,
                            const Made& made,
                            const std::string& folder) {
  report::IndexEntry entry = {job.pair.name, {}, {}, made.title, {}};
  std::ranges::copy_if(made.messages, std::back_inserter(entry.messages), [](const auto& message) {
    return message.severity != output::Severity::Note;
  });
  if (failure) {
    entry.failure = failure->text();
    return entry;
  }
  for (const Output& output : job.outputs) {
    const fs::path path = fs::path(output.path).lexically_relative(folder);
    entry.links.push_back({std::string(output.form->name), path.generic_string()});
  }
  return entry;
}

std::string index_of(const SeveralJobs& several) {
  return (fs::path(several.folder) / kIndexFile).string();
}

void write_index(const SeveralJobs& several, const Makers& makers) {
  std::vector<report::IndexEntry> entries;
  for (size_t job = 0; job < several.jobs.size(); ++job) {
    entries.push_back(
        entry_of(several.jobs[job], makers.failures()[job], makers.made()[job], several.folder));
  }
  NewFile file(index_of(several));
  file.write(report::render_index(makers.words(), entries));
  file.flush();
  file.put_in_place();
}

/// Says what is odd and which reports are not made; gives the exit status.
int complain(const SeveralJobs& several, const Makers& makers, bool colour) {
  int status = kWritten;
  size_t count = 0;
  for (size_t job = 0; job < several.jobs.size(); ++job) {
    for (const Complaint& remark : makers.remarks()[job])
      say(remark, colour);
    const std::optional<Complaint>& failure = makers.failures()[job];
    if (!failure) continue;
    ++count;
    status = std::max(status, failure->status);
    say(*failure, colour);
  }
  for (const FileError& folder : several.unreadable) {
    status = std::max(status, kNotPossible);
    say({folder.where(), folder.what()}, colour);
  }
  if (count > 0) {
    const std::string sentence = std::to_string(count) + " of " +
                                 std::to_string(several.jobs.size()) + " reports are not made";
    say({{}, sentence, status}, colour);
  }
  return status;
}

}  // namespace

SeveralJobs several_jobs(const Pairs& pairs,
                         const std::vector<const report::ChartForm*>& chart_forms,
                         const Options& options) {
  SeveralJobs several = {folder_of(options), {}, pairs.unreadable};
  const std::vector<const report::Form*> forms = forms_of(options);
  const fs::path folder = several.folder;
  for (const Pair& pair : pairs.pairs) {
    Job& job = several.jobs.emplace_back(Job{pair, {}, {}, chart_forms, {}});
    for (const report::Form* form : forms) {
      job.outputs.push_back({(folder / (pair.name + usual_ending(*form))).string(), form});
    }
    if (!options.charts.empty()) {
      job.charts_folder = (fs::path(options.charts) / pair.name).string();
    }
  }
  return several;
}

int make_several(const SeveralJobs& several, const Workshop& workshop) {
  refuse_collisions(several.jobs, index_of(several));
  workshop.folders.make(several.folder);
  Makers makers(several, workshop);
  makers.make_all();
  forget_memory();
  const int status = complain(several, makers, uses_colour(workshop.options.colour, STDERR_FILENO));
  write_index(several, makers);
  return status;
}

}  // namespace hierfit::app
