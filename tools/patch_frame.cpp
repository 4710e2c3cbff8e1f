#include "patch_frame.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

#include <fmt/format.h>
#include <unistd.h>

#include <surveydata/gnss/record_frame.h>

#include "decoded_record.h"
#include "exit_code.h"

namespace Tool {
namespace {

namespace Frame = SDI::RecordFrame;
namespace fs = std::filesystem;

constexpr std::string_view kNameBlock = "name";
constexpr std::string_view kAntennaBlock = "antenna height";

std::string Utf8Of(const std::u16string& units) {
  std::string bytes(3 * units.size(), '\0');
  bytes.resize(static_cast<std::size_t>(
      std::max(0, Frame::EncodeName(units.data(), units.size(), bytes.data(), bytes.size() + 1))));
  return bytes;
}

// A record file of one frame, for the library's writer, which works on files alone.
class OneFrameFileC {
 public:
  explicit OneFrameFileC(std::span<const std::uint8_t> frame)
      : path_((fs::temp_directory_path() / "surveydata-XXXXXX.rec").string()) {
    const int file = mkstemps(path_.data(), static_cast<int>(kExtension.size()) + 1);
    if (file < 0) Refuse("cannot write");
    const bool isWritten =
        write(file, frame.data(), frame.size()) == static_cast<ssize_t>(frame.size());
    if (close(file) != 0 || !isWritten) Refuse("cannot write");
  }
  OneFrameFileC(const OneFrameFileC&) = delete;
  OneFrameFileC& operator=(const OneFrameFileC&) = delete;
  ~OneFrameFileC() { unlink(path_.c_str()); }

  void Write(const SDI::GPSMeasDataImplC& measurement, SDI::GPSRecordFileInfo info) const {
    const std::string_view stem =
        std::string_view(path_).substr(0, path_.size() - kExtension.size() - 1);
    if (stem.size() >= sizeof(info.path)) Refuse("too long a path for");
    std::fill(std::begin(info.path), std::end(info.path), '\0');
    stem.copy(info.path, stem.size());
    std::fill(std::begin(info.extension), std::end(info.extension), '\0');
    kExtension.copy(info.extension, kExtension.size());
    info.offset = 0;
    if (SDI::GPSRecordFileC::WriteGPSMeasData(&measurement, &info) != SDI::GPSRecordFileC::kDone) {
      Refuse("cannot patch");
    }
  }

  std::vector<std::uint8_t> Read() const {
    std::ifstream file(path_, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

 private:
  static constexpr std::string_view kExtension = "rec";

  [[noreturn]] void Refuse(std::string_view what) const {
    throw ToolErrorC(ExitCode::kFileError, fmt::format("{} the temporary file {}: {}", what, path_,
                                                       std::strerror(errno)));
  }

  std::string path_;
};

bool IsAskedFor(const FrameField& field, const FrameChanges& changes) {
  if (field.block == kNameBlock) {
    return field.field == "name" ? changes.name.has_value() : changes.number.has_value();
  }
  return field.block == kAntennaBlock && changes.antennaHeight.has_value();
}

bool HasBlock(const std::vector<FrameField>& fields, std::string_view block) {
  return std::any_of(fields.begin(), fields.end(),
                     [&](const FrameField& field) { return field.block == block; });
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
  std::vector<FrameField> fields = ExplainFrame(frame);
  if ((changes.name || changes.number) && !HasBlock(fields, kNameBlock)) {
    throw ToolErrorC(ExitCode::kFinding, "the frame has no room for a name and number");
  }
  if (changes.antennaHeight && !HasBlock(fields, kAntennaBlock)) {
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
  const OneFrameFileC file(frame);
  file.Write(measurement, info);
  std::vector<std::uint8_t> after = file.Read();

  if (after.size() != frame.size()) {
    throw ToolErrorC(ExitCode::kFileError, "the patched frame has another size");
  }
  for (const FrameField& field : fields) {
    if (IsAskedFor(field, changes)) continue;
    std::copy_n(frame.begin() + static_cast<std::ptrdiff_t>(field.at), field.size,
                after.begin() + static_cast<std::ptrdiff_t>(field.at));
  }
  Frame::Build(after, Frame::kType, Frame::kNoSubType,
               frame.size() - Frame::kHeaderSize - Frame::kChecksumSize);
  if (!IsAsAsked(before, Decode(0, after), changes)) {
    throw ToolErrorC(ExitCode::kFileError, "the patched frame does not read back as asked");
  }
  fields = ExplainFrame(after);
  return {{frame.begin(), frame.end()}, std::move(after), std::move(fields)};
}

}  // namespace Tool
