#ifndef SURVEYDATA_GNSS_RECORD_CHANGE_H_
#define SURVEYDATA_GNSS_RECORD_CHANGE_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

/// \file
/// Internal: rewrites single fields of a measurement frame.

namespace SDI::RecordFrame {

/// What to change in a frame. Empty members leave their fields unchanged.
struct Changes {
  struct Antenna {
    float height;  ///< m
    bool isSlant;
  };

  std::optional<std::string_view> name;  ///< UTF-8, as in `GPSRecordFileInfo`.
  std::optional<std::int32_t> number;
  std::optional<Antenna> antenna;
};

/// Rewrites the fields in `changes` and the checksum; all other bytes stay the same.
///
/// \param frame  a whole measurement frame whose blocks all fit.
/// \return false, with nothing changed, if the frame has no block for a change, the name has more
///         than 17 units or 49 bytes or would not be read back byte for byte, or the height is not
///         finite.
bool Change(std::span<std::uint8_t> frame, const Changes& changes);

}  // namespace SDI::RecordFrame

#endif  // SURVEYDATA_GNSS_RECORD_CHANGE_H_
