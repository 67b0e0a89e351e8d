// Preloaded into the command, it has one call of the system or of the allocator fail.
//
//   FAULT=CALL:N     the N-th call fails, counted from 1
//   FAULT=CALL:N+    and all behind it
//   FAULT_ERROR=E    the error number that it fails with, else ENOMEM, EAGAIN, ENOENT or EIO; -1
//   for
//                    a thread that seems to start and does nothing
//   FAULT_SIGNAL=S   the process gets this signal first, and the call does not fail
//   FAULT_COUNT=FILE says how many calls there were, when the process exits
//   NO_TMPFILE=1     the file system knows no files without a name
//
// CALL is alloc, write, fsync, rename, link, open, readlink or thread.
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void* __libc_memalign(size_t, size_t);
}

namespace {

char fault[16];  // the call; empty until the environment is read
long from = 0;
long until = 0;
int error_number = 0;
int signal_number = 0;
bool has_tmpfile = true;
std::atomic<long> count = 0;

int number_in(const char* name) {
  const char* text = std::getenv(name);
  return text == nullptr ? 0 : std::atoi(text);
}

[[gnu::constructor]] void read_environment() {
  const char* text = std::getenv("FAULT");
  const char* colon = text == nullptr ? nullptr : std::strchr(text, ':');
  if (colon == nullptr || colon - text >= static_cast<long>(sizeof fault)) return;
  char* end = nullptr;
  from = std::strtol(colon + 1, &end, 10);
  until = *end == '+' ? LONG_MAX : from;
  error_number = number_in("FAULT_ERROR");
  signal_number = number_in("FAULT_SIGNAL");
  has_tmpfile = number_in("NO_TMPFILE") == 0;
  std::memcpy(fault, text, static_cast<size_t>(colon - text));
}

[[gnu::destructor]] void say_count() {
  const char* file = std::getenv("FAULT_COUNT");
  const int descriptor = file == nullptr ? -1 : ::openat(AT_FDCWD, file, O_WRONLY | O_CREAT, 0666);
  if (descriptor >= 0) ::dprintf(descriptor, "%ld", count.load());
}

/// Whether this call fails; `errno` says why.
bool fails(const char* call, int error) {
  if (std::strcmp(call, fault) != 0) return false;
  const long number = ++count;
  if (number < from || number > until) return false;
  if (signal_number != 0) return ::kill(::getpid(), signal_number) != 0;
  errno = error_number != 0 ? error_number : error;
  return true;
}

int open_file(const char* path, int flags, va_list rest) {
  const bool nameless = (flags & O_TMPFILE) == O_TMPFILE;
  const int mode = nameless || (flags & O_CREAT) != 0 ? va_arg(rest, int) : 0;
  if (nameless && !has_tmpfile) {
    errno = EOPNOTSUPP;
    return -1;
  }
  if (fails("open", EIO)) return -1;
  return static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

}  // namespace

extern "C" {

void* malloc(size_t size) noexcept {
  return fails("alloc", ENOMEM) ? nullptr : __libc_malloc(size);
}
void* calloc(size_t items, size_t size) noexcept {
  return fails("alloc", ENOMEM) ? nullptr : __libc_calloc(items, size);
}
void* realloc(void* memory, size_t size) noexcept {
  return fails("alloc", ENOMEM) ? nullptr : __libc_realloc(memory, size);
}
void* memalign(size_t alignment, size_t size) noexcept {
  return fails("alloc", ENOMEM) ? nullptr : __libc_memalign(alignment, size);
}
void* aligned_alloc(size_t alignment, size_t size) noexcept { return memalign(alignment, size); }
int posix_memalign(void** memory, size_t alignment, size_t size) noexcept {
  *memory = memalign(alignment, size);
  return *memory == nullptr ? ENOMEM : 0;
}

ssize_t write(int file, const void* bytes, size_t size) {
  return fails("write", EIO) ? -1 : ::syscall(SYS_write, file, bytes, size);
}
int fsync(int file) {
  return fails("fsync", EIO) ? -1 : static_cast<int>(::syscall(SYS_fsync, file));
}
int rename(const char* old_name, const char* new_name) noexcept {
  return fails("rename", EIO) ? -1 : static_cast<int>(::syscall(SYS_rename, old_name, new_name));
}
int linkat(int old_folder, const char* old_name, int folder, const char* name, int flags) noexcept {
  if (fails("link", EIO)) return -1;
  return static_cast<int>(::syscall(SYS_linkat, old_folder, old_name, folder, name, flags));
}
ssize_t readlink(const char* path, char* target, size_t size) noexcept {
  return fails("readlink", ENOENT) ? -1 : ::syscall(SYS_readlink, path, target, size);
}

int open(const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const int descriptor = open_file(path, flags, rest);
  va_end(rest);
  return descriptor;
}

int pthread_create(pthread_t* thread,
                   const pthread_attr_t* attributes,
                   void* (*run)(void*),
                   void* with) noexcept {
  if (fails("thread", EAGAIN)) return errno < 0 ? 0 : errno;
  const auto create =
      reinterpret_cast<decltype(&::pthread_create)>(::dlsym(RTLD_NEXT, "pthread_create"));
  return create(thread, attributes, run, with);
}
}
