// What every table is made of: dimensions in their places, numbers in columns, and the bare values
// that the operations of a pivot table take.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "host/pivot.h"

#include "backend/hierfit/store/Emmeans.h"
#include "backend/hierfit/tables/CellText.h"
#include "backend/hierfit/tables/TableText.h"

/// Places of a dimension.
inline constexpr int32_t kRows = 0;
inline constexpr int32_t kColumns = 1;

/// Sort value of dimensions and groups: categories stand in the order of their first appearance.
inline constexpr int32_t kInOrderOfAppearance = 2;

/// Show values of a variable: its name, and its label in a note or title and in a label or cell.
inline constexpr int32_t kVariableName = 0;
inline constexpr int32_t kVariableInNote = 1;
inline constexpr int32_t kVariableInCell = 2;

/// Preference values of a data value.
inline constexpr int32_t kValueAlone = 0;
inline constexpr int32_t kPreferLabel = 2;

/// What a dimension shows of itself.
enum class Shown { TitleAndLabels, LabelsAlone, Nothing };

/// A new dimension in its place.
inline BpDimension AddDimension(
    BpPivotTable& table, const BpCellText& title, int32_t place, int32_t level, Shown shown) {
  BpDimension dimension = table.Dimension(title, kInOrderOfAppearance);
  dimension.Position(place, level, shown != Shown::TitleAndLabels, shown == Shown::Nothing);
  return dimension;
}

/// The group of this title, which is made when it is first asked for.
inline BpGroup GroupOf(BpGroup& parent, const BpCellText& title) {
  return parent.Group(title, true, kInOrderOfAppearance);
}

/// One column of statistics: the key of its label, and the format of its numbers.
struct StatisticColumn {
  const char* key;
  BpFormatSpec (*format)();
};

/// Writes a number into the column, in the row last asked for, and gives the column's category.
inline BpCategory WriteStatistic(BpGroup& columns, const StatisticColumn& column, double value) {
  BpCategory category = columns.Category(Key(column.key));
  category.Cell(BpNumber(value, column.format()));
  return category;
}

/// A column of statistics, and the member of a record that its numbers stand in: one number, or a
/// list with one for each row.
template <class Record, class Value = double>
struct Column {
  StatisticColumn statistic;
  Value Record::*value;
};
template <class Record>
using ListColumn = Column<Record, CoordinatesData>;

inline double NumberOf(double value, std::size_t) { return value; }
inline double NumberOf(const CoordinatesData& list, std::size_t row) {
  return CellNumber(list.fvValues[row]);
}

/// Writes the numbers of a record, or of one row of its lists, in the row last asked for.
template <class Record, class Value, std::size_t N>
void WriteColumns(BpGroup& group,
                  const Column<Record, Value> (&columns)[N],
                  const Record& record,
                  std::size_t row = 0) {
  for (const Column<Record, Value>& column : columns) {
    WriteStatistic(group, column.statistic, NumberOf(record.*column.value, row));
  }
}

/// Whether all coordinates of a record and the lists of the columns are equally long. It must have
/// coordinates.
template <class Record, std::size_t... N>
bool AreParallel(const Record& record, const ListColumn<Record> (&... columns)[N]) {
  const std::size_t length = record.fvCoordinates.front().fvValues.size();
  const auto fits = [length](const CoordinatesData& list) {
    return list.fvValues.size() == length;
  };
  const auto columnFits = [&](const ListColumn<Record>& column) {
    return fits(record.*column.value);
  };
  return std::ranges::all_of(record.fvCoordinates, fits) &&
         (std::ranges::all_of(columns, columnFits) && ...);
}
