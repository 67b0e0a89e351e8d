#include "app/drawing.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <ctime>
#include <glib.h>
#include <malloc.h>
#include <mutex>
#include <new>
#include <span>
#include <string>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>

#include "app/complaint.h"
#include "app/signals.h"

namespace hierfit::app {
namespace {

constexpr std::string_view kDrawnForms[] = {"xlsx", "docx", "pdf", "png"};

constexpr size_t kMegabyte = size_t{1} << 20;
constexpr size_t kForAll = 64 * kMegabyte;   ///< fonts and their index
constexpr size_t kForEach = 64 * kMegabyte;  ///< a report of some charts, and threads

/// Drawing that takes less than `kLeastWork` of processor time in each of `kMostIdle` stretches of
/// `kStretch` seconds has come to a stop.
constexpr int kStretch = 5;
constexpr int kMostIdle = 3;
constexpr long kLeastWork = 10'000'000;  // nanoseconds

constexpr std::string_view kStopped =
    "hierfit: the report cannot be made: drawing has come to a stop\n";

std::mutex mutex;
size_t drawings = 0;
std::atomic<long> work_before = 0;
std::atomic<int> idle_stretches = 0;

long work_so_far() {
  timespec time{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return time.tv_sec * 1'000'000'000 + time.tv_nsec;
}

void on_stretch(int) {
  const long work = work_so_far();
  const bool idle = work - work_before.exchange(work) < kLeastWork;
  idle_stretches = idle ? idle_stretches + 1 : 0;
  if (idle_stretches < kMostIdle) return;
  remove_parts();
  // A message that cannot be written has no other way out.
  [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, kStopped.data(), kStopped.size());
  ::_exit(kNotPossible);
}

void watch(bool on) {
  work_before = work_so_far();
  idle_stretches = 0;
  struct sigaction stretch {};
  stretch.sa_handler = &on_stretch;
  stretch.sa_flags = SA_RESTART;
  ::sigaction(SIGALRM, &stretch, nullptr);
  const timeval period = {on ? kStretch : 0, 0};
  const itimerval timer = {period, period};
  ::setitimer(ITIMER_REAL, &timer, nullptr);
}

/// What the libraries say of themselves means nothing to a reader, unless they are about to abort.
GLogWriterOutput on_library_message(GLogLevelFlags level,
                                    const GLogField* fields,
                                    gsize count,
                                    gpointer) {
  if ((level & G_LOG_LEVEL_ERROR) == 0) return G_LOG_WRITER_HANDLED;
  remove_parts();
  try {
    std::string sentence = "the report cannot be made: ";
    for (const GLogField& field : std::span(fields, count)) {
      if (std::string_view(field.key) == "MESSAGE")
        sentence += static_cast<const char*>(field.value);
    }
    say({{}, sentence}, false);
  } catch (const std::bad_alloc&) {
    complain_of_memory();
  }
  ::_exit(kNotPossible);
}

void hear_libraries() {
  static std::once_flag once;
  std::call_once(once, [] { g_log_set_writer_func(&on_library_message, nullptr, nullptr); });
}

/// Where the address space is limited, the allocator's stretches for each thread are too dear.
void spare_address_space() {
  rlimit limit{};
  if (::getrlimit(RLIMIT_AS, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY) {
    ::mallopt(M_ARENA_MAX, 1);
  }
}

/// Whether the system would give this much memory. It is not touched.
bool can_get(size_t bytes) {
  void* memory = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return false;
  ::munmap(memory, bytes);
  return true;
}

}  // namespace

Drawing::Drawing(std::string_view form)
    : is_needed_(std::ranges::find(kDrawnForms, form) != std::end(kDrawnForms)) {
  if (!is_needed_) return;
  const std::lock_guard lock(mutex);
  spare_address_space();
  if (!can_get(kForAll + kForEach * (drawings + 1))) throw std::bad_alloc();
  hear_libraries();
  if (drawings++ == 0) watch(true);
}

Drawing::~Drawing() {
  if (!is_needed_) return;
  const std::lock_guard lock(mutex);
  if (--drawings == 0) watch(false);
}

}  // namespace hierfit::app
