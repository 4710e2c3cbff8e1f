#include <cmath>
#include <cstddef>

#include <fmt/format.h>

#include <surveydata/gnss/gps_record_file_info.h>
#include <surveydata/gnss/record_frame.h>

#include <command_line/command.h>
#include <command_line/text.h>
#include <record/frame_values.h>

namespace Tool {
namespace {

constexpr double kHighestAntenna = 1000.0;  // metres

}  // namespace

std::u16string ToFrameName(const std::string& utf8) {
  const auto refuse = [](const std::string& why) { return ValueErrorC(why); };
  const auto units = ToSingleUnits(utf8);
  if (!units) {
    throw refuse("is not UTF-8, or has a character beyond U+FFFF, which a frame cannot hold");
  }
  if (HasControl(*units)) throw refuse("has a control character, which a name must not have");
  if (units->size() > SDI::RecordFrame::kNameUnits) {
    throw refuse(fmt::format("has {} characters; a frame holds {}", units->size(),
                             SDI::RecordFrame::kNameUnits));
  }
  constexpr std::size_t kBytes = sizeof(SDI::GPSRecordFileInfo::name);
  if (utf8.size() > kBytes) {
    throw refuse(fmt::format("needs {} bytes of UTF-8; {} are read back", utf8.size(), kBytes));
  }
  return *units;
}

float ToAntennaHeight(double metres) {
  if (!(0.0 <= metres && metres <= kHighestAntenna) || std::signbit(metres)) {
    throw ValueErrorC(fmt::format("must be from 0 to {} metres", kHighestAntenna));
  }
  return static_cast<float>(metres);
}

}  // namespace Tool
