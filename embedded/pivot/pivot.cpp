// The operations of the pivot library: each one is its line in the journal and a step of the table
// under construction.
#include "embedded/pivot/heading.h"
#include "embedded/pivot/table_builder.h"
#include "embedded/session_state.h"

namespace {

using namespace hierfit;
using journal::Result;

/// A reference to a part of a table, which keeps the table open.
template <class Part, class Holder>
RefCountPtr<Part> part_of(const RefCountPtr<Holder>& holder, Part& part) {
  return RefCountPtr<Part>(holder, &part);
}

output::Severity severity_of(BpErrorLevel level) {
  constexpr int32_t kWarning = 2;
  return static_cast<int32_t>(level) <= kWarning ? output::Severity::Warning
                                                 : output::Severity::Error;
}

BpFormatSpec format(output::Format kind, double sample = 0) {
  return BpFormatSpec(static_cast<int32_t>(kind), sample);
}

}  // namespace

BpHeading BpHeading::Heading(const BpCellText& title) {
  BpHeading heading(std::make_shared<Impl>(*impl_, title.impl()));
  impl_->note("BpHeading::Heading", title, Result{heading.impl_->id()});
  return heading;
}

BpPivotTable BpHeading::PivotTable(const BpCellText& title, const BpCellText& subtype, bool flag) {
  const auto table = std::make_shared<BpPivotTable::Impl>(
      impl_->add_table(title.impl(), subtype.impl()), impl_->wording, Session::current().outputs,
      impl_->journal());
  impl_->note("BpHeading::PivotTable", title, subtype, flag, Result{table->id()});
  return BpPivotTable(table);
}

BpDimension BpPivotTable::Dimension(const BpCellText& title, int32_t sort) {
  BpGroup::Impl& dimension = impl_->add_dimension(title.impl());
  impl_->note("BpPivotTable::Dimension", title, sort, Result{dimension.id()});
  return BpDimension(part_of(impl_, dimension));
}

void BpPivotTable::Note(const BpAnnotation& note) {
  impl_->note("BpPivotTable::Note", note);
  impl_->note_table(note.impl());
}

void BpPivotTable::Caption(const BpCellText& text) {
  impl_->note("BpPivotTable::Caption", text);
  impl_->table.caption = pivot::shown_text(text.impl(), impl_->wording);
}

void BpPivotTable::MinDataColumnWidth(int32_t width) {
  impl_->note("BpPivotTable::MinDataColumnWidth", width);
  impl_->table.min_data_column_width = width;
}

void BpDimension::Position(int32_t place, int32_t level, bool hideTitle, bool hideLabels) {
  impl_->note("BpDimension::Position", place, level, hideTitle, hideLabels);
  impl_->table->position(impl_->dimension, place, level, hideTitle, hideLabels);
}

BpGroup BpGroup::Group(const BpCellText& title, bool flag, int32_t sort) {
  Impl& group = impl_->table->group(*impl_, title.impl());
  impl_->note("BpGroup::Group", title, flag, sort, Result{group.id()});
  return BpGroup(part_of(impl_, group));
}

BpCategory BpGroup::Category(const BpCellText& label) {
  BpCategory::Impl& category = impl_->table->category(*impl_, label.impl());
  impl_->note("BpGroup::Category", label, Result{category.id()});
  return BpCategory(part_of(impl_, category));
}

void BpCategory::Cell(const BpCellText& value) {
  impl_->note("BpCategory::Cell", value);
  impl_->table->write_cell(*impl_, value.impl());
}

void BpCategory::Note(const BpAnnotation& note) {
  impl_->note("BpCategory::Note", note);
  impl_->table->note_label(*impl_, note.impl());
}

void BpCategory::CellNote(const BpAnnotation& note) {
  impl_->note("BpCategory::CellNote", note);
  impl_->table->note_cell(*impl_, note.impl());
}

void BpError(const BpCellText& text, BpErrorShow show, BpErrorLevel level) {
  Session::State& state = Session::current();
  journal::note(state.journal.get(), "BpError", text, static_cast<int32_t>(show),
                static_cast<int32_t>(level));
  state.outputs.open_section().items.emplace_back(std::make_unique<output::Message>(output::Message{
      pivot::shown_text(text.impl(),
                        {state.inputs.strings, state.outputs.document, state.inputs.dictionary}),
      severity_of(level)}));
}

BpFormatSpec BpProcedure::Coefficient() { return format(output::Format::Coefficient); }
BpFormatSpec BpProcedure::CoefficientSE() { return format(output::Format::CoefficientSE); }
BpFormatSpec BpProcedure::Count() { return format(output::Format::Count); }
BpFormatSpec BpProcedure::GeneralStat() { return format(output::Format::GeneralStat); }
BpFormatSpec BpProcedure::Percent() { return format(output::Format::Percent); }
BpFormatSpec BpProcedure::Significance() { return format(output::Format::Significance); }
BpFormatSpec BpProcedure::SigDigit(double number) {
  return format(output::Format::SigDigit, number);
}
