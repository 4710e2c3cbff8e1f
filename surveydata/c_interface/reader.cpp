#include <memory>
#include <span>

#include <surveydata/c_interface/boundary.h>
#include <surveydata/c_interface/reader.h>

using SDI::GPSDamagedHeader;
using SDI::GPSReaderState;
using SDI::GPSRecordEntry;
using SDI::GPSRecordStretch;
using SDI::CInterface::Cancelled;
using SDI::CInterface::Guarded;
using SDI::CInterface::HasKnownSize;

namespace {

static_assert(SURVEYDATA_DAMAGE_WRONG_CHECKSUM ==
              1 + static_cast<int>(SDI::GPSRecordDamage::kWrongChecksum));
static_assert(SURVEYDATA_DAMAGE_CUT_BY_THE_END ==
              1 + static_cast<int>(SDI::GPSRecordDamage::kCutByTheEnd));
static_assert(SURVEYDATA_DAMAGE_RUNS_INTO_NEXT_RECORD ==
              1 + static_cast<int>(SDI::GPSRecordDamage::kRunsIntoNextRecord));

std::uint32_t KindOf(const GPSRecordEntry& entry) {
  if (entry.isGap) return SURVEYDATA_GAP;
  return entry.IsMeasurement() ? SURVEYDATA_MEASUREMENT : SURVEYDATA_OTHER_RECORD;
}

// Creates a reader with `make`, and returns it if its source is open.
template <class Make>
surveydata_status Open(std::uint64_t begin, std::uint64_t end, surveydata_reader** reader,
                       Make make) {
  if (reader == nullptr) return SURVEYDATA_INVALID_ARGUMENT;
  *reader = nullptr;
  if (begin > end) return SURVEYDATA_INVALID_ARGUMENT;
  return Guarded([&]() -> surveydata_status {
    std::unique_ptr<surveydata_reader> made = make(GPSRecordStretch{begin, end});
    if (made == nullptr) return SURVEYDATA_INVALID_ARGUMENT;
    if (made->GetReader().GetState() != GPSReaderState::kOpen) return made->GetStatus();
    *reader = made.release();
    return SURVEYDATA_OK;
  });
}

// Reads with the caller's callback.
class ReadAtC {
 public:
  explicit ReadAtC(const surveydata_source& source) : source_(source) {}

  std::ptrdiff_t operator()(std::uint64_t offset, std::span<std::uint8_t> to) const {
    const std::int64_t count = source_.read_at(source_.context, offset, to.data(), to.size());
    if (count == SURVEYDATA_READ_CANCELLED) throw Cancelled();
    // A valid count is at most the requested one, so the conversion does not truncate it.
    const bool isCount = 0 <= count && static_cast<std::uint64_t>(count) <= to.size();
    return isCount ? static_cast<std::ptrdiff_t>(count) : -1;
  }

 private:
  surveydata_source source_;
};

}  // namespace

surveydata_status SDI::CInterface::StatusOf(GPSReaderState state) {
  switch (state) {
    case GPSReaderState::kOpen:
      return SURVEYDATA_END;
    case GPSReaderState::kNoSuchFile:
      return SURVEYDATA_NO_SUCH_FILE;
    case GPSReaderState::kNoPermission:
      return SURVEYDATA_NO_PERMISSION;
    case GPSReaderState::kNoStretches:
      return SURVEYDATA_NO_STRETCHES;
    case GPSReaderState::kReadingFailed:
      return SURVEYDATA_READING_FAILED;
    case GPSReaderState::kCannotOpen:
      break;
  }
  return SURVEYDATA_CANNOT_OPEN;
}

// Discards headers that are not wanted now, including those collected before.
void surveydata_reader::TakeHeaders(bool areWanted) {
  isTaking_ = areWanted;
  if (!areWanted) return headers_.Clear();
  if (isReporting_) return;
  reader_.SetReportDamaged([this](const GPSDamagedHeader& header) {
    if (isTaking_) headers_.Push(header);
  });
  isReporting_ = true;
}

// Advances to the next entry, or until there is no room for another header.
void surveydata_reader::Walk() {
  try {
    hasEntry_ = reader_.NextEntry(entry_);
  } catch (const SDI::CInterface::DamagedHeadersC::Full&) {
    hasEntry_ = false;
  }
}

surveydata_status surveydata_reader::Next(std::uint32_t kinds, surveydata_entry& entry) {
  TakeHeaders((kinds & SURVEYDATA_DAMAGED_HEADER) != 0);
  for (;;) {
    if (!headers_.IsEmpty()) {
      const GPSDamagedHeader header = headers_.Pop();
      entry = {sizeof(entry),
               SURVEYDATA_DAMAGED_HEADER,
               header.offset,
               header.size,
               GPSRecordEntry::kMeasurement,
               1 + static_cast<std::uint32_t>(header.damage),
               nullptr};
      return SURVEYDATA_OK;
    }
    if (hasEntry_) {
      hasEntry_ = false;
      const std::uint32_t kind = KindOf(entry_);
      if ((kind & kinds) == 0) continue;
      entry = {sizeof(entry),
               kind,
               entry_.offset,
               entry_.size,
               entry_.type,
               0,
               reader_.GetBytes().data()};
      return SURVEYDATA_OK;
    }
    Walk();
    if (!hasEntry_ && headers_.IsEmpty()) return GetStatus();
  }
}

surveydata_status surveydata_reader_open_file(const char* file_name, std::uint64_t begin,
                                              std::uint64_t end, surveydata_reader** reader) {
  return Open(begin, end, reader, [&](GPSRecordStretch stretch) {
    std::unique_ptr<surveydata_reader> made;
    if (file_name != nullptr) made = std::make_unique<surveydata_reader>(file_name, stretch);
    return made;
  });
}

surveydata_status surveydata_reader_open_bytes(const std::uint8_t* bytes, std::size_t size,
                                               std::uint64_t begin, std::uint64_t end,
                                               surveydata_reader** reader) {
  return Open(begin, end, reader, [&](GPSRecordStretch stretch) {
    std::unique_ptr<surveydata_reader> made;
    if (bytes == nullptr && size != 0) return made;
    made = std::make_unique<surveydata_reader>(std::span(bytes, size), stretch);
    return made;
  });
}

surveydata_status surveydata_reader_open_source(const surveydata_source* source,
                                                std::uint64_t begin, std::uint64_t end,
                                                surveydata_reader** reader) {
  if (source != nullptr && !HasKnownSize(*source)) {
    if (reader != nullptr) *reader = nullptr;
    return SURVEYDATA_WRONG_SIZE;
  }
  return Open(begin, end, reader, [&](GPSRecordStretch stretch) {
    std::unique_ptr<surveydata_reader> made;
    if (source == nullptr || source->read_at == nullptr || source->reserved != 0) return made;
    made = std::make_unique<surveydata_reader>(ReadAtC(*source), source->size, stretch);
    made->GetContext().Own(*source);
    return made;
  });
}

void surveydata_reader_close(surveydata_reader* reader) { delete reader; }

surveydata_status surveydata_reader_size(const surveydata_reader* reader, std::uint64_t* size) {
  if (reader == nullptr || size == nullptr) return SURVEYDATA_INVALID_ARGUMENT;
  *size = reader->GetReader().GetSize();
  return SURVEYDATA_OK;
}

surveydata_status surveydata_reader_set_progress(surveydata_reader* reader,
                                                 surveydata_progress progress, void* context) {
  if (reader == nullptr) return SURVEYDATA_INVALID_ARGUMENT;
  return Guarded([&] {
    SDI::GPSRecordReaderC::ReportProgress report;
    if (progress != nullptr) {
      report = [progress, context](std::uint64_t offset) {
        if (progress(context, offset) != 0) throw Cancelled();
      };
    }
    reader->SetProgress(std::move(report));
    return SURVEYDATA_OK;
  });
}

surveydata_status surveydata_reader_next(surveydata_reader* reader, std::uint32_t kinds,
                                         surveydata_entry* entry) {
  if (reader == nullptr || entry == nullptr) return SURVEYDATA_INVALID_ARGUMENT;
  if (kinds == 0 || (kinds & ~std::uint32_t{SURVEYDATA_ALL_ENTRIES}) != 0) {
    return SURVEYDATA_INVALID_ARGUMENT;
  }
  if (!HasKnownSize(*entry)) return SURVEYDATA_WRONG_SIZE;
  return Guarded([&] { return reader->Next(kinds, *entry); });
}
