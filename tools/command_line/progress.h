#ifndef SURVEYDATA_TOOLS_COMMAND_LINE_PROGRESS_H_
#define SURVEYDATA_TOOLS_COMMAND_LINE_PROGRESS_H_

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace Tool {

/// A progress bar on standard error. It is shown only on a terminal and after half a second, and is
/// erased at the end.
class ProgressC {
 public:
  /// `total` is in bytes; if it is 0, which means unknown, there is no bar. `hasRows` means that
  /// the command writes lines to standard output: if that is a terminal, too, there is no bar,
  /// because both would be mixed.
  explicit ProgressC(std::uint64_t total, bool hasRows = false);
  ProgressC(const ProgressC&) = delete;
  ProgressC& operator=(const ProgressC&) = delete;
  ~ProgressC();

  /// Cheap: reads the clock once per MiB.
  void Update(std::uint64_t done) {
    if (isWanted_ && done >= next_) Draw(done);
  }
  /// Erases the bar to make room for a message; the next update may draw it again.
  void Wipe();

 private:
  void Draw(std::uint64_t done);

  std::uint64_t total_;
  std::uint64_t next_ = 0;
  bool isWanted_;
  std::size_t width_ = 0;  ///< Of what is drawn.
  std::chrono::steady_clock::time_point nextDraw_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_COMMAND_LINE_PROGRESS_H_
