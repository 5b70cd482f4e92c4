#include "quillon/organisation/predicates/internal/QNWildcards.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <string>

namespace quillon {
namespace {

bool matches(std::string_view text, std::string_view pattern) {
  QNPredicateBudget budget;
  return matchesWildcards(text, pattern, budget).value();
}

// The meaning itself, at any cost.
bool matchesPlainly(std::string_view text, std::string_view pattern) {
  if (pattern.empty()) return text.empty();
  if (pattern.front() == '*') {
    return matchesPlainly(text, pattern.substr(1)) ||
           (!text.empty() && matchesPlainly(text.substr(1), pattern));
  }
  return !text.empty() && (pattern.front() == '?' || pattern.front() == text.front()) &&
         matchesPlainly(text.substr(1), pattern.substr(1));
}

std::string randomOf(std::string_view letters) {
  std::string text;
  for (const auto i : *rc::gen::container<std::vector<std::size_t>>(
           rc::gen::inRange<std::size_t>(0, letters.size()))) {
    text += letters[i];
    if (text.size() == 12) break;
  }
  return text;
}

TEST(QNWildcards, StandForOneCharacterOrAny) {
  EXPECT_TRUE(matches("", ""));
  EXPECT_TRUE(matches("", "**"));
  EXPECT_FALSE(matches("", "?"));
  EXPECT_TRUE(matches("bank", "b?nk"));
  EXPECT_FALSE(matches("bank", "b?k"));
  EXPECT_TRUE(matches("bank", "*"));
  EXPECT_TRUE(matches("bank", "*n*"));
  EXPECT_FALSE(matches("bank", "n*"));
  EXPECT_TRUE(matches("aab", "*ab"));
}

TEST(QNWildcards, TakeACharacterForOneWhateverItsBytes) {
  EXPECT_TRUE(matches("Zürich", "Z?rich"));
  EXPECT_TRUE(matches("\U0001F600", "?"));
  EXPECT_FALSE(matches("\U0001F600", "??"));
  EXPECT_TRUE(matches("aü", "*ü"));
}

TEST(QNWildcards, AreThemselvesBehindABackslash) {
  EXPECT_TRUE(matches("a*b?c\\d", "a\\*b\\?c\\\\d"));
  EXPECT_FALSE(matches("axb", "a\\*b"));
  EXPECT_TRUE(matches("a\\b", "a\\b"));
  EXPECT_TRUE(matches("a\\", "a\\"));
}

TEST(QNWildcards, MeanWhatTheySay) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = randomOf("ab");
    const std::string pattern = randomOf("ab?**");

    RC_ASSERT(matches(text, pattern) == matchesPlainly(text, pattern));
  }));
}

TEST(QNWildcards, CostNoMoreThanBothLengthsMultiplied) {
  const std::string text(1000, 'a');
  std::string pattern = "*";
  for (int i = 0; i < 50; ++i) pattern += "a*";
  pattern += "b";
  QNPredicateBudget budget;
  const std::uint64_t before = budget.left();

  EXPECT_EQ(matchesWildcards(text, pattern, budget), false);
  EXPECT_LE(before - budget.left(), text.size() * pattern.size());
}

TEST(QNWildcards, GiveUpWhereTheBudgetIsSpent) {
  QNPredicateBudget budget;
  budget.spend(budget.left());

  EXPECT_EQ(matchesWildcards("a", "a", budget), std::nullopt);
}

}  // namespace
}  // namespace quillon
