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

/// Makes measurement frames, and appends records to files without risk to what is in them. It keeps
/// no state: any number of threads may call it, for different files.
class SURVEYDATA_API GPSRecordWriterC {
 public:
  GPSRecordWriterC() = delete;

  /// Makes the shortest frame whose reading, into a new measurement and a zeroed info, gives
  /// number, name and flags of `info` and every field of `measurement` that is present, the masks,
  /// and stored pairs of the systems 2 and 3 even where they are not present. Bytes that readers
  /// ignore are 0. Allocates nothing.
  ///
  /// Refused, with the field, is what such a reading never gives: the week of time B, status bit 2,
  /// a status bit or an info flag without exactly one of the two info flags, a name of more than 17
  /// units or not in the shortest UTF-8, an antenna height with a horizontal offset, one value
  /// alone, a component of the vector that is no number of single precision, a present pair of
  /// system 2 or 3 whose second value is 0, flags above 1, values B and C above 255, a list of more
  /// than 31 entries; and the first field, in the order of the frame, that makes it longer than 500
  /// bytes.
  ///
  /// \param frame  holds the frame in its first `size` bytes, when nothing is refused.
  static GPSEncodeResult Encode(const GPSMeasDataImplC& measurement, const GPSRecordFileInfo& info,
                                std::span<std::uint8_t, GPSRecordEntry::kLongestMeasurement> frame);

  /// Puts `records`, whole ones of any kind, one after the other, at the end of a file, which is
  /// made if there is none. What is in the file is never written over: when writing fails, the file
  /// is cut back to the size that it had.
  ///
  /// A process that ends during the call leaves the file as it was, or with part of the records at
  /// its end, where readers find a gap. `kDone` says that the system has taken the bytes; when they
  /// are on the disk is up to it. One writer at a time: what another one appends meanwhile may be
  /// cut off with it.
  static GPSAppendOutcome Append(const char* fileName, std::span<const std::uint8_t> records);
};

}  // namespace SDI

#endif  // SURVEYDATA_GNSS_GPS_RECORD_WRITER_H_
