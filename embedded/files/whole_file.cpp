#include "embedded/files/whole_file.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "embedded/error.h"

namespace hierfit {
namespace {

/// An open file, closed when it goes; standard input stays open.
class OpenFile {
 public:
  explicit OpenFile(const std::string& path)
      : descriptor_(path == "-" ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
  ~OpenFile() {
    if (descriptor_ > STDIN_FILENO) ::close(descriptor_);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  int descriptor() const { return descriptor_; }

 private:
  int descriptor_;
};

[[noreturn]] void fail(const std::string& path, int error) {
  throw FileError({path, 0, 0}, "cannot be read: " + std::generic_category().message(error));
}

}  // namespace

std::string read_whole_file(const std::string& path) {
  const OpenFile file(path);
  if (file.descriptor() < 0) fail(path, errno);
  std::string text;
  struct stat facts {};
  if (::fstat(file.descriptor(), &facts) == 0 && facts.st_size > 0 && S_ISREG(facts.st_mode)) {
    text.reserve(static_cast<size_t>(facts.st_size));
  }
  std::array<char, 1 << 16> buffer;
  for (;;) {
    const ssize_t count = ::read(file.descriptor(), buffer.data(), buffer.size());
    if (count == 0) return text;
    if (count < 0 && errno == EAGAIN) {
      pollfd ready = {file.descriptor(), POLLIN, 0};  // a pipe that does not wait by itself
      ::poll(&ready, 1, -1);
    } else if (count < 0 && errno != EINTR) {
      fail(path, errno);
    }
    if (count > 0) text.append(buffer.data(), static_cast<size_t>(count));
  }
}

}  // namespace hierfit
