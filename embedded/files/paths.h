// The directories of a session.
#pragma once

#include <memory>
#include <string>

class PathFinder;

namespace hierfit {

/// The directories under a resource directory, and the string table of a language in it.
std::shared_ptr<PathFinder> make_paths(const std::string& resources, const std::string& language);

}  // namespace hierfit
