#include "report/markdown/markdown_table.h"

#include <algorithm>

#include "report/text/display_text.h"

namespace hierfit::report::markdown {

namespace {

constexpr size_t kNarrowest = 4;
constexpr size_t kWidest = 40;

}  // namespace

void PipeTable::end_row() {
  while (cells_.size() % numbers_.size() != 0)
    cells_.emplace_back();
}

std::vector<size_t> PipeTable::widths() const {
  std::vector<size_t> widths(numbers_.size(), kNarrowest);
  for (size_t i = 0; i < cells_.size(); ++i) {
    size_t& width = widths[i % widths.size()];
    width = std::max(width, std::min(text::display_width(cells_[i]), kWidest));
  }
  return widths;
}

void PipeTable::append_to(std::string& out) const {
  const std::vector<size_t> columns = widths();
  for (size_t begin = 0; begin < cells_.size(); begin += columns.size()) {
    append_row(out, begin, columns);
    if (begin > 0) continue;
    for (size_t i = 0; i < columns.size(); ++i) {
      // Readers that wrap wide tables give columns the shares of these dashes.
      out += numbers_[i] ? "|" : "|:";
      out.append(columns[i] + 1, '-');
      if (numbers_[i]) out += ':';
    }
    out += "|\n";
  }
}

void PipeTable::append_row(std::string& out,
                           size_t begin,
                           const std::vector<size_t>& widths) const {
  for (size_t i = 0; i < widths.size(); ++i) {
    const std::string& content = cells_[begin + i];
    const size_t width = text::display_width(content);
    const std::string space(widths[i] - std::min(widths[i], width), ' ');
    out += "| ";
    out += numbers_[i] ? space + content : content + space;
    out += ' ';
  }
  out += "|\n";
}

}  // namespace hierfit::report::markdown
