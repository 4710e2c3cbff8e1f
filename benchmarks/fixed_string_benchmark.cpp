// Conversion between UTF-16 and UTF-8, compared with the corresponding functions of ICU. Each text
// fills its capacity.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include <benchmark/benchmark.h>
#include <unicode/ustring.h>

#include <surveydata/object_model/fixed_string.h>

namespace {

// Repeats `pattern` up to N units.
template <std::uint16_t N>
API::FixedStringC<N> Filled(const char16_t* pattern) {
  const std::u16string units = pattern;
  API::FixedStringC<N> text;
  for (std::size_t i = 0; i < N; ++i) text += units[i % units.size()];
  return text;
}

template <std::uint16_t N>
std::string Utf8Of(const API::FixedStringC<N>& text) {
  std::string utf8(3 * N + 1, '\0');
  utf8.resize(static_cast<std::size_t>(text.ToUtf8(utf8.data(), utf8.size())));
  return utf8;
}

constexpr const char16_t* kAscii = u"Station 1042, prism pole 1.850 m; ";
constexpr const char16_t* kLatin = u"Gelände é Übergabe à côté señal ";
constexpr const char16_t* kThreeByte = u"測量点番号基準点仰角方位角";

template <std::uint16_t N>
void BM_ToUtf8(benchmark::State& state, const char16_t* pattern) {
  const auto text = Filled<N>(pattern);
  std::array<char, 3 * N + 1> utf8;
  for (auto _ : state) {
    benchmark::DoNotOptimize(text.ToUtf8(utf8.data(), utf8.size()));
    benchmark::ClobberMemory();
  }
}

template <std::uint16_t N>
void BM_ToUtf8Icu(benchmark::State& state, const char16_t* pattern) {
  const auto text = Filled<N>(pattern);
  std::array<char, 3 * N + 1> utf8;
  for (auto _ : state) {
    std::int32_t length = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strToUTF8(utf8.data(), std::int32_t{utf8.size()}, &length, text.GetData(),
                static_cast<std::int32_t>(text.GetLength()), &error);
    benchmark::DoNotOptimize(length);
    benchmark::ClobberMemory();
  }
}

template <std::uint16_t N>
void BM_FromUtf8(benchmark::State& state, const char16_t* pattern) {
  const std::string utf8 = Utf8Of(Filled<N>(pattern));
  API::FixedStringC<N> text;
  for (auto _ : state) {
    std::size_t length = utf8.size();
    benchmark::DoNotOptimize(text.FromUtf8(utf8.data(), &length));
    benchmark::ClobberMemory();
  }
}

template <std::uint16_t N>
void BM_FromUtf8Icu(benchmark::State& state, const char16_t* pattern) {
  const std::string utf8 = Utf8Of(Filled<N>(pattern));
  std::array<char16_t, N + 1> text;
  for (auto _ : state) {
    std::int32_t length = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8(text.data(), std::int32_t{text.size()}, &length, utf8.data(),
                  static_cast<std::int32_t>(utf8.size()), &error);
    benchmark::DoNotOptimize(length);
    benchmark::ClobberMemory();
  }
}

template <std::uint16_t N>
void Register() {
  const struct {
    const char* name;
    const char16_t* pattern;
  } texts[] = {{"ascii", kAscii}, {"latin", kLatin}, {"three-byte", kThreeByte}};
  for (const auto& [name, pattern] : texts) {
    const std::string suffix = std::string("/") + name + "/" + std::to_string(N);
    const auto add = [&suffix, pattern = pattern](const char* subject, auto* function) {
      benchmark::RegisterBenchmark((subject + suffix).c_str(), function, pattern);
    };
    add("ToUtf8", BM_ToUtf8<N>);
    add("ToUtf8/icu", BM_ToUtf8Icu<N>);
    add("FromUtf8", BM_FromUtf8<N>);
    add("FromUtf8/icu", BM_FromUtf8Icu<N>);
  }
}

const bool kRegistered = (Register<16>(), Register<64>(), Register<255>(), true);

}  // namespace
