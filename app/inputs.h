// Reads the documents of a report.
#pragma once

#include <string>
#include <vector>

#include "app/complaint.h"
#include "app/pairs.h"
#include "embedded/session.h"
#include "import/import.h"
#include "import/problem.h"

namespace hierfit::app {

/// What is said about documents that does not keep them from being read.
using Remarks = std::vector<Complaint>;

/// "standard input" for "-".
std::string name_of(const std::string& path);

/// The name of a file without its folders.
std::string base_name(const std::string& path);

/// Adds the problems of a document to the remarks. Throws `DocumentError` with the last of its
/// errors, if it has any.
void take_problems(const fit::Problems& problems, const std::string& path, Remarks& remarks);

/// The documents of a fit. Throws `DocumentError` when it is none, `FileError` when it cannot be
/// read.
fit::Documents read_fit(const std::string& path, Remarks& remarks);

/// The documents of a pair, or those that its fit comes to. Throws as above.
SessionInput read_inputs(const Pair& pair, Remarks& remarks);

}  // namespace hierfit::app
