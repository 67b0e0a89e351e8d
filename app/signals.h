// Signals that end the process, and what they must not leave behind.
#pragma once

#include <string>

namespace hierfit::app {

/// From here on a reader that leaves early and a file that may not grow show as errors of the
/// write, and SIGINT, SIGTERM and SIGHUP take away the files named by `PartName` before they end
/// the process. A signal that is ignored stays so.
void watch_signals() noexcept;

/// What is done while one lives is done to its end before a signal ends the process.
class Undivided {
 public:
  Undivided() noexcept;
  ~Undivided();
  Undivided(const Undivided&) = delete;
  Undivided& operator=(const Undivided&) = delete;
};

/// The name of a file that is not whole yet or not in its place: the file goes with this object,
/// and with the process when a signal ends it.
class PartName {
 public:
  PartName() = default;
  ~PartName();
  PartName(const PartName&) = delete;
  PartName& operator=(const PartName&) = delete;

  /// What the file is to be called. Ahead of its making, since it may ask for memory.
  void propose(std::string path);
  /// The file is there under this name; said in the `Undivided` that made it.
  void made() noexcept;
  bool is_made() const;
  /// The path that was proposed.
  const std::string& path() const;
  /// The file has another name now and stays.
  void release() noexcept;

  struct Entry;

 private:
  Entry* entry_ = nullptr;  ///< of a list that lives as long as the process
};

/// Takes away the files that have a `PartName`.
void remove_parts() noexcept;

}  // namespace hierfit::app
