// Loaded into a program before the C library (LD_PRELOAD): counts the calls that read and change
// files or start threads, and acts at one of them. SURVEYDATA_SHIM gives the action and the call,
// counted from 0 over all calls or over those of one function:
//
//   log                      nothing
//   kill N                   ends the process as SIGKILL does, before the call
//   tear N                   the same, but a write first writes half of its data
//   stop N | stop NAME N     stops the process as SIGSTOP does, before the call
//   short N                  a write writes half and returns that, a read reads half
//   flip NAME N              a write succeeds, but one bit of its last byte is wrong
//   device NAME N            the call reports that the file is on another device
//   fail N ERRNO | fail NAME N ERRNO    the call does nothing and fails; N = -1: every call
//   wait NAME MILLISECONDS   each call of the function takes that long
//
// Opening a file in a folder is called "openat", creating one there "create", and creating one
// without a name "tmpfile"; if SURVEYDATA_SHIM_NAMED is set, that fails as on a file system that
// has no such files, and is not counted. SURVEYDATA_SHIM_LOG names a file to which the name of
// every call is appended.

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
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

enum class Turn { kGoOn, kFail, kHalf, kHalfAndKill, kFlip, kOtherDevice };

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
  if (what == "flip") return Turn::kFlip;
  if (what == "device") return Turn::kOtherDevice;
  if (what != "fail") return Turn::kGoOn;
  errno = order.error;
  return Turn::kFail;
}

// The intercepted function.
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
ssize_t CallWrite(const char* name, const void* bytes, size_t count, Write write) {
  switch (Enter(name)) {
    case Turn::kFail:
      return -1;
    case Turn::kHalf:
      return write(bytes, count / 2);
    case Turn::kHalfAndKill:
      write(bytes, count / 2);
      kill(getpid(), SIGKILL);
      return -1;
    case Turn::kFlip: {
      std::string wrong(static_cast<const char*>(bytes), count);
      if (count > 0) wrong.back() = static_cast<char>(wrong.back() ^ 1);
      return write(wrong.data(), count);
    }
    default:
      return write(bytes, count);
  }
}

bool HasMode(int flags) { return (flags & (O_CREAT | __O_TMPFILE)) != 0; }

int OpenIn(int folder, const char* path, int flags, mode_t mode) {
  const bool isUnnamed = (flags & O_TMPFILE) == O_TMPFILE;
  if (isUnnamed && std::getenv("SURVEYDATA_SHIM_NAMED") != nullptr) {
    errno = EOPNOTSUPP;
    return -1;
  }
  const char* const name = isUnnamed ? "tmpfile" : (flags & O_CREAT) != 0 ? "create" : "openat";
  if (Enter(name) == Turn::kFail) return -1;
  return Next<int (*)(int, const char*, int, ...)>("openat")(folder, path, flags, mode);
}

int Open(const char* path, int flags, mode_t mode) {
  if (Enter("open") == Turn::kFail) return -1;
  return Next<int (*)(const char*, int, ...)>("open")(path, flags, mode);
}

}  // namespace

// The C library declares some of these with attributes that depend on the build; these declarations
// match its binary interface.
extern "C" {

[[gnu::visibility("default")]] int open(const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const mode_t mode = HasMode(flags) ? va_arg(more, mode_t) : 0;
  va_end(more);
  return Open(path, flags, mode);
}

[[gnu::visibility("default")]] int openat(int folder, const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const mode_t mode = HasMode(flags) ? va_arg(more, mode_t) : 0;
  va_end(more);
  return OpenIn(folder, path, flags, mode);
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
[[gnu::visibility("default")]] int renameat(int fromFolder, const char* from, int toFolder,
                                            const char* to) noexcept {
  return Call("renameat", fromFolder, from, toFolder, to);
}
[[gnu::visibility("default")]] int unlinkat(int folder, const char* path, int flags) noexcept {
  return Call("unlinkat", folder, path, flags);
}
[[gnu::visibility("default")]] int linkat(int fromFolder, const char* from, int toFolder,
                                          const char* to, int flags) noexcept {
  return Call("linkat", fromFolder, from, toFolder, to, flags);
}
[[gnu::visibility("default")]] int ftruncate(int file, off_t size) noexcept {
  return Call("ftruncate", file, size);
}
[[gnu::visibility("default")]] off_t lseek(int file, off_t offset, int whence) noexcept {
  if (Enter("lseek") == Turn::kFail) return -1;
  return Next<off_t (*)(int, off_t, int)>("lseek")(file, offset, whence);
}
[[gnu::visibility("default")]] int fseeko(FILE* file, off_t offset, int whence) {
  return Call("fseeko", file, offset, whence);
}
[[gnu::visibility("default")]] int fsetxattr(int file, const char* name, const void* value,
                                             size_t size, int flags) noexcept {
  return Call("fsetxattr", file, name, value, size, flags);
}
[[gnu::visibility("default")]] int fremovexattr(int file, const char* name) noexcept {
  return Call("fremovexattr", file, name);
}
[[gnu::visibility("default")]] ssize_t fgetxattr(int file, const char* name, void* value,
                                                 size_t size) noexcept {
  if (Enter("fgetxattr") == Turn::kFail) return -1;
  return Next<ssize_t (*)(int, const char*, void*, size_t)>("fgetxattr")(file, name, value, size);
}
[[gnu::visibility("default")]] ssize_t flistxattr(int file, char* list, size_t size) noexcept {
  if (Enter("flistxattr") == Turn::kFail) return -1;
  return Next<ssize_t (*)(int, char*, size_t)>("flistxattr")(file, list, size);
}
[[gnu::visibility("default")]] int stat(const char* path, struct stat* status) noexcept {
  const Turn turn = Enter("stat");
  if (turn == Turn::kFail) return -1;
  const int result = Next<int (*)(const char*, struct stat*)>("stat")(path, status);
  if (turn == Turn::kOtherDevice) ++status->st_dev;
  return result;
}
[[gnu::visibility("default")]] int fstatat(int folder, const char* path, struct stat* status,
                                           int flags) noexcept {
  const Turn turn = Enter("fstatat");
  if (turn == Turn::kFail) return -1;
  const int result =
      Next<int (*)(int, const char*, struct stat*, int)>("fstatat")(folder, path, status, flags);
  if (turn == Turn::kOtherDevice) ++status->st_dev;
  return result;
}
[[gnu::visibility("default")]] ssize_t write(int file, const void* bytes, size_t count) {
  return CallWrite("write", bytes, count, [&](const void* from, size_t size) {
    return Next<ssize_t (*)(int, const void*, size_t)>("write")(file, from, size);
  });
}
[[gnu::visibility("default")]] ssize_t pwrite(int file, const void* bytes, size_t count,
                                              off_t offset) {
  return CallWrite("pwrite", bytes, count, [&](const void* from, size_t size) {
    return Next<ssize_t (*)(int, const void*, size_t, off_t)>("pwrite")(file, from, size, offset);
  });
}

[[gnu::visibility("default")]] ssize_t pread(int file, void* bytes, size_t count, off_t offset) {
  const Turn turn = Enter("pread");
  if (turn == Turn::kFail) return -1;
  return Next<ssize_t (*)(int, void*, size_t, off_t)>("pread")(
      file, bytes, turn == Turn::kHalf ? count / 2 : count, offset);
}

[[gnu::visibility("default")]] int pthread_create(pthread_t* thread, const pthread_attr_t* how,
                                                  void* (*run)(void*), void* argument) noexcept {
  if (Enter("pthread_create") == Turn::kFail) return TheOrder().error;
  return Next<int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*)>(
      "pthread_create")(thread, how, run, argument);
}

// The same functions under the names that programs with 64-bit offsets call.
[[gnu::visibility("default")]] int open64(const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const mode_t mode = HasMode(flags) ? va_arg(more, mode_t) : 0;
  va_end(more);
  return Open(path, flags, mode);
}
[[gnu::visibility("default")]] int openat64(int folder, const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const mode_t mode = HasMode(flags) ? va_arg(more, mode_t) : 0;
  va_end(more);
  return OpenIn(folder, path, flags, mode);
}
[[gnu::visibility("default")]] int ftruncate64(int file, off64_t size) noexcept {
  return ftruncate(file, size);
}
[[gnu::visibility("default")]] off64_t lseek64(int file, off64_t offset, int whence) noexcept {
  return lseek(file, offset, whence);
}
[[gnu::visibility("default")]] int fseeko64(FILE* file, off64_t offset, int whence) {
  return fseeko(file, offset, whence);
}
[[gnu::visibility("default")]] int stat64(const char* path, struct stat64* status) noexcept {
  static_assert(sizeof(struct stat) == sizeof(struct stat64));
  return stat(path, reinterpret_cast<struct stat*>(status));
}
[[gnu::visibility("default")]] int fstatat64(int folder, const char* path, struct stat64* status,
                                             int flags) noexcept {
  return fstatat(folder, path, reinterpret_cast<struct stat*>(status), flags);
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
