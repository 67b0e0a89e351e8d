#include "import/model_document.h"

#include <algorithm>
#include <cctype>
#include <unordered_map>

#include "import/number_text.h"
#include "import/result_document.h"
#include "import/words.h"
#include "import/xml_writer.h"

namespace hierfit::fit {
namespace {

std::string small(std::string_view text) {
  std::string letters(text);
  std::ranges::transform(letters, letters.begin(), [](unsigned char c) { return std::tolower(c); });
  return letters;
}

void write_header(const Fit& fit, XmlWriter& xml) {
  const auto header = xml.element("Header", {{"description", fit.title}});
  const std::string name = fit.engine.name.empty() ? "unknown" : fit.engine.name;
  if (fit.engine.version.empty()) {
    xml.leaf("Application", {{"name", name}});
  } else {
    xml.leaf("Application", {{"name", name}, {"version", fit.engine.version}});
  }
}

void write_variable(const Variable& variable, XmlWriter& xml) {
  std::unordered_map<std::string_view, std::string_view> labels;
  for (const auto& [value, label] : variable.labels)
    labels[value] = label.text;
  const auto field = xml.element("DataField", {{"name", variable.name},
                                               {"displayName", variable.label},
                                               {"optype", level_of(variable)},
                                               {"dataType", type_of(variable)}});
  for (const Value& value : variable.values) {
    const auto label = labels.find(value.text);
    if (label == labels.end()) {
      xml.leaf("Value", {{"value", value.text}});
    } else {
      xml.leaf("Value", {{"value", value.text}, {"displayValue", label->second}});
    }
  }
  if (!variable.values.empty()) return;
  for (const auto& [value, label] : variable.labels)
    xml.leaf("Value", {{"value", value}, {"displayValue", label.text}});
}

/// The columns that coefficients stand for as fitted; they are no variables of the model.
std::vector<std::string_view> columns_as_fitted(const Prepared& prepared) {
  std::vector<std::string_view> columns;
  for (const DesignTerm& term : prepared.fixed.terms) {
    const bool is_new =
        !term.as_fitted.empty() && prepared.variables.find(term.as_fitted) == nullptr;
    if (is_new) columns.push_back(term.as_fitted);
  }
  std::ranges::sort(columns);
  columns.erase(std::unique(columns.begin(), columns.end()), columns.end());
  return columns;
}

void write_dictionary(const Prepared& prepared, XmlWriter& xml) {
  const std::vector<Variable>& variables = prepared.fit.variables;
  const std::vector<std::string_view> columns = columns_as_fitted(prepared);
  const std::string count = std::to_string(variables.size() + columns.size());
  const auto dictionary = xml.element("DataDictionary", {{"numberOfFields", count}});
  for (const Variable& variable : variables)
    write_variable(variable, xml);
  for (const std::string_view column : columns)
    xml.leaf("DataField", {{"name", column}, {"optype", "continuous"}, {"dataType", "double"}});
}

void write_schema(const Fit& fit, XmlWriter& xml) {
  const auto schema = xml.element("MiningSchema");
  for (const Variable& variable : fit.variables) {
    const bool is_target = variable.name == fit.target.variable;
    xml.leaf("MiningField",
             {{"name", variable.name}, {"usageType", is_target ? "target" : "active"}});
  }
}

void write_parameters(const Prepared& prepared, XmlWriter& xml) {
  const auto list = xml.element("ParameterList");
  for (size_t at = 0; at < prepared.fixed.terms.size(); ++at) {
    const DesignTerm& term = prepared.fixed.terms[at];
    xml.leaf("Parameter",
             {{"name", fixed_name(at)},
              {"label", label_of(term, prepared.fit.fixed.effects, prepared.variables)}});
  }
}

/// The fields of all effects that are factors, or that are not.
void write_predictors(const Prepared& prepared, bool factors, XmlWriter& xml) {
  const auto list = xml.element(factors ? "FactorList" : "CovariateList");
  for (const Variable& variable : prepared.fit.variables) {
    const bool is_used = std::ranges::any_of(prepared.fit.fixed.effects, [&](const Effect& effect) {
      return std::ranges::find(effect.fields, variable.name) != effect.fields.end();
    });
    if (is_used && is_factor(variable) == factors) xml.leaf("Predictor", {{"name", variable.name}});
  }
}

void write_cells(const Prepared& prepared, XmlWriter& xml) {
  const auto matrix = xml.element("PPMatrix");
  for (size_t at = 0; at < prepared.fixed.terms.size(); ++at) {
    const DesignTerm& term = prepared.fixed.terms[at];
    const TermFields fields = fields_of(term, prepared.fit.fixed.effects, prepared.variables);
    const std::string name = fixed_name(at);
    if (!term.as_fitted.empty()) continue;
    for (const TermCovariate& covariate : fields.covariates) {
      xml.leaf("PPCell", {{"value", std::to_string(covariate.power)},
                          {"predictorName", covariate.field},
                          {"parameterName", name}});
    }
    for (const TermFactor& factor : fields.factors) {
      xml.leaf("PPCell",
               {{"value", factor.value}, {"predictorName", factor.field}, {"parameterName", name}});
    }
  }
}

void write_coefficient(const Coefficient* row,
                       const std::string& name,
                       const std::optional<Value>& category,
                       XmlWriter& xml) {
  const std::string beta = row == nullptr ? "0" : number_text(row->estimate);
  const char* df = row == nullptr ? "0" : "1";
  if (category) {
    xml.leaf(
        "PCell",
        {{"targetCategory", category->text}, {"parameterName", name}, {"beta", beta}, {"df", df}});
  } else {
    xml.leaf("PCell", {{"parameterName", name}, {"beta", beta}, {"df", df}});
  }
}

void write_coefficients(const Prepared& prepared, XmlWriter& xml) {
  const auto matrix = xml.element("ParamMatrix");
  for (const CoefficientSet& set : prepared.fixed.sets) {
    for (size_t at = 0; at < set.rows.size(); ++at)
      write_coefficient(set.rows[at], fixed_name(at), set.category, xml);
  }
}

}  // namespace

std::string model_document(const Prepared& prepared) {
  const Fit& fit = prepared.fit;
  XmlWriter xml;
  {
    const auto root =
        xml.element("PMML", {{"version", "4.4"}, {"xmlns", "http://www.dmg.org/PMML-4_4"}});
    write_header(fit, xml);
    write_dictionary(prepared, xml);
    const auto model =
        xml.element("GeneralRegressionModel",
                    {{"targetVariableName", fit.target.variable},
                     {"modelType", "generalizedLinear"},
                     {"functionName", "regression"},
                     {"algorithmName", "GLMM"},
                     {"distribution", small(written(kDistributions, fit.distribution))},
                     {"linkFunction", small(written(kLinks, fit.link))}});
    write_schema(fit, xml);
    write_parameters(prepared, xml);
    write_predictors(prepared, true, xml);
    write_predictors(prepared, false, xml);
    write_cells(prepared, xml);
    write_coefficients(prepared, xml);
  }
  return xml.take();
}

}  // namespace hierfit::fit
