#include "report/chart/panels.h"

#include <map>

namespace hierfit::report::chart {
namespace {

constexpr uint32_t kMostPanels = 64;
constexpr uint32_t kNoPanel = 0xFFFFFFFE;

/// Gives each row of each element its panel.
class Paneling {
 public:
  Paneling(const Graph& graph, const output::NumberStyle& style) : graph_(graph), style_(style) {}

  Division divide(std::vector<BoundElement>& elements) {
    for (BoundElement& element : elements)
      assign(element);
    if (made_.panels.empty()) made_.panels.emplace_back();
    made_.single_facet = !(has_columns_ && has_rows_);
    return std::move(made_);
  }

 private:
  using Key = std::pair<uint32_t, uint32_t>;
  using Facets = std::vector<std::pair<const Facet*, const ChartVariable*>>;

  void assign(BoundElement& element) {
    Facets facets;
    for (const Facet& facet : graph_.facets) {
      const ChartVariable* variable = bound(element.source, facet.variable);
      if (variable != nullptr) facets.emplace_back(&facet, variable);
    }
    if (facets.empty()) return;
    for (const auto& [facet, variable] : facets)
      (facet->across_columns ? has_columns_ : has_rows_) = true;
    element.panel_of_row.assign(element.rows(), kNoPanel);
    for (size_t row = 0; row < element.rows(); ++row) {
      Key key{0, 0};
      bool whole = true;
      for (const auto& [facet, variable] : facets) {
        ValueIndex& values = facet->across_columns ? columns_ : rows_;
        const uint32_t value = values.add(*variable, row, style_);
        whole = whole && value != ValueIndex::kNone;
        (facet->across_columns ? key.first : key.second) = value;
      }
      if (whole) element.panel_of_row[row] = panel(key, element, facets, row);
    }
  }

  uint32_t panel(Key key, const BoundElement& element, const Facets& facets, size_t row) {
    const auto [found, fresh] = by_key_.try_emplace(key, kNoPanel);
    if (!fresh) return found->second;
    if (made_.panels.size() >= kMostPanels) {
      ++made_.left_out;
      return kNoPanel;
    }
    found->second = static_cast<uint32_t>(made_.panels.size());
    Panel made{.column = key.first,
               .row = key.second,
               .titles = {},
               .source = element.source,
               .at_row = row};
    for (const auto& [facet, variable] : facets)
      made.titles.push_back(title(*variable, row));
    made_.panels.push_back(std::move(made));
    return found->second;
  }

  std::string title(const ChartVariable& variable, size_t row) const {
    std::string value = shown_value(variable, row, style_);
    if (!variable.prefix.empty() || variable.label.empty()) return value;
    return variable.label + ": " + value;
  }

  const Graph& graph_;
  const output::NumberStyle& style_;
  Division made_;
  ValueIndex columns_;
  ValueIndex rows_;
  std::map<Key, uint32_t> by_key_;
  bool has_columns_ = false;
  bool has_rows_ = false;
};

}  // namespace

Division divide(std::vector<BoundElement>& elements,
                const Graph& graph,
                const output::NumberStyle& style) {
  return Paneling(graph, style).divide(elements);
}

bool is_hidden(const LineGuide& guide, const Panel& panel) {
  return std::ranges::any_of(guide.hidden.clauses(), [&](const auto& clause) {
    const ChartVariable* variable =
        panel.source == nullptr ? nullptr : panel.source->by_role(clause.name);
    return variable != nullptr && !output::names_row(clause.value, variable->values, panel.at_row);
  });
}

}  // namespace hierfit::report::chart
