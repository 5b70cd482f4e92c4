#include "quillon/platform/passwords/QNWordList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace quillon {
namespace {

using testing::DoubleNear;
using testing::ElementsAre;

// The code of the error, 0 for a list.
std::int64_t codeOf(std::string text) {
  const auto list = QNWordList::fromText(std::move(text));
  return list.ok() ? 0 : list.error().code;
}

TEST(QNWordList, HasTheWordsOfItsLines) {
  const auto list = std::move(QNWordList::fromText("apple\nberry\nära\n")).value();

  EXPECT_THAT(list.words(), ElementsAre("apple", "berry", "ära"));
  EXPECT_EQ(QNWordList::fromText("apple\nberry").value().words().size(), 2u);
}

TEST(QNWordList, KeepsItsWordsWhenItMoves) {
  auto first = std::move(QNWordList::fromText("a\nb\n")).value();
  const auto second = std::move(first);

  EXPECT_THAT(second.words(), ElementsAre("a", "b"));
}

TEST(QNWordList, RefusesWhatWouldMakeAStatedEntropyUntrue) {
  EXPECT_EQ(codeOf("apple\napple\nberry\n"), 114);  // a word that is likelier
  EXPECT_EQ(codeOf("berry\napple\n"), 114);
  EXPECT_EQ(codeOf("car\ncarpet\nzoo\n"), 114);  // "carpet" could be "car" and "pet"
  EXPECT_EQ(codeOf("car\ncarpet\ncart\n"), 114);
}

TEST(QNWordList, RefusesLinesWithoutAWord) {
  EXPECT_EQ(codeOf(""), 114);
  EXPECT_EQ(codeOf("alone\n"), 114);
  EXPECT_EQ(codeOf("a\n\nb\n"), 114);
  EXPECT_EQ(codeOf("a\r\nb\r\n"), 114);
  EXPECT_EQ(codeOf("a b\nc\n"), 114);
  EXPECT_EQ(codeOf("a\nb\x1b[31m\n"), 114);
  EXPECT_EQ(codeOf("a\nb\xff\n"), 114);
}

TEST(QNWordList, OfEnglishHasSixToTheFifthWordsOfThreeToNineLetters) {
  const auto list = QNWordList::english();
  ASSERT_TRUE(list.ok()) << list.error().message;

  EXPECT_EQ(list.value().words().size(), 7776u);
  EXPECT_THAT(list.value().bitsOfWord(), DoubleNear(12.924812503605781, 1e-12));
  for (const std::string_view word : list.value().words()) {
    EXPECT_TRUE(word.size() >= 3 && word.size() <= 9) << word;
    EXPECT_TRUE(std::all_of(word.begin(), word.end(), [](char c) { return c >= 'a' && c <= 'z'; }))
        << word;
  }
}

}  // namespace
}  // namespace quillon
