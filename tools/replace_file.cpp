#include "replace_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "exit_code.h"
#include "progress.h"

namespace Tool {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 20;

// Everything from `offset` on that fits into `bytes`; less only at the end of the file, negative on
// failure.
ssize_t ReadAt(int file, std::uint64_t offset, std::span<std::uint8_t> bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t count =
        pread(file, &bytes[done], bytes.size() - done, static_cast<off_t>(offset + done));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return count;
    if (count == 0) break;
    done += static_cast<std::size_t>(count);
  }
  return static_cast<ssize_t>(done);
}

bool WriteAt(int file, std::uint64_t offset, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = pwrite(file, bytes.data(), bytes.size(), static_cast<off_t>(offset));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    offset += static_cast<std::uint64_t>(count);
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace

// Closes on every way out.
class FileReplacementC::DescriptorC {
 public:
  explicit DescriptorC(int descriptor) : descriptor_(descriptor) {}
  DescriptorC(const DescriptorC&) = delete;
  DescriptorC& operator=(const DescriptorC&) = delete;
  ~DescriptorC() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  int Get() const { return descriptor_; }

 private:
  int descriptor_;
};

void FileReplacementC::Fail(const std::string& what) const {
  throw ToolErrorC(ExitCode::kFileError, fmt::format("{}: {}; {} is as it was", what,
                                                     std::strerror(errno), file_.string()));
}

FileReplacementC::FileReplacementC(const std::string& file) : file_(file) {
  std::error_code error;
  file_ = std::filesystem::canonical(file, error);
  if (error) {
    throw ToolErrorC(ExitCode::kFileError,
                     fmt::format("cannot read {}: {}", file, error.message()));
  }
  // Replacing needs no right to write the file itself, so ask for it.
  if (access(file_.c_str(), W_OK) != 0) Fail(fmt::format("cannot write {}", file_.string()));
  const DescriptorC from(open(file_.c_str(), O_RDONLY | O_CLOEXEC));
  struct stat status {};
  if (from.Get() < 0 || fstat(from.Get(), &status) != 0) {
    Fail(fmt::format("cannot read {}", file_.string()));
  }
  if (!S_ISREG(status.st_mode)) {
    throw ToolErrorC(ExitCode::kFileError, fmt::format("{} is no regular file", file_.string()));
  }

  std::string copy =
      (file_.parent_path() / fmt::format(".{}.XXXXXX", file_.filename().string())).string();
  const DescriptorC to(mkostemp(copy.data(), O_CLOEXEC));
  if (to.Get() < 0) Fail(fmt::format("cannot write a copy beside {}", file_.string()));
  copy_ = std::move(copy);
  try {
    Copy(from.Get(), to.Get(), static_cast<std::uint64_t>(status.st_size));
    // The owner is kept where the system lets us.
    if (fchown(to.Get(), status.st_uid, status.st_gid) != 0 && errno != EPERM) {
      Fail(fmt::format("cannot set the owner of {}", copy_));
    }
    if (fchmod(to.Get(), status.st_mode & 07777) != 0) {
      Fail(fmt::format("cannot set the permissions of {}", copy_));
    }
  } catch (...) {
    unlink(copy_.c_str());  // the destructor does not run
    throw;
  }
}

FileReplacementC::~FileReplacementC() {
  if (!copy_.empty()) unlink(copy_.c_str());
}

void FileReplacementC::Copy(int from, int to, std::uint64_t size) const {
  ProgressC progress(size);
  std::vector<std::uint8_t> block(kBlock);
  for (std::uint64_t at = 0;;) {
    const ssize_t count = ReadAt(from, at, block);
    if (count < 0) Fail(fmt::format("cannot read {}", file_.string()));
    if (count == 0) return;
    if (!WriteAt(to, at, std::span(block).first(static_cast<std::size_t>(count)))) {
      Fail(fmt::format("cannot write {}", copy_));
    }
    at += static_cast<std::uint64_t>(count);
    progress.Update(at);
  }
}

void FileReplacementC::Patch(std::uint64_t offset, std::span<const std::uint8_t> bytes) {
  const DescriptorC copy(open(copy_.c_str(), O_WRONLY | O_CLOEXEC));
  if (copy.Get() < 0 || !WriteAt(copy.Get(), offset, bytes)) {
    Fail(fmt::format("cannot write {}", copy_));
  }
}

void FileReplacementC::Verify(std::uint64_t offset, std::span<const std::uint8_t> bytes) const {
  const DescriptorC file(open(file_.c_str(), O_RDONLY | O_CLOEXEC));
  const DescriptorC copy(open(copy_.c_str(), O_RDONLY | O_CLOEXEC));
  std::vector<std::uint8_t> expected(kBlock);
  std::vector<std::uint8_t> found(kBlock);
  for (std::uint64_t at = 0;;) {
    const ssize_t expectedCount = ReadAt(file.Get(), at, expected);
    const ssize_t foundCount = ReadAt(copy.Get(), at, found);
    if (expectedCount < 0 || foundCount < 0) Fail(fmt::format("cannot read {} back", copy_));
    const auto count = static_cast<std::size_t>(expectedCount);
    const std::uint64_t end = at + count;
    const std::uint64_t first = std::max(at, offset);
    const std::uint64_t last = std::min<std::uint64_t>(end, offset + bytes.size());
    if (first < last) {
      const auto patch = bytes.subspan(static_cast<std::size_t>(first - offset),
                                       static_cast<std::size_t>(last - first));
      std::copy(patch.begin(), patch.end(),
                expected.begin() + static_cast<std::ptrdiff_t>(first - at));
    }
    if (foundCount != expectedCount ||
        !std::equal(expected.begin(), expected.begin() + expectedCount, found.begin())) {
      throw ToolErrorC(ExitCode::kFileError,
                       fmt::format("{} does not read back as written (or the file changed in the "
                                   "meantime); {} is as it was",
                                   copy_, file_.string()));
    }
    if (count < kBlock) return;
    at = end;
  }
}

void FileReplacementC::Commit(std::uint64_t offset, std::span<const std::uint8_t> bytes) {
  {
    const DescriptorC copy(open(copy_.c_str(), O_RDONLY | O_CLOEXEC));
    if (copy.Get() < 0 || fsync(copy.Get()) != 0) Fail(fmt::format("cannot write {}", copy_));
  }
  Verify(offset, bytes);
  if (std::rename(copy_.c_str(), file_.c_str()) != 0) {
    Fail(fmt::format("cannot replace {}", file_.string()));
  }
  copy_.clear();
  const DescriptorC directory(open(file_.parent_path().c_str(), O_RDONLY | O_CLOEXEC));
  if (directory.Get() < 0 || fsync(directory.Get()) != 0) {
    throw ToolErrorC(ExitCode::kFileError,
                     fmt::format("{} is replaced, but its folder could not be brought to the disk: "
                                 "{}",
                                 file_.string(), std::strerror(errno)));
  }
}

}  // namespace Tool
