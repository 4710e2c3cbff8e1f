#ifndef SURVEYDATA_TOOLS_RECORD_PATCH_FRAME_H_
#define SURVEYDATA_TOOLS_RECORD_PATCH_FRAME_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <record/explain_frame.h>

namespace Tool {

/// The changes of a frame; empty fields stay unchanged.
struct FrameChanges {
  std::optional<std::u16string> name;
  std::optional<std::int32_t> number;
  std::optional<float> antennaHeight;
  bool isSlant = false;  ///< Of the new antenna height.
};

/// A frame before and after a change, with the meaning of its bytes.
struct PatchedFrame {
  std::vector<std::uint8_t> before;
  std::vector<std::uint8_t> after;
  std::vector<FrameField> fields;  ///< Of `after`.
};

/// Whether the frame has the blocks of all fields that are to be changed.
bool HasRoom(std::span<const std::uint8_t> frame, const FrameChanges& changes);

/// Rewrites the changed fields as the library's writer does, and the checksum; all other bytes stay
/// the same. The result is read back and compared.
///
/// Throws `ToolErrorC` if the frame cannot be decoded or lacks a block that a change needs, or if
/// reading the result back does not give the changes.
PatchedFrame PatchFrame(std::span<const std::uint8_t> frame, const FrameChanges& changes);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_PATCH_FRAME_H_
