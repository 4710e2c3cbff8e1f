#ifndef SURVEYDATA_TOOLS_RECORD_PIECE_OUTPUT_H_
#define SURVEYDATA_TOOLS_RECORD_PIECE_OUTPUT_H_

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <fmt/format.h>

#include <command_line/progress.h>
#include <output/output.h>

namespace Tool {

/// Buffers that are used again, so that the system gives and takes no memory for each piece.
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

/// The lines and messages that come of a piece of a file: written at once, or kept until it is the
/// turn of the piece.
class PieceOutputC {
 public:
  /// For nothing; another one is assigned to it.
  PieceOutputC() = default;
  /// Keeps them in a buffer of `pool`.
  explicit PieceOutputC(BufferPoolC& pool) : pool_(&pool), kept_(pool.Take()) {}
  /// Writes them at once. `out` is null for a command that writes nothing meanwhile.
  PieceOutputC(OutputC* out, ProgressC& progress) : out_(out), progress_(&progress) {}

  /// Where text is appended; call `FlushIfFull` after each line or record.
  fmt::memory_buffer& GetBuffer() { return kept_ != nullptr ? *kept_ : out_->GetBuffer(); }
  void FlushIfFull() {
    if (kept_ == nullptr) out_->FlushIfFull();
  }
  /// On standard error.
  void Tell(std::string message);
  bool IsKept() const { return pool_ != nullptr; }

  /// Writes what was kept; to be called once.
  void PutTo(PieceOutputC& direct);

 private:
  BufferPoolC* pool_ = nullptr;
  BufferPoolC::Buffer kept_;
  std::vector<std::string> messages_;
  OutputC* out_ = nullptr;
  ProgressC* progress_ = nullptr;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_PIECE_OUTPUT_H_
