// Memory that runs out ends in a sentence: from the start of the process on, each thread remembers
// that it asked for memory in vain, and where that ends in no exception, since none may pass or
// since a library cannot cope, the process ends with `complain_of_memory` instead of a signal.
#pragma once

#include <string_view>

namespace hierfit::app {

inline constexpr std::string_view kNoMemory = "there is not enough memory";

/// Whether this thread has asked for memory in vain since it last forgot. What comes of it may have
/// been caught on the way, so that a report lacks a part or its documents get the blame.
bool memory_ran_out() noexcept;
void forget_memory() noexcept;

/// Says so on standard error and gives the exit status. Needs no memory.
int complain_of_memory() noexcept;

}  // namespace hierfit::app
