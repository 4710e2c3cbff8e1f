#include <algorithm>
#include <iterator>

#include <surveydata/gnss/record_frame.h>

#include <record/decoded_record.h>

namespace Tool {

std::string_view DecodedRecord::NameBytes() const {
  const char* const end = std::find(std::begin(info.name), std::end(info.name), '\0');
  return {info.name, static_cast<std::size_t>(end - info.name)};
}

std::u16string DecodedRecord::Name() const {
  char16_t units[sizeof(info.name) + 1];  // at least as many as its bytes can decode to
  SDI::RecordFrame::DecodeName(info.name, sizeof(info.name), units, std::size(units));
  return units;
}

DecodedRecord Decode(std::uint64_t offset, std::span<const std::uint8_t> frame) {
  DecodedRecord record;
  record.offset = offset;
  record.size = frame.size();
  record.result = SDI::RecordFrame::Decode(frame, record.measurement, record.info).IsDone()
                      ? SDI::GPSRecordFileC::kDone
                      : SDI::GPSRecordFileC::kBadFrame;
  return record;
}

void DecodeChecked(std::uint64_t offset, std::span<const std::uint8_t> frame,
                   DecodedRecord& record) {
  static const SDI::GPSMeasDataImplC kFresh;
  record.offset = offset;
  record.size = frame.size();
  record.measurement = kFresh;
  record.info = {};
  record.result = SDI::RecordFrame::DecodeChecked(frame, record.measurement, record.info).IsDone()
                      ? SDI::GPSRecordFileC::kDone
                      : SDI::GPSRecordFileC::kBadFrame;
}

}  // namespace Tool
