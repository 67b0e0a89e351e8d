#include "app/progress.h"

#include <chrono>
#include <iostream>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "app/environment.h"

namespace hierfit::app {

namespace {
constexpr auto kPatience = std::chrono::seconds(1);
constexpr auto kBetweenLines = std::chrono::milliseconds(200);
constexpr const char* kEraseLine = "\r\033[K";
}  // namespace

Progress::Progress(bool wanted, std::string line) : line_(std::move(line)) {
  // The line is taken away by an escape sequence, so the same terminals are fit for it as for
  // colour.
  if (!wanted || !uses_colour("auto", STDERR_FILENO)) return;
  try {
    thread_ = std::thread([this] { wait_and_show(); });
  } catch (const std::system_error&) {
    // No thread to be had: the report is made without a sign of life.
  }
}

Progress::~Progress() {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard lock(mutex_);
    over_ = true;
  }
  over_changed_.notify_one();
  thread_.join();
}

void Progress::wait_and_show() {
  std::unique_lock lock(mutex_);
  if (over_changed_.wait_for(lock, kPatience, [this] { return over_; })) return;
  do {
    std::cerr << kEraseLine << line_ << std::flush;
  } while (!over_changed_.wait_for(lock, kBetweenLines, [this] { return over_; }));
  std::cerr << kEraseLine << std::flush;
}

void Progress::say(std::string line) {
  const std::lock_guard lock(mutex_);
  line_ = std::move(line);
}

}  // namespace hierfit::app
