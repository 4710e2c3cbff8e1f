#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <utility>

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

// The fields that the changes rewrite.
std::vector<Field> FieldsOf(const FrameChanges& changes) {
  std::vector<Field> fields;
  if (changes.name) fields.push_back(Field::kName);
  if (changes.number) fields.push_back(Field::kNumber);
  if (changes.antennaHeight) {
    fields.push_back(Field::kHeight);
    fields.push_back(Field::kHeightKind);
  }
  return fields;
}

bool HasField(const std::vector<FrameField>& fields, Field field) {
  return std::any_of(fields.begin(), fields.end(),
                     [&](const FrameField& each) { return each.field == field; });
}

// Whether `after` holds what was asked for and all else as before.
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

PatchedFrame PatchFrame(std::span<const std::uint8_t> frame, const FrameChanges& changes) {
  const DecodedRecord before = Decode(0, frame);
  if (!before.IsDone()) {
    throw ToolErrorC(ExitCode::kFinding, "the blocks of the frame do not fit; it is left as it is");
  }
  const std::vector<FrameField> fields = ExplainFrame(frame);
  if ((changes.name || changes.number) && !HasField(fields, Field::kName)) {
    throw ToolErrorC(ExitCode::kFinding, "the frame has no room for a name and number");
  }
  if (changes.antennaHeight && !HasField(fields, Field::kHeight)) {
    throw ToolErrorC(ExitCode::kFinding, "the frame has no room for an antenna height");
  }

  SDI::GPSMeasDataImplC measurement = before.measurement;
  SDI::GPSRecordFileInfo info = before.info;
  if (changes.name) {
    const std::string name = Utf8Of(*changes.name);
    std::fill(std::begin(info.name), std::end(info.name), '\0');
    name.copy(info.name, sizeof(info.name));
  }
  if (changes.number) info.number = *changes.number;
  if (changes.antennaHeight) {
    measurement.SetAntennaHeight(
        SDI::GPSAntHeightImplC(*changes.antennaHeight, !changes.isSlant, 0.0F));
  }
  std::array<std::uint8_t, Frame::kMaxSize> buffer{};
  std::copy(frame.begin(), frame.end(), buffer.begin());
  Frame::Patch(buffer, &measurement, info, FieldsOf(changes));
  std::vector<std::uint8_t> after(buffer.begin(),
                                  buffer.begin() + static_cast<std::ptrdiff_t>(frame.size()));
  Frame::Build(after, Frame::kType, Frame::kNoSubType,
               frame.size() - Frame::kHeaderSize - Frame::kChecksumSize);
  if (!IsAsAsked(before, Decode(0, after), changes)) {
    throw ToolErrorC(ExitCode::kFileError, "the patched frame does not read back as asked");
  }
  std::vector<FrameField> explained = ExplainFrame(after);
  return {{frame.begin(), frame.end()}, std::move(after), std::move(explained)};
}

}  // namespace Tool
