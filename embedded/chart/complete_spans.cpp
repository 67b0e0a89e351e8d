// Charts of simple and deviation contrasts: spans from a line to means.
#include <algorithm>
#include <map>
#include <set>

#include "embedded/chart/completion.h"
#include "embedded/framework/number_text.h"
#include "output/hide_condition.h"

namespace hierfit::chart {

using output::ChartSource;
using output::ChartVariable;
using output::Element;
using output::Format;
using output::kSystemMissing;
using output::Number;

namespace {

constexpr output::ColumnKey kColumns[] = {
    {"Contrast Estimate"}, {"Lower"}, {"Upper"}, {"Adj. Sig."}};
enum { kEstimate, kLower, kUpper, kSig };
constexpr output::ColumnKey kMeanColumns[] = {{"Mean"}};
constexpr std::string_view kFacets[] = {"facet1", "facet2"};

/// The contrasts of a chart with the lines of their table, one by one.
class Spans {
 public:
  Spans(const Work& work, ChartSource& source, std::vector<output::Record> records)
      : work_(work), source_(source), records_(std::move(records)) {}

  void complete() {
    keep_known_means();
    mend_references();
    for (size_t i = 0; i < records_.size(); ++i)
      drop_missing(i);
    add_statistics();
    if (!missing_.empty()) {
      work_.note(work_.background.filled("Not estimable, so not shown: ^1",
                                         {work_.background.listed(missing_)}));
    }
  }

 private:
  ChartVariable* role(std::string_view name) { return by_role(&source_, name); }
  double mean_of(size_t i) { return number_at(role("value"), 2 * i + 1); }

  /// A mean that no table of the block has is none; where there is no such table, all hold.
  void keep_known_means() {
    const output::Table* table = output::table_of(work_.section, "Estimates");
    if (table == nullptr) return;
    std::set<double> known;
    for (const output::Record& record : output::records_of(*table, kMeanColumns)) {
      if (!record.numbers.front().missing()) known.insert(record.numbers.front().value);
    }
    for (size_t i = 0; i < records_.size(); ++i) {
      if (!known.contains(mean_of(i))) records_[i].numbers[kEstimate] = Number{};
    }
  }

  bool is_missing(size_t i) const { return records_[i].numbers[kEstimate].missing(); }

  /// The panel of a contrast.
  std::string panel_of(size_t i) {
    std::string panel;
    for (const std::string_view facet : kFacets) {
      const ChartVariable* variable = role(facet);
      (panel += '\n') += variable == nullptr ? "" : category_at(*variable, 2 * i);
    }
    return panel;
  }

  /// The line of a panel is found from its first contrast. Where that one is missing, another that
  /// is there gives it, and a panel without any has none.
  void mend_references() {
    std::map<std::string, std::vector<size_t>> panels;
    for (size_t i = 0; i < records_.size(); ++i)
      panels[panel_of(i)].push_back(i);
    for (const auto& [panel, contrasts] : panels) {
      if (!is_missing(contrasts.front())) continue;
      const auto known = std::ranges::find_if(contrasts, [&](size_t i) { return !is_missing(i); });
      Element* guide = guide_of(contrasts.front());
      if (known == contrasts.end()) {
        // No mark is left that the line would be for.
        if (guide != nullptr) guide->set("y", "nan");
        continue;
      }
      const double reference = mean_of(*known) - records_[*known].numbers[kEstimate].value;
      if (guide != nullptr) guide->set("y", shortest_text(reference));
      for (const size_t i : contrasts)
        move(i, reference);
    }
  }

  void move(size_t i, double reference) {
    const std::vector<Number>& numbers = records_[i].numbers;
    set_pair(*role("value"), i, reference, mean_of(i));
    if (ChartVariable* whisker = role("confMargin")) {
      set_pair(*whisker, i, reference + numbers[kLower].value, reference + numbers[kUpper].value);
    }
  }

  /// The line that stands in the panel of a contrast.
  Element* guide_of(size_t i) {
    for (Element* guide : work_.graph()->children("lineGuide")) {
      const output::HideCondition hidden(guide->value("hideWhen"));
      const bool is_hidden = std::ranges::any_of(hidden.clauses(), [&](const auto& clause) {
        const ChartVariable* facet = role(clause.name);
        return facet != nullptr && !output::names_row(clause.value, facet->values, 2 * i);
      });
      if (!is_hidden) return guide;
    }
    return nullptr;
  }

  void drop_missing(size_t i) {
    const output::Record& record = records_[i];
    if (is_missing(i)) {
      for (const std::string_view name : {"value", "confMargin", "type", "tooltip"})
        unset_pair(role(name), i);
      std::string name;
      for (const std::string& head : record.heads)
        (name += name.empty() ? "" : ", ") += head;
      missing_.push_back(std::move(name));
      return;
    }
    if (record.numbers[kSig].missing()) {
      unset_pair(role("type"), i);
      unset_pair(role("tooltip"), i);
    }
    ChartVariable* whisker = role("confMargin");
    if (whisker == nullptr) return;
    if (record.numbers[kLower].missing()) whisker->values.unset(2 * i);
    if (record.numbers[kUpper].missing()) whisker->values.unset(2 * i + 1);
  }

  /// The numbers of the table, as columns of the data and lines of the tooltips.
  void add_statistics() {
    const Background& background = work_.background;
    role("value")->label = background.text("Estimated Mean");
    role("value")->statistic = Format::Coefficient;
    add("estimate", background.text("Contrast Estimate"), Format::Coefficient, kEstimate,
        kEstimate);
    add("bounds", background.interval, Format::Coefficient, kLower, kUpper);
    add("significance", background.text("Adj. Sig."), Format::Significance, kSig, kSig);
  }

  void add(const char* name, const std::string& label, Format format, int first, int second) {
    ChartVariable& variable = add_variable(source_, name, label, format);
    for (size_t i = 0; i < records_.size(); ++i) {
      if (is_missing(i)) continue;
      set_number(variable, 2 * i, records_[i].numbers[static_cast<size_t>(first)]);
      set_number(variable, 2 * i + 1, records_[i].numbers[static_cast<size_t>(second)]);
    }
    add_tooltip(*work_.graph(), name);
  }

  const Work& work_;
  ChartSource& source_;
  std::vector<output::Record> records_;  ///< by contrast
  std::vector<std::string> missing_;
};

}  // namespace

void complete_spans(const Work& work) {
  ChartSource* source = source_of(work.chart, "source");
  if (source == nullptr || by_role(source, "value") == nullptr || work.graph() == nullptr) return;
  const Background& background = work.background;
  if (background.of_trials) {
    Element* label = work.label_along_y(background.text("Estimated Mean"));
    if (label != nullptr) label->set_text(background.filled("^1 (proportion)", {label->text()}));
  }
  if (!background.interval.empty()) {
    work.note(background.filled("Error bars: ^1 of the contrast, drawn from the horizontal line",
                                {background.interval}));
  }
  const output::Table* table = output::table_of(work.section, "Contrasts");
  if (table == nullptr) return;
  work.retitle(output::head_titles(*table).back());
  std::vector<output::Record> records = output::records_of(*table, kColumns);
  if (2 * records.size() == source->rows) Spans(work, *source, std::move(records)).complete();
}

}  // namespace hierfit::chart
