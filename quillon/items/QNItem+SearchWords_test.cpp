#include "quillon/items/QNPredicateCache.h"
#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/text/QNCharacterSet.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(QNItemSearchWords, AreSeparatedByWhatIsNotAlphanumeric) {
  EXPECT_THAT(QNItem::helperSearchWordSeparators().piecesOf("a-b 2.c"),
              ElementsAre("a", "b", "2", "c"));
}

TEST(QNItemSearchWords, AreThoseOfTheTitleInSmallLetters) {
  EXPECT_THAT(itemTitled("My CAFÉ my")->helperSearchWords(), ElementsAre("café", "my"));
}

TEST(QNItemSearchWords, OneIsEmptyWhereSeparatorsMeetOrStandAtAnEnd) {
  EXPECT_THAT(itemTitled("my, bank")->helperSearchWords(), ElementsAre("", "bank", "my"));
  EXPECT_THAT(itemTitled("bank!")->helperSearchWords(), ElementsAre("", "bank"));
  EXPECT_THAT(itemTitled("")->helperSearchWords(), ElementsAre(""));
}

TEST(QNItemSearchWords, AreThoseOfTheHostsToo) {
  const auto item = itemTitled("My Bank");
  item->addURLString("https://www.Example.com/login");
  item->addURLString("mailto");
  item->addURLString("https:///x");

  EXPECT_THAT(item->helperSearchWords(),
              ElementsAre("bank", "com", "example", "mailto", "my", "www"));
}

TEST(QNItemSearchWords, AreMadeAnewForANewTitle) {
  const auto item = itemTitled("My Bank");
  EXPECT_THAT(item->helperSearchWords(), ElementsAre("bank", "my"));

  item->setTitle("Shop");

  EXPECT_THAT(item->helperSearchWords(), ElementsAre("shop"));
}

TEST(QNItemSearchWords, AreMadeAnewForAnotherListOfAddresses) {
  const auto item = itemTitled("My Bank");
  EXPECT_THAT(item->helperSearchWords(), ElementsAre("bank", "my"));

  item->addURLString("https://a.example/");
  EXPECT_THAT(item->helperSearchWords(), ElementsAre("a", "bank", "example", "my"));
  item->addURLString("https://b.example/");
  EXPECT_THAT(item->helperSearchWords(), ElementsAre("a", "b", "bank", "example", "my"));
  item->removeURL(item->URLAtIndex(0));
  EXPECT_THAT(item->helperSearchWords(), ElementsAre("b", "bank", "example", "my"));
  item->removeURLAtIndex(0);

  EXPECT_THAT(item->helperSearchWords(), ElementsAre("bank", "my"));
}

TEST(QNItemSearchWords, StayWhateverElseChanges) {
  const auto item = itemTitled("My Bank");
  item->addURLString("https://a.example/");
  item->addURLString("https://d.example/");
  const auto words = item->helperSearchWords();

  item->URLAtIndex(0)->setURLString("https://b.example/");
  item->setURLString("https://c.example/");
  item->setAdditionalInformation("Ann");
  item->moveURL(item->URLAtIndex(1), 0);
  item->copyOverview(jsonObject(R"({"title":"Other"})"));
  item->setOverviewData(std::nullopt);
  EXPECT_TRUE(item->overviewMatchesLowercaseString("ban"));

  EXPECT_EQ(item->helperSearchWords(), words);
}

TEST(QNItemSearchWords, WithoutLoadedAddressesAreThoseOfTheTitleAndStaySo) {
  const auto vault = localVault();
  const auto row = itemTitled("My Bank");
  row->setProfile(vault);
  row->addURLString("https://a.example/");
  save(*row);
  const auto item = listed(*row, vault);
  {
    const MRCapturingSink sink;
    EXPECT_THAT(item->helperSearchWords(), ElementsAre("bank", "my"));
    EXPECT_THAT(assertions(sink), ElementsAre("Item URLs must be loaded"));
  }
  const MRCapturingSink sink;
  item->markLoadingDetails();
  item->markDetailsLoaded();

  EXPECT_THAT(item->helperSearchWords(), ElementsAre("bank", "my"));
  EXPECT_THAT(assertions(sink), IsEmpty());
}

class QNItemSearchAddresses : public testing::TestWithParam<bool> {};

TEST_P(QNItemSearchAddresses, AreReadWhileDetailsAreLoadingAndAreNoneBefore) {
  const bool loading = GetParam();
  const auto vault = localVault();
  const auto row = itemTitled("My Bank");
  row->setProfile(vault);
  row->addURLString("https://a.example/");
  save(*row);
  const auto item = listed(*row, vault);
  if (loading) {
    item->markLoadingDetails();
    item->addURLString("https://a.example/");
    item->URLAtIndex(0)->setNakedHash("H");
  }
  const MRCapturingSink sink;

  EXPECT_EQ(item->URLStringsForSearch().size(), loading ? 1u : 0u);
  EXPECT_EQ(item->nakedHashesForSearch().size(), loading ? 1u : 0u);
  EXPECT_EQ(item->matchesHelperSearchStrings({"a.example"}, false), loading);

  const std::vector<std::string> reports(loading ? 0 : 3, "Item URLs must be loaded");
  EXPECT_EQ(assertions(sink), reports);
}

INSTANTIATE_TEST_SUITE_P(, QNItemSearchAddresses, testing::Bool(),
                         [](const auto& tested) { return tested.param ? "Loading" : "NotLoaded"; });

TEST(QNItemSearchWords, AStringOfOneWordMatchesInsideOfAWordOrAtItsBeginning) {
  const auto item = itemTitled("My Bank");

  EXPECT_TRUE(item->matchesHelperSearchStrings({"ban"}, true));
  EXPECT_FALSE(item->matchesHelperSearchStrings({"ank"}, true));
  EXPECT_TRUE(item->matchesHelperSearchStrings({"ban"}, false));
  EXPECT_TRUE(item->matchesHelperSearchStrings({"ank"}, false));
  EXPECT_FALSE(item->matchesHelperSearchStrings({"bang"}, false));
}

TEST(QNItemSearchWords, AStringOfOneWordOverlooksDiacritics) {
  const auto item = itemTitled("My Café");

  EXPECT_TRUE(item->matchesHelperSearchStrings({"cafe"}, true));
  EXPECT_TRUE(item->matchesHelperSearchStrings({"afe"}, false));
}

TEST(QNItemSearchWords, AStringWithASeparatorIsLookedForExactly) {
  const auto item = itemTitled("My Café");

  EXPECT_FALSE(item->matchesHelperSearchStrings({"my cafe"}, false));
  EXPECT_TRUE(item->matchesHelperSearchStrings({"my café"}, false));
  EXPECT_TRUE(item->matchesHelperSearchStrings({"y c"}, true));
  EXPECT_FALSE(item->matchesHelperSearchStrings({"café my"}, false));
}

TEST(QNItemSearchWords, ATitleWithSuchAStringDecidesForAllThatFollow) {
  const auto item = itemTitled("My Bank");

  EXPECT_TRUE(item->matchesHelperSearchStrings({"my bank", "zzz"}, false));
  EXPECT_FALSE(item->matchesHelperSearchStrings({"zzz", "my bank"}, false));
}

TEST(QNItemSearchWords, AHostWithSuchAStringDecidesForItAlone) {
  const auto item = itemTitled("My Bank");
  item->addURLString("https://www.example.com/");

  EXPECT_TRUE(item->matchesHelperSearchStrings({"w.example"}, true));
  EXPECT_TRUE(item->matchesHelperSearchStrings({"example.com", "bank"}, true));
  EXPECT_FALSE(item->matchesHelperSearchStrings({"example.com", "zzz"}, true));
  EXPECT_FALSE(item->matchesHelperSearchStrings({"example.org"}, false));
}

TEST(QNItemSearchWords, EachStringMustMatchAndNoneDoAlways) {
  const auto item = itemTitled("My Bank");

  EXPECT_TRUE(item->matchesHelperSearchStrings({"my", "bank"}, true));
  EXPECT_FALSE(item->matchesHelperSearchStrings({"my", "shop"}, true));
  EXPECT_TRUE(item->matchesHelperSearchStrings({}, true));
  EXPECT_TRUE(item->matchesHelperSearchStrings({}, false));
}

TEST(QNItemSearchWords, TestsOfBeginningsAreNotKept) {
  const auto item = itemTitled("My Bank");
  QNItem::clearCaches();

  EXPECT_TRUE(item->matchesHelperSearchStrings({"ban"}, true));
  EXPECT_EQ(QNItem::predicateCache().count(), 0u);
  EXPECT_TRUE(item->matchesHelperSearchStrings({"ban"}, false));

  EXPECT_EQ(QNItem::predicateCache().count(), 1u);
}

}  // namespace
}  // namespace quillon
