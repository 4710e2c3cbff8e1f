#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <random>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <platform/descriptor.h>
#include <platform/file_attributes.h>
#include <platform/file_pair.h>

namespace Tool {
namespace {

namespace fs = std::filesystem;

// Names of copies. They are short, because the name of the original may have the maximal length.
constexpr std::string_view kCopyPrefix = ".surveydata.";
constexpr std::string_view kCopyRandom = "XXXXXX";  // which mkostemp(3) replaces by these letters
constexpr std::string_view kCopyLetters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";

bool IsSameFile(const struct stat& a, const struct stat& b) {
  return a.st_ino == b.st_ino && a.st_dev == b.st_dev;
}

// Fills `bytes` from `offset` on; fewer bytes only at the end of the file, negative on failure.
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

// The first stretch at or after `offset` that is not a hole, of a file of this size.
FileStretch FindData(int file, std::uint64_t offset, std::uint64_t size) {
  if (offset >= size) return {size, size};
#if defined(SEEK_DATA) && defined(SEEK_HOLE)
  const off_t begin = lseek(file, static_cast<off_t>(offset), SEEK_DATA);
  if (begin < 0) return {errno == ENXIO ? size : offset, size};  // ENXIO: a hole up to the end
  const off_t end = lseek(file, begin, SEEK_HOLE);
  const auto first = std::min(static_cast<std::uint64_t>(begin), size);
  return {first, end < begin ? size : std::min(static_cast<std::uint64_t>(end), size)};
#else
  return {offset, size};
#endif
}

// A file without a name, which can get one later.
DescriptorC OpenWithoutName(const fs::path& folder) {
  DescriptorC file;
#if defined(O_TMPFILE)
  file = DescriptorC(open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, S_IRUSR | S_IWUSR));
  struct stat status {};
  struct stat linked {};
  // It is named through /proc, which may be missing.
  const bool canBeNamed = file.IsOpen() && fstat(file.Get(), &status) == 0 &&
                          stat(fmt::format("/proc/self/fd/{}", file.Get()).c_str(), &linked) == 0 &&
                          IsSameFile(status, linked);
  if (!canBeNamed) file = DescriptorC();
#endif
  return file;
}

bool HasCopyName(std::string_view name) {
  return name.size() == kCopyPrefix.size() + kCopyRandom.size() && name.starts_with(kCopyPrefix) &&
         name.find_first_not_of(kCopyLetters, kCopyPrefix.size()) == std::string_view::npos;
}

// Removes the file if it is certainly a copy that a killed program has left: a regular file of one
// of these users that is not locked. All other files stay.
void RemoveIfStale(const fs::path& path, uid_t owner) {
  const DescriptorC file(open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  struct stat status {};
  if (!file.IsOpen() || fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return;
  const uid_t user = geteuid();
  // A copy created by root gets the owner of the original before it replaces it.
  if (status.st_uid != user && !(user == 0 && status.st_uid == owner)) return;
  if (flock(file.Get(), LOCK_EX | LOCK_NB) != 0) return;
  struct stat now {};
  if (lstat(path.c_str(), &now) == 0 && IsSameFile(status, now)) unlink(path.c_str());
}

void RemoveStaleCopies(const fs::path& folder, uid_t owner) {
  std::error_code ignored;
  for (fs::directory_iterator entry(folder, ignored), end; !ignored && entry != end;
       entry.increment(ignored)) {
    if (HasCopyName(entry->path().filename().native())) RemoveIfStale(entry->path(), owner);
  }
}

}  // namespace

struct OriginalFileC::Platform {
  // Whether the path leads to another file by now.
  bool IsReplaced() const {
    struct stat now {};
    return stat(path.c_str(), &now) != 0 || !IsSameFile(now, status);
  }

  fs::path path;
  DescriptorC file;
  struct stat status {};  // when it was locked
};

OriginalFileC::OriginalFileC(const std::string& file)
    : name_(file), platform_(std::make_unique<Platform>()) {
  Platform& own = *platform_;
  // Repeated until the locked file is the one that the path leads to: another program may have
  // replaced it between opening and locking.
  do {
    std::error_code error;
    own.path = fs::canonical(file, error);
    if (error) {
      throw FileErrorC(fmt::format("cannot read {}: {}", file, error.message()));
    }
    name_ = own.path.string();
    // Network file systems lock only files that are open for writing.
    const int mode = access(own.path.c_str(), W_OK) == 0 ? O_RDWR : O_RDONLY;
    own.file = DescriptorC(open(own.path.c_str(), mode | O_NONBLOCK | O_CLOEXEC));
    if (!own.file.IsOpen() && mode == O_RDWR) {  // a folder, for example
      own.file = DescriptorC(open(own.path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    }
    if (!own.file.IsOpen() || fstat(own.file.Get(), &own.status) != 0) {
      Fail(fmt::format("cannot read {}", name_));
    }
    if (!S_ISREG(own.status.st_mode)) {
      Refuse(fmt::format("cannot read {}: not a regular file", name_));
    }
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
  const int error = errno;
  Refuse(fmt::format("{}: {}", what, std::strerror(error)));
}

std::size_t OriginalFileC::Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
  const ssize_t count = ReadAt(platform_->file.Get(), offset, bytes);
  if (count < 0) Fail(fmt::format("cannot read {}", name_));
  return static_cast<std::size_t>(count);
}

FileStretch OriginalFileC::NextData(std::uint64_t offset) const {
  return FindData(platform_->file.Get(), offset, size_);
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
  DescriptorC file;
  bool isNamed = false;  // and has not yet replaced the original

  // Opens a file without a name and locks it, so that it is locked when it gets one.
  bool OpenUnnamed(const fs::path& folder) {
    file = OpenWithoutName(folder);
    return file.IsOpen() && flock(file.Get(), LOCK_EX | LOCK_NB) == 0;
  }

  // Opens a new file with this name, whose last characters are replaced, and locks it.
  bool OpenNamed(std::string& name) {
    const std::string pattern = name;
    // Repeated if another program took it for a stale copy before it was locked.
    for (;;) {
      name = pattern;
      file = DescriptorC(mkostemp(name.data(), O_CLOEXEC));
      if (!file.IsOpen()) return false;
      isNamed = true;
      struct stat status {};
      if (flock(file.Get(), LOCK_EX | LOCK_NB) == 0) {
        struct stat now {};
        if (fstat(file.Get(), &status) != 0) return false;
        if (stat(name.c_str(), &now) == 0) {
          if (IsSameFile(status, now)) return true;
        } else if (errno != ENOENT) {
          return false;
        }
      } else if (errno != EWOULDBLOCK) {
        return false;
      }
      isNamed = false;
    }
  }

  // Gives the unnamed file this name, whose last characters are replaced.
  bool Name(std::string& name) {
    const std::string own = fmt::format("/proc/self/fd/{}", file.Get());
    std::random_device random;
    do {
      for (auto c = name.end() - std::ssize(kCopyRandom); c != name.end(); ++c) {
        *c = kCopyLetters[random() % kCopyLetters.size()];
      }
      isNamed = linkat(AT_FDCWD, own.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
    } while (!isNamed && errno == EEXIST);
    return isNamed;
  }
};

CopiedFileC::CopiedFileC(OriginalFileC& original)
    : original_(original), platform_(std::make_unique<Platform>()) {
  const fs::path folder = original.platform_->path.parent_path();
  RemoveStaleCopies(folder, original.platform_->status.st_uid);
  name_ = (folder / fmt::format("{}{}", kCopyPrefix, kCopyRandom)).string();
  if (platform_->OpenUnnamed(folder) || platform_->OpenNamed(name_)) return;
  const int error = errno;
  if (platform_->isNamed) unlink(name_.c_str());  // no destructor runs
  errno = error;
  original_.Fail(fmt::format("cannot write a copy into the folder of {}", original_.GetName()));
}

CopiedFileC::~CopiedFileC() {
  if (platform_->isNamed) unlink(name_.c_str());
}

std::size_t CopiedFileC::Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
  const ssize_t count = ReadAt(platform_->file.Get(), offset, bytes);
  if (count < 0)
    original_.Fail(fmt::format("cannot read the copy of {} back", original_.GetName()));
  return static_cast<std::size_t>(count);
}

FileStretch CopiedFileC::NextData(std::uint64_t offset) const {
  return FindData(platform_->file.Get(), offset, original_.GetSize());
}

void CopiedFileC::SetSize(std::uint64_t size) {
  if (ftruncate(platform_->file.Get(), static_cast<off_t>(size)) != 0) {
    original_.Fail(fmt::format("cannot write the copy of {}", original_.GetName()));
  }
}

void CopiedFileC::Write(std::uint64_t offset, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t count =
        pwrite(platform_->file.Get(), bytes.data(), bytes.size(), static_cast<off_t>(offset));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) {
      original_.Fail(fmt::format("cannot write the copy of {}", original_.GetName()));
    }
    offset += static_cast<std::uint64_t>(count);
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
}

void CopiedFileC::KeepAccess() {
  constexpr auto kSameOwner = static_cast<uid_t>(-1);
  const int file = platform_->file.Get();
  const struct stat& status = original_.platform_->status;
  const auto fail = [&](const std::string& what) {
    original_.Fail(fmt::format("cannot give the copy {} of {}", what, original_.GetName()));
  };
  // The group decides who else may use the file. Only root may give a file to another owner.
  const bool isOwnerKept = fchown(file, status.st_uid, status.st_gid) == 0;
  if (!isOwnerKept && (errno != EPERM || fchown(file, kSameOwner, status.st_gid) != 0)) {
    fail("the group");
  }
  if (!isOwnerKept && (status.st_mode & S_ISUID) != 0) {
    errno = EPERM;  // the file would run with the rights of another user
    fail("the owner, as its set-user-ID bit requires,");
  }
  // If there is an access control list, the group bits of the permissions are its mask, so they are
  // set after it.
  const std::string attribute = CopyAttributes(original_.platform_->file.Get(), file);
  if (!attribute.empty()) fail(fmt::format("the attribute {}", attribute));
  if (fchmod(file, status.st_mode & 07777) != 0) fail("the permissions");
}

void CopiedFileC::Flush() {
  if (fsync(platform_->file.Get()) != 0) {
    original_.Fail(fmt::format("cannot write the copy of {}", original_.GetName()));
  }
}

void CopiedFileC::TakePlace() {
  const fs::path& path = original_.platform_->path;
  if (!platform_->isNamed && !platform_->Name(name_)) {
    original_.Fail(fmt::format("cannot name the copy of {}", original_.GetName()));
  }
  if (std::rename(name_.c_str(), path.c_str()) != 0) {
    original_.Fail(fmt::format("cannot replace {}", original_.GetName()));
  }
  platform_->isNamed = false;
  const DescriptorC folder(open(path.parent_path().c_str(), O_RDONLY | O_CLOEXEC));
  // Some file systems have nothing to do for a folder and report that as an error.
  if ((!folder.IsOpen() || fsync(folder.Get()) != 0) && errno != EINVAL && errno != ENOTSUP) {
    const int error = errno;
    throw FileErrorC(
        fmt::format("{} is replaced, but its folder could not be brought to the disk: "
                    "{}",
                    original_.GetName(), std::strerror(error)));
  }
}

namespace {

// The signals that end a program by default, except those raised by faults.
sigset_t EndingSignals() {
  sigset_t set;
  sigfillset(&set);
  for (const int signal : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGTRAP, SIGSYS,  // faults
                           SIGCHLD, SIGCONT, SIGURG, SIGSTOP, SIGTSTP, SIGTTIN, SIGTTOU}) {
    sigdelset(&set, signal);
  }
#if defined(SIGWINCH)
  sigdelset(&set, SIGWINCH);
#endif
  return set;
}

template <class Visit>
void ForEachSignal(const sigset_t& set, const Visit& visit) {
  for (int signal = 1; signal < NSIG; ++signal) {
    if (sigismember(&set, signal) == 1) visit(signal);
  }
}

}  // namespace

struct HeldSignalsC::Platform {
  sigset_t held;
  sigset_t before;
};

HeldSignalsC::HeldSignalsC() : platform_(std::make_unique<Platform>()) {
  platform_->held = EndingSignals();
  ForEachSignal(EndingSignals(), [&](int signal) {
    struct sigaction action {};
    const bool isIgnored = sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
    if (isIgnored) sigdelset(&platform_->held, signal);
  });
  sigprocmask(SIG_BLOCK, &platform_->held, &platform_->before);
}

HeldSignalsC::~HeldSignalsC() { sigprocmask(SIG_SETMASK, &platform_->before, nullptr); }

bool HeldSignalsC::IsAnyPending() const {
  sigset_t pending;
  sigpending(&pending);
  bool isAny = false;
  ForEachSignal(platform_->held,
                [&](int signal) { isAny = isAny || sigismember(&pending, signal) == 1; });
  return isAny;
}

}  // namespace Tool
