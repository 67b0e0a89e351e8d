// A sign of life for runs that take long.
#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace hierfit::app {

/// Shows one line on standard error once a second has passed, and takes it away when it goes. Shows
/// nothing when standard error is no terminal.
class Progress {
 public:
  Progress(bool wanted, std::string line);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

 private:
  void wait_and_show();

  const std::string line_;
  std::mutex mutex_;
  std::condition_variable over_changed_;
  bool over_ = false;
  std::thread thread_;  ///< not started when nothing is to be shown
};

}  // namespace hierfit::app
