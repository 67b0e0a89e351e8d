// A sign of life for runs that take long.
#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace hierfit::app {

/// Shows one line on standard error once a second has passed, keeps it up to date and takes it away
/// when it goes. Shows nothing when standard error is no terminal.
class Progress {
 public:
  Progress(bool wanted, std::string line);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// The line from now on. Any thread may say it.
  void say(std::string line);

 private:
  void wait_and_show();

  std::string line_;
  std::mutex mutex_;
  std::condition_variable over_changed_;
  bool over_ = false;
  std::thread thread_;  ///< not started when nothing is to be shown
};

}  // namespace hierfit::app
