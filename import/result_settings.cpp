// The model as it was specified: `BuildSettings`.
#include "import/number_text.h"
#include "import/result_document.h"
#include "import/words.h"

namespace hierfit::fit {
namespace {

void write_parameter(std::string_view name, std::string_view value, XmlWriter& xml) {
  xml.leaf("Parameter", {{"name", name}, {"value", value}});
}

void write_attribute(std::string_view name, std::string_view value, XmlWriter& xml) {
  xml.leaf("Attribute", {{"name", name}, {"value", value}});
}

template <typename Names>
void write_values(const Names& names, XmlWriter& xml) {
  const auto list = xml.element("ListValue");
  for (const auto& name : names)
    xml.leaf("Value", {{"value", name}});
}

/// A structured value of fields; a field to a power stands as often as the power says.
void write_effect(const Effect& effect, XmlWriter& xml) {
  std::vector<std::string_view> fields;
  std::vector<std::string> nesting;
  for (size_t at = 0; at < effect.fields.size(); ++at) {
    const int64_t power = at < effect.powers.size() ? effect.powers[at] : 1;
    const int64_t level = at < effect.nesting.size() ? effect.nesting[at] : 0;
    fields.insert(fields.end(), static_cast<size_t>(power), effect.fields[at]);
    nesting.insert(nesting.end(), static_cast<size_t>(power), std::to_string(level));
  }
  const auto structure = xml.element("StructuredValue");
  {
    const auto attribute = xml.element("Attribute", {{"name", "Fields"}});
    write_values(fields, xml);
  }
  const auto attribute = xml.element("Attribute", {{"name", "NestingLevels"}});
  write_values(nesting, xml);
}

void write_effects(const std::vector<Effect>& effects, XmlWriter& xml) {
  const auto list = xml.element("ListValue");
  for (const Effect& effect : effects)
    write_effect(effect, xml);
}

void write_subjects(const std::vector<std::string>& subjects,
                    const std::vector<int64_t>& nesting,
                    XmlWriter& xml) {
  if (!subjects.empty()) write_effect({subjects, {}, nesting}, xml);
}

std::string band_text(const std::optional<int64_t>& band) {
  return band ? std::to_string(*band) : "";
}

const char* truth(bool is_true) { return is_true ? "true" : "false"; }

void write_target(const Fit& fit, XmlWriter& xml) {
  const Target& target = fit.target;
  write_parameter("TargetField", target.variable, xml);
  write_parameter("UseTrials", truth(!target.trials.empty() || target.trials_constant), xml);
  if (!target.trials.empty()) write_parameter("TrialsField", target.trials, xml);
  if (target.trials_constant) {
    write_parameter("TrialsValue", std::to_string(*target.trials_constant), xml);
  }
  write_parameter("DistributionOfTarget", written(kDistributions, fit.distribution), xml);
  write_parameter("LinkFunctionType", written(kLinks, fit.link), xml);
  write_parameter("LinkFunctionParam", number_text(fit.link_parameter), xml);
}

void write_block(const Random& block, XmlWriter& xml) {
  const auto structure = xml.element("StructuredValue");
  {
    const auto attribute = xml.element("Attribute", {{"name", "EffectList"}});
    write_effects(block.effects, xml);
  }
  write_attribute("Intercept", truth(block.intercept.value_or(true)), xml);
  {
    const auto attribute = xml.element("Attribute", {{"name", "SubjectSpec"}});
    write_subjects(block.subjects, block.nesting, xml);
  }
  {
    const auto attribute = xml.element("Attribute", {{"name", "GroupSpec"}});
    write_values(block.groups, xml);
  }
  write_attribute("CovarianceType", structure_or(block.structure, "VC"), xml);
  write_attribute("CovarianceTBand", band_text(block.band), xml);
}

void write_random(const std::vector<Random>& blocks, XmlWriter& xml) {
  if (blocks.empty()) return;
  const auto parameter = xml.element("Parameter", {{"name", "RandomSpecs"}});
  const auto list = xml.element("ListValue");
  for (const Random& block : blocks)
    write_block(block, xml);
}

void write_residual(const Residual& residual, XmlWriter& xml) {
  write_parameter("ResidualCovarianceType", structure_or(residual.structure, "ID"), xml);
  write_parameter("ResidualCovarianceTBand", band_text(residual.band), xml);
  {
    const auto parameter = xml.element("Parameter", {{"name", "ResidualSubjectSpec"}});
    write_subjects(residual.subjects, residual.nesting, xml);
  }
  const auto parameter = xml.element("Parameter", {{"name", "ResidualGroupSpec"}});
  write_values(residual.groups, xml);
}

void write_comparison(const Contrasts& contrasts, XmlWriter& xml) {
  write_attribute("CompareFactor", contrasts.compare, xml);
  const std::string_view type = written(kContrastTypes, contrasts.type);
  write_attribute("ContrastType", type, xml);
  if (type != "Simple") return;
  write_attribute("ReferenceType", contrasts.reference ? "Value" : "Last", xml);
  write_attribute("ReferenceValue", contrasts.reference ? contrasts.reference->text : "", xml);
}

void write_request(const Means& means, XmlWriter& xml) {
  const auto structure = xml.element("StructuredValue");
  {
    const auto attribute = xml.element("Attribute", {{"name", "Factors"}});
    write_effect({means.fields, {}, {}}, xml);
  }
  write_attribute("EstimateMeans", "true", xml);
  if (means.contrasts) {
    write_comparison(*means.contrasts, xml);
  } else {
    write_attribute("ContrastType", "None", xml);
  }
}

void write_requests(const std::vector<Means>& means, XmlWriter& xml) {
  if (means.empty()) return;
  const auto parameter = xml.element("Parameter", {{"name", "EMMEANS"}});
  const auto list = xml.element("ListValue");
  for (const Means& block : means)
    write_request(block, xml);
}

}  // namespace

void write_settings(const Prepared& prepared, XmlWriter& xml) {
  const Fit& fit = prepared.fit;
  const auto settings = xml.element("BuildSettings");
  write_target(fit, xml);
  write_parameter("Intercept", truth(fit.fixed.intercept.value_or(true)), xml);
  {
    const auto parameter = xml.element("Parameter", {{"name", "FixedEffectList"}});
    write_effects(fit.fixed.effects, xml);
  }
  write_random(fit.random, xml);
  write_residual(fit.residual, xml);
  write_parameter("CIn", number_text(fit.conf_level), xml);
  write_requests(fit.means, xml);
  write_parameter("pAdjustment", written(kAdjustments, fit.adjust), xml);
}

}  // namespace hierfit::fit
