// Feeds chart documents, as templates and edits leave them, to the host and to all who draw them.
#include <cstddef>
#include <cstdint>

#include "host/chart_document.h"

#include "fuzz/run.h"

namespace {

using namespace hierfit;

/// Asks for what writers ask for.
void edit(XDocument& document, const VELT_Variable* variable) {
  document.setEditor(2);
  document.setLanguage();
  XGraph* graph = document.getExternalGraph();
  for (const char* name : {"effect1", "category", "node", "X", "facet1", "type"}) {
    XVariable* each = graph->getVariable(name, 0);
    if (each == nullptr) continue;
    each->setLabel(ChartString("A <label> & \\n"));
    each->setVELTVariable(const_cast<VELT_Variable*>(variable));
    each->addRelabels();
    each->addRelabel(1, ChartString("one"));
  }
  document.applyCTemplate(false);
  document.SetDescription(u"A description");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  static const std::string model = fuzz::test_document("model.pmml");
  Session session({.pmml_name = "model",
                   .pmml = model,
                   .statxml_name = "result",
                   .statxml = {},
                   .dictionary_name = {},
                   .dictionary = {}},
                  {.language = "en",
                   .resource_directory = HIERFIT_BINARY_DIR "/share/hierfit",
                   .journal = nullptr,
                   .words = report::kWords});
  HFITProcCustom procedure;
  session.connect(procedure);
  try {
    XDocument document(std::string(reinterpret_cast<const char*>(data), size));
    edit(document, procedure.fpDataSource->GetVariable(7));
    static_cast<void>(document.AsUTF8());
    document.SendChart(true, false, false);
  } catch (const Error&) {
    // No chart, which is the usual case here.
  }
  output::Document document = session.take_document();
  fuzz::render_text_forms(document, size);
  return 0;
}
