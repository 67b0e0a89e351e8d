// The cells of a table as text, lined up.
#include "report/typeset/aligned_cells.h"

#include <algorithm>

namespace hierfit::report {

using output::Number;
using output::NumberStyle;
using output::Table;
using output::Text;

namespace {

/// The characters of UTF-8 text, at most 255: no number is that long.
uint8_t characters_in(std::string_view text) {
  const auto count =
      std::ranges::count_if(text, [](char byte) { return (byte & '\xC0') != '\x80'; });
  return static_cast<uint8_t>(std::min<std::ptrdiff_t>(count, 255));
}

/// The number that a cell holds, or null for a text.
const Number* number_of(const Table& table, uint32_t cell) {
  const output::CellValue& value = table.cells.values[cell];
  if (const Number* number = std::get_if<Number>(&value)) return number;
  const Text& text = table.texts[std::get<uint32_t>(value)];
  const bool whole = text.numbers.size() == 1 && text.numbers[0].begin == 0 &&
                     text.numbers[0].length == text.shown.size();
  return whole ? &text.numbers[0].number : nullptr;
}

void measure(std::string_view number, const NumberStyle& style, AlignedCell& cell) {
  const size_t tail = std::min({number.find('E'), number.find(style.percent), number.size()});
  const size_t mark = std::min(number.find(style.decimal_mark), tail);
  cell.whole = characters_in(number.substr(0, mark));
  cell.fraction = characters_in(number.substr(mark, tail - mark));
  cell.tail = characters_in(number.substr(tail));
}

void widen(ColumnParts& column, const AlignedCell& cell) {
  column.whole = std::max(column.whole, cell.whole);
  column.fraction = std::max(column.fraction, cell.fraction);
  column.tail = std::max(column.tail, cell.tail);
}

}  // namespace

AlignedCells align_cells(const Table& table, const TableLayout& layout, const NumberStyle& style) {
  AlignedCells aligned;
  aligned.columns.resize(layout.columns);
  aligned.cells.reserve(layout.placed.size());
  for (const PlacedCell& placed : layout.placed) {
    AlignedCell& cell = aligned.cells.emplace_back();
    ColumnParts& column = aligned.columns[placed.column];
    const Number* number = number_of(table, placed.cell);
    if (number == nullptr) {
      cell.kind = CellKind::Text;
      cell.begin = std::get<uint32_t>(table.cells.values[placed.cell]);
      column.mixed = true;
    } else if (!number->missing()) {
      cell.kind = CellKind::Number;
      cell.value = number->value;
      cell.format = number->format;
      cell.begin = static_cast<uint32_t>(aligned.characters.size());
      output::append_shown(aligned.characters, *number, style);
      cell.length = static_cast<uint16_t>(aligned.characters.size() - cell.begin);
      measure(aligned.number(cell), style, cell);
      widen(column, cell);
    }
  }
  return aligned;
}

}  // namespace hierfit::report
