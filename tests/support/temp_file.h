#ifndef SURVEYDATA_TESTS_SUPPORT_TEMP_FILE_H_
#define SURVEYDATA_TESTS_SUPPORT_TEMP_FILE_H_

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <surveydata/gnss/gps_record_file.h>

namespace TestSupport {

/// The contents of a file.
inline std::vector<std::uint8_t> ReadBytes(const std::filesystem::path& path) {
  std::vector<std::uint8_t> bytes(std::filesystem::file_size(path));
  std::ifstream in(path, std::ios::binary);
  if (!in.read(reinterpret_cast<char*>(bytes.data()), std::ssize(bytes))) {
    throw std::runtime_error("cannot read " + path.string());
  }
  return bytes;
}

/// A new temporary folder, removed by the destructor.
class TempFolderC {
 public:
  TempFolderC() {
    std::random_device random;
    do {
      path_ = std::filesystem::temp_directory_path() / ("surveydata-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
  }
  TempFolderC(const TempFolderC&) = delete;
  TempFolderC& operator=(const TempFolderC&) = delete;
  ~TempFolderC() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

/// An info with `path`, split at its last dot.
inline SDI::GPSRecordFileInfo InfoFor(const std::filesystem::path& path, std::uint32_t offset = 0) {
  SDI::GPSRecordFileInfo info;
  const std::string whole = path.string();
  const std::size_t dot = whole.rfind('.');
  const std::string stem = whole.substr(0, dot);
  const std::string extension = whole.substr(dot + 1);
  if (stem.size() > sizeof(info.path) || extension.size() > sizeof(info.extension)) {
    throw std::length_error("too long for the info: " + whole);
  }
  stem.copy(info.path, stem.size());
  extension.copy(info.extension, extension.size());
  info.offset = offset;
  return info;
}

/// A record file in a new folder.
class TempFileC {
 public:
  TempFileC() : TempFileC(std::vector<std::uint8_t>()) {}
  explicit TempFileC(const std::vector<std::uint8_t>& bytes, std::string_view name = "file.rec")
      : path_(folder_.Path() / name) {
    Write(bytes);
  }

  // Overwrites in place: some file systems flush to disk when a file is truncated and rewritten.
  void Write(const std::vector<std::uint8_t>& bytes) const {
    if (!std::filesystem::exists(path_)) std::ofstream(path_, std::ios::binary);
    std::filesystem::resize_file(path_, bytes.size());
    std::ofstream out(path_, std::ios::binary | std::ios::in);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
    if (!out.flush()) throw std::runtime_error("cannot write " + path_.string());
  }
  std::vector<std::uint8_t> Bytes() const { return ReadBytes(path_); }

  const std::filesystem::path& Path() const { return path_; }
  SDI::GPSRecordFileInfo Info(std::uint32_t offset = 0) const { return InfoFor(path_, offset); }

 private:
  TempFolderC folder_;
  std::filesystem::path path_;
};

}  // namespace TestSupport

#endif  // SURVEYDATA_TESTS_SUPPORT_TEMP_FILE_H_
