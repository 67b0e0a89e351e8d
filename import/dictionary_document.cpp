// The dictionary that goes with the model document: formats.
#include <nlohmann/json.hpp>

#include "import/import.h"
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

/// The list of fields of a Table Schema, or of the first resource of a package that has one; null
/// when there is none.
Json* fields_of(Json& dictionary) {
  if (!dictionary.is_object()) return nullptr;
  if (dictionary.contains("fields")) return &dictionary["fields"];
  if (!dictionary.contains("resources") || !dictionary["resources"].is_array()) return nullptr;
  for (Json& resource : dictionary["resources"]) {
    if (!resource.is_object() || !resource.contains("schema")) continue;
    Json& schema = resource["schema"];
    if (schema.is_object() && schema.contains("fields")) return &schema["fields"];
  }
  return nullptr;
}

}  // namespace

std::string laid_over(const std::string& dictionary, const std::string& other) {
  if (dictionary.empty()) return other;
  Json above = Json::parse(other, nullptr, false);
  Json below = Json::parse(dictionary);
  Json* fields = fields_of(above);
  if (fields == nullptr || !fields->is_array()) return other;
  fields->insert(fields->begin(), below["fields"].begin(), below["fields"].end());
  return above.dump();
}

std::string dictionary_document(const Fit& fit) {
  Json fields = Json::array();
  for (const Variable& variable : fit.variables)
    if (variable.format) fields.push_back(field_of(variable));
  if (fields.empty()) return {};
  return Json({{"fields", std::move(fields)}}).dump(2) + "\n";
}

}  // namespace hierfit::fit
