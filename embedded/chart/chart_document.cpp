// The operations of a chart document.
#include <algorithm>
#include <optional>
#include <unordered_map>

#include "embedded/chart/chart_data.h"
#include "embedded/chart/chart_text.h"
#include "embedded/chart/journal_values.h"
#include "embedded/chart/sent_chart.h"
#include "embedded/chart/style.h"
#include "embedded/chart/variable.h"
#include "embedded/error.h"
#include "embedded/session_state.h"
#include "output/utf8.h"

using namespace hierfit;
using chart::Element;
using journal::Journal;
using journal::Result;

namespace {

using Variables = std::vector<std::unique_ptr<chart::Variable>>;

Variables variables_of(Element* root, Journal* journal) {
  Variables variables;
  Element* data = root == nullptr ? nullptr : root->child("data");
  if (data == nullptr) return variables;
  for (Element* source : data->children("source")) {
    for (Element* variable : source->children("variable")) {
      variables.push_back(std::make_unique<chart::Variable>(*variable, journal));
    }
  }
  return variables;
}

/// The graph of a document: its variables by name, those of one name in document order.
class Graph final : public XGraph, public journal::Receiver {
 public:
  Graph(const Variables& variables, Journal* journal) : Receiver(journal) {
    for (const auto& variable : variables) {
      by_name_[variable->name()].push_back(variable.get());
    }
  }

  XVariable* getVariable(const std::string& name, int32_t index) override {
    chart::Variable* variable = find(name, index);
    if (variable != nullptr) variable->number("XVariable");
    note("XGraph::getVariable", name, index,
         Result{variable == nullptr ? nullptr : &variable->id()});
    return variable;
  }

 private:
  chart::Variable* find(const std::string& name, int32_t index) const {
    const auto found = by_name_.find(name);
    if (found == by_name_.end() || index < 0) return nullptr;
    const auto place = static_cast<size_t>(index);
    return place < found->second.size() ? found->second[place] : nullptr;
  }

  std::unordered_map<std::string, std::vector<chart::Variable*>> by_name_;
};

/// The tree of a text. A text of blanks alone, such as that of a file that is not there, gives
/// none.
std::optional<Element> tree_of(const std::string& xml, const StringTable& strings) {
  if (xml.find_first_not_of(" \t\r\n") == std::string::npos) return std::nullopt;
  Element root = chart::parse_markup(chart::xml_characters(xml), chart::kDocumentName);
  if (root.name != "chart") {
    throw DocumentError({chart::kDocumentName, 0, 0}, "its root is no chart");
  }
  chart::translate(root, strings);
  return root;
}

/// The same, with a note of what throws: the module goes on without the chart.
std::optional<Element> noted_tree_of(const std::string& xml, const StringTable& strings) {
  try {
    return tree_of(xml, strings);
  } catch (const DocumentError& error) {
    note_shortfall(Shortfall::Of::Chart, error);
    throw;
  }
}

}  // namespace

struct XDocument::Impl : journal::Receiver {
  Impl(const std::string& xml, Session::State& state)
      : Receiver(state.journal.get()),
        outputs(state.outputs),
        strings(state.inputs.strings),
        root(noted_tree_of(xml, state.inputs.strings)),
        variables(variables_of(root ? &*root : nullptr, journal())),
        graph(variables, journal()) {}

  void store_variables() {
    for (const auto& variable : variables) {
      variable->store();
    }
  }
  /// Beyond the budget, labels of values that the data lack go. Gives whether others were cut.
  bool bound_labels(const std::vector<output::ChartSource>& sources) {
    bool is_cut = false;
    for (const auto& variable : variables) {
      if (outputs.budget.spend_chart_texts(variable->label_bytes(sources))) continue;
      if (variable->keep_labels_of(sources, chart::kShortText)) is_cut = true;
    }
    return is_cut;
  }
  void style() {
    if (root) chart::apply_style(*root);
  }

  Outputs& outputs;
  const StringTable& strings;
  std::optional<Element> root;  ///< none: a document of nothing, which delivers nothing
  Variables variables;
  Graph graph;
  VarDataProcessor* data = nullptr;
  std::string description;
};

XDocument::XDocument(const std::string& xml) {
  Session::State& state = Session::current();
  journal::Line line(state.journal.get(), "XDocument::XDocument");
  line.add(xml);
  impl_ = std::make_unique<Impl>(xml, state);
  impl_->number("XDocument");
  line.add(Result{impl_->id()});
}

XDocument::~XDocument() { impl_->note("release"); }

void XDocument::setEditor(int32_t editor) { impl_->note("XDocument::setEditor", editor); }

void XDocument::setLanguage() {
  impl_->note("XDocument::setLanguage");
  if (impl_->root) impl_->root->set("lang", impl_->outputs.document.language);
}

void XDocument::SetDescription(const char16_t* text) {
  const std::u16string_view description =
      text == nullptr ? std::u16string_view() : std::u16string_view(text);
  impl_->note("XDocument::SetDescription", description);
  impl_->description = chart::plain_text(utf8::from_utf16(description));
}

void XDocument::SetChartData(VarDataProcessor* data) {
  impl_->note("XDocument::SetChartData", data == nullptr ? nullptr : &data->impl().id());
  impl_->data = data;
}

void XDocument::applyCTemplate(bool flag) {
  impl_->note("XDocument::applyCTemplate", flag);
  impl_->style();
}

void XDocument::applyStyleTemplate() {
  impl_->note("XDocument::applyStyleTemplate");
  impl_->style();
}

std::string XDocument::AsUTF8() const {
  impl_->store_variables();
  std::string text = impl_->root ? output::markup_of(*impl_->root) : std::string();
  impl_->note("XDocument::AsUTF8", Result{text});
  return text;
}

XGraph* XDocument::getExternalGraph() {
  impl_->graph.number("XGraph");
  impl_->note("XDocument::getExternalGraph", Result{impl_->graph.id()});
  return &impl_->graph;
}

void XDocument::SendChart(bool toOutput, bool flag2, bool flag3) {
  impl_->note("XDocument::SendChart", toOutput, flag2, flag3);
  if (!impl_->root || !toOutput) return;
  // The data are large and are wanted no more: they move.
  std::vector<output::ChartSource> data;
  if (impl_->data != nullptr) data = impl_->data->impl().take_sources();
  bool is_cut = impl_->data != nullptr && impl_->data->impl().is_cut;
  if (impl_->bound_labels(data)) is_cut = true;
  impl_->store_variables();
  impl_->outputs.open_section().items.emplace_back(std::make_unique<output::Chart>(
      chart::join(*impl_->root, std::move(data), impl_->description)));
  if (is_cut) {
    impl_->outputs.tell(
        impl_->strings,
        "Texts of the chart above are cut: they are out of proportion to the documents.");
  }
}
