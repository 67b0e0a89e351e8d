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

/// The dictionary of a fit with another laid over it: fields of the other one hold. One that is no
/// Table Schema is given as it stands, for its reader to tell.
std::string laid_over(const std::string& dictionary, const std::string& other);

/// Finds what is wrong with a fit document, and nothing else.
void check_fit_document(std::string_view text, Problems& problems);

}  // namespace hierfit::fit
