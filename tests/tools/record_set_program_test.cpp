#include <algorithm>
#include <bit>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "exit_code.h"
#include "program.h"
#include "replace_file.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

// The frame of the sample that has all three blocks, and what else the tests know of it.
constexpr std::size_t kFrame = 960;
constexpr std::size_t kFrameSize = 467;
constexpr std::size_t kKindAt = 17 + 6;
constexpr std::size_t kNameAt = 17 + 12;
constexpr std::size_t kNumberAt = kNameAt + 34;
constexpr std::size_t kHeightAt = kNumberAt + 4;
constexpr std::size_t kHeightKindAt = kHeightAt + 4;

// What is asked for, and how a frame looks afterwards: written down plainly.
struct Change {
  std::optional<std::u16string> name;
  std::optional<std::int32_t> number;
  std::optional<float> height;
  bool isSlant = false;

  void Apply(std::uint8_t* frame, std::size_t size) const {
    if (name) {
      for (std::size_t i = 0; i < 17; ++i) {
        const unsigned unit = i < name->size() ? (*name)[i] : 0u;
        frame[kNameAt + 2 * i] = static_cast<std::uint8_t>(unit);
        frame[kNameAt + 2 * i + 1] = static_cast<std::uint8_t>(unit >> 8);
      }
    }
    const auto put = [frame](std::size_t at, std::uint32_t value) {
      for (std::size_t i = 0; i < 4; ++i) frame[at + i] = static_cast<std::uint8_t>(value >> 8 * i);
    };
    if (number) put(kNumberAt, static_cast<std::uint32_t>(*number));
    if (height) {
      put(kHeightAt, std::bit_cast<std::uint32_t>(*height));
      frame[kHeightKindAt] = isSlant ? 1 : 0;
    }
    FixChecksum(frame, size);
  }
};

// A copy of the sample in a folder of its own.
class RecordSet : public testing::Test {
 protected:
  RecordSet() { WriteBytes(file_, before_); }

  Outcome Set(const std::vector<std::string>& options, const RunOptions& run = {}) const {
    return SetAt("960", options, run);
  }
  Outcome SetAt(const std::string& offset, const std::vector<std::string>& options,
                const RunOptions& run = {}) const {
    std::vector<std::string> arguments = {"record", "set", file_, "--offset", offset};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return RunProgram(arguments, run);
  }

  Bytes Expected(const Change& change) const {
    Bytes bytes = before_;
    change.Apply(&bytes[kFrame], kFrameSize);
    return bytes;
  }

  void Replace(const Bytes& bytes) {
    before_ = bytes;
    WriteBytes(file_, bytes);
  }

  void ExpectUntouched() const {
    EXPECT_EQ(ReadBytes(file_), before_);
    EXPECT_EQ(folder_.Names(), std::vector<std::string>{"sample.rec"});
  }

  TempFolderC folder_;
  std::string file_ = folder_ / "sample.rec";
  Bytes before_ = ReadBytes(DataPath("valley_drive.rec"));
};

std::uint64_t Inode(const std::string& file) {
  struct stat status {};
  stat(file.c_str(), &status);
  return status.st_ino;
}

TEST_F(RecordSet, ChangesWhatIsAskedForAndTheChecksumInEveryCombination) {
  for (unsigned choice = 1; choice < 16; ++choice) {
    SCOPED_TRACE(choice);
    Change change;
    std::vector<std::string> options;
    const auto give = [&options](const char* option, const char* value) {
      options.push_back(option);
      if (value != nullptr) options.push_back(value);
    };
    if ((choice & 1) != 0) {
      change.name = u"Höhe 7€";
      give("--name", "Höhe 7€");
    }
    if ((choice & 2) != 0) {
      change.number = -12345;
      give("--number", "-12345");
    }
    if ((choice & 4) != 0) {
      change.height = 1.2345F;
      give("--antenna-height", "1.2345");
    }
    if ((choice & 8) != 0) {
      if ((choice & 4) == 0) continue;  // a usage error, tested below
      change.isSlant = true;
      give("--slant", nullptr);
    }
    Replace(before_);
    const Bytes expected = Expected(change);

    std::vector<std::string> dry = options;
    dry.push_back("--dry-run");
    const std::uint64_t inode = Inode(file_);
    const Outcome told = Set(dry);
    EXPECT_EQ(told.exitCode, 0);
    EXPECT_EQ(Inode(file_), inode);
    ExpectUntouched();

    const Outcome done = Set(options);
    EXPECT_EQ(done.exitCode, 0) << done.err;
    EXPECT_EQ(done.out, "");
    EXPECT_TRUE(ReadBytes(file_) == expected);
    EXPECT_EQ(folder_.Names(), std::vector<std::string>{"sample.rec"});

    // The dry run told each byte that changed, and no other.
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < expected.size(); ++i) {
      if (expected[i] == before_[i]) continue;
      char line[40];
      std::snprintf(line, sizeof(line), "%10zu   %02x   %02x  ", i, before_[i], expected[i]);
      lines.push_back(line);
    }
    std::vector<std::string> toldLines = Lines(told.out);
    ASSERT_EQ(toldLines.size(), lines.size() + 1);
    EXPECT_EQ(toldLines[0], "    offset  old  new  field");
    for (std::size_t i = 0; i < lines.size(); ++i) {
      EXPECT_EQ(toldLines[i + 1].substr(0, lines[i].size()), lines[i]);
    }
  }
}

TEST_F(RecordSet, TellsInADryRunWhatEachChangedByteIs) {
  EXPECT_EQ(Set({"--number", "7", "--dry-run"}).out,
            "    offset  old  new  field\n"
            "      1023   01   07  name, number = 7\n"
            "      1425   47   41  checksum = 0xa941\n");
}

TEST_F(RecordSet, TakesNamesUpToTheLimitsOfAFrame) {
  std::string sixteenWide, fifteenWide;
  for (int i = 0; i < 16; ++i) sixteenWide += "€";
  for (int i = 0; i < 15; ++i) fifteenWide += "€";
  for (const std::string& name :
       {std::string(), std::string(17, 'x'), sixteenWide + "x", fifteenWide + "éé"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(Set({"--name", name}).exitCode, 0);
    const auto shown = nlohmann::json::parse(
        RunProgram({"record", "show", file_, "--offset", "960", "--json"}).out);
    EXPECT_EQ(shown["info"]["name"], name);
  }
}

TEST_F(RecordSet, RefusesValuesThatAFrameCannotHold) {
  std::string seventeenWide;
  for (int i = 0; i < 17; ++i) seventeenWide += "€";
  const struct {
    std::vector<std::string> options;
    const char* message;
  } cases[] = {
      {{"--name", std::string(18, 'x')}, "has 18 characters; a frame holds 17"},
      {{"--name", seventeenWide}, "needs 51 bytes of UTF-8; 49 are read back"},
      {{"--name", "\xF0\x9F\x98\x80"}, "a character beyond U+FFFF"},
      {{"--name", "a\x80"}, "is not UTF-8"},
      {{"--name", "\xC3"}, "is not UTF-8"},
      {{"--name", "\xC0\x80"}, "is not UTF-8"},
      {{"--name", "\xED\xA0\x80"}, "is not UTF-8"},
      {{"--name", "\xFF"}, "is not UTF-8"},
      {{"--number", "2147483648"}, "--number"},
      {{"--number", "x"}, "--number"},
      {{"--number", ""}, "--number"},
      {{"--number", "0x10"}, "--number"},
      {{"--number", "7 "}, "--number"},
      {{"--antenna-height", ""}, "is no decimal number"},
      {{"--antenna-height", "0x1p3"}, "is no decimal number"},
      {{"--antenna-height", "1,5"}, "is no decimal number"},
      {{"--antenna-height", "-0.0"}, "must be from 0 to 1000 metres"},
      {{"--antenna-height", "-0.001"}, "must be from 0 to 1000 metres"},
      {{"--antenna-height", "1000.001"}, "must be from 0 to 1000 metres"},
      {{"--antenna-height", "nan"}, "must be from 0 to 1000 metres"},
      {{"--antenna-height", "inf"}, "must be from 0 to 1000 metres"},
      {{"--slant"}, "--antenna-height"},
      {{"--slant", "--number", "1"}, "--antenna-height"},
      {{}, "nothing to set"},
      {{"--dry-run"}, "nothing to set"},
  };
  for (const auto& [options, message] : cases) {
    SCOPED_TRACE(message);
    const Outcome outcome = Set(options);
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_NE(outcome.err.find(message), std::string::npos) << outcome.err;
  }
  ExpectUntouched();
}

TEST_F(RecordSet, TakesTheOutermostNumbersAndHeights) {
  for (const char* const number : {"-2147483648", "2147483647", "0"}) {
    EXPECT_EQ(Set({"--number", number}).exitCode, 0) << number;
  }
  for (const char* const height : {"0", "1000"}) {
    EXPECT_EQ(Set({"--antenna-height", height}).exitCode, 0) << height;
    EXPECT_EQ(Set({"--antenna-height", height, "--slant"}).exitCode, 0) << height;
  }
}

TEST_F(RecordSet, SaysThatASlantHeightBecomesAVerticalOne) {
  EXPECT_EQ(Set({"--number", "8"}).err, "");
  EXPECT_EQ(Set({"--antenna-height", "1.6", "--slant"}).err, "");
  const Outcome outcome = Set({"--antenna-height", "1.5"});  // the sample's is a slant height
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_NE(outcome.err.find("becomes a vertical one"), std::string::npos) << outcome.err;
  EXPECT_EQ(Set({"--antenna-height", "1.6"}).err, "");
}

TEST_F(RecordSet, ReadsNumbersAsDecimal) {
  EXPECT_EQ(Set({"--number", "010", "--antenna-height", "010"}).exitCode, 0);
  EXPECT_TRUE(ReadBytes(file_) == Expected({.name = {}, .number = 10, .height = 10.0F}));
}

TEST_F(RecordSet, KeepsBytesThatTheWriterWouldNormalise) {
  Bytes bytes = before_;
  std::uint8_t* const frame = &bytes[kFrame];
  frame[kKindAt] = 5;      // a kind byte other than 0 and 1
  frame[kNameAt + 2] = 0;  // the name ends after one unit, with more behind
  frame[kNameAt + 3] = 0;
  frame[kHeightKindAt] = 7;     // a kind of height other than 0 and 1
  frame[kHeightAt + 3] = 0x7F;  // a height that overflows when it is squared
  FixChecksum(frame, kFrameSize);
  Replace(bytes);

  const Change number{.name = {}, .number = 99, .height = {}};
  EXPECT_EQ(Set({"--number", "99"}).exitCode, 0);
  EXPECT_TRUE(ReadBytes(file_) == Expected(number));

  Replace(bytes);
  const Change height{.name = {}, .number = {}, .height = 1.5F, .isSlant = true};
  EXPECT_EQ(Set({"--antenna-height", "1.5", "--slant"}).exitCode, 0);
  EXPECT_TRUE(ReadBytes(file_) == Expected(height));

  Replace(bytes);
  const Change name{.name = u"B", .number = {}, .height = {}};
  EXPECT_EQ(Set({"--name", "B"}).exitCode, 0);
  EXPECT_TRUE(ReadBytes(file_) == Expected(name));
}

TEST_F(RecordSet, LeavesTheFileAloneWhenItHoldsTheValuesAlready) {
  const std::uint64_t inode = Inode(file_);
  const Outcome outcome = Set({"--name", "Süd-Ø1", "--number", "1"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, "");
  EXPECT_NE(outcome.err.find("nothing is changed"), std::string::npos);
  EXPECT_EQ(Inode(file_), inode);
}

TEST_F(RecordSet, RefusesOffsetsWhereNoValidMeasurementFrameBegins) {
  Bytes bytes = before_;
  bytes[900] ^= 1;  // in the frame at 894
  bytes.resize(1767 + 319);
  Replace(bytes);
  const struct {
    const char* offset;
    const char* reason;
  } cases[] = {
      {"0", "a record of type 1 stands there"},
      {"961", "it lies inside the record at 960"},
      {"894", "a bad frame stands there: wrong checksum"},
      {"940", "no record stands there"},
      {"1767", "a bad frame stands there: cut by the end of the file"},
      {"2086", "the file ends before it"},
      {"9999999999", "the file ends before it"},
  };
  for (const auto& [offset, reason] : cases) {
    SCOPED_TRACE(offset);
    const Outcome outcome = SetAt(offset, {"--number", "5"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_NE(outcome.err.find(reason), std::string::npos) << outcome.err;
  }
  ExpectUntouched();
}

// A copy of a valid frame inside the body of another record is no frame of the file.
TEST_F(RecordSet, RefusesAFrameInsideAnotherRecord) {
  const Bytes inner(before_.begin() + kFrame, before_.begin() + kFrame + kFrameSize);
  Replace(MakeFrame(42, Bytes(10, 0) + inner));
  const Outcome outcome = SetAt("15", {"--number", "5"});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_NE(outcome.err.find("inside the record at 0"), std::string::npos) << outcome.err;
  ExpectUntouched();
}

TEST_F(RecordSet, RefusesAFrameWithoutTheBlockThatAnOptionNeeds) {
  const struct {
    std::uint16_t flags;
    std::size_t size;
    std::vector<std::string> options;
    const char* message;
  } cases[] = {
      {0x0005, 17, {"--name", "A"}, "no room for a name and number"},
      {0x0005, 17, {"--number", "1"}, "no room for a name and number"},
      {0x0003, 50, {"--antenna-height", "1"}, "no room for an antenna height"},
      {0x0003, 50, {"--name", "A", "--antenna-height", "1"}, "no room for an antenna height"},
      {0x0008, 1, {"--name", "A"}, "do not fit"},
  };
  for (const auto& [flags, size, options, message] : cases) {
    SCOPED_TRACE(message);
    Replace(MakeFrame(113, MakeBody(flags, Bytes(size, 2))));
    const Outcome outcome = SetAt("0", options);
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_NE(outcome.err.find(message), std::string::npos) << outcome.err;
    ExpectUntouched();
  }
}

TEST_F(RecordSet, FollowsASymbolicLink) {
  const TempFolderC other;
  const std::string link = other / "link.rec";
  fs::create_symlink(file_, link);
  const Outcome outcome = RunProgram({"record", "set", link, "--offset", "960", "--number", "77"});
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_TRUE(ReadBytes(file_) == Expected({.name = {}, .number = 77, .height = {}}));
  EXPECT_EQ(other.Names(), std::vector<std::string>{"link.rec"});
  EXPECT_EQ(folder_.Names(), std::vector<std::string>{"sample.rec"});
}

TEST_F(RecordSet, KeepsThePermissions) {
  for (const auto mode : {0640, 0604, 0777}) {
    fs::permissions(file_, static_cast<fs::perms>(mode));
    EXPECT_EQ(Set({"--number", std::to_string(mode)}).exitCode, 0);
    EXPECT_EQ(static_cast<int>(fs::status(file_).permissions()), mode);
  }
}

TEST_F(RecordSet, WorksOnLongPathsAndNamesWithoutExtension) {
  fs::path folder = folder_.Path();
  for (int i = 0; i < 3; ++i) folder /= std::string(100, 'd');
  fs::create_directories(folder);
  const fs::path file = folder / "no extension 'here'";
  fs::copy(file_, file);
  EXPECT_EQ(
      RunProgram({"record", "set", file.string(), "--offset", "960", "--number", "77"}).exitCode,
      0);
  EXPECT_TRUE(ReadBytes(file.string()) == Expected({.name = {}, .number = 77, .height = {}}));
}

TEST_F(RecordSet, WorksOnNamesAsLongAsTheyCanBe) {
  const std::string file = folder_ / std::string(255, 'n');
  fs::copy(file_, file);
  EXPECT_EQ(RunProgram({"record", "set", file, "--offset", "960", "--number", "77"}).exitCode, 0);
  EXPECT_TRUE(ReadBytes(file) == Expected({.name = {}, .number = 77, .height = {}}));
}

TEST_F(RecordSet, LosesNothingWhenSeveralRunAtOnce) {
  // Each ends with 0 and is in the file, or with 3 and is not.
  Bytes expected = before_;
  const json index = SampleIndex("valley_drive");
  std::string command;
  std::vector<std::size_t> offsets;
  for (const json& frame : index["frames"]) {
    const auto offset = frame["offset"].get<std::size_t>();
    if ((expected[offset + 15] & 0x03) != 0x03) continue;  // no name and number to change
    offsets.push_back(offset);
    if (offsets.size() == 12) break;
  }
  ASSERT_EQ(offsets.size(), 12u);
  for (const std::size_t offset : offsets) {
    const std::string at = std::to_string(offset);
    command += "{ surveydata record set sample.rec --offset " + at +
               " --number 4711; echo $? >out." + at + "; } & ";
  }
  RunShell("{ " + command + "wait; }", folder_.Path().string());
  int successes = 0;
  for (const std::size_t offset : offsets) {
    const std::string code = Lines(ReadText(folder_ / ("out." + std::to_string(offset)))).at(0);
    SCOPED_TRACE(offset);
    EXPECT_TRUE(code == "0" || code == "3") << code;
    if (code != "0") continue;
    ++successes;
    std::uint8_t* const frame = &expected[offset];
    Change{.name = {}, .number = 4711, .height = {}}.Apply(frame, frame[2] + 256u * frame[3] + 2u);
  }
  EXPECT_GE(successes, 1);
  EXPECT_TRUE(ReadBytes(file_) == expected);
}

TEST_F(RecordSet, RefusesAFileThatAnotherProgramHasLocked) {
  const Tool::DescriptorC holder(open(file_.c_str(), O_RDONLY));
  ASSERT_EQ(flock(holder.Get(), LOCK_EX), 0);
  const Outcome outcome = Set({"--number", "5"});
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_NE(outcome.err.find("locked"), std::string::npos) << outcome.err;
  EXPECT_EQ(Set({"--number", "5", "--dry-run"}).exitCode, 0);  // which writes nothing
  ExpectUntouched();
}

TEST_F(RecordSet, RefusesAFileThatChangesMeanwhile) {
  const Bytes before(before_.begin() + kFrame, before_.begin() + kFrame + kFrameSize);
  Bytes after = before;
  Change{.name = {}, .number = 77, .height = {}}.Apply(after.data(), kFrameSize);
  const struct {
    const char* what;
    std::function<void()> change;
  } cases[] = {
      {"nothing", [] {}},
      {"appended to", [&] { Replace(before_ + Bytes{0}); }},
      {"another file of the same name",
       [&] {
         fs::copy(file_, folder_ / "new");
         fs::rename(folder_ / "new", file_);
       }},
      {"another byte, same size",
       [&] {
         Bytes bytes = before_;
         bytes[0] ^= 1;
         Replace(bytes);
         fs::last_write_time(file_, fs::file_time_type::clock::now() + std::chrono::hours(1));
       }},
      {"a byte of the frame, and the time set back",
       [&] {
         const auto time = fs::last_write_time(file_);
         Bytes bytes = before_;
         bytes[kFrame + 20] ^= 1;
         Replace(bytes);
         fs::last_write_time(file_, time);
       }},
  };
  const Bytes sample = before_;
  for (const auto& [what, change] : cases) {
    SCOPED_TRACE(what);
    Replace(sample);
    Tool::FileReplacementC replacement(file_);
    change();
    if (std::string(what) == "nothing") {
      replacement.Replace(kFrame, before, after);
      EXPECT_TRUE(ReadBytes(file_) == Expected({.name = {}, .number = 77, .height = {}}));
      continue;
    }
    EXPECT_THROW(replacement.Replace(kFrame, before, after), Tool::ToolErrorC);
    ExpectUntouched();
  }
}

TEST_F(RecordSet, LeavesNoCopyBehindWhenASignalComes) {
  const Bytes before(before_.begin() + kFrame, before_.begin() + kFrame + kFrameSize);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    SCOPED_TRACE(signal);
    sigset_t one;
    sigemptyset(&one);
    sigaddset(&one, signal);
    ASSERT_EQ(sigprocmask(SIG_BLOCK, &one, nullptr), 0);
    const auto inherited = std::signal(signal, SIG_DFL);  // it may be ignored, as under nohup
    std::raise(signal);
    EXPECT_THROW(Tool::FileReplacementC(file_).Replace(kFrame, before, before), Tool::ToolErrorC);
    int received = 0;
    EXPECT_EQ(sigwait(&one, &received), 0);  // still there for who waits for it
    EXPECT_EQ(received, signal);
    ExpectUntouched();

    // One that is ignored stops nothing.
    std::signal(signal, SIG_IGN);
    std::raise(signal);
    EXPECT_NO_THROW(Tool::FileReplacementC(file_).Replace(kFrame, before, before));
    sigprocmask(SIG_UNBLOCK, &one, nullptr);
    std::signal(signal, inherited);
    ExpectUntouched();
  }

  // The same in a run of the program, large enough that the signal mostly comes while it copies.
  // Whichever is first, the file is the old one or the new one, and no copy is left.
  fs::resize_file(file_, 192 << 20);
  const Outcome outcome = RunShell(
      "{ surveydata record set sample.rec --offset 960 --number 5 & "
      "until ls -A | grep -q '^[.]surveydata'; do kill -0 $! || break; done; "
      "kill -TERM $!; wait $!; }",
      folder_.Path().string());
  EXPECT_EQ(folder_.Names(), std::vector<std::string>{"sample.rec"});
  fs::resize_file(file_, before_.size());
  if (outcome.exitCode != 0) {
    EXPECT_EQ(outcome.exitCode, 128 + SIGTERM) << outcome.err;
    ExpectUntouched();
  }
}

TEST_F(RecordSet, LeavesTheFileAsItWasWhenTheDiskTakesNoMore) {
  const Outcome outcome =
      Set({"--number", "5"}, {.shell = "trap '' XFSZ; ulimit -f 16;"});  // 8 KiB or 16 KiB
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_NE(outcome.err.find("sample.rec is as it was"), std::string::npos) << outcome.err;
  ExpectUntouched();
}

// Root may write everywhere, so another user tries.
TEST_F(RecordSet, LeavesTheFileAsItWasWhereItMayNotBeWritten) {
  if (geteuid() == 0 && std::system("command -v setpriv >/dev/null") != 0) {
    GTEST_SKIP() << "root, and no setpriv";
  }
  const TempFolderC bin;
  RunOptions run;
  if (geteuid() == 0) {
    fs::copy(ProgramPath(), bin / "surveydata");
    fs::permissions(bin.Path(), fs::perms{0755});
    run.program = "setpriv";
  }
  const auto setAsOther = [&] {
    std::vector<std::string> arguments = {"record", "set",      file_, "--offset",
                                          "960",    "--number", "5"};
    if (geteuid() == 0) {
      arguments.insert(arguments.begin(),
                       {"--reuid=65534", "--regid=65534", "--clear-groups", bin / "surveydata"});
    }
    return RunProgram(arguments, run);
  };
  const struct {
    const char* what;
    unsigned folder;
    unsigned file;
  } cases[] = {{"folder", 0555, 0666}, {"file", 0777, 0444}};
  for (const auto& [what, folder, file] : cases) {
    SCOPED_TRACE(what);
    fs::permissions(folder_.Path(), fs::perms{folder});
    fs::permissions(file_, fs::perms{file});
    const Outcome outcome = setAsOther();
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_NE(outcome.err.find("sample.rec is as it was"), std::string::npos) << outcome.err;
    ExpectUntouched();
  }
  fs::permissions(folder_.Path(), fs::perms{0777});
  fs::permissions(file_, fs::perms{0666});
  if (geteuid() == 0) {
    // Who may write, but not give the copy the file's group, would change who can read it.
    const Outcome outcome = setAsOther();
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_NE(outcome.err.find("the group of"), std::string::npos) << outcome.err;
    ExpectUntouched();
    ASSERT_EQ(chown(file_.c_str(), 0, 65534), 0);
  }
  // With all of them, it works: the refusals above are about the permissions.
  EXPECT_EQ(setAsOther().exitCode, 0);
  EXPECT_TRUE(ReadBytes(file_) == Expected({.name = {}, .number = 5, .height = {}}));
}

}  // namespace
