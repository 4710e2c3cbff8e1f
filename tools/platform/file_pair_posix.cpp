#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <platform/file_pair.h>

namespace Tool {
namespace {

// A file descriptor that is closed on every way out.
class DescriptorC {
 public:
  explicit DescriptorC(int descriptor = -1) : descriptor_(descriptor) {}
  DescriptorC(const DescriptorC&) = delete;
  DescriptorC& operator=(const DescriptorC&) = delete;
  DescriptorC& operator=(DescriptorC&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~DescriptorC() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  int Get() const { return descriptor_; }

 private:
  int descriptor_;
};

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

}  // namespace

struct OriginalFileC::Platform {
  // Whether the path names another file by now.
  bool IsReplaced() const {
    struct stat now {};
    return stat(path.c_str(), &now) != 0 || now.st_ino != status.st_ino ||
           now.st_dev != status.st_dev;
  }

  std::filesystem::path path;
  DescriptorC file;
  struct stat status {};  // when it was locked
};

OriginalFileC::OriginalFileC(const std::string& file)
    : name_(file), platform_(std::make_unique<Platform>()) {
  Platform& own = *platform_;
  // Until the lock is on what the path names, not on a file that another one replaced just then.
  do {
    std::error_code error;
    own.path = std::filesystem::canonical(file, error);
    if (error) {
      throw FileErrorC(fmt::format("cannot read {}: {}", file, error.message()));
    }
    name_ = own.path.string();
    // Network file systems lock only what is open for writing.
    const int mode = access(own.path.c_str(), W_OK) == 0 ? O_RDWR : O_RDONLY;
    own.file = DescriptorC(open(own.path.c_str(), mode | O_NONBLOCK | O_CLOEXEC));
    if (own.file.Get() < 0 && mode == O_RDWR) {  // a folder, say
      own.file = DescriptorC(open(own.path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    }
    if (own.file.Get() < 0 || fstat(own.file.Get(), &own.status) != 0) {
      Fail(fmt::format("cannot read {}", name_));
    }
    if (!S_ISREG(own.status.st_mode)) Refuse(fmt::format("cannot read {}: no regular file", name_));
    if (flock(own.file.Get(), LOCK_EX | LOCK_NB) != 0) {
      if (errno == EWOULDBLOCK) Refuse("another program has locked the file");
      Fail(fmt::format("cannot lock {}", name_));
    }
  } while (own.IsReplaced());
  if (fstat(own.file.Get(), &own.status) != 0) Fail(fmt::format("cannot read {}", name_));
  size_ = static_cast<std::uint64_t>(own.status.st_size);
}

OriginalFileC::~OriginalFileC() = default;

void OriginalFileC::Fail(const std::string& what) const {
  Refuse(fmt::format("{}: {}", what, std::strerror(errno)));
}

std::size_t OriginalFileC::Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
  const ssize_t count = ReadAt(platform_->file.Get(), offset, bytes);
  if (count < 0) Fail(fmt::format("cannot read {}", name_));
  return static_cast<std::size_t>(count);
}

void OriginalFileC::RequireWritable() const {
  if (access(platform_->path.c_str(), W_OK) != 0) Fail(fmt::format("cannot write {}", name_));
}

bool OriginalFileC::IsChanged() const {
  const struct stat& before = platform_->status;
  struct stat now {};
  return platform_->IsReplaced() || fstat(platform_->file.Get(), &now) != 0 ||
         now.st_size != before.st_size || now.st_mtim.tv_sec != before.st_mtim.tv_sec ||
         now.st_mtim.tv_nsec != before.st_mtim.tv_nsec;
}

struct CopiedFileC::Platform {
  explicit Platform(std::string& name)
      : file(mkostemp(name.data(), O_CLOEXEC)), isThere(file.Get() >= 0) {}

  DescriptorC file;
  bool isThere;
};

CopiedFileC::CopiedFileC(OriginalFileC& original)
    : original_(original),
      // A short name: that of the original may be as long as a name can be.
      name_((original.platform_->path.parent_path() / ".surveydata.XXXXXX").string()),
      platform_(std::make_unique<Platform>(name_)) {
  if (!platform_->isThere) {
    original_.Fail(fmt::format("cannot write a copy beside {}", original_.GetName()));
  }
}

CopiedFileC::~CopiedFileC() {
  if (platform_->isThere) unlink(name_.c_str());
}

std::size_t CopiedFileC::Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
  const ssize_t count = ReadAt(platform_->file.Get(), offset, bytes);
  if (count < 0) original_.Fail(fmt::format("cannot read {} back", name_));
  return static_cast<std::size_t>(count);
}

void CopiedFileC::Write(std::uint64_t offset, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t count =
        pwrite(platform_->file.Get(), bytes.data(), bytes.size(), static_cast<off_t>(offset));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) original_.Fail(fmt::format("cannot write {}", name_));
    offset += static_cast<std::uint64_t>(count);
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
}

void CopiedFileC::KeepOwnerAndMode() {
  constexpr auto kSameOwner = static_cast<uid_t>(-1);
  const int file = platform_->file.Get();
  const struct stat& status = original_.platform_->status;
  // The group decides who else may use the file; the owner can be kept by root alone.
  if (fchown(file, status.st_uid, status.st_gid) != 0 &&
      (errno != EPERM || fchown(file, kSameOwner, status.st_gid) != 0)) {
    original_.Fail(fmt::format("cannot give the copy the group of {}", original_.GetName()));
  }
  if (fchmod(file, status.st_mode & 07777) != 0) {
    original_.Fail(fmt::format("cannot give the copy the permissions of {}", original_.GetName()));
  }
}

void CopiedFileC::Flush() {
  if (fsync(platform_->file.Get()) != 0) original_.Fail(fmt::format("cannot write {}", name_));
}

void CopiedFileC::TakePlace() {
  const std::filesystem::path& path = original_.platform_->path;
  if (std::rename(name_.c_str(), path.c_str()) != 0) {
    original_.Fail(fmt::format("cannot replace {}", original_.GetName()));
  }
  platform_->isThere = false;
  const DescriptorC folder(open(path.parent_path().c_str(), O_RDONLY | O_CLOEXEC));
  // Some file systems have nothing to do for a folder and say so.
  if ((folder.Get() < 0 || fsync(folder.Get()) != 0) && errno != EINVAL && errno != ENOTSUP) {
    throw FileErrorC(
        fmt::format("{} is replaced, but its folder could not be brought to the disk: "
                    "{}",
                    original_.GetName(), std::strerror(errno)));
  }
}

struct HeldSignalsC::Platform {
  static constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

  sigset_t held;
  sigset_t before;
};

HeldSignalsC::HeldSignalsC() : platform_(std::make_unique<Platform>()) {
  sigemptyset(&platform_->held);
  for (const int signal : Platform::kSignals) {
    struct sigaction action {};
    const bool isIgnored = sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
    if (!isIgnored) sigaddset(&platform_->held, signal);
  }
  sigprocmask(SIG_BLOCK, &platform_->held, &platform_->before);
}

HeldSignalsC::~HeldSignalsC() { sigprocmask(SIG_SETMASK, &platform_->before, nullptr); }

bool HeldSignalsC::IsAnyPending() const {
  sigset_t pending;
  sigpending(&pending);
  return std::any_of(std::begin(Platform::kSignals), std::end(Platform::kSignals), [&](int signal) {
    return sigismember(&platform_->held, signal) == 1 && sigismember(&pending, signal) == 1;
  });
}

}  // namespace Tool
