#ifndef SURVEYDATA_TOOLS_RECORD_EXPLAIN_FRAME_H_
#define SURVEYDATA_TOOLS_RECORD_EXPLAIN_FRAME_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <surveydata/gnss/frame_fields.h>

namespace Tool {

/// Consecutive bytes of a frame with one meaning.
struct FrameField {
  std::size_t at;    ///< Of the first byte, from the start of the frame.
  std::size_t size;  ///< In bytes.
  SDI::RecordFrame::Block block;
  std::optional<SDI::RecordFrame::Field> field;  ///< Empty for bytes of a block that does not fit.
  std::string value;                             ///< Human-readable.

  std::string_view BlockName() const { return TextOf(block); }
  std::string_view FieldName() const { return field ? NameOf(*field) : "does not fit"; }
};

/// Explains every byte of a measurement frame once, in order: header, blocks (by the library's own
/// description of the frame), bytes after the last block, checksum. If a block does not fit, the
/// bytes from its first field that cannot be read to the checksum are one field. `frame` has a
/// correct header and length.
std::vector<FrameField> ExplainFrame(std::span<const std::uint8_t> frame);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_EXPLAIN_FRAME_H_
