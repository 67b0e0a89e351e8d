// The chart libraries and the editor: every operation is counted. A document is its text, and every
// variable that is asked for is in it.
#include "host/chart_data.h"
#include "host/chart_document.h"
#include "host/editor.h"

#include "tests/tiny_host/faults.h"
#include "tests/tiny_host/tiny_host.h"

using tiny::Call;
using tiny::count;

struct JNIEnvironment {};
struct XGlyphTemplate::Impl {};
struct VarDataProcessor::Impl {};

namespace {

class Variable final : public XVariable {
 public:
  void setLabel(const ChartString&) override { const Call call("XVariable::setLabel"); }
  void setFormat(const VELT_Format&) override { const Call call("XVariable::setFormat"); }
  void setCategorical(bool) override { const Call call("XVariable::setCategorical"); }
  void setVELTVariable(VELT_Variable*) override { const Call call("XVariable::setVELTVariable"); }
  void setFormatBasedOnVELTVariable(VELT_Variable*) override {
    const Call call("XVariable::setFormatBasedOnVELTVariable");
  }
  void addRelabels() override { const Call call("XVariable::addRelabels"); }
  void addRelabel(double, const ChartString&) override { const Call call("XVariable::addRelabel"); }
  void addRelabel(const ChartString&, const ChartString&) override {
    const Call call("XVariable::addRelabel");
  }
  void SetFormatPrefix(const ChartString&) override {
    const Call call("XVariable::SetFormatPrefix");
  }
};

class Graph final : public XGraph {
 public:
  XVariable* getVariable(const std::string&, int32_t) override {
    const Call call("XGraph::getVariable");
    return call.gives_nothing() ? nullptr : &variable_;
  }

 private:
  Variable variable_;
};

bool machine_runs = false;
bool editor_runs = false;

}  // namespace

struct XDocument::Impl {
  Graph graph;
};

// The text of this host is nothing: nobody but this host looks into it.
ChartString::ChartString(const char*) { const Call call; }
void ChartString::replaceSubstring(const ChartString&, const ChartString&) { const Call call; }
std::string ChartString::toUTF8() const {
  const Call call;
  return {};
}
ChartString XUtility::ChartStringFromOLANG(const char* text) { return ChartString(text); }
ChartString XUtility::ChartStringFromLocalCodePage(const char* text) { return ChartString(text); }

XGlyphTemplate::XGlyphTemplate() { const Call call("XGlyphTemplate::XGlyphTemplate"); }
XGlyphTemplate::~XGlyphTemplate() { count("release"); }
void XGlyphTemplate::setTemplateInternalName(const std::string&) {
  const Call call("XGlyphTemplate::setTemplateInternalName");
}
void XGlyphTemplate::addVariable(const std::string&,
                                 const std::string&,
                                 bool,
                                 const std::string&,
                                 const std::string&,
                                 const VELT_Format*,
                                 const char*,
                                 int32_t,
                                 const void*) {
  const Call call("XGlyphTemplate::addVariable");
}
void XGlyphTemplate::addLabel(int32_t, const std::string&) {
  const Call call("XGlyphTemplate::addLabel");
}
bool XGlyphTemplate::convert(std::string& xml, std::string& second) {
  const Call call("XGlyphTemplate::convert");
  xml = call.gives_nothing() ? "" : "<chart/>";
  second.clear();
  return !call.gives_nothing();
}

VarDataProcessor::VarDataProcessor() { const Call call("VarDataProcessor::VarDataProcessor"); }
VarDataProcessor::~VarDataProcessor() { count("release"); }
void VarDataProcessor::AddDataSource(const std::string&, int32_t) {
  const Call call("VarDataProcessor::AddDataSource");
}
void VarDataProcessor::AddVariable(const std::string&, const std::string&, _varinfo*) {
  const Call call("VarDataProcessor::AddVariable");
}
void VarDataProcessor::SetVariableValue(const _varinfo*, int32_t, double) {
  const Call call("VarDataProcessor::SetVariableValue");
}
void VarDataProcessor::SetVariableValue(const std::string&, const std::string&, int32_t, double) {
  const Call call("VarDataProcessor::SetVariableValue");
}
void VarDataProcessor::SetStringVariableValue(const _varinfo*, int32_t, const std::string&) {
  const Call call("VarDataProcessor::SetStringVariableValue");
}
void VarDataProcessor::SetStringVariableValue(const std::string&,
                                              const std::string&,
                                              int32_t,
                                              const std::string&) {
  const Call call("VarDataProcessor::SetStringVariableValue");
}
char* VarDataProcessor::GetDataStream(int32_t& length) {
  const Call call("VarDataProcessor::GetDataStream");
  length = call.gives_nonsense() ? -1 : 0;
  return call.gives_nothing() ? nullptr : std::make_unique<char[]>(0).release();
}

XDocument::XDocument(const std::string&) : impl_(std::make_unique<Impl>()) {
  const Call call("XDocument::XDocument");
}
XDocument::~XDocument() { count("release"); }
void XDocument::setEditor(int32_t) { const Call call("XDocument::setEditor"); }
void XDocument::setLanguage() { const Call call("XDocument::setLanguage"); }
void XDocument::SetDescription(const char16_t*) { const Call call("XDocument::SetDescription"); }
void XDocument::SetChartData(VarDataProcessor*) { const Call call("XDocument::SetChartData"); }
void XDocument::applyCTemplate(bool) { const Call call("XDocument::applyCTemplate"); }
void XDocument::applyStyleTemplate() { const Call call("XDocument::applyStyleTemplate"); }
std::string XDocument::AsUTF8() const {
  const Call call("XDocument::AsUTF8");
  return {};
}
XGraph* XDocument::getExternalGraph() {
  const Call call("XDocument::getExternalGraph");
  return call.gives_nothing() ? nullptr : &impl_->graph;
}
void XDocument::SendChart(bool, bool, bool) { const Call call("XDocument::SendChart"); }

VeltJVM& VeltJVM::GetInstance() {
  static VeltJVM machine;
  return machine;
}
bool VeltJVM::IsStarted() const {
  const Call call;
  return machine_runs && !call.gives_nothing();
}
void VeltJVM::StartJVM() {
  const Call call("VeltJVM::StartJVM");
  machine_runs = !call.gives_nothing();
}
void VeltJVM::AttachCurrentThread(JNIEnvironment** environment) {
  const Call call("VeltJVM::AttachCurrentThread");
  *environment = call.gives_nothing() ? nullptr : GetEnv();
}
JNIEnvironment* VeltJVM::GetEnv() {
  static JNIEnvironment environment;
  const Call call;
  return call.gives_nothing() ? nullptr : &environment;
}

GlyphEditor& GlyphEditor::GetInstance() {
  static GlyphEditor editor;
  return editor;
}
bool GlyphEditor::IsStartedHeadless() const {
  const Call call;
  return editor_runs && !call.gives_nothing();
}
void GlyphEditor::StartEditorHeadless(JNIEnvironment*) {
  const Call call("GlyphEditor::StartEditorHeadless");
  editor_runs = true;
}
std::string GlyphEditor::EmbedHistogramInGraph(
    const std::string&, const std::string&, const char*, int32_t, int32_t) {
  const Call call("GlyphEditor::EmbedHistogramInGraph");
  return {};
}
