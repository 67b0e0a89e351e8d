#include "tests/embedded/chart_session.h"

#include <map>

#include "embedded/files/whole_file.h"
#include "embedded/session_state.h"

namespace hierfit::test {

const std::string ChartSession::kModel = pmml(
    R"(<DataField name="y" displayName="Yield" optype="continuous" dataType="double"/>
       <DataField name="g" displayName="Group &lt;1&gt;" optype="categorical" dataType="integer">
         <Value value="1" displayValue="one &amp; only"/><Value value="2"/></DataField>
       <DataField name="s" optype="categorical" dataType="string">
         <Value value="a" displayValue="first"/></DataField>)",
    R"(<MiningField name="y"/><MiningField name="g"/><MiningField name="s"/>)");

VELT_Variable* ChartSession::variable(const std::string& name) {
  return state().inputs.dictionary.GetVariable(state().inputs.dictionary.FindVarIndex(name, 0));
}

std::vector<output::Chart> ChartSession::take_charts() {
  std::vector<output::Chart> charts;
  output::Document document = session_.take_document();
  for (output::Item& item : document.content.items) {
    auto* chart = std::get_if<std::unique_ptr<output::Chart>>(&item);
    if (chart != nullptr) charts.push_back(std::move(**chart));
  }
  return charts;
}

std::string template_text(const std::string& name, const std::string& label) {
  if (name.find('.') != std::string::npos) {
    return read_whole_file(std::string(HIERFIT_SOURCE_DIR "/templates/") + name);
  }
  static const std::map<std::string, std::vector<const char*>> kRoles = {
      {"GLMMHistogram", {"X", "Y"}},
      {"GLMMPredictedByObserved", {"X", "Y", "Transparency"}},
      {"GLMMEmMeans", {"effect1", "effect2", "target", "confMargin"}},
      {"GLMMCustomEffects", {"targetValue", "effect1", "effect2", "effect3", "confMargin"}},
      {"GLMMSimpleContrasts",
       {"value", "category", "type", "facet1", "facet2", "confMargin", "tooltip"}}};
  XGlyphTemplate chart_template;
  chart_template.setTemplateInternalName(name);
  for (const char* role : kRoles.at(name)) {
    chart_template.addVariable(role, role, false, "", "source0", nullptr, label.c_str(), 0,
                               nullptr);
  }
  if (name == "GLMMEmMeans" || name == "GLMMPredictedByObserved") chart_template.addLabel(0, label);
  std::string text;
  std::string second;
  chart_template.convert(text, second);
  return text;
}

int count_of(std::string_view text, std::string_view part) {
  int count = 0;
  for (size_t at = text.find(part); at != std::string_view::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

std::string document_of(const std::string& sources) {
  return "<chart kind=\"test\"><graph/><texts/><data>" + sources + "</data></chart>";
}

}  // namespace hierfit::test
