#include <algorithm>

#include <surveydata/gnss/file_access.h>
#include <surveydata/gnss/record_source.h>

namespace SDI::RecordWalk {

void FileSourceC::Open(std::FILE* file) {
  file_ = file;
  // Blocks are read directly into the caller's memory.
  std::setvbuf(file_, nullptr, _IONBF, 0);
  if (!FileAccess::SeekToEnd(file_)) return;
  canSeek_ = true;
  position_ = kUnknown;
  const FileAccess::Offset size = FileAccess::Tell(file_);
  if (size > 0) size_ = static_cast<std::uint64_t>(size);
}

void FileSourceC::Read(std::uint64_t offset, std::span<std::uint8_t> to, std::size_t& count) {
  count = 0;
  if (file_ == nullptr) return;
  // Systems refuse to read bytes beyond the largest offset.
  if (offset >= FileAccess::kMaxOffset) return;
  const std::uint64_t most = FileAccess::kMaxOffset - offset;
  to = to.first(static_cast<std::size_t>(std::min<std::uint64_t>(to.size(), most)));
  if (canSeek_ && position_ != offset) {
    if (!FileAccess::Seek(file_, offset)) {
      if (!FileAccess::IsBeyondAnyFile()) Fail();
      return;
    }
  }
  count = std::fread(to.data(), 1, to.size(), file_);
  if (count < to.size() && std::ferror(file_) != 0) Fail();
  position_ = offset + count;
}

void CallbackSourceC::Read(std::uint64_t offset, std::span<std::uint8_t> to, std::size_t& count) {
  count = 0;
  if (offset >= size_) return;
  to = to.first(static_cast<std::size_t>(std::min<std::uint64_t>(to.size(), size_ - offset)));
  while (count < to.size()) {
    const std::ptrdiff_t got = readAt_(offset + count, to.subspan(count));
    if (got == 0) break;
    if (got < 0 || static_cast<std::size_t>(got) > to.size() - count) {
      Fail();
      break;
    }
    count += static_cast<std::size_t>(got);
  }
}

}  // namespace SDI::RecordWalk
