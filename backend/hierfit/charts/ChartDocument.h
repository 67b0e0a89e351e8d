// The runs of calls that the charts make alike on a document and its variables.
#pragma once

#include "host/chart_document.h"
#include "host/dictionary.h"

/// Settings of every document that is sent.
void PrepareDocument(XDocument& document);

/// Applies the chart template and delivers the chart to the output.
void SendDocument(XDocument& document);

/// Gives a variable of a chart the label and the value labels of a dictionary variable. Nothing for
/// a variable that the document lacks.
void Relabel(XVariable* chartVariable, VELT_Variable* variable);

/// The same, with the format of the dictionary variable and its label ahead of every value, as in
/// "Label = value".
void RelabelWithPrefix(XVariable* chartVariable, VELT_Variable* variable);
