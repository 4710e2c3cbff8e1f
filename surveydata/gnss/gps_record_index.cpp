#include <array>
#include <cstring>

#include <surveydata/gnss/gps_record_index.h>
#include <surveydata/gnss/record_frame.h>

namespace SDI {

static_assert(GPSRecordEntry::kMeasurement == RecordFrame::kType);
static_assert(GPSRecordEntry::kLongestMeasurement == RecordFrame::kMaxSize);

// The part of the file that the walk looks at, with the sums of its bytes: the checksum of a record
// of any length is then one difference, so that no arrangement of bytes makes the walk slow.
struct GPSRecordIndexC::Window {
  static constexpr std::size_t kCapacity = std::size_t{256} * 1024;
  static constexpr std::size_t kLongestRecord = 0xFFFF + RecordFrame::kChecksumSize;
  static_assert(kCapacity >= 2 * kLongestRecord);

  std::array<std::uint8_t, kCapacity> bytes;
  std::array<std::uint16_t, kCapacity + 1> sums;  // of the bytes before, in 16 bits
  std::size_t begin = 0;                          // what is still to be walked
  std::size_t end = 0;
  std::uint64_t offset = 0;  // of `begin` in the file
  std::span<const std::uint8_t> record;
  bool isAtEndOfFile = false;
  bool hasFailed = false;

  std::size_t Left() const { return end - begin; }
  const std::uint8_t* Front() const { return bytes.data() + begin; }  // `begin` may be the end

  void Advance(std::size_t count) {
    begin += count;
    offset += count;
  }

  // Makes sure that a record of any length that begins at the front is in the window.
  void Fill(std::FILE* file) {
    if (Left() >= kLongestRecord || isAtEndOfFile) return;
    std::memmove(bytes.data(), Front(), Left());
    end = Left();
    begin = 0;
    end += std::fread(&bytes[end], 1, kCapacity - end, file);
    if (end < kCapacity) {
      isAtEndOfFile = true;
      hasFailed = std::ferror(file) != 0;
    }
    std::uint16_t sum = 0;
    for (std::size_t i = 0; i < end; ++i) {
      sums[i] = sum;
      sum = static_cast<std::uint16_t>(sum + bytes[i]);
    }
    sums[end] = sum;
  }

  // The size of the record at the front, 0 when there is none.
  std::size_t RecordSize() const {
    if (Left() < RecordFrame::kHeaderSize) return 0;
    const auto header = RecordFrame::Header::Load(Front());
    if (!header.IsRecord() || Left() < header.Size()) return 0;
    const std::size_t checksumAt = begin + header.length;
    const auto sum = static_cast<std::uint16_t>(sums[checksumAt] - sums[begin + 2]);
    const std::uint16_t checksum = boost::endian::load_little_u16(&bytes[checksumAt]);
    return static_cast<std::uint16_t>(sum + checksum) == 0 ? header.Size() : 0;
  }

  // How far the next byte is that a record may begin with: at least one byte on.
  std::size_t ToNextCandidate() const {
    const void* const next = std::memchr(Front() + 1, RecordFrame::kMagic & 0xFF, Left() - 1);
    return next != nullptr
               ? static_cast<std::size_t>(static_cast<const std::uint8_t*>(next) - Front())
               : Left();
  }
};

GPSRecordIndexC::GPSRecordIndexC(const char* fileName) {
  window_.reset(new Window);  // not zeroed; before the file, which nobody closes when it throws
  if (fileName != nullptr) file_ = std::fopen(fileName, "rb");
  if (file_ == nullptr) return;
  std::setvbuf(file_, nullptr, _IONBF, 0);
#if defined(_WIN32)
  if (_fseeki64(file_, 0, SEEK_END) != 0) return;
  const auto size = _ftelli64(file_);
#else
  if (fseeko(file_, 0, SEEK_END) != 0) return;
  const auto size = ftello(file_);
#endif
  if (size > 0) fileSize_ = static_cast<std::uint64_t>(size);
  window_->hasFailed = window_->isAtEndOfFile = std::fseek(file_, 0, SEEK_SET) != 0;
}

GPSRecordIndexC::~GPSRecordIndexC() {
  if (file_ != nullptr) std::fclose(file_);
}

bool GPSRecordIndexC::IsOpen() const { return file_ != nullptr; }
bool GPSRecordIndexC::HasFailed() const { return window_->hasFailed; }
std::uint64_t GPSRecordIndexC::GetFileSize() const { return fileSize_; }

bool GPSRecordIndexC::Next(GPSRecordEntry& entry) {
  if (file_ == nullptr) return false;
  Window& window = *window_;
  window.record = {};
  const std::uint64_t start = window.offset;
  for (;;) {
    window.Fill(file_);
    if (window.Left() == 0) break;
    const std::size_t size = window.RecordSize();
    if (size != 0) {
      if (window.offset != start) break;  // the gap before the record comes first
      window.record = {window.Front(), size};
      entry = {window.offset, size, false, window.Front()[4]};
      window.Advance(size);
      return true;
    }
    window.Advance(window.ToNextCandidate());
  }
  if (window.offset == start) return false;
  entry = {start, window.offset - start, true, 0};
  return true;
}

std::span<const std::uint8_t> GPSRecordIndexC::GetBytes() const { return window_->record; }

}  // namespace SDI
