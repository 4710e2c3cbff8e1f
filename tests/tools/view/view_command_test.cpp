// The pages that `surveydata view` writes.

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/sanitizer.h"
#include "tests/tools/program.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kBefore = "<!doctype html>\n<p>a page</p>\n";
constexpr const char* kAfter = "\n<script>1 < 2</script>\n";

Bytes BytesOf(const std::string& text) { return {text.begin(), text.end()}; }

// Writes a page to the folder.
std::string MakePage(const TempFolderC& folder) {
  const std::string page = folder / "page.html";
  WriteBytes(page, BytesOf(std::string(kBefore) + "<!-- file -->" + kAfter));
  return page;
}
std::string PageWith(const std::string& name, const std::string& base64) {
  return kBefore + ("<template id=\"file\" data-name=\"" + name + "\">") + base64 + "</template>" +
         kAfter;
}

Outcome View(const std::string& file, const std::string& page, const std::string& out = "-") {
  return RunProgram({"view", file, "--page", page, "-o", out});
}

// The test vectors of RFC 4648, section 10, and all byte values.
TEST(View, EmbedsTheFileInBase64) {
  const TempFolderC folder;
  const std::string page = MakePage(folder);
  const struct {
    Bytes bytes;
    std::string base64;
  } cases[] = {
      {BytesOf(""), ""},
      {BytesOf("f"), "Zg=="},
      {BytesOf("fo"), "Zm8="},
      {BytesOf("foo"), "Zm9v"},
      {BytesOf("foob"), "Zm9vYg=="},
      {BytesOf("fooba"), "Zm9vYmE="},
      {BytesOf("foobar"), "Zm9vYmFy"},
      {{0x00, 0xFF, 0xFE, 0xFB, 0xEF, 0xBE, 0x3C, 0x2F}, "AP/+++++PC8="},
  };
  for (const auto& [bytes, base64] : cases) {
    SCOPED_TRACE(base64);
    WriteBytes(folder / "a.rec", bytes);
    const Outcome outcome = View(folder / "a.rec", page);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, PageWith("a.rec", base64));
  }
}

// A file that is encoded in more than one part.
TEST(View, EmbedsALongFileAsOneText) {
  const TempFolderC folder;
  WriteBytes(folder / "a.rec", Bytes(500'000, 0));
  const Outcome outcome = View(folder / "a.rec", MakePage(folder));
  EXPECT_EQ(outcome.out, PageWith("a.rec", std::string(666'667, 'A') + "="));
}

TEST(View, TheNameOfTheFileCannotAddToThePage) {
  const TempFolderC folder;
  const std::string file = folder / "a&lt;b.rec";
  WriteBytes(file, BytesOf("f"));
  EXPECT_EQ(View(file, MakePage(folder)).out, PageWith("a&amp;lt;b.rec", "Zg=="));
}

TEST(View, ReadsStandardInput) {
  const TempFolderC folder;
  WriteBytes(folder / "a.rec", BytesOf("foo"));
  const Outcome outcome =
      RunProgram({"view", "-", "--page", MakePage(folder), "-o", "-"}, {.input = folder / "a.rec"});
  EXPECT_EQ(outcome.out, PageWith("standard input", "Zm9v"));
}

TEST(View, TakesAtMost50Megabytes) {
  const TempFolderC folder;
  const std::string file = folder / "a.rec";
  WriteBytes(file, {});
  fs::resize_file(file, 50'000'001);
  const Outcome outcome = View(file, MakePage(folder), folder / "out.html");
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_EQ(outcome.err,
            "surveydata: " + file +
                " has more than 50 MB; open the page itself and drop the file on it\n");
  EXPECT_FALSE(fs::exists(folder / "out.html"));
  if (kIsSanitized) return;  // encoding them takes 10 s then; a shorter file shows the same faults
  fs::resize_file(file, 50'000'000);
  const std::string empty = PageWith("a.rec", "");
  EXPECT_EQ(View(file, MakePage(folder)).out.size(), empty.size() + (50'000'000 + 2) / 3 * 4);
}

TEST(View, RefusesAPageWithoutAPlaceholder) {
  const TempFolderC folder;
  WriteBytes(folder / "other.html", BytesOf(kBefore));
  WriteBytes(folder / "a.rec", BytesOf("f"));
  const Outcome outcome = View(folder / "a.rec", folder / "other.html");
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err,
            "surveydata: " + (folder / "other.html") +
                " is not the page of this program: it has no placeholder for a file\n");
}

TEST(View, SaysThatThePageIsNotInstalled) {
  const TempFolderC folder;
  WriteBytes(folder / "a.rec", BytesOf("f"));
  const Outcome outcome = RunProgram({"view", folder / "a.rec"});
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_NE(outcome.err.find("surveydata.html does not exist: the page was not installed; --page "
                             "names one"),
            std::string::npos)
      << outcome.err;
}

TEST(View, DoesNotOverwriteItsFileOrItsPage) {
  const TempFolderC folder;
  WriteBytes(folder / "a.rec", BytesOf("f"));
  const Outcome outcome = View(folder / "a.rec", MakePage(folder), folder / "a.rec");
  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_EQ(ReadText(folder / "a.rec"), "f");

  const std::string page = MakePage(folder);
  const std::string before = ReadText(page);
  EXPECT_EQ(View(folder / "a.rec", page, page).exitCode, 2);
  EXPECT_EQ(ReadText(page), before);
}

}  // namespace
