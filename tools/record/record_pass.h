#ifndef SURVEYDATA_TOOLS_RECORD_RECORD_PASS_H_
#define SURVEYDATA_TOOLS_RECORD_RECORD_PASS_H_

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <command_line/exit_code.h>
#include <command_line/progress.h>
#include <output/output.h>
#include <platform/file_error.h>
#include <record/ordered_jobs.h>
#include <record/piece_output.h>
#include <record/record_files.h>
#include <record/record_walk.h>

namespace Tool {

/// How a command processes the pieces of its files. `Result` is the result for a piece; its member
/// `output` contains the output and messages of the piece.
template <class Result>
class RecordPassI {
 public:
  RecordPassI() = default;
  RecordPassI(const RecordPassI&) = delete;
  RecordPassI& operator=(const RecordPassI&) = delete;
  virtual ~RecordPassI() = default;

  /// Reads a piece. Called in any order, from several threads at once.
  virtual void Read(RecordWalkC& walk, Result& result) const = 0;
  /// Receives the results in the order of the pieces, and must write the output of each piece to
  /// `direct`. If a file cannot be read, the next piece is the first one of the next file.
  virtual void Take(const RecordPiece& piece, Result& result, PieceOutputC& direct) = 0;
  /// Called after the last piece of a file. Returns `kFinding` if the file has a fault.
  virtual ExitCode EndFile(const RecordFile& file, PieceOutputC& direct) = 0;
  /// Called instead of `EndFile` for a file that cannot be read.
  virtual void FailFile(const RecordFile& /*file*/, const std::string& /*reason*/,
                        PieceOutputC& /*direct*/) {}
};

struct PassOptions {
  unsigned jobs = 0;                                ///< 0: one for each processor.
  bool mayCut = true;                               ///< Whether files may be read in stretches.
  std::uint64_t longestStretch = kShortestStretch;  ///< As in `StretchOf`.
  /// How many results in addition to one per job may be held until they can be written. If the
  /// sizes of files differ much, a larger number makes threads stop less often.
  std::size_t ahead = 2;
  OutputC* out = nullptr;  ///< Null for a command without output during the pass.
  bool hasRows = false;    ///< As in `ProgressC`.
};

/// Reads all files, with a progress bar, and returns the worst of their exit codes. A file that
/// cannot be read is reported, and the others are still read. The output does not depend on the
/// number of jobs. The memory depends on the number of jobs, but not on the size of the files.
template <class Result>
ExitCode RunPass(const std::vector<RecordFile>& files, const PassOptions& options,
                 RecordPassI<Result>& pass) {
  const unsigned jobs =
      options.jobs > 0 ? options.jobs : std::max(1U, std::thread::hardware_concurrency());
  std::uint64_t total = 0;
  for (const RecordFile& file : files) total += file.size;
  const std::vector<RecordPiece> pieces = CutIntoPieces(
      files, options.mayCut && jobs > 1 ? StretchOf(total, jobs, options.longestStretch) : 0);
  ProgressC progress(total, options.hasRows);
  std::atomic<std::uint64_t> done = 0;
  PieceOutputC direct(options.out, progress);
  OpenRecordFilesC inputs(files, pieces);

  ExitCode worst = ExitCode::kDone;
  std::optional<std::size_t> failed;  // the last file that cannot be read
  const auto take = [&](const RecordPiece& piece, Result& result, const std::string& fault) {
    if (piece.isFirst) direct.BeginFile();
    if (failed == piece.file) return;
    pass.Take(piece, result, direct);
    if (!fault.empty()) {
      direct.Tell(fault);
      pass.FailFile(files[piece.file], fault, direct);
      failed = piece.file;
      worst = std::max(worst, ExitCode::kFileError);
    } else if (piece.isLast) {
      worst = std::max(worst, pass.EndFile(files[piece.file], direct));
    }
  };
  // Returns why the piece cannot be read, or an empty text.
  const auto read = [&](const RecordPiece& piece, Result& result, const auto& report) {
    const RecordFile& file = files[piece.file];
    std::string fault = file.fault;
    if (fault.empty()) {
      try {
        RecordWalkC walk(inputs.Open(piece.file), file, piece, report);
        pass.Read(walk, result);
      } catch (const FileErrorC& error) {
        fault = error.what();
      }
    }
    inputs.EndPiece(piece.file);
    return fault;
  };

  const unsigned threads = static_cast<unsigned>(std::min<std::size_t>(jobs, pieces.size()));
  if (threads == 1) {
    const auto report = [&](std::uint64_t bytes) { progress.Update(done += bytes); };
    for (const RecordPiece& piece : pieces) {
      Result result;
      result.output = PieceOutputC(options.out, progress);
      const std::string fault = read(piece, result, report);
      take(piece, result, fault);
    }
    return worst;
  }

  BufferPoolC pool;
  struct Kept {
    Result result;
    std::string fault;
  };
  OrderedJobsC<Kept> work(
      pieces.size(), threads,
      [&](std::size_t i) {
        Kept kept;
        kept.result.output = PieceOutputC(pool);
        kept.fault = read(pieces[i], kept.result, [&](std::uint64_t bytes) { done += bytes; });
        return kept;
      },
      options.ahead);
  for (const RecordPiece& piece : pieces) {
    Kept kept = work.Take([&] { progress.Update(done); });
    take(piece, kept.result, kept.fault);
  }
  return worst;
}

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_RECORD_PASS_H_
