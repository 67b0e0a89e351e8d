#include "app/memory.h"

#include <csignal>
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

[[noreturn]] void end_for_memory() {
  remove_parts();
  ::_exit(complain_of_memory());
}

/// Any other exception that nothing catches is a fault of ours, and ends as one.
[[noreturn]] void on_terminate() {
  if (!ran_out) std::abort();
  end_for_memory();
}

/// Objects of libraries that were given no memory for what they should hold may not bear to go.
void on_bad_access(int signal) {
  if (ran_out) end_for_memory();
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

/// Ahead of static objects, which ask for memory, too.
[[gnu::constructor(101)]] void watch_memory() {
  std::set_new_handler(&on_no_memory);
  std::set_terminate(&on_terminate);
  struct sigaction bad_access {};
  ::sigaction(SIGSEGV, nullptr, &bad_access);
  if (bad_access.sa_handler == SIG_DFL) std::signal(SIGSEGV, &on_bad_access);
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
