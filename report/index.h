// The page that leads to the reports of a run over many models.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "output/document.h"

namespace hierfit::report {

/// A file that an index leads to.
struct IndexLink {
  std::string form;  ///< what the form is called, "html"
  std::string path;  ///< seen from the page, with "/" between its parts
};

/// What became of one model.
struct IndexEntry {
  std::string name;
  std::vector<IndexLink> links;                ///< none when there is no report
  std::string failure;                         ///< why there is none, a sentence
  std::string title = {};                      ///< of the report
  std::vector<output::Message> messages = {};  ///< about its result
};

/// A page like a report, with a line for each entry in their order. `document` gives the language
/// and the report's words; it need not have content.
std::string render_index(const output::Document& document, std::span<const IndexEntry> entries);

}  // namespace hierfit::report
