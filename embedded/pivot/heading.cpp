#include "embedded/pivot/heading.h"

#include <algorithm>

#include "embedded/pivot/cell_text.h"
#include "embedded/session_state.h"

using namespace hierfit;

namespace {

output::Section& add_section(output::Section& parent, const BpCellText::Impl& title) {
  auto section = std::make_unique<output::Section>();
  section->title = pivot::shown_text(title);
  output::Section& added = *section;
  parent.items.push_back(std::move(section));
  return added;
}

}  // namespace

BpHeading::Impl::Impl(output::Section& section_,
                      OpenSections& open_sections_,
                      journal::Journal* journal)
    : Receiver(journal, journal::Id{"BpProcedure", 0}),
      section(section_),
      open_sections(open_sections_) {
  open_sections.push_back(&section);
}

BpHeading::Impl::Impl(const Impl& parent, const BpCellText::Impl& title)
    : Receiver(parent.journal(), "BpHeading"),
      section(add_section(parent.section, title)),
      open_sections(parent.open_sections) {
  open_sections.push_back(&section);
}

BpHeading::Impl::~Impl() {
  std::erase(open_sections, &section);
  if (id().number != 0) note("release");
}

output::Table& BpHeading::Impl::add_table(const BpCellText::Impl& title,
                                          const BpCellText::Impl& subtype) {
  auto table = std::make_unique<output::Table>();
  table->title = pivot::shown_text(title);
  table->subtype = pivot::shown_text(subtype).shown;
  output::Table& added = *table;
  section.items.push_back(std::move(table));
  return added;
}

std::unique_ptr<BpProcedure> hierfit::make_procedure(Session::State& state) {
  return std::make_unique<BpProcedure>(std::make_shared<BpHeading::Impl>(
      state.document.content, state.open_sections, state.journal.get()));
}
