// Charts of means: cells without a mean, further factors, what the bars and the numbers are.
#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>

#include "embedded/chart/completion.h"

namespace hierfit::chart {

using output::Chart;
using output::ChartSource;
using output::ChartVariable;
using output::Element;
using output::Format;
using output::kSystemMissing;

namespace {

constexpr output::ColumnKey kMeanColumns[] = {{"Mean"}, {"Lower"}, {"Upper"}};
enum { kMean, kLower, kUpper };

/// The variables of a chart of means; two rows a mean, the bounds one below the other.
struct Means {
  ChartSource* source;
  ChartVariable* mean;
  ChartVariable* bounds;

  size_t size() const { return (source->rows + 1) / 2; }
  double mean_at(size_t cell) const { return number_at(mean, 2 * cell); }
};

std::optional<Means> means_of(Chart& chart, std::string_view mean_role) {
  if (chart.sources.empty()) return std::nullopt;
  ChartSource* source = &chart.sources.front();
  Means means{source, by_role(source, mean_role), by_role(source, "confMargin")};
  if (means.mean == nullptr || means.bounds == nullptr) return std::nullopt;
  return means;
}

/// The categories of a mean.
std::string place_of(ChartSource& source, size_t cell) {
  std::string place;
  for (const std::string_view role : {"effect1", "effect2"}) {
    const ChartVariable* factor = by_role(&source, role);
    const std::string category = factor == nullptr ? "" : category_at(*factor, 2 * cell);
    if (!category.empty()) (place += place.empty() ? "" : ", ") += category;
  }
  return place;
}

/// The data hold 0 for what is no number. A mean of 0 within bounds of 0 is none, and so is an
/// interval from 0 to 0 or a bound of 0 on the wrong side of its mean. Gives the places of the
/// means that are none.
std::vector<std::string> drop_zeros(const Means& means) {
  std::vector<std::string> places;
  for (size_t cell = 0; cell < means.size(); ++cell) {
    const double mean = means.mean_at(cell);
    const double lower = number_at(means.bounds, 2 * cell);
    const double upper = number_at(means.bounds, 2 * cell + 1);
    if (lower == 0 && upper == 0) {
      unset_pair(means.bounds, cell);
      if (mean != 0) continue;
      unset_pair(means.mean, cell);
      places.push_back(place_of(*means.source, cell));
    } else if (lower == 0 && mean < 0) {
      means.bounds->values.unset(2 * cell);
    } else if (upper == 0 && mean > 0) {
      means.bounds->values.unset(2 * cell + 1);
    }
  }
  return places;
}

void note_missing(const Work& work, const std::vector<std::string>& places) {
  if (places.empty()) return;
  work.note(
      work.background.filled("Not estimable, so not shown: ^1", {work.background.listed(places)}));
}

/// Means of events of trials are proportions.
bool are_proportions(const Means& means, const Background& background) {
  if (!background.of_trials) return false;
  for (size_t cell = 0; cell < means.size(); ++cell) {
    const double mean = means.mean_at(cell);
    if (mean != kSystemMissing && (mean < 0 || mean > 1)) return false;
  }
  return true;
}

void say_proportion(const Work& work, const std::string& target) {
  Element* label = work.label_along_y(target);
  const std::string proportion = work.background.filled("^1 (proportion)", {target});
  if (label != nullptr) label->set_text(proportion);
  std::string title = work.chart.title;
  const size_t at = target.empty() ? std::string::npos : title.find(target);
  if (at != std::string::npos) work.retitle(title.replace(at, target.size(), proportion));
}

/// What the marks are: statistics in the format of the tables, with names of their own.
void name_marks(const Work& work, const Means& means) {
  const std::string target = means.mean->label;
  const bool proportions = are_proportions(means, work.background);
  if (proportions) {
    say_proportion(work, target);
  } else {
    work.label_along_y(target);
  }
  means.mean->label = work.background.text("Mean");
  means.mean->statistic = means.bounds->statistic = Format::Coefficient;
  if (work.background.interval.empty()) return;
  means.bounds->label = work.background.interval;
  work.note(work.background.filled("Error bars: ^1", {work.background.interval}));
}

// Further factors.

/// Whether one place holds several means.
bool stacks(const Means& means) {
  std::map<std::string, size_t> cells;
  for (size_t cell = 0; cell < means.size(); ++cell) {
    if (means.mean_at(cell) == kSystemMissing) continue;
    if (++cells[place_of(*means.source, cell)] > 1) return true;
  }
  return false;
}

/// Which further heads the lines of a table have, by mean of the chart.
struct Further {
  std::vector<std::string> titles;
  std::vector<std::vector<std::string>> heads;  ///< by title, then by mean
};

/// Whether a line has the categories of a mean.
bool is_at_place(const output::Record& record, const Means& means, size_t cell) {
  return std::ranges::all_of(std::array{"effect1", "effect2"}, [&](std::string_view role) {
    const ChartVariable* factor = by_role(means.source, role);
    return factor != nullptr &&
           std::ranges::find(record.heads, category_at(*factor, 2 * cell)) != record.heads.end();
  });
}

/// The heads of a table's lines with the same means at the same places; none when the table is not
/// that of the chart.
std::optional<Further> further_in(const output::Table& table, const Means& means) {
  const std::vector<std::string> titles = output::head_titles(table);
  std::vector<size_t> further;
  for (size_t d = 0; d < titles.size(); ++d) {
    const auto is_own = [&](std::string_view role) {
      const ChartVariable* factor = by_role(means.source, role);
      return factor != nullptr && (factor->label == titles[d] || factor->name == titles[d]);
    };
    if (!is_own("effect1") && !is_own("effect2")) further.push_back(d);
  }
  if (further.empty() || further.size() > 2 || titles.size() != further.size() + 2) return {};
  Further found;
  for (const size_t d : further)
    found.titles.push_back(titles[d]);
  found.heads.resize(further.size());
  const std::vector<output::Record> records = output::records_of(table, kMeanColumns);
  std::multimap<double, const output::Record*> by_mean;
  for (const output::Record& record : records)
    by_mean.emplace(record.numbers[kMean].value, &record);
  for (size_t cell = 0; cell < means.size(); ++cell) {
    if (means.mean_at(cell) == kSystemMissing) return {};
    const auto [begin, end] = by_mean.equal_range(means.mean_at(cell));
    const auto record = std::find_if(
        begin, end, [&](const auto& each) { return is_at_place(*each.second, means, cell); });
    if (record == end) return {};
    for (size_t i = 0; i < further.size(); ++i)
      found.heads[i].push_back(record->second->heads[further[i]]);
    by_mean.erase(record);
  }
  return found;
}

/// A panel for each category of the further factors.
void divide(const Work& work, const Means& means, const Further& further) {
  Element* graph = work.graph();
  Element& faceting = graph->add("faceting");
  Element& layout = graph->add("facetLayout");
  layout.set("shareAxes", "true");
  std::string factors;
  for (size_t i = 0; i < further.titles.size(); ++i) {
    const std::string role = "effect" + std::to_string(i + 3);
    faceting.add("variableReference").set("variable", role);
    layout.add("facetLevel").set("across", i == 0 ? "columns" : "rows");
    ChartVariable& variable = add_variable(*means.source, role, further.titles[i]);
    for (size_t cell = 0; cell < further.heads[i].size(); ++cell) {
      variable.values.set(2 * cell, further.heads[i][cell]);
      variable.values.set(2 * cell + 1, further.heads[i][cell]);
    }
    factors += " * " + further.titles[i];
  }
  const ChartVariable* first = by_role(means.source, "effect1");
  const ChartVariable* second = by_role(means.source, "effect2");
  const std::string named = first->label + " * " + second->label;
  std::string title = work.chart.title;
  const size_t at = title.find(named);
  if (at != std::string::npos) work.retitle(title.insert(at + named.size(), factors));
}

void show_further_factors(const Work& work) {
  const auto means = means_of(work.chart, "target");
  if (!means || !stacks(*means) || by_role(means->source, "effect2") == nullptr) return;
  for (const output::Table* table : work.background.means) {
    const auto further = further_in(*table, *means);
    if (further) return divide(work, *means, *further);
  }
  work.note(work.background.text(
      "Several means at one place belong to further factors, which the chart does not tell."));
}

std::string joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names)
    (text += text.empty() ? "" : " * ") += name;
  return text;
}

}  // namespace

void complete_top_means(const Work& work) {
  const auto means = means_of(work.chart, "target");
  if (!means) return;
  const std::vector<std::string> missing = drop_zeros(*means);
  name_marks(work, *means);
  note_missing(work, missing);
  show_further_factors(work);
}

void complete_block_means(const Work& work) {
  const auto means = means_of(work.chart, "targetValue");
  if (!means) return;
  const output::Table* table = output::table_of(work.section, "Estimates");
  std::vector<std::string> missing;
  if (table != nullptr) {
    work.retitle(work.background.filled("^1 by ^2",
                                        {means->mean->label, joined(output::head_titles(*table))}));
    for (const output::Record& record : output::records_of(*table, kMeanColumns)) {
      std::string place;
      for (const std::string& head : record.heads)
        (place += place.empty() ? "" : ", ") += head;
      if (record.numbers[kMean].missing()) missing.push_back(std::move(place));
    }
  }
  name_marks(work, *means);
  note_missing(work, missing);
}

}  // namespace hierfit::chart
