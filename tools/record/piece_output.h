#ifndef SURVEYDATA_TOOLS_RECORD_PIECE_OUTPUT_H_
#define SURVEYDATA_TOOLS_RECORD_PIECE_OUTPUT_H_

#include <memory>
#include <string>
#include <vector>

#include <fmt/format.h>

#include <command_line/progress.h>
#include <output/output.h>

namespace Tool {

/// The lines and messages that come of a piece of a file: written at once, or kept until it is the
/// turn of the piece.
class PieceOutputC {
 public:
  /// Keeps them.
  PieceOutputC() : kept_(std::make_unique<fmt::memory_buffer>()) {}
  /// Writes them at once. `out` is null for a command that writes nothing meanwhile.
  PieceOutputC(OutputC* out, ProgressC& progress) : out_(out), progress_(&progress) {}

  /// Where text is appended; call `FlushIfFull` after each line or record.
  fmt::memory_buffer& GetBuffer() { return kept_ != nullptr ? *kept_ : out_->GetBuffer(); }
  void FlushIfFull() {
    if (kept_ == nullptr) out_->FlushIfFull();
  }
  /// On standard error.
  void Tell(std::string message);
  bool IsKept() const { return kept_ != nullptr; }

  /// Writes what was kept.
  void PutTo(PieceOutputC& direct);

 private:
  std::unique_ptr<fmt::memory_buffer> kept_;
  std::vector<std::string> messages_;
  OutputC* out_ = nullptr;
  ProgressC* progress_ = nullptr;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_PIECE_OUTPUT_H_
