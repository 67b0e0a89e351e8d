// Tells what a file is that is not what it should be.
#pragma once

#include <string_view>

namespace hierfit::fit {

/// "a web page", "an R object", "an XML document", "a JSON document" and so on, by how the text
/// begins; empty for what begins like none of them.
std::string_view kind_of_file(std::string_view text);

inline constexpr std::string_view kXmlDocument = "an XML document";
inline constexpr std::string_view kJsonDocument = "a JSON document";

}  // namespace hierfit::fit
