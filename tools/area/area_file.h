#ifndef SURVEYDATA_TOOLS_AREA_AREA_FILE_H_
#define SURVEYDATA_TOOLS_AREA_AREA_FILE_H_

#include <memory>
#include <string>
#include <string_view>

#include <surveydata/scanning/scan_area.h>

#include <area/angle_unit.h>

namespace Tool {

/// An area as its file gives it. It may be one that the library calls invalid.
struct AreaFile {
  std::string name;  ///< As the file says; the name of the file where it says nothing.
  AngleUnit unit;
  std::unique_ptr<SDI::ScanAreaC> area;

  const SDI::ScanAreaImplC& Impl() const { return *area->GetImpl(); }
  const GMAT::SphereAreaC& Sphere() const { return Impl().GetSphereArea(); }
};

/// Reads an area file, whose format docs/area_files.md describes.
/// \throw ToolErrorC  with the place and what is wrong there, when the file cannot be read or is no
///                    area file.
AreaFile LoadAreaFile(const std::string& path);

/// "rectangle", "polygon" or "dome".
std::string_view KindName(const SDI::ScanAreaC& area);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_AREA_FILE_H_
