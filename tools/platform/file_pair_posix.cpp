#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <system_error>

#include <dirent.h>
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
constexpr std::size_t kCopyRandom = 6;  // the number of random letters that follow
constexpr std::string_view kCopyLetters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";

// The folder is opened once, and all files in it through its descriptor: another user may redirect
// its path at any time. O_PATH needs no read permission for the folder.
#if defined(O_PATH)
constexpr int kOpenFolder = O_PATH | O_DIRECTORY | O_CLOEXEC;
#else
constexpr int kOpenFolder = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
#endif

bool IsSameFile(const struct stat& a, const struct stat& b) {
  return a.st_ino == b.st_ino && a.st_dev == b.st_dev;
}

// Fills `bytes`, starting at `offset`; fewer bytes only at the end of the file, negative on
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

// Whether a file of this folder, which is not a link, is the one with this status.
bool IsInFolder(int folder, const char* name, const struct stat& status) {
  struct stat now {};
  return fstatat(folder, name, &now, AT_SYMLINK_NOFOLLOW) == 0 && IsSameFile(status, now);
}

// The folder itself, to list it or to flush it to the disk.
DescriptorC OpenToRead(int folder) {
  return DescriptorC(openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

// A file without a name, which can get one later.
DescriptorC OpenWithoutName(int folder) {
  DescriptorC file;
#if defined(O_TMPFILE)
  file = DescriptorC(openat(folder, ".", O_TMPFILE | O_RDWR | O_CLOEXEC, S_IRUSR | S_IWUSR));
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

std::string MakeCopyName() {
  std::random_device random;
  std::string name(kCopyPrefix);
  for (std::size_t i = 0; i < kCopyRandom; ++i) {
    name += kCopyLetters[random() % kCopyLetters.size()];
  }
  return name;
}

bool HasCopyName(std::string_view name) {
  return name.size() == kCopyPrefix.size() + kCopyRandom && name.starts_with(kCopyPrefix) &&
         name.find_first_not_of(kCopyLetters, kCopyPrefix.size()) == std::string_view::npos;
}

// Removes the file if it is certainly a copy that a killed program has left: a regular file of one
// of these users that is not locked. All other files stay.
void RemoveIfStale(int folder, const char* name, uid_t owner) {
  const DescriptorC file(openat(folder, name, O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  struct stat status {};
  if (!file.IsOpen() || fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return;
  const uid_t user = geteuid();
  // A copy created by root gets the owner of the original before it replaces it.
  if (status.st_uid != user && !(user == 0 && status.st_uid == owner)) return;
  if (flock(file.Get(), LOCK_EX | LOCK_NB) != 0) return;
  if (IsInFolder(folder, name, status)) unlinkat(folder, name, 0);
}

void RemoveStaleCopies(int folder, uid_t owner) {
  DescriptorC file = OpenToRead(folder);
  const std::unique_ptr<DIR, decltype([](DIR* list) { closedir(list); })> list(
      file.IsOpen() ? fdopendir(file.Get()) : nullptr);
  if (!list) return;
  file.Release();  // belongs to the list now
  while (const dirent* const entry = readdir(list.get())) {
    if (HasCopyName(entry->d_name)) RemoveIfStale(folder, entry->d_name, owner);
  }
}

}  // namespace

struct OriginalFileC::Platform {
  // Whether the path now leads to another file, or the folder has another one of this name.
  bool IsReplaced() const {
    struct stat now {};
    return stat(path.c_str(), &now) != 0 || !IsSameFile(now, status) ||
           !IsInFolder(folder.Get(), name.c_str(), status);
  }
  void Open(int mode) {
    file = DescriptorC(openat(folder.Get(), name.c_str(), mode | O_NONBLOCK | O_CLOEXEC));
  }
  bool IsWritable() const { return faccessat(folder.Get(), name.c_str(), W_OK, 0) == 0; }

  fs::path path;
  DescriptorC folder;
  std::string name;  // in the folder
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
    own.name = own.path.has_filename() ? own.path.filename().string() : ".";
    own.folder = DescriptorC(open(own.path.parent_path().c_str(), kOpenFolder | O_NOFOLLOW));
    if (!own.folder.IsOpen()) Fail(fmt::format("cannot read {}", name_));
    // Network file systems lock only files that are open for writing.
    const int mode = own.IsWritable() ? O_RDWR : O_RDONLY;
    own.Open(mode);
    if (!own.file.IsOpen() && mode == O_RDWR) own.Open(O_RDONLY);  // a folder, for example
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
  if (!platform_->IsWritable()) Fail(fmt::format("cannot write {}", name_));
}

bool OriginalFileC::IsChanged() const {
  const struct stat& before = platform_->status;
  struct stat now {};
  return platform_->IsReplaced() || fstat(platform_->file.Get(), &now) != 0 ||
         now.st_size != before.st_size || now.st_mtim.tv_sec != before.st_mtim.tv_sec ||
         now.st_mtim.tv_nsec != before.st_mtim.tv_nsec;
}

struct CopiedFileC::Platform {
  int folder;  // of the original, which keeps it open
  DescriptorC file = DescriptorC();
  bool isNamed = false;  // and has not yet replaced the original

  // Opens a file without a name and locks it, so that it is locked when it gets one.
  bool OpenUnnamed() {
    file = OpenWithoutName(folder);
    return file.IsOpen() && flock(file.Get(), LOCK_EX | LOCK_NB) == 0;
  }

  // Opens a new file, to which it gives a new name, and locks it.
  bool OpenNamed(std::string& name) {
    // Repeated if the name is taken, or if another program took the file for a stale copy before it
    // was locked.
    for (;;) {
      name = MakeCopyName();
      file = DescriptorC(
          openat(folder, name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
      if (!file.IsOpen() && errno == EEXIST) continue;
      if (!file.IsOpen()) return false;
      isNamed = true;
      struct stat status {};
      if (flock(file.Get(), LOCK_EX | LOCK_NB) == 0) {
        if (fstat(file.Get(), &status) != 0) return false;
        struct stat now {};
        if (fstatat(folder, name.c_str(), &now, AT_SYMLINK_NOFOLLOW) == 0) {
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

  // Gives the unnamed file this new name.
  bool Name(std::string& name) {
    const std::string own = fmt::format("/proc/self/fd/{}", file.Get());
    do {
      name = MakeCopyName();
      isNamed = linkat(AT_FDCWD, own.c_str(), folder, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
    } while (!isNamed && errno == EEXIST);
    return isNamed;
  }
};

CopiedFileC::CopiedFileC(OriginalFileC& original)
    : original_(original),
      platform_(std::make_unique<Platform>(Platform{.folder = original.platform_->folder.Get()})) {
  RemoveStaleCopies(platform_->folder, original.platform_->status.st_uid);
  if (platform_->OpenUnnamed() || platform_->OpenNamed(name_)) return;
  const int error = errno;
  if (platform_->isNamed) unlinkat(platform_->folder, name_.c_str(), 0);  // no destructor runs
  errno = error;
  original_.Fail(fmt::format("cannot write a copy into the folder of {}", original_.GetName()));
}

CopiedFileC::~CopiedFileC() {
  if (platform_->isNamed) unlinkat(platform_->folder, name_.c_str(), 0);
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
  const int folder = platform_->folder;
  if (!platform_->isNamed && !platform_->Name(name_)) {
    original_.Fail(fmt::format("cannot name the copy of {}", original_.GetName()));
  }
  if (renameat(folder, name_.c_str(), folder, original_.platform_->name.c_str()) != 0) {
    original_.Fail(fmt::format("cannot replace {}", original_.GetName()));
  }
  platform_->isNamed = false;
  const DescriptorC entries = OpenToRead(folder);
  // Some file systems have nothing to do for a folder and report that as an error.
  if ((!entries.IsOpen() || fsync(entries.Get()) != 0) && errno != EINVAL && errno != ENOTSUP) {
    const int error = errno;
    throw FileErrorC(
        fmt::format("{} is replaced, but its folder could not be flushed to the disk: "
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
