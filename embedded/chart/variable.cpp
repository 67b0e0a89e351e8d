#include "embedded/chart/variable.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "embedded/chart/chart_text.h"
#include "embedded/chart/journal_values.h"
#include "embedded/dictionary/variable.h"
#include "embedded/framework/number_text.h"
#include "embedded/strings/cut_text.h"
#include "output/number_format.h"

namespace hierfit::chart {

using output::ChartVariable;

namespace {

template <class Integer>
Integer integer_of(std::string_view text) {
  Integer value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

std::optional<output::ChartFormat> read_format(const Element& element) {
  if (element.attribute("type") == nullptr) return std::nullopt;
  return output::ChartFormat{integer_of<uint16_t>(element.value("width")),
                             integer_of<uint8_t>(element.value("type")),
                             integer_of<uint8_t>(element.value("decimals"))};
}

void read_relabel(ChartVariable& variable, const Element& relabel) {
  if (const std::string* text = relabel.attribute("text")) {
    variable.text_labels.insert_or_assign(*text, relabel.text());
  } else if (const auto number = number_of(relabel.value("number"))) {
    variable.number_labels.insert_or_assign(*number, relabel.text());
  }
}

void read_values(output::ChartColumn& column, const Element& values) {
  size_t row = 0;
  for (const Element* value : values.children()) {
    const std::string text = value->text();
    if (value->name == "s") column.set(row, text);
    if (value->name == "n") column.set(row, number_of(text).value_or(output::kSystemMissing));
    ++row;
  }
}

/// Calls `visit` for each value of the variables of a name, a number or a text.
template <class Visit>
void for_each_value(const std::vector<output::ChartSource>& data,
                    std::string_view name,
                    const Visit& visit) {
  using Kind = output::ChartColumn::Kind;
  for (const output::ChartSource& source : data) {
    for (const ChartVariable& variable : source.variables) {
      if (variable.name != name) continue;
      const output::ChartColumn& values = variable.values;
      for (size_t row = 0; row < values.rows(); ++row) {
        if (values.kind(row) == Kind::Number) visit(values.number(row));
        if (values.kind(row) == Kind::Text) visit(values.text(row));
      }
    }
  }
}

void add_label(ChartVariable& variable, double value, std::string label) {
  variable.number_labels.emplace(value, std::move(label));
}
void add_label(ChartVariable& variable, const std::string& value, std::string label) {
  variable.text_labels.emplace(value, std::move(label));
}

}  // namespace

std::optional<double> number_of(std::string_view text) {
  double number = 0;
  const char* last = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), last, number);
  if (error != std::errc() || end != last || std::isnan(number)) return std::nullopt;
  return number;
}

ChartVariable read_variable(Element& element) {
  ChartVariable variable;
  variable.name = element.value("name");
  variable.role = element.value("role");
  if (variable.role.empty()) variable.role = variable.name;
  variable.categorical = element.value("categorical") == "true";
  variable.format = read_format(element);
  if (const Element* label = element.child("label")) variable.label = label->text();
  if (const Element* prefix = element.child("prefix")) variable.prefix = prefix->text();
  for (const Element* relabel : element.children("relabel")) {
    read_relabel(variable, *relabel);
  }
  if (const Element* values = element.child("values")) read_values(variable.values, *values);
  return variable;
}

std::vector<output::ChartSource> read_sources(Element* data) {
  std::vector<output::ChartSource> sources;
  if (data == nullptr) return sources;
  for (Element* source : data->children("source")) {
    output::ChartSource& added = sources.emplace_back();
    added.name = source->value("name");
    for (Element* variable : source->children("variable")) {
      added.variables.push_back(read_variable(*variable));
      added.rows = std::max(added.rows, added.variables.back().values.rows());
    }
  }
  return sources;
}

void add_relabel(Element& variable, double value, std::string_view text) {
  Element& relabel = variable.add("relabel");
  relabel.set("number", shortest_text(value));
  relabel.set_text(text);
}

void add_relabel(Element& variable, std::string_view value, std::string_view text) {
  Element& relabel = variable.add("relabel");
  relabel.set("text", std::string(value));
  relabel.set_text(text);
}

void set_format(Element& variable, const VELT_Format& format) {
  variable.set("width", std::to_string(format.width));
  variable.set("type", std::to_string(format.type));
  variable.set("decimals", std::to_string(format.decimals));
}

Variable::Variable(Element& element, journal::Journal* journal)
    : Receiver(journal), element_(element), described_(read_variable(element)) {
  described_.values = {};
}

void Variable::setLabel(const ChartString& label) {
  note("XVariable::setLabel", label);
  described_.label = plain_text(label);
  changed_ = true;
}

void Variable::setFormat(const VELT_Format& format) {
  note("XVariable::setFormat", format);
  described_.format = output::ChartFormat{format.width, format.type, format.decimals};
  changed_ = true;
}

void Variable::setCategorical(bool categorical) {
  note("XVariable::setCategorical", categorical);
  described_.categorical = categorical;
  changed_ = true;
}

void Variable::setVELTVariable(VELT_Variable* variable) {
  note("XVariable::setVELTVariable", variable);
  dictionary_ = variable;
  changed_ = true;
}

void Variable::setFormatBasedOnVELTVariable(VELT_Variable* variable) {
  note("XVariable::setFormatBasedOnVELTVariable", variable);
  if (variable == nullptr) return;
  const VELT_Format format = variable->GetFormat();
  described_.format = output::ChartFormat{format.width, format.type, format.decimals};
  changed_ = true;
}

void Variable::addRelabels() {
  note("XVariable::addRelabels");
  if (dictionary_ == nullptr) return;
  const VELT_ValueLabels& labels = *dictionary_->GetValueLabels();
  for (const auto& [value, label] : labels.by_number) {
    relabel(value, plain_text(label));
  }
  for (const auto& [value, label] : labels.by_text) {
    relabel(value, plain_text(label));
  }
}

void Variable::addRelabel(double value, const ChartString& text) {
  note("XVariable::addRelabel", value, text);
  relabel(value, plain_text(text));
}

void Variable::addRelabel(const ChartString& value, const ChartString& text) {
  note("XVariable::addRelabel", value, text);
  const std::string of = value.toUTF8();
  const std::string label = plain_text(text);
  if (const auto number = number_of(of)) relabel(*number, label);
  relabel(of, label);
}

void Variable::SetFormatPrefix(const ChartString& prefix) {
  note("XVariable::SetFormatPrefix", prefix);
  described_.prefix = plain_text(prefix);
  changed_ = true;
}

void Variable::relabel(double value, std::string text) {
  if (std::isnan(value)) return;
  described_.number_labels.insert_or_assign(value, std::move(text));
  changed_ = true;
}

void Variable::relabel(const std::string& value, std::string text) {
  described_.text_labels.insert_or_assign(xml_characters(value), std::move(text));
  changed_ = true;
}

size_t Variable::label_bytes(const std::vector<output::ChartSource>& data) const {
  constexpr size_t kLabel = 64;  // what it takes beside its text
  size_t bytes = 0;
  for (const auto& [value, text] : described_.number_labels)
    bytes += kLabel + text.size();
  for (const auto& [value, text] : described_.text_labels)
    bytes += kLabel + value.size() + text.size();
  if (bytes == 0) return 0;
  for_each_value(data, described_.name, [&](const auto& value) {
    if (const std::string* text = described_.label_of(value)) bytes += text->size();
  });
  return bytes;
}

bool Variable::keep_labels_of(const std::vector<output::ChartSource>& data, size_t most) {
  output::ChartVariable kept;
  bool is_cut = false;
  for_each_value(data, described_.name, [&](const auto& value) {
    const std::string* text = described_.label_of(value);
    if (text == nullptr || kept.label_of(value) != nullptr) return;
    std::string label = *text;
    if (label.size() > most) {
      cut_text(label, most);
      is_cut = true;
    }
    add_label(kept, value, std::move(label));
  });
  described_.number_labels = std::move(kept.number_labels);
  described_.text_labels = std::move(kept.text_labels);
  return is_cut;
}

void Variable::store() {
  if (!std::exchange(changed_, false)) return;
  std::erase_if(element_.content, [](const output::Content& content) {
    return content.element() == nullptr || content.element()->name != "values";
  });
  std::list<output::Content> values = std::exchange(element_.content, {});
  element_.set("categorical", described_.categorical ? "true" : "false");
  if (dictionary_ != nullptr) element_.set("dictionary", xml_characters(dictionary_->GetName()));
  if (const auto& format = described_.format) {
    set_format(element_, {format->width, format->type, format->decimals});
  }
  if (!described_.label.empty()) element_.add("label").set_text(described_.label);
  if (!described_.prefix.empty()) element_.add("prefix").set_text(described_.prefix);
  for (const auto& [value, text] : described_.number_labels) {
    add_relabel(element_, value, text);
  }
  for (const auto& [value, text] : described_.text_labels) {
    add_relabel(element_, value, text);
  }
  element_.content.splice(element_.content.end(), values);
}

}  // namespace hierfit::chart
