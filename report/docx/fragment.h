// The text of a document as it goes into somebody else's.
#pragma once

#include <string>
#include <string_view>

namespace hierfit::report::docx {

/// Paragraphs and tables of our own documents with what their styles say written into each place,
/// since another document has not these styles; only those of captions and headings, which every
/// document has, are left to it. Bookmarks and the links to them go, as other pieces may have the
/// same names.
std::string fragment_of(std::string_view body);

}  // namespace hierfit::report::docx
