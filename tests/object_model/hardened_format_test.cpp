// Tests the fixed strings as compiled in a release: optimised, with FORTIFY. Its checks end the
// process at a `%n` in a writable format.
#include <cstdio>

#include <gtest/gtest.h>

#include <surveydata/object_model/fixed_string.h>

#if !defined(_FORTIFY_SOURCE) || _FORTIFY_SOURCE < 2 || !defined(__OPTIMIZE__)
#error "this test must be compiled with optimisation and FORTIFY"
#endif

namespace {

using API::FixedStringC;

TEST(HardenedFormatDeathTest, ThisBuildRefusesToCountIntoAFormatThatCanBeWrittenTo) {
  char format[] = "abc%n";
  char text[16];
  int count = -1;
  EXPECT_DEATH(static_cast<void>(std::snprintf(text, sizeof(text), format, &count)),
               "%n in writable segment detected");
}

TEST(HardenedFormat, CountsWhereverTheFormatIs) {
  char onTheStack[] = "%s%n";
  static char inWritableData[] = "%s%n";
  const char* const formats[] = {"%s%n", onTheStack, inWritableData};
  for (const char* const format : formats) {
    FixedStringC<255> text(u"before");
    int count = -1;
    EXPECT_EQ(text.Format(format, "seven..", &count), 7);
    EXPECT_EQ(count, 7);
    EXPECT_EQ(text, FixedStringC<255>("seven.."));
    FixedStringC<10> tooShort(u"before");
    EXPECT_EQ(tooShort.Format(format, "more than ten", &count), 13);
    EXPECT_EQ(count, 13);
    EXPECT_TRUE(tooShort.IsEmpty());
  }
}

}  // namespace
