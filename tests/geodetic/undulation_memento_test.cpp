#include <limits>

#include <gtest/gtest.h>

#include <surveydata/geodetic/undulation_memento.h>

#include "tests/support/record_fields.h"

namespace {

using Records::Texts;
using Records::Values;
using SDI::UndulationMementoC;

constexpr float kUnit = std::numeric_limits<float>::epsilon() * 32;  // in the last place of 47.5

TEST(UndulationMemento, TakesUndulationSourceAndValidity) {
  EXPECT_EQ(Values(UndulationMementoC(47.5F, -2, 255)), (Texts{"47.5", "-2", "255"}));
  EXPECT_EQ(Values(ODM::UndulationMementoC(47.5F, -2, 255)), (Texts{"47.5", "-2", "255"}));
}

TEST(UndulationMemento, ChangesOnlyByAssignment) {
  UndulationMementoC memento;
  memento = UndulationMementoC(47.5F, 2, 1);
  EXPECT_EQ(Values(memento), (Texts{"47.5", "2", "1"}));
}

TEST(UndulationMemento, DiffersInValidityHoweverCloseTheUndulation) {
  const UndulationMementoC memento(47.5F, 2, 1);
  EXPECT_TRUE(memento.IsEqual(UndulationMementoC(47.5F + kUnit, 2, 1)));
  EXPECT_FALSE(memento.IsEqual(UndulationMementoC(47.5F + kUnit, 2, 0)));
  EXPECT_FALSE(memento.IsEqual(UndulationMementoC(47.5F + 3 * kUnit, 2, 1)));
}

}  // namespace
