// The chart libraries and the editor: every operation is counted. A document is its text, and every
// variable that is asked for is in it.
#include "host/chart_data.h"
#include "host/chart_document.h"
#include "host/editor.h"

#include "tests/tiny_host/tiny_host.h"

using tiny::count;

struct JNIEnvironment {};
struct XGlyphTemplate::Impl {};
struct VarDataProcessor::Impl {};

namespace {

class Variable final : public XVariable {
 public:
  void setLabel(const ChartString&) override { count("XVariable::setLabel"); }
  void setFormat(const VELT_Format&) override { count("XVariable::setFormat"); }
  void setCategorical(bool) override { count("XVariable::setCategorical"); }
  void setVELTVariable(VELT_Variable*) override { count("XVariable::setVELTVariable"); }
  void setFormatBasedOnVELTVariable(VELT_Variable*) override {
    count("XVariable::setFormatBasedOnVELTVariable");
  }
  void addRelabels() override { count("XVariable::addRelabels"); }
  void addRelabel(double, const ChartString&) override { count("XVariable::addRelabel"); }
  void addRelabel(const ChartString&, const ChartString&) override {
    count("XVariable::addRelabel");
  }
  void SetFormatPrefix(const ChartString&) override { count("XVariable::SetFormatPrefix"); }
};

class Graph final : public XGraph {
 public:
  XVariable* getVariable(const std::string&, int32_t) override {
    count("XGraph::getVariable");
    return &variable_;
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
ChartString::ChartString(const char*) {}
void ChartString::replaceSubstring(const ChartString&, const ChartString&) {}
std::string ChartString::toUTF8() const { return {}; }
ChartString XUtility::ChartStringFromOLANG(const char* text) { return ChartString(text); }
ChartString XUtility::ChartStringFromLocalCodePage(const char* text) { return ChartString(text); }

XGlyphTemplate::XGlyphTemplate() { count("XGlyphTemplate::XGlyphTemplate"); }
XGlyphTemplate::~XGlyphTemplate() { count("release"); }
void XGlyphTemplate::setTemplateInternalName(const std::string&) {
  count("XGlyphTemplate::setTemplateInternalName");
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
  count("XGlyphTemplate::addVariable");
}
void XGlyphTemplate::addLabel(int32_t, const std::string&) { count("XGlyphTemplate::addLabel"); }
bool XGlyphTemplate::convert(std::string& xml, std::string& second) {
  count("XGlyphTemplate::convert");
  xml = "<chart/>";
  second.clear();
  return true;
}

VarDataProcessor::VarDataProcessor() { count("VarDataProcessor::VarDataProcessor"); }
VarDataProcessor::~VarDataProcessor() { count("release"); }
void VarDataProcessor::AddDataSource(const std::string&, int32_t) {
  count("VarDataProcessor::AddDataSource");
}
void VarDataProcessor::AddVariable(const std::string&, const std::string&, _varinfo*) {
  count("VarDataProcessor::AddVariable");
}
void VarDataProcessor::SetVariableValue(const _varinfo*, int32_t, double) {
  count("VarDataProcessor::SetVariableValue");
}
void VarDataProcessor::SetVariableValue(const std::string&, const std::string&, int32_t, double) {
  count("VarDataProcessor::SetVariableValue");
}
void VarDataProcessor::SetStringVariableValue(const _varinfo*, int32_t, const std::string&) {
  count("VarDataProcessor::SetStringVariableValue");
}
void VarDataProcessor::SetStringVariableValue(const std::string&,
                                              const std::string&,
                                              int32_t,
                                              const std::string&) {
  count("VarDataProcessor::SetStringVariableValue");
}
char* VarDataProcessor::GetDataStream(int32_t& length) {
  count("VarDataProcessor::GetDataStream");
  length = 0;
  return std::make_unique<char[]>(0).release();
}

XDocument::XDocument(const std::string&) : impl_(std::make_unique<Impl>()) {
  count("XDocument::XDocument");
}
XDocument::~XDocument() { count("release"); }
void XDocument::setEditor(int32_t) { count("XDocument::setEditor"); }
void XDocument::setLanguage() { count("XDocument::setLanguage"); }
void XDocument::SetDescription(const char16_t*) { count("XDocument::SetDescription"); }
void XDocument::SetChartData(VarDataProcessor*) { count("XDocument::SetChartData"); }
void XDocument::applyCTemplate(bool) { count("XDocument::applyCTemplate"); }
void XDocument::applyStyleTemplate() { count("XDocument::applyStyleTemplate"); }
std::string XDocument::AsUTF8() const {
  count("XDocument::AsUTF8");
  return {};
}
XGraph* XDocument::getExternalGraph() {
  count("XDocument::getExternalGraph");
  return &impl_->graph;
}
void XDocument::SendChart(bool, bool, bool) { count("XDocument::SendChart"); }

VeltJVM& VeltJVM::GetInstance() {
  static VeltJVM machine;
  return machine;
}
bool VeltJVM::IsStarted() const { return machine_runs; }
void VeltJVM::StartJVM() {
  count("VeltJVM::StartJVM");
  machine_runs = true;
}
void VeltJVM::AttachCurrentThread(JNIEnvironment** environment) {
  count("VeltJVM::AttachCurrentThread");
  *environment = GetEnv();
}
JNIEnvironment* VeltJVM::GetEnv() {
  static JNIEnvironment environment;
  return &environment;
}

GlyphEditor& GlyphEditor::GetInstance() {
  static GlyphEditor editor;
  return editor;
}
bool GlyphEditor::IsStartedHeadless() const { return editor_runs; }
void GlyphEditor::StartEditorHeadless(JNIEnvironment*) {
  count("GlyphEditor::StartEditorHeadless");
  editor_runs = true;
}
std::string GlyphEditor::EmbedHistogramInGraph(
    const std::string&, const std::string&, const char*, int32_t, int32_t) {
  count("GlyphEditor::EmbedHistogramInGraph");
  return {};
}
