// Charts of pairwise contrasts: networks of categories.
#include <algorithm>
#include <array>
#include <numeric>
#include <optional>
#include <span>

#include "embedded/chart/completion.h"
#include "embedded/framework/number_text.h"

namespace hierfit::chart {

using output::ChartColumn;
using output::ChartSource;
using output::ChartVariable;
using output::Element;
using output::Format;

namespace {

constexpr output::ColumnKey kColumns[] = {
    {"Contrast Estimate"}, {"Lower"}, {"Upper"}, {"Adj. Sig."}};
enum { kEstimate, kLower, kUpper, kSig };
constexpr char kNodes[] = "nodeSource_1";
constexpr char kEdges[] = "edgeSource_1";

std::string text_at(const ChartVariable* variable, size_t row) {
  if (variable == nullptr) return {};
  switch (variable->values.kind(row)) {
    case ChartColumn::Kind::Unset:
      return {};
    case ChartColumn::Kind::Number:
      return shortest_text(variable->values.number(row));
    case ChartColumn::Kind::Text:
      return variable->values.text(row);
  }
  return {};
}

/// The category within a key, which has the values of its panel ahead. A key that is a number has
/// lost the zeros that led it.
std::string category_in(const ChartVariable& key, size_t row, std::string panel) {
  const bool is_number = key.values.kind(row) == ChartColumn::Kind::Number;
  std::string text = text_at(&key, row);
  if (is_number) panel.erase(0, std::min(panel.find_first_not_of('0'), panel.size()));
  if (!text.starts_with(panel)) return text;
  text.erase(0, panel.size());
  return is_number && text.empty() ? "0" : text;
}

std::string panel_at(ChartSource& source, size_t row) {
  return text_at(by_role(&source, "facet1"), row) + text_at(by_role(&source, "facet2"), row);
}

/// The dictionary's variable that the nodes are categories of, or null.
const Variable* compared_variable(const Work& work) {
  const Element* data = std::as_const(work.chart.document).child("data");
  if (data == nullptr) return nullptr;
  for (const Element* source : data->children()) {
    for (const Element* variable : source->children()) {
      if (source->value("name") == kNodes && variable->value("name") == "node") {
        return work.background.dictionary.find(variable->value("dictionary"));
      }
    }
  }
  return nullptr;
}

/// Puts categories with their labels in the place of keys.
void name_categories(ChartVariable& keys, ChartSource& source, const Variable* compared) {
  ChartColumn categories;
  for (size_t row = 0; row < keys.values.rows(); ++row) {
    const std::string category = category_in(keys, row, panel_at(source, row));
    const bool holds_strings = compared != nullptr && compared->holds_strings();
    const std::optional<double> number = holds_strings ? std::nullopt : parse_number(category);
    if (number) {
      categories.set(row, *number);
    } else {
      categories.set(row, category);
    }
  }
  keys.values = std::move(categories);
  if (compared == nullptr) return;
  keys.number_labels.clear();
  keys.text_labels.clear();
  for (const auto& [value, label] : compared->GetValueLabels()->by_number)
    keys.number_labels.emplace(value, output::plain_text(label));
  for (const auto& [value, label] : compared->GetValueLabels()->by_text)
    keys.text_labels.emplace(value, output::plain_text(label));
}

/// Numbers by size, ahead of texts.
bool comes_first(const ChartVariable& variable, size_t row, size_t other) {
  const auto number = parse_number(text_at(&variable, row));
  const auto other_number = parse_number(text_at(&variable, other));
  if (number && other_number) return *number < *other_number;
  if (number.has_value() != other_number.has_value()) return number.has_value();
  return text_at(&variable, row) < text_at(&variable, other);
}

void sort_nodes(ChartSource& nodes) {
  std::vector<size_t> order(nodes.rows);
  std::iota(order.begin(), order.end(), size_t{0});
  for (const std::string_view role : {"node", "facet2", "facet1"}) {
    const ChartVariable* variable = by_role(&nodes, role);
    if (variable == nullptr) continue;
    std::ranges::stable_sort(
        order, [&](size_t row, size_t other) { return comes_first(*variable, row, other); });
  }
  for (ChartVariable& variable : nodes.variables) {
    ChartColumn sorted;
    for (size_t row = 0; row < order.size(); ++row) {
      switch (variable.values.kind(order[row])) {
        case ChartColumn::Kind::Unset:
          sorted.unset(row);
          break;
        case ChartColumn::Kind::Number:
          sorted.set(row, variable.values.number(order[row]));
          break;
        case ChartColumn::Kind::Text:
          sorted.set(row, variable.values.text(order[row]));
          break;
      }
    }
    variable.values = std::move(sorted);
  }
}

/// A sentence of a pattern with both categories by their labels; nothing where it is not of that
/// pattern with these categories.
std::optional<std::string> with_labels(const Background& background,
                                       std::string_view key,
                                       const std::string& sentence,
                                       std::span<const std::string, 2> categories,
                                       std::span<const std::string, 2> labels) {
  constexpr std::string_view kTarget = "^1";
  const std::string pattern =
      background.filled(key, {std::string(kTarget), categories[0], categories[1]});
  const size_t at = pattern.find(kTarget);
  if (at == std::string::npos) return std::nullopt;
  const std::string_view ahead = std::string_view(pattern).substr(0, at);
  const std::string_view behind = std::string_view(pattern).substr(at + kTarget.size());
  if (sentence.size() < ahead.size() + behind.size() || !sentence.starts_with(ahead) ||
      !sentence.ends_with(behind)) {
    return std::nullopt;
  }
  const std::string target = sentence.substr(at, sentence.size() - ahead.size() - behind.size());
  return background.filled(key, {target, labels[0], labels[1]});
}

/// The sentences on the pairs name categories of strings by their values.
void name_in_sentences(const Work& work, ChartSource& edges) {
  ChartVariable* sentences = by_role(&edges, "tooltip");
  const ChartVariable* from = by_role(&edges, "from");
  const ChartVariable* to = by_role(&edges, "to");
  if (sentences == nullptr || from == nullptr || to == nullptr) return;
  for (size_t row = 0; row < sentences->values.rows(); ++row) {
    if (sentences->values.kind(row) != ChartColumn::Kind::Text) continue;
    std::array<std::string, 2> categories{text_at(from, row), text_at(to, row)};
    std::array<std::string, 2> labels{category_at(*from, row), category_at(*to, row)};
    for (const bool turned : {false, true}) {
      if (turned) std::ranges::reverse(categories), std::ranges::reverse(labels);
      for (const std::string_view key : {"Simple Higher", "Simple Same"}) {
        const auto named =
            with_labels(work.background, key, sentences->values.text(row), categories, labels);
        if (named) sentences->values.set(row, *named);
      }
    }
  }
}

bool is_left_out(const output::Record& record) { return record.numbers[kSig].value == 1; }

/// Joins the edges with the lines of their table, from which those are missing that show nothing.
void join_edges(const Work& work, ChartSource& edges, const output::Table& table) {
  const Background& background = work.background;
  std::vector<output::Record> records = output::records_of(table, kColumns);
  const size_t left_out = std::erase_if(records, is_left_out);
  if (records.size() != edges.rows) return;
  if (left_out > 0) {
    work.note(background.filled("Pairs with an adjusted significance of 1, not shown: ^1",
                                {std::to_string(left_out)}));
  }
  const std::string title = output::head_titles(table).back();
  for (const char* role : {"contrast", "estimate", "bounds", "significance"})
    add_variable(edges, role, {});
  ChartVariable& contrast = *by_role(&edges, "contrast");
  contrast.label = title;
  ChartVariable& estimate = *by_role(&edges, "estimate");
  estimate.label = background.text("Contrast Estimate");
  ChartVariable& significance = *by_role(&edges, "significance");
  significance.label = background.text("Adj. Sig.");
  estimate.statistic = Format::Coefficient;
  significance.statistic = Format::Significance;
  std::vector<std::string> missing;
  for (size_t row = 0; row < records.size(); ++row) {
    const output::Record& record = records[row];
    contrast.values.set(row, record.heads.back());
    set_number(estimate, row, record.numbers[kEstimate]);
    set_number(significance, row, record.numbers[kSig]);
    if (!record.numbers[kSig].missing()) continue;
    for (const std::string_view role : {"type", "tooltip"}) {
      if (ChartVariable* variable = by_role(&edges, role)) variable->values.unset(row);
    }
    std::string name;
    for (const std::string& head : record.heads)
      (name += name.empty() ? "" : ", ") += head;
    missing.push_back(std::move(name));
  }
  if (Element* edge = work.graph("edge")) {
    for (const char* role : {"contrast", "estimate", "significance"})
      add_tooltip(*edge, role);
  }
  if (!missing.empty()) {
    work.note(background.filled("Not estimable, so not shown: ^1", {background.listed(missing)}));
  }
}

}  // namespace

void complete_pairs(const Work& work) {
  ChartSource* nodes = source_of(work.chart, kNodes);
  ChartSource* edges = source_of(work.chart, kEdges);
  if (nodes == nullptr || edges == nullptr || work.graph() == nullptr) return;
  const Variable* compared = compared_variable(work);
  if (ChartVariable* node = by_role(nodes, "node")) name_categories(*node, *nodes, compared);
  for (const std::string_view role : {"from", "to"}) {
    if (ChartVariable* end = by_role(edges, role)) name_categories(*end, *edges, compared);
  }
  name_in_sentences(work, *edges);
  sort_nodes(*nodes);
  // A weight says how significant a pair is, but only pairs of numbers have one: the class of
  // significance says it for all.
  if (Element* edge = work.graph("edge")) edge->remove_children("size");
  std::erase_if(edges->variables, [](const ChartVariable& variable) {
    return variable.role == "weight" || variable.role == "weightInPopup";
  });
  const output::Table* table = output::table_of(work.section, "Contrasts");
  if (table == nullptr) return;
  work.retitle(output::head_titles(*table).back());
  join_edges(work, *edges, *table);
}

}  // namespace hierfit::chart
