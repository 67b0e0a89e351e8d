// The pivot library: every operation is a line of the output. Texts show nowhere, so they are
// nothing; a group or a category keeps its table open and is nothing else.
#include "host/pivot.h"

#include <iostream>

#include "tests/tiny_host/tiny_host.h"

struct BpCellText::Impl {};
struct BpAnnotation::Impl {};

namespace {

void print(const char* operation) {
  tiny::count(operation);
  std::cout << operation << '\n';
}

}  // namespace

std::map<std::string, int>& tiny::counts() {
  static std::map<std::string, int> counts;
  return counts;
}
void tiny::count(const std::string& operation) { ++counts()[operation]; }

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
long BpCellText::Replicate() const { return 1; }
BpString::BpString(std::string, bool) : BpCellText(nullptr) {}
BpNumber::BpNumber(double, const BpFormatSpec&) : BpCellText(nullptr) {}
BpVariable::BpVariable(const VELT_Variable*, int32_t) : BpCellText(nullptr) {}
BpDataValue::BpDataValue(const VELT_Variable*, const OBS*, int32_t) : BpCellText(nullptr) {}
BpDataValue::BpDataValue(const VELT_Variable*, double, int32_t) : BpCellText(nullptr) {}
BpComposite::BpComposite(std::string, bool) : BpCellText(nullptr) {}
void BpComposite::Add(const BpCellText&) {}
void BpComposite::Sublist() {}
void BpComposite::EndSublist() {}
void BpComposite::Finish() {}
BpAnnotation::BpAnnotation(long, int32_t, bool) {}

void BpCategory::Cell(const BpCellText&) { print("BpCategory::Cell"); }
void BpCategory::Note(const BpAnnotation&) { print("BpCategory::Note"); }
void BpCategory::CellNote(const BpAnnotation&) { print("BpCategory::CellNote"); }

BpGroup BpGroup::Group(const BpCellText&, bool, int32_t) {
  print("BpGroup::Group");
  return BpGroup(impl_);
}
BpCategory BpGroup::Category(const BpCellText&) {
  print("BpGroup::Category");
  return BpCategory(std::make_shared<BpCategory::Impl>(BpCategory::Impl{impl_->table}));
}
void BpDimension::Position(int32_t, int32_t, bool, bool) { print("BpDimension::Position"); }

BpDimension BpPivotTable::Dimension(const BpCellText&, int32_t) {
  print("BpPivotTable::Dimension");
  return BpDimension(std::make_shared<BpGroup::Impl>(BpGroup::Impl{impl_}));
}
void BpPivotTable::Note(const BpAnnotation&) { print("BpPivotTable::Note"); }
void BpPivotTable::Caption(const BpCellText&) { print("BpPivotTable::Caption"); }
void BpPivotTable::MinDataColumnWidth(int32_t) { print("BpPivotTable::MinDataColumnWidth"); }

BpHeading BpHeading::Heading(const BpCellText&) {
  print("BpHeading::Heading");
  return BpHeading(std::make_shared<Impl>(false));
}
BpPivotTable BpHeading::PivotTable(const BpCellText&, const BpCellText&, bool) {
  print("BpHeading::PivotTable");
  return BpPivotTable(std::make_shared<BpPivotTable::Impl>());
}

void BpError(const BpCellText&, BpErrorShow, BpErrorLevel) { print("BpError"); }

BpFormatSpec BpProcedure::Coefficient() { return BpFormatSpec(0); }
BpFormatSpec BpProcedure::CoefficientSE() { return BpFormatSpec(0); }
BpFormatSpec BpProcedure::Count() { return BpFormatSpec(0); }
BpFormatSpec BpProcedure::GeneralStat() { return BpFormatSpec(0); }
BpFormatSpec BpProcedure::Percent() { return BpFormatSpec(0); }
BpFormatSpec BpProcedure::Significance() { return BpFormatSpec(0); }
BpFormatSpec BpProcedure::SigDigit(double number) { return BpFormatSpec(0, number); }

BpProcedure tiny::make_procedure() { return BpProcedure(std::make_shared<BpHeading::Impl>(true)); }
