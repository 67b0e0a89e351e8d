// Guards the libraries that draw pages and pictures. They take a lack of memory badly: they crash,
// or wait for ever for a thread of theirs that has gone.
#pragma once

#include <string_view>

namespace hierfit::app {

/// While a form of reports or of charts is made that needs those libraries, in any thread, the
/// process says so and ends when drawing fails beyond repair or stands still for a quarter of a
/// minute. For another form it does nothing.
class Drawing {
 public:
  /// Throws `std::bad_alloc` when there is less memory than the libraries need for a small report.
  explicit Drawing(std::string_view form);
  ~Drawing();
  Drawing(const Drawing&) = delete;
  Drawing& operator=(const Drawing&) = delete;

 private:
  bool is_needed_;
};

}  // namespace hierfit::app
