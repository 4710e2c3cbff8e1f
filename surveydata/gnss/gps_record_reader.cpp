#include <algorithm>
#include <cstring>
#include <utility>

#include <surveydata/gnss/file_access.h>
#include <surveydata/gnss/gps_record_reader.h>
#include <surveydata/gnss/record_walk.h>

namespace SDI {
namespace {

GPSReaderState StateOf(FileAccess::OpenFailure failure) {
  switch (failure) {
    case FileAccess::OpenFailure::kNoSuchFile:
      return GPSReaderState::kNoSuchFile;
    case FileAccess::OpenFailure::kNoPermission:
      return GPSReaderState::kNoPermission;
    default:
      return GPSReaderState::kCannotOpen;
  }
}

}  // namespace

struct GPSRecordC::Data {
  std::uint64_t offset = 0;
  GPSDecodeResult result;
  GPSMeasDataC measurement;
  GPSRecordFileInfo info;
  std::span<const std::uint8_t> bytes;
};

GPSRecordC::GPSRecordC() : data_(new Data) {}
GPSRecordC::~GPSRecordC() = default;

std::uint64_t GPSRecordC::GetOffset() const { return data_->offset; }
std::uint64_t GPSRecordC::GetSize() const { return data_->bytes.size(); }
GPSRecordOutcome GPSRecordC::GetOutcome() const { return data_->result.outcome; }
GPSRecordBlock GPSRecordC::GetBlock() const { return data_->result.block; }
bool GPSRecordC::IsDone() const { return data_->result.IsDone(); }
const GPSMeasDataC& GPSRecordC::GetMeasurement() const { return data_->measurement; }
const GPSRecordFileInfo& GPSRecordC::GetInfo() const { return data_->info; }
std::span<const std::uint8_t> GPSRecordC::GetBytes() const { return data_->bytes; }

struct GPSRecordReaderC::State {
  State(std::unique_ptr<RecordWalk::SourceI> from, const GPSRecordStretch& part)
      : walk(std::move(from)), stretch(part), lookBack(MakeLookBack(part)) {}
  State(std::span<const std::uint8_t> all, const GPSRecordStretch& part)
      : walk(all), stretch(part), lookBack(MakeLookBack(part)), size(all.size()) {}
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State() {
    if (file != nullptr) std::fclose(file);
  }

  static std::unique_ptr<RecordWalk::LookBackC> MakeLookBack(const GPSRecordStretch& part) {
    std::unique_ptr<RecordWalk::LookBackC> made;
    if (!part.IsWhole()) made = std::make_unique<RecordWalk::LookBackC>();
    return made;
  }
  bool GoToBegin();
  std::size_t FindRecord();
  void Leave();
  void Take(std::size_t count);
  void Decode();

  RecordWalk::WalkC walk;
  RecordWalk::DamageFinderC damage;
  GPSRecordStretch stretch;
  std::unique_ptr<RecordWalk::LookBackC> lookBack;  // null for the whole
  std::uint64_t size = 0;
  std::FILE* file = nullptr;  // opened here
  GPSReaderState state = GPSReaderState::kOpen;
  bool hasBegun = false;
  std::size_t found = 0;   // size of the record at the front of the walk, not yet returned
  std::uint64_t next = 0;  // where the next entry begins; reading may throw inside a gap
  std::span<const std::uint8_t> bytes;
  bool isToDecode = false;  // when it is requested
  GPSRecordC record;
  const GPSMeasDataImplC fresh;
};

// False if there is nothing to walk.
bool GPSRecordReaderC::State::GoToBegin() {
  if (hasBegun) return true;
  if (state != GPSReaderState::kOpen) return false;
  if (lookBack != nullptr) {
    if (!walk.CanGoTo()) {
      state = GPSReaderState::kNoStretches;
      return false;
    }
    walk.GoTo(stretch.begin, stretch.end, *lookBack);
  }
  walk.SetDamage(damage.IsOn() ? &damage : nullptr);  // only now: not while looking back
  next = walk.GetOffset();
  hasBegun = true;  // last, because reading may throw
  return true;
}

// Walks to the next record of the stretch.
std::size_t GPSRecordReaderC::State::FindRecord() {
  if (found != 0) return found;
  found = walk.FindRecord(stretch.end);
  if (found == 0) {
    walk.SettleDamage();
    if (walk.HasFailed()) state = GPSReaderState::kReadingFailed;
  }
  return found;
}

// The last record is no longer available.
void GPSRecordReaderC::State::Leave() {
  bytes = {};
  isToDecode = false;
}

void GPSRecordReaderC::State::Take(std::size_t count) {
  bytes = {walk.GetFront(), count};
  walk.Pass(count);
  found = 0;
  next = walk.GetOffset();
}

void GPSRecordReaderC::State::Decode() {
  isToDecode = false;
  GPSRecordC::Data& data = *record.data_;
  GPSMeasDataImplC& measurement = *data.measurement.GetImpl();
  measurement = fresh;
  data.info.number = 0;  // the other fields are never set
  data.info.flags = 0;
  std::memset(data.info.name, 0, sizeof(data.info.name));
  data.offset = walk.GetOffset() - bytes.size();
  data.bytes = bytes;
  data.result = RecordFrame::DecodeChecked(bytes, measurement, data.info);
}

GPSRecordReaderC::GPSRecordReaderC(const char* fileName, GPSRecordStretch stretch) {
  // Allocates first: if the constructor threw with the file open, it would stay open.
  auto source = std::make_unique<RecordWalk::FileSourceC>();
  RecordWalk::FileSourceC& file = *source;
  state_.reset(new State(std::move(source), stretch));
  if (fileName == nullptr) {
    state_->state = GPSReaderState::kNoSuchFile;
    return;
  }
  state_->file = FileAccess::OpenToRead(fileName);
  if (state_->file == nullptr) {
    state_->state = StateOf(FileAccess::GetOpenFailure());
    return;
  }
  file.Open(state_->file);
  state_->size = file.GetSize();
}

GPSRecordReaderC::GPSRecordReaderC(std::FILE* stream) {
  auto source = std::make_unique<RecordWalk::FileSourceC>();
  if (stream != nullptr) source->ReadOn(stream);
  state_.reset(new State(std::move(source), {}));
  if (stream == nullptr) state_->state = GPSReaderState::kCannotOpen;
}

GPSRecordReaderC::GPSRecordReaderC(std::span<const std::uint8_t> bytes, GPSRecordStretch stretch)
    : state_(new State(bytes, stretch)) {}

GPSRecordReaderC::GPSRecordReaderC(ReadAt readAt, std::uint64_t size, GPSRecordStretch stretch) {
  const bool isMissing = readAt == nullptr;
  state_.reset(
      new State(std::make_unique<RecordWalk::CallbackSourceC>(std::move(readAt), size), stretch));
  state_->size = size;
  if (isMissing) state_->state = GPSReaderState::kCannotOpen;
}

GPSRecordReaderC::~GPSRecordReaderC() = default;

GPSReaderState GPSRecordReaderC::GetState() const { return state_->state; }
std::uint64_t GPSRecordReaderC::GetSize() const { return state_->size; }
void GPSRecordReaderC::SetReportDamaged(ReportDamaged report) {
  State& state = *state_;
  state.damage.SetReport(std::move(report));
  if (state.hasBegun) state.walk.SetDamage(state.damage.IsOn() ? &state.damage : nullptr);
}
void GPSRecordReaderC::SetReportProgress(ReportProgress report) {
  state_->walk.SetProgress(std::move(report));
}
const GPSRecordC& GPSRecordReaderC::GetRecord() const {
  if (state_->isToDecode) state_->Decode();
  return state_->record;
}
std::span<const std::uint8_t> GPSRecordReaderC::GetBytes() const { return state_->bytes; }

bool GPSRecordReaderC::Next() {
  State& state = *state_;
  state.Leave();
  if (!state.GoToBegin()) return false;
  while (const std::size_t size = state.FindRecord()) {
    const bool isMeasurement = GPSRecordEntry{0, size, false, state.walk.GetType()}.IsMeasurement();
    state.Take(size);
    if (isMeasurement) {
      state.Decode();
      return true;
    }
  }
  state.bytes = {};
  return false;
}

bool GPSRecordReaderC::NextEntry(GPSRecordEntry& entry) {
  State& state = *state_;
  state.Leave();
  if (!state.GoToBegin()) return false;
  const std::size_t size = state.FindRecord();
  const std::uint64_t start = state.next;
  if (start >= state.stretch.end) return false;
  const RecordWalk::WalkC& walk = state.walk;
  const std::uint64_t gap = std::min(walk.GetOffset(), state.stretch.end) - start;
  if (gap != 0) {
    entry = {start, gap, true, 0};
    state.next += gap;
    return true;
  }
  if (size == 0) return false;
  entry = {start, size, false, walk.GetType()};
  state.Take(size);
  state.isToDecode = entry.IsMeasurement();
  return true;
}

GPSDecodeResult GPSRecordReaderC::Decode(std::span<const std::uint8_t> frame,
                                         GPSMeasDataImplC& measurement, GPSRecordFileInfo& info) {
  return RecordFrame::Decode(frame, measurement, info);
}

}  // namespace SDI
