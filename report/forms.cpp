// The look-up of forms.
#include <algorithm>

#include "report/report.h"

namespace hierfit::report {

namespace {

std::string lower_case(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return lower;
}

/// Whether the list, divided by blanks, holds the word.
bool lists(std::string_view list, std::string_view word) {
  while (!list.empty()) {
    const size_t end = std::min(list.find(' '), list.size());
    if (list.substr(0, end) == word) return true;
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return false;
}

}  // namespace

const Form* form_by_name(std::string_view name) {
  const Form* found = std::ranges::find(kForms, name, &Form::name);
  return found == std::end(kForms) ? nullptr : found;
}

const Form* form_by_ending(std::string_view file_name) {
  const size_t dot = file_name.rfind('.');
  if (dot == std::string_view::npos) return nullptr;
  const std::string ending = lower_case(file_name.substr(dot));
  const Form* found =
      std::ranges::find_if(kForms, [&](const Form& form) { return lists(form.endings, ending); });
  return found == std::end(kForms) ? nullptr : found;
}

}  // namespace hierfit::report
