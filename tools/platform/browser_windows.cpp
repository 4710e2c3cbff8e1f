#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>

#include <fmt/format.h>
// clang-format off
#include <windows.h>
#include <shellapi.h>  // needs windows.h
// clang-format on

#include <platform/browser.h>
#include <platform/file_error.h>
#include <platform/platform.h>

namespace Tool {
namespace {

namespace fs = std::filesystem;

std::string Utf8(const fs::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

[[noreturn]] void Fail(const std::string& what, DWORD error) {
  throw FileErrorC(
      fmt::format("{}: {}", what, std::system_category().message(static_cast<int>(error))));
}

}  // namespace

fs::path ProgramFolder() {
  wchar_t name[32768];
  const DWORD length = GetModuleFileNameW(nullptr, name, static_cast<DWORD>(std::size(name)));
  if (length == 0 || length == std::size(name)) {
    Fail("cannot find the program itself", GetLastError());
  }
  return fs::path(std::wstring_view(name, length)).parent_path();
}

// Other users cannot read files in a user's profile.
fs::path PrivateFolder() {
  wchar_t name[32768];
  const DWORD length =
      GetEnvironmentVariableW(L"LOCALAPPDATA", name, static_cast<DWORD>(std::size(name)));
  if (length == 0 || length >= std::size(name)) {
    throw FileErrorC(
        "there is no folder for the page, because LOCALAPPDATA is not set; choose one with -o");
  }
  const fs::path folder = fs::path(std::wstring_view(name, length)) / L"surveydata" / L"pages";
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) {
    Fail(fmt::format("cannot make {}", Utf8(folder)), static_cast<DWORD>(error.value()));
  }
  return folder;
}

fs::path NewPrivateFile(const fs::path& folder) {
  constexpr std::uint64_t kNames = 1'000'000;
  std::uint64_t number = GetTickCount64() * 31 + GetCurrentProcessId();
  for (std::uint64_t i = 0; i < kNames; ++i, ++number) {
    const fs::path file = folder / fmt::format("view-{:06}.html", number % kNames);
    const HANDLE made = CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (made != INVALID_HANDLE_VALUE) {
      CloseHandle(made);
      return file;
    }
    if (GetLastError() != ERROR_FILE_EXISTS) break;
  }
  Fail(fmt::format("cannot write to {}", Utf8(folder)), GetLastError());
}

void OpenInBrowser(const std::string& browser, const fs::path& file) {
  const std::wstring page = fs::absolute(file).wstring();
  const std::wstring program = browser.empty() ? page : ToPath(browser).wstring();
  std::wstring arguments;
  if (!browser.empty()) arguments.append(1, L'"').append(page).append(1, L'"');
  SHELLEXECUTEINFOW start{};
  start.cbSize = sizeof(start);
  start.fMask = SEE_MASK_NOASYNC | SEE_MASK_FLAG_NO_UI;  // the program reports failures itself
  start.lpFile = program.c_str();
  start.lpParameters = arguments.c_str();
  start.nShow = SW_SHOWNORMAL;
  if (ShellExecuteExW(&start) == FALSE) {
    Fail(fmt::format("cannot start {} to show {}", browser.empty() ? "the browser" : browser,
                     Utf8(file)),
         GetLastError());
  }
}

}  // namespace Tool
