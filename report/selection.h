// A choice of the tables and figures of a document.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "output/document.h"

namespace hierfit::report {

/// The names by which tables and figures of a document are chosen: "About" for what is said about
/// the result, then the kinds that programs know the others by, each once, in the order of the
/// document ("FixedCoefficients").
std::vector<std::string> names_in(const output::Document& document);

/// Whether a name stands among them. ASCII case does not matter.
bool is_among(std::string_view name, std::span<const std::string> names);

/// Leaves only the tables and figures of these names, in the order of the document, and the
/// headings above them. What is said about the result goes unless it is named, but its messages
/// stay, ahead of all. A name that no table and no figure has chooses none.
void keep(std::span<const std::string> names, output::Document& document);

}  // namespace hierfit::report
