// Writes the model document and the dictionary.
#pragma once

#include <string>

#include "import/prepared.h"

namespace hierfit::fit {

/// The model document, PMML.
std::string model_document(const Prepared& prepared);

/// A Table Schema with the formats that the model document cannot carry; empty when there are none.
std::string dictionary_document(const Fit& fit);

}  // namespace hierfit::fit
