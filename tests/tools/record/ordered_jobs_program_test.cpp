// Threads that the system does not start: the others do the work, and the output is the same.

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/sanitizer.h"
#include "tests/tools/program.h"

namespace {

TEST(RecordJobs, ContinueWithTheThreadsThatTheSystemStarts) {
  if (kIsSanitized) GTEST_SKIP() << "the sanitizer starts the threads";
  const TempFolderC folder;
  Bytes large;
  const Bytes sample = ReadBytes(DataPath("valley_drive.rec"));
  while (large.size() < (std::size_t{5} << 20)) {
    large.insert(large.end(), sample.begin(), sample.end());
  }
  WriteBytes(folder / "a.rec", large);
  WriteBytes(folder / "b.rec", sample);
  for (const std::string command : {"list a.rec", "list b.rec a.rec", "export a.rec --csv",
                                    "check a.rec b.rec", "plot a.rec -o -"}) {
    const auto run = [&](int jobs, const std::string& order, const std::string& log) {
      // The shim is described in tests/support/step_shim.cpp.
      return RunShell("LD_PRELOAD='" SURVEYDATA_STEP_SHIM "' SURVEYDATA_SHIM='" + order +
                          "' SURVEYDATA_SHIM_LOG='" + log + "' surveydata record " + command +
                          " --jobs " + std::to_string(jobs),
                      folder.Path().string());
    };
    const TempFolderC elsewhere;
    const Outcome expected = run(1, "log", elsewhere / "whole");
    EXPECT_FALSE(expected.out.empty() && expected.err.empty());
    for (const int started : {0, 1, 3}) {
      SCOPED_TRACE(command + ", " + std::to_string(started) + " threads");
      const std::string log = elsewhere / std::to_string(started);
      const Outcome outcome = run(5, "fail pthread_create " + std::to_string(started) + " 11", log);
      EXPECT_EQ(outcome.exitCode, expected.exitCode);
      EXPECT_EQ(outcome.err, expected.err);
      EXPECT_TRUE(outcome.out == expected.out);
      const std::vector<std::string> calls = Lines(ReadText(log));
      EXPECT_EQ(std::count(calls.begin(), calls.end(), "pthread_create"), started + 1);
    }
  }
}

}  // namespace
