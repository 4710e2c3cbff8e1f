#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <command_line/suggestion.h>

namespace {

using Tool::Nearest;

const std::vector<std::string> kOptions = {"-h",       "--help",     "--json",  "--columns",
                                           "--format", "--formulas", "--output"};

TEST(Suggestion, IsTheNameThatIsNearest) {
  EXPECT_EQ(Nearest("--jsn", kOptions), "--json");
  EXPECT_EQ(Nearest("--jsno", kOptions), "--json");
  EXPECT_EQ(Nearest("--josn", kOptions), "--json");
  EXPECT_EQ(Nearest("-json", kOptions), "--json");
  EXPECT_EQ(Nearest("--colums", kOptions), "--columns");
  EXPECT_EQ(Nearest("lst", {"list", "show", "set"}), "list");
}

TEST(Suggestion, IsTheOnlyNameWithThatBeginning) {
  EXPECT_EQ(Nearest("--col", kOptions), "--columns");
  EXPECT_EQ(Nearest("--forma", kOptions), "--format");
  EXPECT_EQ(Nearest("-v", {"-h", "--help", "--version"}), "--version");
  EXPECT_EQ(Nearest("-j", kOptions), "--json");
  EXPECT_EQ(Nearest("-f", kOptions), "");
  EXPECT_EQ(Nearest("--form", {"--format", "--formulas"}), "--format");  // two letters, not four
}

TEST(Suggestion, IsNoneWhereNothingIsNearOrTwoNamesAreEquallyNear) {
  EXPECT_EQ(Nearest("--window", kOptions), "");
  EXPECT_EQ(Nearest("-x", kOptions), "");
  EXPECT_EQ(Nearest("shot", {"show", "shop"}), "");
  EXPECT_EQ(Nearest("x", {"y"}), "");
  EXPECT_EQ(Nearest("ab", {"cd"}), "");
  EXPECT_EQ(Nearest("list", {}), "");
}

}  // namespace
