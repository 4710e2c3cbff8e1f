// Compares an arbitrary sequence of changes and queries of a fixed string with a `std::u16string`
// and the literal rules of its conversions.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/object_model/fixed_string.h>

#include "tests/fuzz/fuzz_input.h"
#include "tests/object_model/fixed_string_model.h"

namespace {

using API::FixedStringC;

constexpr std::size_t kMostSteps = 64;

std::u16string Widened(const std::string& bytes) {
  std::u16string units;
  for (const char byte : bytes) units += static_cast<unsigned char>(byte);
  return units;
}

// The low bytes up to a 0 if all units are below 256, otherwise nothing.
std::string Narrowed(const std::u16string& units) {
  std::string bytes;
  for (const char16_t unit : units) {
    if (unit > 255) return {};
    bytes += static_cast<char>(unit);
  }
  return bytes.c_str();
}

// A wide text converted to 16-bit units.
std::u16string Units(const std::wstring& wide) {
  std::u16string units;
  for (const wchar_t c : wide) {
    const auto code = static_cast<std::uint32_t>(c);
    if (code > 0x10FFFF) {
      units += u'\uFFFD';
    } else if (code > 0xFFFF) {
      units += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
      units += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
    } else {
      units += static_cast<char16_t>(code);
    }
  }
  return units;
}

std::string TakeBytes(Fuzz::InputC& in, std::size_t most) {
  const auto bytes = in.Bytes(in.Below(most + 1));
  return {bytes.begin(), bytes.end()};
}

std::u16string TakeUnits(Fuzz::InputC& in, std::size_t most) {
  std::u16string units;
  for (std::size_t i = in.Below(most + 1); i > 0; --i) units += in.Take<char16_t>();
  return units;
}

std::wstring TakeWide(Fuzz::InputC& in, std::size_t most) {
  std::wstring wide;
  for (std::size_t i = in.Below(most + 1); i > 0; --i) {
    wide += static_cast<wchar_t>(in.U16() | (in.U8() % 0x12U) << 16);
  }
  return wide;
}

// A heap block of exactly these bytes, so that reads beyond them are detected.
std::unique_ptr<char[]> Exactly(const std::string& bytes, std::size_t count) {
  auto copy = std::make_unique<char[]>(count);
  std::memcpy(copy.get(), bytes.c_str(), count);
  return copy;
}

template <std::uint16_t N>
class SequenceC {
 public:
  explicit SequenceC(Fuzz::InputC& in) : in_(in) {}

  void Run() {
    for (std::size_t step = 0; step < kMostSteps && !in_.IsEmpty(); ++step) {
      Change();
      EXPECT_EQ(Model::Units(text_), units_);
      EXPECT_TRUE(text_.IsValid());
      EXPECT_EQ(text_.IsEmpty(), units_.empty());
      EXPECT_EQ(text_.GetData()[N], 0);
    }
    Ask();
  }

 private:
  static std::u16string Cut(const std::u16string& units) { return units.substr(0, N); }
  // A C string that does not fit is refused entirely.
  static std::u16string Fitting(const std::u16string& units) {
    const std::u16string text = units.c_str();
    return text.size() <= N ? text : std::u16string();
  }

  void Change() {
    const std::size_t most = N + 3U;
    const unsigned what = in_.U8();
    switch (what % 16) {
      case 0: {
        const auto c = in_.Take<char>();
        text_ = FixedStringC<N>(c);
        units_ = Fitting(Widened({c}));
        break;
      }
      case 1: {
        const auto c = in_.Take<char>();
        text_ += c;
        units_ = Cut(units_ + static_cast<char16_t>(static_cast<signed char>(c)));
        break;
      }
      case 2: {
        const auto c = in_.Take<char16_t>();
        text_ += c;
        units_ = Cut(units_ + c);
        break;
      }
      case 3: {
        const std::wstring wide = TakeWide(in_, 1);
        if (wide.empty()) break;
        text_ += wide[0];
        const std::u16string more = Units(wide);
        if (units_.size() + more.size() <= N) units_ += more;
        break;
      }
      case 4: {
        const std::string bytes = TakeBytes(in_, most);
        const auto exact = Exactly(bytes, std::strlen(bytes.c_str()) + 1);
        text_ += exact.get();
        units_ = Cut(units_ + Fitting(Widened(bytes)));
        break;
      }
      case 5: {
        const std::u16string units = TakeUnits(in_, most);
        text_ += units.c_str();
        units_ = Cut(units_ + Fitting(units));
        break;
      }
      case 6: {
        const std::wstring wide = TakeWide(in_, most);
        text_ += wide.c_str();
        units_ = Cut(units_ + Fitting(Units(wide.c_str())));
        break;
      }
      case 7: {
        const std::u16string units = TakeUnits(in_, N);
        text_ += Model::Text<N>(units);  // including 0 units
        units_ = Cut(units_ + units);
        break;
      }
      case 8:
        text_ += text_;
        units_ = Cut(units_ + units_);
        break;
      case 9: {
        const std::u16string units = TakeUnits(in_, N);
        text_ = Model::Text<N>(units) + text_;
        units_ = Cut(units + units_);
        break;
      }
      case 10: {
        const std::uint16_t start = in_.U8();
        const std::uint16_t count = in_.Flag() ? in_.U16() : in_.U8();
        const bool fits = start + count <= static_cast<int>(units_.size());
        EXPECT_EQ(text_.SubString(start, count), fits ? count : std::uint32_t{start} + count);
        if (fits) units_ = units_.substr(start, count);
        break;
      }
      case 11:
      case 12:
        FromUtf8();
        break;
      case 13:
        Format();
        break;
      case 14: {
        const std::string bytes = TakeBytes(in_, most);
        text_ = FixedStringC<N>(bytes.c_str());
        units_ = Fitting(Widened(bytes));
        break;
      }
      default:
        Replace(what / 16);
        break;
    }
  }

  void Replace(unsigned how) {
    switch (how) {
      case 0: {
        const auto c = in_.Take<char16_t>();
        text_ = FixedStringC<N>(c);
        units_ = Fitting({c});
        break;
      }
      case 1: {
        const std::wstring wide = TakeWide(in_, 1);
        const wchar_t c = wide.empty() ? L'\0' : wide[0];
        text_ = FixedStringC<N>(c);
        units_ = Fitting(Units({c}));
        break;
      }
      case 2: {
        const std::u16string units = TakeUnits(in_, N + 3U);
        text_ = FixedStringC<N>(units.c_str());
        units_ = Fitting(units);
        break;
      }
      case 3: {
        const std::wstring wide = TakeWide(in_, N + 3U);
        text_ = FixedStringC<N>(wide.c_str());
        units_ = Fitting(Units(wide.c_str()));
        break;
      }
      case 4:  // its own units up to a 0
        text_ += text_.GetData();
        units_ = Cut(units_ + Fitting(units_));
        break;
      case 5: {  // a null source changes nothing
        text_ += static_cast<const char*>(nullptr);
        text_ += static_cast<const char16_t*>(nullptr);
        text_ += static_cast<const wchar_t*>(nullptr);
        auto inOut = in_.Take<std::size_t>();
        EXPECT_EQ(text_.FromUtf8(nullptr, &inOut), 0);
        EXPECT_EQ(inOut, 0U);  // bytes decoded
        EXPECT_EQ(text_.Format(nullptr), -1);
        break;
      }
      case 6:
        text_ = FixedStringC<N>(static_cast<const char*>(nullptr));
        units_.clear();
        break;
      case 7: {
        const std::string bytes = TakeBytes(in_, 3U * N + 8);
        const Model::Decoded expected = Model::FromUtf8(bytes.c_str(), Model::kNoLimit, N);
        EXPECT_EQ(text_.FromUtf8(bytes.c_str(), nullptr), expected.result);
        units_.assign(expected.units, expected.length);
        break;
      }
      default:
        Ask();
        break;
    }
  }

  void FromUtf8() {
    std::size_t limit = 0;
    switch (in_.Below(3)) {
      case 0:
        limit = Model::kNoLimit;
        break;
      case 1:
        limit = in_.Below(3U * N + 8);
        break;
      default:
        limit = in_.Take<std::size_t>();
        break;
    }
    const std::string bytes = TakeBytes(in_, 3U * N + 8);
    const std::size_t most = limit == Model::kNoLimit ? 3U * N : limit;
    const std::size_t length = std::strlen(bytes.c_str());
    const auto exact = Exactly(bytes, length < most ? length + 1 : most + 1);
    const Model::Decoded expected = Model::FromUtf8(exact.get(), limit, N);
    std::size_t inOut = limit;
    EXPECT_EQ(text_.FromUtf8(exact.get(), &inOut), expected.result);
    EXPECT_EQ(inOut, expected.consumed);
    units_.assign(expected.units, expected.length);
  }

  void Format() {
    const std::string bytes = TakeBytes(in_, 2U * N);
    const auto number = in_.Take<std::int32_t>();
    const auto real = in_.Take<float>();
    std::vector<char> expected(20U * N + 1000);
    const auto format = [&](const char* how, auto... values) {
      const int result = std::snprintf(expected.data(), expected.size(), how, values...);
      EXPECT_EQ(text_.Format(how, values...), std::strlen(how) <= N ? result : -1);
      if (std::strlen(how) <= N) units_ = Fitting(Widened(expected.data()));
    };
    switch (in_.Below(6)) {
      case 0:
        format("%s", bytes.c_str());
        break;
      case 1:
        format("%d", number);
        break;
      case 2:
        format("%.3f", static_cast<double>(real));
        break;
      case 3:
        format("%s|%08x|%s%%", bytes.c_str(), number, bytes.c_str());
        break;
      case 4:
        format("%*d", number % 1000, number);
        break;
      default: {
        std::string how = bytes;  // text without conversions, of any length
        for (char& c : how) c = c == '%' ? '_' : c;
        format(how.c_str(), number);
        break;
      }
    }
  }

  void Ask() {
    const std::size_t space = in_.Below(3U * N + 3);
    const Model::Encoded encoded = Model::ToUtf8(units_, space);
    const auto bytes = std::make_unique<char[]>(space);
    std::memset(bytes.get(), 'x', space);
    EXPECT_EQ(text_.ToUtf8(bytes.get(), space), static_cast<int>(encoded.needed));
    EXPECT_EQ(std::string(bytes.get(), encoded.written.size()), encoded.written);
    for (std::size_t i = encoded.written.size(); i < space; ++i) EXPECT_EQ(bytes[i], 'x');
    EXPECT_EQ(text_.ToUtf8(nullptr, space), static_cast<int>(encoded.needed));

    bool isNarrow = space > units_.size();
    std::memset(bytes.get(), 'x', space);
    for (const char16_t unit : units_) isNarrow = isNarrow && unit < 256;
    EXPECT_EQ(text_.ToNarrow(bytes.get(), space), isNarrow);
    for (std::size_t i = 0; i < space; ++i) {
      const char expected = space <= units_.size() || i > units_.size() ? 'x'
                            : i == units_.size()                        ? '\0'
                                                 : static_cast<char>(units_[i] & 0xFF);
      EXPECT_EQ(bytes[i], expected);
    }
    EXPECT_FALSE(text_.ToNarrow(nullptr, space));

    const std::string number = Narrowed(units_);
    EXPECT_EQ(text_.ToInt(), std::atoi(number.c_str()));
    EXPECT_EQ(text_.ToLong(), static_cast<std::int32_t>(std::atol(number.c_str())));
    const double real = std::atof(number.c_str());
    const double got = text_.ToDouble();
    EXPECT_EQ(std::memcmp(&got, &real, sizeof(real)), 0);

    const std::u16string other = TakeUnits(in_, N);
    const auto text = Model::Text<N>(other);
    EXPECT_EQ(text_ == text, units_ == other);
    EXPECT_EQ(text_ != text, units_ != other);
    EXPECT_TRUE(text_ <= FixedStringC<N>(text_));
    // The order of the UTF-8 bytes, including terminators, up to the end of the left text.
    const std::string left = Model::ToUtf8(units_, 3U * N + 1).written;
    const std::string right = Model::ToUtf8(other, 3U * N + 1).written;
    EXPECT_EQ(text_ <= text, std::strcmp(left.c_str(), right.c_str()) <= 0);
  }

  Fuzz::InputC& in_;
  FixedStringC<N> text_;
  std::u16string units_;
};

}  // namespace

// Input: the capacity, then the arguments of each change.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::InputC in({data, size});
  const std::size_t wanted = in.Below(10);
  std::size_t i = 0;
  Model::ForEachCapacity([&](auto capacity) {
    if (i++ == wanted) SequenceC<capacity()>(in).Run();
  });
  return 0;
}
