// The operations of the pivot library: each one is its line in the journal and a step of the table
// under construction.
#include "embedded/pivot/heading.h"
#include "embedded/pivot/table_builder.h"
#include "embedded/session_state.h"

namespace {

using namespace hierfit;
using journal::Journal;
using journal::Line;

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
  if (Journal* journal = impl_->journal) {
    journal->line("BpHeading::Heading").on(impl_->id).arg(title).result(heading.impl_->id);
  }
  return heading;
}

BpPivotTable BpHeading::PivotTable(const BpCellText& title, const BpCellText& subtype, bool flag) {
  const auto table = std::make_shared<BpPivotTable::Impl>(
      impl_->add_table(title.impl(), subtype.impl()), impl_->journal);
  if (Journal* journal = impl_->journal) {
    Line line = journal->line("BpHeading::PivotTable");
    line.on(impl_->id).arg(title).arg(subtype).arg(flag).result(table->id);
  }
  return BpPivotTable(table);
}

BpDimension BpPivotTable::Dimension(const BpCellText& title, int32_t sort) {
  BpGroup::Impl& dimension = impl_->add_dimension(title.impl());
  if (Journal* journal = impl_->journal) {
    journal->line("BpPivotTable::Dimension")
        .on(impl_->id)
        .arg(title)
        .arg(sort)
        .result(dimension.id);
  }
  return BpDimension(part_of(impl_, dimension));
}

void BpPivotTable::Note(const BpAnnotation& note) {
  if (Journal* journal = impl_->journal) {
    journal->line("BpPivotTable::Note").on(impl_->id).arg(note);
  }
  impl_->note_table(note.impl());
}

void BpPivotTable::Caption(const BpCellText& text) {
  if (Journal* journal = impl_->journal) {
    journal->line("BpPivotTable::Caption").on(impl_->id).arg(text);
  }
  impl_->table.caption = pivot::shown_text(text.impl());
}

void BpPivotTable::MinDataColumnWidth(int32_t width) {
  if (Journal* journal = impl_->journal) {
    journal->line("BpPivotTable::MinDataColumnWidth").on(impl_->id).arg(width);
  }
  impl_->table.min_data_column_width = width;
}

void BpDimension::Position(int32_t place, int32_t level, bool hideTitle, bool hideLabels) {
  if (Journal* journal = impl_->table->journal) {
    Line line = journal->line("BpDimension::Position");
    line.on(impl_->id).arg(place).arg(level).arg(hideTitle).arg(hideLabels);
  }
  impl_->table->position(impl_->dimension, place, level, hideTitle, hideLabels);
}

BpGroup BpGroup::Group(const BpCellText& title, bool flag, int32_t sort) {
  Impl& group = impl_->table->group(*impl_, title.impl());
  if (Journal* journal = impl_->table->journal) {
    journal->line("BpGroup::Group").on(impl_->id).arg(title).arg(flag).arg(sort).result(group.id);
  }
  return BpGroup(part_of(impl_, group));
}

BpCategory BpGroup::Category(const BpCellText& label) {
  BpCategory::Impl& category = impl_->table->category(*impl_, label.impl());
  if (Journal* journal = impl_->table->journal) {
    journal->line("BpGroup::Category").on(impl_->id).arg(label).result(category.id);
  }
  return BpCategory(part_of(impl_, category));
}

void BpCategory::Cell(const BpCellText& value) {
  if (Journal* journal = impl_->table->journal) {
    journal->line("BpCategory::Cell").on(impl_->id).arg(value);
  }
  impl_->table->write_cell(*impl_, value.impl());
}

void BpCategory::Note(const BpAnnotation& note) {
  if (Journal* journal = impl_->table->journal) {
    journal->line("BpCategory::Note").on(impl_->id).arg(note);
  }
  impl_->table->note_label(*impl_, note.impl());
}

void BpCategory::CellNote(const BpAnnotation& note) {
  if (Journal* journal = impl_->table->journal) {
    journal->line("BpCategory::CellNote").on(impl_->id).arg(note);
  }
  impl_->table->note_cell(*impl_, note.impl());
}

void BpError(const BpCellText& text, BpErrorShow show, BpErrorLevel level) {
  auto& state = Session::current().state();
  if (state.journal != nullptr) {
    Line line = state.journal->line("BpError");
    line.arg(text).arg(static_cast<int32_t>(show)).arg(static_cast<int32_t>(level));
  }
  state.open_section().items.push_back(std::make_unique<output::Message>(
      output::Message{pivot::shown_text(text.impl()), severity_of(level)}));
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
