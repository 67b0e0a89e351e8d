// The PMML metadata library over a model document.
#include <algorithm>
#include <iterator>
#include <sstream>

#include "host/pmml.h"

#include "embedded/pmml/model_document.h"

namespace {

struct Measure {
  std::string_view optype;
  int32_t code;
};
constexpr Measure kMeasures[] = {{"continuous", 1}, {"categorical", 2}, {"ordinal", 3}};

class ModelVariable final : public IMCVariable {
 public:
  explicit ModelVariable(const hierfit::DataField& field)
      : name_(field.name),
        level_count_(static_cast<int32_t>(
            std::ranges::count(field.values, true, &hierfit::FieldValue::is_valid))) {
    const auto* measure = std::ranges::find(kMeasures, field.optype, &Measure::optype);
    if (measure != std::end(kMeasures)) code_ = measure->code;
  }

  int32_t MeasureCode() const override { return code_; }
  void FieldName(std::string& name) const override { name = name_; }
  int32_t LevelCount() const override { return level_count_; }

 private:
  std::string name_;
  int32_t level_count_;
  int32_t code_ = 0;
};

std::string whole_text(std::istream& stream) {
  std::ostringstream text;
  text << stream.rdbuf();
  return std::move(text).str();
}

}  // namespace

struct MCPMMLParser::Impl {
  hierfit::ModelDocument document;
};

MCVarList::MCVarList() = default;
MCVarList::~MCVarList() = default;

int32_t MCVarList::Size() const { return static_cast<int32_t>(variables_.size()); }

const IMCVariable* MCVarList::GetVarAt(int32_t position) const {
  if (position < 0 || position >= Size()) return nullptr;
  return variables_[static_cast<size_t>(position)].get();
}

MCPMMLParser::MCPMMLParser() : impl_(std::make_unique<Impl>()) {}
MCPMMLParser::~MCPMMLParser() = default;

MCStatus MCPMMLParser::ParseToDOM(std::istream& text) {
  try {
    impl_->document = hierfit::read_model_document(whole_text(text), {});
  } catch (const hierfit::DocumentError&) {
    return MCStatus(true);
  }
  return MCStatus(false);
}

MCStatus MCPMMLParser::FillVarList(MCVarList* list, const std::vector<std::string>&, bool) {
  if (list == nullptr) return MCStatus(true);
  for (const uint32_t field : impl_->document.variables) {
    list->variables_.push_back(std::make_unique<ModelVariable>(impl_->document.fields[field]));
  }
  return MCStatus(false);
}
