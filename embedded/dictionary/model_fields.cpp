// Variables of the model document.
#include <algorithm>
#include <limits>

#include "embedded/dictionary/formats.h"
#include "embedded/dictionary/read_dictionary.h"

namespace hierfit {
namespace {

struct LevelName {
  std::string_view optype;
  MeasurementLevel level;
};
constexpr LevelName kLevels[] = {{"categorical", MeasurementLevel::Categorical},
                                 {"ordinal", MeasurementLevel::Ordinal},
                                 {"continuous", MeasurementLevel::Continuous}};

MeasurementLevel level_of(std::string_view optype) {
  const auto* found = std::ranges::find(kLevels, optype, &LevelName::optype);
  return found == std::end(kLevels) ? MeasurementLevel::Unknown : found->level;
}

VELT_Format format_of(const DataField& field) {
  if (field.storage_type == "double" || field.storage_type == "float") return kNumberFormat;
  if (field.storage_type == "integer") return kIntegerFormat;
  size_t width = kStringFormat.width;
  for (const FieldValue& value : field.values) {
    width = std::max(width, value.value.size());
  }
  constexpr size_t kWidest = std::numeric_limits<uint16_t>::max();
  return {static_cast<uint16_t>(std::min(width, kWidest)), kStringFormat.type, 0};
}

}  // namespace

void add_model_fields(DataDictionary& dictionary, const ModelDocument& document) {
  for (const DataField& field : document.fields) {
    Variable& variable = dictionary.add(field.name);
    variable.set_label(field.label);
    variable.set_level(level_of(field.optype));
    variable.set_format(format_of(field));
    for (const FieldValue& value : field.values) {
      if (!value.label.empty()) variable.set_value_label(value.value, value.label);
    }
  }
}

}  // namespace hierfit
