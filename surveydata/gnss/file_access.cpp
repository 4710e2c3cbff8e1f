#include <cerrno>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

#include <surveydata/gnss/file_access.h>

namespace SDI::FileAccess {

#if defined(_WIN32)

bool Seek(std::FILE* file, std::uint64_t offset) {
  return _fseeki64(file, static_cast<Offset>(offset), SEEK_SET) == 0;
}
bool SeekToEnd(std::FILE* file) { return _fseeki64(file, 0, SEEK_END) == 0; }
Offset Tell(std::FILE* file) { return _ftelli64(file); }
bool Truncate(std::FILE* file, Offset size) { return _chsize_s(_fileno(file), size) == 0; }

#else

// Where a long has 32 bits, the build gives off_t 64.
static_assert(sizeof(off_t) == sizeof(Offset));

bool Seek(std::FILE* file, std::uint64_t offset) {
  return fseeko(file, static_cast<off_t>(offset), SEEK_SET) == 0;
}
bool SeekToEnd(std::FILE* file) { return fseeko(file, 0, SEEK_END) == 0; }
Offset Tell(std::FILE* file) { return ftello(file); }
bool Truncate(std::FILE* file, Offset size) { return ftruncate(fileno(file), size) == 0; }

#endif

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
