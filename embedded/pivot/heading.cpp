#include "embedded/pivot/heading.h"

#include <algorithm>

using namespace hierfit;

namespace {

output::Section& add_section(output::Section& parent, output::Text title) {
  auto section = std::make_unique<output::Section>();
  section->title = std::move(title);
  output::Section& added = *section;
  parent.items.emplace_back(std::move(section));
  return added;
}

}  // namespace

BpHeading::Impl::Impl(output::Section& topmost,
                      OpenSections& open,
                      const pivot::Wording& words,
                      journal::Journal* journal)
    : Receiver(journal, journal::Id{"BpProcedure", 0}),
      section(topmost),
      open_sections(open),
      wording(words) {
  open_sections.push_back(&section);
}

BpHeading::Impl::Impl(const Impl& parent, const BpCellText::Impl& title)
    : Receiver(parent.journal(), "BpHeading"),
      section(add_section(parent.section, pivot::shown_text(title, parent.wording))),
      open_sections(parent.open_sections),
      wording(parent.wording) {
  open_sections.push_back(&section);
}

BpHeading::Impl::~Impl() {
  std::erase(open_sections, &section);
  if (id().number != 0) note("release");
}

output::Table& BpHeading::Impl::add_table(const BpCellText::Impl& title,
                                          const BpCellText::Impl& subtype) {
  auto table = std::make_unique<output::Table>();
  table->title = pivot::shown_text(title, wording);
  table->subtype = pivot::shown_text(subtype, wording).shown;
  output::Table& added = *table;
  section.items.emplace_back(std::move(table));
  return added;
}
