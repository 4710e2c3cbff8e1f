// Compares the conversions to and from UTF-8 with ICU.

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>

#include <gtest/gtest.h>
#include <unicode/ustring.h>

#include <surveydata/object_model/fixed_string.h>

#include "tests/object_model/fixed_string_model.h"

namespace {

using API::FixedStringC;
using Model::kNoLimit;

// ICU is the reference for texts without surrogates, which follow the standard rules.
TEST(FixedStringUtf8, AgreesWithIcuOnTextsWithoutSurrogates) {
  std::mt19937_64 random(20260101);
  for (int round = 0; round < 20000; ++round) {
    auto units = Model::RandomUnits(random, random() % 256);
    for (char16_t& unit : units) {
      if (unit == 0 || (unit >= 0xD800 && unit <= 0xDFFF)) unit = u'-';
    }
    const auto text = Model::Text<255>(units);
    std::array<char, 3 * 255 + 1> ours;
    std::array<char, 3 * 255 + 1> theirs;
    std::int32_t length = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strToUTF8(theirs.data(), theirs.size(), &length, units.data(),
                static_cast<std::int32_t>(units.size()), &error);
    ASSERT_TRUE(U_SUCCESS(error));
    ASSERT_EQ(text.ToUtf8(ours.data(), ours.size()), length);
    ASSERT_STREQ(ours.data(), theirs.data());

    std::array<char16_t, 256> decoded;
    u_strFromUTF8(decoded.data(), decoded.size(), &length, ours.data(), -1, &error);
    ASSERT_TRUE(U_SUCCESS(error));
    FixedStringC<255> back;
    std::size_t bytes = kNoLimit;
    ASSERT_EQ(back.FromUtf8(ours.data(), &bytes), 0);
    ASSERT_EQ(Model::Units(back), std::u16string(decoded.data(), static_cast<std::size_t>(length)));
  }
}

// ICU and the fixed strings agree on which byte sequences are characters, except for surrogates,
// overlong sequences and lead bytes F0 to FF.
TEST(FixedStringUtf8, AgreesWithIcuOnWhichSequencesAreCharacters) {
  for (unsigned lead = 1; lead < 0xF0; ++lead) {
    for (unsigned second = 1; second < 0x100; ++second) {
      for (const unsigned third : {0x00U, 0x41U, 0x7FU, 0x80U, 0x8FU, 0xBFU, 0xC0U, 0xE2U}) {
        const bool isOverlong = lead == 0xC0 || lead == 0xC1 || (lead == 0xE0 && second < 0xA0);
        const bool isSurrogate = lead == 0xED && second >= 0xA0;
        if (isOverlong || isSurrogate || second >= 0xF0) continue;
        const bool secondLeads =
            lead < 0x80 && (second == 0xC0 || second == 0xC1 || second == 0xE0 || second == 0xED);
        if (secondLeads) continue;
        const char bytes[4] = {static_cast<char>(lead), static_cast<char>(second),
                               static_cast<char>(third), 0};
        char16_t decoded[8];
        std::int32_t length = 0;
        UErrorCode error = U_ZERO_ERROR;
        u_strFromUTF8(decoded, 8, &length, bytes, -1, &error);
        FixedStringC<10> text;
        std::size_t limit = kNoLimit;
        ASSERT_EQ(text.FromUtf8(bytes, &limit) == 0, U_SUCCESS(error) != 0) << Model::Hex(bytes);
        if (U_SUCCESS(error)) {
          ASSERT_EQ(Model::Units(text), std::u16string(decoded, static_cast<std::size_t>(length)));
        }
      }
    }
  }
}

}  // namespace
