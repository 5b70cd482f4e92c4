#include "cli/output/QNTitleSearch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillon {
namespace {

std::optional<std::uint32_t> rank(const std::vector<std::string>& words, std::string_view title) {
  return QNTitleSearch(words).rankOf(title);
}

TEST(QNTitleSearch, RanksThePlaceOfAWordInTheTitle) {
  EXPECT_EQ(rank({"bank"}, "Bank of Examples"), 0u);
  EXPECT_EQ(rank({"bank"}, "My Bank"), 1u);
  EXPECT_EQ(rank({"bank"}, "e-banking"), 1u);
  EXPECT_EQ(rank({"bank"}, "Piggybank"), 2u);
  EXPECT_EQ(rank({"bank"}, "Forum"), std::nullopt);
}

TEST(QNTitleSearch, ALaterBeginningOfAWordWinsOverAnEarlierInside) {
  EXPECT_EQ(rank({"bank"}, "Piggybank bank"), 1u);
}

TEST(QNTitleSearch, EveryWordMustOccur) {
  EXPECT_EQ(rank({"bank", "my"}, "My Bank"), 1u);
  EXPECT_EQ(rank({"my", "forum"}, "My Bank"), std::nullopt);
}

TEST(QNTitleSearch, CaseAndAccentsDoNotCount) {
  EXPECT_EQ(rank({"ECLAIR"}, "Éclair"), 0u);
  EXPECT_EQ(rank({"Øre"}, "ore"), 0u);
  EXPECT_EQ(rank({"日本"}, "日本語"), 0u);
}

}  // namespace
}  // namespace quillon
