// A workbook under construction, in memory, and the looks of its cells.
#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>
#include <xlsxwriter.h>

namespace hierfit::report::xlsx {

/// What the format takes.
inline constexpr uint32_t kMostRows = LXW_ROW_MAX;
inline constexpr uint32_t kMostColumns = LXW_COL_MAX;
inline constexpr size_t kMostCharacters = 32767;
inline constexpr size_t kMostNameUnits = 31;  ///< of a sheet, in UTF-16
inline constexpr size_t kMostLinks = 65530;   ///< in a sheet

/// The size of the text in points.
inline constexpr double kFontSize = 10;

enum class Side : uint8_t { Start, Centre, End };
enum class Rule : uint8_t { None, Hair, Thin, Thick };

/// How a cell or a part of its text looks.
struct Look {
  std::string number = {};  ///< the number format; empty for the general one
  double size = kFontSize;
  bool bold = false;
  bool italic = false;
  bool raised = false;
  bool link = false;
  bool quiet = false;
  bool wraps = false;
  bool low = false;  ///< stands at the foot of its cell, not at the head
  Side side = Side::Start;
  uint8_t indent = 0;
  Rule above = Rule::None;
  Rule below = Rule::None;

  auto operator<=>(const Look&) const = default;  // NOLINT(modernize-use-nullptr): no pointer here.
};

/// A workbook that lives in memory. Throws `std::runtime_error` when the library fails.
class Workbook {
 public:
  /// With `sequential`, sheets keep a row at a time: it takes no memory for a large table, and
  /// rows are written from the top. In one from right to left texts begin at the right.
  Workbook(bool sequential, bool right_to_left);
  Workbook(const Workbook&) = delete;
  Workbook& operator=(const Workbook&) = delete;
  ~Workbook();

  lxw_workbook* get() { return workbook_; }
  lxw_worksheet* add_sheet(const std::string& name);
  lxw_format* format(const Look& look);
  /// Ends the workbook and gives its bytes.
  std::string take();

 private:
  void set(lxw_format* format, const Look& look) const;

  bool right_to_left_;
  int file_ = -1;
  lxw_workbook* workbook_ = nullptr;
  std::map<Look, lxw_format*> formats_;
};

/// A stretch of text in a cell.
struct Run {
  std::string text;
  Look look;
};

/// Writes the runs into one cell; a text beyond what a cell takes ends in an ellipsis. The text of
/// a cell is never read as a formula.
void write_runs(Workbook& workbook,
                lxw_worksheet* sheet,
                uint32_t row,
                uint32_t column,
                const std::vector<Run>& runs,
                const Look& cell);

/// The start of a text of so many units of UTF-16 at most.
std::string first_units(std::string_view text, size_t units);

/// A sheet's name that says this, of legal characters and length.
std::string sheet_name(std::string_view text);

/// The width of a column that shows so many points of text.
double column_width(double points);

}  // namespace hierfit::report::xlsx
