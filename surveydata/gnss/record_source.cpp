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

std::size_t FileSourceC::Read(std::uint64_t offset, std::span<std::uint8_t> to) {
  if (file_ == nullptr) return 0;
  if (canSeek_ && position_ != offset) {
    if (offset > FileAccess::kMaxOffset) return 0;
    if (!FileAccess::Seek(file_, offset)) {
      Fail();
      return 0;
    }
  }
  const std::size_t count = std::fread(to.data(), 1, to.size(), file_);
  if (count < to.size() && std::ferror(file_) != 0) Fail();
  position_ = offset + count;
  return count;
}

std::size_t CallbackSourceC::Read(std::uint64_t offset, std::span<std::uint8_t> to) {
  if (offset >= size_) return 0;
  to = to.first(static_cast<std::size_t>(std::min<std::uint64_t>(to.size(), size_ - offset)));
  std::size_t done = 0;
  while (done < to.size()) {
    const std::ptrdiff_t count = readAt_(offset + done, to.subspan(done));
    if (count == 0) break;
    if (count < 0 || static_cast<std::size_t>(count) > to.size() - done) {
      Fail();
      break;
    }
    done += static_cast<std::size_t>(count);
  }
  return done;
}

}  // namespace SDI::RecordWalk
