#include "app/new_file.h"

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <poll.h>
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

/// Waits until a descriptor that does not wait by itself takes more.
void wait_for(int descriptor) {
  pollfd ready = {descriptor, POLLOUT, 0};
  ::poll(&ready, 1, -1);
}

/// Writes all of `text`; gives the error number of what went wrong, 0 for nothing.
int write_all(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = ::write(descriptor, text.data(), text.size());
    if (count > 0) text.remove_prefix(static_cast<size_t>(count));
    if (count >= 0 || errno == EINTR) continue;
    if (errno != EAGAIN) return errno;
    wait_for(descriptor);
  }
  return 0;
}

std::string directory_of(const std::string& file) {
  const std::string directory = fs::path(file).parent_path().string();
  return directory.empty() ? "." : directory;
}

std::optional<struct stat> facts_of(const std::string& file) {
  struct stat facts {};
  if (::stat(file.c_str(), &facts) != 0) return std::nullopt;
  return facts;
}

/// Whether a link is one that another user may have set up for whoever comes by: it stands in a
/// folder such as the temporary one, where all may make files, and belongs neither to this user nor
/// to the folder's.
bool may_be_a_trap(const std::string& link) {
  constexpr mode_t kShared = S_ISVTX | S_IWOTH;
  struct stat facts {};
  const auto folder = facts_of(directory_of(link));
  if (!folder || ::lstat(link.c_str(), &facts) != 0) return false;
  return (folder->st_mode & kShared) == kShared && facts.st_uid != ::geteuid() &&
         facts.st_uid != folder->st_uid;
}

/// The path behind a chain of links, also when nothing is there.
std::string followed(const std::string& path) {
  constexpr int kMostLinks = 40;  // as many as the system follows
  std::error_code error;
  fs::path file = path;
  for (int link = 0; link < kMostLinks && fs::is_symlink(file, error); ++link) {
    if (may_be_a_trap(file.string())) {
      throw FileError({path, 0, 0},
                      "cannot be written: it is a link of another user in a folder that all can "
                      "write to");
    }
    file = file.parent_path() / fs::read_symlink(file, error);
  }
  return file.string();
}

/// The permissions that a new file takes from the old one. A report is no program, and what the
/// owner of the old file let all others do is not said of the new one's.
mode_t permissions_from(const struct stat& old) {
  constexpr mode_t kPermissions = 0777;
  const mode_t mode = old.st_mode & kPermissions;
  return old.st_uid == ::geteuid() ? mode : mode & ~mode_t{S_IWOTH};
}

}  // namespace

NewFile::NewFile(std::string path) : path_(std::move(path)), target_(followed(path_)) {
  // A stream of the process (/dev/stdout) is there, although its link may name no path.
  const auto old = facts_of(path_);
  if (old && S_ISDIR(old->st_mode)) fail(EISDIR);
  if (old && !S_ISREG(old->st_mode)) {
    open_device();
    return;
  }
  if (old && ::access(target_.c_str(), W_OK) != 0) fail(errno);
  open_beside();
  if (!old || ::fchmod(descriptor_, permissions_from(*old)) == 0) return;
  const int error = errno;
  close();
  fail(error);
}

NewFile::~NewFile() { close(); }

void NewFile::open_device() {
  target_.clear();
  descriptor_ = ::open(path_.c_str(), O_WRONLY | O_CLOEXEC);
  if (descriptor_ < 0) fail(errno);
}

/// Without a name, so that nothing can leave it behind; with one where the file system knows no
/// other files.
void NewFile::open_beside() {
  constexpr mode_t kNewMode = 0666;
  const std::string directory = directory_of(target_);
  descriptor_ = ::open(directory.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, kNewMode);
  if (descriptor_ >= 0) return;
  make_name([this](const char* name) {
    descriptor_ = ::open(name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kNewMode);
    return descriptor_ >= 0;
  });
}

template <class Make>
void NewFile::make_name(Make make) {
  static std::atomic<int> count = 0;
  for (;;) {
    const std::string suffix = std::to_string(::getpid()) + "-" + std::to_string(++count);
    part_.propose(target_ + "." + suffix + ".part");
    const Undivided undivided;
    if (make(part_.path().c_str())) return part_.made();
    if (errno != EEXIST) fail(errno);  // another machine or container counts in the same way
  }
}

void NewFile::name_it() {
  if (part_.is_made()) return;
  make_name([path = writable_path()](const char* name) {
    return ::linkat(AT_FDCWD, path.c_str(), AT_FDCWD, name, AT_SYMLINK_FOLLOW) == 0;
  });
}

void NewFile::close() {
  if (descriptor_ >= 0) ::close(std::exchange(descriptor_, -1));
}

void NewFile::write(std::string_view text) {
  if (const int error = write_all(descriptor_, text); error != 0) fail(error);
}

std::string NewFile::writable_path() const {
  return "/proc/self/fd/" + std::to_string(descriptor_);
}

void NewFile::flush() {
  while (!target_.empty() && ::fsync(descriptor_) != 0) {
    if (errno != EINTR) fail(errno);
  }
}

void NewFile::set_aside() {
  if (target_.empty()) return;
  name_it();
  close();
}

void NewFile::put_in_place() {
  if (target_.empty()) return;
  const Undivided undivided;
  name_it();
  if (::rename(part_.path().c_str(), target_.c_str()) != 0) fail(errno);
  part_.release();
}

void NewFile::fail(int error) const { fail_to_write(path_, error); }

Written write_standard_output(std::string_view text) {
  const int error = write_all(STDOUT_FILENO, text);
  if (error == EPIPE) return Written::PipeClosed;
  if (error != 0) fail_to_write("standard output", error);
  return Written::Whole;
}

}  // namespace hierfit::app
