#ifndef SURVEYDATA_TOOLS_RECORD_PATCH_FRAME_H_
#define SURVEYDATA_TOOLS_RECORD_PATCH_FRAME_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <record/explain_frame.h>

namespace Tool {

/// What to change in a frame; what is left empty stays as it is.
struct FrameChanges {
  std::optional<std::u16string> name;
  std::optional<std::int32_t> number;
  std::optional<float> antennaHeight;
  bool isSlant = false;  ///< Of the new antenna height.
};

/// A frame before and after, with what its bytes are.
struct PatchedFrame {
  std::vector<std::uint8_t> before;
  std::vector<std::uint8_t> after;
  std::vector<FrameField> fields;  ///< Of `after`.
};

/// Rewrites the fields that the changes name, as the library's writer does, and the checksum; every
/// other byte stays. The result is read back and compared.
///
/// Throws `ToolErrorC` when the frame cannot be decoded, lacks a block that a change needs, or the
/// result does not read back.
PatchedFrame PatchFrame(std::span<const std::uint8_t> frame, const FrameChanges& changes);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_PATCH_FRAME_H_
