#include <array>
#include <cerrno>
#include <cstdio>

#include <sys/types.h>

#include "tests/support/faults.h"

namespace Faults {
namespace {

// Not a vector: this code must not allocate while allocations are counted.
std::array<const char*, 1000> g_calls;
std::size_t g_callCount = 0;
std::size_t g_failing = kNever;
std::size_t g_failingToo = kNever;
Extent g_extent = Extent::kNothing;
int g_openFiles = 0;
const std::FILE* g_failed = nullptr;  // the last file for which a read or write failed

// Whether this call is to fail.
bool IsToFail(const char* name) {
  if (g_callCount < g_calls.size()) g_calls[g_callCount] = name;
  const std::size_t call = g_callCount++;
  return call == g_failing || call == g_failingToo;
}

}  // namespace

void FailFileCall(std::size_t number, Extent extent, std::size_t another) {
  g_failing = number;
  g_failingToo = another;
  g_extent = extent;
  g_failed = nullptr;
  g_callCount = 0;
}
void FailNoFileCall() { FailFileCall(kNever); }

std::vector<std::string> FileCalls() {
  return {g_calls.begin(), g_calls.begin() + static_cast<std::ptrdiff_t>(g_callCount)};
}

int OpenFiles() { return g_openFiles; }

}  // namespace Faults

// Functions that use offsets have other names in builds with 64-bit offsets.
#if defined(__GLIBC__) && defined(__USE_FILE_OFFSET64) && __SIZEOF_POINTER__ == 4
#define SURVEYDATA_NAMED(name) __asm__(name "64")
#else
#define SURVEYDATA_NAMED(name)
#endif

// The linker option --wrap redirects calls of X to `__wrap_X`; `__real_X` is X.
extern "C" {
std::FILE* __real_fopen(const char* name, const char* mode) SURVEYDATA_NAMED("__real_fopen");
int __real_fseek(std::FILE* file, long offset, int whence);
int __real_fseeko(std::FILE* file, off_t offset, int whence) SURVEYDATA_NAMED("__real_fseeko");
off_t __real_ftello(std::FILE* file) SURVEYDATA_NAMED("__real_ftello");
std::size_t __real_fread(void* to, std::size_t size, std::size_t count, std::FILE* file);
std::size_t __real_fwrite(const void* from, std::size_t size, std::size_t count, std::FILE* file);
int __real_ftruncate(int file, off_t size) SURVEYDATA_NAMED("__real_ftruncate");
int __real_fclose(std::FILE* file);
int __real_ferror(std::FILE* file);

std::FILE* __wrap_fopen(const char* name, const char* mode) SURVEYDATA_NAMED("__wrap_fopen");
int __wrap_fseek(std::FILE* file, long offset, int whence);
int __wrap_fseeko(std::FILE* file, off_t offset, int whence) SURVEYDATA_NAMED("__wrap_fseeko");
off_t __wrap_ftello(std::FILE* file) SURVEYDATA_NAMED("__wrap_ftello");
std::size_t __wrap_fread(void* to, std::size_t size, std::size_t count, std::FILE* file);
std::size_t __wrap___fread_chk(void* to, std::size_t room, std::size_t size, std::size_t count,
                               std::FILE* file);
std::size_t __wrap_fwrite(const void* from, std::size_t size, std::size_t count, std::FILE* file);
int __wrap_ftruncate(int file, off_t size) SURVEYDATA_NAMED("__wrap_ftruncate");
int __wrap_fclose(std::FILE* file);
int __wrap_ferror(std::FILE* file);

std::FILE* __wrap_fopen(const char* name, const char* mode) {
  if (Faults::IsToFail("fopen")) {
    errno = EMFILE;
    return nullptr;
  }
  std::FILE* const file = __real_fopen(name, mode);
  if (file != nullptr) ++Faults::g_openFiles;
  return file;
}

int __wrap_fseek(std::FILE* file, long offset, int whence) {
  if (!Faults::IsToFail("fseek")) return __real_fseek(file, offset, whence);
  errno = EIO;
  return -1;
}

int __wrap_fseeko(std::FILE* file, off_t offset, int whence) {
  if (!Faults::IsToFail("fseeko")) return __real_fseeko(file, offset, whence);
  errno = EIO;
  return -1;
}

off_t __wrap_ftello(std::FILE* file) {
  if (!Faults::IsToFail("ftello")) return __real_ftello(file);
  errno = EIO;
  return -1;
}

std::size_t __wrap_fread(void* to, std::size_t size, std::size_t count, std::FILE* file) {
  if (!Faults::IsToFail("fread")) return __real_fread(to, size, count, file);
  Faults::g_failed = file;
  const bool isHalf = Faults::g_extent == Faults::Extent::kHalf;
  const std::size_t done = isHalf ? __real_fread(to, size, count / 2, file) : 0;
  errno = EIO;
  return done;
}

// Hardened builds call this if the size of the destination is known.
std::size_t __wrap___fread_chk(void* to, std::size_t /*room*/, std::size_t size, std::size_t count,
                               std::FILE* file) {
  return __wrap_fread(to, size, count, file);
}

std::size_t __wrap_fwrite(const void* from, std::size_t size, std::size_t count, std::FILE* file) {
  if (!Faults::IsToFail("fwrite")) return __real_fwrite(from, size, count, file);
  Faults::g_failed = file;
  const bool isHalf = Faults::g_extent == Faults::Extent::kHalf;
  const std::size_t done = isHalf ? __real_fwrite(from, size, count / 2, file) : 0;
  errno = ENOSPC;
  return done;
}

int __wrap_ftruncate(int file, off_t size) {
  if (!Faults::IsToFail("ftruncate")) return __real_ftruncate(file, size);
  errno = EIO;
  return -1;
}

int __wrap_fclose(std::FILE* file) {
  const bool isToFail = Faults::IsToFail("fclose");
  --Faults::g_openFiles;
  const int result = __real_fclose(file);
  if (!isToFail) return result;
  errno = EIO;
  return EOF;
}

int __wrap_ferror(std::FILE* file) { return file == Faults::g_failed ? 1 : __real_ferror(file); }
}
