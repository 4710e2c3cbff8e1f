#include <gtest/gtest.h>

#include <output/svg.h>

namespace {

TEST(EscapeXml, ReplacesWhatXmlCannotHold) {
  EXPECT_EQ(Tool::EscapeXml("<a & \"b\">"), "&lt;a &amp; &quot;b&quot;&gt;");
  EXPECT_EQ(Tool::EscapeXml("é€\xF0\x9F\x98\x80"), "é€\xF0\x9F\x98\x80");
  for (const char* const bad : {"\x01", "\x7F", "\x80", "\xC3", "\xFF"}) {
    EXPECT_EQ(Tool::EscapeXml(bad), "\uFFFD");
  }
  // The only characters besides control characters that XML does not allow.
  EXPECT_EQ(Tool::EscapeXml("a\uFFFEb\uFFFF"), "a\uFFFDb\uFFFD");
  EXPECT_EQ(Tool::EscapeXml("\uFFFD\uFFFC\U0001FFFE\uFDD0"), "\uFFFD\uFFFC\U0001FFFE\uFDD0");
  EXPECT_EQ(Tool::EscapeXml("\xE2\x82"), "\uFFFD\uFFFD");
  EXPECT_EQ(Tool::EscapeXml("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD");
}

}  // namespace
