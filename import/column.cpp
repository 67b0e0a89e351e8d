#include "import/column.h"

namespace hierfit::fit {

void add_number(Column& column, double number) {
  column.numbers.push_back(number);
  if (!column.codes.empty()) column.codes.push_back(-1);
}

void add_text(Column& column, const std::string& text) {
  if (column.codes.empty()) column.codes.assign(column.numbers.size(), -1);
  const auto next = static_cast<int32_t>(column.texts.size());
  const auto [entry, is_new] = column.code_of.try_emplace(text, next);
  if (is_new) column.texts.push_back(text);
  column.numbers.push_back(kMissing);
  column.codes.push_back(entry->second);
}

}  // namespace hierfit::fit
