// Loaded into a program before the C library (LD_PRELOAD): counts the calls that read and change
// files, and acts at one of them. SURVEYDATA_SHIM gives the action and the call, counted from 0
// over all calls or over those of one function:
//
//   log                      nothing
//   kill N                   ends the process as SIGKILL does, before the call
//   tear N                   the same, but a write first writes half of its data
//   stop N | stop NAME N     stops the process as SIGSTOP does, before the call
//   short N                  a write writes half and returns that, a read reads half
//   fail N ERRNO | fail NAME N ERRNO    the call does nothing and fails; N = -1: every call
//   wait NAME MILLISECONDS   each call of the function takes so long
//
// SURVEYDATA_SHIM_LOG names a file to which the name of every call is appended.

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

namespace {

struct Order {
  char what[8] = "";
  char name[16] = "";
  long number = -2;
  int error = 0;
};

const Order& TheOrder() {
  static const Order order = [] {
    Order o;
    const char* const text = std::getenv("SURVEYDATA_SHIM");
    if (text == nullptr) return o;
    if (std::sscanf(text, "%7s %ld %d", o.what, &o.number, &o.error) < 2) {
      std::sscanf(text, "%7s %15s %ld %d", o.what, o.name, &o.number, &o.error);
    }
    return o;
  }();
  return order;
}

// Calls that bypass this shim, so that they are not counted.
void Log(const char* name) {
  const char* const path = std::getenv("SURVEYDATA_SHIM_LOG");
  if (path == nullptr) return;
  const auto file =
      static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, O_WRONLY | O_APPEND | O_CREAT, 0600));
  char line[32];
  const int size = std::snprintf(line, sizeof(line), "%s\n", name);
  syscall(SYS_write, file, line, size);
  syscall(SYS_close, file);
}

enum class Turn { kGoOn, kFail, kHalf, kHalfAndKill };

Turn Enter(const char* name) {
  static long all = 0;
  static long named = 0;
  const Order& order = TheOrder();
  const std::string_view what = order.what;
  const bool isNamed = order.name[0] != '\0';
  const bool isMine = !isNamed || std::strcmp(order.name, name) == 0;
  Log(name);
  const long number = isNamed ? named : all;
  ++all;
  if (isMine) ++named;
  if (what == "wait" && isMine) {
    const timespec time{order.number / 1000, order.number % 1000 * 1'000'000};
    nanosleep(&time, nullptr);
    return Turn::kGoOn;
  }
  if (!isMine || (number != order.number && order.number != -1)) return Turn::kGoOn;
  if (what == "kill") kill(getpid(), SIGKILL);
  if (what == "stop") kill(getpid(), SIGSTOP);
  if (what == "tear") return Turn::kHalfAndKill;
  if (what == "short") return Turn::kHalf;
  if (what != "fail") return Turn::kGoOn;
  errno = order.error;
  return Turn::kFail;
}

// The function that this one replaces.
template <class Function>
Function Next(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

template <class... Args>
int Call(const char* name, Args... args) {
  if (Enter(name) == Turn::kFail) return -1;
  return Next<int (*)(Args...)>(name)(args...);
}

template <class Write>
ssize_t CallWrite(const char* name, size_t count, Write write) {
  switch (Enter(name)) {
    case Turn::kFail:
      return -1;
    case Turn::kHalf:
      return write(count / 2);
    case Turn::kHalfAndKill:
      write(count / 2);
      kill(getpid(), SIGKILL);
      return -1;
    default:
      return write(count);
  }
}

}  // namespace

// The C library declares some of these with attributes that differ from build to build; the ones
// here are its binary interface.
extern "C" {

[[gnu::visibility("default")]] int open(const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
  va_end(more);
  if (Enter("open") == Turn::kFail) return -1;
  return Next<int (*)(const char*, int, ...)>("open")(path, flags, mode);
}

[[gnu::visibility("default")]] int mkostemp(char* path, int flags) {
  return Call("mkostemp", path, flags);
}
[[gnu::visibility("default")]] int flock(int file, int operation) noexcept {
  return Call("flock", file, operation);
}
[[gnu::visibility("default")]] int fchown(int file, uid_t user, gid_t group) noexcept {
  return Call("fchown", file, user, group);
}
[[gnu::visibility("default")]] int fchmod(int file, mode_t mode) noexcept {
  return Call("fchmod", file, mode);
}
[[gnu::visibility("default")]] int fsync(int file) { return Call("fsync", file); }
[[gnu::visibility("default")]] int rename(const char* from, const char* to) noexcept {
  return Call("rename", from, to);
}
[[gnu::visibility("default")]] int unlink(const char* path) noexcept {
  return Call("unlink", path);
}
[[gnu::visibility("default")]] ssize_t write(int file, const void* bytes, size_t count) {
  return CallWrite("write", count, [&](size_t size) {
    return Next<ssize_t (*)(int, const void*, size_t)>("write")(file, bytes, size);
  });
}
[[gnu::visibility("default")]] ssize_t pwrite(int file, const void* bytes, size_t count,
                                              off_t offset) {
  return CallWrite("pwrite", count, [&](size_t size) {
    return Next<ssize_t (*)(int, const void*, size_t, off_t)>("pwrite")(file, bytes, size, offset);
  });
}

[[gnu::visibility("default")]] ssize_t pread(int file, void* bytes, size_t count, off_t offset) {
  const Turn turn = Enter("pread");
  if (turn == Turn::kFail) return -1;
  return Next<ssize_t (*)(int, void*, size_t, off_t)>("pread")(
      file, bytes, turn == Turn::kHalf ? count / 2 : count, offset);
}

// The same under the names that a program with 64-bit offsets calls.
[[gnu::visibility("default")]] int open64(const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
  va_end(more);
  return open(path, flags, mode);
}
[[gnu::visibility("default")]] int mkostemp64(char* path, int flags) {
  return mkostemp(path, flags);
}
[[gnu::visibility("default")]] ssize_t pread64(int file, void* bytes, size_t count,
                                               off64_t offset) {
  return pread(file, bytes, count, offset);
}
[[gnu::visibility("default")]] ssize_t pwrite64(int file, const void* bytes, size_t count,
                                                off64_t offset) {
  return pwrite(file, bytes, count, offset);
}
}
