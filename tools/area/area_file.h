#ifndef SURVEYDATA_TOOLS_AREA_AREA_FILE_H_
#define SURVEYDATA_TOOLS_AREA_AREA_FILE_H_

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include <surveydata/scanning/scan_area.h>

#include <area/angle_unit.h>

namespace Tool {

/// The largest area file, in bytes and in points: 64 MiB, a million. Larger ones are refused.
/// @{
inline constexpr std::size_t kMostAreaBytes = std::size_t{64} << 20;
inline constexpr std::size_t kMostAreaPoints = 1'000'000;
/// @}

/// An area as its file describes it. It need not be valid.
struct AreaFile {
  std::string name;  ///< That in the file; without one, the name of the file.
  AngleUnit unit;
  std::unique_ptr<SDI::ScanAreaC> area;
  bool isNamed = false;  ///< Whether its file gives the name.

  const SDI::ScanAreaImplC& Impl() const { return *area->GetImpl(); }
  const GMAT::SphereAreaC& Sphere() const { return Impl().GetSphereArea(); }
};

/// Reads an area file, whose format docs/area_files.md describes; "-" is standard input.
/// \throw ToolErrorC  with the position and the reason if it is not an area file.
/// \throw FileErrorC  if it cannot be read.
/// \cost linear in the size of the file.
AreaFile LoadAreaFile(const std::string& path);

/// A text as JSON writes it, with its quotes.
std::string JsonText(const std::string& utf8);

/// "rectangle", "polygon" or "dome".
std::string_view KindName(const SDI::ScanAreaC& area);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_AREA_FILE_H_
