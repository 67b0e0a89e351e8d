#include "embedded/labels/labelled.h"

#include <algorithm>
#include <optional>

#include "embedded/framework/number_text.h"
#include "embedded/strings/cut_text.h"

namespace hierfit {
namespace {

/// What stands between the names of an expression.
constexpr std::string_view kDelimiters = " *()[],=:;+^/|\n";
/// A name may hold delimiters itself: so many of them, at most.
constexpr int kMostWithin = 12;

bool is_delimiter(char c) { return kDelimiters.find(c) != std::string_view::npos; }

/// The longest head of a text, up to a delimiter or its end, that `look_up` finds something for.
template <class LookUp>
auto longest(std::string_view text, LookUp look_up) {
  decltype(look_up(text)) found = nullptr;
  size_t length = 0;
  int within = 0;
  for (size_t end = 1; end <= text.size() && within <= kMostWithin; ++end) {
    if (end < text.size() && !is_delimiter(text[end])) continue;
    ++within;
    if (auto* candidate = look_up(text.substr(0, end)); candidate != nullptr) {
      found = candidate;
      length = end;
    }
  }
  return std::pair(found, length);
}

class Labelling {
 public:
  Labelling(std::string_view expression, const DataDictionary& dictionary)
      : rest_(expression), dictionary_(dictionary) {}

  std::string write() {
    while (!rest_.empty() && out_.size() <= kLongestLabel) {
      if (is_delimiter(rest_[0])) {
        take(1);
        continue;
      }
      const auto [variable, length] =
          longest(rest_, [&](std::string_view name) { return dictionary_.find(name); });
      if (variable == nullptr) {
        take(std::min(rest_.find_first_of(kDelimiters), rest_.size()));
      } else {
        write_field(*variable, length);
      }
    }
    cut_text(out_, kLongestLabel);
    return std::move(out_);
  }

 private:
  void take(size_t length) {
    out_ += rest_.substr(0, length);
    rest_.remove_prefix(length);
  }

  void write_field(const Variable& variable, size_t length) {
    const char* label = variable.GetLabel();
    if (label == nullptr) {
      take(length);
    } else {
      out_ += label;
      rest_.remove_prefix(length);
    }
    if (!rest_.starts_with('=') || rest_.size() == 1) return;
    take(1);
    const auto [text, value_length] =
        longest(rest_, [&](std::string_view value) { return label_of_value(variable, value); });
    if (text == nullptr) {
      // A value that has no label may look like a name.
      take(std::min(rest_.find_first_of("]*,"), rest_.size()));
      return;
    }
    out_ += *text;
    rest_.remove_prefix(value_length);
  }

  std::string_view rest_;
  const DataDictionary& dictionary_;
  std::string out_;
};

std::string both(const std::string& label, std::string_view name) {
  return label + " (" + std::string(name) + ")";
}

}  // namespace

const std::string* label_of_value(const Variable& variable, std::string_view value) {
  const VELT_ValueLabels& labels = *variable.GetValueLabels();
  if (labels.of_strings) {
    const auto found = labels.by_text.find(value);
    return found == labels.by_text.end() ? nullptr : &found->second;
  }
  const std::optional<double> number = parse_number(value);
  const auto found = number ? labels.by_number.find(*number) : labels.by_number.end();
  return found == labels.by_number.end() ? nullptr : &found->second;
}

void apply(Naming naming, DataDictionary& dictionary) {
  if (naming == Naming::Label) return;
  for (int32_t index = 0; Variable* variable = dictionary.at(index); ++index) {
    const VELT_ValueLabels labels = *variable->GetValueLabels();
    variable->clear_value_labels();
    if (naming == Naming::Name) {
      variable->set_label({});
      continue;
    }
    if (const char* label = variable->GetLabel()) {
      variable->set_label(both(label, variable->GetName()));
    }
    for (const auto& [number, label] : labels.by_number) {
      const std::string value = shortest_text(number);
      variable->set_value_label(value, both(label, value));
    }
    for (const auto& [text, label] : labels.by_text)
      variable->set_value_label(text, both(label, text));
  }
}

std::string labelled(std::string_view expression, const DataDictionary& dictionary) {
  return Labelling(expression, dictionary).write();
}

}  // namespace hierfit
