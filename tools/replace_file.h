#ifndef SURVEYDATA_TOOLS_REPLACE_FILE_H_
#define SURVEYDATA_TOOLS_REPLACE_FILE_H_

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

namespace Tool {

/// A change of a file that happens whole or not at all: it is made in a copy beside the file, which
/// then takes the file's place in one step. Follows symbolic links. Throws `ToolErrorC` on failure;
/// the file is as it was then, and the copy is removed.
class FileReplacementC {
 public:
  /// Copies `file`, with its permissions.
  explicit FileReplacementC(const std::string& file);
  FileReplacementC(const FileReplacementC&) = delete;
  FileReplacementC& operator=(const FileReplacementC&) = delete;
  ~FileReplacementC();

  /// Overwrites bytes of the copy.
  void Patch(std::uint64_t offset, std::span<const std::uint8_t> bytes);

  /// Makes sure that the copy holds `bytes` at `offset` and everywhere else what the file holds
  /// now, brings it to the disk and puts it in the file's place.
  void Commit(std::uint64_t offset, std::span<const std::uint8_t> bytes);

 private:
  class DescriptorC;

  void Copy(int from, int to, std::uint64_t size) const;
  void Verify(std::uint64_t offset, std::span<const std::uint8_t> bytes) const;
  [[noreturn]] void Fail(const std::string& what) const;

  std::filesystem::path file_;
  std::string copy_;  ///< Empty when there is nothing to remove.
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_REPLACE_FILE_H_
