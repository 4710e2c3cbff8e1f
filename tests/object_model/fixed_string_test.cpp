#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <boost/numeric/conversion/cast.hpp>
#include <gtest/gtest.h>

#if defined(__linux__)
#include <sys/mman.h>
#include <unistd.h>
#endif

#include <surveydata/object_model/fixed_string.h>

#include "tests/object_model/fixed_string_model.h"

namespace {

using API::FixedStringC;
using Model::Counting;
using Model::ForEachCapacity;
using Model::Text;
using Model::Units;

// Checks that the text consists of `units` followed by a 0, and that its last unit is 0.
template <std::uint16_t N>
void ExpectHolds(const FixedStringC<N>& text, const std::u16string& units) {
  EXPECT_EQ(Units(text), units);
  EXPECT_EQ(text.GetLength(), units.size());
  EXPECT_EQ(text.IsEmpty(), units.empty());
  EXPECT_TRUE(text.IsValid());
  EXPECT_EQ(text.GetData()[units.size()], 0);
  EXPECT_EQ(text.GetData()[N], 0);
}

std::string Narrow(const std::u16string& units) { return {units.begin(), units.end()}; }
std::wstring Wide(const std::u16string& units) { return {units.begin(), units.end()}; }

// --- Layout and type traits

TEST(FixedString, IsItsUnitsThenItsLength) {
  ForEachCapacity([](auto capacity) {
    constexpr std::uint16_t N = capacity();
    struct Aligned {
      char first;
      std::uint64_t second;
    };
    constexpr std::size_t kAlignment = offsetof(Aligned, second);  // 4 on 32-bit x86
    constexpr std::size_t kUnits = (N + 1) * sizeof(char16_t);
    constexpr std::size_t kLengthAt = (kUnits + kAlignment - 1) / kAlignment * kAlignment;
    EXPECT_EQ(sizeof(FixedStringC<N>), kLengthAt + sizeof(std::uint64_t));
    const FixedStringC<N> text(u"abc");
    EXPECT_EQ(static_cast<const void*>(text.GetData()), &text);
    std::uint64_t length = 0;
    std::memcpy(&length, reinterpret_cast<const char*>(&text) + kLengthAt, sizeof(length));
    EXPECT_EQ(length, 3U);
  });
}

TEST(FixedString, IsAPlainValue) {
  using String = FixedStringC<16>;
  static_assert(std::is_standard_layout_v<String> && !std::is_polymorphic_v<String>);
  static_assert(std::is_trivially_destructible_v<String>);
  static_assert(std::is_same_v<decltype(std::declval<const String&>().GetLength()), std::uint64_t>);
  String a(u"text");
  const String b = a;
  a += u'!';
  ExpectHolds(b, u"text");
  String c;
  c = a;
  ExpectHolds(c, u"text!");
  c = *&c;
  ExpectHolds(c, u"text!");
}

TEST(FixedString, ACopyEndsItsUnitsAndAssignmentTakesThemAsTheyAre) {
  ForEachCapacity([](auto capacity) {
    constexpr std::uint16_t N = capacity();
    using String = FixedStringC<N>;
    // No operation writes the last unit of a text that is not full; a caller's memcpy may.
    String text(u"abc");
    std::vector<char16_t> units(N + 1U, u'u');
    std::copy_n(u"abc", 4, units.begin());
    units[4] = u'f';
    units[N] = u'x';
    std::memcpy(static_cast<void*>(&text), units.data(), units.size() * sizeof(char16_t));
    const auto unitsOf = [](const String& s) {
      return std::vector<char16_t>(s.GetData(), s.GetData() + N + 1);
    };
    ASSERT_EQ(unitsOf(text), units);

    String assigned(u"before");
    EXPECT_EQ(&(assigned = text), &assigned);
    EXPECT_EQ(unitsOf(assigned), units) << "assignment copies all units unchanged";
    EXPECT_EQ(assigned.GetLength(), 3U);

    units[N] = 0;
    const String copy(text);
    EXPECT_EQ(unitsOf(copy), units) << "the last unit is 0, the others are copied unchanged";
    EXPECT_EQ(copy.GetLength(), 3U);
    const String moved(std::move(text));
    EXPECT_EQ(unitsOf(moved), units) << "moving copies";
  });
}

// --- Constructors

TEST(FixedString, IsEmptyByDefault) {
  ForEachCapacity([](auto capacity) { ExpectHolds(FixedStringC<capacity()>(), u""); });
}

TEST(FixedString, TakesOneCharacterZeroExtended) {
  ForEachCapacity([](auto capacity) {
    using String = FixedStringC<capacity()>;
    for (int c = CHAR_MIN; c <= CHAR_MAX; ++c) {
      const auto unit = static_cast<char16_t>(static_cast<unsigned char>(c));
      ExpectHolds(String(static_cast<char>(c)),
                  c == 0 ? std::u16string() : std::u16string(1, unit));
    }
    for (unsigned c = 0; c <= 0xFFFF; c += 0x101) {
      const auto unit = static_cast<char16_t>(c);
      const auto units = c == 0 ? std::u16string() : std::u16string(1, unit);
      ExpectHolds(String(unit), units);
      ExpectHolds(String(static_cast<wchar_t>(c)), units);
    }
  });
  EXPECT_EQ(FixedStringC<10>('\xE9').GetData()[0], 0x00E9);
}

TEST(FixedString, TakesACStringOfUpToItsCapacityAndNoLongerOne) {
  ForEachCapacity([](auto capacity) {
    constexpr std::uint16_t N = capacity();
    using String = FixedStringC<N>;
    for (const int length : {0, 1, N - 1, N + 0, N + 1, 4 * N}) {
      const auto units = Counting(static_cast<std::size_t>(length));
      const auto expected = length <= N ? units : std::u16string();
      ExpectHolds(String(units.c_str()), expected);
      ExpectHolds(String(Narrow(units).c_str()), expected);
      ExpectHolds(String(Wide(units).c_str()), expected);
    }
  });
}

TEST(FixedString, ReadsAWideCStringAtMostOneUnitPastItsCapacity) {
  const std::vector<char16_t> unterminated(11, u'x');  // a sanitizer detects reads beyond it
  ExpectHolds(FixedStringC<10>(unterminated.data()), u"");
}

TEST(FixedString, ZeroExtendsTheBytesOfACString) {
  std::string bytes;
  for (int c = 0xF7; c <= 0xFF; ++c) bytes += static_cast<char>(c);
  std::u16string units;
  for (char16_t c = 0xF7; c <= 0xFF; ++c) units += c;
  ExpectHolds(FixedStringC<10>(bytes.c_str()), units);
  ExpectHolds(FixedStringC<10>("\x80\x7F"), u"\u0080\u007F");
}

TEST(FixedString, IsEmptyForNull) {
  ForEachCapacity([](auto capacity) {
    using String = FixedStringC<capacity()>;
    ExpectHolds(String(static_cast<const char16_t*>(nullptr)), u"");
    ExpectHolds(String(static_cast<const wchar_t*>(nullptr)), u"");
    ExpectHolds(String(static_cast<const char*>(nullptr)), u"");
  });
}

TEST(FixedString, KeepsSurrogatesAsUnits) {
  const char16_t units[] = {0xD800, 0xDFFF, 0xDC00, 0xD800, 0};
  ExpectHolds(FixedStringC<10>(units), units);
  const wchar_t wide[] = {0xD800, 0xDFFF, 0xDC00, 0xD800, 0};
  ExpectHolds(FixedStringC<10>(wide), units);
}

TEST(FixedString, MakesSurrogatePairsOfWideCharacters) {
  if constexpr (sizeof(wchar_t) > sizeof(char16_t)) {
    const struct {
      std::uint32_t c;
      std::u16string units;
    } cases[] = {
        {0xFFFF, u"\uFFFF"},         {0x10000, {0xD800, 0xDC00}}, {0x103FF, {0xD800, 0xDFFF}},
        {0x10400, {0xD801, 0xDC00}}, {0x1F6F0, u"\U0001F6F0"},    {0x10FFFF, {0xDBFF, 0xDFFF}},
        {0x110000, u"\uFFFD"},  // not a character
        {0x7FFFFFFF, u"\uFFFD"},     {0xFFFFFFFF, u"\uFFFD"},
    };
    for (const auto& [c, units] : cases) {
      SCOPED_TRACE(c);
      const auto wide = static_cast<wchar_t>(c);
      ExpectHolds(FixedStringC<10>(wide), units);
      const wchar_t string[] = {L'a', wide, L'b', 0};
      ExpectHolds(FixedStringC<10>(string), u"a" + units + u"b");
      FixedStringC<10> text(u"x");
      text += wide;
      ExpectHolds(text, u"x" + units);
      text += string;
      ExpectHolds(text, u"x" + units + u"a" + units + u"b");
    }
  }
}

TEST(FixedString, CountsASurrogatePairAsTwoUnits) {
  if constexpr (sizeof(wchar_t) > sizeof(char16_t)) {
    ForEachCapacity([](auto capacity) {
      constexpr std::uint16_t N = capacity();
      const auto pair = static_cast<wchar_t>(0x1F6F0);
      for (const unsigned before : {N - 2U, N - 1U, N + 0U}) {
        const auto units = Counting(before);
        const auto expected = before + 2 <= N ? units + u"\U0001F6F0" : units;
        auto text = Text<N>(units);
        text += pair;
        ExpectHolds(text, expected);  // a pair of which only one unit fits is not appended
        const FixedStringC<N> made((Wide(units) + pair).c_str());
        ExpectHolds(made, before + 2 <= N ? expected : std::u16string());
      }
    });
  }
}

#if defined(__linux__)
// A long text: one block, mapped repeatedly, followed by a terminator.
class HugeText {
 public:
  explicit HugeText(std::size_t length) : size_(length + kPage) {
    void* const all = mmap(nullptr, size_, PROT_READ | PROT_WRITE,
                           MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (all == MAP_FAILED) return;
    text_ = static_cast<char*>(all);
    const int page = memfd_create("text", 0);
    std::string block(kBlock, 'x');
    ok_ = page >= 0 && write(page, block.data(), kBlock) == static_cast<ssize_t>(kBlock);
    for (std::size_t at = 0; ok_ && at < length; at += kBlock) {
      const std::size_t part = std::min(kBlock, length - at);
      ok_ = mmap(text_ + at, part, PROT_READ, MAP_PRIVATE | MAP_FIXED, page, 0) != MAP_FAILED;
    }
    if (page >= 0) close(page);
  }
  HugeText(const HugeText&) = delete;
  HugeText& operator=(const HugeText&) = delete;
  ~HugeText() {
    if (text_ != nullptr) munmap(text_, size_);
  }

  bool Ok() const { return ok_; }
  const char* Get() const { return text_; }

 private:
  static constexpr std::size_t kPage = 1 << 16;
  static constexpr std::size_t kBlock = std::size_t{1} << 24;

  std::size_t size_;
  char* text_ = nullptr;
  bool ok_ = false;
};

TEST(FixedString, ThrowsForACStringOfTwoGigabytes) {
  const HugeText huge(std::size_t{1} << 31);
  if (!huge.Ok()) GTEST_SKIP() << "the address space has no room for a text of 2 GB";
  EXPECT_THROW(FixedStringC<10>{huge.Get()}, boost::numeric::positive_overflow);
  FixedStringC<255> text(u"before");
  try {
    text += huge.Get();
    ADD_FAILURE() << "did not throw";
  } catch (const boost::numeric::bad_numeric_cast& error) {
    EXPECT_STREQ(error.what(), "bad numeric conversion: positive overflow");
  }
  ExpectHolds(text, u"before");
  // With one byte less, it is just a text that is too long.
  ExpectHolds(FixedStringC<10>(huge.Get() + 1), u"");
}
#endif

// --- Comparison

TEST(FixedString, IsEqualWhenLengthAndUnitsAre) {
  ForEachCapacity([](auto capacity) {
    constexpr std::uint16_t N = capacity();
    const auto units = Counting(N);
    EXPECT_TRUE(Text<N>(units) == Text<N>(units));
    EXPECT_FALSE(Text<N>(units) != Text<N>(units));
    EXPECT_FALSE(Text<N>(units) == Text<N>(units.substr(1)));
    EXPECT_FALSE(Text<N>(units) == Text<N>(units.substr(0, N - 1)));
    EXPECT_FALSE(FixedStringC<N>() == FixedStringC<N>(u'a'));
    EXPECT_TRUE(FixedStringC<N>() == FixedStringC<N>(u""));
    for (std::size_t i = 0; i < N; ++i) {
      auto other = units;
      other[i] ^= 0x100;
      EXPECT_FALSE(Text<N>(units) == Text<N>(other));
      EXPECT_TRUE(Text<N>(units) != Text<N>(other));
    }
    EXPECT_FALSE(Text<N>(std::u16string(u"a\0b", 3)) == Text<N>(std::u16string(u"a\0c", 3)));
    EXPECT_FALSE(Text<N>(std::u16string(u"a\0", 2)) == Text<N>(u"a"));
  });
}

// A member, as equality is, so that code that names the operator finds it.
TEST(FixedString, UnequalIsTheNegationOfEqual) {
  ForEachCapacity([](auto capacity) {
    constexpr std::uint16_t N = capacity();
    bool (FixedStringC<N>::*const isUnequal)(const FixedStringC<N>&) const =
        &FixedStringC<N>::operator!=;
    const auto units = Counting(N);
    EXPECT_FALSE((Text<N>(units).*isUnequal)(Text<N>(units)));
    EXPECT_TRUE((Text<N>(units).*isUnequal)(Text<N>(units.substr(1))));
    EXPECT_TRUE(Text<N>(units).operator!=(Text<N>(units.substr(0, N - 1))));
  });
}

TEST(FixedString, EqualityReadsUpToTheTerminator) {
  // Every operation leaves zeros after the text; a caller's memcpy may not.
  FixedStringC<10> a(u"abc");
  char16_t units[] = u"abc\0efghij";
  std::memcpy(static_cast<void*>(&a), units, sizeof(units));
  ASSERT_EQ(a.GetData()[4], u'e');
  EXPECT_TRUE(a == FixedStringC<10>(u"abc"));
  EXPECT_TRUE(FixedStringC<10>(u"abc") == a);
  EXPECT_FALSE(a == FixedStringC<10>(u"abd"));
  // Appending moves the terminator with the text.
  a += u'd';
  EXPECT_EQ(a.GetData()[4], 0);
  EXPECT_TRUE(a == FixedStringC<10>(u"abcd"));
}

// Compares both texts as UTF-8, as unsigned bytes, up to the first difference or the end of `a`.
bool ModelIsNotAfter(const std::u16string& a, const std::u16string& b) {
  const std::string left = Model::ToUtf8(a, 1000).written;  // with the terminator
  const std::string right = Model::ToUtf8(b, 1000).written;
  for (std::size_t i = 0; left[i] != 0; ++i) {
    const int difference =
        static_cast<unsigned char>(left[i]) - static_cast<unsigned char>(right[i]);
    if (difference != 0) return difference < 0;
  }
  return true;
}

TEST(FixedString, OrdersAsUtf8Does) {
  std::vector<std::u16string> texts = {u"",       u"a",      u"aa",     u"ab",      u"b",
                                       u"A",      u"\u007F", u"\u0080", u"\u00E9",  u"\u07FF",
                                       u"\u0800", u"\u20AC", u"\uFFFF", u"a\u20AC", u"a\u00E9"};
  texts.push_back({0xD800});
  texts.push_back({0xDFFF});
  texts.push_back({0xE000});
  texts.push_back(std::u16string(u"a\0b", 3));  // ends at the 0
  texts.push_back(std::u16string(u"a\0a", 3));
  texts.push_back(std::u16string(u"\0z", 2));
  texts.push_back(Counting(10));
  texts.push_back(Counting(10, u'\u20AC'));
  for (const auto& a : texts) {
    for (const auto& b : texts) {
      SCOPED_TRACE(testing::PrintToString(a) + " <= " + testing::PrintToString(b));
      EXPECT_EQ(Text<10>(a) <= Text<10>(b), ModelIsNotAfter(a, b));
    }
  }
  ForEachCapacity([](auto capacity) {
    constexpr std::uint16_t N = capacity();
    const auto full = Counting(N);
    EXPECT_TRUE(Text<N>(full) <= Text<N>(full));
    EXPECT_TRUE(Text<N>(full.substr(0, N - 1)) <= Text<N>(full));
    EXPECT_FALSE(Text<N>(full) <= Text<N>(full.substr(0, N - 1)));
  });
}

TEST(FixedString, OrdersRandomTextsAsUtf8Does) {
  std::mt19937_64 random(20260101);
  const auto unit = [&random] {
    constexpr char16_t kUnits[] = {u'a', u'b', 0x7F, 0x80, 0x7FF, 0x800, 0xD800, 0xFFFF};
    return random() % 4 == 0 ? static_cast<char16_t>(random()) : kUnits[random() % 8];
  };
  for (int round = 0; round < 20000; ++round) {
    std::u16string a;
    for (std::size_t i = random() % 11; i > 0; --i) a += unit();
    std::u16string b = a.substr(0, random() % (a.size() + 1));
    while (b.size() < 10 && random() % 2 != 0) b += unit();
    ASSERT_EQ(Text<10>(a) <= Text<10>(b), ModelIsNotAfter(a, b))
        << testing::PrintToString(a) << testing::PrintToString(b);
  }
}

// --- Changes

TEST(FixedString, AppendsOneUnitWhileThereIsRoom) {
  ForEachCapacity([](auto capacity) {
    constexpr std::uint16_t N = capacity();
    FixedStringC<N> text;
    std::u16string units;
    for (std::size_t i = 0; i < N + 3U; ++i) {
      const auto unit = static_cast<char16_t>(0xFF00 + i);
      FixedStringC<N>* const self =
          i % 2 == 0 ? &(text += unit) : &(text += static_cast<wchar_t>(unit));
      EXPECT_EQ(self, &text);
      if (i < N) units += unit;
      ExpectHolds(text, units);
    }
  });
}

TEST(FixedString, AppendsAUnitOfZero) {
  FixedStringC<10> text(u"a");
  text += u'\0';
  text += '\0';
  text += L'\0';
  text += u'b';
  EXPECT_EQ(Units(text), std::u16string(u"a\0\0\0b", 5));
}

TEST(FixedString, AppendsAByteSignExtended) {
  for (int c = 0; c <= 0xFF; ++c) {
    FixedStringC<10> text;
    text += static_cast<char>(c);
    ASSERT_EQ(text.GetLength(), 1U);
    EXPECT_EQ(text.GetData()[0], c < 0x80 ? c : 0xFF00 + c);
  }
  FixedStringC<10> full(u"abcdefghij");
  full += 'k';
  ExpectHolds(full, u"abcdefghij");
}

TEST(FixedString, AppendsAsMuchOfATextAsFits) {
  ForEachCapacity([](auto capacity) {
    constexpr std::uint16_t N = capacity();
    for (const int left : {0, 1, N - 2, N - 1, N + 0}) {
      for (const int right : {0, 1, 2, N - 1, N + 0}) {
        const auto a = Counting(static_cast<std::size_t>(left));
        const auto b = Counting(static_cast<std::size_t>(right), u'A');
        const auto expected = (a + b).substr(0, N);
        auto text = Text<N>(a);
        EXPECT_EQ(&(text += Text<N>(b)), &text);
        ExpectHolds(text, expected);
        ExpectHolds(Text<N>(a) + Text<N>(b), expected);
        text = Text<N>(a);
        EXPECT_EQ(&(text += b.c_str()), &text);
        ExpectHolds(text, expected);
        text = Text<N>(a);
        EXPECT_EQ(&(text += Wide(b).c_str()), &text);
        ExpectHolds(text, expected);
        text = Text<N>(a);
        EXPECT_EQ(&(text += Narrow(b).c_str()), &text);
        ExpectHolds(text, expected);
      }
    }
  });
  FixedStringC<10> text(u"abcdefgh");
  text += FixedStringC<10>(u"12345");
  ExpectHolds(text, u"abcdefgh12");
}

TEST(FixedString, AppendsNothingOfACStringThatIsTooLongByItself) {
  ForEachCapacity([](auto capacity) {
    constexpr std::uint16_t N = capacity();
    const auto tooLong = Counting(N + 1U);
    FixedStringC<N> text(u"a");
    text += tooLong.c_str();
    text += Wide(tooLong).c_str();
    text += Narrow(tooLong).c_str();
    ExpectHolds(text, u"a");
  });
}

TEST(FixedString, ZeroExtendsTheBytesOfAnAppendedCString) {
  FixedStringC<10> text(u"a");
  text += "\xE9";
  ExpectHolds(text, u"a\u00E9");
}

TEST(FixedString, AppendsItselfAndTruncates) {
  ForEachCapacity([](auto capacity) {
    constexpr std::uint16_t N = capacity();
    for (const int length : {0, 1, N / 2, N / 2 + 1, N - 1, N + 0}) {
      const auto units = Counting(static_cast<std::size_t>(length));
      auto text = Text<N>(units);
      text += *&text;
      ExpectHolds(text, (units + units).substr(0, N));
      text = Text<N>(units);
      text += text.GetData();
      ExpectHolds(text, (units + units).substr(0, N));
    }
  });
}

TEST(FixedString, SumDoesNotChangeItsOperands) {
  const FixedStringC<10> a(u"ab");
  const FixedStringC<10> b(u"cd");
  ExpectHolds(a + b, u"abcd");
  ExpectHolds(a, u"ab");
  ExpectHolds(b, u"cd");
}

TEST(FixedString, KeepsASubString) {
  ForEachCapacity([](auto capacity) {
    constexpr std::uint16_t N = capacity();
    for (const int length : {0, 1, 7, N - 1, N + 0}) {
      const auto units = Counting(static_cast<std::size_t>(length));
      for (int start = 0; start <= length + 1; ++start) {
        for (const int count : {0, 1, 2, length - start - 1, length - start, length - start + 1}) {
          if (count < 0) continue;
          auto text = Text<N>(units);
          const std::uint32_t result =
              text.SubString(static_cast<std::uint16_t>(start), static_cast<std::uint16_t>(count));
          if (start + count > length) {
            EXPECT_EQ(result, static_cast<std::uint32_t>(start + count));
            ExpectHolds(text, units);
          } else {
            EXPECT_EQ(result, static_cast<std::uint32_t>(count));
            ExpectHolds(text, units.substr(static_cast<std::size_t>(start),
                                           static_cast<std::size_t>(count)));
            // Zeros after the text, up to the last unit.
            const char16_t* const data = text.GetData();
            EXPECT_TRUE(std::all_of(data + count, data + N + 1, [](char16_t u) { return u == 0; }));
          }
        }
      }
    }
  });
}

TEST(FixedString, SubStringAddsWithoutWrapping) {
  FixedStringC<10> text(u"abc");
  EXPECT_EQ(text.SubString(0xFFFF, 0xFFFF), 0x1FFFEU);
  EXPECT_EQ(text.SubString(0xFFFF, 1), 0x10000U);
  EXPECT_EQ(text.SubString(3, 0xFFFD), 0x10000U);
  ExpectHolds(text, u"abc");
  EXPECT_EQ(text.SubString(3, 0), 0U);
  ExpectHolds(text, u"");
}

// --- Conversions

TEST(FixedString, NarrowsWithItsTerminatorWhereItFits) {
  ForEachCapacity([](auto capacity) {
    constexpr std::uint16_t N = capacity();
    for (const int length : {0, 1, N - 1, N + 0}) {
      const auto units = Counting(static_cast<std::size_t>(length));
      const auto text = Text<N>(units);
      const auto size = static_cast<std::size_t>(length);
      std::vector<char> bytes(size + 3, '\x55');
      EXPECT_FALSE(text.ToNarrow(bytes.data(), size));
      EXPECT_EQ(bytes, std::vector<char>(size + 3, '\x55'));
      EXPECT_FALSE(text.ToNarrow(nullptr, 1000));
      for (const std::size_t space : {size + 1, size + 3}) {
        std::fill(bytes.begin(), bytes.end(), '\x55');
        EXPECT_TRUE(text.ToNarrow(bytes.data(), space));
        EXPECT_EQ(std::string(bytes.data(), size + 3),
                  Narrow(units) + std::string("\0\x55\x55", 3));
      }
    }
    EXPECT_FALSE(FixedStringC<N>().ToNarrow(nullptr, 0));
  });
}

TEST(FixedString, NarrowsToLowBytesAndTellsWhetherAllWereBelow256) {
  const auto text = Text<10>({u'a', 0xFF, 0x0100, 0x20AC, 0xFFFF, u'z'});
  char bytes[8] = {};
  EXPECT_FALSE(text.ToNarrow(bytes, sizeof(bytes)));
  EXPECT_EQ(std::string(bytes, 8), std::string("a\xFF\x00\xAC\xFFz\0\0", 8));
  EXPECT_TRUE(Text<10>({u'a', 0xFF}).ToNarrow(bytes, sizeof(bytes)));
  EXPECT_EQ(std::string(bytes, 3), std::string("a\xFF\0", 3));
  EXPECT_TRUE(Text<10>(std::u16string(u"a\0b", 3)).ToNarrow(bytes, sizeof(bytes)));
  EXPECT_EQ(std::string(bytes, 4), std::string("a\0b\0", 4));
}

TEST(FixedString, ReadsNumbersAsTheRuntimeDoes) {
  const struct {
    const char* text;
    int integer;
    double real;
  } cases[] = {
      {"", 0, 0.0},
      {"0", 0, 0.0},
      {"42", 42, 42.0},
      {"  -17 m", -17, -17.0},
      {"+8", 8, 8.0},
      {"1.5e3", 1, 1500.0},
      {"-.25", 0, -0.25},
      {"abc", 0, 0.0},
      {"12abc", 12, 12.0},
      {"2147483647", 2147483647, 2147483647.0},
      {"-2147483648", std::numeric_limits<int>::min(), -2147483648.0},
      {"0x10", 0, std::atof("0x10")},  // 16, or 0 if the C runtime does not parse hexadecimal
  };
  for (const auto& [text, integer, real] : cases) {
    SCOPED_TRACE(text);
    EXPECT_EQ(FixedStringC<16>(text).ToInt(), integer);
    EXPECT_EQ(FixedStringC<16>(text).ToLong(), integer);
    EXPECT_EQ(FixedStringC<16>(text).ToDouble(), real);
  }
  ForEachCapacity([](auto capacity) {  // a number that fills the text
    constexpr std::uint16_t N = capacity();
    const std::u16string number = std::u16string(N - 4U, u'0') + u"1234";
    EXPECT_EQ(Text<N>(number).ToInt(), 1234);
    EXPECT_EQ(Text<N>(number).ToLong(), 1234);
    EXPECT_EQ(Text<N>(number).ToDouble(), 1234.0);
  });
}

TEST(FixedString, ReadsNoNumberIfAUnitIsAbove255) {
  EXPECT_EQ(FixedStringC<10>(u"12\u0100").ToInt(), 0);
  EXPECT_EQ(FixedStringC<10>(u"12\u0100").ToLong(), 0);
  EXPECT_EQ(FixedStringC<10>(u"12\u0100").ToDouble(), 0.0);
  EXPECT_EQ(FixedStringC<10>(u"12\u00FF").ToInt(), 12);
  EXPECT_EQ(FixedStringC<10>(u"12\u00FF").ToLong(), 12);
  EXPECT_EQ(FixedStringC<10>(u"12\u00FF").ToDouble(), 12.0);
}

TEST(FixedString, FormatsLikePrintf) {
  FixedStringC<32> text(u"before");
  EXPECT_EQ(text.Format("%d|%5.2f|%s|%c|%%", -7, 3.14159, "name", 'x'), 17);
  ExpectHolds(text, u"-7| 3.14|name|x|%");
  EXPECT_EQ(text.Format("%s", ""), 0);
  ExpectHolds(text, u"");
  EXPECT_EQ(text.Format("%s", "\xE9"), 1);
  ExpectHolds(text, u"\u00E9");
  const char* nothing = "";
  EXPECT_EQ(text.Format(nothing), 0);
  ExpectHolds(text, u"");
}

TEST(FixedString, IsEmptyWhenTheFormattedTextIsTooLong) {
  FixedStringC<10> text(u"before");
  EXPECT_EQ(text.Format("%d%d", 123456, 789012), 12);
  ExpectHolds(text, u"");
  ForEachCapacity([](auto capacity) {
    constexpr std::uint16_t N = capacity();
    // The buffer has room for twice the capacity plus one; the output may exceed that.
    for (const int length : {N - 1, N + 0, N + 1, 2 * N, 2 * N + 1, 2 * N + 2, 10 * N}) {
      const std::string argument(static_cast<std::size_t>(length), 'x');
      FixedStringC<N> made(u"before");
      EXPECT_EQ(made.Format("%s", argument.c_str()), length);
      ExpectHolds(
          made, length <= N ? std::u16string(argument.begin(), argument.end()) : std::u16string());
    }
  });
}

TEST(FixedString, RefusesAFormatThatIsNullOrLongerThanTheText) {
  ForEachCapacity([](auto capacity) {
    constexpr std::uint16_t N = capacity();
    FixedStringC<N> text(u"before");
    const char* missing = nullptr;
    EXPECT_EQ(text.Format(missing), -1);
    for (const unsigned length : {N + 1U, 3U * N}) {
      const std::string format(length, 'f');
      EXPECT_EQ(text.Format(format.c_str()), -1);
    }
    ExpectHolds(text, u"before");
    const std::string format(N, 'f');
    EXPECT_EQ(text.Format(format.c_str()), N);
    ExpectHolds(text, std::u16string(N, u'f'));
  });
}

#if defined(__GLIBC__)
TEST(FixedString, ReturnsTheErrorOfTheRuntime) {
  FixedStringC<10> text(u"before");
  const wint_t noCharacter = 0x7FFFFFFF;
  EXPECT_LT(text.Format("%lc", noCharacter), 0);
  ExpectHolds(text, u"");
}
#endif

// --- Sequences of operations

// Any sequence of changes gives the same text as the same changes to a `std::u16string`.
TEST(FixedString, RandomChangesFollowTheModel) {
  std::mt19937_64 random(20260101);
  ForEachCapacity([&random](auto capacity) {
    constexpr std::uint16_t N = capacity();
    const auto below = [&random](std::size_t n) { return static_cast<std::size_t>(random() % n); };
    const auto some = [&](std::size_t most) {
      std::u16string units;
      for (std::size_t i = below(most + 1); i > 0; --i) {
        units += static_cast<char16_t>(1 + below(below(2) == 0 ? 0x7F : 0xFFFF));
      }
      return units;
    };
    const auto cut = [](std::u16string units) { return units.substr(0, N); };
    FixedStringC<N> text;
    std::u16string model;
    for (int step = 0; step < 20000; ++step) {
      const std::u16string units = some(below(4) == 0 ? N + 2U : 5U);
      const std::size_t kind = below(9);
      if (kind == 0) {
        text += units.c_str();
        if (units.size() <= N) model = cut(model + units);
      } else if (kind == 1) {
        const auto other = Text<N>(units);
        text += other;
        model = cut(model + cut(units));
      } else if (kind == 2) {
        const auto c = static_cast<char>(below(256));
        text += c;
        const char16_t unit = static_cast<char16_t>(static_cast<signed char>(c));
        model = cut(model + unit);
      } else if (kind == 3) {
        text += text;
        model = cut(model + model);
      } else if (kind == 4 || kind == 5) {
        const std::size_t start = below(N);
        const std::size_t count = below(N);
        text.SubString(static_cast<std::uint16_t>(start), static_cast<std::uint16_t>(count));
        if (start + count <= model.size()) model = model.substr(start, count);
      } else if (kind == 6) {
        text = text + Text<N>(units);
        model = cut(model + cut(units));
      } else if (kind == 7) {
        const std::string bytes = Model::ToUtf8(units, 4 * units.size() + 1).written;
        std::size_t limit = Model::kNoLimit;
        text.FromUtf8(bytes.c_str(), &limit);
        model = cut(units);
      } else {
        const auto number = static_cast<int>(random());
        text.Format("%d", number);
        const std::string digits = std::to_string(number);
        model = digits.size() <= N ? std::u16string(digits.begin(), digits.end()) : u"";
      }
      ASSERT_EQ(Units(text), model) << "step " << step << ", kind " << kind;
      ASSERT_TRUE(text.IsValid());
      ASSERT_EQ(text.GetData()[N], 0);
    }
  });
}

}  // namespace
