#include <array>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <span>

#include <surveydata/gnss/file_access.h>
#include <surveydata/gnss/gps_record_file.h>
#include <surveydata/gnss/record_frame.h>

namespace SDI {
namespace {

using RecordFrame::Header;

// The one handle that both operations share.
std::FILE* recordFile = nullptr;

// Closes the handle on every return.
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

bool Read(std::span<std::uint8_t> bytes) {
  return std::fread(bytes.data(), 1, bytes.size(), recordFile) == bytes.size();
}

using Buffer = std::array<std::uint8_t, RecordFrame::kMaxSize>;

// The bytes after the header of a frame.
std::span<std::uint8_t> RestOf(Buffer& buffer, const Header& header) {
  return std::span(buffer).subspan(RecordFrame::kHeaderSize,
                                   header.Size() - RecordFrame::kHeaderSize);
}

}  // namespace

std::uint32_t GPSRecordFileC::ReadGPSMeasData(GPSMeasDataImplC* measurement,
                                              GPSRecordFileInfo* info) {
  if (measurement == nullptr || info == nullptr || !Open(*info)) return kNoFile;
  const RecordFileCloserC closer;
  if (!FileAccess::Seek(recordFile, info->offset)) return kBadFrame;

  Buffer frame;
  if (!Read(std::span(frame).first<RecordFrame::kHeaderSize>())) return kDone;
  const Header header = Header::Load(frame.data());
  if (!header.IsMeasurement()) return kBadFrame;
  if (!Read(RestOf(frame, header))) return kDone;
  const RecordFrame::Decoded decoded =
      RecordFrame::Decode(std::span(frame).first(header.Size()), *measurement, *info);
  return decoded.IsDone() ? kDone : kBadFrame;
}

std::uint32_t GPSRecordFileC::WriteGPSMeasData(const GPSMeasDataImplC* measurement,
                                               GPSRecordFileInfo* info) {
  if (info == nullptr || !Open(*info)) return kNoFile;
  const RecordFileCloserC closer;
  if (!FileAccess::Seek(recordFile, info->offset)) return kBadFrame;

  Buffer frame = {};  // zeroed: a frame that the end of the file cuts is written whole
  if (!Read(std::span(frame).first<RecordFrame::kHeaderSize>())) return kNoFile;
  const Header header = Header::Load(frame.data());
  if (!header.IsMeasurement()) return kBadFrame;
  if (Read(RestOf(frame, header))) {
    if (!RecordFrame::HasRightChecksum(frame.data(), header.length)) return kBadFrame;
    RecordFrame::Patch(frame, measurement, *info);
  }

  const std::size_t size = RecordFrame::Build(frame, RecordFrame::kType, RecordFrame::kNoSubType,
                                              header.length - RecordFrame::kHeaderSize);
  if (Header::Load(frame.data()).length != header.length) return kNoFile;
  if (!FileAccess::Seek(recordFile, info->offset)) return kNoFile;
  std::fwrite(frame.data(), 1, size, recordFile);
  return kDone;
}

}  // namespace SDI
