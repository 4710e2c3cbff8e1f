#include <array>
#include <bit>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <span>

#include <surveydata/gnss/gps_record_file.h>
#include <surveydata/gnss/record_frame.h>

namespace SDI {
namespace {

using RecordFrame::Header;

// The one handle that both operations share.
std::FILE* recordFile = nullptr;

// Closes the handle on every way out.
class RecordFileCloserC {
 public:
  RecordFileCloserC() = default;
  RecordFileCloserC(const RecordFileCloserC&) = delete;
  RecordFileCloserC& operator=(const RecordFileCloserC&) = delete;
  ~RecordFileCloserC() {
    std::fclose(recordFile);
    recordFile = nullptr;
  }
};

// Copies `text` up to its terminator or the end of its array.
template <std::size_t N>
char* Put(char* to, const char (&text)[N]) {
  const void* const end = std::memchr(text, 0, N);
  const std::size_t length =
      end != nullptr ? static_cast<std::size_t>(static_cast<const char*>(end) - text) : N;
  std::memcpy(to, text, length);
  return to + length;
}

bool Open(const GPSRecordFileInfo& info) {
  char name[sizeof(info.path) + 1 + sizeof(info.extension) + 1];
  char* end = Put(name, info.path);
  *end++ = '.';
  end = Put(end, info.extension);
  *end = '\0';
  recordFile = std::fopen(name, "rb+");
  return recordFile != nullptr;
}

// Offsets of 2 GiB and more need a seek of 64 bits.
bool SeekTo(std::uint32_t offset) {
#if defined(_WIN32)
  return _fseeki64(recordFile, offset, SEEK_SET) == 0;
#else
  return std::fseek(recordFile, static_cast<long>(offset), SEEK_SET) == 0;
#endif
}

bool Read(std::span<std::uint8_t> bytes) {
  return std::fread(bytes.data(), 1, bytes.size(), recordFile) == bytes.size();
}

using Buffer = std::array<std::uint8_t, RecordFrame::kMaxSize>;

// What stands behind the header of a frame.
std::span<std::uint8_t> RestOf(Buffer& buffer, const Header& header) {
  return std::span(buffer).subspan(RecordFrame::kHeaderSize,
                                   header.Size() - RecordFrame::kHeaderSize);
}

// Rewrites the blocks of a frame that an update may change.
void Patch(Buffer& frame, const GPSMeasDataImplC* measurement, const GPSRecordFileInfo& info) {
  constexpr std::size_t kFileFlagsSize = 12;
  constexpr std::size_t kNameSize = 38;
  constexpr std::size_t kKindAt = 6;

  const std::uint16_t flags = measurement != nullptr
                                  ? boost::endian::load_little_u16(&frame[RecordFrame::kFlags1At])
                                  : std::uint16_t{RecordFrame::kFileFlags | RecordFrame::kName};
  std::uint8_t* block = &frame[RecordFrame::kBlocksAt];

  if ((flags & RecordFrame::kFileFlags) != 0) {
    block[kKindAt] = (info.flags & GPSRecordFileInfo::kKindZero) != 0 ? 0 : 1;
    block += kFileFlagsSize;
  }
  if ((flags & RecordFrame::kName) != 0) {
    char16_t units[65];
    RecordFrame::DecodeName(info.name, sizeof(info.name), units, std::size(units));
    for (std::size_t i = 0; i < RecordFrame::kNameUnits; ++i) {
      boost::endian::store_little_u16(block + 2 * i, units[i]);
    }
    boost::endian::store_little_s32(block + 2 * RecordFrame::kNameUnits, info.number);
    block += kNameSize;
  }
  if ((flags & RecordFrame::kAntennaHeight) != 0) {
    const GPSAntHeightImplC none;
    const bool isSet = (measurement->GetSetMask() & GPSMeasDataImplC::kHasAntennaHeight) != 0;
    const GPSAntHeightImplC& antenna = isSet ? measurement->GetAntennaHeight() : none;
    float height = 0.0F;
    bool isVertical = true;
    antenna.GetHeight(height, isVertical);
    boost::endian::store_little_u32(block,
                                    std::bit_cast<std::uint32_t>(antenna.GetVerticalHeight()));
    block[4] = isVertical ? 0 : RecordFrame::kSlantHeight;
  }
}

}  // namespace

std::uint32_t GPSRecordFileC::ReadGPSMeasData(GPSMeasDataImplC* measurement,
                                              GPSRecordFileInfo* info) {
  if (measurement == nullptr || info == nullptr || !Open(*info)) return kNoFile;
  const RecordFileCloserC closer;
  if (!SeekTo(info->offset)) return kBadFrame;

  Buffer frame;
  if (!Read(std::span(frame).first<RecordFrame::kHeaderSize>())) return kDone;
  const Header header = Header::Load(frame.data());
  if (!header.IsMeasurement()) return kBadFrame;
  if (!Read(RestOf(frame, header))) return kDone;
  return RecordFrame::Decode(std::span(frame).first(header.Size()), *measurement, *info);
}

std::uint32_t GPSRecordFileC::WriteGPSMeasData(const GPSMeasDataImplC* measurement,
                                               GPSRecordFileInfo* info) {
  if (info == nullptr || !Open(*info)) return kNoFile;
  const RecordFileCloserC closer;
  if (!SeekTo(info->offset)) return kBadFrame;

  Buffer frame = {};  // zeroed: a frame that the file's end cuts is written out whole
  if (!Read(std::span(frame).first<RecordFrame::kHeaderSize>())) return kNoFile;
  const Header header = Header::Load(frame.data());
  if (!header.IsMeasurement()) return kBadFrame;
  if (Read(RestOf(frame, header))) {
    if (!RecordFrame::HasRightChecksum(frame.data(), header.length)) return kBadFrame;
    Patch(frame, measurement, *info);
  }

  const std::size_t size = RecordFrame::Build(frame, RecordFrame::kType, RecordFrame::kNoSubType,
                                              header.length - RecordFrame::kHeaderSize);
  if (Header::Load(frame.data()).length != header.length) return kNoFile;
  if (!SeekTo(info->offset)) return kNoFile;
  std::fwrite(frame.data(), 1, size, recordFile);
  return kDone;
}

}  // namespace SDI
