// Files that a run would write over one another, or over what it reads.
#pragma once

#include <span>
#include <string>

#include "app/job.h"

namespace hierfit::app {

/// Throws `UsageError` when an output of the jobs is a file that one of them reads, by whatever
/// name, or when two outputs go to one place. `index` is an output of all of them; empty: none.
void refuse_collisions(std::span<const Job> jobs, const std::string& index = {});

}  // namespace hierfit::app
