#include <algorithm>
#include <cstring>
#include <utility>

#include <surveydata/gnss/byte_sum.h>
#include <surveydata/gnss/record_walk.h>

namespace SDI::RecordWalk {

WindowC::WindowC(std::unique_ptr<SourceI> source)
    : source_(std::move(source)),
      buffer_(std::make_unique_for_overwrite<std::uint8_t[]>(kCapacity)),
      bytes_(buffer_.get()) {}

WindowC::WindowC(Bytes memory) : bytes_(memory.data()), end_(memory.size()), isAtEnd_(true) {}

bool WindowC::Fetch(std::size_t count) {
  if (isAtEnd_) return false;
  const std::size_t left = GetLeft();
  if (left != 0) std::memmove(buffer_.get(), GetFront(), left);
  begin_ = 0;
  end_ = left;
  // Past the reach, only what is needed, but at least this much.
  constexpr std::size_t kLeast = 4096;
  const std::uint64_t at = offset_ + left;
  const std::uint64_t wanted =
      std::max<std::uint64_t>({reach_ > at ? reach_ - at : 0, count - left, kLeast});
  const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(wanted, kCapacity - left));
  std::size_t got = 0;
  try {
    source_->Read(at, {&buffer_[left], size}, got);
  } catch (...) {
    end_ += got;  // continues there
    throw;
  }
  end_ += got;
  isAtEnd_ = got < size;
  return GetLeft() >= count;
}

void WindowC::GoTo(std::uint64_t offset, std::uint64_t reach) {
  reach_ = reach;
  const std::uint64_t first = offset_ - begin_;
  if (source_ == nullptr || (first <= offset && offset <= first + end_)) {
    const std::uint64_t at = std::min<std::uint64_t>(offset - first, end_);
    begin_ = static_cast<std::size_t>(at);
    offset_ = first + at;
    return;
  }
  begin_ = end_ = 0;
  offset_ = offset;
  isAtEnd_ = source_->HasFailed();
}

std::uint16_t ByteSumsC::Sum(std::uint64_t from, std::uint64_t to, const std::uint8_t* bytes) {
  static_assert(kBlock == 64);
  const std::uint64_t first = (from + kBlock - 1) / kBlock;
  const std::uint64_t last = to / kBlock;
  if (last <= first) {
    summed_ += to - from;
    return RecordFrame::SumOfBytes(bytes, static_cast<std::size_t>(to - from));
  }
  if (first < begin_ || end_ < first) {
    begin_ = end_ = first;
    before_[first % kRing] = 0;
  }
  if (end_ < last) {
    summed_ += (last - end_) * kBlock;
    const std::uint8_t* block = bytes + (end_ * kBlock - from);
    std::uint16_t sum = before_[end_ % kRing];
    while (end_ < last) {
      sum = static_cast<std::uint16_t>(sum + RecordFrame::SumOf64(block));
      block += kBlock;
      before_[++end_ % kRing] = sum;
    }
  }
  const auto atFront = static_cast<std::size_t>(first * kBlock - from);
  const auto atEnd = static_cast<std::size_t>(to - last * kBlock);
  summed_ += atFront + atEnd;
  return static_cast<std::uint16_t>(RecordFrame::SumOfBytes(bytes, atFront) +
                                    (before_[last % kRing] - before_[first % kRing]) +
                                    RecordFrame::SumOfBytes(bytes + (last * kBlock - from), atEnd));
}

WalkC::WalkC(std::unique_ptr<SourceI> source) : window_(std::move(source)) {}
WalkC::WalkC(Bytes memory) : window_(memory) {}

bool WalkC::HasFailed() const {
  return window_.GetSource() != nullptr && window_.GetSource()->HasFailed();
}

std::size_t WalkC::FindRecord(std::uint64_t limit) { return Find(limit, damage_); }

// `damage` is null if headers are not to be taken.
std::size_t WalkC::Find(std::uint64_t limit, DamageFinderC* damage) {
  while (window_.GetOffset() < limit && !isLost_) {
    if (window_.GetOffset() >= progressAt_) ReportProgress();
    if (!window_.Need(1)) {
      if (damage != nullptr) PassEnd();
      return 0;
    }
    const std::size_t size = RecordSize();
    if (size != 0) {
      if (damage != nullptr) PassRecord();
      return size;
    }
    if (IsUnknown()) {
      isLost_ = true;
      break;
    }
    if (damage != nullptr) TakeDamage();
    const std::uint64_t left = limit - window_.GetOffset();
    window_.Advance(static_cast<std::size_t>(std::min<std::uint64_t>(ToNextCandidate(), left)));
  }
  return 0;
}

void WalkC::TakeDamage() {
  if (!window_.Need(RecordFrame::kHeaderSize)) return;
  damage_->Take(RecordFrame::Header::Load(window_.GetFront()), window_.GetOffset());
}

void WalkC::PassRecord() {
  if (!damage_->IsOpen()) return;
  // Whether the source ends before the frames of open headers.
  const std::uint64_t offset = window_.GetOffset();
  const std::uint64_t end = damage_->GetOpenEnd();
  const bool isCut = end > offset && !window_.Need(static_cast<std::size_t>(end - offset));
  if (HasFailed()) return damage_->Drop();
  damage_->PassRecord(offset, isCut ? offset + window_.GetLeft() : kNoLimit);
}

void WalkC::PassEnd() {
  if (HasFailed()) return damage_->Drop();
  damage_->PassRecord(window_.GetOffset(), window_.GetOffset());
}

void WalkC::SettleDamage() {
  while (damage_ != nullptr && damage_->IsOpen()) {
    const std::size_t size = Find(damage_->GetOpenEnd(), nullptr);  // takes no further headers
    if (isLost_) return damage_->Drop();
    if (size != 0) {
      PassRecord();
    } else if (!window_.Need(1)) {
      PassEnd();
    } else {
      damage_->Pass(window_.GetOffset());
    }
  }
}

void WalkC::SetProgress(std::function<void(std::uint64_t)> report) {
  progress_ = std::move(report);
  progressAt_ = progress_ != nullptr ? window_.GetOffset() + kProgress : kNoLimit;
}

void WalkC::ReportProgress() {
  progressAt_ = window_.GetOffset() + kProgress;  // before the report, which may throw
  progress_(window_.GetOffset());
}

bool WalkC::CanGoTo() const {
  return window_.GetSource() == nullptr || window_.GetSource()->CanSeek();
}

void WalkC::GoTo(std::uint64_t begin, std::uint64_t end, LookBackC& lookBack) {
  // Consecutive positions of the walk are at most the longest record apart, so every run of that
  // many bytes contains one.
  while (!lookBack.hasMet_) {
    if (!lookBack.hasBegun_) {
      const std::uint64_t first = lookBack.back_ < begin ? begin - lookBack.back_ : 0;
      window_.GoTo(first, end);
      if (progress_ != nullptr) progressAt_ = first + kProgress;
      sums_.Clear();
      inVain_ = kNoLimit;  // records of walks that began at different positions overlap
      lookBack.Begin(first);
    }
    if (lookBack.first_ == 0 || MeetOne(begin, lookBack)) {
      lookBack.hasMet_ = true;
      start_ = window_.GetOffset();
      inVain_ = 0;
    } else {
      lookBack.GoFurtherBack();
    }
  }
  while (const std::size_t size = FindRecord(begin)) Pass(size);
}

// Follows the walks from every position of the first run. When they have met in one position, the
// walk from the start of the source visits it, too, and the front is moved to it. False if several
// positions are left at `begin`.
bool WalkC::MeetOne(std::uint64_t begin, LookBackC& lookBack) {
  const std::uint64_t runEnd = lookBack.GetRunEnd();
  for (;;) {
    const std::uint64_t at = window_.GetOffset();
    const bool isInRun = at < runEnd;
    if (!isInRun && lookBack.count_ > 1 && at >= begin) return false;
    const bool isAhead = lookBack.IsAhead(at);
    if (!isInRun && lookBack.count_ == 1 && isAhead) return true;
    if (at >= progressAt_) ReportProgress();
    if (!window_.Need(1)) {  // all walks meet at the end
      isLost_ = HasFailed();
      return true;
    }
    const bool isCandidate = *window_.GetFront() == RecordFrame::kFirstByte;
    std::uint64_t passed = 1;
    if (isInRun && !isCandidate) {
      // A walk begins at each of these positions anyway.
      passed = std::min<std::uint64_t>(ToNextCandidate(), runEnd - at);
      lookBack.Step(at + passed - 1, at + passed);
    } else if (isInRun || isAhead) {
      const std::size_t step = isCandidate ? std::max<std::size_t>(RecordSize(), 1) : 1;
      if (IsUnknown()) {
        isLost_ = true;
        return true;
      }
      // After everything that reads, because reading may throw.
      lookBack.Step(at, at + step);
    }
    window_.Advance(static_cast<std::size_t>(passed));
  }
}

LookBackC::LookBackC() : back_(2 * kLongestRecord) {}

void LookBackC::Begin(std::uint64_t first) {
  first_ = first;
  ahead_.reset();
  count_ = 0;
  hasBegun_ = true;
}

void LookBackC::GoFurtherBack() {
  back_ *= 2;
  hasBegun_ = false;
}

bool LookBackC::IsAhead(std::uint64_t position) const {
  return ahead_[static_cast<std::size_t>(position % kRing)];
}

void LookBackC::Step(std::uint64_t from, std::uint64_t to) {
  const auto old = static_cast<std::size_t>(from % kRing);
  if (ahead_[old]) --count_;
  ahead_[old] = false;
  if (to < GetRunEnd()) return;
  const auto next = static_cast<std::size_t>(to % kRing);
  if (!ahead_[next]) ++count_;
  ahead_[next] = true;
}

// The size of the record at the front, 0 if there is none.
std::size_t WalkC::RecordSize() {
  if (!window_.Need(RecordFrame::kHeaderSize)) return 0;
  const auto header = RecordFrame::Header::Load(window_.GetFront());
  if (!header.IsRecord() || !window_.Need(header.Size())) return 0;
  const std::uint8_t* const front = window_.GetFront();
  const std::uint64_t offset = window_.GetOffset();
  const std::uint16_t checksum = boost::endian::load_little_u16(front + header.length);
  constexpr std::size_t kFrom = RecordFrame::kSummedFrom;
  const std::size_t count = header.length - kFrom;
  const bool isAtOnce = count <= kShort && inVain_ <= offset - start_;
  const std::uint16_t sum = isAtOnce
                                ? RecordFrame::SumOfBytes(front + kFrom, count)
                                : sums_.Sum(offset + kFrom, offset + header.length, front + kFrom);
  if (isAtOnce) summedAtOnce_ += count;
  if (static_cast<std::uint16_t>(sum + checksum) == 0) return header.Size();
  if (isAtOnce) inVain_ += count;
  return 0;
}

// Whether reading failed before the end of a possible record at the front. The bytes of its body
// must not be mistaken for records.
bool WalkC::IsUnknown() {
  if (!HasFailed() || !window_.Need(1)) return false;
  if (*window_.GetFront() != RecordFrame::kFirstByte) return false;
  if (!window_.Need(RecordFrame::kHeaderSize)) return true;
  const auto header = RecordFrame::Header::Load(window_.GetFront());
  return header.IsRecord() && !window_.Need(header.Size());
}

// The distance to the next byte that a record may begin with, at least 1.
std::size_t WalkC::ToNextCandidate() const {
  const std::uint8_t* const front = window_.GetFront();
  const void* const next = std::memchr(front + 1, RecordFrame::kFirstByte, window_.GetLeft() - 1);
  return next != nullptr ? static_cast<std::size_t>(static_cast<const std::uint8_t*>(next) - front)
                         : window_.GetLeft();
}

}  // namespace SDI::RecordWalk
