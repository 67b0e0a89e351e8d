// The operations of a chart template under construction.
#include <algorithm>
#include <vector>

#include "embedded/chart/chart_text.h"
#include "embedded/chart/journal_values.h"
#include "embedded/chart/parse_markup.h"
#include "embedded/chart/style.h"
#include "embedded/chart/variable.h"
#include "embedded/session_state.h"

using namespace hierfit;
using chart::Element;
using journal::Result;

namespace {

/// A role with the data variable it is bound to.
struct Binding {
  std::string role;
  std::string variable;
  std::string source;
  bool categorical = false;
  std::string label_key;
  std::optional<VELT_Format> format;
  std::optional<std::string> label;
};

constexpr int32_t kTitle = 0;

void fill_variable(Element& element, const Binding& binding) {
  element.set("name", chart::xml_characters(binding.variable));
  element.set("role", chart::xml_characters(binding.role));
  element.set("categorical", binding.categorical ? "true" : "false");
  if (!binding.label_key.empty()) {
    element.set("labelKey", chart::xml_characters(binding.label_key));
  }
  if (binding.format) chart::set_format(element, *binding.format);
  if (binding.label) element.add("label").set_text(chart::plain_text(*binding.label));
}

Element& source_of(Element& data, const std::string& source) {
  const std::string name = chart::xml_characters(source);
  for (Element* each : data.children("source")) {
    if (each->value("name") == name) return *each;
  }
  Element& added = data.add("source");
  added.set("name", name);
  return added;
}

}  // namespace

struct XGlyphTemplate::Impl : journal::Receiver {
  using Receiver::Receiver;

  std::string name;
  std::vector<Binding> bindings;
  std::string title;

  /// Empty when no built-in template has the name.
  std::string text() const {
    const std::string_view text = chart::built_in_template(name);
    if (text.empty()) return {};
    Element root = chart::parse_markup(text, name);
    if (Element* texts = root.child("texts"); texts != nullptr && !title.empty()) {
      if (Element* element = texts->child("title")) element->set_text(chart::plain_text(title));
    }
    if (Element* data = root.child("data")) {
      for (const Binding& binding : bindings) {
        fill_variable(source_of(*data, binding.source).add("variable"), binding);
      }
    }
    return output::markup_of(root);
  }
};

XGlyphTemplate::XGlyphTemplate()
    : impl_(std::make_unique<Impl>(journal_of_thread(), "XGlyphTemplate")) {
  journal::note(impl_->journal(), "XGlyphTemplate::XGlyphTemplate", Result{impl_->id()});
}

XGlyphTemplate::~XGlyphTemplate() { impl_->note("release"); }

void XGlyphTemplate::setTemplateInternalName(const std::string& name) {
  impl_->note("XGlyphTemplate::setTemplateInternalName", name);
  impl_->name = name;
}

void XGlyphTemplate::addVariable(const std::string& role,
                                 const std::string& variable,
                                 bool categorical,
                                 const std::string& labelKey,
                                 const std::string& source,
                                 const VELT_Format* format,
                                 const char* label,
                                 int32_t kind,
                                 const void*) {
  impl_->note("XGlyphTemplate::addVariable", role, variable, categorical, labelKey, source, format,
              label, kind, nullptr);
  Binding& added = impl_->bindings.emplace_back(
      Binding{role, variable, source, categorical, labelKey, std::nullopt, std::nullopt});
  if (format != nullptr) added.format = *format;
  if (label != nullptr) added.label = label;
}

void XGlyphTemplate::addLabel(int32_t which, const std::string& text) {
  impl_->note("XGlyphTemplate::addLabel", which, text);
  if (which == kTitle) impl_->title = text;
}

bool XGlyphTemplate::convert(std::string& xml, std::string& second) {
  xml = impl_->text();
  second.clear();
  impl_->note("XGlyphTemplate::convert", Result{xml});
  return !xml.empty();
}
