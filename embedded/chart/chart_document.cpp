// The operations of a chart document.
#include <algorithm>
#include <unordered_map>

#include "embedded/chart/chart_data.h"
#include "embedded/chart/chart_text.h"
#include "embedded/chart/journal_values.h"
#include "embedded/chart/sent_chart.h"
#include "embedded/chart/style.h"
#include "embedded/chart/variable.h"
#include "embedded/error.h"
#include "embedded/session_state.h"

using namespace hierfit;
using chart::Element;
using journal::Journal;

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
class Graph final : public XGraph {
 public:
  Graph(const Variables& variables, Journal* journal) : journal_(journal) {
    for (const auto& variable : variables) {
      by_name_[variable->name()].push_back(variable.get());
    }
  }

  XVariable* getVariable(const std::string& name, int32_t index) override {
    chart::Variable* variable = find(name, index);
    if (variable != nullptr) variable->enter_journal();
    if (journal_ != nullptr) {
      journal::Line line = journal_->line("XGraph::getVariable");
      line.on(id_).arg(name).arg(index);
      if (variable == nullptr) {
        line.result(nullptr);
      } else {
        line.result(variable->id());
      }
    }
    return variable;
  }

  journal::Id enter_journal() {
    if (id_.number == 0) id_ = journal_->number("XGraph");
    return id_;
  }

 private:
  chart::Variable* find(const std::string& name, int32_t index) const {
    const auto found = by_name_.find(name);
    if (found == by_name_.end() || index < 0) return nullptr;
    const auto place = static_cast<size_t>(index);
    return place < found->second.size() ? found->second[place] : nullptr;
  }

  std::unordered_map<std::string, std::vector<chart::Variable*>> by_name_;
  Journal* journal_;
  journal::Id id_;
};

/// The tree of a text. A text of blanks alone, such as that of a file that is not there, gives
/// none.
std::unique_ptr<Element> tree_of(const std::string& xml) {
  if (xml.find_first_not_of(" \t\r\n") == std::string::npos) return nullptr;
  auto root = chart::parse_markup(chart::xml_characters(xml), chart::kDocumentName);
  if (root->name != "chart") {
    throw DocumentError({chart::kDocumentName, 0, 0}, "its root is no chart");
  }
  chart::translate(*root);
  return root;
}

}  // namespace

struct XDocument::Impl {
  Impl(const std::string& xml, Journal* journal_)
      : journal(journal_),
        root(tree_of(xml)),
        variables(variables_of(root.get(), journal)),
        graph(variables, journal) {}

  void store_variables() {
    for (const auto& variable : variables) {
      variable->store();
    }
  }
  void style() {
    if (root != nullptr) chart::apply_style(*root);
  }

  Journal* const journal;
  journal::Id id;
  std::unique_ptr<Element> root;  ///< null: a document of nothing, which delivers nothing
  Variables variables;
  Graph graph;
  VarDataProcessor* data = nullptr;
  std::string description;
};

XDocument::XDocument(const std::string& xml) {
  const Session::State* state = state_of_thread();
  Journal* journal = state == nullptr ? nullptr : state->journal.get();
  if (journal == nullptr) {
    impl_ = std::make_unique<Impl>(xml, journal);
    return;
  }
  journal::Line line = journal->line("XDocument::XDocument");
  line.arg(xml);
  impl_ = std::make_unique<Impl>(xml, journal);
  impl_->id = journal->number("XDocument");
  line.result(impl_->id);
}

XDocument::~XDocument() {
  if (Journal* journal = impl_->journal) journal->line("release").on(impl_->id);
}

void XDocument::setEditor(int32_t editor) {
  if (Journal* journal = impl_->journal) {
    journal->line("XDocument::setEditor").on(impl_->id).arg(editor);
  }
}

void XDocument::setLanguage() {
  if (Journal* journal = impl_->journal) journal->line("XDocument::setLanguage").on(impl_->id);
  const Session::State* state = state_of_thread();
  if (state != nullptr && impl_->root != nullptr) {
    impl_->root->set("lang", state->document.language);
  }
}

void XDocument::SetDescription(const char16_t* text) {
  const std::u16string_view description =
      text == nullptr ? std::u16string_view() : std::u16string_view(text);
  if (Journal* journal = impl_->journal) {
    journal->line("XDocument::SetDescription").on(impl_->id).arg(description);
  }
  impl_->description = chart::plain_text(chart::to_utf8(description));
}

void XDocument::SetChartData(VarDataProcessor* data) {
  if (Journal* journal = impl_->journal) {
    journal::Line line = journal->line("XDocument::SetChartData");
    line.on(impl_->id);
    if (data == nullptr) {
      line.arg(nullptr);
    } else {
      line.arg(data->impl().id);
    }
  }
  impl_->data = data;
}

void XDocument::applyCTemplate(bool flag) {
  if (Journal* journal = impl_->journal) {
    journal->line("XDocument::applyCTemplate").on(impl_->id).arg(flag);
  }
  impl_->style();
}

void XDocument::applyStyleTemplate() {
  if (Journal* journal = impl_->journal) {
    journal->line("XDocument::applyStyleTemplate").on(impl_->id);
  }
  impl_->style();
}

std::string XDocument::AsUTF8() const {
  impl_->store_variables();
  std::string text = impl_->root == nullptr ? std::string() : chart::markup_of(*impl_->root);
  if (Journal* journal = impl_->journal) {
    journal->line("XDocument::AsUTF8").on(impl_->id).result(text);
  }
  return text;
}

XGraph* XDocument::getExternalGraph() {
  if (Journal* journal = impl_->journal) {
    journal->line("XDocument::getExternalGraph").on(impl_->id).result(impl_->graph.enter_journal());
  }
  return &impl_->graph;
}

void XDocument::SendChart(bool toOutput, bool flag2, bool flag3) {
  if (Journal* journal = impl_->journal) {
    journal->line("XDocument::SendChart").on(impl_->id).arg(toOutput).arg(flag2).arg(flag3);
  }
  Session::State* state = state_of_thread();
  if (state == nullptr || impl_->root == nullptr || !toOutput) return;
  impl_->store_variables();
  // The data are large and are wanted no more: they move.
  std::vector<output::ChartSource> data;
  if (impl_->data != nullptr) data = impl_->data->impl().take_sources();
  state->open_section().items.push_back(std::make_unique<output::Chart>(
      chart::join(*impl_->root, std::move(data), impl_->description)));
}
