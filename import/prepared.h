// A fit with all that the documents need worked out.
#pragma once

#include <string>
#include <vector>

#include "import/design.h"
#include "import/fit.h"
#include "import/problem.h"
#include "import/variables.h"

namespace hierfit::fit {

/// The parts refer to each other, so that it stays where it is.
struct Prepared {
  Fit fit;
  Variables variables;
  FixedDesign fixed;
  std::vector<std::vector<DesignTerm>> random;  ///< the columns of each block
  std::vector<std::string> reckoned;            ///< a sentence for each kind of number

  /// Checks the fit and works out what it does not give; the fit's raw data are gone then. When
  /// there are errors it is not whole.
  Prepared(Fit read, Problems& problems);
  Prepared(const Prepared&) = delete;
  Prepared& operator=(const Prepared&) = delete;
};

}  // namespace hierfit::fit
