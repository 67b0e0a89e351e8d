// The chart document library: templates, documents and their variables, 16-bit text.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "host/dictionary.h"

class VarDataProcessor;

/// The library's 16-bit text.
class ChartString {
 public:
  ChartString() = default;
  explicit ChartString(std::u16string text) : text_(std::move(text)) {}
  /// From plain characters.
  explicit ChartString(const char* text);

  void append(const ChartString& text) { text_ += text.text_; }
  /// Replaces the first occurrence of `from`; a text without it stays.
  void replaceSubstring(const ChartString& from, const ChartString& to);
  std::string toUTF8() const;
  /// Valid until this text changes.
  const char16_t* xc_str() const { return text_.c_str(); }

 private:
  std::u16string text_;
};

/// Conversions into the library's text.
class XUtility {
 public:
  static ChartString ChartStringFromOLANG(const char* text);
  static ChartString ChartStringFromLocalCodePage(const char* text);
};

/// A chart template under construction.
class XGlyphTemplate {
 public:
  XGlyphTemplate();
  ~XGlyphTemplate();
  XGlyphTemplate(const XGlyphTemplate&) = delete;
  XGlyphTemplate& operator=(const XGlyphTemplate&) = delete;

  /// Chooses a built-in template by name.
  void setTemplateInternalName(const std::string& name);
  /// Binds a role of the template to a data variable. `format` and `label` may be null; the last
  /// two arguments are always 0 and null.
  void addVariable(const std::string& role,
                   const std::string& variable,
                   bool categorical,
                   const std::string& labelKey,
                   const std::string& source,
                   const VELT_Format* format,
                   const char* label,
                   int32_t kind,
                   const void* extra);
  /// Sets a label; 0 is the title.
  void addLabel(int32_t which, const std::string& text);
  /// The chart document with the bindings and labels in place. Callers read the first text alone.
  bool convert(std::string& xml, std::string& second);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

/// A variable of a chart document. The document owns it; changes act on the document.
class XVariable {
 public:
  virtual void setLabel(const ChartString& label) = 0;
  virtual void setFormat(const VELT_Format& format) = 0;
  virtual void setCategorical(bool categorical) = 0;
  /// Ties the variable to one of the dictionary, whose value labels `addRelabels` takes over.
  virtual void setVELTVariable(VELT_Variable* variable) = 0;
  virtual void setFormatBasedOnVELTVariable(VELT_Variable* variable) = 0;
  virtual void addRelabels() = 0;
  /// The text that one value is shown as.
  virtual void addRelabel(double value, const ChartString& text) = 0;
  virtual void addRelabel(const ChartString& value, const ChartString& text) = 0;
  /// A text ahead of every value of the variable.
  virtual void SetFormatPrefix(const ChartString& prefix) = 0;

 protected:
  ~XVariable() = default;
};

/// The graph of a document, which owns it.
class XGraph {
 public:
  /// The variable of this name; 0 is the first of that name, 1 the second. Null when the document
  /// holds none.
  virtual XVariable* getVariable(const std::string& name, int32_t index) = 0;

 protected:
  ~XGraph() = default;
};

/// A chart document. Every operation may throw; a document that cannot be read throws when made. A
/// text of blanks alone, such as that of a template file that is not there, makes a document of
/// nothing: it delivers nothing.
class XDocument {
 public:
  explicit XDocument(const std::string& xml);
  ~XDocument();
  XDocument(const XDocument&) = delete;
  XDocument& operator=(const XDocument&) = delete;

  /// Always 2.
  void setEditor(int32_t editor);
  void setLanguage();
  /// The description of the chart, a text that ends with 0.
  void SetDescription(const char16_t* text);
  /// Joins the data, which must live until the chart is sent.
  void SetChartData(VarDataProcessor* data);
  void applyCTemplate(bool flag);
  void applyStyleTemplate();
  /// The document's text as it stands.
  std::string AsUTF8() const;
  XGraph* getExternalGraph();
  /// Delivers the chart to the output. The flags are always true, false, false.
  void SendChart(bool toOutput, bool flag2, bool flag3);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};
