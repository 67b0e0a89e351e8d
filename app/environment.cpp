#include "app/environment.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace hierfit::app {
namespace {

constexpr const char* kEnglish = "en";

/// A variable of the environment; empty when it is not set.
std::string variable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

}  // namespace

void occupy_closed_streams() noexcept {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    const bool closed = ::fcntl(stream, F_GETFD) < 0 && errno == EBADF;
    // A path alone can be neither read nor written, and this one is always there.
    if (closed) ::open("/", O_PATH);
  }
}

void choose_temporary_folder() {
  constexpr const char* kVariable = "TMPDIR";
  const auto usable = [](const char* folder) { return ::access(folder, W_OK | X_OK) == 0; };
  if (!usable(variable(kVariable).c_str()) && !usable("/tmp")) ::setenv(kVariable, "/dev/shm", 1);
}

std::string language_of_environment() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    std::string locale = variable(name);
    if (locale.empty()) continue;
    locale.resize(std::min(locale.find_first_of(".@"), locale.size()));
    if (locale == "C" || locale == "POSIX" || locale.size() > kLongestTag) return kEnglish;
    std::ranges::replace(locale, '_', '-');
    return locale;
  }
  return kEnglish;
}

bool uses_colour(std::string_view option, int descriptor) {
  if (option != "auto") return option == "always";
  return ::isatty(descriptor) == 1 && variable("NO_COLOR").empty() && variable("TERM") != "dumb";
}

size_t display_width(int descriptor) {
  constexpr size_t kWithoutTerminal = 80;
  winsize size{};
  if (::ioctl(descriptor, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kWithoutTerminal;
  return size.ws_col;
}

}  // namespace hierfit::app
