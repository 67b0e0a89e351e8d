#include "output/chart.h"

#include <algorithm>
#include <charconv>

#include "output/utf8.h"

namespace hierfit::output {
namespace {

struct Entity {
  std::string_view name;
  std::string_view text;
};
constexpr Entity kEntities[] = {{"<BR/>", "\n"}, {"&amp;", "&"},   {"&lt;", "<"},
                                {"&gt;", ">"},   {"&quot;", "\""}, {"&apos;", "'"}};

/// Appends the character of a reference that begins `rest` ("&#9472;", "&#x2500;"). Gives the
/// length of the reference; 0, with nothing appended, when it is none.
size_t append_reference(std::string& out, std::string_view rest) {
  if (!rest.starts_with("&#")) return 0;
  const bool hexadecimal = rest.substr(2).starts_with('x');
  const char* first = rest.data() + (hexadecimal ? 3 : 2);
  const char* last = rest.data() + rest.size();
  uint32_t code = 0;
  const auto [end, error] = std::from_chars(first, last, code, hexadecimal ? 16 : 10);
  if (error != std::errc() || end == last || *end != ';' || !utf8::is_xml_character(code)) return 0;
  utf8::append(out, code);
  return static_cast<size_t>(end + 1 - rest.data());
}

size_t append_resolved(std::string& out, std::string_view rest) {
  for (const auto& [name, text] : kEntities) {
    if (!rest.starts_with(name)) continue;
    out += text;
    return name.size();
  }
  return append_reference(out, rest);
}

}  // namespace

void ChartColumn::keep_kinds() {
  if (text_of_row_.empty()) text_of_row_.assign(numbers_.size(), kNumber);
}

/// Makes room for the row; the rows between are unset.
void ChartColumn::grow(size_t row) {
  const size_t rows = numbers_.size();
  if (row > rows) keep_kinds();
  if (row >= rows) numbers_.resize(row + 1);
  if (row > rows || !text_of_row_.empty()) text_of_row_.resize(numbers_.size(), kUnset);
}

void ChartColumn::set(size_t row, double value) {
  if (row == numbers_.size() && text_of_row_.empty()) {
    numbers_.push_back(value);
    return;
  }
  grow(row);
  numbers_[row] = value;
  if (!text_of_row_.empty()) text_of_row_[row] = kNumber;
}

void ChartColumn::set(size_t row, std::string_view value) {
  keep_kinds();
  grow(row);
  if (texts_.empty() || texts_.back() != value) texts_.emplace_back(value);
  text_of_row_.resize(numbers_.size(), kUnset);
  text_of_row_[row] = static_cast<uint32_t>(texts_.size() - 1);
  numbers_[row] = 0;
}

void ChartColumn::unset(size_t row) {
  keep_kinds();
  grow(row);
  text_of_row_.resize(numbers_.size(), kUnset);
  text_of_row_[row] = kUnset;
  numbers_[row] = 0;
}

const std::string* ChartVariable::label_of(double value) const {
  const auto found = number_labels.find(value);
  return found == number_labels.end() ? nullptr : &found->second;
}

const std::string* ChartVariable::label_of(std::string_view value) const {
  const auto found = text_labels.find(value);
  return found == text_labels.end() ? nullptr : &found->second;
}

const ChartVariable* ChartSource::by_role(std::string_view role) const {
  const auto found = std::ranges::find(variables, role, &ChartVariable::role);
  return found == variables.end() ? nullptr : &*found;
}

const ChartSource* Chart::source(std::string_view name) const {
  const auto found = std::ranges::find(sources, name, &ChartSource::name);
  return found == sources.end() ? nullptr : &*found;
}

std::string plain_text(std::string_view text) {
  std::string plain;
  plain.reserve(text.size());
  for (size_t begin = 0; begin < text.size();) {
    const size_t mark = std::min(text.find_first_of("&<", begin), text.size());
    plain += text.substr(begin, mark - begin);
    if (mark == text.size()) break;
    const size_t length = append_resolved(plain, text.substr(mark));
    if (length == 0) plain += text[mark];
    begin = mark + std::max<size_t>(length, 1);
  }
  return plain;
}

}  // namespace hierfit::output
