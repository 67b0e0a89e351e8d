// Columns of raw data.
#pragma once

#include <cstddef>
#include <string>

#include "import/fit.h"

namespace hierfit::fit {

void add_number(Column& column, double number);
/// Each text is kept once.
void add_text(Column& column, const std::string& text);

}  // namespace hierfit::fit
