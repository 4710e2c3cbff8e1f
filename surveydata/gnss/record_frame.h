#ifndef SURVEYDATA_GNSS_RECORD_FRAME_H_
#define SURVEYDATA_GNSS_RECORD_FRAME_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>

#include <surveydata/gnss/frame_cursors.h>
#include <surveydata/gnss/frame_fields.h>
#include <surveydata/gnss/gps_meas_data.h>
#include <surveydata/gnss/gps_record_file_info.h>
#include <surveydata/gnss/gps_record_outcome.h>

/// \file
/// Internal: operations on the binary frame of a GNSS measurement. `frame_blocks.h` describes its
/// blocks.

namespace SDI::RecordFrame {

inline constexpr std::uint16_t kMagic = 44700;
inline constexpr std::uint8_t kType = 113;
inline constexpr std::uint16_t kMaxLength = 498;
inline constexpr std::size_t kChecksumSize = sizeof(std::uint16_t);
inline constexpr std::size_t kMaxSize = kMaxLength + kChecksumSize;
inline constexpr std::size_t kNameUnits = 17;

inline constexpr std::uint8_t kSlantHeight = 1;  ///< The kind byte of a slant antenna height.

/// The header of a record of any kind.
struct Header {
  std::uint16_t magic = 0;
  std::uint16_t length = 0;  ///< The offset of the checksum, the last two bytes of the record.
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
/// The length of the longest record of any kind, in bytes.
inline constexpr std::size_t kLongestRecord =
    std::numeric_limits<decltype(Header::length)>::max() + kChecksumSize;
inline constexpr std::size_t kTypeAt = OffsetOf<Header>(Field::kType);
/// The checksum covers the bytes starting with the length: the magic is not included.
inline constexpr std::size_t kSummedFrom = OffsetOf<Header>(Field::kLength);
/// The byte that every record begins with.
inline constexpr std::uint8_t kFirstByte = kMagic & 0xFF;

inline bool Header::IsRecord() const { return magic == kMagic && length >= kMinLength; }

/// The checksum of a frame whose length is `length`: minus the sum of its bytes from `kSummedFrom`
/// up to `length`, in 16 bits. 0 for lengths below 3.
std::uint16_t Checksum(const std::uint8_t* frame, std::size_t length);

/// Whether the checksum at `length` is correct.
bool HasRightChecksum(const std::uint8_t* frame, std::size_t length);

/// The outcome of decoding a frame.
using Decoded = GPSDecodeResult;

/// Reads a whole frame in memory, including header and checksum. On failure nothing changes, except
/// that the blocks before one that does not fit are stored.
Decoded Decode(Bytes frame, GPSMeasDataImplC& measurement, GPSRecordFileInfo& info);

/// The same for a whole measurement frame whose header and checksum are known to be correct.
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

/// The result of encoding: the size of the frame in bytes, or 0 and the first field refused.
struct Encoded {
  std::size_t size = 0;
  Refusal refusal;
};

/// Makes the shortest frame that, read into a new measurement and a zeroed info, gives back number,
/// name and flags of the info, every present field of the measurement, the masks, and stored pairs
/// of systems 2 and 3 even if they are not present. A field whose presence bit is clear is omitted,
/// whatever it stores. Ignored bytes are 0.
///
/// Refuses everything that such reading cannot give back: the week of time B, status bit 2, a
/// status bit or an info flag without exactly one of the two info flags, a name of more than 17
/// units or not in the shortest UTF-8, an antenna height with a horizontal offset, a single value,
/// a component of the vector that single precision cannot represent, a present pair of system 2 or
/// 3 whose second value is 0, flags above 1, values B and C above 255, a list of more than 31
/// entries; and the first block, in the order of the frame, that makes the length exceed 498.
///
/// \param frame  receives the frame in its first `size` bytes, unless it is refused.
Encoded Encode(const GPSMeasDataImplC& measurement, const GPSRecordFileInfo& info,
               std::span<std::uint8_t, kMaxSize> frame);

/// The fields that an update rewrites. The type is explicit because g++ 12 puts a constant whose
/// type is deduced into writable memory.
inline constexpr std::array<Field, 5> kUpdatedFields{Field::kFileKind, Field::kName, Field::kNumber,
                                                     Field::kHeight, Field::kHeightKind};

/// Rewrites the `fields` whose blocks the flags of the frame announce. Without a measurement, the
/// file flags and the name count as present and the antenna height as absent, whatever the flags.
/// `fields` are among `kUpdatedFields`. `Build` sets the checksum. `frame` is the whole buffer: if
/// a frame is too short for its blocks, bytes after it are written.
void Patch(std::span<std::uint8_t, kMaxSize> frame, const GPSMeasDataImplC* measurement,
           const GPSRecordFileInfo& info, std::span<const Field> fields = kUpdatedFields);

/// For a frame without a sub-type.
inline constexpr int kNoSubType = -1;

/// Writes header and checksum around a payload that is already in `buffer`.
///
/// The frame has `payload` + 7 bytes, and one more for a sub-type of 1 or above. A sub-type of 0 to
/// 255 is written after the type: 0 is written but not counted in the size.
/// \return the size; 0, with nothing written, if `buffer` is smaller or the length needs more than
///         16 bits.
std::size_t Build(std::span<std::uint8_t> buffer, std::uint8_t type, int subType,
                  std::size_t payload);

/// Writes `count` units, up to their first 0, as UTF-8, and a 0 byte only if there is a 0 unit.
///
/// \return the bytes that the whole text needs (a unit that does not fit is skipped but counted);
///         -1, with nothing written, if `count` + 1 exceeds `capacity` or `dst` is null.
int EncodeName(const char16_t* units, std::size_t count, char* dst, std::size_t capacity);

/// Clears `capacity` units and decodes `src` into them, up to its first 0 byte or the limit.
/// \return 0; -1 if there are more units than `capacity`; -2 if the limit cuts a sequence; -3
///         on a stray or missing continuation byte or a lead byte of four or more bytes. The units
///         before a fault are kept.
int DecodeName(const char* src, std::size_t limit, char16_t* units, std::size_t capacity);

}  // namespace SDI::RecordFrame

#endif  // SURVEYDATA_GNSS_RECORD_FRAME_H_
