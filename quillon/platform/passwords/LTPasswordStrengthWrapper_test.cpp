#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "quillon/platform/internal/QNMemoryWatch.h"
#include "quillon/platform/passwords/QNSPG.h"

namespace quillon {
namespace {

float strengthOf(std::string_view password) {
  return LTPasswordStrengthWrapper::passwordStrength(password).value_or(-1);
}

constexpr std::string_view kRandom = "zQ9#vL2&kP7!xD4sWe5%hJ8*rT6@bN3^";

std::string followedBy(std::string start, std::string_view end) {
  return start.append(end);
}

TEST(LTPasswordStrengthWrapper, RatesWhatPeopleChooseBelowWhatTheyCannotRemember) {
  EXPECT_EQ(strengthOf(""), 0);
  EXPECT_LT(strengthOf("password"), 5);
  EXPECT_LT(strengthOf("qwertyuiop1234567890"), 20);
  EXPECT_LT(strengthOf("password"), strengthOf("Tr0ub4dor&3"));
  EXPECT_LT(strengthOf("Tr0ub4dor&3"), strengthOf("zQ9#vL2&kP7!xD4s"));
  EXPECT_LT(strengthOf(std::string(100, 'a')), 10);
}

TEST(LTPasswordStrengthWrapper, ALongRandomPasswordHasFullStrength) {
  EXPECT_EQ(strengthOf(kRandom), 100);
  EXPECT_EQ(strengthOf(followedBy(std::string(kRandom), std::string(500, 'a'))), 100);
}

TEST(LTPasswordStrengthWrapper, LooksAtAHundredCharactersAndNoFurther) {
  const std::string hundred(100, 'a');

  EXPECT_EQ(strengthOf(hundred), strengthOf(followedBy(hundred, kRandom)));
  EXPECT_LT(strengthOf(std::string(68, 'a')),
            strengthOf(followedBy(std::string(68, 'a'), kRandom)));
}

TEST(LTPasswordStrengthWrapper, CutsBetweenCharacters) {
  std::string password;
  for (int i = 0; i < 300; ++i) password += "日";

  EXPECT_GE(strengthOf(password), 0);
  EXPECT_EQ(strengthOf(password + "x"), strengthOf(password));
}

TEST(LTPasswordStrengthWrapper, AZeroInsideDoesNotHideTheRest) {
  EXPECT_GT(strengthOf(std::string("a\0zQ9#vL2&kP7!xD4s", 18)), strengthOf("a") + 50);
}

TEST(LTPasswordStrengthWrapper, AnAbsentPasswordIsAnError) {
  QNError error;

  const auto strength = LTPasswordStrengthWrapper::passwordStrength(std::nullopt, &error);

  EXPECT_FALSE(strength);
  EXPECT_EQ(error.domainCodeString(), "QNErrorDomain 114");
  EXPECT_FALSE(LTPasswordStrengthWrapper::passwordStrength(std::nullopt));
}

TEST(LTPasswordStrengthWrapper, RatingLeavesNoCopyOfThePasswordOnTheStack) {
  const std::string password =
      "many words which are easy to rate, since all of them are in lists; and at last a zebra bus";
  const std::string part = "a zebra bus";
  float strength = 0;

  const std::size_t remains = remainsOnStack(part, [&] { strength = strengthOf(password); });

  EXPECT_EQ(remains, 0u);
  EXPECT_GT(strength, 0);
}

}  // namespace
}  // namespace quillon
