// Tells what is odd about a model document and a result document. Nothing of it keeps a report from
// being made, and nothing changes one.
#pragma once

#include <string_view>

#include "import/problem.h"

namespace hierfit::fit {

/// Warns of words that are none of their list, fields that the model document and the dictionary do
/// not have, texts where numbers are meant, documents that do not belong together or are swapped,
/// and files that are something else. A document that is no XML is left to its reader. `dictionary`
/// is a Table Schema, or empty.
void check_pair(std::string_view model,
                std::string_view result,
                std::string_view dictionary,
                Problems& model_problems,
                Problems& result_problems);

}  // namespace hierfit::fit
