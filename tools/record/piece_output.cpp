#include <utility>

#include <command_line/message.h>
#include <record/piece_output.h>

namespace Tool {

BufferPoolC::Buffer BufferPoolC::Take() {
  const std::lock_guard lock(mutex_);
  if (free_.empty()) return std::make_unique<fmt::memory_buffer>();
  Buffer buffer = std::move(free_.back());
  free_.pop_back();
  return buffer;
}

void BufferPoolC::Give(Buffer buffer) {
  buffer->clear();
  const std::lock_guard lock(mutex_);
  free_.push_back(std::move(buffer));
}

void PieceOutputC::Tell(const std::string& message) {
  progress_->Wipe();
  Tool::Tell(message);
}

void PieceOutputC::TellOneOfMany(std::string message) {
  constexpr std::size_t kMost = 100;
  if (told_ == kMost) return;
  ++told_;
  if (IsKept()) {
    messages_.push_back(std::move(message));
  } else {
    Tell(message);
  }
}

void PieceOutputC::PutTo(PieceOutputC& direct) {
  for (std::string& message : messages_) direct.TellOneOfMany(std::move(message));
  messages_.clear();
  if (kept_ == nullptr) return;
  if (kept_->size() > 0) direct.out_->Write({kept_->data(), kept_->size()});
  pool_->Give(std::move(kept_));
}

}  // namespace Tool
