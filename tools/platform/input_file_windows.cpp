#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <limits>
#include <system_error>

#include <fmt/format.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

#include <platform/file_error.h>
#include <platform/input_file.h>
#include <platform/platform.h>

namespace Tool {

bool IsStandardInput(const std::string& name) { return name == "-" || name == "/dev/stdin"; }

bool IsSameRegularFile(const std::string& output, const std::string& input) {
  std::error_code ignored;
  return !IsStandardInput(input) &&
         std::filesystem::equivalent(ToPath(output), ToPath(input), ignored);
}

// Asks for the attributes, which are those of the file itself: its size in the folder may be out of
// date while another program writes it. Opens only names without a size, such as links, and missing
// ones, to learn the reason.
std::uint64_t ReadableSize(const std::string& name) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  const bool isFile =
      GetFileAttributesExW(ToPath(name).c_str(), GetFileExInfoStandard, &data) != 0 &&
      (data.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT)) == 0;
  const std::uint64_t size =
      isFile ? std::uint64_t{data.nFileSizeHigh} << 32 | data.nFileSizeLow : 0;
  return size == 0 ? InputFileC(name).GetSize() : size;
}

InputFileC::InputFileC(const std::string& name)
    : name_(IsStandardInput(name) ? "standard input" : name),
      file_(IsStandardInput(name) ? stdin : _wfopen(ToPath(name).c_str(), L"rb")) {
  if (file_ == nullptr) Fail();
  std::setvbuf(file_, nullptr, _IONBF, 0);
  struct _stat64 status {};
  if (_fstat64(_fileno(file_), &status) != 0 || (status.st_mode & _S_IFREG) == 0) return;
  start_ =
      IsStandard() ? static_cast<std::uint64_t>(std::max<__int64>(_telli64(_fileno(file_)), 0)) : 0;
  size_ = FindSize();
}

std::uint64_t InputFileC::FindSize() const {
  struct _stat64 status {};
  if (_fstat64(_fileno(file_), &status) != 0 || (status.st_mode & _S_IFREG) == 0) return 0;
  const auto end = static_cast<std::uint64_t>(status.st_size);
  return end > start_ ? end - start_ : 0;
}

InputFileC::~InputFileC() {
  if (file_ != nullptr && !IsStandard()) std::fclose(file_);
}

std::size_t InputFileC::Read(std::span<char> to) {
  const auto wanted =
      static_cast<unsigned>(std::min<std::size_t>(to.size(), std::numeric_limits<int>::max()));
  const int count = _read(_fileno(file_), to.data(), wanted);
  if (count < 0) Fail();
  return static_cast<std::size_t>(count);
}

std::ptrdiff_t InputFileC::ReadAt(std::uint64_t offset, std::span<std::uint8_t> to) {
  const auto wanted =
      static_cast<DWORD>(std::min<std::size_t>(to.size(), std::numeric_limits<int>::max()));
  const std::uint64_t from = start_ + offset;
  OVERLAPPED place{};  // one call, so that threads cannot move the position between two
  place.Offset = static_cast<DWORD>(from);
  place.OffsetHigh = static_cast<DWORD>(from >> 32);
  DWORD count = 0;
  const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file_)));
  if (ReadFile(handle, to.data(), wanted, &count, &place) != 0) return count;
  const auto error = static_cast<int>(GetLastError());
  if (error == ERROR_HANDLE_EOF) return 0;
  const auto condition = std::system_category().default_error_condition(error);
  error_ = condition.category() == std::generic_category() ? condition.value() : EIO;
  return -1;
}

void InputFileC::Fail() const {
  const int failed = error_;
  const int error = failed != 0 ? failed : errno;
  throw FileErrorC(fmt::format("cannot read {}: {}", name_, std::strerror(error)));
}

}  // namespace Tool
