// Reads a fit document.
#pragma once

#include <string_view>

#include "import/fit.h"
#include "import/problem.h"

namespace hierfit::fit {

/// The fit that the JSON text holds. What is wrong goes to `problems` with the path of its member:
/// a member that is unknown warns, one of another type, out of its range or given twice is an
/// error, and so is one that is lacking. The fit is whole only when there is no error.
Fit read_fit(std::string_view text, Problems& problems);

}  // namespace hierfit::fit
