#include "embedded/dictionary/variable.h"

#include "embedded/framework/number_text.h"
#include "embedded/strings/cut_text.h"

namespace hierfit {

void Variable::set_format(VELT_Format format) {
  format_ = format;
  if (holds_strings() == labels_.of_strings) return;
  const VELT_ValueLabels old = std::exchange(labels_, {});
  labels_.of_strings = holds_strings();
  for (const auto& [number, label] : old.by_number) {
    set_value_label(shortest_text(number), label);
  }
  for (const auto& [text, label] : old.by_text) {
    set_value_label(text, label);
  }
}

void Variable::set_label(std::string label) {
  cut_text(label, kLongestLabel);
  label_ = std::move(label);
}

bool Variable::set_value_label(std::string_view value, std::string label) {
  cut_text(label, kLongestLabel);
  if (labels_.of_strings) {
    labels_.by_text.insert_or_assign(std::string(value), std::move(label));
    return true;
  }
  const std::optional<double> number = parse_number(value);
  if (!number) return false;
  labels_.by_number.insert_or_assign(*number, std::move(label));
  return true;
}

void Variable::clear_value_labels() {
  labels_.by_number.clear();
  labels_.by_text.clear();
}

}  // namespace hierfit
