#include "app/memory.h"

#include <cstdlib>
#include <exception>
#include <new>
#include <unistd.h>

#include "app/complaint.h"
#include "app/signals.h"

namespace hierfit::app {
namespace {

constexpr std::string_view kLine = "hierfit: there is not enough memory\n";
static_assert(kLine.substr(9, kNoMemory.size()) == kNoMemory);

thread_local bool ran_out = false;

[[noreturn]] void on_no_memory() {
  ran_out = true;
  throw std::bad_alloc();
}

/// Any other exception that nothing catches is a fault of ours, and ends as one.
[[noreturn]] void on_terminate() {
  if (!ran_out) std::abort();
  remove_parts();
  ::_exit(complain_of_memory());
}

/// Ahead of static objects, which ask for memory, too.
[[gnu::constructor(101)]] void watch_memory() {
  std::set_new_handler(&on_no_memory);
  std::set_terminate(&on_terminate);
}

}  // namespace

bool memory_ran_out() noexcept { return ran_out; }
void forget_memory() noexcept { ran_out = false; }

int complain_of_memory() noexcept {
  // A message that cannot be written has no other way out.
  [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, kLine.data(), kLine.size());
  return kNotPossible;
}

}  // namespace hierfit::app
