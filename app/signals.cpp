#include "app/signals.h"

#include <atomic>
#include <csignal>
#include <unistd.h>
#include <utility>

namespace hierfit::app {

/// Entries are added and never taken out, so that a signal handler can walk them at any time.
struct PartName::Entry {
  const std::string path;
  std::atomic<bool> made = false;
  Entry* next = nullptr;
};

namespace {

constexpr int kEnding[] = {SIGINT, SIGTERM, SIGHUP};

std::atomic<PartName::Entry*> parts = nullptr;
std::atomic<int> ending_signal = 0;
std::atomic<int> undivided_threads = 0;
thread_local int undivided_depth = 0;

[[noreturn]] void end_by(int signal) {
  remove_parts();
  std::signal(signal, SIG_DFL);
  sigset_t only;
  sigemptyset(&only);
  sigaddset(&only, signal);
  ::pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
  std::raise(signal);
  ::_exit(128 + signal);
}

/// Ends the process unless a thread does what must not be divided: it ends the process then.
void on_ending_signal(int signal) {
  ending_signal = signal;
  if (undivided_threads == 0) end_by(signal);
}

/// The last thread that did something undivided ends the process when a signal has asked for it.
void leave_undivided() {
  if (--undivided_threads == 0 && ending_signal != 0) end_by(ending_signal);
}

}  // namespace

void watch_signals() noexcept {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  struct sigaction ending {};
  ending.sa_handler = &on_ending_signal;
  ending.sa_flags = SA_RESTART;
  for (const int signal : kEnding)
    sigaddset(&ending.sa_mask, signal);
  for (const int signal : kEnding) {
    struct sigaction before {};
    ::sigaction(signal, nullptr, &before);
    if (before.sa_handler != SIG_IGN) ::sigaction(signal, &ending, nullptr);
  }
}

Undivided::Undivided() noexcept {
  if (undivided_depth++ > 0) return;
  ++undivided_threads;
  if (ending_signal == 0) return;
  leave_undivided();
  for (;;)
    ::pause();  // until another thread has come to the end of what it does
}

Undivided::~Undivided() {
  if (--undivided_depth == 0) leave_undivided();
}

PartName::~PartName() {
  if (!is_made()) return;
  ::unlink(path().c_str());
  release();
}

void PartName::propose(std::string path) {
  entry_ = new Entry{std::move(path)};
  entry_->next = parts;
  while (!parts.compare_exchange_weak(entry_->next, entry_)) {
  }
}

void PartName::made() noexcept { entry_->made = true; }
bool PartName::is_made() const { return entry_ != nullptr && entry_->made; }
const std::string& PartName::path() const { return entry_->path; }
void PartName::release() noexcept { entry_->made = false; }

void remove_parts() noexcept {
  for (const PartName::Entry* part = parts; part != nullptr; part = part->next) {
    if (part->made) ::unlink(part->path.c_str());
  }
}

}  // namespace hierfit::app
