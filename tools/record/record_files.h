#ifndef SURVEYDATA_TOOLS_RECORD_RECORD_FILES_H_
#define SURVEYDATA_TOOLS_RECORD_RECORD_FILES_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <surveydata/gnss/gps_record_reader.h>

#include <command_line/command.h>
#include <platform/input_file.h>

namespace Tool {

/// The files that a command is to read, as the user gave them.
struct RecordFileOptions {
  std::vector<std::string> names;  ///< Of files and folders.
  bool isRecursive = false;
  unsigned jobs = 0;  ///< 0: one for each processor.

  /// Whether there may be more than one file: several names, or a folder. Tables then have a column
  /// with the file name.
  bool AreMany() const;
};

/// Gives a command the argument FILE... and --recursive. `options` must outlive the parsing.
void AddNamesOptions(Command& command, RecordFileOptions& options);
/// The same, and --jobs.
void AddFileOptions(Command& command, RecordFileOptions& options);

/// A file to read.
struct RecordFile {
  std::string name;
  std::uint64_t size = 0;  ///< 0 if unknown; the file is then not read in stretches.
  std::string fault = {};  ///< Why it cannot be read; empty if it can.

  /// The only file of a command; null if there are several, which are opened when they are read.
  std::shared_ptr<InputFileC> opened = {};

  /// \throw FileErrorC  if the file cannot be opened
  std::shared_ptr<InputFileC> Open() const {
    return opened ? opened : std::make_shared<InputFileC>(name);
  }

  /// For messages: "standard input" for "-".
  std::string Title() const;
};

/// The files, and the files of folders whose names end in .rec, in the order of their paths; with
/// --recursive also those of folders below, but not through symbolic links.
///
/// \throw ToolErrorC  if the only file cannot be read, a folder contains no record file, or one of
///                    the files is `output`
std::vector<RecordFile> FindRecordFiles(const RecordFileOptions& options,
                                        const std::string& output = {});

/// The only file of a command that takes no folder.
/// \throw ToolErrorC  if it is a folder or cannot be read
RecordFile FindRecordFile(const std::string& name);

/// A file, or a stretch of it.
struct RecordPiece {
  std::size_t file = 0;  ///< The index of its file.
  SDI::GPSRecordStretch stretch = {};
  bool isFirst = true;  ///< Of its file.
  bool isLast = true;

  bool IsWhole() const { return isFirst && isLast; }
};

/// A stretch of 1 MiB is long enough that looking back 128 KiB takes little time in comparison with
/// decoding and writing, and short enough that its output, about five times as large, fits in
/// memory several times.
inline constexpr std::uint64_t kShortestStretch = std::uint64_t{1} << 20;

/// The size of the stretches in which `jobs` threads read `total` bytes, at most `longest`: each
/// thread reads at least four if there are enough bytes, so that all threads end at nearly the same
/// time.
std::uint64_t StretchOf(std::uint64_t total, unsigned jobs, std::uint64_t longest);

/// The files that are being read, each opened once for all its pieces: if another program replaces
/// a file meanwhile, no piece is read from the new one. A file is closed when its last piece has
/// been read, so that no more files are open than threads read. Several threads may use it at once.
class OpenRecordFilesC {
 public:
  OpenRecordFilesC(const std::vector<RecordFile>& files, const std::vector<RecordPiece>& pieces);

  /// \throw FileErrorC  if the file cannot be opened
  std::shared_ptr<InputFileC> Open(std::size_t file);
  /// To be called for each piece of the file when it has been read, or could not be.
  void EndPiece(std::size_t file);

 private:
  struct Input {
    std::mutex mutex;  // one for each file: opening a pipe blocks until its writer opens it
    std::shared_ptr<InputFileC> opened;
    std::size_t unread = 0;  // pieces
  };

  const std::vector<RecordFile>& files_;
  std::vector<Input> inputs_;
};

/// The pieces of the files in order: each file in stretches of this size, or as a whole if it is 0.
std::vector<RecordPiece> CutIntoPieces(const std::vector<RecordFile>& files, std::uint64_t stretch);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_RECORD_FILES_H_
