#include "quillon/platform/passwords/QNSPG.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <set>
#include <string>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/internal/QNMemoryWatch.h"

namespace quillon {
namespace {

using testing::DoubleNear;

// What each generated password must hold, by asking about characters one at a time.
bool has(std::string_view text, int (*kind)(int)) {
  return std::any_of(text.begin(), text.end(), [&](unsigned char c) { return kind(c) != 0; });
}

QNSPG::Characters recipeOf(std::uint32_t length, bool digits, bool symbols, bool withoutAmbiguous) {
  return {length, digits, symbols, withoutAmbiguous};
}

// The same at each call.
QNSecret knownPassword() {
  const QNScopedRandom source([next = std::uint32_t{1}](std::span<std::uint8_t> out) mutable {
    for (std::uint8_t& byte : out) {
      next = next * 1'103'515'245 + 12'345;
      byte = static_cast<std::uint8_t>(next >> 16);
    }
  });
  return QNSPG::generateCharactersPassword();
}

TEST(QNSPG, GeneratesAtLeastOneOfEachAskedClass) {
  for (int i = 0; i < 200; ++i) {
    const auto made = QNSPG::generateCharacters(recipeOf(4, true, true, false));
    const std::string_view password = made.password.reveal();

    ASSERT_EQ(password.size(), 4u);
    EXPECT_TRUE(has(password, std::islower) && has(password, std::isupper) &&
                has(password, std::isdigit) && has(password, std::ispunct));
  }
}

TEST(QNSPG, LeavesOutTheClassesThatAreNotAsked) {
  for (int i = 0; i < 50; ++i) {
    const auto made = QNSPG::generateCharacters(recipeOf(64, false, false, false));
    const std::string_view password = made.password.reveal();

    EXPECT_TRUE(std::all_of(password.begin(), password.end(),
                            [](unsigned char c) { return std::isalpha(c) != 0; }));
  }
}

TEST(QNSPG, LeavesOutAmbiguousCharactersWhenAsked) {
  const auto made = QNSPG::generateCharacters(recipeOf(256, true, true, true));
  EXPECT_EQ(made.password.reveal().find_first_of("0O1lI|"), std::string_view::npos);

  std::string all;
  for (int i = 0; i < 20; ++i) {
    all += QNSPG::generateCharacters(recipeOf(256, true, true, false)).password.reveal();
  }
  for (const char c : std::string("0O1lI|")) EXPECT_NE(all.find(c), std::string::npos) << c;
}

TEST(QNSPG, DrawsLengthsToTheNearerEnd) {
  EXPECT_EQ(QNSPG::generateCharacters(recipeOf(0, true, true, false)).password.size(), 4u);
  EXPECT_EQ(QNSPG::generateCharacters(recipeOf(3, false, false, false)).password.size(), 4u);
  EXPECT_EQ(QNSPG::generateCharacters(recipeOf(256, true, true, false)).password.size(), 256u);
  EXPECT_EQ(QNSPG::generateCharacters(recipeOf(4'000'000'000, true, true, false)).password.size(),
            256u);
}

TEST(QNSPG, TheDefaultPasswordHasTwentyCharactersAndFullOrNearlyFullStrength) {
  const auto made = QNSPG::generateCharacters({});

  EXPECT_EQ(made.password.size(), 20u);
  EXPECT_EQ(QNSPG::generateCharactersPassword().size(), 20u);
  EXPECT_GT(QNSPG::calcStrengthWithBitsEntropy(made.bitsEntropy), 99);
}

// Counted by hand. Four characters of four classes: 4! orders of 26 * 26 * 10 * 28 choices. Four
// letters: 52^4, less 2 * 26^4 of one case alone.
TEST(QNSPG, StatesTheEntropyOfTheChoiceAmongAdmissiblePasswords) {
  EXPECT_THAT(QNSPG::generateCharacters(recipeOf(4, true, true, false)).bitsEntropy,
              DoubleNear(std::log2(24.0 * 26 * 26 * 10 * 28), 1e-9));
  EXPECT_THAT(QNSPG::generateCharacters(recipeOf(4, false, false, false)).bitsEntropy,
              DoubleNear(std::log2(std::pow(52, 4) - 2 * std::pow(26, 4)), 1e-9));
  EXPECT_THAT(QNSPG::generateCharacters(recipeOf(5, true, false, false)).bitsEntropy,
              DoubleNear(std::log2(std::pow(62, 5) - 2 * std::pow(36, 5) - std::pow(52, 5) +
                                   2 * std::pow(26, 5) + std::pow(10, 5)),
                         1e-9));
  // 8 digits, 24 small letters (no l), 24 capitals (no I, O), 27 symbols.
  EXPECT_THAT(QNSPG::generateCharacters(recipeOf(4, true, true, true)).bitsEntropy,
              DoubleNear(std::log2(24.0 * 25 * 24 * 8 * 27), 1e-9));
}

TEST(QNSPG, TheEntropyOfALongPasswordIsFiniteAndJustBelowThatOfAllTexts) {
  const double bits = QNSPG::generateCharacters(recipeOf(256, true, true, false)).bitsEntropy;

  EXPECT_LE(bits, 256 * std::log2(90));
  EXPECT_GT(bits, 256 * std::log2(90) - 1e-6);
}

TEST(QNSPG, NoCharacterIsPreferred) {
  std::map<char, int> counts;
  constexpr int rounds = 400;
  for (int i = 0; i < rounds; ++i) {
    const auto made = QNSPG::generateCharacters(recipeOf(256, true, true, false));
    for (const char c : made.password.reveal()) ++counts[c];
  }

  // Six standard deviations: one run in five million fails by chance.
  const double expected = rounds * 256 / 90.0;
  EXPECT_EQ(counts.size(), 90u);
  for (const auto& [c, count] : counts) {
    EXPECT_THAT(static_cast<double>(count), DoubleNear(expected, 6 * std::sqrt(expected))) << c;
  }
}

TEST(QNSPG, DrawsFromTheRandomSourceOfTheEnvironment) {
  EXPECT_TRUE(knownPassword().equals(knownPassword()));
  EXPECT_FALSE(QNSPG::generateCharactersPassword().equals(QNSPG::generateCharactersPassword()));
}

TEST(QNSPG, StrengthRisesFromNothingToAHundredAtA128Bits) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();

  EXPECT_EQ(QNSPG::calcStrengthWithBitsEntropy(0), 0);
  EXPECT_EQ(QNSPG::calcStrengthWithBitsEntropy(-1), 0);
  EXPECT_EQ(QNSPG::calcStrengthWithBitsEntropy(-infinity), 0);
  EXPECT_EQ(QNSPG::calcStrengthWithBitsEntropy(nan), 0);
  EXPECT_EQ(QNSPG::calcStrengthWithBitsEntropy(64), 50);
  EXPECT_EQ(QNSPG::calcStrengthWithBitsEntropy(128), 100);
  EXPECT_EQ(QNSPG::calcStrengthWithBitsEntropy(1e9), 100);
  EXPECT_EQ(QNSPG::calcStrengthWithBitsEntropy(infinity), 100);
  for (double bits = 0; bits < 128; bits += 0.5) {
    EXPECT_LT(QNSPG::calcStrengthWithBitsEntropy(bits),
              QNSPG::calcStrengthWithBitsEntropy(bits + 0.5));
  }
}

TEST(QNSPG, ShowsAStrengthForTextsOfTwoTo1024Characters) {
  EXPECT_FALSE(QNSPG::qualifiesForPasswordStrength(""));
  EXPECT_FALSE(QNSPG::qualifiesForPasswordStrength("a"));
  EXPECT_FALSE(QNSPG::qualifiesForPasswordStrength("é"));
  EXPECT_FALSE(QNSPG::qualifiesForPasswordStrength("  \t\n\u3000"));
  EXPECT_FALSE(QNSPG::qualifiesForPasswordStrength(std::string(1025, 'x')));
  EXPECT_TRUE(QNSPG::qualifiesForPasswordStrength("ab"));
  EXPECT_TRUE(QNSPG::qualifiesForPasswordStrength("😀"));
  EXPECT_TRUE(QNSPG::qualifiesForPasswordStrength(" a"));
  EXPECT_TRUE(QNSPG::qualifiesForPasswordStrength(std::string(1024, 'x')));
}

TEST(QNSPG, AGeneratedPasswordLeavesNoCopyBehind) {
  const QNSecret known = knownPassword();
  const QNFreedBlockWatch watch(known.reveal());
  bool isSame = false;

  const std::size_t onStack =
      remainsOnStack(known.reveal(), [&] { isSame = knownPassword().equals(known); });

  EXPECT_TRUE(isSame);
  EXPECT_EQ(onStack, 0u);
  EXPECT_EQ(watch.found(), 0u);
}

}  // namespace
}  // namespace quillon
