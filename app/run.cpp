#include "app/run.h"

#include <algorithm>
#include <filesystem>
#include <unistd.h>

#include "app/collisions.h"
#include "app/complaint.h"
#include "app/environment.h"
#include "app/import_fits.h"
#include "app/job.h"
#include "app/progress.h"
#include "app/several.h"
#include "embedded/strings/string_table.h"

namespace hierfit::app {
namespace {

bool is_folder(const std::string& path) {
  std::error_code unknown;
  return path.ends_with('/') || std::filesystem::is_directory(path, unknown);
}

/// The form of an output: the one that is named, unless its own ending tells another.
const report::Form& form_of(const std::string& path, const Options& options) {
  const report::Form* named =
      options.forms.empty() ? nullptr : report::form_by_name(options.forms[0]);
  const report::Form* by_ending = report::form_by_ending(path);
  if (named != nullptr && (by_ending == nullptr || options.outputs.size() == 1)) return *named;
  if (by_ending != nullptr) return *by_ending;
  if (path == kStandardStream) return *report::form_by_name("text");
  throw UsageError("the ending of \"" + path + "\" tells no form; say it with --format");
}

Output output_of(const std::string& path, const Options& options) {
  const report::Form& form = form_of(path, options);
  const bool folder = is_folder(path);
  if (options.fragment && !form.has_fragment) {
    throw UsageError("the form " + std::string(form.name) + " of \"" + path + "\" has no fragment");
  }
  if (folder && form.render_folder == nullptr) {
    throw UsageError("\"" + path + "\" is a folder, and the form " + std::string(form.name) +
                     " is one file");
  }
  return {path, &form, folder};
}

std::vector<Output> outputs_of(const Options& options) {
  if (options.forms.size() > 1) {
    throw UsageError("one report has a form for each output; give several outputs");
  }
  std::vector<Output> outputs;
  for (const std::string& path : options.outputs)
    outputs.push_back(output_of(path, options));
  if (outputs.empty()) {
    outputs.push_back(output_of(std::string(kStandardStream), options));
  }
  return outputs;
}

/// A text of its own for a language that no catalogue serves: each key is shown as it stands then.
void warn_of_language(const Workshop& workshop, bool colour) {
  const StringTable table(workshop.program.resources + "/locale", workshop.language);
  if (workshop.language == "C" || table.language() != "C") return;
  say({{},
       "there is no string table for the language \"" + workshop.language +
           "\"; texts show as their keys",
       kWritten},
      colour);
}

/// What is odd about the documents is said whether the report comes to be or not.
int make_one(const Job& job, const Workshop& workshop, bool colour) {
  Remarks remarks;
  const auto say = [&] {
    for (const Complaint& remark : remarks)
      app::say(remark, colour);
  };
  try {
    const Progress progress(!workshop.options.quiet, "hierfit: making the report \u2026");
    make(job, workshop, remarks);
  } catch (...) {
    say();
    throw;
  }
  say();
  return kWritten;
}

}  // namespace

int run(const Options& options) {
  if (options.command == kImport) return import_fits(options);
  if (options.command == kCheck) return check_documents(options);
  const Pairs pairs = find_pairs(options.inputs, options.dictionary);
  const Workshop workshop(options);
  const bool colour = uses_colour(options.colour, STDERR_FILENO);
  std::vector<const report::ChartForm*> chart_forms;
  if (!options.charts.empty()) {
    for (const std::string& name : options.chart_forms) {
      const report::ChartForm* form = report::chart_form_by_name(name);
      if (std::ranges::find(chart_forms, form) == chart_forms.end()) chart_forms.push_back(form);
    }
    if (chart_forms.empty()) chart_forms.push_back(&report::kChartForms[0]);
  }
  if (pairs.several) {
    const SeveralJobs several = several_jobs(pairs, chart_forms, options);
    warn_of_language(workshop, colour);
    return make_several(several, workshop);
  }
  const Job job = {pairs.pairs[0], outputs_of(options), options.charts, chart_forms,
                   options.journal};
  refuse_collisions({&job, 1});
  warn_of_language(workshop, colour);
  return make_one(job, workshop, colour);
}

}  // namespace hierfit::app
