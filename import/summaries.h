// Summaries of the records: all that leaves them.
#pragma once

#include "import/fit.h"

namespace hierfit::fit {

/// Gives factors without values those that their columns have.
void state_values(Fit& fit);

/// Fills in the summaries that the fit does not give, from its records, and drops the records. They
/// have been checked.
void summarise(Fit& fit);

}  // namespace hierfit::fit
