#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <fmt/format.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#if defined(__APPLE__)
#include <mach-o/dyld.h>
#endif

#include <platform/browser.h>
#include <platform/descriptor.h>
#include <platform/file_error.h>

extern char** environ;

namespace Tool {
namespace {

namespace fs = std::filesystem;

#if defined(__APPLE__)
constexpr const char* kDefaultBrowser = "open";
#else
constexpr const char* kDefaultBrowser = "xdg-open";
#endif

[[noreturn]] void Fail(const std::string& what, int error) {
  throw FileErrorC(fmt::format("{}: {}", what, std::strerror(error)));
}

fs::path CacheFolder() {
  // By the rules for the variable, relative paths are ignored.
  if (const char* const cache = std::getenv("XDG_CACHE_HOME");
      cache != nullptr && fs::path(cache).is_absolute()) {
    return cache;
  }
  const char* const home = std::getenv("HOME");
  if (home == nullptr || !fs::path(home).is_absolute()) {
    throw FileErrorC(
        "there is no folder for the page, because HOME is not set; choose one with -o");
  }
  return fs::path(home) / ".cache";
}

// The exit code of a browser that ends within a second, as one does that cannot show the page. A
// browser that is still running has started.
int ExitCodeOf(pid_t process) {
  constexpr std::chrono::milliseconds kStep(10);
  constexpr int kSteps = 100;
  for (int i = 0; i < kSteps; ++i) {
    int status = 0;
    const pid_t ended = waitpid(process, &status, WNOHANG);
    if (ended == process) return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    if (ended < 0 && errno != EINTR) return 0;
    std::this_thread::sleep_for(kStep);
  }
  return 0;
}

}  // namespace

fs::path ProgramFolder() {
#if defined(__APPLE__)
  char name[4096];
  std::uint32_t size = sizeof(name);
  if (_NSGetExecutablePath(name, &size) != 0) Fail("cannot find the program itself", ENAMETOOLONG);
  std::error_code error;
  const fs::path program = fs::canonical(name, error);
#else
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
#endif
  if (error) Fail("cannot find the program itself", error.value());
  return program.parent_path();
}

fs::path PrivateFolder() {
  const fs::path cache = CacheFolder();
  std::error_code error;
  fs::create_directories(cache, error);
  if (error) Fail(fmt::format("cannot make {}", cache.string()), error.value());
  fs::path folder = cache;
  for (const char* const name : {"surveydata", "pages"}) {
    folder /= name;
    if (mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
      Fail(fmt::format("cannot make {}", folder.string()), errno);
    }
  }
  // Not through a link, which another user could have created.
  const DescriptorC opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  struct stat status {};
  if (!opened.IsOpen() || fstat(opened.Get(), &status) != 0) {
    Fail(fmt::format("cannot use {}", folder.string()), errno);
  }
  if (status.st_uid != geteuid()) {
    throw FileErrorC(fmt::format("{} belongs to another user", folder.string()));
  }
  if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0 && fchmod(opened.Get(), S_IRWXU) != 0) {
    Fail(fmt::format("cannot use {}", folder.string()), errno);
  }
  return folder;
}

fs::path NewPrivateFile(const fs::path& folder) {
  constexpr int kExtension = 5;
  std::string name = (folder / "view-XXXXXX.html").string();
  const DescriptorC made(mkstemps(name.data(), kExtension));  // with mode 0600
  if (!made.IsOpen()) Fail(fmt::format("cannot write to {}", folder.string()), errno);
  return name;
}

void OpenInBrowser(const std::string& browser, const fs::path& file) {
  std::string program = browser.empty() ? kDefaultBrowser : browser;
  std::string argument = fs::absolute(file).string();
  char* const arguments[] = {program.data(), argument.data(), nullptr};
  // A browser reads nothing from the terminal, and its messages there are useless.
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  // The browser outlives the terminal.
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setpgroup(&attributes, 0);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
  pid_t process = 0;
  const int error =
      posix_spawnp(&process, program.c_str(), &files, &attributes, arguments, environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&files);
  if (error != 0) {
    Fail(fmt::format("cannot start {} to show {}", program, argument), error);
  }
  if (const int code = ExitCodeOf(process); code != 0) {
    throw FileErrorC(fmt::format("{} exited with {} and did not show {}", program, code, argument));
  }
}

}  // namespace Tool
