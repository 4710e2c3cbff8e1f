#include <array>
#include <cmath>
#include <cstddef>

#include <surveydata/gnss/frame_blocks.h>
#include <surveydata/gnss/record_change.h>

namespace SDI::RecordFrame {
namespace {

// False if a frame cannot store the name.
bool TakeName(std::string_view text, GPSRecordFileInfo& info) {
  if (text.size() > sizeof(info.name) || text.find('\0') != text.npos) return false;
  text.copy(info.name, text.size());
  GPSMeasDataImplC measurement;
  Source from{measurement, info};
  Name().Load(from);
  return !from.IsRefused();
}

// Fills the blocks with the changes. Only the fields that change are written.
class ChangerC {
 public:
  ChangerC(const Changes& changes, const GPSRecordFileInfo& info)
      : changes_(changes), info_(info) {}

  void operator()(FileFlags& /*flags*/) const {}
  void operator()(Name& name) const { name.Take(info_); }
  void operator()(AntennaHeight& antenna) const {
    if (!changes_.antenna) return;
    antenna = {changes_.antenna->height,
               changes_.antenna->isSlant ? kSlantHeight : std::uint8_t{0}};
  }

 private:
  const Changes& changes_;
  const GPSRecordFileInfo& info_;
};

}  // namespace

bool Change(std::span<std::uint8_t> frame, const Changes& changes) {
  Times times;
  FrameCursorC in(frame.subspan(kHeaderSize));
  times.Walk(in);
  const auto has = [&](Block block) { return (times.flags1 & Blocks1::BitOf(block)) != 0; };
  GPSRecordFileInfo info;
  info.number = changes.number.value_or(0);
  if ((changes.name || changes.number) && !has(Block::kName)) return false;
  if (changes.name && !TakeName(*changes.name, info)) return false;
  if (changes.antenna && !has(Block::kAntennaHeight)) return false;
  if (changes.antenna && !std::isfinite(changes.antenna->height)) return false;

  std::array<Field, 4> fields{};  // initially `kMagic`, which no block has
  std::size_t count = 0;
  if (changes.name) fields[count++] = Field::kName;
  if (changes.number) fields[count++] = Field::kNumber;
  if (changes.antenna) {
    fields[count++] = Field::kHeight;
    fields[count++] = Field::kHeightKind;
  }
  FramePatchC out(frame.subspan(kBlocksAt), std::span(fields).first(count));
  PatchBlocks(times.flags1, out, ChangerC(changes, info));
  Build(frame, kType, kNoSubType, frame.size() - kHeaderSize - kChecksumSize);
  return true;
}

}  // namespace SDI::RecordFrame
