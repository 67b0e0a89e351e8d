// Writes files whole or not at all.
#pragma once

#include <string>
#include <string_view>

#include "app/signals.h"

namespace hierfit::app {

/// A file that is written beside its place and takes it at the end, so that what was there survives
/// until the new text is safe on the disk. Goes without a trace when it is not put in place. A
/// device or a pipe, which cannot be replaced, is written as it is.
class NewFile {
 public:
  /// Opens it. A link is followed, unless another user may have set it up in a folder that all can
  /// write to, and the file that it names is the one replaced, with its permissions. Throws
  /// `FileError`, as all operations do.
  explicit NewFile(std::string path);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  void write(std::string_view text);
  /// A path through which other code can write, as long as this object lives.
  std::string writable_path() const;
  /// Has the disk take all that was written. What fails, fails here and not in `put_in_place`.
  void flush();
  /// Closes it after `flush`. It has a name beside its place from here on, which a process that is
  /// killed leaves behind; open files have none where the file system allows that.
  void set_aside();
  /// Takes the place of the old file, in one step.
  void put_in_place();

 private:
  void open_device();
  void open_beside();
  /// Has `make` make a file of a new name, which fails with EEXIST when there is one.
  template <class Make>
  void make_name(Make make);
  void name_it();
  void close();
  [[noreturn]] void fail(int error) const;

  std::string path_;    ///< as given, for messages
  std::string target_;  ///< with links followed; empty for a device or a pipe
  PartName part_;       ///< the name beside the target, while the file has one
  int descriptor_ = -1;
};

/// How a write to standard output went.
enum class Written { Whole, PipeClosed };

/// Writes to standard output. Throws `FileError` when it cannot be written, unless its reader has
/// left.
Written write_standard_output(std::string_view text);

}  // namespace hierfit::app
