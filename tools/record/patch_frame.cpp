#include <algorithm>
#include <cstddef>
#include <utility>

#include <surveydata/gnss/record_change.h>
#include <surveydata/gnss/record_frame.h>

#include <command_line/exit_code.h>
#include <record/decoded_record.h>
#include <record/patch_frame.h>

namespace Tool {
namespace {

namespace Frame = SDI::RecordFrame;
using Frame::Field;

std::string Utf8Of(const std::u16string& units) {
  std::string bytes(3 * units.size(), '\0');
  bytes.resize(static_cast<std::size_t>(
      std::max(0, Frame::EncodeName(units.data(), units.size(), bytes.data(), bytes.size() + 1))));
  return bytes;
}

bool HasField(const std::vector<FrameField>& fields, Field field) {
  return std::any_of(fields.begin(), fields.end(),
                     [&](const FrameField& each) { return each.field == field; });
}

bool LacksName(const std::vector<FrameField>& fields, const FrameChanges& changes) {
  return (changes.name || changes.number) && !HasField(fields, Field::kName);
}
bool LacksHeight(const std::vector<FrameField>& fields, const FrameChanges& changes) {
  return changes.antennaHeight && !HasField(fields, Field::kHeight);
}

// Whether `after` has the requested changes and no others.
bool IsAsAsked(const DecodedRecord& before, const DecodedRecord& after,
               const FrameChanges& changes) {
  if (!after.IsDone() || after.info.flags != before.info.flags) return false;
  if (after.Name() != changes.name.value_or(before.Name())) return false;
  if (after.info.number != changes.number.value_or(before.info.number)) return false;
  SDI::GPSMeasDataImplC expected = before.measurement;
  if (changes.antennaHeight) {
    expected.SetAntennaHeight(
        SDI::GPSAntHeightImplC(*changes.antennaHeight, !changes.isSlant, 0.0F));
  }
  return after.measurement.isEqual(expected);
}

}  // namespace

bool HasRoom(std::span<const std::uint8_t> frame, const FrameChanges& changes) {
  const std::vector<FrameField> fields = ExplainFrame(frame);
  return !LacksName(fields, changes) && !LacksHeight(fields, changes);
}

PatchedFrame PatchFrame(std::span<const std::uint8_t> frame, const FrameChanges& changes) {
  const DecodedRecord before = Decode(0, frame);
  if (!before.IsDone()) {
    throw ToolErrorC(ExitCode::kFinding, "the blocks of the frame do not fit; it is not changed");
  }
  const std::vector<FrameField> fields = ExplainFrame(frame);
  if (LacksName(fields, changes)) {
    throw ToolErrorC(ExitCode::kFinding, "the frame has no room for a name and number");
  }
  if (LacksHeight(fields, changes)) {
    throw ToolErrorC(ExitCode::kFinding, "the frame has no room for an antenna height");
  }

  const std::string name = Utf8Of(changes.name.value_or(u""));
  Frame::Changes rewritten;
  if (changes.name) rewritten.name = name;
  rewritten.number = changes.number;
  if (changes.antennaHeight) rewritten.antenna = {*changes.antennaHeight, changes.isSlant};
  std::vector<std::uint8_t> after(frame.begin(), frame.end());
  const bool isChanged = Frame::Change(after, rewritten);
  if (!isChanged || !IsAsAsked(before, Decode(0, after), changes)) {
    throw ToolErrorC(ExitCode::kFileError,
                     "the patched frame does not read back with the requested values");
  }
  std::vector<FrameField> explained = ExplainFrame(after);
  return {{frame.begin(), frame.end()}, std::move(after), std::move(explained)};
}

}  // namespace Tool
