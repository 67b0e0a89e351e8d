// Values of the dictionary as text, and the look-up of their labels.
#include "host/dictionary.h"

#include "embedded/dictionary/variable.h"
#include "embedded/framework/number_text.h"
#include "output/number_format.h"

namespace {

template <class Labels, class Value>
const char* label_in(const Labels& labels, const Value& value) {
  const auto found = labels.find(value);
  return found == labels.end() ? nullptr : found->second.c_str();
}

std::string without_trailing_blanks(const std::string& text) {
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

}  // namespace

const char* VELT_ValueLabelMap::GetLabel(double value) const {
  return labels_ == nullptr ? nullptr : label_in(labels_->by_number, value);
}

const char* VELT_ValueLabelMap::GetLabel(const std::string& value) const {
  return labels_ == nullptr ? nullptr : label_in(labels_->by_text, value);
}

const char* VELT_ValueLabelMap::GetLabel(const OBS* value) const {
  if (value == nullptr) return nullptr;
  return value->isString ? GetLabel(value->text) : GetLabel(value->number);
}

std::string ToString(const OBS* value, VELT_Format format) {
  if (value == nullptr) return {};
  if (value->isString) return without_trailing_blanks(value->text);
  if (value->number == hierfit::output::kSystemMissing) return ".";
  return hierfit::fixed_text(value->number, format.decimals);
}
