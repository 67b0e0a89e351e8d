// One run of the command: documents in, reports out.
#pragma once

#include "app/options.h"

namespace hierfit::app {

/// Makes the report of a pair of documents, or those of several pairs with an index. Gives the exit
/// status; of several pairs it is the highest one, and what went wrong with each is on standard
/// error. Throws `Error` and `UsageError`.
int run(const Options& options);

}  // namespace hierfit::app
