#include "import/column.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "import/number_text.h"

namespace hierfit::fit {
namespace {

bool has_text(const Column& column, size_t record) {
  return !column.codes.empty() && column.codes[record] >= 0;
}

std::vector<double> distinct_numbers(const Column& column) {
  std::vector<double> numbers;
  for (const double number : column.numbers)
    if (exists(number)) numbers.push_back(number);
  std::ranges::sort(numbers);
  numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
  return numbers;
}

}  // namespace

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

bool holds_texts_only(const Column& column) {
  return !column.texts.empty() && std::ranges::none_of(column.numbers, exists);
}

const Column* find_column(const Data& data, std::string_view name) {
  const auto column = std::ranges::find(data.columns, name, &Column::name);
  return column == data.columns.end() ? nullptr : &*column;
}

std::string text_at(const Column& column, size_t record) {
  if (has_text(column, record)) return column.texts[static_cast<size_t>(column.codes[record])];
  return number_text(column.numbers[record]);
}

std::vector<int32_t> positions_in(const std::vector<Value>& values, const Column& column) {
  std::unordered_map<std::string_view, int32_t> position_of_text;
  std::unordered_map<double, int32_t> position_of_number;
  for (size_t at = 0; at < values.size(); ++at) {
    const auto position = static_cast<int32_t>(at);
    position_of_text.try_emplace(values[at].text, position);
    if (const auto number = parse_number(values[at].text)) {
      position_of_number.try_emplace(*number, position);
    }
  }
  std::vector<int32_t> positions(column.size(), -1);
  std::vector<int32_t> position_of_code(column.texts.size(), -1);
  for (size_t code = 0; code < column.texts.size(); ++code) {
    const auto found = position_of_text.find(column.texts[code]);
    if (found != position_of_text.end()) position_of_code[code] = found->second;
  }
  for (size_t record = 0; record < column.size(); ++record) {
    if (has_text(column, record)) {
      positions[record] = position_of_code[static_cast<size_t>(column.codes[record])];
    } else if (const auto found = position_of_number.find(column.numbers[record]);
               found != position_of_number.end()) {
      positions[record] = found->second;
    }
  }
  return positions;
}

std::vector<Value> distinct_values(const Column& column) {
  std::vector<Value> values;
  for (const double number : distinct_numbers(column))
    values.push_back({number_text(number)});
  std::vector<std::string> texts = column.texts;
  std::ranges::sort(texts);
  std::unordered_set<std::string> known;
  for (const Value& value : values)
    known.insert(value.text);
  for (std::string& text : texts)
    if (!known.contains(text)) values.push_back({std::move(text)});
  return values;
}

}  // namespace hierfit::fit
