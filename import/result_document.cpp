#include "import/result_document.h"

#include "import/number_text.h"

namespace hierfit::fit {
namespace {

void write_remark(std::string_view name, std::string_view value, XmlWriter& xml) {
  if (value.empty()) return;
  xml.leaf("Extension", {{"extender", "hierfit"}, {"name", name}, {"value", value}});
}

/// What a fit tells that no table shows.
void write_remarks(const Prepared& prepared, XmlWriter& xml) {
  const Fit& fit = prepared.fit;
  write_remark("engine.name", fit.engine.name, xml);
  write_remark("engine.version", fit.engine.version, xml);
  write_remark("engine.call", fit.engine.call, xml);
  write_remark("formula", fit.formula, xml);
  write_remark("data.hash", fit.data.hash, xml);
  write_remark("df.method", fit.df_method, xml);
  if (fit.target.reference) write_remark("target.reference", fit.target.reference->text, xml);
  for (size_t at = 0; at < fit.means.size(); ++at)
    write_remark("means[" + std::to_string(at) + "].scale", fit.means[at].scale, xml);
  for (const std::string& condition : fit.engine.conditions)
    write_remark("condition", condition, xml);
  for (const std::string& note : fit.engine.notes)
    write_remark("note", note, xml);
  for (const std::string& sentence : prepared.reckoned)
    write_remark("reckoned", sentence, xml);
}

}  // namespace

std::string result_document(const Prepared& prepared) {
  XmlWriter xml;
  {
    const auto root = xml.element("StatXML", {{"version", "1.0"}});
    write_settings(prepared, xml);
    const auto model = xml.element("PMMLModel", {{"modelName", prepared.fit.name}});
    write_remarks(prepared, xml);
    xml.leaf("PredictiveSummary", {{"algorithmName", "GLMM"}});
    write_string_maps(prepared, xml);
    {
      const auto diagnostics = xml.element("ModelDiagnostics");
      write_diagnostics(prepared, xml);
      write_means(prepared, xml);
    }
    write_estimates(prepared, xml);
  }
  return xml.take();
}

std::string fixed_name(size_t term) { return "P" + std::to_string(term); }
std::string random_name(size_t term) { return "e" + std::to_string(term); }

void write_term(const DesignTerm& term,
                std::string_view name,
                const std::vector<Effect>& effects,
                const Variables& variables,
                XmlWriter& xml) {
  const bool is_intercept = !term.effect && term.as_fitted.empty();
  const auto parameter = xml.element(
      "RegressionParameter", {{"isIntercept", is_intercept ? "true" : "false"}, {"name", name}});
  const TermFields fields = fields_of(term, effects, variables);
  for (const TermCovariate& covariate : fields.covariates) {
    xml.leaf("Covariate", {{"field", covariate.field}, {"power", std::to_string(covariate.power)}});
  }
  for (const TermFactor& factor : fields.factors) {
    if (factor.is_nested) {
      xml.leaf("Factor", {{"field", factor.field}, {"value", factor.value}, {"nest", "true"}});
    } else {
      xml.leaf("Factor", {{"field", factor.field}, {"value", factor.value}});
    }
  }
}

void write_statistic(std::string_view name, double value, XmlWriter& xml) {
  xml.leaf("Statistic", {{"name", name}, {"value", number_text(value)}});
}

void write_segment(const Levels& levels, XmlWriter& xml) {
  const auto segment = xml.element("SegmentInfo");
  for (const auto& [name, value] : levels)
    xml.leaf("FieldInfo", {{"fieldName", name}, {"fieldValue", value.text}});
}

void write_message(std::string_view key, std::string_view value, XmlWriter& xml) {
  const auto message = xml.element("Message");
  const auto list = xml.element("PrintableList", {{"pattern", key}, {"isKey", "true"}});
  if (!value.empty()) xml.leaf("PrintableValue", {{"storage", "string"}, {"value", value}});
}

}  // namespace hierfit::fit
