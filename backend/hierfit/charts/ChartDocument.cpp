#include "backend/hierfit/charts/ChartDocument.h"

#include "backend/hierfit/charts/ChartText.h"

void PrepareDocument(XDocument& document) {
  document.setEditor(2);
  document.setLanguage();
}

void SendDocument(XDocument& document) {
  document.applyCTemplate(false);
  document.SendChart(true, false, false);
}

void Relabel(XVariable* chartVariable, VELT_Variable* variable) {
  if (chartVariable == nullptr) return;
  chartVariable->setLabel(VariableChartLabel(*variable));
  chartVariable->setVELTVariable(variable);
  chartVariable->addRelabels();
}

void RelabelWithPrefix(XVariable* chartVariable, VELT_Variable* variable) {
  if (chartVariable == nullptr) return;
  Relabel(chartVariable, variable);
  chartVariable->setFormatBasedOnVELTVariable(variable);
  ChartString prefix = VariableChartLabel(*variable);
  prefix.append(ChartString(" = "));
  chartVariable->SetFormatPrefix(prefix);
}
