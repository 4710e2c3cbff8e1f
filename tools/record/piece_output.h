#ifndef SURVEYDATA_TOOLS_RECORD_PIECE_OUTPUT_H_
#define SURVEYDATA_TOOLS_RECORD_PIECE_OUTPUT_H_

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <fmt/format.h>

#include <command_line/progress.h>
#include <output/output.h>

namespace Tool {

/// Reuses buffers, so that not every piece allocates and releases memory.
/// Several threads may use it at once.
class BufferPoolC {
 public:
  using Buffer = std::unique_ptr<fmt::memory_buffer>;

  Buffer Take();
  void Give(Buffer buffer);

 private:
  std::mutex mutex_;
  std::vector<Buffer> free_;
};

/// The output and messages of a piece of a file, either written immediately or kept until the
/// pieces before it have been written.
class PieceOutputC {
 public:
  /// A placeholder, to be assigned to.
  PieceOutputC() = default;
  /// Keeps the output in a buffer of `pool`.
  explicit PieceOutputC(BufferPoolC& pool) : pool_(&pool), kept_(pool.Take()) {}
  /// Writes the output immediately. `out` is null for a command without output during the pass.
  PieceOutputC(OutputC* out, ProgressC& progress) : out_(out), progress_(&progress) {}

  /// The buffer to which output is appended; call `FlushIfFull` after each line or record.
  fmt::memory_buffer& GetBuffer() { return kept_ != nullptr ? *kept_ : out_->GetBuffer(); }
  void FlushIfFull() {
    if (kept_ == nullptr) out_->FlushIfFull();
  }
  /// Writes a message to standard error. Not for output that is kept.
  void Tell(const std::string& message);
  /// The same for messages that may be numerous: only the first 100 of each file are written.
  void TellOneOfMany(std::string message);
  /// Begins the messages of the next file.
  void BeginFile() { told_ = 0; }
  bool IsKept() const { return pool_ != nullptr; }

  /// Writes the kept output. Call it once.
  void PutTo(PieceOutputC& direct);

 private:
  BufferPoolC* pool_ = nullptr;
  BufferPoolC::Buffer kept_;
  std::vector<std::string> messages_;  // each of them one of many
  std::size_t told_ = 0;
  OutputC* out_ = nullptr;
  ProgressC* progress_ = nullptr;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_PIECE_OUTPUT_H_
