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

/// The length of the longest ending of a list, divided by blanks, that the name has; 0 for none.
size_t fitting_ending(std::string_view list, std::string_view name) {
  size_t longest = 0;
  while (!list.empty()) {
    const size_t end = std::min(list.find(' '), list.size());
    if (name.ends_with(list.substr(0, end))) longest = std::max(longest, end);
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return longest;
}

}  // namespace

const Form* form_by_name(std::string_view name) {
  const Form* found = std::ranges::find(kForms, name, &Form::name);
  if (found != std::end(kForms)) return found;
  const std::string ending = "." + std::string(name);
  found = std::ranges::find_if(kForms, [&](const Form& form) {
    return !name.empty() && fitting_ending(form.endings, ending) == ending.size();
  });
  return found == std::end(kForms) ? nullptr : found;
}

const Form* form_by_ending(std::string_view file_name) {
  const std::string name = lower_case(file_name);
  const Form* found = nullptr;
  size_t longest = 0;
  for (const Form& form : kForms) {
    const size_t length = fitting_ending(form.endings, name);
    if (length <= longest) continue;
    longest = length;
    found = &form;
  }
  return found;
}

}  // namespace hierfit::report
