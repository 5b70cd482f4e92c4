#include "quillon/platform/passwords/QNSPG.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/internal/QNMemoryWatch.h"
#include "quillon/platform/passwords/QNWordList.h"

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

// Random bytes that are the same in each test.
class KnownRandom {
 private:
  QNScopedRandom _source{[next = std::uint32_t{1}](std::span<std::uint8_t> out) mutable {
    for (std::uint8_t& byte : out) {
      next = next * 1'103'515'245 + 12'345;
      byte = static_cast<std::uint8_t>(next >> 16);
    }
  }};
};

// The same at each call.
QNSecret knownPassword() {
  const KnownRandom random;
  return QNSPG::generateCharactersPassword();
}

const QNWordList& english() {
  static const QNWordList list = std::move(QNWordList::english()).value();
  return list;
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

// The words between separators.
std::vector<std::string> partedAt(std::string_view text, char separator) {
  std::vector<std::string> parts(1);
  for (const char c : text) {
    if (c == separator) {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  return parts;
}

TEST(QNSPGWords, AreWordsOfTheListWithTheSeparatorBetween) {
  const auto& words = english().words();

  const auto made = QNSPG::generateWords(english(), {7, "+"});

  const auto parts = partedAt(made.password.reveal(), '+');
  EXPECT_EQ(parts.size(), 7u);
  for (const std::string& word : parts) {
    EXPECT_TRUE(std::binary_search(words.begin(), words.end(), word)) << word;
  }
}

TEST(QNSPGWords, AreSixWithDashesUnlessToldOtherwise) {
  EXPECT_EQ(partedAt(QNSPG::generateWords(english(), {}).password.reveal(), '-').size(), 6u);
}

TEST(QNSPGWords, MayStandTogetherOrBeSeparatedByAText) {
  const auto list = std::move(QNWordList::fromText("a\nb\n")).value();

  EXPECT_EQ(QNSPG::generateWords(list, {9, ""}).password.size(), 9u);
  EXPECT_EQ(QNSPG::generateWords(list, {9, "··"}).password.size(), 9u + 8 * 4);
}

TEST(QNSPGWords, CountsAreDrawnToTheNearerEnd) {
  const auto list = std::move(QNWordList::fromText("a\nb\n")).value();

  EXPECT_EQ(QNSPG::generateWords(list, {0, ""}).password.size(), 2u);
  EXPECT_EQ(QNSPG::generateWords(list, {4'000'000'000, ""}).password.size(), 64u);
}

// 7,776 is 6^5: a word is five throws of a die. 5 * log2(6) = 12.924812503605781.
TEST(QNSPGWords, StateTheEntropyOfTheWordsAlone) {
  EXPECT_THAT(QNSPG::generateWords(english(), {6, "-"}).bitsEntropy,
              DoubleNear(77.548875021634687, 1e-9));
  EXPECT_THAT(QNSPG::generateWords(english(), {2, "12345"}).bitsEntropy,
              DoubleNear(25.849625007211562, 1e-9));
  const auto four = std::move(QNWordList::fromText("a\nb\nc\nd\n")).value();
  EXPECT_EQ(QNSPG::generateWords(four, {5, "-"}).bitsEntropy, 10);
  EXPECT_EQ(QNSPG::generateWords(four, {1, "-"}).bitsEntropy, 4);
}

TEST(QNSPGWords, NoWordIsPreferred) {
  const auto list = std::move(QNWordList::fromText("a\nb\nc\nd\ne\nf\ng\n")).value();
  std::map<char, int> counts;
  constexpr int rounds = 1000;
  for (int i = 0; i < rounds; ++i) {
    const auto made = QNSPG::generateWords(list, {64, ""});
    for (const char c : made.password.reveal()) ++counts[c];
  }

  const double expected = rounds * 64 / 7.0;
  EXPECT_EQ(counts.size(), 7u);
  for (const auto& [c, count] : counts) {
    EXPECT_THAT(static_cast<double>(count), DoubleNear(expected, 6 * std::sqrt(expected))) << c;
  }
}

TEST(QNSPGWords, ReachEveryWordOfTheList) {
  std::set<std::string> seen;
  // 100 draws a word: one run in 10^39 misses one.
  for (int i = 0; i < 7776 * 100 / 64; ++i) {
    const auto made = QNSPG::generateWords(english(), {64, "-"});
    for (const std::string& word : partedAt(made.password.reveal(), '-')) seen.insert(word);
  }

  EXPECT_EQ(seen.size(), 7776u);
}

TEST(QNSPGWords, AreDrawnFromTheRandomSourceOfTheEnvironment) {
  const KnownRandom random;

  EXPECT_EQ(QNSPG::generateWords(english(), {4, "-"}).password.reveal(),
            "skill-configure-tepid-explode");
}

TEST(QNSPGWords, LeaveNoCopyBehind) {
  const auto made = [] {
    const KnownRandom random;
    return QNSPG::generateWords(english(), {8, "-"}).password;
  };
  const QNSecret known = made();
  const QNFreedBlockWatch watch(known.reveal());
  bool isSame = false;

  const std::size_t onStack =
      remainsOnStack(known.reveal(), [&] { isSame = made().equals(known); });

  EXPECT_TRUE(isSame);
  EXPECT_EQ(onStack, 0u);
  EXPECT_EQ(watch.found(), 0u);
}

TEST(QNSPGPIN, HasAsManyDigitsAsAskedWithinItsLimits) {
  const auto made = QNSPG::generatePIN(12);

  EXPECT_EQ(made.password.size(), 12u);
  EXPECT_EQ(made.password.reveal().find_first_not_of("0123456789"), std::string_view::npos);
  EXPECT_EQ(QNSPG::generatePIN(0).password.size(), 3u);
  EXPECT_EQ(QNSPG::generatePIN(4'000'000'000).password.size(), 64u);
}

// log2(10) = 3.321928094887362 a digit.
TEST(QNSPGPIN, StatesItsEntropy) {
  EXPECT_THAT(QNSPG::generatePIN(4).bitsEntropy, DoubleNear(13.287712379549449, 1e-9));
  EXPECT_THAT(QNSPG::generatePIN(2).bitsEntropy, DoubleNear(9.965784284662087, 1e-9));
}

TEST(QNSPGPIN, NoDigitIsPreferredAtAnyPlace) {
  std::array<std::map<char, int>, 4> counts;
  constexpr int rounds = 20'000;
  for (int i = 0; i < rounds; ++i) {
    const auto made = QNSPG::generatePIN(4);
    for (std::size_t place = 0; place < 4; ++place) ++counts[place][made.password.reveal()[place]];
  }

  for (const auto& place : counts) {
    EXPECT_EQ(place.size(), 10u);
    for (const auto& [c, count] : place) {
      EXPECT_THAT(static_cast<double>(count), DoubleNear(2000, 6 * std::sqrt(2000))) << c;
    }
  }
}

TEST(QNSPGPIN, IsDrawnFromTheRandomSourceOfTheEnvironment) {
  const KnownRandom random;

  EXPECT_EQ(QNSPG::generatePIN(8).password.reveal(), "53778195");
}

}  // namespace
}  // namespace quillon
