// Tests that need a POSIX shell, file system or terminal.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#if defined(__linux__)
#include <sys/inotify.h>
#endif

#include <command_line/command.h>
#include <commands.h>

#include "tests/support/sanitizer.h"
#include "tests/tools/program.h"

namespace {

namespace fs = std::filesystem;

// The paths of all commands but `view`, whose examples need a browser and have a separate test.
std::vector<std::string> CommandPaths() {
  const Tool::Command top = Tool::MakeCommands();
  std::vector<std::string> paths;
  for (const Tool::Command* const command : Tool::AllCommands(top)) {
    if (command->name != "view") paths.push_back(command->path);
  }
  return paths;
}

// The lines after "Example:" that begin with the program's name.
std::vector<std::string> Examples(const std::string& help) {
  std::vector<std::string> examples;
  bool hasBegun = false;
  for (const std::string& line : Lines(help)) {
    if (line == "Example:" || line == "Examples:") hasBegun = true;
    if (hasBegun && line.starts_with("  surveydata ")) examples.push_back(line.substr(2));
  }
  return examples;
}

// Some mebibytes of records, which several threads read.
Bytes LargeFile() {
  const Bytes sample = ReadBytes(DataPath("valley_drive.rec"));
  Bytes large;
  while (large.size() < (std::size_t{3} << 20)) {
    large.insert(large.end(), sample.begin(), sample.end());
  }
  return large;
}

TEST(Program, ExitsWithThreeIfOutputCannotBeWritten) {
  if (!fs::exists("/dev/full")) GTEST_SKIP() << "no /dev/full";
  const TempFolderC folder;
  const std::string file = DataPath("valley_drive.rec");
  const std::string area = DataPath("areas/facade.json");
  for (const std::string& command : std::vector<std::string>{
           "surveydata --help >/dev/full", "surveydata --version >/dev/full",
           "surveydata record list --help >/dev/full", "surveydata --version >&-",
           "surveydata record list '" + file + "' >&-",
           "surveydata record list '" + file + "' >/dev/full",
           "surveydata record show '" + file + "' --offset 960 >/dev/full",
           "surveydata record export '" + file + "' >/dev/full",
           "surveydata record export '" + file + "' -o /dev/full",
           "surveydata record plot '" + file + "' -o /dev/full",
           "surveydata area info '" + area + "' >/dev/full",
           "surveydata area outline '" + area + "' >/dev/full",
           "surveydata area contains '" + area + "' 57,92 >/dev/full",
           "surveydata area plot '" + area + "' -o /dev/full"}) {
    SCOPED_TRACE(command);
    const Outcome outcome = RunShell(command, folder.Path().string());
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_NE(outcome.err.find("cannot write"), std::string::npos) << outcome.err;
  }
}

TEST(Program, KeepsItsExitCodeWhereMessagesCannotBeWritten) {
  if (!fs::exists("/dev/full")) GTEST_SKIP() << "no /dev/full";
  const TempFolderC folder;
  WriteBytes(folder / "bad.rec",
             MakeFrame(113, MakeBody(0x0008, {2})));  // a block that does not fit
  const struct {
    std::string command;
    int code;
  } cases[] = {
      {"surveydata record list missing.rec", 3},
      {"surveydata record nonsense", 2},
      {"surveydata record export bad.rec -o out.json", 1},
      {"surveydata record show bad.rec --offset 0", 1},
      {"surveydata area info '" + DataPath("valley_drive.rec") + "'", 3},
  };
  for (const auto& [command, code] : cases) {
    for (const char* const where : {" 2>/dev/full", " 2>&-"}) {
      SCOPED_TRACE(command + where);
      EXPECT_EQ(RunShell(command + where, folder.Path().string()).exitCode, code);
    }
  }
  const std::string closed = "surveydata record export bad.rec -o out.json 2>&- >&- <&-";
  EXPECT_EQ(RunShell(closed, folder.Path().string()).exitCode, 1);
  // No message went into the file that was opened, whatever its descriptor.
  EXPECT_EQ(ReadText(folder / "out.json"), "");
  for (const char* const streams : {"2>&-", "2>&- <&-", "2>&- >&-", ">&- <&-"}) {
    SCOPED_TRACE(streams);
    RunShell("surveydata record export bad.rec -o out.json " + std::string(streams),
             folder.Path().string());
    EXPECT_EQ(ReadText(folder / "out.json"), "");
  }
}

// Running out of memory ends the program with a message, never with a signal.
TEST(Program, ExitsWithThreeWhenMemoryIsExhausted) {
  if (kIsSanitized) GTEST_SKIP() << "the sanitizer itself uses memory";
  const TempFolderC folder;
  std::string points;
  for (int i = 0; i < 200'000; ++i) points += std::string(i > 0 ? "," : "") + R"({"hz":1,"v":2})";
  const std::string area =
      R"({"kind": "polygon", "unit": "deg", "hzStep": 1, "vStep": 1, "points": [)" + points + "]}";
  WriteBytes(folder / "large.json", Bytes(area.begin(), area.end()));
  WriteBytes(folder / "a.rec", LargeFile());
  int failures = 0;
  for (const std::string command :
       {"area info large.json", "area plot large.json -o out.svg",
        "record export a.rec -o out.json --jobs 8", "record list a.rec --jobs 8 >out",
        "record plot a.rec -o out.svg --jobs 8", "record check a.rec a.rec --jobs 2"}) {
    for (int kilobytes = 8'000; kilobytes <= 60'000; kilobytes += 3'000) {
      SCOPED_TRACE(command + ", " + std::to_string(kilobytes) + " KB");
      const Outcome outcome = RunShell(
          "ulimit -c 0; ulimit -v " + std::to_string(kilobytes) + "; surveydata " + command,
          folder.Path().string());
      if (outcome.err.find("shared libraries") != std::string::npos) continue;  // not even loaded
      EXPECT_LE(outcome.exitCode, 4);
      if (outcome.exitCode != 3) continue;
      ++failures;
      EXPECT_EQ(outcome.err, "surveydata: there is not enough memory\n");
    }
  }
  EXPECT_GE(failures, 6);
}

TEST(Program, EndsEveryHelpWithAnExampleThatWorks) {
  const std::vector<std::string> commands = CommandPaths();
  EXPECT_GE(commands.size(), 19U);
  for (const std::string& command : commands) {
    SCOPED_TRACE(command);
    const Outcome help = RunShell(command + " --help", "/");
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_EQ(help.err, "");
    EXPECT_FALSE(help.out.starts_with("Usage:")) << "without a description";
    const std::vector<std::string> examples = Examples(help.out);
    EXPECT_FALSE(examples.empty()) << help.out;
    for (const std::string& example : examples) {
      SCOPED_TRACE(example);
      EXPECT_TRUE(example.starts_with(command));
      const TempFolderC folder;
      fs::copy(DataPath("valley_drive.rec"), folder / "valley_drive.rec");
      fs::copy(DataPath("areas"), folder.Path());
      const bool isDiff = command.ends_with(" diff");
      if (isDiff) {
        fs::copy(DataPath("desert_highway.rec"), folder / "desert_highway.rec");
        for (const auto& [copy, sample] : {std::pair("archive", "valley_drive.rec"),
                                           std::pair("backup", "desert_highway.rec")}) {
          fs::create_directory(folder.Path() / copy);
          fs::copy(DataPath(sample), folder.Path() / copy / "drive.rec");
        }
      }
      const std::size_t before = folder.Names().size();
      const Outcome outcome = RunShell(example, folder.Path().string());
      // A list and a check report the gaps of the sample; a comparison reports differences.
      const bool isFinding = example.find(" list valley") != std::string::npos ||
                             command.ends_with(" check") || isDiff;
      EXPECT_EQ(outcome.exitCode, isFinding ? 1 : 0);
      const bool isCopy = command.ends_with(" cut") || command.ends_with(" join");
      if (isCopy) {
        EXPECT_TRUE(outcome.err.starts_with("surveydata: left out: ")) << outcome.err;
        EXPECT_EQ(Lines(outcome.err).size(), 1U);
      } else {
        EXPECT_EQ(outcome.err, "");
      }
      EXPECT_TRUE(outcome.out != "" || folder.Names().size() > before);
    }
  }
}

// A pipe can be read only once, but all results are the same as for a file.
TEST(RecordCommands, ReadAPipeAsAFile) {
  const TempFolderC folder;
  fs::copy(DataPath("valley_drive.rec"), folder / "valley_drive.rec");
  fs::copy(DataPath("areas/facade.json"), folder / "facade.json");
  const struct {
    std::string command;  // FILE is the file
    std::string file;
  } cases[] = {
      {"record list FILE", "valley_drive.rec"},
      {"record list FILE --json", "valley_drive.rec"},
      {"record export FILE", "valley_drive.rec"},
      {"record export FILE --csv", "valley_drive.rec"},
      {"record show FILE --offset 960", "valley_drive.rec"},
      {"record show FILE --offset 961", "valley_drive.rec"},
      {"record show FILE --offset 99999999", "valley_drive.rec"},
      {"record set FILE --offset 960 --number 5 --dry-run", "valley_drive.rec"},
      {"area info FILE", "facade.json"},
      {"area outline FILE", "facade.json"},
      {"area contains FILE 57,92", "facade.json"},
  };
  for (const auto& [command, file] : cases) {
    SCOPED_TRACE(command);
    const auto run = [&, command = command](const std::string& before, const std::string& name,
                                            const std::string& after = "") {
      std::string line = command;
      line.replace(line.find("FILE"), 4, name);
      return RunShell(before + "timeout 60 surveydata " + line + after, folder.Path().string());
    };
    const Outcome expected = run("", file);
    std::vector<Outcome> outcomes = {
        run("rm -f pipe; mkfifo pipe; { sleep 0.1; cat " + file + "; } > pipe & ", "pipe")};
    for (const char* const input : {"-", "/dev/stdin", "/dev/fd/0"}) {
      if (command.find(" set ") != std::string::npos) continue;  // standard input cannot be changed
      outcomes.push_back(run("cat " + file + " | ", input));
      outcomes.push_back(run("", input, " < " + file));
    }
    for (const Outcome& outcome : outcomes) {
      EXPECT_EQ(outcome.exitCode, expected.exitCode);
      EXPECT_EQ(outcome.out, expected.out);
      EXPECT_EQ(outcome.err, expected.err);
    }
  }
}

TEST(AreaContains, ReadsDirectionsFromAPipeAsFromAFile) {
  const TempFolderC folder;
  fs::copy(DataPath("areas/facade.json"), folder / "facade.json");
  const std::string text = "id,hz,v\nP1,57,92\n";
  WriteBytes(folder / "d.csv", Bytes(text.begin(), text.end()));
  const auto run = [&](const std::string& command) {
    return RunShell(command, folder.Path().string());
  };
  const std::string contains = "timeout 60 surveydata area contains facade.json";
  const std::string expected = run(contains + " --csv d.csv").out;
  for (const std::string& command :
       {"cat d.csv | " + contains, "cat d.csv | " + contains + " --csv -",
        contains + " --csv /dev/stdin < d.csv",
        "mkfifo pipe; cat d.csv > pipe & " + contains + " --csv pipe"}) {
    SCOPED_TRACE(command);
    const Outcome outcome = run(command);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, expected);
    EXPECT_EQ(outcome.err, "");
  }
  // The area may come through the pipe instead.
  EXPECT_EQ(
      run("cat facade.json | " + contains.substr(0, contains.rfind(' ')) + " - --csv d.csv").out,
      expected);
}

TEST(AreaContains, RefusesToReadBothFromStandardInput) {
  const TempFolderC folder;
  fs::copy(DataPath("areas/facade.json"), folder / "facade.json");
  for (const std::string area : {"-", "/dev/stdin", "/dev/fd/0", "/proc/self/fd/0"}) {
    EXPECT_EQ(RunShell("surveydata area contains " + area + " --csv - < facade.json",
                       folder.Path().string())
                  .exitCode,
              2)
        << area;
  }
}

TEST(Pictures, OfStandardInputGoToStandardOutput) {
  const TempFolderC folder;
  fs::copy(DataPath("valley_drive.rec"), folder / "valley_drive.rec");
  fs::copy(DataPath("areas/facade.json"), folder / "facade.json");
  for (const std::string& command :
       {std::string("cat valley_drive.rec | surveydata record plot -"),
        std::string("surveydata record plot - < valley_drive.rec"),
        std::string("cat facade.json | surveydata area plot - --probe 57,92")}) {
    SCOPED_TRACE(command);
    const Outcome outcome = RunShell(command, folder.Path().string());
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_TRUE(outcome.out.starts_with("<?xml")) << outcome.out;
    const Outcome toFile = RunShell(command + " -o out.svg", folder.Path().string());
    EXPECT_EQ(toFile.out, "");
    EXPECT_EQ(ReadText(folder / "out.svg"), outcome.out);
  }
}

TEST(AreaCommands, RefuseToOverwriteTheirStandardInput) {
  const TempFolderC folder;
  fs::copy(DataPath("areas/facade.json"), folder / "a.json");
  const std::string text = "hz,v\n57,92\n";
  const Bytes table(text.begin(), text.end());
  WriteBytes(folder / "d.csv", table);
  for (const std::string command :
       {"plot a.json --csv - -o d.csv < d.csv", "plot - -o a.json < a.json",
        "grid - -o a.json < a.json", "convert - --unit deg -o a.json < a.json"}) {
    SCOPED_TRACE(command);
    EXPECT_EQ(RunShell("surveydata area " + command, folder.Path().string()).exitCode, 2);
  }
  EXPECT_EQ(ReadBytes(folder / "d.csv"), table);
  EXPECT_EQ(ReadBytes(folder / "a.json"), ReadBytes(DataPath("areas/facade.json")));
}

TEST(RecordExport, RefusesToOverwriteItsStandardInput) {
  const TempFolderC folder;
  fs::copy(DataPath("valley_drive.rec"), folder / "a.rec");
  EXPECT_EQ(
      RunShell("surveydata record export - -o a.rec < a.rec", folder.Path().string()).exitCode, 2);
  EXPECT_EQ(ReadBytes(folder / "a.rec"), ReadBytes(DataPath("valley_drive.rec")));
}

#if defined(__linux__)
// Counts how often a file of a folder is opened. The system merges equal events in a row, so each
// opening is also reported for the folder, which separates the events of the file.
class OpenedC {
 public:
  OpenedC(const std::string& folder, const std::string& name)
      : events_(inotify_init1(IN_NONBLOCK)),
        file_(inotify_add_watch(events_, (folder + "/" + name).c_str(), IN_OPEN)) {
    EXPECT_GE(file_, 0);
    EXPECT_GE(inotify_add_watch(events_, folder.c_str(), IN_OPEN), 0);
  }
  OpenedC(const OpenedC&) = delete;
  OpenedC& operator=(const OpenedC&) = delete;
  ~OpenedC() { close(events_); }

  // How often the file was opened since.
  int Count() const {
    int count = 0;
    char events[4096];
    ssize_t size = 0;
    while ((size = read(events_, events, sizeof(events))) > 0) {
      for (std::size_t at = 0; at < static_cast<std::size_t>(size);) {
        inotify_event event;
        std::memcpy(&event, events + at, sizeof(event));
        if (event.wd == file_ && (event.mask & IN_OPEN) != 0) ++count;
        at += sizeof(event) + event.len;
      }
    }
    return count;
  }

 private:
  int events_;
  int file_;
};

TEST(Program, OpensEachFileOnce) {
  const std::pair<const char*, std::vector<const char*>> cases[] = {
      {"record list a.rec", {"a.rec"}},
      {"record list a.rec --jobs 4", {"a.rec"}},
      {"record list a.rec b.rec", {"a.rec", "b.rec"}},
      {"record show a.rec --offset 960 --bytes", {"a.rec"}},
      {"record show a.rec --offset 961", {"a.rec"}},
      {"record show a.rec --where 'pdop > 6'", {"a.rec"}},
      {"record export a.rec", {"a.rec"}},
      {"record export a.rec --jobs 4", {"a.rec"}},
      {"record check a.rec --jobs 4", {"a.rec"}},
      {"record diff a.rec b.rec", {"a.rec", "b.rec"}},
      {"record diff a.rec b.rec --jobs 4", {"a.rec", "b.rec"}},
      {"record cut a.rec -o out.rec", {"a.rec"}},
      {"record join a.rec b.rec -o out.rec", {"a.rec", "b.rec"}},
      {"record plot a.rec -o out.svg", {"a.rec"}},
      {"record plot a.rec -o out.svg --jobs 4", {"a.rec"}},
      {"record set b.rec --offset 960 --number 5 --dry-run", {"b.rec"}},
      {"record set b.rec --offset 961 --number 5", {"b.rec"}},
      {"record set b.rec --offset 960 --number 5", {"b.rec"}},
      {"record set b.rec --all --number 6", {"b.rec"}},
      {"area info a.json", {"a.json"}},
      {"area outline a.json", {"a.json"}},
      {"area contains a.json --csv d.csv", {"a.json", "d.csv"}},
      {"area grid a.json -o grid.csv", {"a.json"}},
      {"area convert a.json --unit deg", {"a.json"}},
      {"area plot a.json -o out.svg --csv d.csv", {"a.json", "d.csv"}},
  };
  const TempFolderC folder;
  WriteBytes(folder / "a.rec", LargeFile());
  WriteBytes(folder / "b.rec", ReadBytes(DataPath("valley_drive.rec")));
  WriteBytes(folder / "a.json", ReadBytes(DataPath("areas/facade.json")));
  const std::string directions = "57,92\n60,93\n";
  WriteBytes(folder / "d.csv", Bytes(directions.begin(), directions.end()));
  for (const auto& [command, files] : cases) {
    SCOPED_TRACE(command);
    for (const char* const file : files) {
      SCOPED_TRACE(file);
      const OpenedC opened(folder.Path().string(), file);
      const Outcome outcome =
          RunShell(std::string("surveydata ") + command, folder.Path().string());
      EXPECT_LE(outcome.exitCode, 1) << outcome.err;
      EXPECT_EQ(opened.Count(), 1);
    }
  }
}
#endif

// What a run of the program takes.
struct Usage {
  int exitCode = -1;
  long memory = 0;  // KiB
};

Usage UsageOf(const std::vector<std::string>& arguments) {
  const std::string program = ProgramPath();
  std::vector<const char*> words = {program.c_str()};
  for (const std::string& argument : arguments) words.push_back(argument.c_str());
  words.push_back(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    const int null = open("/dev/null", O_WRONLY);
    dup2(null, STDOUT_FILENO);
    dup2(null, STDERR_FILENO);
    execv(program.c_str(), const_cast<char* const*>(words.data()));
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  EXPECT_EQ(wait4(child, &status, 0, &usage), child);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, usage.ru_maxrss};
}

// A file that is larger than the memory that the program may use: with one job, and with several,
// which hold their output until it can be written in order.
TEST(RecordExport, TakesAFixedAmountOfMemory) {
  if (kIsSanitized) GTEST_SKIP() << "the sanitizer itself uses memory";
  constexpr std::size_t kFileSize = std::size_t{80} << 20;
  const TempFolderC folder;
  const std::string file = folder / "large.rec";
  const std::string sample = ReadText(DataPath("valley_drive.rec"));
  std::ofstream out(file, std::ios::binary);
  for (std::size_t size = 0; size < kFileSize; size += sample.size()) out << sample;
  out.close();

  const struct {
    const char* jobs;
    long memory;  // KiB
  } cases[] = {{"1", 32L << 10}, {"2", 64L << 10}};
  for (const auto& [jobs, memory] : cases) {
    SCOPED_TRACE(jobs);
    const Usage usage = UsageOf({"record", "export", file, "--jobs", jobs});
    EXPECT_EQ(usage.exitCode, 0);
    EXPECT_LT(usage.memory, memory);
  }
}

#if defined(__linux__)
// So that the messages of programs that run at the same time do not mix.
TEST(Program, WritesAMessageInOneCallAndLimitsIt) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"record", "list", std::string(3000, '\n')},
        {"record", "nonsense"},
        {"area", "info", std::string(100'000, 'x')},
        {std::string(100'000, 'x')}}) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_DIRECT), 0);  // each read gives the bytes of one call
    std::vector<const char*> words = {"surveydata"};
    for (const std::string& argument : arguments) words.push_back(argument.c_str());
    words.push_back(nullptr);
    const std::string program = ProgramPath();
    const pid_t child = fork();
    if (child == 0) {
      dup2(ends[1], STDERR_FILENO);
      execv(program.c_str(), const_cast<char* const*>(words.data()));
      _exit(127);
    }
    close(ends[1]);
    char text[8192];
    const ssize_t size = read(ends[0], text, sizeof(text));
    ASSERT_GT(size, 1);
    EXPECT_LE(size, 4096);
    EXPECT_EQ(text[size - 1], '\n');
    EXPECT_EQ(read(ends[0], text, sizeof(text)), 0);
    close(ends[0]);
    EXPECT_EQ(waitpid(child, nullptr, 0), child);
  }
}
#endif

// Lines of very many cells, which go to the output.
TEST(AreaContains, TakesALimitedAmountOfMemory) {
  if (kIsSanitized) GTEST_SKIP() << "the sanitizer itself uses memory";
  const TempFolderC folder;
  const std::string file = folder / "wide.csv";
  const std::string commas(65'000, ',');
  std::ofstream out(file);
  for (int i = 0; i <= 120; ++i) out << (i == 0 ? "hz,v" : "57,92") << commas << "\n";
  out.close();
  for (const std::string form : {"text", "csv", "json"}) {
    SCOPED_TRACE(form);
    const Usage usage = UsageOf(
        {"area", "contains", DataPath("areas/facade.json"), "--csv", file, "--format", form});
    EXPECT_EQ(usage.exitCode, 0);
    EXPECT_LT(usage.memory, 48L << 10);
  }
}

// A ring around the zenith that crosses itself nearly everywhere: 20,000 edges, tens of millions of
// crossings.
TEST(AreaPlot, TakesALimitedAmountOfMemory) {
  if (kIsSanitized) GTEST_SKIP() << "the sanitizer itself uses memory";
  const TempFolderC folder;
  const std::string file = folder / "tangle.json";
  std::ofstream out(file);
  out << R"({"kind": "polygon", "unit": "deg", "hzStep": 1, "vStep": 1, "points": [)";
  std::uint32_t random = 1;
  const auto next = [&random] {
    random = random * 1'664'525 + 1'013'904'223;
    return (random >> 8) * 0x1p-24;
  };
  for (int i = 0; i < 20'000; ++i) {
    const double hz = i * 360.0 / 20'000 + next() * 120;
    out << (i > 0 ? ",[" : "[") << hz - (hz < 360 ? 0 : 360) << "," << 1 + next() * 178 << "]";
  }
  out << "]}";
  out.close();
  for (const std::vector<std::string>& more :
       {std::vector<std::string>{}, {"--probe", "57,92", "--probe", "0,0"}}) {
    std::vector<std::string> arguments = {"area", "plot", file, "-o", folder / "out.svg"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Usage usage = UsageOf(arguments);
    EXPECT_EQ(usage.exitCode, 4);
    EXPECT_LT(usage.memory, 64L << 10);
  }
}

TEST(RecordPlot, EscapesNamesOfAnyBytes) {
  const TempFolderC folder;
  for (const auto& [name, title] :
       {std::pair<std::string, std::string>{"a<b>&\"c'.rec", "a&lt;b&gt;&amp;"},
        {"x\xFF\x01.rec", "x\uFFFD\uFFFD.rec"}}) {
    SCOPED_TRACE(title);
    fs::copy(DataPath("valley_drive.rec"), folder / name);
    EXPECT_EQ(RunProgram({"record", "plot", folder / name, "-o", folder / "out.svg"}).exitCode, 0);
    const std::string svg = ReadText(folder / "out.svg");
    EXPECT_NE(svg.find("<title>" + title), std::string::npos);
    EXPECT_EQ(svg.find(name), std::string::npos);
  }
}

TEST(RecordExport, RefusesToOverwriteItsInputThroughALink) {
  const TempFolderC folder;
  fs::copy(DataPath("valley_drive.rec"), folder / "a.rec");
  fs::create_symlink(folder / "a.rec", folder / "link.rec");
  EXPECT_EQ(RunProgram({"record", "export", folder / "a.rec", "-o", folder / "link.rec"}).exitCode,
            2);
  EXPECT_EQ(ReadBytes(folder / "a.rec"), ReadBytes(DataPath("valley_drive.rec")));
}

TEST(AreaContains, SaysOnATerminalThatItWaitsForDirections) {
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
  if (terminal < 0 || grantpt(terminal) != 0 || unlockpt(terminal) != 0) {
    GTEST_SKIP() << "no pseudo terminal available";
  }
  const std::string name = ptsname(terminal);
  const int keptOpen = open(name.c_str(), O_RDWR | O_NOCTTY);
  ASSERT_EQ(write(terminal, "57,92\n\x04", 7), 7);
  const Outcome outcome =
      RunShell("surveydata area contains '" + DataPath("areas/facade.json") + "' <" + name, "/");
  close(keptOpen);
  close(terminal);
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_NE(outcome.err.find("enter directions"), std::string::npos) << outcome.err;
}

TEST(Documentation, ItsPicturesAreWhatTheProgramDraws) {
  const TempFolderC folder;
  const fs::path pictures = DataPath("../../docs/pictures");
  const Outcome outcome =
      RunShell("bash '" + (pictures / "redraw.sh").string() + "' .", folder.Path().string());
  ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
  const std::string texts = ReadText((pictures / "README.md").string());
  std::vector<std::string> kept;
  for (const auto& entry : fs::directory_iterator(pictures)) {
    if (entry.path().extension() == ".svg") kept.push_back(entry.path().filename().string());
  }
  std::sort(kept.begin(), kept.end());
  EXPECT_EQ(kept, folder.Names());
  for (const std::string& name : folder.Names()) {
    SCOPED_TRACE(name);
    EXPECT_EQ(ReadText(folder / name), ReadText(pictures / name)) << "run docs/pictures/redraw.sh";
    EXPECT_NE(texts.find(name), std::string::npos) << "not explained";
  }
}

// Windows does not allow such names.
TEST(AreaInfo, NamesAnAreaAfterItsFileWithAnyBytes) {
  const TempFolderC folder;
  const std::string file = folder / "b\xFF\x1B.json";
  std::string text = ReadText(DataPath("areas/facade.json"));
  const std::string name = R"("name": "South facade with annex",)";
  ASSERT_NE(text.find(name), std::string::npos);
  text.erase(text.find(name), name.size());
  WriteBytes(file, Bytes(text.begin(), text.end()));
  for (const char* const command : {"info", "outline"}) {
    const Outcome outcome = RunProgram({"area", command, file, "--json"});
    EXPECT_EQ(nlohmann::json::parse(outcome.out)["name"], "b\uFFFD\uFFFD.json");
  }
}

}  // namespace
