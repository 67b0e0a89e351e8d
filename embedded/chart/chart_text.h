// Texts of charts: what XML can hold of them.
#pragma once

#include <string>
#include <string_view>

#include "host/chart_document.h"

namespace hierfit::chart {

/// The text as valid UTF-8 of characters that XML 1.0 knows: what is not valid becomes U+FFFD, a
/// character that XML does not know goes. Marks of XML stay as they are.
std::string xml_characters(std::string_view text);

/// What a reader sees of a text of the library (`output::plain_text`), fit for a document.
std::string plain_text(const ChartString& text);
std::string plain_text(std::string_view text);

}  // namespace hierfit::chart
