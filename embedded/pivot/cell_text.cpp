#include "embedded/pivot/cell_text.h"

#include <algorithm>
#include <array>
#include <bit>

#include "embedded/journal/journal.h"
#include "embedded/labels/labelled.h"
#include "embedded/session_state.h"
#include "embedded/strings/pattern.h"

namespace hierfit::pivot {
namespace {

constexpr int32_t kShowName = 0;

/// The patterns that are given names of fields, and the first argument that holds some, from 0.
struct NamesOfPattern {
  std::string_view pattern;
  size_t first;
};
constexpr NamesOfPattern kNamesOfPatterns[] = {
    {"Covariance Structure ^1 Subject Specification ^2 ...", 1},
    {"Continuous predictors fixed at [%1=%2:,^1=^2:]1", 0},
};
constexpr int32_t kPreferLabel = 2;

template <class Part>
RefCountPtr<BpCellText::Impl> make_impl(Part part) {
  return std::make_shared<BpCellText::Impl>(BpCellText::Impl{std::move(part)});
}

output::Number number_of(const NumberText& part) {
  return {part.value, static_cast<output::Format>(part.format.Kind()), 0};
}

output::Number number_of(const DataValueText& part) {
  const uint8_t decimals = part.variable != nullptr ? part.variable->GetFormat().decimals : 0;
  return {part.value ? part.value->number : output::kSystemMissing, output::Format::Fixed,
          decimals};
}

output::Text number_text(const output::Number& number, const Wording& wording) {
  output::Text text{output::shown(number, wording.strings.marks().numbers), {}};
  text.numbers.push_back({0, static_cast<uint32_t>(text.shown.size()), number});
  return text;
}

bool is_string_variable(const VELT_Variable& variable) {
  return variable.GetFormat().type == kStringFormatType;
}

const char* label_of(const DataValueText& part) {
  if (part.preference != kPreferLabel || !part.value || part.variable == nullptr) return nullptr;
  return VELT_ValueLabelMap(part.variable->GetValueLabels()).GetLabel(&*part.value);
}

bool shows_as_number(const DataValueText& part) {
  if (!part.value) return true;
  return !part.value->isString && label_of(part) == nullptr;
}

/// The value when the variable can have it, else none.
std::optional<OBS> fitting_value(const VELT_Variable* variable, const OBS* value) {
  if (variable == nullptr || value == nullptr) return std::nullopt;
  if (is_string_variable(*variable) != value->isString) return std::nullopt;
  return *value;
}

output::Text shown_part(const StringText& part, const Wording& wording) {
  if (!part.is_key) return {part.text, {}};
  output::Text text{std::string(wording.strings.text(part.text)), {}};
  text.key = wording.document.own_key(part.text);
  return text;
}

output::Text shown_part(const NumberText& part, const Wording& wording) {
  return number_text(number_of(part), wording);
}

output::Text shown_part(const VariableText& part, const Wording&) {
  if (part.variable == nullptr) return {};
  const char* label = part.show == kShowName ? nullptr : part.variable->GetLabel();
  return {label != nullptr ? label : part.variable->GetName(), {}};
}

output::Text shown_part(const DataValueText& part, const Wording& wording) {
  if (shows_as_number(part)) return number_text(number_of(part), wording);
  const char* label = label_of(part);
  return {label != nullptr ? label : ToString(&*part.value, part.variable->GetFormat()), {}};
}

/// Where names of fields stand, a reader sees their labels.
void show_labels(const CompositeText& part,
                 const Wording& wording,
                 std::vector<PatternArgument>& arguments) {
  const auto* names = std::ranges::find(kNamesOfPatterns, part.pattern, &NamesOfPattern::pattern);
  if (!part.is_key || names == std::end(kNamesOfPatterns)) return;
  const auto show = [&](output::Text& text) {
    if (text.key.empty() && text.numbers.empty()) {
      text.shown = labelled(text.shown, wording.dictionary);
    }
  };
  for (size_t at = names->first; at < arguments.size(); ++at) {
    if (auto* text = std::get_if<output::Text>(&arguments[at])) {
      show(*text);
    } else {
      std::ranges::for_each(std::get<std::vector<output::Text>>(arguments[at]), show);
    }
  }
}

PatternArgument pattern_argument(const CompositeText::Argument& argument, const Wording& wording) {
  if (!argument.is_list) return shown_text(*argument.items.front(), wording);
  std::vector<output::Text> items;
  items.reserve(argument.items.size());
  for (const auto& item : argument.items)
    items.push_back(shown_text(*item, wording));
  return items;
}

output::Text shown_part(const CompositeText& part, const Wording& wording) {
  std::vector<PatternArgument> arguments;
  arguments.reserve(part.arguments.size());
  for (const auto& argument : part.arguments)
    arguments.push_back(pattern_argument(argument, wording));
  show_labels(part, wording, arguments);
  if (!part.is_key) return fill_pattern(part.pattern, arguments);
  output::Text text = fill_pattern(wording.strings.text(part.pattern), arguments);
  text.key = wording.document.own_key(part.pattern);
  return text;
}

template <class Value>
void append_bytes(std::string& out, const Value& value) {
  // NOLINTNEXTLINE(bugprone-sizeof-expression): a pointer's own bytes are what is meant.
  const auto bytes = std::bit_cast<std::array<char, sizeof(Value)>>(value);
  out.append(bytes.data(), bytes.size());
}

void append_sized(std::string& out, std::string_view text) {
  append_bytes(out, static_cast<uint32_t>(text.size()));
  out += text;
}

void append_part(std::string& out, const StringText& part) {
  out += part.is_key ? 'k' : 's';
  append_sized(out, part.text);
}

void append_part(std::string& out, const NumberText& part) {
  out += 'n';
  append_bytes(out, part.value);
  append_bytes(out, part.format.Kind());
  append_bytes(out, part.format.Sample());
}

void append_part(std::string& out, const VariableText& part) {
  out += 'v';
  append_bytes(out, part.variable);
  append_bytes(out, part.show);
}

void append_part(std::string& out, const DataValueText& part) {
  out += 'd';
  append_bytes(out, part.variable);
  append_bytes(out, part.preference);
  out += !part.value ? '0' : part.value->isString ? 's' : 'n';
  if (!part.value) return;
  append_bytes(out, part.value->number);
  append_sized(out, part.value->text);
}

void append_part(std::string& out, const CompositeText& part) {
  out += part.is_key ? 'C' : 'c';
  append_sized(out, part.pattern);
  append_bytes(out, static_cast<uint32_t>(part.arguments.size()));
  for (const auto& argument : part.arguments) {
    out += argument.is_list ? '[' : '.';
    append_bytes(out, static_cast<uint32_t>(argument.items.size()));
    for (const auto& item : argument.items)
      append_identity(out, *item);
  }
}

void append_field(std::string& out, const char* name) {
  out += ',';
  journal::append_json(out, name);
  out += ':';
}

template <class Value>
void append_field(std::string& out, const char* name, const Value& value) {
  append_field(out, name);
  journal::append_json(out, value);
}

void append_journal(std::string& out, const StringText& part) {
  out += "{\"string\":";
  journal::append_json(out, part.text);
  append_field(out, "key", part.is_key);
}

void append_journal(std::string& out, const NumberText& part) {
  out += "{\"number\":";
  journal::append_json(out, part.value);
  const auto format = static_cast<output::Format>(part.format.Kind());
  append_field(out, "format", output::format_name(format));
  if (format == output::Format::SigDigit) append_field(out, "of", part.format.Sample());
}

void append_name(std::string& out, const VELT_Variable* variable) {
  journal::append_json(out, variable != nullptr ? variable->GetName() : std::string());
}

void append_journal(std::string& out, const VariableText& part) {
  out += "{\"variable\":";
  append_name(out, part.variable);
  append_field(out, "show", part.show);
}

void append_journal(std::string& out, const DataValueText& part) {
  out += "{\"value\":";
  if (!part.value) {
    out += "null";
  } else if (part.value->isString) {
    journal::append_json(out, part.value->text);
  } else {
    journal::append_json(out, part.value->number);
  }
  append_field(out, "of");
  append_name(out, part.variable);
  append_field(out, "preference", part.preference);
}

void append_items(std::string& out, const CompositeText::Argument& argument) {
  if (argument.is_list) out += "{\"list\":[";
  for (size_t i = 0; i < argument.items.size(); ++i) {
    if (i > 0) out += ',';
    append_json(out, *argument.items[i]);
  }
  if (argument.is_list) out += "]}";
}

void append_journal(std::string& out, const CompositeText& part) {
  out += "{\"composite\":";
  journal::append_json(out, part.pattern);
  append_field(out, "key", part.is_key);
  append_field(out, "args");
  out += '[';
  for (size_t i = 0; i < part.arguments.size(); ++i) {
    if (i > 0) out += ',';
    append_items(out, part.arguments[i]);
  }
  out += ']';
}

}  // namespace

output::Text shown_text(const BpCellText::Impl& text, const Wording& wording) {
  return std::visit([&](const auto& part) { return shown_part(part, wording); }, text.part);
}

std::optional<output::Number> as_number(const BpCellText::Impl& text) {
  if (const auto* number = std::get_if<NumberText>(&text.part)) return number_of(*number);
  const auto* value = std::get_if<DataValueText>(&text.part);
  if (value != nullptr && shows_as_number(*value)) return number_of(*value);
  return std::nullopt;
}

void append_identity(std::string& out, const BpCellText::Impl& text) {
  std::visit([&out](const auto& part) { append_part(out, part); }, text.part);
}

RefCountPtr<BpCellText::Impl> take_replicate(long handle) {
  auto node = Session::current().handles.replicas.extract(handle);
  return node ? std::move(node.mapped()) : nullptr;
}

}  // namespace hierfit::pivot

void append_json(std::string& out, const BpCellText::Impl& text) {
  std::visit([&out](const auto& part) { hierfit::pivot::append_journal(out, part); }, text.part);
  out += '}';
}

void append_json(std::string& out, const BpCellText& text) { append_json(out, text.impl()); }

void append_json(std::string& out, const BpAnnotation& note) {
  out += "{\"note\":";
  if (note.impl().text != nullptr) {
    append_json(out, *note.impl().text);
  } else {
    out += "null";
  }
  hierfit::pivot::append_field(out, "index", note.impl().index);
  hierfit::pivot::append_field(out, "flag", note.impl().flag);
  out += '}';
}

using namespace hierfit::pivot;

BpCellText::~BpCellText() = default;

long BpCellText::Replicate() const {
  hierfit::Handles& handles = hierfit::Session::current().handles;
  const long handle = handles.next_replica++;
  handles.replicas.emplace(handle, impl_);
  return handle;
}

BpString::BpString(std::string text, bool isKey)
    : BpCellText(make_impl(StringText{std::move(text), isKey})) {}

BpNumber::BpNumber(double value, const BpFormatSpec& format)
    : BpCellText(make_impl(NumberText{value, format})) {}

BpVariable::BpVariable(const VELT_Variable* variable, int32_t show)
    : BpCellText(make_impl(VariableText{variable, show})) {}

BpDataValue::BpDataValue(const VELT_Variable* variable, const OBS* value, int32_t preference)
    : BpCellText(make_impl(DataValueText{variable, fitting_value(variable, value), preference})) {}

BpDataValue::BpDataValue(const VELT_Variable* variable, double value, int32_t preference)
    : BpCellText(make_impl(DataValueText{variable, OBS{value, false, {}}, preference})) {}

BpComposite::BpComposite(std::string pattern, bool isKey)
    : BpCellText(make_impl(CompositeText{std::move(pattern), isKey, {}, false})) {}

void BpComposite::Add(const BpCellText& argument) {
  auto& part = std::get<CompositeText>(impl_->part);
  if (!part.list_is_open) part.arguments.push_back({false, {}});
  part.arguments.back().items.push_back(argument.impl_);
}

void BpComposite::Sublist() {
  auto& part = std::get<CompositeText>(impl_->part);
  part.arguments.push_back({true, {}});
  part.list_is_open = true;
}

void BpComposite::EndSublist() { std::get<CompositeText>(impl_->part).list_is_open = false; }

void BpComposite::Finish() { EndSublist(); }

BpAnnotation::BpAnnotation(long handle, int32_t index, bool flag)
    : impl_(std::make_shared<Impl>(Impl{take_replicate(handle), index, flag})) {}
