#ifndef SURVEYDATA_GNSS_GPS_RECORD_WRITER_H_
#define SURVEYDATA_GNSS_GPS_RECORD_WRITER_H_

#include <cstddef>
#include <cstdint>
#include <span>

#include <surveydata/gnss/gps_meas_data.h>
#include <surveydata/gnss/gps_record_file_info.h>
#include <surveydata/gnss/gps_record_index.h>
#include <surveydata/gnss/gps_record_outcome.h>
#include <surveydata/object_model/export.h>

namespace SDI {

/// Makes measurement frames, and appends records to files without risk to their contents. It has no
/// state: any number of threads may call it, for different files.
class SURVEYDATA_API GPSRecordWriterC {
 public:
  GPSRecordWriterC() = delete;

  /// Makes the shortest frame that, read into a new measurement and a zeroed info, gives back
  /// number, name and flags of `info`, every present field of `measurement`, the masks, and stored
  /// pairs of systems 2 and 3 even if they are not present. Bytes that readers ignore are 0.
  /// Allocates nothing.
  ///
  /// Refuses everything that such reading cannot give back, and reports the field: the week of time
  /// B, status bit 2, a status bit or an info flag without exactly one of the two info flags, a
  /// name of more than 17 units or not in the shortest UTF-8, an antenna height with a horizontal
  /// offset, a single value, a component of the vector that single precision cannot represent, a
  /// present pair of system 2 or 3 whose second value is 0, flags above 1, values B and C above
  /// 255, a list of more than 31 entries; and the first field, in the order of the frame, that
  /// makes it longer than 500 bytes.
  ///
  /// \param frame  receives the frame in its first `size` bytes, unless it is refused.
  static GPSEncodeResult Encode(const GPSMeasDataImplC& measurement, const GPSRecordFileInfo& info,
                                std::span<std::uint8_t, GPSRecordEntry::kLongestMeasurement> frame);

  /// Appends `records`, a sequence of whole records of any kind, to a file, which is created if it
  /// does not exist. Existing bytes are never overwritten: if writing fails, the file is truncated
  /// to its previous size, or removed if it is new.
  ///
  /// If the process ends during the call, the file is unchanged or ends with part of the records,
  /// which readers report as a gap. `kDone` means that the system has accepted the bytes, not that
  /// they are on the disk. Only one process at a time may append: after a failure, the truncation
  /// also removes what another process has appended.
  static GPSAppendOutcome Append(const char* fileName, std::span<const std::uint8_t> records);
};

}  // namespace SDI

#endif  // SURVEYDATA_GNSS_GPS_RECORD_WRITER_H_
