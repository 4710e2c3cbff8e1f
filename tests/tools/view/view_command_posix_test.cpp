// How `surveydata view` keeps its pages and starts browsers on POSIX systems.

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/tools/program.h"

namespace {

namespace fs = std::filesystem;

Bytes BytesOf(const std::string& text) { return {text.begin(), text.end()}; }

unsigned ModeOf(const std::string& file) {
  struct stat status {};
  EXPECT_EQ(stat(file.c_str(), &status), 0) << file;
  return status.st_mode & 07777U;
}

void WaitFor(const std::string& file) {
  for (int i = 0; i < 600 && !fs::exists(file); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
}

// An installation with a page, browsers that record their argument, and a home folder.
class ViewOnPosix : public testing::Test {
 protected:
  ViewOnPosix() {
    for (const char* const name : {"bin", "share/surveydata", "home", "work"}) {
      fs::create_directories(folder_ / name);
    }
    fs::copy_file(ProgramPath(), folder_ / "bin/surveydata");
    WriteBytes(folder_ / "share/surveydata/surveydata.html", BytesOf("<p>\n<!-- file -->\n"));
    for (const char* const name : {"xdg-open", "open", "firefox"}) {
      AddProgram(name,
                 "cp -p \"$1\" \"$0.new\" && echo \"$1\" >\"$0.page\" && mv \"$0.new\" "
                 "\"$0.copy\"");
    }
    for (const char* const name : {"valley_drive.rec", "areas/facade.json"}) {
      fs::copy_file(DataPath(name), fs::path(folder_ / "work") / fs::path(name).filename());
    }
  }

  void AddProgram(const std::string& name, const std::string& script) {
    WriteBytes(folder_ / ("bin/" + name), BytesOf("#!/bin/sh\n" + script + "\n"));
    fs::permissions(folder_ / ("bin/" + name), fs::perms::owner_all);
  }

  Outcome View(const std::string& arguments, const std::string& environment = {}) {
    const std::string variables = environment.empty() ? "HOME=" + (folder_ / "home") : environment;
    // Without the folders of the environment: another user may not search them.
    return RunShell("PATH=" + (folder_ / "bin") +
                        ":/usr/bin:/bin && unset HOME XDG_CACHE_HOME && env " + variables +
                        " surveydata view " + arguments,
                    folder_ / "work");
  }

  // The page that the browser was given, after it has read it.
  std::string PageOf(const std::string& browser) {
    WaitFor(folder_ / ("bin/" + browser + ".copy"));
    const std::vector<std::string> lines = Lines(ReadText(folder_ / ("bin/" + browser + ".page")));
    return lines.empty() ? "" : lines.front();
  }

  TempFolderC folder_;
  std::string pages_ = folder_ / "home/.cache/surveydata/pages";
};

TEST_F(ViewOnPosix, ShowsAPageThatOnlyItsUserCanRead) {
  const Outcome outcome = View("valley_drive.rec", "HOME=" + (folder_ / "home") +
                                                       " sh -c 'umask 0; "
                                                       "exec \"$@\"' sh");
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.err, "");
  const std::string page = PageOf("xdg-open");
  EXPECT_EQ(outcome.out, page + "\n");
  EXPECT_TRUE(page.starts_with(pages_ + "/view-")) << page;
  EXPECT_EQ(ModeOf(page), 0600U);
  EXPECT_EQ(ModeOf(pages_), 0700U);
  EXPECT_TRUE(ReadText(folder_ / "bin/xdg-open.copy")
                  .starts_with("<p>\n<template id=\"file\" data-name=\"valley_drive.rec\">"));
}

TEST_F(ViewOnPosix, RemovesItsOlderPages) {
  View("valley_drive.rec");
  const auto old = fs::file_time_type::clock::now() - std::chrono::minutes(2);
  const std::string other = pages_ + "/notes.html";
  WriteBytes(other, {});
  fs::last_write_time(other, old);
  const std::string first = PageOf("xdg-open");
  fs::last_write_time(first, old);
  const std::string second = Lines(View("valley_drive.rec").out).at(0);
  const std::string third = Lines(View("valley_drive.rec").out).at(0);
  EXPECT_FALSE(fs::exists(first));
  EXPECT_TRUE(fs::exists(second)) << "a browser may not have read it yet";
  EXPECT_TRUE(fs::exists(third));
  EXPECT_TRUE(fs::exists(other)) << "it is not one of its pages";
}

TEST_F(ViewOnPosix, TakesTheCacheOfTheUser) {
  const std::string cache = folder_ / "cache";
  const Outcome outcome = View("valley_drive.rec", "XDG_CACHE_HOME=" + cache);
  EXPECT_TRUE(outcome.out.starts_with(cache + "/surveydata/pages/view-")) << outcome.out;
  EXPECT_EQ(
      View("valley_drive.rec", "XDG_CACHE_HOME=relative").err,
      "surveydata: there is no folder for the page, because HOME is not set; choose one with -o\n");
}

TEST_F(ViewOnPosix, ClosesAFolderThatOthersCouldRead) {
  fs::create_directories(pages_);
  fs::permissions(pages_, fs::perms::all);
  EXPECT_EQ(View("valley_drive.rec").exitCode, 0);
  EXPECT_EQ(ModeOf(pages_), 0700U);
}

TEST_F(ViewOnPosix, DoesNotFollowALinkToAnotherFolder) {
  fs::create_directories(folder_ / "home/.cache/surveydata");
  fs::create_directory_symlink(folder_ / "work", pages_);
  const Outcome outcome = View("valley_drive.rec");
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_TRUE(outcome.err.starts_with("surveydata: cannot use " + pages_)) << outcome.err;
  EXPECT_EQ(outcome.out, "");
}

TEST_F(ViewOnPosix, OptionsChooseThePlaceAndTheBrowser) {
  const Outcome outcome = View("facade.json -o facade.html --browser firefox");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
  EXPECT_EQ(outcome.out, "facade.html\n");
  EXPECT_EQ(PageOf("firefox"), folder_ / "work/facade.html");
  EXPECT_FALSE(fs::exists(pages_));
}

TEST_F(ViewOnPosix, TheNameOfTheFileCannotAddToThePage) {
  WriteBytes(folder_ / "work/\"><script>.rec", BytesOf("f"));
  EXPECT_EQ(
      View("'\"><script>.rec' -o -").out,
      "<p>\n<template id=\"file\" data-name=\"&quot;&gt;&lt;script&gt;.rec\">Zg==</template>\n");
}

TEST_F(ViewOnPosix, ReportsABrowserThatDoesNotStart) {
  const Outcome missing = View("valley_drive.rec -o a.html --browser no-such-browser");
  EXPECT_EQ(missing.exitCode, 3);
  EXPECT_EQ(missing.err, "surveydata: cannot start no-such-browser to show " +
                             (folder_ / "work/a.html") + ": No such file or directory\n");
  AddProgram("broken", "exit 7");
  const Outcome broken = View("valley_drive.rec -o a.html --browser broken");
  EXPECT_EQ(broken.exitCode, 3);
  EXPECT_EQ(broken.err, "surveydata: broken exited with 7 and did not show " +
                            (folder_ / "work/a.html") + "\n");
}

// The browser keeps running: it writes its file after the program has ended.
TEST_F(ViewOnPosix, DoesNotWaitForTheBrowser) {
  AddProgram("slow", "while [ ! -e \"$0.go\" ]; do sleep 0.1; done; touch \"$0.done\"");
  EXPECT_EQ(View("valley_drive.rec -o a.html --browser slow").exitCode, 0);
  WriteBytes(folder_ / "bin/slow.go", {});
  WaitFor(folder_ / "bin/slow.done");
  EXPECT_TRUE(fs::exists(folder_ / "bin/slow.done"));
}

TEST_F(ViewOnPosix, TheExamplesOfItsHelpWork) {
  const Outcome help = View("--help");
  int count = 0;
  for (const std::string& line : Lines(help.out)) {
    constexpr std::string_view kStart = "  surveydata view ";
    if (!line.starts_with(kStart)) continue;
    ++count;
    EXPECT_EQ(View(line.substr(kStart.size())).exitCode, 0) << line;
  }
  EXPECT_EQ(count, 2);
}

}  // namespace
