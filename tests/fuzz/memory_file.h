#ifndef SURVEYDATA_TESTS_FUZZ_MEMORY_FILE_H_
#define SURVEYDATA_TESTS_FUZZ_MEMORY_FILE_H_

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <surveydata/gnss/gps_record_file.h>

namespace Fuzz {

/// A file that exists only in memory and disappears with the process.
class MemoryFileC {
 public:
  MemoryFileC() : file_(memfd_create("fuzz", MFD_CLOEXEC)) {
    if (file_ < 0) throw std::runtime_error("cannot create a file in memory");
  }
  MemoryFileC(const MemoryFileC&) = delete;
  MemoryFileC& operator=(const MemoryFileC&) = delete;
  ~MemoryFileC() { close(file_); }

  void Write(const void* bytes, std::size_t size) const {
    if (ftruncate(file_, static_cast<off_t>(size)) != 0 ||
        pwrite(file_, bytes, size, 0) != static_cast<ssize_t>(size)) {
      throw std::runtime_error("cannot write a file in memory");
    }
  }
  std::vector<std::uint8_t> Bytes() const {
    struct stat status {};
    fstat(file_, &status);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(status.st_size));
    if (pread(file_, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
      throw std::runtime_error("cannot read a file in memory");
    }
    return bytes;
  }

  std::string Path() const { return "/proc/self/fd/" + std::to_string(file_); }

  /// The dot of the folder name "." serves as the dot between path and extension.
  SDI::GPSRecordFileInfo Info(std::uint32_t offset) const {
    SDI::GPSRecordFileInfo info;
    std::string("/proc/self/").copy(info.path, sizeof(info.path));
    const std::string extension = "/fd/" + std::to_string(file_);
    if (extension.size() > sizeof(info.extension)) throw std::length_error(extension);
    extension.copy(info.extension, sizeof(info.extension));
    info.offset = offset;
    return info;
  }

 private:
  int file_;
};

}  // namespace Fuzz

#endif  // SURVEYDATA_TESTS_FUZZ_MEMORY_FILE_H_
