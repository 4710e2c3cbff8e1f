#ifndef SURVEYDATA_OBJECT_MODEL_VERSION_H_
#define SURVEYDATA_OBJECT_MODEL_VERSION_H_

#include <cstdint>
#include <string>

#include <surveydata/object_model/export.h>

namespace API {

/// A version number packed into one word, so that versions copy and compare as numbers.
///
/// | field   | bits  | range  |
/// |---------|-------|--------|
/// | major   | 31-26 | 0-63   |
/// | minor   | 25-19 | 0-127  |
/// | kind    | 18-16 | 0-7    |
/// | variant | 15-12 | 0-15   |
/// | build   | 11-0  | 0-4095 |
///
/// The kind of a release has a letter: S for 2, B for 3, D for 4, A for 5, R for all others.
class SURVEYDATA_API VersionC {
 public:
  VersionC() noexcept;
  explicit VersionC(std::uint32_t word) noexcept;
  VersionC(const VersionC& other) noexcept;
  VersionC& operator=(const VersionC& other) noexcept;

  /// Packs the five fields. Values beyond a field's range lose their upper bits.
  void Set(std::uint16_t major, std::uint16_t minor, std::uint16_t build, std::uint16_t kind,
           std::uint16_t variant);

  std::uint32_t GetMajor() const;
  std::uint32_t GetMinor() const;
  std::uint32_t GetKind() const;
  std::uint32_t GetVariant() const;
  std::uint32_t GetBuild() const;

  /// The version as text. Numbers are decimal, padded with zeros to the given minimum width.
  ///
  /// | style | text                                                        | example    |
  /// |-------|-------------------------------------------------------------|------------|
  /// | 1     | major . minor (2 digits) . build (3 digits)                 | 3.05.042   |
  /// | 2     | major . minor (3 digits), then except for R: . letter build | 3.005.B42  |
  /// | 3     | major . minor (2 digits), then build (3 digits) in brackets | 3.05 (042) |
  /// | other | major . minor (2 digits)                                    | 3.05       |
  std::string Format(std::uint32_t style) const;

  /// Orders by major, minor, kind, variant, build.
  bool operator>=(const VersionC& other) const;
  bool operator==(const VersionC& other) const;
  bool operator!=(const VersionC& other) const = delete;

 private:
  std::uint32_t word_ = 0;
};

static_assert(sizeof(VersionC) == 4);

}  // namespace API

#endif  // SURVEYDATA_OBJECT_MODEL_VERSION_H_
