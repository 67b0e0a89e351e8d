#include "app/job.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <optional>
#include <unistd.h>

#include "app/complaint.h"
#include "app/delivery.h"
#include "app/drawing.h"
#include "app/environment.h"
#include "app/memory.h"
#include "embedded/session.h"
#include "embedded/strings/language.h"
#include "embedded/strings/string_table.h"
#include "report/extra/extra_charts.h"
#include "report/picture/png.h"
#include "report/preset.h"
#include "report/repeats.h"
#include "report/selection.h"
#include "report/words.h"

namespace hierfit::app {
namespace {

/// The language asked for; one that only the environment asks for gives way to English when there
/// is no catalogue for it.
std::string language_of(const Options& options, const std::string& resources) {
  if (options.language.size() > kLongestTag) throw UsageError("--language has no tag that long");
  if (!options.language.empty()) return canonical_tag(options.language);
  std::string language = canonical_tag(language_of_environment());
  const bool has_catalogue = StringTable(resources + "/locale", language).language() != "C";
  return has_catalogue ? language : "en";
}

/// The module makes do with what it gets, so a report may lack what there was no memory for.
void refuse_if_memory_ran_out() {
  if (memory_ran_out()) throw std::bad_alloc();
}

/// A part of the program that is missing or damaged is no run; a chart that cannot be made is told.
void tell_of(const std::vector<Shortfall>& shortfalls, const Workshop& workshop) {
  for (const Shortfall& shortfall : shortfalls) {
    if (shortfall.of == Shortfall::Of::ProgramFile) {
      throw FileError(shortfall.where, shortfall.sentence);
    }
  }
  const bool colour = uses_colour(workshop.options.colour, STDERR_FILENO);
  for (const Shortfall& shortfall : shortfalls)
    say({shortfall.where, "a chart cannot be made whole: " + shortfall.sentence, kWritten}, colour);
}

/// Leaves the tables and figures that are asked for; of a name that there is not it is told which
/// there are.
void choose(output::Document& document, const Workshop& workshop) {
  const std::vector<std::string>& wanted = workshop.options.tables;
  if (wanted.empty()) return;
  const std::vector<std::string> names = report::names_in(document);
  const std::vector<std::string_view> known(names.begin(), names.end());
  const bool colour = uses_colour(workshop.options.colour, STDERR_FILENO);
  for (const std::string& name : wanted) {
    if (report::is_among(name, names)) continue;
    say({{},
         "the report has no table or figure \"" + name + "\"; it has " + listed(known),
         kWritten},
        colour);
  }
  report::keep(wanted, document);
}

Naming naming_of(std::string_view name) {
  return std::ranges::find(kNamings, name, &NamedNaming::name)->naming;
}

output::Document make_document(SessionInput input,
                               const Workshop& workshop,
                               std::ostream* journal) {
  Session session(std::move(input), {.language = workshop.language,
                                     .resource_directory = workshop.program.resources,
                                     .title = workshop.options.title,
                                     .naming = naming_of(workshop.options.labels),
                                     .journal = journal,
                                     .words = report::kWords});
  const std::unique_ptr<CFProcCustom> procedure = workshop.module.make_procedure();
  session.run(*procedure);
  refuse_if_memory_ran_out();
  tell_of(session.shortfalls(), workshop);
  output::Document document = session.take_document();
  if (workshop.options.no_repeats) report::leave_out_repeats(document);
  if (!workshop.options.no_extra_charts) report::add_extra_charts(document);
  report::apply(*report::preset_by_name(workshop.options.style), document);
  choose(document, workshop);
  return document;
}

/// The same with its journal. Of documents that cannot be read the journal tells, too.
output::Document make_document(SessionInput input, const Workshop& workshop, JournalFile& journal) {
  try {
    output::Document document = make_document(std::move(input), workshop, &journal.stream());
    journal.finish();
    return document;
  } catch (const DocumentError&) {
    refuse_if_memory_ran_out();
    journal.finish();
    journal.put_in_place();
    throw;
  }
}

/// What the documents say against the result goes to standard error, too, and what is odd about the
/// documents into the report.
void exchange(const Pair& pair, Remarks& remarks, output::About& about) {
  const Location result = {name_of(pair.fit.empty() ? pair.result : pair.fit), 0, 0};
  std::vector<output::Message> odd;
  for (const Complaint& remark : remarks) {
    Location where = remark.where;
    where.file = base_name(where.file);
    odd.push_back(
        {{where.text() + ": " + remark.sentence, {}}, output::Severity::Warning, "documents"});
  }
  for (const output::Message& message : about.messages) {
    if (message.severity == output::Severity::Note) continue;
    remarks.push_back({result, message.text.shown, kWritten, true});
  }
  // Notes stay the last.
  const auto notes =
      std::ranges::find(about.messages, output::Severity::Note, &output::Message::severity);
  about.messages.insert(notes, odd.begin(), odd.end());
}

report::Options look_of(const Output& output, const Options& options) {
  constexpr size_t kWidthOfFiles = 80;
  report::Options look;
  look.chart = options.chart;
  look.chart_width = options.chart_width;
  look.resolution = options.resolution;
  look.fragment = options.fragment;
  look.id_prefix = options.id_prefix;
  look.styles = !options.no_styles;
  look.width = options.width;
  if (output.to_standard_output()) {
    look.colour = uses_colour(options.colour, STDOUT_FILENO);
    if (look.width == Options::kTerminalWidth) look.width = display_width(STDOUT_FILENO);
  }
  if (look.width == Options::kTerminalWidth) look.width = kWidthOfFiles;
  return look;
}

/// What `make` makes of a form; writing it takes its own time.
template <class Make>
auto guarded(std::string_view form, Make make) {
  const Drawing drawing(form);
  return make();
}

/// Says so when charts share a picture that has fewer points than they need to be read.
void warn_of_small_picture(const Output& output, double resolution, const Options& options) {
  constexpr double kReadable = 72;
  if (resolution == 0 || resolution >= std::min(kReadable, std::floor(options.resolution))) return;
  const std::string points = std::to_string(std::lround(resolution));
  say({{output.path, 0, 0},
       "the charts are too large for one picture and have only " + points +
           " points an inch; as files of a folder each has its own",
       kWritten},
      uses_colour(options.colour, STDERR_FILENO));
}

void render(const Output& output,
            const output::Document& document,
            const Options& options,
            Delivery& delivery) {
  const report::Options look = look_of(output, options);
  const report::Form& form = *output.form;
  if (output.folder) {
    const auto files = guarded(form.name, [&] { return form.render_folder(document, look); });
    return delivery.add_folder(output.path, form.name, files);
  }
  const std::string text = guarded(form.name, [&] { return form.render(document, look); });
  if (form.name == "png") warn_of_small_picture(output, report::resolution_of(text), options);
  if (output.to_standard_output()) {
    delivery.add_standard_output(text);
  } else {
    delivery.add_file(output.path, text);
  }
}

}  // namespace

Workshop::Workshop(const Options& wanted)
    : program(find_program()),
      module(program.module),
      language(language_of(wanted, program.resources)),
      options(wanted) {}

output::Document make(const Job& job, const Workshop& workshop, Remarks& remarks) {
  forget_memory();
  SessionInput input = read_inputs(job.pair, remarks);
  std::optional<JournalFile> journal;
  if (!job.journal.empty()) journal.emplace(job.journal);
  output::Document document = journal ? make_document(std::move(input), workshop, *journal)
                                      : make_document(std::move(input), workshop, nullptr);
  exchange(job.pair, remarks, document.about);

  Delivery delivery(workshop.folders);
  for (const Output& output : job.outputs)
    render(output, document, workshop.options, delivery);
  for (const report::ChartForm* form : job.chart_forms) {
    const report::Options look = look_of({}, workshop.options);
    const auto files =
        guarded(form->name, [&] { return report::render_charts(document, *form, look); });
    delivery.add_folder(job.charts_folder, form->name, files);
  }
  refuse_if_memory_ran_out();
  delivery.write_out();
  const Undivided undivided;
  delivery.put_in_place();
  if (journal) journal->put_in_place();
  document.content = {};
  return document;
}

}  // namespace hierfit::app
