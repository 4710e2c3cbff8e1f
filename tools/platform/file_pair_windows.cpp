#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include <aclapi.h>
#include <fmt/format.h>
#include <windows.h>

#include <platform/file_pair.h>
#include <platform/platform.h>

namespace Tool {
namespace {

// A handle that is closed by the destructor.
class HandleC {
 public:
  explicit HandleC(HANDLE handle = INVALID_HANDLE_VALUE) : handle_(handle) {}
  HandleC(const HandleC&) = delete;
  HandleC& operator=(const HandleC&) = delete;
  HandleC& operator=(HandleC&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~HandleC() { Close(); }

  HANDLE Get() const { return handle_; }
  bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
  void Close() {
    if (IsOpen()) CloseHandle(std::exchange(handle_, INVALID_HANDLE_VALUE));
  }

 private:
  HANDLE handle_;
};

OVERLAPPED At(std::uint64_t offset) {
  OVERLAPPED at{};
  at.Offset = static_cast<DWORD>(offset);
  at.OffsetHigh = static_cast<DWORD>(offset >> 32);
  return at;
}

DWORD AtMost(std::size_t size) {
  return static_cast<DWORD>(std::min<std::size_t>(size, std::numeric_limits<DWORD>::max()));
}

// Fills `bytes`, starting at `offset`; fewer bytes only at the end of the file, empty on failure.
std::optional<std::size_t> ReadAt(HANDLE file, std::uint64_t offset,
                                  std::span<std::uint8_t> bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    OVERLAPPED at = At(offset + done);
    DWORD count = 0;
    if (ReadFile(file, &bytes[done], AtMost(bytes.size() - done), &count, &at) == 0) {
      if (GetLastError() != ERROR_HANDLE_EOF) return std::nullopt;
      break;
    }
    if (count == 0) break;
    done += count;
  }
  return done;
}

// Removes the prefix of literal paths.
std::string ForMessages(const std::filesystem::path& path) {
  constexpr std::wstring_view kLiteral = L"\\\\?\\";
  const std::wstring& name = path.native();
  return name.starts_with(kLiteral) ? path.string().substr(kLiteral.size()) : path.string();
}

// The path of an open file, with all links resolved. Empty on failure.
std::filesystem::path PathOf(HANDLE file) {
  std::wstring path(GetFinalPathNameByHandleW(file, nullptr, 0, FILE_NAME_NORMALIZED), L'\0');
  const DWORD size = GetFinalPathNameByHandleW(file, path.data(), static_cast<DWORD>(path.size()),
                                               FILE_NAME_NORMALIZED);
  path.resize(size < path.size() ? size : 0);
  return path;
}

bool HasAccessLists(HANDLE file) {
  DWORD flags = 0;
  return GetVolumeInformationByHandleW(file, nullptr, 0, nullptr, nullptr, &flags, nullptr, 0) !=
             0 &&
         (flags & FILE_PERSISTENT_ACLS) != 0;
}

}  // namespace

struct OriginalFileC::Platform {
  std::filesystem::path path;
  HandleC file;
  bool isWritable = true;
  BY_HANDLE_FILE_INFORMATION status{};  // when it was locked
};

OriginalFileC::OriginalFileC(const std::string& file)
    : name_(file), platform_(std::make_unique<Platform>()) {
  Platform& own = *platform_;
  // The lock: as long as the file is open here, no other program can open it for writing, rename or
  // delete it.
  const auto openFor = [&](DWORD access) {
    own.file = HandleC(CreateFileW(ToPath(file).c_str(), access, FILE_SHARE_READ, nullptr,
                                   OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    return own.file.IsOpen();
  };
  if (!openFor(GENERIC_READ | GENERIC_WRITE) && GetLastError() == ERROR_ACCESS_DENIED) {
    own.isWritable = false;
    openFor(GENERIC_READ);
  }
  if (!own.file.IsOpen()) {
    if (GetLastError() == ERROR_SHARING_VIOLATION) Refuse("another program has locked the file");
    Fail(fmt::format("cannot read {}", file));
  }
  if (GetFileType(own.file.Get()) != FILE_TYPE_DISK) {
    Refuse(fmt::format("cannot read {}: not a regular file", file));
  }
  own.path = PathOf(own.file.Get());
  if (own.path.empty() || GetFileInformationByHandle(own.file.Get(), &own.status) == 0) {
    Fail(fmt::format("cannot read {}", file));
  }
  if ((own.status.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0) own.isWritable = false;
  name_ = ForMessages(own.path);
  size_ = std::uint64_t{own.status.nFileSizeHigh} << 32 | own.status.nFileSizeLow;
}

OriginalFileC::~OriginalFileC() = default;

void OriginalFileC::Fail(const std::string& what) const {
  const auto error = static_cast<int>(GetLastError());
  Refuse(fmt::format("{}: {}", what, std::system_category().message(error)));
}

std::size_t OriginalFileC::Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
  const auto count = ReadAt(platform_->file.Get(), offset, bytes);
  if (!count) Fail(fmt::format("cannot read {}", name_));
  return *count;
}

// Holes are written as zeros here.
FileStretch OriginalFileC::NextData(std::uint64_t offset) const {
  return {std::min(offset, size_), size_};
}

void OriginalFileC::RequireWritable() const {
  if (!platform_->isWritable) Refuse(fmt::format("cannot write {}: access is denied", name_));
}

// Other machines may write to a file on a network share.
bool OriginalFileC::IsChanged() const {
  const BY_HANDLE_FILE_INFORMATION& before = platform_->status;
  BY_HANDLE_FILE_INFORMATION now{};
  return GetFileInformationByHandle(platform_->file.Get(), &now) == 0 ||
         now.nFileSizeHigh != before.nFileSizeHigh || now.nFileSizeLow != before.nFileSizeLow ||
         CompareFileTime(&now.ftLastWriteTime, &before.ftLastWriteTime) != 0;
}

struct CopiedFileC::Platform {
  std::filesystem::path path;
  HandleC file;
  bool isThere = false;
};

CopiedFileC::CopiedFileC(OriginalFileC& original)
    : original_(original), platform_(std::make_unique<Platform>()) {
  Platform& own = *platform_;
  const std::filesystem::path folder = original.platform_->path.parent_path();
  for (DWORD number = GetCurrentProcessId(); !own.file.IsOpen(); ++number) {
    // A short name, because that of the original may have the maximal length.
    own.path = folder / fmt::format(".surveydata.{:08x}", number);
    own.file = HandleC(CreateFileW(own.path.c_str(), GENERIC_READ | GENERIC_WRITE | WRITE_DAC, 0,
                                   nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!own.file.IsOpen() && GetLastError() != ERROR_FILE_EXISTS) {
      original_.Fail(fmt::format("cannot write a copy into the folder of {}", original_.GetName()));
    }
  }
  own.isThere = true;
  name_ = ForMessages(own.path);
}

CopiedFileC::~CopiedFileC() {
  platform_->file.Close();
  if (platform_->isThere) DeleteFileW(platform_->path.c_str());
}

std::size_t CopiedFileC::Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
  const auto count = ReadAt(platform_->file.Get(), offset, bytes);
  if (!count) original_.Fail(fmt::format("cannot read {} back", name_));
  return *count;
}

FileStretch CopiedFileC::NextData(std::uint64_t offset) const { return original_.NextData(offset); }

void CopiedFileC::SetSize(std::uint64_t size) {
  FILE_END_OF_FILE_INFO info{};
  info.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
  if (SetFileInformationByHandle(platform_->file.Get(), FileEndOfFileInfo, &info, sizeof(info)) ==
      0) {
    original_.Fail(fmt::format("cannot write {}", name_));
  }
}

void CopiedFileC::Write(std::uint64_t offset, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    OVERLAPPED at = At(offset);
    DWORD count = 0;
    if (WriteFile(platform_->file.Get(), bytes.data(), AtMost(bytes.size()), &count, &at) == 0) {
      original_.Fail(fmt::format("cannot write {}", name_));
    }
    offset += count;
    bytes = bytes.subspan(count);
  }
}

void CopiedFileC::KeepAccess() {
  const HANDLE from = original_.platform_->file.Get();
  const HANDLE to = platform_->file.Get();
  const BY_HANDLE_FILE_INFORMATION& status = original_.platform_->status;
  constexpr DWORD kKept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE |
                          FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
  FILE_BASIC_INFO info{};  // members that are 0 leave the attribute unchanged
  info.CreationTime.LowPart = status.ftCreationTime.dwLowDateTime;
  info.CreationTime.HighPart = static_cast<LONG>(status.ftCreationTime.dwHighDateTime);
  info.FileAttributes = status.dwFileAttributes & kKept;
  if (SetFileInformationByHandle(to, FileBasicInfo, &info, sizeof(info)) == 0) {
    original_.Fail(fmt::format("cannot give the copy the attributes of {}", original_.GetName()));
  }
  if (!HasAccessLists(from)) return;
  PACL list = nullptr;
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  SECURITY_DESCRIPTOR_CONTROL control = 0;
  DWORD revision = 0;
  DWORD error = GetSecurityInfo(from, SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr,
                                &list, nullptr, &descriptor);
  if (error == ERROR_SUCCESS) {
    GetSecurityDescriptorControl(descriptor, &control, &revision);
    // Whether the list inherits entries from the folder.
    const DWORD inheritance = (control & SE_DACL_PROTECTED) != 0
                                  ? PROTECTED_DACL_SECURITY_INFORMATION
                                  : UNPROTECTED_DACL_SECURITY_INFORMATION;
    error = SetSecurityInfo(to, SE_FILE_OBJECT, DACL_SECURITY_INFORMATION | inheritance, nullptr,
                            nullptr, list, nullptr);
    LocalFree(descriptor);
  }
  if (error != ERROR_SUCCESS) {
    SetLastError(error);
    original_.Fail(fmt::format("cannot give the copy the permissions of {}", original_.GetName()));
  }
}

void CopiedFileC::Flush() {
  if (FlushFileBuffers(platform_->file.Get()) == 0) {
    original_.Fail(fmt::format("cannot write {}", name_));
  }
}

// Only a file that no program has open can be replaced: this fails if another one opens it after it
// is closed here.
void CopiedFileC::TakePlace() {
  platform_->file.Close();
  original_.platform_->file.Close();
  if (MoveFileExW(platform_->path.c_str(), original_.platform_->path.c_str(),
                  MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) == 0) {
    original_.Fail(fmt::format("cannot replace {}", original_.GetName()));
  }
  platform_->isThere = false;
}

// Windows calls the handler in a separate thread, without an argument of the program.
struct HeldSignalsC::Platform {
  static BOOL WINAPI Hold(DWORD kind) {
    isPending = true;
    // Windows ends the program when this returns for these events, so wait until the copy has been
    // removed.
    if (kind != CTRL_C_EVENT && kind != CTRL_BREAK_EVENT) WaitForSingleObject(isOver, INFINITE);
    return TRUE;
  }

  static inline std::atomic<bool> isPending = false;
  static inline const HANDLE isOver = CreateEventW(nullptr, TRUE, FALSE, nullptr);
};

HeldSignalsC::HeldSignalsC() {
  Platform::isPending = false;
  ResetEvent(Platform::isOver);
  SetConsoleCtrlHandler(&Platform::Hold, TRUE);
}

HeldSignalsC::~HeldSignalsC() {
  SetConsoleCtrlHandler(&Platform::Hold, FALSE);
  SetEvent(Platform::isOver);
  if (Platform::isPending) std::exit(static_cast<int>(STATUS_CONTROL_C_EXIT));
}

bool HeldSignalsC::IsAnyPending() const { return Platform::isPending; }

}  // namespace Tool
