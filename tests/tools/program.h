#ifndef SURVEYDATA_TESTS_TOOLS_PROGRAM_H_
#define SURVEYDATA_TESTS_TOOLS_PROGRAM_H_

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

/// \file
/// Shared by the tests of the program: running it, a separate folder for each test, the sample
/// files, and record files created for a test.

using Bytes = std::vector<std::uint8_t>;

/// A temporary folder, removed by the destructor.
class TempFolderC {
 public:
  TempFolderC();
  TempFolderC(const TempFolderC&) = delete;
  TempFolderC& operator=(const TempFolderC&) = delete;
  ~TempFolderC();

  const std::filesystem::path& Path() const { return path_; }
  /// Takes and returns UTF-8: the encoding of narrow paths depends on the system.
  std::string operator/(std::string_view name) const {
    const auto path = (path_ / std::u8string(name.begin(), name.end())).u8string();
    return {path.begin(), path.end()};
  }
  /// The names in it, sorted.
  std::vector<std::string> Names() const;

 private:
  std::filesystem::path path_;
};

/// The outcome of a run of the program.
struct Outcome {
  int exitCode = -1;
  std::string out;
  std::string err;
};

/// Options for running the program.
struct RunOptions {
  std::string folder = {};   ///< The working folder.
  std::string input = {};    ///< The file on its standard input; none for an empty one.
  std::string program = {};  ///< Another copy of the program.
  /// Only on POSIX systems: shell commands before it, in the same shell, e.g. "ulimit -f 8;".
  std::string shell = {};
};

/// Runs the program with exactly these arguments.
Outcome RunProgram(const std::vector<std::string>& arguments, const RunOptions& options = {});

/// Only on POSIX systems: runs a shell command in which `surveydata` is the program.
Outcome RunShell(const std::string& command, const std::string& folder);

/// The path of the program, of a file in tests/data.
std::string ProgramPath();
std::string DataPath(std::string_view name);

std::string ReadText(const std::string& file);
Bytes ReadBytes(const std::string& file);
void WriteBytes(const std::string& file, const Bytes& bytes);

/// The lines of a text, without their ends.
std::vector<std::string> Lines(std::string_view text);
std::vector<nlohmann::json> JsonLines(std::string_view text);

/// Names of the samples, without extension.
inline constexpr const char* kSamples[] = {"valley_drive", "desert_highway"};

/// The message of `record export` and `record plot` about bad frames that they leave out.
std::string BadFramesTold(int count);

/// The offsets in a sample: `frames`, `others` and `padding`.
nlohmann::json SampleIndex(std::string_view name);

/// Computes and writes the checksum of a frame of this length.
void FixChecksum(std::uint8_t* frame, std::size_t size);

/// A record around a body that begins after the type.
Bytes MakeFrame(std::uint8_t type, const Bytes& body);

/// A measurement body: times, flags word 1 and the blocks' bytes.
Bytes MakeBody(std::uint16_t flags, const Bytes& blocks);

Bytes operator+(Bytes a, const Bytes& b);

#endif  // SURVEYDATA_TESTS_TOOLS_PROGRAM_H_
