// The style sheet and the script of the page, embedded when the program is built.
#pragma once

#include <string_view>

namespace hierfit::report::html {

/// A file as it goes into the page, and the source expression that lets it through the page's
/// content security policy: "sha256-" and the digest of exactly these bytes in base 64.
struct Asset {
  std::string_view content;
  std::string_view source;
};

extern const Asset kStyle;   ///< report.css
extern const Asset kScript;  ///< report.js

}  // namespace hierfit::report::html
