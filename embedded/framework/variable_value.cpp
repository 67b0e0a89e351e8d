// A field's value: its text, and what the text stands for.
#include "host/framework.h"

#include "embedded/framework/number_text.h"

void CFStatVariableValue::SetStringValue(const std::string& text) {
  text_ = text;
  value_.reset();
}

bool CFStatVariableValue::LoadObsValue(const VELT_Variable* variable, int32_t) {
  value_.reset();
  if (variable == nullptr) return false;
  OBS value;
  if (variable->GetFormat().type == kStringFormatType) {
    value.isString = true;
    value.text = text_;
  } else {
    if (!hierfit::is_number(text_)) return false;
    value.number = String2Double(text_);
  }
  value_ = std::move(value);
  return true;
}

bool CFStatVariableValue::SetCompleteValue(const std::string& text,
                                           const VELT_Variable* variable,
                                           int32_t flag) {
  SetStringValue(text);
  return LoadObsValue(variable, flag);
}
