// A fit document in, the two result documents out.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "import/problem.h"

namespace hierfit::fit {

/// What a fit document comes to.
struct Documents {
  std::string model;       ///< PMML
  std::string result;      ///< StatXML
  std::string dictionary;  ///< a Table Schema; empty: none is needed
};

/// The documents of the fit that the text holds. Nothing when there is an error among the problems;
/// warnings come with documents, too.
std::optional<Documents> import_fit(std::string_view text, Problems& problems);

/// Finds what is wrong with a fit document, and nothing else.
void check_fit_document(std::string_view text, Problems& problems);

}  // namespace hierfit::fit
