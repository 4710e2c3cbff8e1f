#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#if defined(__linux__)
#include <sys/xattr.h>
#endif

#include <platform/file_attributes.h>

namespace Tool {

#if defined(__linux__)

namespace {

constexpr const char* kAnyAttribute = "extended attributes";

// Calls `get(buffer, size)`, which returns the required size if the size is 0, until the value
// fits: it may grow between two calls.
template <class Get>
std::optional<std::string> GetWhole(const Get& get) {
  for (;;) {
    const ssize_t needed = get(nullptr, 0);
    if (needed < 0) return {};
    std::string value(static_cast<std::size_t>(needed), '\0');
    if (needed == 0) return value;
    const ssize_t size = get(value.data(), value.size());
    if (size >= 0) {
      value.resize(static_cast<std::size_t>(size));
      return value;
    }
    if (errno != ERANGE) return {};
  }
}

std::optional<std::string> GetAttribute(int file, const std::string& name) {
  return GetWhole(
      [&](char* to, std::size_t size) { return fgetxattr(file, name.c_str(), to, size); });
}

// The names of the attributes to copy. A file system without attributes has none.
std::optional<std::vector<std::string>> ListAttributes(int file) {
  std::vector<std::string> names;
  const auto list =
      GetWhole([&](char* to, std::size_t size) { return flistxattr(file, to, size); });
  if (!list) return errno == ENOTSUP ? std::optional(names) : std::nullopt;
  std::string_view rest = *list;  // each name ends with a zero byte
  while (!rest.empty()) {
    const std::string_view name = rest.substr(0, rest.find('\0'));
    rest.remove_prefix(std::min(name.size() + 1, rest.size()));
    if (name != "security.ima" && name != "security.evm") names.emplace_back(name);
  }
  return names;
}

}  // namespace

std::string CopyAttributes(int from, int to) {
  const auto wanted = ListAttributes(from);
  const auto inherited = ListAttributes(to);
  if (!wanted || !inherited) return kAnyAttribute;
  for (const std::string& name : *inherited) {
    const bool isWanted = std::find(wanted->begin(), wanted->end(), name) != wanted->end();
    if (!isWanted && fremovexattr(to, name.c_str()) != 0 && errno != ENODATA) return name;
  }
  for (const std::string& name : *wanted) {
    const auto value = GetAttribute(from, name);
    if (!value) return name;
    // This user may not be permitted to set a security label, even one that is already correct.
    const auto present = GetAttribute(to, name);
    if (present == value) continue;
    if (fsetxattr(to, name.c_str(), value->data(), value->size(), 0) != 0) return name;
  }
  return {};
}

#else

std::string CopyAttributes(int /*from*/, int /*to*/) { return {}; }

#endif

}  // namespace Tool
