// The Table Schema overlay.
#include <algorithm>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>

#include "embedded/dictionary/formats.h"
#include "embedded/dictionary/read_dictionary.h"
#include "embedded/framework/number_text.h"

namespace hierfit {
namespace {

using Json = nlohmann::json;

/// A value of the file and the way to it, for messages.
class Place {
 public:
  Place(const Json& value, const std::string& file) : value_(value), file_(file) {}

  const Json& value() const { return value_; }

  [[noreturn]] void refuse(const std::string& sentence) const {
    throw FileError({file_, 0, 0}, path_.empty() ? sentence : path_ + ": " + sentence);
  }

  std::optional<Place> member(const char* name) const {
    const auto found = value_.find(name);
    if (found == value_.end()) return std::nullopt;
    return Place(*found, file_, path_.empty() ? name : path_ + "." + name);
  }

  const Place& object() const {
    if (!value_.is_object()) refuse("must be an object");
    return *this;
  }

  std::string text() const {
    if (!value_.is_string()) refuse("must be a string");
    return value_.get<std::string>();
  }

  bool flag() const {
    if (!value_.is_boolean()) refuse("must be true or false");
    return value_.get<bool>();
  }

  template <class Number>
  Number count() const {
    constexpr uint64_t kLargest = std::numeric_limits<Number>::max();
    if (!value_.is_number_unsigned() || value_.get<uint64_t>() > kLargest) {
      refuse("must be a whole number from 0 to " + std::to_string(kLargest));
    }
    return static_cast<Number>(value_.get<uint64_t>());
  }

  /// A value of the data: a string, or a number as its shortest text.
  std::string data_value() const {
    if (value_.is_string()) return text();
    if (value_.is_number_float()) return shortest_text(value_.get<double>());
    if (!value_.is_number()) refuse("must be a string or a number");
    return value_.dump();
  }

  std::vector<Place> items() const {
    if (!value_.is_array()) refuse("must be a list");
    std::vector<Place> items;
    items.reserve(value_.size());
    for (size_t index = 0; index < value_.size(); ++index) {
      items.push_back(Place(value_[index], file_, path_ + "[" + std::to_string(index) + "]"));
    }
    return items;
  }

 private:
  Place(const Json& value, const std::string& file, std::string path)
      : value_(value), file_(file), path_(std::move(path)) {}

  const Json& value_;
  const std::string& file_;
  std::string path_;
};

void set_title(Variable& variable, const Place& title) { variable.set_label(title.text()); }

void set_type(Variable& variable, const Place& type) {
  const std::string name = type.text();
  VELT_Format format = variable.GetFormat();
  if (name == "string") {
    if (variable.holds_strings()) return;
    format = {std::max(format.width, kStringFormat.width), kStringFormat.type, 0};
  } else if (name == "integer" || name == "number") {
    const VELT_Format& numeric = name == "integer" ? kIntegerFormat : kNumberFormat;
    format = {variable.holds_strings() ? numeric.width : format.width, numeric.type,
              numeric.decimals};
  }
  variable.set_format(format);
}

void set_category(Variable& variable, const Place& item) {
  const bool is_object = item.value().is_object();
  const std::optional<Place> value = is_object ? item.member("value") : item;
  if (!value) item.refuse("lacks the member value");
  const std::string text = value->data_value();
  if (!variable.holds_strings() && !is_number(text)) {
    value->refuse("must be a number, as the variable " + variable.GetName() + " is numeric");
  }
  const std::optional<Place> label = is_object ? item.member("label") : std::nullopt;
  if (label) variable.set_value_label(text, label->text());
}

/// The list states all value labels, so those of the model document go.
void set_categories(Variable& variable, const Place& categories) {
  variable.clear_value_labels();
  for (const Place& item : categories.items()) {
    set_category(variable, item);
  }
}

struct LevelName {
  std::string_view name;
  MeasurementLevel level;
};
constexpr LevelName kLevels[] = {{"nominal", MeasurementLevel::Categorical},
                                 {"ordinal", MeasurementLevel::Ordinal},
                                 {"scale", MeasurementLevel::Continuous}};

void set_measurement_level(Variable& variable, const Place& level) {
  const std::string name = level.text();
  const auto* found = std::ranges::find(kLevels, std::string_view(name), &LevelName::name);
  if (found == std::end(kLevels)) level.refuse(R"(must be "nominal", "ordinal" or "scale")");
  variable.set_level(found->level);
}

void set_print_format(Variable& variable, const Place& print) {
  VELT_Format format = variable.GetFormat();
  if (const auto width = print.object().member("width")) format.width = width->count<uint16_t>();
  if (const auto decimals = print.member("decimals")) format.decimals = decimals->count<uint8_t>();
  variable.set_format(format);
}

/// The members of a field, in the order in which they act.
struct Member {
  const char* name;
  void (*apply)(Variable&, const Place&);
};
constexpr Member kMembers[] = {
    {"title", &set_title},
    {"type", &set_type},
    {"categories", &set_categories},
    {"printFormat", &set_print_format},
};

/// Categories make the variable ordinal or categorical, unless the field states its level.
void set_level(Variable& variable, const Place& field) {
  const std::optional<Place> ordered = field.member("categoriesOrdered");
  const bool is_ordered = ordered && ordered->flag();
  if (field.member("categories")) {
    variable.set_level(is_ordered ? MeasurementLevel::Ordinal : MeasurementLevel::Categorical);
  }
  if (const auto level = field.member("measurementLevel")) set_measurement_level(variable, *level);
}

void overlay_field(DataDictionary& dictionary, const Place& field) {
  const std::optional<Place> name = field.object().member("name");
  if (!name) field.refuse("lacks the member name");
  const std::string text = name->text();
  Variable* variable = dictionary.find(text);
  if (variable == nullptr) {
    variable = &dictionary.add(text);
    variable->set_format(kStringFormat);
  }
  for (const auto& [member, apply] : kMembers) {
    if (const auto value = field.member(member)) apply(*variable, *value);
  }
  set_level(*variable, field);
}

/// The schema itself, or that of a Data Package's first resource that has one.
Place schema_of(const Place& root) {
  if (root.object().member("fields")) return root;
  const std::optional<Place> resources = root.member("resources");
  if (!resources) root.refuse("is neither a Table Schema (fields) nor a Data Package (resources)");
  for (const Place& resource : resources->items()) {
    if (auto schema = resource.object().member("schema")) return *schema;
  }
  resources->refuse("none of them has a schema");
}

/// The place of a byte offset, both counted from 1.
Location location_of(std::string_view text, size_t byte, const std::string& file) {
  const std::string_view head = text.substr(0, byte == 0 ? 0 : byte - 1);
  const size_t line_feed = head.rfind('\n');
  const size_t column =
      line_feed == std::string_view::npos ? head.size() : head.size() - line_feed - 1;
  return {file, static_cast<uint32_t>(std::ranges::count(head, '\n') + 1),
          static_cast<uint32_t>(column + 1)};
}

Json parse(std::string_view text, const std::string& file) {
  const size_t nul = text.find('\0');  // the library would take it for the end
  if (nul != std::string_view::npos) {
    throw FileError(location_of(text, nul + 1, file), "not well-formed JSON");
  }
  try {
    return Json::parse(text);
  } catch (const Json::parse_error& error) {
    throw FileError(location_of(text, error.byte, file), "not well-formed JSON");
  } catch (const Json::exception&) {  // a number beyond the range of a double
    throw FileError({file, 0, 0}, "holds a number that is out of range");
  }
}

}  // namespace

void overlay_table_schema(DataDictionary& dictionary,
                          std::string_view text,
                          const std::string& file) {
  const Json json = parse(text, file);
  const Place schema = schema_of(Place(json, file));
  const std::optional<Place> fields = schema.object().member("fields");
  if (!fields) schema.refuse("lacks the list fields");
  for (const Place& field : fields->items()) {
    overlay_field(dictionary, field);
  }
}

}  // namespace hierfit
