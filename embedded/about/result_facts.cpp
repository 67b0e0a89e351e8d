#include "embedded/about/result_facts.h"

#include <algorithm>
#include <cmath>

#include "embedded/framework/number_text.h"

namespace hierfit::about {
namespace {

using xml::kNoNode;
using xml::NodeId;
using xml::Tree;

constexpr std::string_view kResultRoot = "StatXML";
constexpr std::string_view kExtender = "hierfit";
constexpr std::string_view kUnivariate = "TargetDistribution";

/// The patterns that a variance is named by.
constexpr std::string_view kVariancePatterns[] = {"Var(^1)", "VarOfEffect", "Variance "};

class Reader {
 public:
  explicit Reader(const Tree& tree) : tree_(tree) {}

  ResultFacts read() {
    read_settings(tree_.child(Tree::kRoot, "BuildSettings"));
    const NodeId model = tree_.child(Tree::kRoot, "PMMLModel");
    if (model == kNoNode) return std::move(facts_);
    facts_.model_name = attribute(model, "modelName");
    read_remarks(model);
    if (const NodeId node = tree_.child(model, "ModelDiagnostics"); node != kNoNode) {
      read_diagnostics(node);
    }
    if (const NodeId node = tree_.child(model, "TrainingSummary"); node != kNoNode) {
      read_summary(node);
    }
    return std::move(facts_);
  }

 private:
  // Elements.

  template <class Visit>
  void each_child(NodeId parent, std::string_view name, Visit visit) const {
    const uint32_t number = tree_.name_number(name);
    NodeId node = tree_.next_child_named(parent, kNoNode, number);
    for (; node != kNoNode; node = tree_.next_child_named(parent, node, number))
      visit(node);
  }

  NodeId child_called(NodeId parent, std::string_view element, std::string_view name) const {
    NodeId found = kNoNode;
    each_child(parent, element, [&](NodeId node) {
      if (found == kNoNode && tree_.attribute_text(node, "name") == name) found = node;
    });
    return found;
  }

  /// The first element along the path of names, or `kNoNode`.
  NodeId descend(NodeId node, std::initializer_list<std::string_view> path) const {
    for (const std::string_view name : path) {
      if (node == kNoNode) return node;
      node = tree_.child(node, name);
    }
    return node;
  }

  std::string attribute(NodeId node, std::string_view name) const {
    return std::string(tree_.attribute_text(node, name));
  }
  std::string_view value(NodeId node) const { return tree_.attribute_text(node, "value"); }

  std::optional<double> number(NodeId node, std::string_view name) const {
    const auto found = parse_number(tree_.attribute_text(node, name));
    return found && std::isfinite(*found) ? found : std::nullopt;
  }

  std::optional<size_t> count(NodeId node, std::string_view name) const {
    constexpr double kMost = 1e9;
    const auto found = number(node, name);
    if (!found || *found < 0 || *found > kMost) return std::nullopt;
    return static_cast<size_t>(*found);
  }

  // The settings.

  void read_settings(NodeId settings);

  struct Setting {
    std::string_view name;
    void (Reader::*take)(NodeId);
  };
  static const Setting kSettings[];

  void take_target(NodeId node) { facts_.target = value(node); }
  void take_use_trials(NodeId node) { facts_.uses_trials = value(node) == "true"; }
  void take_trials(NodeId node) {
    if (facts_.trials.empty()) facts_.trials = value(node);
  }
  void take_intercept(NodeId node) { facts_.intercept = value(node) == "true"; }
  void take_effects(NodeId node) { facts_.effects = effects_of(node); }
  void take_confidence(NodeId node) { facts_.confidence = number(node, "value"); }
  void take_adjustment(NodeId node) { facts_.adjustment = value(node); }

  void take_random(NodeId node) {
    each_value(node, [&](NodeId block) {
      RandomBlock& random = facts_.random.emplace_back();
      random.effects = effects_of(child_called(block, "Attribute", "EffectList"));
      const NodeId intercept = child_called(block, "Attribute", "Intercept");
      random.intercept = intercept != kNoNode && value(intercept) == "true";
      const NodeId subjects = child_called(block, "Attribute", "SubjectSpec");
      random.subjects = fields_of(descend(subjects, {"StructuredValue"}));
      random.groups = values_of(child_called(block, "Attribute", "GroupSpec"));
    });
  }

  void take_residual_subjects(NodeId node) {
    facts_.residual_subjects = fields_of(descend(node, {"StructuredValue"}));
  }

  void take_means(NodeId node) {
    each_value(node, [&](NodeId block) {
      MeansRequest& request = facts_.means.emplace_back();
      const NodeId factors = child_called(block, "Attribute", "Factors");
      request.factors = fields_of(descend(factors, {"StructuredValue"}));
      const NodeId type = child_called(block, "Attribute", "ContrastType");
      request.has_contrasts = type != kNoNode && value(type) != "None" && !value(type).empty();
    });
  }

  /// Visits the structured values of a list.
  template <class Visit>
  void each_value(NodeId owner, Visit visit) const {
    const NodeId list = descend(owner, {"ListValue"});
    if (list != kNoNode) each_child(list, "StructuredValue", visit);
  }

  std::vector<Fields> effects_of(NodeId owner) const {
    std::vector<Fields> effects;
    each_value(owner, [&](NodeId effect) { effects.push_back(fields_of(effect)); });
    return effects;
  }

  Fields fields_of(NodeId structure) const {
    Fields fields;
    if (structure == kNoNode) return fields;
    fields.names = values_of(child_called(structure, "Attribute", "Fields"));
    for (const std::string& level :
         values_of(child_called(structure, "Attribute", "NestingLevels")))
      fields.nesting.push_back(
          static_cast<int>(std::clamp(parse_number(level).value_or(0), 0.0, 99.0)));
    return fields;
  }

  std::vector<std::string> values_of(NodeId owner) const {
    std::vector<std::string> values;
    const NodeId list = descend(owner, {"ListValue"});
    if (list == kNoNode) return values;
    each_child(list, "Value", [&](NodeId node) { values.emplace_back(value(node)); });
    return values;
  }

  // What stands beside the numbers.

  void read_remarks(NodeId model) {
    each_child(model, "Extension", [&](NodeId node) {
      if (tree_.attribute_text(node, "extender") != kExtender) return;
      facts_.remarks.push_back({attribute(node, "name"), attribute(node, "value")});
    });
  }

  void read_diagnostics(NodeId diagnostics) {
    if (const NodeId node = child_called(diagnostics, "Statistic", "numOfCommonSubjects");
        node != kNoNode) {
      facts_.common_subjects = number(node, "value");
    }
    each_child(diagnostics, "UnivariateData", [&](NodeId node) {
      if (tree_.attribute_text(node, "description") == kUnivariate) read_records(node);
    });
    if (!facts_.records)
      each_child(diagnostics, "BivariateData", [&](NodeId node) { read_records(node); });
    size_t block = 0;
    each_child(diagnostics, "DataGroup", [&](NodeId group) {
      if (tree_.attribute_text(group, "description") != "customEmmeans") return;
      const NodeId index = child_called(group, "Statistic", "EMMEANSIndex");
      read_messages(group, index == kNoNode ? block : count(index, "value").value_or(block));
      ++block;
    });
  }

  void read_records(NodeId node) {
    const NodeId counts = tree_.child(node, "Counts");
    if (counts == kNoNode || facts_.records) return;
    const auto records = number(counts, "totalFreq");
    if (records && *records > 0) facts_.records = records;
  }

  void read_summary(NodeId summary) {
    each_child(summary, "ParameterEstimates", [&](NodeId estimates) {
      facts_.has_estimates = true;
      const std::string_view type = tree_.attribute_text(estimates, "parameterType");
      if (type == "random") read_variances(estimates, count(estimates, "block").value_or(0));
      if (type == "repeated") read_variances(estimates, std::nullopt);
    });
    read_messages(summary, std::nullopt);
  }

  void read_variances(NodeId estimates, std::optional<size_t> block) {
    size_t row = 0;
    each_child(estimates, "ParameterStats", [&](NodeId node) {
      const ZeroVariance variance = {block, row++};
      const bool is_fixed = tree_.attribute_text(node, "isRedundant") == "true";
      if (number(node, "estimate") != 0.0 || is_fixed || !is_variance(node)) return;
      std::vector<ZeroVariance>& known = facts_.zero_variances;
      if (std::ranges::find(known, variance) == known.end()) known.push_back(variance);
    });
  }

  bool is_variance(NodeId parameter) const {
    const NodeId name = tree_.child(parameter, "PrintableList");
    return name != kNoNode &&
           std::ranges::find(kVariancePatterns, tree_.attribute_text(name, "pattern")) !=
               std::end(kVariancePatterns);
  }

  void read_messages(NodeId owner, std::optional<size_t> means) {
    each_child(owner, "Message", [&](NodeId node) {
      const NodeId list = tree_.child(node, "PrintableList");
      if (list == kNoNode || tree_.attribute_text(list, "pattern").empty()) return;
      EngineMessage message = {attribute(list, "pattern"), {}, means};
      each_child(list, "PrintableValue", [&](NodeId parameter) {
        if (!value(parameter).empty()) message.parameters.emplace_back(value(parameter));
      });
      add(std::move(message));
    });
  }

  /// An engine that writes a message writes it for each thing that it is about.
  void add(EngineMessage message) {
    std::vector<EngineMessage>& messages = facts_.messages;
    if (messages.empty() || !(messages.back() == message)) messages.push_back(std::move(message));
  }

  const Tree& tree_;
  ResultFacts facts_;
};

const Reader::Setting Reader::kSettings[] = {
    {"TargetField", &Reader::take_target},
    {"UseTrials", &Reader::take_use_trials},
    {"TrialsField", &Reader::take_trials},
    {"TrialsValue", &Reader::take_trials},
    {"Intercept", &Reader::take_intercept},
    {"FixedEffectList", &Reader::take_effects},
    {"RandomSpecs", &Reader::take_random},
    {"CIn", &Reader::take_confidence},
    {"EMMEANS", &Reader::take_means},
    {"pAdjustment", &Reader::take_adjustment},
    {"ResidualSubjectSpec", &Reader::take_residual_subjects},
};

void Reader::read_settings(NodeId settings) {
  if (settings == kNoNode) return;
  each_child(settings, "Parameter", [&](NodeId parameter) {
    const std::string_view name = tree_.attribute_text(parameter, "name");
    const Setting* found = std::ranges::find(kSettings, name, &Setting::name);
    if (found != std::end(kSettings)) (this->*found->take)(parameter);
  });
}

}  // namespace

std::string_view ResultFacts::remark(std::string_view name) const {
  const auto found = std::ranges::find(remarks, name, &Remark::name);
  return found == remarks.end() ? std::string_view() : found->value;
}

std::optional<ResultFacts> read_result_facts(const Tree& tree) {
  if (tree.empty() || tree.name(Tree::kRoot) != kResultRoot) return std::nullopt;
  return Reader(tree).read();
}

}  // namespace hierfit::about
