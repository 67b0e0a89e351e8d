#include "embedded/labels/relabel.h"

#include <algorithm>
#include <optional>

#include "embedded/framework/number_text.h"
#include "embedded/labels/labelled.h"

namespace hierfit {
namespace {

/// The dimensions of tables whose labels are expressions of names, by the keys of their titles.
constexpr std::string_view kDimensions[] = {
    "Source",
    "Model Term",
    "Random Effect Block",
    "Random Effect Block Column",
    "Random Effect Covariance",
};
/// The variables of charts that hold such expressions, by their roles.
constexpr std::string_view kChartRoles[] = {"Nodes"};
constexpr std::string_view kPredictors = "Continuous predictors fixed at [%1=%2:,^1=^2:]1";
/// Joins the pieces of a label that is long.
constexpr std::string_view kJoint = "[:^1:]1";
constexpr std::string_view kThreshold = "Threshold for ^1=";

template <size_t Size>
bool holds(const std::string_view (&list)[Size], std::string_view word) {
  return std::ranges::find(list, word) != std::end(list);
}

/// Texts of charts may hold markup.
std::string markup_of(std::string_view text) {
  std::string markup;
  for (const char c : text) {
    if (c == '&') {
      markup += "&amp;";
    } else if (c == '<') {
      markup += "&lt;";
    } else if (c == '\n') {
      markup += "<BR/>";
    } else {
      markup += c;
    }
  }
  return markup;
}

class Relabelling {
 public:
  Relabelling(const DataDictionary& dictionary, const StringTable& strings, std::string_view target)
      : dictionary_(dictionary), target_(dictionary.find(target)) {
    const std::string_view pattern = strings.text(kPredictors);
    predictors_ = pattern.substr(0, pattern.find('['));
  }

  void write(output::Section& section) const {
    for (output::Item& item : section.items) {
      if (auto* inner = std::get_if<std::unique_ptr<output::Section>>(&item)) {
        write(**inner);
      } else if (auto* table = std::get_if<std::unique_ptr<output::Table>>(&item)) {
        for (output::Dimension& dimension : (*table)->dimensions)
          if (holds(kDimensions, dimension.title.key)) write(dimension);
      } else if (auto* chart = std::get_if<std::unique_ptr<output::Chart>>(&item)) {
        write((*chart)->document);
        for (output::ChartSource& source : (*chart)->sources)
          for (output::ChartVariable& variable : source.variables)
            write(variable);
      }
    }
  }

 private:
  /// What has a key is the procedure's own word.
  void write(output::Dimension& dimension) const {
    for (output::Node& node : dimension.nodes) {
      const bool is_threshold =
          node.parent != output::kNone && dimension.nodes[node.parent].label.key == kThreshold;
      if (is_threshold) {
        write_threshold(node.label);
      } else if ((node.label.key.empty() || node.label.key == kJoint) &&
                 node.label.numbers.empty()) {
        node.label.shown = labelled(node.label.shown, dictionary_);
      }
    }
  }

  void write_threshold(output::Text& value) const {
    if (target_ == nullptr) return;
    const bool is_number = value.numbers.size() == 1;
    const std::string text = is_number ? shortest_text(value.numbers[0].number.value) : value.shown;
    if (const std::string* label = label_of_value(*target_, text)) value = {*label, {}};
  }

  /// The footnote that tells the values of predictors.
  void write(output::Element& element) const {
    for (output::Element* each : output::elements_of(element)) {
      if (predictors_.empty() || !each->children().empty()) continue;
      const std::string text = each->text();
      if (!text.starts_with(predictors_)) continue;
      each->set_text(std::string(predictors_) +
                     labelled(std::string_view(text).substr(predictors_.size()), dictionary_));
    }
  }

  void write(output::ChartVariable& variable) const {
    if (const Variable* field = dictionary_.find(variable.label);
        field != nullptr && field->GetLabel() != nullptr) {
      variable.label = field->GetLabel();
    }
    if (!holds(kChartRoles, variable.role)) return;
    output::ChartColumn values;
    for (size_t row = 0; row < variable.values.rows(); ++row) {
      switch (variable.values.kind(row)) {
        case output::ChartColumn::Kind::Unset:
          break;
        case output::ChartColumn::Kind::Number:
          values.set(row, variable.values.number(row));
          break;
        case output::ChartColumn::Kind::Text:
          values.set(
              row, markup_of(labelled(output::plain_text(variable.values.text(row)), dictionary_)));
      }
    }
    variable.values = std::move(values);
  }

  const DataDictionary& dictionary_;
  const Variable* target_;
  std::string_view predictors_;  ///< what such a footnote begins with
};

}  // namespace

void relabel(output::Document& document,
             const DataDictionary& dictionary,
             const StringTable& strings,
             std::string_view target) {
  Relabelling(dictionary, strings, target).write(document.content);
}

}  // namespace hierfit
