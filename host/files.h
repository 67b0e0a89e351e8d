// File access of the host.
#pragma once

#include <string>

/// Reads whole files.
class FetchFile {
 public:
  /// The text of a file, or the empty text when it cannot be read. Both flags are always true.
  static std::string fetch(const std::string& path, bool asText, bool quiet);
};
