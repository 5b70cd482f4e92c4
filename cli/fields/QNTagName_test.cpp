#include "cli/fields/QNTagName.h"

#include <gtest/gtest.h>

#include "quillon/platform/log/MRLogger.h"

namespace quillon {
namespace {

using Match = QNTagName::Match;

std::optional<std::string> rest(std::string_view name, std::string_view tag, Match match) {
  const auto found = QNTagName(name).restOf(tag, match);
  return found ? std::optional(std::string(*found)) : std::nullopt;
}

TEST(QNTagName, KnowsItselfAndWhatLiesBelow) {
  EXPECT_EQ(rest("work", "work", Match::exact), "");
  EXPECT_EQ(rest("work", "work/bills/old", Match::exact), "/bills/old");
  EXPECT_EQ(rest("work/bills", "work/bills/old", Match::exact), "/old");
}

TEST(QNTagName, ANameThatOnlyBeginsAlikeIsAnotherOne) {
  EXPECT_EQ(rest("work", "workshop", Match::exact), std::nullopt);
  EXPECT_EQ(rest("work", "workshop", Match::loose), std::nullopt);
  EXPECT_EQ(rest("work/bills", "work", Match::exact), std::nullopt);
  EXPECT_EQ(rest("bills", "work/bills", Match::exact), std::nullopt);
}

TEST(QNTagName, LooselyCaseAndAccentsDoNotCount) {
  EXPECT_EQ(rest("BÜRO", "buro/Ä", Match::exact), std::nullopt);
  EXPECT_EQ(rest("BÜRO", "buro/Ä", Match::loose), "/Ä");
}

TEST(QNTagName, LooselyTheNameIsOneThatAnItemTakes) {
  EXPECT_EQ(rest("/home//bills/ ", "home/bills", Match::loose), "");
  EXPECT_EQ(rest("/home//bills/ ", "home/bills", Match::exact), std::nullopt);
}

TEST(QNTagName, ATagThatNoItemWouldTakeCanBeNamedAsItIs) {
  EXPECT_EQ(rest("", "", Match::exact), "");
  EXPECT_EQ(rest("", "work", Match::exact), std::nullopt);
  EXPECT_EQ(rest("/", "/", Match::exact), "");
  EXPECT_EQ(rest(" a", " a/b", Match::exact), "/b");
}

TEST(QNTagName, ATagIsCleanedAsAnItemTakesIt) {
  EXPECT_EQ(cleanedTag("/home//bills/ "), "home/bills");
  EXPECT_EQ(cleanedTag("my\ttag"), "mytag");
}

TEST(QNTagName, OfSeparatorsAndWhiteSpaceAloneNothingIsLeftAndNothingIsLogged) {
  const MRCapturingSink sink;
  for (const char* const tag : {"", " ", "//", " / \\ ", "\t", "\u00A0/\n"}) {
    EXPECT_EQ(cleanedTag(tag), std::nullopt) << tag;
  }
  EXPECT_TRUE(sink.records().empty());
}

}  // namespace
}  // namespace quillon
