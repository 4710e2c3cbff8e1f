#include <surveydata/gnss/frame_blocks.h>
#include <surveydata/gnss/record_frame.h>

namespace SDI::RecordFrame {
namespace {

// Writes the blocks of `Blocks` that are needed, up to the first that is refused. Returns the flags
// word that announces them.
template <class Blocks>
std::uint16_t WriteBlocks(Source& from, FrameWriterC& out) {
  std::uint16_t flags = 0;
  Blocks::WhileTrue([&](auto row) {
    typename decltype(row)::Content content;
    const bool isNeeded = content.Load(from);
    if (from.IsRefused()) return false;
    if (!isNeeded) return true;
    flags |= row.kBit;
    content.Walk(out);
    if (!out.Ok()) from.Refuse(content.kField, Refusal::Reason::kTooLong);
    return out.Ok();
  });
  return flags;
}

}  // namespace

Encoded Encode(const GPSMeasDataImplC& measurement, const GPSRecordFileInfo& info,
               std::span<std::uint8_t, kMaxSize> frame) {
  Source from{measurement, info};
  const auto payload = frame.subspan<kHeaderSize, kMaxLength - kHeaderSize>();
  Times times;
  times.Load(from);
  FrameWriterC blocks(payload.subspan<SizeOf<Times>()>());
  times.flags1 = WriteBlocks<Blocks1>(from, blocks);
  std::size_t end = kBlocksAt + blocks.At();

  // Flags word 2 is written after its blocks, and omitted if there are none.
  More more;
  blocks.Skip(SizeOf<More>());
  if (!from.IsRefused()) more.flags2 = WriteBlocks<Blocks2>(from, blocks);
  if (from.IsRefused()) return {0, from.refusal};
  if (more.flags2 != 0) {
    FrameWriterC word(frame.subspan(end));
    more.Walk(word);
    times.flags1 |= kMore;
    end = kBlocksAt + blocks.At();
  }
  FrameWriterC front(payload);
  times.Walk(front);
  return {Build(frame, kType, kNoSubType, end - kHeaderSize), {}};
}

}  // namespace SDI::RecordFrame
