#include <cerrno>
#include <cstdio>
#include <string_view>
#include <utility>

#include <module/files.h>
#include <platform/platform.h>

namespace Page {
namespace {

std::string& File() {
  static std::string text;
  return text;
}

}  // namespace

void SetFile(std::string text) { File() = std::move(text); }

}  // namespace Page

std::filesystem::path Tool::ToPath(const std::string& name) { return name; }

// The linker puts this in place of `fopen`: a page has no file system, and what the program's
// readers open is in memory.
extern "C" std::FILE* __wrap_fopen(const char* name, const char* mode) {
  std::string& text = Page::File();
  if (std::string_view(name) != Page::kFileName || mode[0] != 'r' || text.empty()) {
    errno = ENOENT;
    return nullptr;
  }
  return fmemopen(text.data(), text.size(), "r");
}
