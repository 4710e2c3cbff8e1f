#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>

#include <fmt/format.h>

#include <surveydata/gnss/frame_blocks.h>

#include <command_line/message.h>
#include <record/damaged_frames.h>

namespace Tool {
namespace {

namespace Frame = SDI::RecordFrame;

const char* Reason(std::uint64_t frameEnd, std::uint64_t gapEnd, std::uint64_t fileSize) {
  if (frameEnd > fileSize) return "cut by the end of the file";
  return frameEnd > gapEnd ? "runs into the next record" : "wrong checksum";
}

}  // namespace

DamagedFrameFinderC::DamagedFrameFinderC(const std::string& file)
    : name_(file), file_(std::fopen(file.c_str(), "rb"), &std::fclose) {
  if (file_ == nullptr) {
    FailToRead(file);
  }
}

void DamagedFrameFinderC::Find(const SDI::GPSRecordEntry& gap, RecordWalkC& walk,
                               const std::function<void(const DamagedFrame&)>& report) {
  constexpr int kFirstByte = Frame::kMagic & 0xFF;
  const std::uint64_t gapEnd = gap.offset + gap.size;
  std::array<std::uint8_t, std::size_t{64} * 1024> bytes;
  for (std::uint64_t at = gap.offset; at + Frame::kHeaderSize <= gapEnd;) {
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(bytes.size(), gapEnd - at));
    if (fseeko(file_.get(), static_cast<off_t>(at), SEEK_SET) != 0 ||
        std::fread(bytes.data(), 1, count, file_.get()) != count) {
      FailToRead(name_);
    }
    const std::size_t starts = count - Frame::kHeaderSize + 1;
    for (std::size_t i = 0; i < starts; ++i) {
      const void* const found = std::memchr(&bytes[i], kFirstByte, starts - i);
      if (found == nullptr) break;
      i = static_cast<std::size_t>(static_cast<const std::uint8_t*>(found) - bytes.data());
      const auto header = Frame::Header::Load(&bytes[i]);
      // Less than times and flags is no frame, whatever the checksum.
      if (!header.IsMeasurement() || header.length < Frame::kBlocksAt) continue;
      const std::uint64_t end = at + i + header.Size();
      report({at + i, header.Size(), Reason(end, gapEnd, walk.GetFileSize()),
              end > gapEnd && end <= walk.GetFileSize()});
    }
    at += starts;
    walk.ShowProgress(at);
  }
}

}  // namespace Tool
