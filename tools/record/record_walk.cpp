#include <fmt/format.h>

#include <platform/file_error.h>
#include <record/record_input.h>
#include <record/record_walk.h>

namespace Tool {

RecordWalkC::RecordWalkC(std::shared_ptr<InputFileC> input, const RecordFile& file,
                         const RecordPiece& piece,
                         std::function<void(std::uint64_t)> reportProgress)
    : piece_(piece), input_(std::move(input)), reader_(ReadRecords(*input_, piece.stretch)) {
  if (!piece.IsWhole() && input_->FindSize() != file.size) {
    throw FileErrorC(
        fmt::format("cannot read {}: it has been changed by another program", file.name));
  }
  reader_.SetReportProgress(
      [last = piece.stretch.begin, report = std::move(reportProgress)](std::uint64_t at) mutable {
        if (at <= last) return;  // the reader looks back before its stretch
        report(at - last);
        last = at;
      });
}

bool RecordWalkC::Next(SDI::GPSRecordEntry& entry) {
  const bool isFound = reader_.NextEntry(entry);
  if (reader_.GetState() != SDI::GPSReaderState::kOpen) input_->Fail();
  return isFound;
}

}  // namespace Tool
