#ifndef SURVEYDATA_GNSS_GPS_RECORD_FILE_H_
#define SURVEYDATA_GNSS_GPS_RECORD_FILE_H_

#include <cstdint>

#include <surveydata/gnss/gps_meas_data.h>
#include <surveydata/gnss/gps_record_file_info.h>
#include <surveydata/object_model/export.h>

namespace SDI {

/// Reads and patches the measurement frames of record files, one at a time. `GPSRecordReaderC`
/// reads whole files, faster and from any thread.
///
/// Both operations share one file handle: never run two at once. The file is closed before they
/// return. A frame is `L` + 2 bytes, at most 500: magic 44700, the length `L`, type 113, the
/// payload, and at `L` a checksum.
class SURVEYDATA_API GPSRecordFileC {
 public:
  /// Results of both operations.
  static constexpr std::uint32_t kDone = 0;
  static constexpr std::uint32_t kNoFile = 1;
  static constexpr std::uint32_t kBadFrame = 2;

  /// `GPSRecordReaderC` needs no write permission, takes 64-bit offsets, runs in any number of
  /// threads, is 25 times as fast, and distinguishes a file that ends too early from a frame read.
  ///
  /// Reads the frame at `info->offset` into `measurement` and `info`.
  ///
  /// Nothing is reset first: fields that the frame does not carry keep their values, as does the
  /// week of time B. Call `Reset` to reuse a measurement. The file must be writable.
  ///
  /// \return 0 if the frame was read, or if the file ends before the frame does (nothing changes
  ///         then); 1 if an argument is null or the file cannot be opened; 2 if seeking fails, if
  ///         there is no measurement frame with a correct checksum at the offset (nothing changes),
  ///         or if a block extends past the checksum or has too large a count (the blocks before it
  ///         are stored).
  static std::uint32_t ReadGPSMeasData(GPSMeasDataImplC* measurement, GPSRecordFileInfo* info);

  /// `GPSRecordReaderC` finds the frame and reports what is wrong with it; `GPSRecordWriterC` makes
  /// new frames and reports failed writes.
  ///
  /// Rewrites three blocks of the frame at `info->offset`, if it has them, and its checksum: the
  /// kind byte (0 if `info->flags` has bit 0x1, else 1), the name (its first 17 units) and number,
  /// and the antenna height of `measurement`: always the vertical height, but with the kind byte of
  /// a slant height if it was stored as one. Without a measurement the frame is assumed to have the
  /// first two blocks and no antenna height.
  ///
  /// A frame truncated by the end of the file is written whole, with zeros for the missing bytes.
  ///
  /// \return 0 if written (the write itself is not checked); 1 if `info` is null, the file cannot
  ///         be opened, it ends within the first five bytes of the frame, or seeking before the
  ///         write fails; 2 if seeking before reading fails or there is no measurement frame with a
  ///         correct checksum at the offset. The file is unchanged after 1 and 2.
  static std::uint32_t WriteGPSMeasData(const GPSMeasDataImplC* measurement,
                                        GPSRecordFileInfo* info);
};

}  // namespace SDI

#endif  // SURVEYDATA_GNSS_GPS_RECORD_FILE_H_
