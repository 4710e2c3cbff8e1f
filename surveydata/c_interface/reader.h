#ifndef SURVEYDATA_C_INTERFACE_READER_H_
#define SURVEYDATA_C_INTERFACE_READER_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include <surveydata/c_interface/surveydata.h>
#include <surveydata/gnss/gps_record_columns.h>
#include <surveydata/gnss/gps_record_reader.h>

/// \file
/// Internal: the handle of a reader.

namespace SDI::CInterface {

surveydata_status StatusOf(GPSReaderState state);

/// Releases the context of a source when it is destroyed.
class ContextC {
 public:
  ContextC() = default;
  ContextC(const ContextC&) = delete;
  ContextC& operator=(const ContextC&) = delete;
  ~ContextC() {
    if (release_ != nullptr) release_(context_);
  }
  void Own(const surveydata_source& source) {
    release_ = source.release;
    context_ = source.context;
  }

 private:
  void (*release_)(void*) = nullptr;
  void* context_ = nullptr;
};

/// Damaged headers that a reader has reported and that the caller has not received yet.
class DamagedHeadersC {
 public:
  /// Thrown when there is no room for another one.
  struct Full {};

  bool IsEmpty() const { return first_ == count_; }
  void Clear() { first_ = count_ = 0; }
  void Push(const GPSDamagedHeader& header) {
    headers_[count_++] = header;
    if (count_ == headers_.size()) throw Full();
  }
  GPSDamagedHeader Pop() {
    const GPSDamagedHeader header = headers_[first_++];
    if (IsEmpty()) Clear();
    return header;
  }

 private:
  std::array<GPSDamagedHeader, 256> headers_;
  std::size_t first_ = 0;
  std::size_t count_ = 0;
};

}  // namespace SDI::CInterface

struct surveydata_reader {
 public:
  template <class... Source>
  explicit surveydata_reader(Source&&... source) : reader_(std::forward<Source>(source)...) {}

  /// The reader, to be used directly: entries that `Next` has read ahead are discarded.
  SDI::GPSRecordReaderC& GetReader() {
    headers_.Clear();
    isTaking_ = false;
    hasEntry_ = false;
    return reader_;
  }
  const SDI::GPSRecordReaderC& GetReader() const { return reader_; }
  /// The same, to read columns.
  SDI::GPSColumnReaderC& GetColumns() {
    if (columns_ == nullptr) columns_ = std::make_unique<SDI::GPSColumnReaderC>(reader_);
    GetReader();
    return *columns_;
  }
  /// The number of frames that were left out when columns were read.
  std::uint64_t GetLeftOut() const { return columns_ != nullptr ? columns_->GetLeftOut() : 0; }
  /// Why there is nothing more to read.
  surveydata_status GetStatus() const { return SDI::CInterface::StatusOf(reader_.GetState()); }
  SDI::CInterface::ContextC& GetContext() { return context_; }

  /// Does not change the position of the reader.
  void SetProgress(SDI::GPSRecordReaderC::ReportProgress report) {
    reader_.SetReportProgress(std::move(report));
  }
  surveydata_status Next(std::uint32_t kinds, surveydata_entry& entry);

 private:
  void TakeHeaders(bool areWanted);
  void Walk();

  SDI::CInterface::ContextC context_;  // destroyed last, after the reader is closed
  SDI::GPSRecordReaderC reader_;
  std::unique_ptr<SDI::GPSColumnReaderC> columns_;  // null until it is used
  bool isReporting_ = false;
  bool isTaking_ = false;
  SDI::CInterface::DamagedHeadersC headers_;
  bool hasEntry_ = false;  // `entry_`, which follows the headers
  SDI::GPSRecordEntry entry_;
};

#endif  // SURVEYDATA_C_INTERFACE_READER_H_
