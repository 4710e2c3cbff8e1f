#include <array>
#include <string_view>

#include <surveydata/object_model/version.h>

namespace API {
namespace {

struct BitField {
  unsigned shift;
  std::uint32_t mask;

  constexpr std::uint32_t Put(std::uint32_t value) const { return (value & mask) << shift; }
  constexpr std::uint32_t Take(std::uint32_t word) const { return (word >> shift) & mask; }
};

constexpr BitField kMajor{26, 0x3F};
constexpr BitField kMinor{19, 0x7F};
constexpr BitField kKind{16, 0x7};
constexpr BitField kVariant{12, 0xF};
constexpr BitField kBuild{0, 0xFFF};

constexpr std::string_view kLetters = "RRSBDARR";  // by kind

// Only digits, in every locale.
std::string Padded(std::uint32_t value, std::size_t width) {
  std::string digits = std::to_string(value);
  if (digits.size() < width) digits.insert(0, width - digits.size(), '0');
  return digits;
}

}  // namespace

VersionC::VersionC() noexcept = default;
VersionC::VersionC(std::uint32_t word) noexcept : word_(word) {}
VersionC::VersionC(const VersionC& other) noexcept = default;
VersionC& VersionC::operator=(const VersionC& other) noexcept = default;

void VersionC::Set(std::uint16_t major, std::uint16_t minor, std::uint16_t build,
                   std::uint16_t kind, std::uint16_t variant) {
  word_ = kMajor.Put(major) | kMinor.Put(minor) | kKind.Put(kind) | kVariant.Put(variant) |
          kBuild.Put(build);
}

std::uint32_t VersionC::GetMajor() const { return kMajor.Take(word_); }
std::uint32_t VersionC::GetMinor() const { return kMinor.Take(word_); }
std::uint32_t VersionC::GetKind() const { return kKind.Take(word_); }
std::uint32_t VersionC::GetVariant() const { return kVariant.Take(word_); }
std::uint32_t VersionC::GetBuild() const { return kBuild.Take(word_); }

std::string VersionC::Format(std::uint32_t style) const {
  const std::string major = Padded(GetMajor(), 1) + '.';
  switch (style) {
    case 1:
      return major + Padded(GetMinor(), 2) + '.' + Padded(GetBuild(), 3);
    case 2: {
      const char letter = kLetters[GetKind()];
      std::string text = major + Padded(GetMinor(), 3);
      if (letter != 'R') text = text + '.' + letter + Padded(GetBuild(), 1);
      return text;
    }
    case 3:
      return major + Padded(GetMinor(), 2) + " (" + Padded(GetBuild(), 3) + ')';
    default:
      return major + Padded(GetMinor(), 2);
  }
}

bool VersionC::operator==(const VersionC& other) const = default;
bool VersionC::operator>=(const VersionC& other) const { return word_ >= other.word_; }

}  // namespace API
