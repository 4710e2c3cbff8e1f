#include <span>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <command_line/text.h>

namespace {

TEST(ToPrintable, LeavesWellFormedUtf8AndReplacesTheRest) {
  EXPECT_EQ(Tool::ToPrintable(std::string_view("a\u00E9\u20AC\U0001F600")),
            "a\u00E9\u20AC\U0001F600");
  EXPECT_EQ(Tool::ToPrintable(std::string_view("\n\x1B[31m\x7F\u0085", 8)),
            "\uFFFD\uFFFD[31m\uFFFD\uFFFD");
  EXPECT_EQ(Tool::ToPrintable(std::string_view("\0", 1)), "\uFFFD");
  for (const char* const bad :
       {"\xFF", "\x80", "\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82"}) {
    SCOPED_TRACE(bad);
    const std::string shown = Tool::ToPrintable(std::string_view(bad + std::string("x")));
    EXPECT_EQ(shown.substr(shown.size() - 4), "\uFFFDx");
    EXPECT_EQ(Tool::ToPrintable(std::string_view(shown)), shown);
  }
}

TEST(ToPrintable, JoinsSurrogatePairsAndReplacesUnreadableCharacters) {
  EXPECT_EQ(Tool::ToPrintable(u"aé€"), "aé€");
  EXPECT_EQ(Tool::ToPrintable(u"\xD83D\xDE00"), "\xF0\x9F\x98\x80");
  EXPECT_EQ(Tool::ToPrintable(u"\xD83Dx\xDE00"), "\uFFFDx\uFFFD");
  EXPECT_EQ(Tool::ToPrintable(u"\n\x7F\x9F"), "\uFFFD\uFFFD\uFFFD");
}

TEST(ToSingleUnits, TakesEveryCharacterOfOneUnitAndNothingElse) {
  for (unsigned unit = 1; unit < 0x10000; ++unit) {
    if (0xD800 <= unit && unit < 0xE000) continue;
    std::string utf8;
    if (unit < 0x80) {
      utf8 = {static_cast<char>(unit)};
    } else if (unit < 0x800) {
      utf8 = {static_cast<char>(0xC0 | unit >> 6), static_cast<char>(0x80 | (unit & 0x3F))};
    } else {
      utf8 = {static_cast<char>(0xE0 | unit >> 12), static_cast<char>(0x80 | (unit >> 6 & 0x3F)),
              static_cast<char>(0x80 | (unit & 0x3F))};
    }
    const auto units = Tool::ToSingleUnits(utf8);
    ASSERT_TRUE(units.has_value()) << unit;
    ASSERT_EQ(*units, std::u16string(1, static_cast<char16_t>(unit)));
    if (utf8.size() > 1) {
      ASSERT_FALSE(Tool::ToSingleUnits(utf8.substr(0, utf8.size() - 1)).has_value()) << unit;
    }
  }
  for (const char* const wrong : {"\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80",
                                  "\xED\xBF\xBF", "\xF0\x9F\x98\x80", "\xC3x", "\xFF"}) {
    EXPECT_FALSE(Tool::ToSingleUnits(wrong).has_value());
  }
}

TEST(ToVisible, EscapesWhatCouldControlATerminalOrLookLikeAnotherLine) {
  const struct {
    std::string text;
    const char* shown;
  } cases[] = {
      {"plain, \u00E9\u20AC\U0001F600", "plain, \u00E9\u20AC\U0001F600"},
      {"\n\r\t", "\\n\\r\\t"},
      {std::string("\0", 1), "\\x00"},
      {"\x1B[31m\x7F", "\\x1b[31m\\x7f"},
      {"\u0080\u0085\u009B\u009F", "\\u0080\\u0085\\u009b\\u009f"},
      {"\u2028\u2029", "\\u2028\\u2029"},
      {"\u061C\u200E\u200F\u202A\u202E\u2066\u2069",
       "\\u061c\\u200e\\u200f\\u202a\\u202e\\u2066\\u2069"},
      {"\u00A0\u200D\u2027\u202F\u2065\u206A", "\u00A0\u200D\u2027\u202F\u2065\u206A"},
      {"\xFF\x80x\xC3", "\\xff\\x80x\\xc3"},
      {"\xED\xA0\x80", "\\xed\\xa0\\x80"},
  };
  for (const auto& [text, shown] : cases) {
    EXPECT_EQ(Tool::ToVisible(std::string_view(text)), shown);
    char buffer[100];
    EXPECT_EQ(std::string(buffer, Tool::ToVisible(text, buffer)), shown);
  }
}

TEST(ToVisible, CutsWhatDoesNotFitABufferAfterACharacter) {
  const auto cut = [](std::string_view text, std::size_t size) {
    std::string buffer(size + 2, '#');
    const std::size_t length = Tool::ToVisible(text, std::span(buffer).first(size));
    EXPECT_LE(length, size);
    EXPECT_EQ(buffer.substr(size), "##");
    return buffer.substr(0, length);
  };
  EXPECT_EQ(cut("abcdef", 6), "abcdef");
  EXPECT_EQ(cut("abcdefg", 6), "abc...");
  EXPECT_EQ(cut(std::string(100'000, 'x'), 6), "xxx...");
  EXPECT_EQ(cut("abcd", 3), "...");
  EXPECT_EQ(cut("\n\n\n", 6), "\\n\\n\\n");
  EXPECT_EQ(cut("\n\n\n\n", 6), "\\n...");
  EXPECT_EQ(cut("a\u20ACbc", 6), "a\u20ACbc");
  EXPECT_EQ(cut("ab\u20ACcd", 6), "ab...");
  EXPECT_EQ(cut("", 3), "");
}

TEST(Shortened, CutsLongTextsBeforeACharacter) {
  EXPECT_EQ(Tool::Shortened(""), "");
  EXPECT_EQ(Tool::Shortened(std::string(60, 'x')), std::string(60, 'x'));
  EXPECT_EQ(Tool::Shortened(std::string(61, 'x')), std::string(60, 'x') + "...");
  const std::string before(58, 'x');
  EXPECT_EQ(Tool::Shortened(before + "\u20ACyyyy"), before + "...");
  EXPECT_EQ(Tool::Shortened(std::string(70, '\x80')), std::string(56, '\x80') + "...");
}

TEST(ToVisible, EscapesUnitsAsCharacters) {
  EXPECT_EQ(Tool::ToVisible(u"a\u00E9\u20AC\U0001F600"), "a\u00E9\u20AC\U0001F600");
  EXPECT_EQ(Tool::ToVisible(u"\n\x1B\x7F\x9B\x202E\x2028"), "\\n\\x1b\\x7f\\u009b\\u202e\\u2028");
  EXPECT_EQ(Tool::ToVisible(u"\xD83Dx\xDE00"), "\\ud83dx\\ude00");
}

TEST(ToUtf8, ReplacesOnlyInvalidBytes) {
  EXPECT_EQ(Tool::ToUtf8("\n\x1B\u0085\u202E\U0001F600"), "\n\x1B\u0085\u202E\U0001F600");
  EXPECT_EQ(Tool::ToUtf8("a\xFF"
                         "b\xC3"),
            "a\uFFFDb\uFFFD");
}

TEST(HasControl, FindsControlsAndSeparators) {
  for (const int unit : {0x00, 0x09, 0x0A, 0x1F, 0x7F, 0x80, 0x9F, 0x2028, 0x2029}) {
    EXPECT_TRUE(Tool::HasControl(std::u16string(u"a") + static_cast<char16_t>(unit)));
  }
  for (const int unit : {0x20, 0x7E, 0xA0, 0xE9, 0x2027, 0x202A, 0xFFFD}) {
    EXPECT_FALSE(Tool::HasControl(std::u16string(u"a") + static_cast<char16_t>(unit)));
  }
}

}  // namespace
