#include <memory>

#include <surveydata/gnss/file_access.h>
#include <surveydata/gnss/gps_record_index.h>
#include <surveydata/gnss/record_walk.h>

namespace SDI {

static_assert(GPSRecordEntry::kMeasurement == RecordFrame::kType);
static_assert(GPSRecordEntry::kLongestMeasurement == RecordFrame::kMaxSize);

struct GPSRecordIndexC::Window {
  RecordWalk::WalkC walk;
  std::size_t found = 0;  // size of the record at the front of the walk, not yet returned
  std::span<const std::uint8_t> record = {};
};

GPSRecordIndexC::GPSRecordIndexC(const char* fileName) {
  // Allocates first: if the constructor threw with the file open, it would stay open.
  auto source = std::make_unique<RecordWalk::FileSourceC>();
  RecordWalk::FileSourceC& file = *source;
  window_.reset(new Window{.walk = RecordWalk::WalkC(std::move(source))});
  if (fileName != nullptr) file_ = FileAccess::OpenToRead(fileName);
  if (file_ == nullptr) return;
  file.Open(file_);
  fileSize_ = file.GetSize();
}

GPSRecordIndexC::GPSRecordIndexC(std::span<const std::uint8_t> bytes)
    : fileSize_(bytes.size()), window_(new Window{.walk = RecordWalk::WalkC(bytes)}) {}

GPSRecordIndexC::~GPSRecordIndexC() {
  if (file_ != nullptr) std::fclose(file_);
}

bool GPSRecordIndexC::IsOpen() const { return file_ != nullptr || window_->walk.IsMemory(); }
bool GPSRecordIndexC::HasFailed() const { return window_->walk.HasFailed(); }
std::uint64_t GPSRecordIndexC::GetFileSize() const { return fileSize_; }

bool GPSRecordIndexC::Next(GPSRecordEntry& entry) {
  Window& window = *window_;
  RecordWalk::WalkC& walk = window.walk;
  window.record = {};
  if (window.found == 0) {
    const std::uint64_t start = walk.GetOffset();
    window.found = walk.FindRecord();
    const std::uint64_t size = walk.GetOffset() - start;
    if (size != 0) {  // the gap before the record comes first
      entry = {start, size, true, 0};
      return true;
    }
    if (window.found == 0) return false;
  }
  window.record = {walk.GetFront(), window.found};
  entry = {walk.GetOffset(), window.found, false, walk.GetType()};
  walk.Pass(window.found);
  window.found = 0;
  return true;
}

std::span<const std::uint8_t> GPSRecordIndexC::GetBytes() const { return window_->record; }

}  // namespace SDI
