// Reads whole files.
#pragma once

#include <string>

namespace hierfit {

/// The bytes of a file; "-" is standard input. Throws `FileError`, with the system's reason, when
/// it cannot be read.
std::string read_whole_file(const std::string& path);

}  // namespace hierfit
