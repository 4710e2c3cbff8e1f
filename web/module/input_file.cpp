#include <algorithm>
#include <cstring>
#include <filesystem>

#include <fmt/format.h>
#include <module/files.h>

#include <platform/file_error.h>
#include <platform/input_file.h>
#include <platform/platform.h>

// Replaces the program's interface to the operating system, which a page does not have: the only
// file is in memory.

namespace Page {
namespace {

std::string& File() {
  static std::string text;
  return text;
}

}  // namespace

void SetFile(std::string text) { File() = std::move(text); }

}  // namespace Page

namespace Tool {

std::filesystem::path ToPath(const std::string& name) { return name; }

bool IsStandardInput(const std::string& /*name*/) { return false; }

InputFileC::InputFileC(const std::string& name) : name_(name), file_(nullptr) {
  if (name != Page::kFileName) Fail();
  size_ = Page::File().size();
}

InputFileC::~InputFileC() = default;

std::size_t InputFileC::Read(std::span<char> to) {
  const std::size_t count =
      std::min(to.size(), static_cast<std::size_t>(size_ - std::min(start_, size_)));
  std::memcpy(to.data(), Page::File().data() + start_, count);
  start_ += count;
  return count;
}

void InputFileC::Fail() const { throw FileErrorC(fmt::format("cannot read {}", name_)); }

}  // namespace Tool
