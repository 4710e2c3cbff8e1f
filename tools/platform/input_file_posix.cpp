#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <platform/file_error.h>
#include <platform/input_file.h>

namespace Tool {

bool IsStandardInput(const std::string& name) {
  return name == "-" || name == "/dev/stdin" || name == "/dev/fd/0" || name == "/proc/self/fd/0";
}

bool IsSameRegularFile(const std::string& output, const std::string& input) {
  struct stat one {};
  struct stat other {};
  const bool areThere =
      stat(output.c_str(), &one) == 0 &&
      (IsStandardInput(input) ? fstat(STDIN_FILENO, &other) : stat(input.c_str(), &other)) == 0;
  return areThere && S_ISREG(one.st_mode) && one.st_ino == other.st_ino &&
         one.st_dev == other.st_dev;
}

std::uint64_t ReadableSize(const std::string& name) {
  struct stat status {};
  if (stat(name.c_str(), &status) != 0 ||
      faccessat(AT_FDCWD, name.c_str(), R_OK, AT_EACCESS) != 0) {
    throw FileErrorC(fmt::format("cannot read {}: {}", name, std::strerror(errno)));
  }
  return S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : 0;
}

InputFileC::InputFileC(const std::string& name)
    : name_(IsStandardInput(name) ? "standard input" : name),
      file_(IsStandardInput(name) ? stdin : std::fopen(name.c_str(), "rb")) {
  if (file_ == nullptr) Fail();
  std::setvbuf(file_, nullptr, _IONBF, 0);
  struct stat status {};
  if (fstat(fileno(file_), &status) != 0 || !S_ISREG(status.st_mode)) return;
  const off_t start = IsStandard() ? lseek(fileno(file_), 0, SEEK_CUR) : 0;
  start_ = static_cast<std::uint64_t>(std::max<off_t>(start, 0));
  size_ = FindSize();
}

std::uint64_t InputFileC::FindSize() const {
  struct stat status {};
  if (fstat(fileno(file_), &status) != 0 || !S_ISREG(status.st_mode)) return 0;
  const auto end = static_cast<std::uint64_t>(status.st_size);
  return end > start_ ? end - start_ : 0;
}

InputFileC::~InputFileC() {
  if (file_ != nullptr && !IsStandard()) std::fclose(file_);
}

std::size_t InputFileC::Read(std::span<char> to) {
  for (;;) {
    const ssize_t count = read(fileno(file_), to.data(), to.size());
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno != EINTR) Fail();
  }
}

std::ptrdiff_t InputFileC::ReadAt(std::uint64_t offset, std::span<std::uint8_t> to) {
  for (;;) {
    const ssize_t count =
        pread(fileno(file_), to.data(), to.size(), static_cast<off_t>(start_ + offset));
    if (count >= 0) return count;
    if (errno != EINTR) break;
  }
  error_ = errno;
  return -1;
}

void InputFileC::Fail() const {
  const int failed = error_;
  const int error = failed != 0 ? failed : errno;
  throw FileErrorC(fmt::format("cannot read {}: {}", name_, std::strerror(error)));
}

}  // namespace Tool
