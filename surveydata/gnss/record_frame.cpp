#include <algorithm>
#include <bit>
#include <iterator>
#include <numeric>

#include <surveydata/gnss/record_frame.h>
#include <surveydata/object_model/utf8.h>

namespace SDI::RecordFrame {

Header Header::Load(const std::uint8_t* bytes) {
  return {boost::endian::load_little_u16(bytes), boost::endian::load_little_u16(bytes + 2),
          bytes[4]};
}

std::uint16_t Checksum(const std::uint8_t* frame, std::size_t length) {
  if (length < 3) return 0;
  // Summed up in 16 bits, which is all that counts and twice as quick as in 32.
  return static_cast<std::uint16_t>(-std::accumulate(frame + 2, frame + length, std::uint16_t{0}));
}

bool HasRightChecksum(const std::uint8_t* frame, std::size_t length) {
  return boost::endian::load_little_u16(frame + length) == Checksum(frame, length);
}

std::uint32_t Decode(Bytes frame, GPSMeasDataImplC& measurement, GPSRecordFileInfo& info) {
  if (frame.size() < kHeaderSize) return GPSRecordFileC::kBadFrame;
  const Header header = Header::Load(frame.data());
  if (!header.IsMeasurement() || frame.size() < header.Size() ||
      !HasRightChecksum(frame.data(), header.length)) {
    return GPSRecordFileC::kBadFrame;
  }
  FrameCursorC in(frame.subspan(kHeaderSize, header.length - kHeaderSize));
  return ReadPayload(in, Target{measurement, info}) ? GPSRecordFileC::kDone
                                                    : GPSRecordFileC::kBadFrame;
}

std::size_t Build(std::span<std::uint8_t> buffer, std::uint8_t type, int subType,
                  std::size_t payload) {
  const std::size_t size = payload + 7 + (subType >= 1 ? 1 : 0);
  if (payload > 0xFFFF || size - kChecksumSize > 0xFFFF || buffer.size() < size) return 0;
  const std::size_t length = size - kChecksumSize;
  boost::endian::store_little_u16(buffer.data(), kMagic);
  boost::endian::store_little_u16(&buffer[2], static_cast<std::uint16_t>(length));
  buffer[4] = type;
  if (0 <= subType && subType <= 255) buffer[5] = static_cast<std::uint8_t>(subType);
  boost::endian::store_little_u16(&buffer[length], Checksum(buffer.data(), length));
  return size;
}

void Patch(std::span<std::uint8_t, kMaxSize> frame, const GPSMeasDataImplC* measurement,
           const GPSRecordFileInfo& info) {
  constexpr std::size_t kFileFlagsSize = 12;
  constexpr std::size_t kNameSize = 38;
  constexpr std::size_t kKindAt = 6;

  const std::uint16_t flags = measurement != nullptr
                                  ? boost::endian::load_little_u16(&frame[kFlags1At])
                                  : std::uint16_t{kFileFlags | kName};
  std::uint8_t* block = &frame[kBlocksAt];

  if ((flags & kFileFlags) != 0) {
    block[kKindAt] = (info.flags & GPSRecordFileInfo::kKindZero) != 0 ? 0 : 1;
    block += kFileFlagsSize;
  }
  if ((flags & kName) != 0) {
    char16_t units[65];
    DecodeName(info.name, sizeof(info.name), units, std::size(units));
    for (std::size_t i = 0; i < kNameUnits; ++i) {
      boost::endian::store_little_u16(block + 2 * i, units[i]);
    }
    boost::endian::store_little_s32(block + 2 * kNameUnits, info.number);
    block += kNameSize;
  }
  if ((flags & kAntennaHeight) != 0) {
    const GPSAntHeightImplC none;
    const bool isSet = (measurement->GetSetMask() & GPSMeasDataImplC::kHasAntennaHeight) != 0;
    const GPSAntHeightImplC& antenna = isSet ? measurement->GetAntennaHeight() : none;
    float height = 0.0F;
    bool isVertical = true;
    antenna.GetHeight(height, isVertical);
    boost::endian::store_little_u32(block,
                                    std::bit_cast<std::uint32_t>(antenna.GetVerticalHeight()));
    block[4] = isVertical ? 0 : kSlantHeight;
  }
}

int EncodeName(const char16_t* units, std::size_t count, char* dst, std::size_t capacity) {
  if (dst == nullptr || count + 1 > capacity) return -1;
  return static_cast<int>(API::Utf8::Encode(units, count, dst, capacity));
}

int DecodeName(const char* src, std::size_t limit, char16_t* units, std::size_t capacity) {
  return API::Utf8::Decode(src, limit, units, capacity,
                           {.readsByteAtLimit = false, .acceptsLeadsFromF0 = false})
      .result;
}

}  // namespace SDI::RecordFrame
