// A package of parts in a zip archive, made in memory.
#pragma once

#include <string>
#include <vector>

namespace hierfit::report::docx {

struct Part {
  std::string name;
  std::string content;
};

/// The archive of these parts, in this order and without the time of its making. Throws
/// `std::runtime_error` when the library fails.
std::string packed(const std::vector<Part>& parts);

}  // namespace hierfit::report::docx
