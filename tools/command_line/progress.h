#ifndef SURVEYDATA_TOOLS_COMMAND_LINE_PROGRESS_H_
#define SURVEYDATA_TOOLS_COMMAND_LINE_PROGRESS_H_

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace Tool {

/// A progress bar on standard error: shown only on a terminal, once the work has taken half a
/// second, and wiped away at the end.
class ProgressC {
 public:
  /// `total` in bytes; 0 when it is not known, and no bar then. With `hasRows` the work writes
  /// lines to standard output: no bar where that is a terminal too, which would mix them.
  explicit ProgressC(std::uint64_t total, bool hasRows = false);
  ProgressC(const ProgressC&) = delete;
  ProgressC& operator=(const ProgressC&) = delete;
  ~ProgressC();

  /// Cheap: looks at the clock once per MiB.
  void Update(std::uint64_t done) {
    if (isWanted_ && done >= next_) Draw(done);
  }
  /// Wipes the bar away, for a message in its place; the next update may draw it again.
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
