// The pivot output library: headings, tables, their dimensions, cells and notes, and messages.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "host/ref_count_ptr.h"

class VELT_Variable;
struct OBS;

/// How a number is shown. The operations of `BpProcedure` make it; the host gives it its meaning.
class BpFormatSpec {
 public:
  explicit BpFormatSpec(int32_t kind, double sample = 0) : kind_(kind), sample_(sample) {}
  /// Which operation of `BpProcedure` made it, counted by the host.
  int32_t Kind() const { return kind_; }
  /// The number that `SigDigit` was called with.
  double Sample() const { return sample_; }

 private:
  int32_t kind_;
  double sample_;
};

/// A text for the output: a title, a label, a cell, a note. The argument of every operation below
/// that takes a text; the library copies what it needs.
class BpCellText {
 public:
  struct Impl;

  virtual ~BpCellText();
  BpCellText(const BpCellText&) = default;
  BpCellText& operator=(const BpCellText&) = default;

  /// A handle to a copy of this text, which the `BpAnnotation` made from it takes over.
  long Replicate() const;

  /// For the host: what this text is.
  const Impl& impl() const { return *impl_; }

 protected:
  friend class BpComposite;
  explicit BpCellText(RefCountPtr<Impl> impl) : impl_(std::move(impl)) {}
  RefCountPtr<Impl> impl_;
};

/// A key of the string table (flag true), or a text that is shown as it stands (flag false).
class BpString : public BpCellText {
 public:
  BpString(std::string text, bool isKey);
};

/// A number in a format; the system-missing number shows as missing.
class BpNumber : public BpCellText {
 public:
  BpNumber(double value, const BpFormatSpec& format);
};

/// A variable as text. Show 0 asks for its name, 1 and 2 for its label, or its name without one.
class BpVariable : public BpCellText {
 public:
  /// A null variable shows as an empty text.
  BpVariable(const VELT_Variable* variable, int32_t show);
};

/// A value in its variable's format. Preference 2 asks for the value label where there is one.
class BpDataValue : public BpCellText {
 public:
  /// A null value, or one of the other kind than its variable, shows as missing.
  BpDataValue(const VELT_Variable* variable, const OBS* value, int32_t preference);
  BpDataValue(const VELT_Variable* variable, double value, int32_t preference);
};

/// A pattern with arguments: "^1", "^2" take the arguments in the order in which they were added,
/// "[%1=%2:,^1=^2:]1" repeats over a list argument. With flag true the pattern is a key of the
/// string table. It is used only after `Finish`, and can then be an argument of another.
class BpComposite : public BpCellText {
 public:
  BpComposite(std::string pattern, bool isKey);

  void Add(const BpCellText& argument);
  /// What is added from here to `EndSublist` makes one list argument.
  void Sublist();
  void EndSublist();
  void Finish();
};

/// A footnote: the text whose `Replicate` gave the handle. The other two arguments are -1 and
/// false. The same text twice in one table is the same footnote.
class BpAnnotation {
 public:
  struct Impl;

  BpAnnotation(long handle, int32_t index, bool flag);
  /// For the host: what this note is.
  const Impl& impl() const { return *impl_; }

 private:
  RefCountPtr<Impl> impl_;
};

/// One category of a dimension. A handle: copies mean the same category, and the table stays open
/// while one lives.
class BpCategory {
 public:
  struct Impl;
  explicit BpCategory(RefCountPtr<Impl> impl) : impl_(std::move(impl)) {}

  /// Writes where this category crosses the category last asked for in each other dimension.
  void Cell(const BpCellText& value);
  /// A footnote on the label.
  void Note(const BpAnnotation& note);
  /// A footnote on the cell where this category crosses those last asked for.
  void CellNote(const BpAnnotation& note);

 private:
  RefCountPtr<Impl> impl_;
};

/// A group of categories inside a dimension. A handle, as a category is.
class BpGroup {
 public:
  struct Impl;
  explicit BpGroup(RefCountPtr<Impl> impl) : impl_(std::move(impl)) {}

  /// A group inside this one; asked again with the same title it is the same group. `flag` is
  /// always true and `sort` 2.
  BpGroup Group(const BpCellText& title, bool flag, int32_t sort);
  /// A category of this group; asked again with the same label it is the same category.
  BpCategory Category(const BpCellText& label);

 protected:
  RefCountPtr<Impl> impl_;
};

/// A dimension of a table, which is itself a group.
class BpDimension : public BpGroup {
 public:
  using BpGroup::BpGroup;

  /// Place 0 rows, 1 columns; level 1 is the innermost of its place. The flags hide the dimension's
  /// title and its category labels. Without this call the library chooses a free place.
  void Position(int32_t place, int32_t level, bool hideTitle, bool hideLabels);
};

/// A table. A handle: the table is open until the last handle to it or into it is released.
class BpPivotTable {
 public:
  struct Impl;
  explicit BpPivotTable(RefCountPtr<Impl> impl) : impl_(std::move(impl)) {}

  /// A new dimension. With sort 2 its categories stand in the order of their first appearance.
  BpDimension Dimension(const BpCellText& title, int32_t sort);
  /// A footnote on the table as a whole.
  void Note(const BpAnnotation& note);
  /// The caption below the table.
  void Caption(const BpCellText& text);
  /// The data column is at least this wide, in points.
  void MinDataColumnWidth(int32_t width);

 private:
  RefCountPtr<Impl> impl_;
};

/// A heading of the output. A handle; what is opened on it lies under it.
class BpHeading {
 public:
  struct Impl;
  explicit BpHeading(RefCountPtr<Impl> impl) : impl_(std::move(impl)) {}

  BpHeading Heading(const BpCellText& title);
  /// A new table. `subtype` names its kind for programs; `flag` is false for the summary alone.
  BpPivotTable PivotTable(const BpCellText& title, const BpCellText& subtype, bool flag);

 protected:
  RefCountPtr<Impl> impl_;
};

/// The output of a procedure: its topmost heading, and the number formats of statistics.
class BpProcedure : public BpHeading {
 public:
  using BpHeading::BpHeading;

  static BpFormatSpec Coefficient();
  static BpFormatSpec CoefficientSE();
  static BpFormatSpec Count();
  static BpFormatSpec GeneralStat();
  static BpFormatSpec Percent();
  static BpFormatSpec Significance();
  /// As many decimals as `number` needs.
  static BpFormatSpec SigDigit(double number);
};

/// Where a message is shown; 2 is the output itself.
enum BpErrorShow : int32_t {};
/// How grave a message is: 2 a warning, 3 an error.
enum BpErrorLevel : int32_t {};

/// Puts a message into the output. The run goes on.
void BpError(const BpCellText& text, BpErrorShow show, BpErrorLevel level);
