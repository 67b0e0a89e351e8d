// Writes files whole or not at all.
#pragma once

#include <string>
#include <string_view>

namespace hierfit::app {

/// A file that is written beside its place and takes it at the end, so that what was there survives
/// until the new text is safe on the disk. Goes without a trace when it is not put in place. A
/// device or a pipe, which cannot be replaced, is written as it is.
class NewFile {
 public:
  /// Opens it. A link is followed, and the file that it names is the one replaced, with its mode.
  /// Throws `FileError`, as all operations do.
  explicit NewFile(std::string path);
  ~NewFile();
  NewFile(NewFile&& other) noexcept;
  NewFile& operator=(NewFile&&) = delete;

  void write(std::string_view text);
  /// A path through which other code can write, as long as this object lives.
  std::string writable_path() const;
  /// Has the disk take all that was written. What fails, fails here and not in `put_in_place`.
  void flush();
  /// Takes the place of the old file, in one step.
  void put_in_place();

 private:
  void open_beside();
  void name_it();
  [[noreturn]] void fail(int error) const;

  std::string path_;       ///< as given, for messages
  std::string target_;     ///< with links followed; empty for a device or a pipe
  std::string temporary_;  ///< the name beside the target; empty while the file has none
  int descriptor_ = -1;
};

/// Makes a folder and those around it, where they are not there yet. Throws `FileError`.
void make_folder(const std::string& path);

/// How a write to standard output went.
enum class Written { Whole, PipeClosed };

/// Writes to standard output. Throws `FileError` when it cannot be written, unless its reader has
/// left.
Written write_standard_output(std::string_view text);

}  // namespace hierfit::app
