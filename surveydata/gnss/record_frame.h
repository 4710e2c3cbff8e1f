#ifndef SURVEYDATA_GNSS_RECORD_FRAME_H_
#define SURVEYDATA_GNSS_RECORD_FRAME_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include <surveydata/gnss/frame_cursors.h>
#include <surveydata/gnss/frame_fields.h>
#include <surveydata/gnss/gps_meas_data.h>
#include <surveydata/gnss/gps_record_file_info.h>
#include <surveydata/gnss/gps_record_outcome.h>

/// \file
/// Internal: what can be done with the binary frame of a GNSS measurement. Its blocks are described
/// in `frame_blocks.h`.

namespace SDI::RecordFrame {

inline constexpr std::uint16_t kMagic = 44700;
inline constexpr std::uint8_t kType = 113;
inline constexpr std::uint16_t kMaxLength = 498;
inline constexpr std::size_t kChecksumSize = sizeof(std::uint16_t);
inline constexpr std::size_t kMaxSize = kMaxLength + kChecksumSize;
inline constexpr std::size_t kNameUnits = 17;

inline constexpr std::uint8_t kSlantHeight = 1;  ///< The kind byte of a slant antenna height.

/// What every record begins with, whatever its kind.
struct Header {
  std::uint16_t magic = 0;
  std::uint16_t length = 0;  ///< Where the checksum lies; the record has two bytes more.
  std::uint8_t type = 0;

  template <class Cursor>
  constexpr void Walk(Cursor& cursor) {
    cursor.Number(Field::kMagic, magic);
    cursor.Number(Field::kLength, length);
    cursor.Number(Field::kType, type);
  }

  /// `bytes` holds at least `kHeaderSize`.
  static Header Load(const std::uint8_t* bytes);
  bool IsRecord() const;
  bool IsMeasurement() const { return IsRecord() && type == kType && length <= kMaxLength; }
  std::size_t Size() const { return length + kChecksumSize; }
};

inline constexpr std::size_t kHeaderSize = SizeOf<Header>();
inline constexpr std::uint16_t kMinLength = kHeaderSize;  ///< The checksum follows the header.

inline bool Header::IsRecord() const { return magic == kMagic && length >= kMinLength; }

/// The checksum of a frame whose length is `length`: minus the sum of its bytes from the third up
/// to `length`, in 16 bits. 0 for lengths below 3.
std::uint16_t Checksum(const std::uint8_t* frame, std::size_t length);

/// Whether the checksum at `length` is right.
bool HasRightChecksum(const std::uint8_t* frame, std::size_t length);

/// The outcome of decoding a frame.
using Decoded = GPSDecodeResult;

/// Reads a whole frame, header and checksum included, that lies in memory. Only a block that does
/// not fit leaves anything changed: the blocks before it are stored.
Decoded Decode(Bytes frame, GPSMeasDataImplC& measurement, GPSRecordFileInfo& info);

/// The same for a whole measurement frame whose header and checksum are known to be right.
Decoded DecodeChecked(Bytes frame, GPSMeasDataImplC& measurement, GPSRecordFileInfo& info);

/// What a frame cannot hold, and why.
struct Refusal {
  enum class Reason : std::uint8_t {
    kNone,
    kNoPlace,  ///< Reading a frame never gives this value.
    kTooLong,  ///< The frame has no room left for the field.
  };

  RecordField field = RecordField::kNone;
  Reason reason = Reason::kNone;

  bool operator==(const Refusal&) const = default;
};

/// What encoding gave: the size of the frame in bytes, or 0 and the first field that was refused.
struct Encoded {
  std::size_t size = 0;
  Refusal refusal;
};

/// Makes the shortest frame whose reading, into a new measurement and a zeroed info, gives every
/// field of these: number, name and flags of the info, and of the measurement all that is present,
/// the masks, and stored pairs of system 2 and 3 even where they are not present. Fields that carry
/// a presence bit are left out while it is clear, whatever they store. Ignored bytes are 0.
///
/// Refused is what such a reading never gives: the week of time B, status bit 2, a status bit or an
/// info flag without exactly one of the two info flags, a name of more than 17 units or not in the
/// shortest UTF-8, an antenna height with a horizontal offset, one value alone, a component of the
/// vector that is no number of single precision, a present pair of system 2 or 3 whose second value
/// is 0, flags above 1, values B and C above 255, a list of more than 31 entries; and the first
/// block, in the order of the frame, that takes its length beyond 498.
///
/// \param frame  set to the frame, when it is not refused; its first `size` bytes.
Encoded Encode(const GPSMeasDataImplC& measurement, const GPSRecordFileInfo& info,
               std::span<std::uint8_t, kMaxSize> frame);

/// The fields that an update rewrites. With a type of its own: g++ 12 keeps constants whose type is
/// deduced in memory that can be written to.
inline constexpr std::array<Field, 5> kUpdatedFields{Field::kFileKind, Field::kName, Field::kNumber,
                                                     Field::kHeight, Field::kHeightKind};

/// Rewrites those of `fields` whose blocks the flags of the frame announce; without a measurement
/// the file flags and the name are taken to be there, and no antenna height, whatever the flags.
/// `fields` are of `kUpdatedFields`. The checksum is left to `Build`. `frame` is a whole buffer: a
/// frame that is too short for its blocks is written past its end.
void Patch(std::span<std::uint8_t, kMaxSize> frame, const GPSMeasDataImplC* measurement,
           const GPSRecordFileInfo& info, std::span<const Field> fields = kUpdatedFields);

/// Marks a frame without a sub-type.
inline constexpr int kNoSubType = -1;

/// Writes header and checksum around a payload that lies in `buffer` already.
///
/// The frame has `payload` + 7 bytes, and one more for a sub-type of 1 or above. A sub-type of 0 to
/// 255 is written after the type: 0 is written but not counted in the size.
/// \return the size; 0, with nothing written, when `buffer` is smaller or the size needs more than
///         16 bits.
std::size_t Build(std::span<std::uint8_t> buffer, std::uint8_t type, int subType,
                  std::size_t payload);

/// The UTF-8 of `count` units up to their first 0. Without a 0 among them no 0 byte is written.
/// \return the bytes that the whole text needs (a unit that does not fit is skipped but counted);
///         -1, with nothing written, when `count` + 1 exceeds `capacity` or `dst` is null.
int EncodeName(const char16_t* units, std::size_t count, char* dst, std::size_t capacity);

/// Clears `capacity` units and decodes `src` into them, up to its first 0 byte or the limit.
/// \return 0; -1 when there are more units than `capacity`; -2 when the limit cuts a sequence; -3
///         on a stray or missing continuation byte or a lead byte of four or more bytes. The units
///         before a fault are kept.
int DecodeName(const char* src, std::size_t limit, char16_t* units, std::size_t capacity);

}  // namespace SDI::RecordFrame

#endif  // SURVEYDATA_GNSS_RECORD_FRAME_H_
