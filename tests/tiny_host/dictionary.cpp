// The dictionary and the PMML metadata, both from the model document.
#include "host/dictionary.h"

#include <algorithm>
#include <iomanip>
#include <iterator>
#include <limits>
#include <sstream>

#include "tests/tiny_host/faults.h"
#include "tests/tiny_host/tiny_host.h"

using tiny::Call;

namespace {

constexpr int32_t kBeyondAll = std::numeric_limits<int32_t>::max();

constexpr std::string_view kLevels[] = {"", "categorical", "ordinal", "continuous"};

std::string text_of(SDOMXMLWrapper& element, const char* attribute) {
  std::string text;
  element.GetAttribute(attribute, text);
  return text;
}

VELT_Format format_of(const std::string& type) {
  if (type == "integer") return {8, 5, 0};
  return type == "double" ? VELT_Format{8, 5, 2} : VELT_Format{8, kStringFormatType, 0};
}

}  // namespace

namespace tiny {

Field::Field(SDOMXMLWrapper& element)
    : name_(text_of(element, "name")),
      label_(text_of(element, "displayName")),
      format_(format_of(text_of(element, "dataType"))) {
  const auto* level = std::ranges::find(kLevels, text_of(element, "optype"));
  if (level != std::end(kLevels)) level_ = static_cast<int32_t>(level - kLevels);
  SDOMXMLIterator* values = nullptr;
  if (!element.GetElementIterator("Value", &values, true)) return;
  for (SDOMXMLWrapper* value = nullptr; values->Next(&value); ++level_count_) {
    const std::string label = text_of(*value, "displayValue");
    if (!label.empty()) labels_.by_value.emplace(text_of(*value, "value"), label);
  }
}

std::deque<Field> fields_of(const std::string& pmml) {
  SDOMXMLWrapper root;
  SDOMXMLWrapper* dictionary = nullptr;
  SDOMXMLIterator* walk = nullptr;
  std::deque<Field> fields;
  if (root.LoadFromString(pmml) == nullptr) return fields;
  if (!root.GetFirstElement("DataDictionary", &dictionary, true)) return fields;
  if (!dictionary->GetElementIterator("DataField", &walk, true)) return fields;
  for (SDOMXMLWrapper* field = nullptr; walk->Next(&field);)
    fields.emplace_back(*field);
  return fields;
}

const char* Field::GetLabel() const {
  const Call call;
  return label_.empty() || call.gives_nothing() ? nullptr : label_.c_str();
}

VELT_Format Field::GetFormat() const {
  const Call call;
  return call.result(format_, VELT_Format{0, 0, 0}, VELT_Format{65535, 255, 255});
}

int32_t Field::GetMeasurementLevel() const {
  const Call call;
  return call.result(level_, 0, -kBeyondAll);
}

const VELT_ValueLabels* Field::GetValueLabels() const {
  const Call call;
  return call.gives_nothing() ? nullptr : &labels_;
}

int32_t Field::MeasureCode() const {
  const Call call;
  return call.result(level_ == 0 ? 0 : level_ % 3 + 1, 0, kBeyondAll);
}

void Field::FieldName(std::string& name) const {
  const Call call;
  name = call.gives_nothing() ? "" : name_;
}

int32_t Field::LevelCount() const {
  const Call call;
  return call.result(level_count_, 0, -kBeyondAll);
}

int32_t Dictionary::FindVarIndex(const std::string& name, int32_t) const {
  const Call call;
  const auto found = std::ranges::find(fields_, name, &Field::GetName);
  const int32_t index = found == fields_.end() ? -1 : static_cast<int32_t>(found - fields_.begin());
  return call.result(index, -1, kBeyondAll);
}

int32_t Dictionary::FieldCount() const {
  const Call call;
  return call.result(static_cast<int32_t>(fields_.size()), 0, -1);
}

Field* Dictionary::at(int32_t index) const {
  const Call call;
  const bool is_there = index >= 0 && index < FieldCount() && !call.gives_nothing();
  return is_there ? &fields_[static_cast<size_t>(index)] : nullptr;
}

}  // namespace tiny

const char* VELT_ValueLabelMap::GetLabel(const std::string& value) const {
  const Call call;
  const auto found = labels_->by_value.find(value);
  return found == labels_->by_value.end() || call.gives_nothing() ? nullptr : found->second.c_str();
}
const char* VELT_ValueLabelMap::GetLabel(double value) const {
  const Call call;
  if (call.gives_nothing()) return nullptr;
  return GetLabel((std::ostringstream() << value).str());
}
const char* VELT_ValueLabelMap::GetLabel(const OBS* value) const {
  const Call call;
  if (value == nullptr || call.gives_nothing()) return nullptr;
  return value->isString ? GetLabel(value->text) : GetLabel(value->number);
}

std::string ToString(const OBS* value, VELT_Format format) {
  const Call call;
  if (value == nullptr || call.gives_nothing()) return {};
  if (value->isString) return value->text;
  std::ostringstream text;
  text << std::fixed << std::setprecision(format.decimals) << value->number;
  return text.str();
}

struct MCPMMLParser::Impl {
  std::deque<tiny::Field> fields;
};

MCVarList::MCVarList() { const Call call; }
MCVarList::~MCVarList() = default;
int32_t MCVarList::Size() const {
  const Call call;
  return call.result(static_cast<int32_t>(variables_.size()), 0, -1);
}
const IMCVariable* MCVarList::GetVarAt(int32_t position) const {
  const Call call;
  return call.gives_nothing() ? nullptr : variables_[static_cast<size_t>(position)].get();
}

MCPMMLParser::MCPMMLParser() : impl_(std::make_unique<Impl>()) { const Call call; }
MCPMMLParser::~MCPMMLParser() = default;

MCStatus MCPMMLParser::ParseToDOM(std::istream& text) {
  const Call call;
  impl_->fields = tiny::fields_of({std::istreambuf_iterator<char>(text), {}});
  return MCStatus(impl_->fields.empty() || call.gives_nothing());
}

MCStatus MCPMMLParser::FillVarList(MCVarList* list, const std::vector<std::string>&, bool) {
  const Call call;
  if (call.gives_nothing()) return MCStatus(true);
  for (const tiny::Field& field : impl_->fields)
    list->variables_.push_back(std::make_unique<tiny::Field>(field));
  return MCStatus(false);
}
