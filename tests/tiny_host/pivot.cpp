// The pivot library: every operation is a line of the output. A text is what it shows; a group or a
// category keeps its table open and is nothing else.
#include "host/pivot.h"

#include <map>

#include "host/dictionary.h"

#include "tests/tiny_host/tiny_host.h"

using tiny::print;

struct BpCellText::Impl {
  std::string shown;
};

struct BpAnnotation::Impl {
  std::string shown;
};

struct BpHeading::Impl {
  explicit Impl(bool isTopmost) : is_topmost(isTopmost) {}
  ~Impl() {
    if (!is_topmost) print("release", "heading");
  }
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  const bool is_topmost;
};

struct BpPivotTable::Impl {
  Impl() = default;
  ~Impl() { print("release", "table"); }
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;
};

struct BpGroup::Impl {
  RefCountPtr<BpPivotTable::Impl> table;
};

struct BpCategory::Impl {
  RefCountPtr<BpPivotTable::Impl> table;
};

namespace {

RefCountPtr<BpCellText::Impl> showing(std::string shown) {
  return std::make_shared<BpCellText::Impl>(BpCellText::Impl{std::move(shown)});
}

std::string number_text(double number, int32_t decimals) {
  const OBS value = {.number = number, .text = {}};
  return ToString(&value, {.decimals = static_cast<uint8_t>(decimals)});
}

std::string variable_text(const VELT_Variable* variable, int32_t show) {
  if (variable == nullptr) return {};
  const bool shows_label = show != 0 && variable->GetLabel() != nullptr;
  return shows_label ? variable->GetLabel() : variable->GetName();
}

std::string value_text(const VELT_Variable* variable, const OBS* value) {
  if (variable == nullptr || value == nullptr) return ".";
  return ToString(value, variable->GetFormat());
}

const std::string& shown(const BpCellText& part) { return part.impl().shown; }

/// The texts that wait for the note which takes them over.
std::map<long, std::string>& replicas() {
  static std::map<long, std::string> replicas;
  return replicas;
}

std::string take_replica(long handle) {
  auto node = replicas().extract(handle);
  return node.empty() ? std::string() : std::move(node.mapped());
}

}  // namespace

BpCellText::~BpCellText() = default;

long BpCellText::Replicate() const {
  static long last = 0;
  replicas().emplace(++last, impl_->shown);
  return last;
}

BpString::BpString(std::string text, bool) : BpCellText(showing(std::move(text))) {}

BpNumber::BpNumber(double value, const BpFormatSpec& format)
    : BpCellText(showing(number_text(value, format.Kind()))) {}

BpVariable::BpVariable(const VELT_Variable* variable, int32_t show)
    : BpCellText(showing(variable_text(variable, show))) {}

BpDataValue::BpDataValue(const VELT_Variable* variable, const OBS* value, int32_t)
    : BpCellText(showing(value_text(variable, value))) {}

BpDataValue::BpDataValue(const VELT_Variable* variable, double value, int32_t)
    : BpCellText(
          showing(number_text(value, variable == nullptr ? 0 : variable->GetFormat().decimals))) {}

BpComposite::BpComposite(std::string pattern, bool) : BpCellText(showing(std::move(pattern))) {}
void BpComposite::Add(const BpCellText& argument) { impl_->shown += " | " + shown(argument); }
void BpComposite::Sublist() {}
void BpComposite::EndSublist() {}
void BpComposite::Finish() {}

BpAnnotation::BpAnnotation(long handle, int32_t, bool)
    : impl_(std::make_shared<Impl>(Impl{take_replica(handle)})) {}

void BpCategory::Cell(const BpCellText& value) { print("BpCategory::Cell", shown(value)); }
void BpCategory::Note(const BpAnnotation& note) { print("BpCategory::Note", note.impl().shown); }
void BpCategory::CellNote(const BpAnnotation& note) {
  print("BpCategory::CellNote", note.impl().shown);
}

BpGroup BpGroup::Group(const BpCellText& title, bool, int32_t) {
  print("BpGroup::Group", shown(title));
  return BpGroup(impl_);
}

BpCategory BpGroup::Category(const BpCellText& label) {
  print("BpGroup::Category", shown(label));
  return BpCategory(std::make_shared<BpCategory::Impl>(BpCategory::Impl{impl_->table}));
}

void BpDimension::Position(int32_t place, int32_t level, bool, bool) {
  print("BpDimension::Position", (place == 0 ? "rows " : "columns ") + std::to_string(level));
}

BpDimension BpPivotTable::Dimension(const BpCellText& title, int32_t) {
  print("BpPivotTable::Dimension", shown(title));
  return BpDimension(std::make_shared<BpGroup::Impl>(BpGroup::Impl{impl_}));
}

void BpPivotTable::Note(const BpAnnotation& note) {
  print("BpPivotTable::Note", note.impl().shown);
}
void BpPivotTable::Caption(const BpCellText& text) { print("BpPivotTable::Caption", shown(text)); }
void BpPivotTable::MinDataColumnWidth(int32_t width) {
  print("BpPivotTable::MinDataColumnWidth", std::to_string(width));
}

BpHeading BpHeading::Heading(const BpCellText& title) {
  print("BpHeading::Heading", shown(title));
  return BpHeading(std::make_shared<Impl>(false));
}

BpPivotTable BpHeading::PivotTable(const BpCellText& title, const BpCellText&, bool) {
  print("BpHeading::PivotTable", shown(title));
  return BpPivotTable(std::make_shared<BpPivotTable::Impl>());
}

void BpError(const BpCellText& text, BpErrorShow, BpErrorLevel) { print("BpError", shown(text)); }

// A kind of format is its number of decimals here.
BpFormatSpec BpProcedure::Coefficient() { return BpFormatSpec(3); }
BpFormatSpec BpProcedure::CoefficientSE() { return BpFormatSpec(3); }
BpFormatSpec BpProcedure::Count() { return BpFormatSpec(0); }
BpFormatSpec BpProcedure::GeneralStat() { return BpFormatSpec(3); }
BpFormatSpec BpProcedure::Percent() { return BpFormatSpec(1); }
BpFormatSpec BpProcedure::Significance() { return BpFormatSpec(3); }
BpFormatSpec BpProcedure::SigDigit(double number) { return BpFormatSpec(6, number); }

BpProcedure tiny::make_procedure() { return BpProcedure(std::make_shared<BpHeading::Impl>(true)); }
