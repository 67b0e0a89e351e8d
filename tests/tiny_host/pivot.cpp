// The pivot library: every operation is a line of the output. Texts show nowhere, so they are
// nothing; a group or a category keeps its table open and is nothing else.
#include "host/pivot.h"

#include <iostream>

#include "tests/tiny_host/faults.h"
#include "tests/tiny_host/tiny_host.h"

struct BpCellText::Impl {};
struct BpAnnotation::Impl {};

namespace {

using tiny::Call;

void print(const char* operation) {
  tiny::count(operation);
  if (tiny::prints) std::cout << operation << '\n';
}

}  // namespace

std::map<std::string, int>& tiny::counts() {
  static std::map<std::string, int> counts;
  return counts;
}
bool tiny::prints = true;
void tiny::count(const char* operation) {
  const Inside inside;
  ++counts()[operation];
}

struct BpHeading::Impl {
  explicit Impl(bool isTopmost) : is_topmost(isTopmost) {}
  ~Impl() {
    if (!is_topmost) print("release");
  }
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  const bool is_topmost;
};

struct BpPivotTable::Impl {
  Impl() = default;
  ~Impl() { print("release"); }
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;
};

struct BpGroup::Impl {
  RefCountPtr<BpPivotTable::Impl> table;
};

struct BpCategory::Impl {
  RefCountPtr<BpPivotTable::Impl> table;
};

BpCellText::~BpCellText() = default;
long BpCellText::Replicate() const {
  const Call call;
  return call.gives_nothing() ? 0 : 1;
}
BpString::BpString(std::string, bool) : BpCellText(nullptr) { const Call call; }
BpNumber::BpNumber(double, const BpFormatSpec&) : BpCellText(nullptr) { const Call call; }
BpVariable::BpVariable(const VELT_Variable*, int32_t) : BpCellText(nullptr) { const Call call; }
BpDataValue::BpDataValue(const VELT_Variable*, const OBS*, int32_t) : BpCellText(nullptr) {
  const Call call;
}
BpDataValue::BpDataValue(const VELT_Variable*, double, int32_t) : BpCellText(nullptr) {
  const Call call;
}
BpComposite::BpComposite(std::string, bool) : BpCellText(nullptr) { const Call call; }
void BpComposite::Add(const BpCellText&) { const Call call; }
void BpComposite::Sublist() { const Call call; }
void BpComposite::EndSublist() { const Call call; }
void BpComposite::Finish() { const Call call; }
BpAnnotation::BpAnnotation(long, int32_t, bool) { const Call call; }

void BpCategory::Cell(const BpCellText&) {
  const Call call;
  print("BpCategory::Cell");
}
void BpCategory::Note(const BpAnnotation&) {
  const Call call;
  print("BpCategory::Note");
}
void BpCategory::CellNote(const BpAnnotation&) {
  const Call call;
  print("BpCategory::CellNote");
}

BpGroup BpGroup::Group(const BpCellText&, bool, int32_t) {
  const Call call;
  print("BpGroup::Group");
  return BpGroup(impl_);
}
BpCategory BpGroup::Category(const BpCellText&) {
  const Call call;
  print("BpGroup::Category");
  return BpCategory(std::make_shared<BpCategory::Impl>(BpCategory::Impl{impl_->table}));
}
void BpDimension::Position(int32_t, int32_t, bool, bool) {
  const Call call;
  print("BpDimension::Position");
}

BpDimension BpPivotTable::Dimension(const BpCellText&, int32_t) {
  const Call call;
  print("BpPivotTable::Dimension");
  return BpDimension(std::make_shared<BpGroup::Impl>(BpGroup::Impl{impl_}));
}
void BpPivotTable::Note(const BpAnnotation&) {
  const Call call;
  print("BpPivotTable::Note");
}
void BpPivotTable::Caption(const BpCellText&) {
  const Call call;
  print("BpPivotTable::Caption");
}
void BpPivotTable::MinDataColumnWidth(int32_t) {
  const Call call;
  print("BpPivotTable::MinDataColumnWidth");
}

BpHeading BpHeading::Heading(const BpCellText&) {
  const Call call;
  print("BpHeading::Heading");
  return BpHeading(std::make_shared<Impl>(false));
}
BpPivotTable BpHeading::PivotTable(const BpCellText&, const BpCellText&, bool) {
  const Call call;
  print("BpHeading::PivotTable");
  return BpPivotTable(std::make_shared<BpPivotTable::Impl>());
}

void BpError(const BpCellText&, BpErrorShow, BpErrorLevel) {
  const Call call;
  print("BpError");
}

BpFormatSpec BpProcedure::Coefficient() {
  const Call call;
  return BpFormatSpec(0);
}
BpFormatSpec BpProcedure::CoefficientSE() {
  const Call call;
  return BpFormatSpec(0);
}
BpFormatSpec BpProcedure::Count() {
  const Call call;
  return BpFormatSpec(0);
}
BpFormatSpec BpProcedure::GeneralStat() {
  const Call call;
  return BpFormatSpec(0);
}
BpFormatSpec BpProcedure::Percent() {
  const Call call;
  return BpFormatSpec(0);
}
BpFormatSpec BpProcedure::Significance() {
  const Call call;
  return BpFormatSpec(0);
}
BpFormatSpec BpProcedure::SigDigit(double number) {
  const Call call;
  return BpFormatSpec(0, number);
}

BpProcedure tiny::make_procedure() { return BpProcedure(std::make_shared<BpHeading::Impl>(true)); }
