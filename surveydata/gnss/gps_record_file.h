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

  /// `GPSRecordReaderC` reads without the right to write, at offsets of 64 bits, in any number of
  /// threads, 25 times as fast, and tells a file that ends too early from a frame that was read.
  ///
  /// Reads the frame at `info->offset` into `measurement` and `info`.
  ///
  /// Nothing is reset first: fields that the frame does not carry keep what they hold, as does the
  /// first part of time B. Call `Reset` to reuse a measurement. The file must be writable.
  ///
  /// \return 0 when the frame was read, or when the file ends before the frame does (nothing
  ///         changes then); 1 when an argument is null or the file cannot be opened; 2 when it
  ///         cannot be positioned, when no measurement frame with a right checksum stands there
  ///         (nothing changes), or when a block runs past the checksum or has too large a count
  ///         (the blocks before it are stored).
  static std::uint32_t ReadGPSMeasData(GPSMeasDataImplC* measurement, GPSRecordFileInfo* info);

  /// `GPSRecordReaderC` finds the frame and tells what is wrong with it; `GPSRecordWriterC` makes
  /// new frames and says whether writing them failed.
  ///
  /// Rewrites three blocks of the frame at `info->offset` where the frame has them, and its
  /// checksum: the kind byte (0 when `info->flags` has bit 0x1, else 1), the name (its first 17
  /// units) and number, and the antenna height of `measurement`, as its vertical height with the
  /// kind byte of a slant height when it is one. Without a measurement the frame is taken to have
  /// the first two blocks and no antenna height.
  ///
  /// A frame that the file's end cuts is written out whole, zeros behind the cut.
  ///
  /// \return 0 when written (the write itself is not checked); 1 when `info` is null, the file
  ///         cannot be opened or positioned for writing, or ends within the frame's first five
  ///         bytes; 2 when it cannot be positioned for reading or no measurement frame with a
  ///         right checksum stands there. The file is unchanged after 1 and 2.
  static std::uint32_t WriteGPSMeasData(const GPSMeasDataImplC* measurement,
                                        GPSRecordFileInfo* info);
};

}  // namespace SDI

#endif  // SURVEYDATA_GNSS_GPS_RECORD_FILE_H_
