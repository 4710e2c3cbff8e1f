#include "replace_file.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>

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

// Holds back the signals that would end the program with the copy left behind.
class FileReplacementC::SignalsC {
 public:
  SignalsC() {
    sigemptyset(&held_);
    for (const int signal : kSignals) {
      struct sigaction action {};
      const bool isIgnored =
          sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
      if (!isIgnored) sigaddset(&held_, signal);
    }
    sigprocmask(SIG_BLOCK, &held_, &before_);
  }
  SignalsC(const SignalsC&) = delete;
  SignalsC& operator=(const SignalsC&) = delete;
  ~SignalsC() { sigprocmask(SIG_SETMASK, &before_, nullptr); }

  bool IsAnyPending() const {
    sigset_t pending;
    sigpending(&pending);
    return std::any_of(std::begin(kSignals), std::end(kSignals), [&](int signal) {
      return sigismember(&held_, signal) == 1 && sigismember(&pending, signal) == 1;
    });
  }

 private:
  static constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

  sigset_t held_;
  sigset_t before_;
};

// A new file beside the original, removed unless it takes its place.
class FileReplacementC::CopyC {
 public:
  // A short name: that of the original may be as long as a name can be.
  explicit CopyC(const std::filesystem::path& folder)
      : path_((folder / ".surveydata.XXXXXX").string()),
        file_(mkostemp(path_.data(), O_CLOEXEC)),
        isThere_(file_.Get() >= 0) {}
  CopyC(const CopyC&) = delete;
  CopyC& operator=(const CopyC&) = delete;
  ~CopyC() {
    if (isThere_) unlink(path_.c_str());
  }

  bool IsOpen() const { return file_.Get() >= 0; }
  int Get() const { return file_.Get(); }
  const std::string& GetPath() const { return path_; }
  bool Rename(const std::filesystem::path& to) {
    if (std::rename(path_.c_str(), to.c_str()) != 0) return false;
    isThere_ = false;
    return true;
  }

 private:
  std::string path_;
  DescriptorC file_;
  bool isThere_;
};

void FileReplacementC::Refuse(const std::string& what) const {
  throw ToolErrorC(ExitCode::kFileError, fmt::format("{}; {} is as it was", what, file_.string()));
}

void FileReplacementC::Fail(const std::string& what) const {
  Refuse(fmt::format("{}: {}", what, std::strerror(errno)));
}

FileReplacementC::FileReplacementC(const std::string& file) : file_(file) {
  // Until the lock is on what the path names, not on a file that another one replaced just then.
  do {
    std::error_code error;
    file_ = std::filesystem::canonical(file, error);
    if (error) {
      throw ToolErrorC(ExitCode::kFileError,
                       fmt::format("cannot read {}: {}", file, error.message()));
    }
    // Network file systems lock only what is open for writing.
    const int mode = access(file_.c_str(), W_OK) == 0 ? O_RDWR : O_RDONLY;
    original_ = DescriptorC(open(file_.c_str(), mode | O_NONBLOCK | O_CLOEXEC));
    if (original_.Get() < 0 && mode == O_RDWR) {  // a folder, say
      original_ = DescriptorC(open(file_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    }
    if (original_.Get() < 0 || fstat(original_.Get(), &status_) != 0) {
      Fail(fmt::format("cannot read {}", file_.string()));
    }
    if (!S_ISREG(status_.st_mode)) {
      Refuse(fmt::format("cannot read {}: no regular file", file_.string()));
    }
    if (flock(original_.Get(), LOCK_EX | LOCK_NB) != 0) {
      if (errno == EWOULDBLOCK) Refuse("another program has locked the file");
      Fail(fmt::format("cannot lock {}", file_.string()));
    }
  } while (IsReplaced());
  if (fstat(original_.Get(), &status_) != 0) Fail(fmt::format("cannot read {}", file_.string()));
}

bool FileReplacementC::IsReplaced() const {
  struct stat now {};
  return stat(file_.c_str(), &now) != 0 || now.st_ino != status_.st_ino ||
         now.st_dev != status_.st_dev;
}

bool FileReplacementC::IsChanged() const {
  struct stat now {};
  return IsReplaced() || fstat(original_.Get(), &now) != 0 || now.st_size != status_.st_size ||
         now.st_mtim.tv_sec != status_.st_mtim.tv_sec ||
         now.st_mtim.tv_nsec != status_.st_mtim.tv_nsec;
}

void FileReplacementC::Copy(const CopyC& copy, const SignalsC& signals) const {
  ProgressC progress(static_cast<std::uint64_t>(status_.st_size));
  std::vector<std::uint8_t> block(kBlock);
  for (std::uint64_t at = 0;;) {
    if (signals.IsAnyPending()) Refuse("interrupted");
    const ssize_t count = ReadAt(original_.Get(), at, block);
    if (count < 0) Fail(fmt::format("cannot read {}", file_.string()));
    if (count == 0) return;
    if (!WriteAt(copy.Get(), at, std::span(block).first(static_cast<std::size_t>(count)))) {
      Fail(fmt::format("cannot write {}", copy.GetPath()));
    }
    at += static_cast<std::uint64_t>(count);
    progress.Update(at);
  }
}

void FileReplacementC::KeepOwnerAndMode(const CopyC& copy) const {
  constexpr auto kSameOwner = static_cast<uid_t>(-1);
  // The group decides who else may use the file; the owner can be kept by root alone.
  if (fchown(copy.Get(), status_.st_uid, status_.st_gid) != 0 &&
      (errno != EPERM || fchown(copy.Get(), kSameOwner, status_.st_gid) != 0)) {
    Fail(fmt::format("cannot give the copy the group of {}", file_.string()));
  }
  if (fchmod(copy.Get(), status_.st_mode & 07777) != 0) {
    Fail(fmt::format("cannot give the copy the permissions of {}", file_.string()));
  }
}

void FileReplacementC::Verify(const CopyC& copy, std::uint64_t offset,
                              std::span<const std::uint8_t> bytes) const {
  std::vector<std::uint8_t> expected(kBlock);
  std::vector<std::uint8_t> found(kBlock);
  for (std::uint64_t at = 0;;) {
    const ssize_t expectedCount = ReadAt(original_.Get(), at, expected);
    const ssize_t foundCount = ReadAt(copy.Get(), at, found);
    if (expectedCount < 0 || foundCount < 0) {
      Fail(fmt::format("cannot read {} back", copy.GetPath()));
    }
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
      Refuse(fmt::format("{} does not read back as written, or the file changed meanwhile",
                         copy.GetPath()));
    }
    if (count < kBlock) return;
    at = end;
  }
}

void FileReplacementC::Replace(std::uint64_t offset, std::span<const std::uint8_t> before,
                               std::span<const std::uint8_t> after) {
  // Replacing needs no right to write the file itself, so ask for it.
  if (access(file_.c_str(), W_OK) != 0) Fail(fmt::format("cannot write {}", file_.string()));
  const SignalsC signals;  // let through when the copy is gone
  CopyC copy(file_.parent_path());
  if (!copy.IsOpen()) Fail(fmt::format("cannot write a copy beside {}", file_.string()));
  Copy(copy, signals);
  std::vector<std::uint8_t> found(before.size());
  if (ReadAt(copy.Get(), offset, found) != static_cast<ssize_t>(before.size()) ||
      !std::equal(before.begin(), before.end(), found.begin())) {
    Refuse("the file changed meanwhile");
  }
  if (!WriteAt(copy.Get(), offset, after)) Fail(fmt::format("cannot write {}", copy.GetPath()));
  KeepOwnerAndMode(copy);
  if (fsync(copy.Get()) != 0) Fail(fmt::format("cannot write {}", copy.GetPath()));
  Verify(copy, offset, after);
  if (signals.IsAnyPending()) Refuse("interrupted");
  if (IsChanged()) Refuse("the file changed meanwhile");
  if (!copy.Rename(file_)) Fail(fmt::format("cannot replace {}", file_.string()));

  const DescriptorC folder(open(file_.parent_path().c_str(), O_RDONLY | O_CLOEXEC));
  // Some file systems have nothing to do for a folder and say so.
  if ((folder.Get() < 0 || fsync(folder.Get()) != 0) && errno != EINVAL && errno != ENOTSUP) {
    throw ToolErrorC(ExitCode::kFileError,
                     fmt::format("{} is replaced, but its folder could not be brought to the disk: "
                                 "{}",
                                 file_.string(), std::strerror(errno)));
  }
}

}  // namespace Tool
