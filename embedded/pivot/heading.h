// A heading of the output while the module holds it.
#pragma once

#include "host/pivot.h"

#include "embedded/journal/journal.h"
#include "embedded/pivot/cell_text.h"
#include "output/document.h"

namespace hierfit {
/// The headings that are open, outermost first; what has no parent of its own goes under the last.
using OpenSections = std::vector<output::Section*>;
}  // namespace hierfit

/// The section of an open heading. It goes with the last handle; the section stays in the document.
struct BpHeading::Impl : hierfit::journal::Receiver {
 public:
  /// The topmost heading, the procedure itself.
  Impl(hierfit::output::Section& topmost,
       hierfit::OpenSections& open,
       const hierfit::pivot::Wording& words,
       hierfit::journal::Journal* journal);
  /// A heading under another.
  Impl(const Impl& parent, const BpCellText::Impl& title);
  ~Impl();
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  hierfit::output::Table& add_table(const BpCellText::Impl& title, const BpCellText::Impl& subtype);

  hierfit::output::Section& section;
  hierfit::OpenSections& open_sections;
  const hierfit::pivot::Wording wording;
};
