// The dictionary and the PMML metadata, both from the model document.
#include "host/dictionary.h"

#include <algorithm>
#include <iomanip>
#include <iterator>
#include <sstream>

#include "host/pmml.h"

#include "tests/tiny_host/tiny_host.h"
#include "tests/tiny_host/xml.h"

struct VELT_ValueLabels {};

namespace {

constexpr VELT_Format kStringFormat = {8, kStringFormatType, 0};

/// What a kind of field is called in the document, in the dictionary and in the metadata library.
struct Level {
  std::string_view optype;
  int32_t level;
  int32_t measure;
};
constexpr Level kLevels[] = {{"categorical", 1, 2}, {"ordinal", 2, 3}, {"continuous", 3, 1}};
constexpr Level kUnknownLevel = {"", 0, 0};

Level level_of(const tiny::Element& field) {
  const auto* found = std::ranges::find(kLevels, field.value("optype"), &Level::optype);
  return found == std::end(kLevels) ? kUnknownLevel : *found;
}

VELT_Format format_of(const tiny::Element& field) {
  const std::string type = field.value("dataType");
  if (type == "integer") return {8, 5, 0};
  return type == "double" ? VELT_Format{8, 5, 2} : kStringFormat;
}

class ModelVariable final : public IMCVariable {
 public:
  explicit ModelVariable(const tiny::Element& field)
      : name_(field.value("name")),
        measure_(level_of(field).measure),
        level_count_(static_cast<int32_t>(field.find("Value").size())) {}

  int32_t MeasureCode() const override { return measure_; }
  void FieldName(std::string& name) const override { name = name_; }
  int32_t LevelCount() const override { return level_count_; }

 private:
  std::string name_;
  int32_t measure_;
  int32_t level_count_;
};

}  // namespace

namespace tiny {

const VELT_ValueLabels* Variable::GetValueLabels() const {
  static const VELT_ValueLabels none;
  return &none;
}

Dictionary::Dictionary(const std::string& pmml) {
  const std::optional<Document> document = parse(pmml);
  if (!document) return;
  for (const Element* field : document->front().find("DataDictionary/DataField")) {
    index_.emplace(field->value("name"), FieldCount());
    Variable& variable = *variables_.emplace_back(std::make_unique<Variable>());
    variable.name = field->value("name");
    variable.label = field->value("displayName");
    variable.format = format_of(*field);
    variable.level = level_of(*field).level;
  }
}

int32_t Dictionary::FindVarIndex(const std::string& name, int32_t) const {
  const auto found = index_.find(name);
  return found == index_.end() ? -1 : found->second;
}

Variable* Dictionary::at(int32_t index) const {
  const bool is_inside = index >= 0 && index < FieldCount();
  return is_inside ? variables_[static_cast<size_t>(index)].get() : nullptr;
}

VELT_Variable* Dictionary::GetVariable(int32_t index) const { return at(index); }

const CFField* Dictionary::GetField(int32_t index) const { return at(index); }

}  // namespace tiny

const char* VELT_ValueLabelMap::GetLabel(double) const { return nullptr; }
const char* VELT_ValueLabelMap::GetLabel(const std::string&) const { return nullptr; }
const char* VELT_ValueLabelMap::GetLabel(const OBS*) const { return nullptr; }

std::string ToString(const OBS* value, VELT_Format format) {
  if (value == nullptr) return {};
  if (value->isString) return value->text.substr(0, value->text.find_last_not_of(' ') + 1);
  if (value->number == OBS().number) return ".";
  std::ostringstream text;
  text << std::fixed << std::setprecision(format.decimals) << value->number;
  return text.str();
}

struct MCPMMLParser::Impl {
  tiny::Document document;
};

MCPMMLParser::MCPMMLParser() : impl_(std::make_unique<Impl>()) {}
MCPMMLParser::~MCPMMLParser() = default;

MCStatus MCPMMLParser::ParseToDOM(std::istream& text) {
  auto document = tiny::parse(std::string(std::istreambuf_iterator<char>(text), {}));
  if (!document) return MCStatus(true);
  impl_->document = std::move(*document);
  return MCStatus(false);
}

MCStatus MCPMMLParser::FillVarList(MCVarList* list, const std::vector<std::string>&, bool) {
  if (impl_->document.empty()) return MCStatus(true);
  const tiny::Element& root = impl_->document.front();
  std::unordered_map<std::string, const tiny::Element*> fields;
  for (const tiny::Element* field : root.find("DataDictionary/DataField")) {
    fields.emplace(field->value("name"), field);
  }
  for (const tiny::Element* mined : root.find("GeneralRegressionModel/MiningSchema/MiningField")) {
    const auto field = fields.find(mined->value("name"));
    if (field == fields.end()) return MCStatus(true);
    list->variables_.push_back(std::make_unique<ModelVariable>(*field->second));
  }
  return MCStatus(list->variables_.empty());
}

MCVarList::MCVarList() = default;
MCVarList::~MCVarList() = default;

int32_t MCVarList::Size() const { return static_cast<int32_t>(variables_.size()); }

const IMCVariable* MCVarList::GetVarAt(int32_t position) const {
  const bool is_inside = position >= 0 && position < Size();
  return is_inside ? variables_[static_cast<size_t>(position)].get() : nullptr;
}
