#include "embedded/about/about.h"

#include <algorithm>

#include "embedded/about/formula.h"
#include "embedded/about/messages.h"

namespace hierfit::about {
namespace {

using output::Text;

constexpr std::string_view kProcedure = "Generalized Linear Mixed Models";

/// What a program writes that has no name to write.
constexpr std::string_view kUnnamed[] = {"model", "unknown"};

bool is_named(std::string_view name) {
  return !name.empty() && std::ranges::find(kUnnamed, name) == std::end(kUnnamed);
}

/// A word of a document and the key of its text.
struct Meaning {
  std::string_view word;
  const char* key;
};
constexpr Meaning kAdjustments[] = {
    {"LSD", "Least Significant significance adjust"},
    {"SEQBONFERRONI", "Sequential Bonferroni significance adjust"},
    {"SEQSIDAK", "Sequential Sidak significance adjust"},
};
constexpr Meaning kDfMethods[] = {
    {"residual", "Residual method"},
    {"satterthwaite", "Satterthwaite approximation"},
    {"kenward-roger", "Kenward-Roger approximation"},
    {"containment", "Containment method"},
    {"between-within", "Between-within method"},
    {"asymptotic", "Asymptotic (normal distribution)"},
};
constexpr Meaning kScales[] = {
    {"response", "Scale of the target"},
    {"link", "Scale of the linear predictor"},
};

/// The tables that hold estimated means, by subtype.
constexpr std::string_view kMeansTables[] = {"GrandMeans", "Estimates"};

template <size_t Size>
const char* key_of(const Meaning (&meanings)[Size], std::string_view word) {
  const Meaning* found = std::ranges::find(meanings, word, &Meaning::word);
  return found == std::end(meanings) ? nullptr : found->key;
}

/// What the module's summary of the model shows in the row of a key, or null.
const Text* summary_text(const output::Section& content, std::string_view row) {
  for (const output::Item& item : content.items) {
    const auto* table = std::get_if<std::unique_ptr<output::Table>>(&item);
    if (table == nullptr || (*table)->subtype != "ModelSummary") continue;
    const output::Cells& cells = (*table)->cells;
    for (size_t cell = 0; cell < cells.size(); ++cell) {
      const auto* text = std::get_if<uint32_t>(&cells.values[cell]);
      for (uint32_t d = 0; text != nullptr && d < cells.dimensions; ++d) {
        const output::Dimension& dimension = (*table)->dimensions[d];
        const uint32_t leaf = cells.at(cell)[d];
        if (leaf == output::kNone || dimension.nodes[dimension.leaves[leaf]].label.key != row) {
          continue;
        }
        return &(*table)->texts[*text];
      }
    }
  }
  return nullptr;
}

using Values = std::vector<Text>;

class Facts {
 public:
  Facts(const ModelFacts& model,
        const ResultFacts& result,
        const std::vector<std::string>& files,
        const output::Document& document,
        const Wording& wording)
      : model_(model), result_(result), files_(files), document_(document), wording_(wording) {}

  std::vector<output::Fact> write() const;

 private:
  struct Row {
    std::string_view key;
    const char* label;
    Values (Facts::*values)() const;
  };
  static const Row kRows[];

  // The model.

  Values procedure() const {
    const Text name = wording_.text(kProcedure);
    return name.shown == document_.title ? Values() : Values{name};
  }
  Values model_name() const {
    const std::string_view name = is_named(model_.name) ? model_.name : result_.model_name;
    return is_named(name) && name != document_.title ? Values{plain(name)} : Values();
  }
  Values target() const {
    if (result_.target.empty()) return {};
    if (!result_.uses_trials || result_.trials.empty()) return {named(result_.target)};
    return {
        wording_.filled("^1 / ^2 (events / trials)", named(result_.target), named(result_.trials))};
  }
  Values reference() const { return remark("target.reference"); }
  Values distribution() const { return of_summary("Probability Distribution"); }
  Values link() const { return of_summary("Link Function"); }
  Values formula() const {
    const std::string_view own = result_.remark("formula");
    const std::string text = own.empty() ? formula_of(result_) : std::string(own);
    return text.empty() ? Values() : Values{plain(text)};
  }

  // The data.

  Values records() const {
    return result_.records ? Values{number(*result_.records, output::Format::Count)} : Values();
  }
  /// A specification that all parts of the model share is counted by the engine; the levels of one
  /// field the model document lists.
  Values groups() const {
    std::vector<Fields> specifications;
    const auto add = [&](const Fields& subjects) {
      const bool is_new = std::ranges::find(specifications, subjects) == specifications.end();
      if (!subjects.names.empty() && is_new) specifications.push_back(subjects);
    };
    for (const RandomBlock& block : result_.random)
      add(block.subjects);
    const bool is_shared =
        specifications.size() == 1 &&
        (result_.residual_subjects.names.empty() || result_.residual_subjects == specifications[0]);
    add(result_.residual_subjects);
    Values values;
    for (const Fields& specification : specifications) {
      const double count =
          is_shared ? result_.common_subjects.value_or(0) : levels_of(specification);
      if (count <= 0) continue;
      Fields labels = specification;
      for (std::string& name : labels.names)
        name = wording_.label_of(name);
      values.push_back(wording_.filled("^1: ^2", plain(joined(labels, " * ")),
                                       number(count, output::Format::Count)));
    }
    return values;
  }
  double levels_of(const Fields& specification) const {
    if (specification.names.size() != 1) return 0;
    const auto found = model_.levels.find(specification.names[0]);
    return found == model_.levels.end() ? 0 : found->second;
  }
  Values data_hash() const { return remark("data.hash"); }

  // The inference.

  Values confidence() const {
    if (!result_.confidence || *result_.confidence <= 0 || *result_.confidence >= 1) return {};
    Text text = number(*result_.confidence * 100, output::Format::SigDigit);
    text.shown += document_.numbers.percent;
    return {text};
  }
  Values adjustment() const {
    const bool has_contrasts = std::ranges::any_of(result_.means, &MeansRequest::has_contrasts);
    return has_contrasts ? meaning(kAdjustments, result_.adjustment) : Values();
  }
  Values df_method() const { return meaning(kDfMethods, result_.remark("df.method")); }
  Values scales() const {
    Values values;
    for (size_t block = 0; block < result_.means.size(); ++block) {
      const std::string_view scale = result_.remark("means[" + std::to_string(block) + "].scale");
      for (Text& text : meaning(kScales, scale)) {
        if (std::ranges::find(values, text) == values.end()) values.push_back(std::move(text));
      }
    }
    return values;
  }

  // Where it comes from.

  Values engine() const {
    std::string name(result_.remark("engine.name"));
    std::string version(result_.remark("engine.version"));
    if (!is_named(name)) {
      name = model_.engine;
      version = model_.engine_version;
    }
    if (!is_named(name)) return {};
    return {plain(version.empty() ? name : name + " " + version)};
  }
  Values call() const { return remark("engine.call"); }
  Values files() const {
    Values values;
    for (const std::string& file : files_)
      values.push_back(plain(file));
    return values;
  }
  Values reckoned() const { return remark("reckoned"); }

  // How values are made.

  /// All remarks of that name.
  Values remark(std::string_view name) const {
    Values values;
    for (const Remark& each : result_.remarks)
      if (each.name == name && !each.value.empty()) values.push_back(plain(each.value));
    return values;
  }

  template <size_t Size>
  Values meaning(const Meaning (&meanings)[Size], std::string_view word) const {
    const char* key = key_of(meanings, word);
    return key == nullptr ? Values() : Values{wording_.text(key)};
  }

  Values of_summary(std::string_view row) const {
    const Text* text = summary_text(document_.content, row);
    return text == nullptr ? Values() : Values{*text};
  }

  /// "Label (name)", by which the formula knows it; a name without a label, and a number, alone.
  Text named(const std::string& field) const {
    const std::string label = wording_.label_of(field);
    const bool names_it = label == field || label.ends_with("(" + field + ")");
    if (names_it) return plain(label);
    return wording_.filled("^1 (^2)", plain(label), plain(field));
  }

  Text number(double value, output::Format format) const {
    const output::Number number{value, format, 0};
    Text text{output::shown(number, document_.numbers), {}};
    text.numbers.push_back({0, static_cast<uint32_t>(text.shown.size()), number});
    return text;
  }

  const ModelFacts& model_;
  const ResultFacts& result_;
  const std::vector<std::string>& files_;
  const output::Document& document_;
  const Wording& wording_;
};

// clang-format off
const Facts::Row Facts::kRows[] = {
    {"procedure", "Procedure", &Facts::procedure},
    {"model", "Model name", &Facts::model_name},
    {"target", "Target", &Facts::target},
    {"reference", "Reference category", &Facts::reference},
    {"distribution", "Probability Distribution", &Facts::distribution},
    {"link", "Link Function", &Facts::link},
    {"formula", "Formula", &Facts::formula},
    {"records", "Records", &Facts::records},
    {"groups", "Number of groups", &Facts::groups},
    {"confidenceLevel", "Confidence level", &Facts::confidence},
    {"adjustment", "Multiple comparisons", &Facts::adjustment},
    {"dfMethod", "Degrees of freedom", &Facts::df_method},
    {"meansScale", "Scale of the means", &Facts::scales},
    {"engine", "Engine", &Facts::engine},
    {"call", "Call", &Facts::call},
    {"dataHash", "Fingerprint of the data", &Facts::data_hash},
    {"files", "Files", &Facts::files},
    {"reckoned", "Worked out by hierfit", &Facts::reckoned},
};
// clang-format on

std::vector<output::Fact> Facts::write() const {
  std::vector<output::Fact> facts;
  for (const auto& [key, label, values] : kRows) {
    if (Values found = (this->*values)(); !found.empty()) {
      facts.push_back({key, wording_.text(label), std::move(found)});
    }
  }
  return facts;
}

}  // namespace

ModelFacts model_facts(const ModelDocument& document) {
  ModelFacts facts = {document.description,
                      document.application,
                      document.application_version,
                      document.model_name,
                      {}};
  for (const DataField& field : document.fields) {
    const auto count = std::ranges::count(field.values, true, &FieldValue::is_valid);
    if (count > 0) facts.levels.emplace(field.name, static_cast<uint32_t>(count));
  }
  return facts;
}

std::string title_of(const ModelFacts& model, const StringTable& strings) {
  if (!model.title.empty()) return plain(model.title).shown;
  if (is_named(model.name)) return plain(model.name).shown;
  return std::string(strings.text(kProcedure));
}

output::About about(const ModelFacts& model,
                    const ResultFacts& result,
                    const std::vector<std::string>& files,
                    const output::Document& document,
                    const Wording& wording) {
  return {wording.text("About this result"), Facts(model, result, files, document, wording).write(),
          messages_about(result, document.content, wording)};
}

void add_notes(const ResultFacts& result, output::Section& content, const Wording& wording) {
  if (!result.uses_trials || result.trials.empty()) return;
  const bool on_link_scale = std::ranges::any_of(result.remarks, [](const Remark& remark) {
    return remark.name.starts_with("means[") && remark.value == "link";
  });
  if (on_link_scale) return;
  for (output::Item& item : content.items) {
    if (auto* inner = std::get_if<std::unique_ptr<output::Section>>(&item)) {
      add_notes(result, **inner, wording);
    } else if (auto* table = std::get_if<std::unique_ptr<output::Table>>(&item)) {
      if (std::ranges::find(kMeansTables, (*table)->subtype) == std::end(kMeansTables)) continue;
      (*table)->table_notes.push_back(static_cast<uint32_t>((*table)->notes.size()));
      (*table)->notes.push_back(wording.text("Means are proportions ..."));
    }
  }
}

}  // namespace hierfit::about
