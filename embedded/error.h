// What the embedded host throws.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace hierfit {

/// Where in a file something is wrong. Lines and columns count from 1; 0 is unknown.
struct Location {
  std::string file;
  uint32_t line = 0;
  uint32_t column = 0;

  /// "file:line:column", without what is unknown.
  std::string text() const;
};

/// Why a document could not be read, and where in it.
struct ReadFailure {
  std::string sentence;
  uint32_t line = 0;    ///< 0 when the place is unknown
  uint32_t column = 0;  ///< 0 when only the line is known
};

/// A failure with its place. `what()` is the sentence without the place.
class Error : public std::runtime_error {
 public:
  Error(Location where, const std::string& sentence)
      : std::runtime_error(sentence), where_(std::move(where)) {}
  const Location& where() const { return where_; }

 private:
  Location where_;
};

/// A document that cannot be read as a result of the procedure (exit status 1).
class DocumentError : public Error {
 public:
  using Error::Error;
};

/// A file that cannot be read or written, or holds what an option does not allow (exit status 2).
class FileError : public Error {
 public:
  using Error::Error;
};

/// Fails as `new` does when there is no memory: for what a library was not given.
[[noreturn]] void fail_for_memory();

}  // namespace hierfit
