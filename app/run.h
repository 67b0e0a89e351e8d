// One run of the command: documents in, reports out.
#pragma once

#include "app/options.h"

namespace hierfit::app {

/// Reads the documents, runs the module and writes what the options ask for. No file is replaced
/// before every form is made and safe on the disk. Throws `Error` and `UsageError`.
void run(const Options& options);

}  // namespace hierfit::app
