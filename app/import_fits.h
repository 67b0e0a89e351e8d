// The commands that end at the documents: `import` and `check`.
#pragma once

#include "app/options.h"

namespace hierfit::app {

/// Writes the documents of each fit: model.pmml, result.xml and, where it needs one,
/// dictionary.json, in the folder of the only output, or in a folder of its name there when there
/// are several. Gives the exit status; throws `Error` and `UsageError`.
int import_fits(const Options& options);

/// Says what is wrong with fits and pairs, or odd about them, and writes nothing. Gives the highest
/// exit status.
int check_documents(const Options& options);

}  // namespace hierfit::app
