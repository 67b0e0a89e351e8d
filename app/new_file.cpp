#include "app/new_file.h"

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "embedded/error.h"

namespace hierfit::app {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail_to_write(const std::string& file, int error) {
  throw FileError({file, 0, 0}, "cannot be written: " + std::generic_category().message(error));
}

/// Writes all of `text`; gives the error number of what went wrong, 0 for nothing.
int write_all(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = ::write(descriptor, text.data(), text.size());
    if (count < 0 && errno != EINTR) return errno;
    if (count > 0) text.remove_prefix(static_cast<size_t>(count));
  }
  return 0;
}

/// The path behind a chain of links, also when nothing is there.
std::string followed(const std::string& path) {
  constexpr int kMostLinks = 40;  // as many as the system follows
  std::error_code error;
  fs::path file = path;
  for (int link = 0; link < kMostLinks && fs::is_symlink(file, error); ++link) {
    file = file.parent_path() / fs::read_symlink(file, error);
  }
  return file.string();
}

std::optional<struct stat> facts_of(const std::string& file) {
  struct stat facts {};
  if (::stat(file.c_str(), &facts) != 0) return std::nullopt;
  return facts;
}

std::string directory_of(const std::string& file) {
  const std::string directory = fs::path(file).parent_path().string();
  return directory.empty() ? "." : directory;
}

}  // namespace

NewFile::NewFile(std::string path) : path_(std::move(path)), target_(followed(path_)) {
  const auto old = facts_of(target_);
  if (old && S_ISDIR(old->st_mode)) fail(EISDIR);
  if (old && !S_ISREG(old->st_mode)) {
    target_.clear();
    descriptor_ = ::open(path_.c_str(), O_WRONLY | O_CLOEXEC);
    if (descriptor_ < 0) fail(errno);
    return;
  }
  if (old && ::access(target_.c_str(), W_OK) != 0) fail(errno);
  open_beside();
  if (old && ::fchmod(descriptor_, old->st_mode & 07777) != 0) fail(errno);
}

NewFile::~NewFile() {
  if (descriptor_ >= 0) ::close(descriptor_);
  if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

NewFile::NewFile(NewFile&& other) noexcept
    : path_(std::move(other.path_)),
      target_(std::move(other.target_)),
      temporary_(std::exchange(other.temporary_, {})),
      descriptor_(std::exchange(other.descriptor_, -1)) {}

/// A file without a name, which a signal or a crash cannot leave behind; where the file system
/// knows none, one with a name.
void NewFile::open_beside() {
  constexpr mode_t kNewMode = 0666;
  descriptor_ = ::open(directory_of(target_).c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, kNewMode);
  if (descriptor_ >= 0) return;
  name_it();
  const int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
  descriptor_ = ::open(temporary_.c_str(), flags, kNewMode);
  if (descriptor_ >= 0) return;
  temporary_.clear();
  fail(errno);
}

void NewFile::name_it() {
  static std::atomic<int> count = 0;
  const std::string suffix = std::to_string(::getpid()) + "-" + std::to_string(++count);
  temporary_ = target_ + "." + suffix + ".part";
}

void NewFile::write(std::string_view text) {
  if (const int error = write_all(descriptor_, text); error != 0) fail(error);
}

std::string NewFile::writable_path() const {
  return "/proc/self/fd/" + std::to_string(descriptor_);
}

void NewFile::flush() {
  if (!target_.empty() && ::fsync(descriptor_) != 0) fail(errno);
}

void NewFile::put_in_place() {
  if (target_.empty()) return;
  if (temporary_.empty()) {
    name_it();
    const int linked = ::linkat(AT_FDCWD, writable_path().c_str(), AT_FDCWD, temporary_.c_str(),
                                AT_SYMLINK_FOLLOW);
    if (linked != 0) {
      temporary_.clear();
      fail(errno);
    }
  }
  if (::rename(temporary_.c_str(), target_.c_str()) != 0) fail(errno);
  temporary_.clear();
}

void NewFile::fail(int error) const { fail_to_write(path_, error); }

void make_folder(const std::string& path) {
  std::error_code error;
  fs::create_directories(path, error);
  if (error) throw FileError({path, 0, 0}, "cannot be made: " + error.message());
}

Written write_standard_output(std::string_view text) {
  const int error = write_all(STDOUT_FILENO, text);
  if (error == EPIPE) return Written::PipeClosed;
  if (error != 0) fail_to_write("standard output", error);
  return Written::Whole;
}

}  // namespace hierfit::app
