#include "quillon/platform/text/QNCharacterSet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillon {
namespace {

using testing::ElementsAre;

TEST(QNCharacterSet, WhiteSpaceIsWhatStandsWithinALine) {
  const auto& set = QNCharacterSet::whitespace();
  for (const char32_t c : {U' ', U'\t', U'\u00A0', U'\u2003', U'\u3000'}) {
    EXPECT_TRUE(set.contains(c)) << std::uint32_t(c);
  }
  for (const char32_t c : {U'\n', U'\r', U'\u0085', U'\u2028', U'a', U'_', U'\u200B'}) {
    EXPECT_FALSE(set.contains(c)) << std::uint32_t(c);
  }
}

TEST(QNCharacterSet, WhiteSpaceButTheBlankHoldsNewLines) {
  const auto& set = QNCharacterSet::whitespaceButBlank();
  for (const char32_t c :
       {U'\t', U'\n', U'\v', U'\f', U'\r', U'\u0085', U'\u00A0', U'\u2028', U'\u2029', U'\u3000'}) {
    EXPECT_TRUE(set.contains(c)) << std::uint32_t(c);
  }
  for (const char32_t c : {U' ', U'\b', U'\u000E', U'a', U'\u200B'}) {
    EXPECT_FALSE(set.contains(c)) << std::uint32_t(c);
  }
}

TEST(QNCharacterSet, LettersMarksAndNumbersSeparateNothing) {
  const auto& set = QNCharacterSet::nonAlphanumerics();
  for (const char32_t c : {U'a', U'9', U'é', U'\u0301', U'銀', U'½', U'Ⅷ', U'٣'}) {
    EXPECT_FALSE(set.contains(c)) << std::uint32_t(c);
  }
  for (const char32_t c : {U' ', U'.', U'-', U'_', U'/', U'\n', U'€', U'😀'}) {
    EXPECT_TRUE(set.contains(c)) << std::uint32_t(c);
  }
}

TEST(QNCharacterSet, FindsAnyOfItsCharacters) {
  const auto& set = QNCharacterSet::nonAlphanumerics();

  EXPECT_TRUE(set.containsAnyOf("my bank"));
  EXPECT_TRUE(set.containsAnyOf("bank\xFF"));
  EXPECT_FALSE(set.containsAnyOf("银行é"));
  EXPECT_FALSE(set.containsAnyOf(""));
}

TEST(QNCharacterSet, PiecesComeAsTheyAre) {
  const auto& set = QNCharacterSet::nonAlphanumerics();

  EXPECT_THAT(set.piecesOf("my bank"), ElementsAre("my", "bank"));
  EXPECT_THAT(set.piecesOf("my, bank "), ElementsAre("my", "", "bank", ""));
  EXPECT_THAT(set.piecesOf("😀é"), ElementsAre("", "é"));
  EXPECT_THAT(set.piecesOf("one"), ElementsAre("one"));
  EXPECT_THAT(set.piecesOf(""), ElementsAre(""));
}

}  // namespace
}  // namespace quillon
