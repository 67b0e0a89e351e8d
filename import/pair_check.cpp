#include "import/pair_check.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "import/kind_of_file.h"
#include "import/number_text.h"
#include "import/pair_facts.h"
#include "import/words.h"
#include "import/xml_walk.h"

namespace hierfit::fit {
namespace {

constexpr std::string_view kModelRoot = "PMML";
constexpr std::string_view kResultRoot = "StatXML";
constexpr std::string_view kMissingItem = "__MISSING__";

std::string small(std::string_view text) {
  std::string letters(text);
  std::ranges::transform(letters, letters.begin(), [](unsigned char c) { return std::tolower(c); });
  return letters;
}

/// The facts of a document by element and name.
class FactIndex {
 public:
  explicit FactIndex(std::span<const Fact> facts) {
    for (const Fact& fact : facts)
      facts_[key_of(fact.element, fact.name)].push_back(&fact);
  }

  const std::vector<const Fact*>* find(std::string_view element, std::string_view name) const {
    const auto found = facts_.find(key_of(element, name));
    return found == facts_.end() ? nullptr : &found->second;
  }

 private:
  static std::string key_of(std::string_view element, std::string_view name) {
    return std::string(element) + '/' + std::string(name);
  }

  std::unordered_map<std::string, std::vector<const Fact*>> facts_;
};

/// What the two documents are compared by.
struct Findings {
  std::string root;
  std::string target;
  std::unordered_set<std::string> fields;
  std::unordered_map<std::string, double> coefficients;  ///< of a single set, by name
  bool has_categories = false;                           ///< the coefficients are in several sets
};

/// The words of the fit document that mean a word of the documents: "gaussian" means NORMAL.
std::string_view meant_by(std::string_view word, std::span<const std::string_view> known) {
  const std::string letters = small(word);
  for (const std::span<const Word> words :
       {std::span<const Word>(kDistributions), std::span<const Word>(kLinks),
        std::span<const Word>(kStructures), std::span<const Word>(kAdjustments)}) {
    const std::string_view meant = written(words, letters);
    if (!meant.empty() && std::ranges::find(known, meant) != known.end()) return meant;
  }
  for (const std::string_view candidate : known)
    if (small(candidate) == letters) return candidate;
  return {};
}

/// Holds the values of one document against its facts.
class FactCheck {
 public:
  FactCheck(std::span<const Fact> facts,
            const std::unordered_set<std::string>& fields,
            Problems& problems)
      : index_(facts), fields_(fields), problems_(problems) {}

  void check(const std::vector<OpenElement>& open, size_t line, size_t column) {
    const OpenElement& element = open.back();
    const std::string* name = element.attribute("name");
    check_facts(index_.find(element.name, name == nullptr ? "" : *name), element, line, column);
    if (name != nullptr) check_facts(index_.find(element.name, ""), element, line, column);
    if (element.name == "Value" && open.size() > 2) {
      const OpenElement& owner = open[open.size() - 3];
      const std::string* owner_name = owner.attribute("name");
      if (owner_name != nullptr) {
        check_facts(index_.find("Value of " + *owner_name, ""), element, line, column);
      }
    }
  }

  /// The items of an array that are to be numbers.
  void check_array(const std::vector<OpenElement>& open,
                   std::string_view text,
                   size_t line,
                   size_t column) {
    if (!holds_numbers(open)) return;
    for (size_t item = 0;; ++item) {
      text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
      if (text.empty()) return;
      const std::string_view word = text.substr(0, text.find_first_of(" \t\r\n"));
      text.remove_prefix(word.size());
      if (word == kMissingItem || parse_number(word)) continue;
      problems_.warn("item " + std::to_string(item + 1) + " of the Array is " + in_quotes(word) +
                         ", which is no number; it counts as missing",
                     line, column);
      return;
    }
  }

 private:
  static bool holds_numbers(const std::vector<OpenElement>& open) {
    if (open.size() < 2) return false;
    const OpenElement& owner = open[open.size() - 2];
    if (owner.name == "Matrix") return true;
    const std::string* feature = owner.attribute("feature");
    return owner.name == "Coordinates" && feature != nullptr &&
           (*feature == "observed" || *feature == "frequency" || *feature == "statistic");
  }

  void check_facts(const std::vector<const Fact*>* facts,
                   const OpenElement& element,
                   size_t line,
                   size_t column) {
    if (facts == nullptr) return;
    for (const Fact* fact : *facts) {
      const std::string* value = element.attribute(fact->attribute);
      if (value == nullptr) continue;
      const std::string complaint = complaint_of(*fact, *value);
      if (complaint.empty()) continue;
      if (fact->kind == FactKind::Field && !told_.insert(*value).second) continue;
      problems_.warn(place_of(*fact) + " is " + in_quotes(*value) + complaint, line, column);
    }
  }

  static std::string place_of(const Fact& fact) {
    std::string element(fact.element);
    if (!fact.name.empty()) return element + " " + std::string(fact.name);
    if (element.starts_with("Value of ")) return element;
    return "the " + std::string(fact.attribute) + " of " + element;
  }

  std::string complaint_of(const Fact& fact, const std::string& value) const {
    const std::optional<double> number = parse_number(value);
    switch (fact.kind) {
      case FactKind::Word:
        return complaint_of_word(fact, value);
      case FactKind::Number:
        return value.empty() || number ? "" : ", which is no number; it counts as missing";
      case FactKind::Count:
        if (value.empty() || (number && *number >= 0 && *number == std::floor(*number))) return "";
        return ", which is no whole number of 0 or more";
      case FactKind::Level:
        if (value.empty() || (number && *number > 0 && *number < 1)) return "";
        return ", which is no number between 0 and 1";
      case FactKind::Truth:
        return value == "true" || value == "false" ? "" : ", which counts as false";
      case FactKind::Field:
        if (value.empty() || fields_.empty() || fields_.contains(value)) return "";
        return ", a field that the model document does not have" + nearest_field(value);
    }
    return "";
  }

  static std::string complaint_of_word(const Fact& fact, const std::string& value) {
    if (std::ranges::find(fact.words, value) != fact.words.end()) return "";
    const std::vector<std::string_view> words(fact.words.begin(), fact.words.end());
    const std::string_view meant = meant_by(value, fact.words);
    return ", which is none of " + listed(words) + "; " + fact.otherwise +
           (meant.empty() ? suggestion(value, words)
                          : "; did you mean " + std::string(meant) + "?");
  }

  std::string nearest_field(const std::string& value) const {
    constexpr size_t kMostCompared = 1000;
    if (fields_.size() > kMostCompared) return "";
    return suggestion(value, {fields_.begin(), fields_.end()});
  }

  FactIndex index_;
  const std::unordered_set<std::string>& fields_;
  Problems& problems_;
  std::unordered_set<std::string> told_;  ///< fields that are not there, each once
};

void take_number(const std::string* name,
                 const std::string* number,
                 std::unordered_map<std::string, double>& numbers) {
  if (name == nullptr || number == nullptr) return;
  if (const auto value = parse_number(*number)) numbers[*name] = *value;
}

void collect_model(const OpenElement& element, Findings& model) {
  const std::string* name = element.attribute("name");
  const std::string* usage = element.attribute("usageType");
  if (element.name == "DataField" && name != nullptr) model.fields.insert(*name);
  if (element.name == "MiningField" && usage != nullptr && name != nullptr &&
      (*usage == "target" || *usage == "predicted")) {
    model.target = *name;
  }
  if (element.name != "PCell") return;
  model.has_categories = model.has_categories || element.attribute("targetCategory") != nullptr;
  take_number(element.attribute("parameterName"), element.attribute("beta"), model.coefficients);
}

void collect_result(const std::vector<OpenElement>& open, Findings& result) {
  const OpenElement& element = open.back();
  const std::string* name = element.attribute("name");
  const std::string* value = element.attribute("value");
  if (element.name == "Parameter" && name != nullptr && value != nullptr &&
      *name == "TargetField") {
    result.target = *value;
  }
  if (element.name != "ParameterStats" || open.size() < 2) return;
  const std::string* type = open[open.size() - 2].attribute("parameterType");
  if (type == nullptr || *type != "fixed") return;
  take_number(element.attribute("paramName"), element.attribute("estimate"), result.coefficients);
}

/// Whether two numbers are too far from each other to be one number written twice.
bool differ(double a, double b) {
  return std::abs(a - b) > 1e-6 * std::max({1.0, std::abs(a), std::abs(b)});
}

void compare(const Findings& model, const Findings& result, Problems& problems) {
  if (!model.target.empty() && !result.target.empty() && model.target != result.target) {
    problems.warn("the target is " + in_quotes(result.target) +
                  ", and that of the model document " + in_quotes(model.target) +
                  "; do the two belong together?");
  }
  if (model.has_categories) return;
  for (const auto& [name, estimate] : result.coefficients) {
    const auto other = model.coefficients.find(name);
    if (other == model.coefficients.end() || !differ(estimate, other->second)) continue;
    problems.warn("the coefficient " + in_quotes(name) + " is " + number_text(estimate) +
                  ", and in the model document " + number_text(other->second) +
                  "; do the two belong together?");
    return;
  }
}

/// Adds the names of the fields of a schema.
void add_fields_of(const nlohmann::json& schema, std::unordered_set<std::string>& fields) {
  if (!schema.is_object() || !schema.contains("fields") || !schema["fields"].is_array()) return;
  for (const nlohmann::json& field : schema["fields"]) {
    if (field.is_object() && field.contains("name") && field["name"].is_string()) {
      fields.insert(field["name"].get<std::string>());
    }
  }
}

/// The fields of a Table Schema, or of the resources of a package.
void add_dictionary_fields(const nlohmann::json& root, std::unordered_set<std::string>& fields) {
  add_fields_of(root, fields);
  if (!root.is_object() || !root.contains("resources") || !root["resources"].is_array()) return;
  for (const nlohmann::json& resource : root["resources"])
    if (resource.is_object() && resource.contains("schema"))
      add_fields_of(resource["schema"], fields);
}

void warn_of_kind(std::string_view text, const char* wanted, Problems& problems) {
  const std::string_view kind = kind_of_file(text);
  if (kind.empty() || kind == kXmlDocument) return;
  problems.warn("this is " + std::string(kind) + ", and no " + wanted);
}

}  // namespace

void check_pair(std::string_view model,
                std::string_view result,
                std::string_view dictionary,
                Problems& model_problems,
                Problems& result_problems) {
  warn_of_kind(model, "model document", model_problems);
  warn_of_kind(result, "result document", result_problems);

  Findings of_model;
  Findings of_result;
  const auto take_root = [](const std::vector<OpenElement>& open, Findings& findings) {
    if (open.size() == 1) findings.root = open[0].name;
  };
  if (!dictionary.empty()) {
    add_dictionary_fields(nlohmann::json::parse(dictionary, nullptr, false), of_model.fields);
  }
  FactCheck model_check(model_facts(), of_model.fields, model_problems);
  walk_xml(model, {.start =
                       [&](const auto& open, size_t line, size_t column) {
                         take_root(open, of_model);
                         collect_model(open.back(), of_model);
                         model_check.check(open, line, column);
                       },
                   .text = {},
                   .text_of = {}});
  if (of_model.root == kResultRoot) {
    model_problems.warn(
        "this is a result document, where a model document is meant; were the two "
        "swapped?");
    return;
  }
  FactCheck result_check(result_facts(), of_model.fields, result_problems);
  walk_xml(result,
           {.start =
                [&](const auto& open, size_t line, size_t column) {
                  take_root(open, of_result);
                  collect_result(open, of_result);
                  if (of_result.root != kModelRoot) result_check.check(open, line, column);
                },
            .text = [&](const auto& open, std::string_view text, size_t line,
                        size_t column) { result_check.check_array(open, text, line, column); },
            .text_of = "Array"});
  if (of_result.root == kModelRoot) {
    result_problems.warn("this is a model document, where a result document is meant");
    return;
  }
  compare(of_model, of_result, result_problems);
}

}  // namespace hierfit::fit
