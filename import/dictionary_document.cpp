// The dictionary that goes with the model document: formats.
#include <nlohmann/json.hpp>

#include "import/model_document.h"

namespace hierfit::fit {
namespace {

using Json = nlohmann::ordered_json;

/// What a format without a width or without decimals means.
constexpr int64_t kUsualWidth = 8;
constexpr int64_t kUsualDecimals = 2;

Json field_of(const Variable& variable) {
  const bool is_integer = type_of(variable) == "integer";
  Json field;
  field["name"] = variable.name;
  field["printFormat"] = {
      {"width", variable.format->width.value_or(kUsualWidth)},
      {"decimals", variable.format->decimals.value_or(is_integer ? 0 : kUsualDecimals)}};
  return field;
}

}  // namespace

std::string dictionary_document(const Fit& fit) {
  Json fields = Json::array();
  for (const Variable& variable : fit.variables)
    if (variable.format) fields.push_back(field_of(variable));
  if (fields.empty()) return {};
  return Json({{"fields", std::move(fields)}}).dump(2) + "\n";
}

}  // namespace hierfit::fit
