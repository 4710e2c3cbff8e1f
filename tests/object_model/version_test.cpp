#include <clocale>
#include <compare>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <iomanip>
#include <locale>
#include <random>
#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>

#include <gtest/gtest.h>

#include <surveydata/object_model/version.h>

namespace {

using API::VersionC;

std::uint32_t WordOf(const VersionC& version) {
  std::uint32_t word;
  static_assert(sizeof(word) == sizeof(version));
  std::memcpy(&word, &version, sizeof(word));
  return word;
}

VersionC Made(unsigned major, unsigned minor, unsigned build, unsigned kind, unsigned variant) {
  VersionC version(0xFFFFFFFF);  // `Set` rebuilds the whole word
  const auto s = [](unsigned value) { return static_cast<std::uint16_t>(value); };
  version.Set(s(major), s(minor), s(build), s(kind), s(variant));
  return version;
}

template <class V>
concept HasUnequal = requires(const V& a, const V& b) {
  a != b;
};
template <class V>
concept HasLess = requires(const V& a, const V& b) {
  a < b;
};
template <class V>
concept HasGreater = requires(const V& a, const V& b) {
  a > b;
};
template <class V>
concept HasLessOrEqual = requires(const V& a, const V& b) {
  a <= b;
};

TEST(Version, IsAPlainWordWithOnlyEqualityAndGreaterOrEqual) {
  static_assert(std::is_trivially_destructible_v<VersionC> && !std::is_polymorphic_v<VersionC>);
  static_assert(sizeof(VersionC) == 4);
  static_assert(std::equality_comparable<int> && HasUnequal<int>);
  static_assert(!HasUnequal<VersionC> && !HasLess<VersionC> && !HasGreater<VersionC> &&
                !HasLessOrEqual<VersionC>);
  static_assert(std::is_nothrow_default_constructible_v<VersionC> &&
                std::is_nothrow_copy_constructible_v<VersionC> &&
                std::is_nothrow_copy_assignable_v<VersionC>);
  const VersionC full(0xFFFFFFFF);  // every bit is copied
  EXPECT_EQ(WordOf(VersionC(full)), 0xFFFFFFFF);
  VersionC assigned;
  assigned = full;
  EXPECT_EQ(WordOf(assigned), 0xFFFFFFFF);

  VersionC a(0x12345678);
  const VersionC b = a;
  EXPECT_TRUE(a == b);
  VersionC c;
  EXPECT_EQ(&(c = a), &c);
  EXPECT_TRUE(c == b);
  a.Set(1, 2, 3, 4, 5);
  EXPECT_FALSE(a == b);
  EXPECT_TRUE(c == b);
}

TEST(Version, IsZeroByDefault) {
  const VersionC version;
  EXPECT_EQ(WordOf(version), 0U);
  EXPECT_EQ(version.Format(1), "0.00.000");
  EXPECT_EQ(version.Format(2), "0.000");
  EXPECT_EQ(version.Format(3), "0.00 (000)");
  EXPECT_EQ(version.Format(0), "0.00");
}

TEST(Version, KeepsItsFieldsAtTheirBits) {
  const struct {
    std::uint32_t (VersionC::*get)() const;
    unsigned shift;
    std::uint32_t top;
  } fields[] = {
      {&VersionC::GetMajor, 26, 63},   {&VersionC::GetMinor, 19, 127}, {&VersionC::GetKind, 16, 7},
      {&VersionC::GetVariant, 12, 15}, {&VersionC::GetBuild, 0, 4095},
  };
  for (const auto& field : fields) {
    SCOPED_TRACE(field.shift);
    for (std::uint32_t value = 0; value <= field.top; ++value) {
      const std::uint32_t word = value << field.shift;
      const std::uint32_t others = ~(field.top << field.shift);
      EXPECT_EQ((VersionC(word).*field.get)(), value);
      EXPECT_EQ((VersionC(word | others).*field.get)(), value);
      EXPECT_EQ(WordOf(VersionC(word)), word);
      for (const auto& other : fields) {
        if (other.shift == field.shift) continue;
        EXPECT_EQ((VersionC(word).*other.get)(), 0U);
      }
    }
  }
}

TEST(Version, PacksEveryValueOfEachFieldAndTruncatesLargerOnes) {
  for (unsigned value = 0; value <= 0xFFFF; ++value) {
    ASSERT_EQ(WordOf(Made(value, 0, 0, 0, 0)), value << 26);  // upper bits are lost
    ASSERT_EQ(WordOf(Made(0, value, 0, 0, 0)), (value & 0x7F) << 19);
    ASSERT_EQ(WordOf(Made(0, 0, value, 0, 0)), value & 0xFFF);
    ASSERT_EQ(WordOf(Made(0, 0, 0, value, 0)), (value & 0x7) << 16);
    ASSERT_EQ(WordOf(Made(0, 0, 0, 0, value)), (value & 0xF) << 12);
  }
  EXPECT_EQ(WordOf(Made(64, 0, 0, 0, 0)), 0U);
  const VersionC cut = Made(1, 200, 5000, 9, 17);
  EXPECT_EQ(cut.GetMajor(), 1U);
  EXPECT_EQ(cut.GetMinor(), 72U);
  EXPECT_EQ(cut.GetBuild(), 904U);
  EXPECT_EQ(cut.GetKind(), 1U);
  EXPECT_EQ(cut.GetVariant(), 1U);
}

TEST(Version, PacksAnyFiveValuesByTheFormula) {
  std::mt19937 random(20260101);
  const auto any = [&random] { return static_cast<std::uint32_t>(random() & 0xFFFF); };
  for (int i = 0; i < 20000; ++i) {
    const std::uint32_t major = any(), minor = any(), build = any(), kind = any(), variant = any();
    ASSERT_EQ(WordOf(Made(major, minor, build, kind, variant)),
              (major << 26) | ((minor & 0x7F) << 19) | ((kind & 0x7) << 16) |
                  ((variant & 0xF) << 12) | (build & 0xFFF));
  }
}

TEST(Version, OrdersByMajorMinorKindVariantBuild) {
  EXPECT_TRUE(Made(2, 0, 0, 0, 0) >= Made(1, 127, 4095, 0, 0));
  EXPECT_FALSE(Made(1, 127, 4095, 7, 15) >= Made(2, 0, 0, 0, 0));
  EXPECT_TRUE(Made(1, 5, 0, 2, 0) >= Made(1, 5, 0, 1, 0));
  EXPECT_TRUE(VersionC(0x80000000) >= VersionC(0x7FFFFFFF));  // unsigned
  EXPECT_TRUE(VersionC() >= VersionC());
  std::mt19937 random(20260101);
  const auto any = [&random] {
    const auto pick = [&random](unsigned n) { return static_cast<unsigned>(random() % n); };
    return Made(pick(3) * 31, pick(2) * 127, pick(2) * 4095, pick(8), pick(2) * 15);
  };
  const auto key = [](const VersionC& v) {
    return std::tuple(v.GetMajor(), v.GetMinor(), v.GetKind(), v.GetVariant(), v.GetBuild());
  };
  for (int i = 0; i < 20000; ++i) {
    const VersionC a = any();
    const VersionC b = any();
    ASSERT_EQ(a >= b, key(a) >= key(b));
    ASSERT_EQ(a == b, key(a) == key(b));
  }
}

TEST(Version, FormatsTheKnownExamples) {
  const VersionC version = Made(3, 5, 42, 3, 0);
  EXPECT_EQ(version.Format(1), "3.05.042");
  EXPECT_EQ(version.Format(2), "3.005.B42");
  EXPECT_EQ(version.Format(3), "3.05 (042)");
  for (const std::uint32_t other : {0U, 4U, 5U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
    EXPECT_EQ(version.Format(other), "3.05");
  }
  EXPECT_EQ(Made(3, 5, 42, 1, 0).Format(2), "3.005");
  EXPECT_EQ(Made(3, 5, 42, 5, 0).Format(2), "3.005.A42");
  EXPECT_EQ(Made(3, 100, 4095, 0, 0).Format(1), "3.100.4095");
  EXPECT_EQ(Made(63, 127, 4095, 4, 15).Format(2), "63.127.D4095");
  EXPECT_EQ(Made(10, 9, 9, 0, 0).Format(3), "10.09 (009)");
}

// The text as written by a stream with the fill character '0'.
std::string ModelText(const VersionC& version, std::uint32_t style) {
  std::ostringstream out;
  out.imbue(std::locale::classic());
  out.fill('0');
  out << version.GetMajor() << ".";
  const char* const letters[8] = {"R", "R", "S", "B", "D", "A", "R", "R"};
  const std::string letter = letters[version.GetKind()];
  if (style == 1) {
    out << std::setw(2) << version.GetMinor() << "." << std::setw(3) << version.GetBuild();
  } else if (style == 2) {
    out << std::setw(3) << version.GetMinor();
    if (letter != "R") out << "." << letter << version.GetBuild();
  } else if (style == 3) {
    out << std::setw(2) << version.GetMinor() << " (" << std::setw(3) << version.GetBuild() << ")";
  } else {
    out << std::setw(2) << version.GetMinor();
  }
  return out.str();
}

TEST(Version, FormatsEveryWidthAndKindInEveryStyle) {
  for (const unsigned major : {0U, 1U, 9U, 10U, 63U}) {
    for (const unsigned minor : {0U, 1U, 9U, 10U, 99U, 100U, 127U}) {
      for (const unsigned build : {0U, 1U, 9U, 10U, 99U, 100U, 999U, 1000U, 4095U}) {
        for (unsigned kind = 0; kind < 8; ++kind) {
          for (const unsigned variant : {0U, 15U}) {  // never written
            const VersionC version = Made(major, minor, build, kind, variant);
            for (std::uint32_t style = 0; style < 6; ++style) {
              ASSERT_EQ(version.Format(style), ModelText(version, style));
            }
          }
        }
      }
    }
  }
}

// Groups of one digit, so that grouping affects even small numbers.
class Grouped : public std::numpunct<char> {
  char do_thousands_sep() const override { return '\''; }
  std::string do_grouping() const override { return "\1"; }
};

TEST(Version, FormatsTheSameInEveryLocale) {
  const std::locale before = std::locale::global(std::locale(std::locale(), new Grouped));
  std::ostringstream grouped;
  grouped << 4095;
  const std::string text = Made(10, 127, 4095, 2, 0).Format(1);
  std::locale::global(before);
  EXPECT_EQ(grouped.str(), "4'0'9'5");  // the locale is in effect
  EXPECT_EQ(text, "10.127.4095");
}

}  // namespace
