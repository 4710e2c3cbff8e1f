#include <bit>

#include <surveydata/gnss/byte_sum.h>
#include <surveydata/gnss/frame_blocks.h>
#include <surveydata/gnss/record_frame.h>
#include <surveydata/object_model/utf8.h>

namespace SDI::RecordFrame {
namespace {

// Fills the blocks that an update of a frame rewrites.
class UpdaterC {
 public:
  UpdaterC(const GPSMeasDataImplC* measurement, const GPSRecordFileInfo& info)
      : measurement_(measurement), info_(info) {}

  void operator()(FileFlags& flags) const {
    flags.kind = (info_.flags & GPSRecordFileInfo::kKindZero) != 0 ? 0 : 1;
  }
  void operator()(Name& name) const { name.Take(info_); }
  // The vertical height, though the kind may say that it is a slant height.
  void operator()(AntennaHeight& antenna) const {
    const GPSAntHeightImplC none;
    // NOLINTNEXTLINE(clang-analyzer-core.CallAndMessage): null only if flags lack this block
    const bool isSet = (measurement_->GetSetMask() & GPSMeasDataImplC::kHasAntennaHeight) != 0;
    const GPSAntHeightImplC& held = isSet ? measurement_->GetAntennaHeight() : none;
    bool isVertical = true;
    held.GetHeight(antenna.height, isVertical);
    antenna.height = held.GetVerticalHeight();
    antenna.kind = isVertical ? 0 : kSlantHeight;
  }

 private:
  const GPSMeasDataImplC* measurement_;  // not null if a frame with an antenna height is updated
  const GPSRecordFileInfo& info_;
};

}  // namespace

Header Header::Load(const std::uint8_t* bytes) {
  Header header;
  FrameCursorC in({bytes, kHeaderSize});
  header.Walk(in);
  return header;
}

std::uint16_t Checksum(const std::uint8_t* frame, std::size_t length) {
  if (length <= kSummedFrom) return 0;
  return static_cast<std::uint16_t>(-SumOfBytes(frame + kSummedFrom, length - kSummedFrom));
}

bool HasRightChecksum(const std::uint8_t* frame, std::size_t length) {
  return boost::endian::load_little_u16(frame + length) == Checksum(frame, length);
}

Decoded Decode(Bytes frame, GPSMeasDataImplC& measurement, GPSRecordFileInfo& info) {
  using enum GPSRecordOutcome;
  if (frame.size() < kHeaderSize) return {kCut};
  const Header header = Header::Load(frame.data());
  if (!header.IsMeasurement()) return {kNoMeasurement};
  if (frame.size() < header.Size()) return {kCut};
  if (!HasRightChecksum(frame.data(), header.length)) return {kWrongChecksum};
  return DecodeChecked(frame.first(header.Size()), measurement, info);
}

Decoded DecodeChecked(Bytes frame, GPSMeasDataImplC& measurement, GPSRecordFileInfo& info) {
  FrameCursorC in(frame.subspan(kHeaderSize, frame.size() - kHeaderSize - kChecksumSize));
  const std::optional<Block> bad = ReadPayload(in, Target{measurement, info});
  if (bad) return {GPSRecordOutcome::kBlockDoesNotFit, *bad};
  return {};
}

std::size_t Build(std::span<std::uint8_t> buffer, std::uint8_t type, int subType,
                  std::size_t payload) {
  const std::size_t size = kHeaderSize + (subType >= 1 ? 1 : 0) + payload + kChecksumSize;
  if (payload > kLongestRecord || size > kLongestRecord || buffer.size() < size) return 0;
  Header header{kMagic, static_cast<std::uint16_t>(size - kChecksumSize), type};
  FrameWriterC out(buffer);
  header.Walk(out);
  if (0 <= subType && subType <= 255) buffer[kHeaderSize] = static_cast<std::uint8_t>(subType);
  boost::endian::store_little_u16(&buffer[header.length], Checksum(buffer.data(), header.length));
  return size;
}

void Patch(std::span<std::uint8_t, kMaxSize> frame, const GPSMeasDataImplC* measurement,
           const GPSRecordFileInfo& info, std::span<const Field> fields) {
  std::uint16_t flags = Blocks1::BitOf(Block::kFileFlags) | Blocks1::BitOf(Block::kName);
  if (measurement != nullptr) {
    Times times;
    FrameCursorC in(frame.subspan<kHeaderSize>());
    times.Walk(in);
    flags = times.flags1;
  }
  FramePatchC out(frame.subspan<kBlocksAt>(), fields);
  PatchBlocks(flags, out, UpdaterC(measurement, info));
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
