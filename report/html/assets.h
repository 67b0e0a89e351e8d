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

extern const Asset kStyle;     ///< report.css and chart.css
extern const Asset kScript;    ///< report.js
extern const Asset kFragment;  ///< fragment.css

}  // namespace hierfit::report::html
