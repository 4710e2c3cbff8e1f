#include <cerrno>

#if defined(_WIN32)
#include <io.h>
#else
#include <sys/stat.h>
#include <unistd.h>
#endif

#include <surveydata/gnss/file_access.h>

namespace SDI::FileAccess {

#if defined(_WIN32)

std::FILE* OpenToRead(const char* fileName) { return std::fopen(fileName, "rb"); }

Appended OpenToAppend(const char* fileName) {
  const bool isNew = _access(fileName, 0) != 0;
  return {std::fopen(fileName, "ab"), isNew};
}

bool Seek(std::FILE* file, std::uint64_t offset) {
  return _fseeki64(file, static_cast<Offset>(offset), SEEK_SET) == 0;
}
bool SeekToEnd(std::FILE* file) { return _fseeki64(file, 0, SEEK_END) == 0; }
Offset Tell(std::FILE* file) { return _ftelli64(file); }
bool Truncate(std::FILE* file, Offset size) { return _chsize_s(_fileno(file), size) == 0; }

#else

// Where a long has 32 bits, the build gives off_t 64.
static_assert(sizeof(off_t) == sizeof(Offset));

std::FILE* OpenToRead(const char* fileName) {
  std::FILE* const file = std::fopen(fileName, "rb");
  if (file == nullptr) return nullptr;
  struct stat status = {};
  if (fstat(fileno(file), &status) != 0 || !S_ISDIR(status.st_mode)) return file;
  std::fclose(file);
  errno = EISDIR;
  return nullptr;
}

Appended OpenToAppend(const char* fileName) {
  // The exclusive mode creates a file, or fails if there is one.
  std::FILE* const created = std::fopen(fileName, "abx");
  if (created != nullptr) return {created, true};
  return {errno == EEXIST ? std::fopen(fileName, "ab") : nullptr, false};
}

bool Seek(std::FILE* file, std::uint64_t offset) {
  return fseeko(file, static_cast<off_t>(offset), SEEK_SET) == 0;
}
bool SeekToEnd(std::FILE* file) { return fseeko(file, 0, SEEK_END) == 0; }
Offset Tell(std::FILE* file) { return ftello(file); }
bool Truncate(std::FILE* file, Offset size) { return ftruncate(fileno(file), size) == 0; }

#endif

bool IsBeyondAnyFile() { return errno == EINVAL || errno == EOVERFLOW; }

OpenFailure GetOpenFailure() {
  switch (errno) {
    case ENOENT:
    case ENOTDIR:
      return OpenFailure::kNoSuchFile;
    case EACCES:
    case EPERM:
    case EROFS:
      return OpenFailure::kNoPermission;
    default:
      return OpenFailure::kOther;
  }
}

}  // namespace SDI::FileAccess
