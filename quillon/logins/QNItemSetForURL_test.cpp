#include "quillon/logins/QNItemSetForURL.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quillon/items/QNItem.h"
#include "quillon/items/QNItemConstants.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/logins/QNPassword.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/vaults/QNProfile.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class QNItemSetForURLTest : public testing::Test {
 protected:
  template <class Item>
  std::shared_ptr<Item> titled(std::string_view title) {
    auto item = std::make_shared<Item>(initNew);
    item->setProfile(_vault);
    item->setTitle(title);
    return item;
  }
  QNItemSetForURL::Items logins(std::initializer_list<std::string_view> titles) {
    QNItemSetForURL::Items items;
    for (const std::string_view title : titles) items.push_back(titled<QNLogin>(title));
    return items;
  }
  QNItemSetForURL::Items passwords(std::initializer_list<std::string_view> titles) {
    QNItemSetForURL::Items items;
    for (const std::string_view title : titles) items.push_back(titled<QNPassword>(title));
    return items;
  }
  static std::vector<std::string> titlesOf(const QNItemSetForURL::Items& items) {
    std::vector<std::string> titles;
    for (const auto& item : items) titles.push_back(item->title());
    return titles;
  }

  const QNScopedLocale _english{"en-US"};
  std::shared_ptr<QNProfile> _vault = QNProfile::initNewWithPassword(DEMO_PASSWORD);
};

TEST_F(QNItemSetForURLTest, KeepsTheAddressThatItIsMadeWith) {
  EXPECT_EQ(QNItemSetForURL("https://example.com").URLString, "https://example.com");
  EXPECT_EQ(QNItemSetForURL().URLString, std::nullopt);
  EXPECT_EQ(QNItemSetForURL("https://example.com").sortDescriptors.size(), 3u);
}

TEST_F(QNItemSetForURLTest, FindsNothingInNothing) {
  QNItemSetForURL set;
  EXPECT_THAT(set.matchingItems(), IsEmpty());
  EXPECT_EQ(set.topLevelToDisplay(), 0u);

  QNItemSetForURL limited;
  limited.limitMatchesToDerivedDomain = true;
  EXPECT_THAT(limited.matchingItems(), IsEmpty());
  EXPECT_EQ(limited.topLevelToDisplay(), 0u);
}

TEST_F(QNItemSetForURLTest, SortsAFavouriteBeforeAnyOther) {
  QNItemSetForURL set;
  set.derivedLogins = logins({"a", "z", "y"});
  set.derivedLogins[1]->setFaveIndex(2);
  set.derivedLogins[2]->setFaveIndex(1);

  EXPECT_THAT(titlesOf(set.matchingItems()), ElementsAre("y", "z", "a"));
}

TEST_F(QNItemSetForURLTest, SortsTitlesAsTheLanguageDoesCaseApart) {
  QNItemSetForURL set;
  set.derivedLogins = logins({"b", "Zebra", "A", "äpfel"});

  EXPECT_THAT(titlesOf(set.matchingItems()), ElementsAre("A", "äpfel", "b", "Zebra"));
}

TEST_F(QNItemSetForURLTest, SortsTheOlderOfTwoEqualTitlesFirst) {
  QNItemSetForURL set;
  set.derivedLogins = logins({"a", "A"});
  set.derivedLogins[0]->setCreatedAt(200);
  set.derivedLogins[1]->setCreatedAt(100);

  EXPECT_THAT(titlesOf(set.matchingItems()), ElementsAre("A", "a"));
}

TEST_F(QNItemSetForURLTest, SortsByTheDescriptorsThatItIsGiven) {
  QNItemSetForURL set;
  set.sortDescriptors = {[](QNItem& a, QNItem& b) { return -a.title().compare(b.title()); }};
  set.derivedLogins = logins({"a", "c", "b"});

  EXPECT_THAT(titlesOf(set.matchingItems()), ElementsAre("c", "b", "a"));
}

TEST_F(QNItemSetForURLTest, ListsDerivedBeforeNakedLoginsWhenLimited) {
  QNItemSetForURL set;
  set.limitMatchesToDerivedDomain = true;
  set.derivedLogins = logins({"y", "x"});
  set.nakedLogins = logins({"b", "a"});

  EXPECT_THAT(titlesOf(set.matchingItems()), ElementsAre("x", "y", "a", "b"));
  EXPECT_EQ(set.topLevelToDisplay(), 2u);
}

TEST_F(QNItemSetForURLTest, ShowsTheNakedLoginsAtTheTopWithoutDerivedOnes) {
  QNItemSetForURL set;
  set.limitMatchesToDerivedDomain = true;
  set.nakedLogins = logins({"b", "a", "c"});

  EXPECT_THAT(titlesOf(set.matchingItems()), ElementsAre("a", "b", "c"));
  EXPECT_EQ(set.topLevelToDisplay(), 3u);
}

TEST_F(QNItemSetForURLTest, StopsAtASingleDerivedLoginInQuickFill) {
  QNItemSetForURL set;
  set.limitMatchesToDerivedDomain = true;
  set.quickFillMode = true;
  set.derivedLogins = logins({"only"});
  set.nakedLogins = logins({"naked"});

  EXPECT_THAT(titlesOf(set.matchingItems()), ElementsAre("only"));
  EXPECT_EQ(set.topLevelToDisplay(), 1u);
}

TEST_F(QNItemSetForURLTest, GoesOnInQuickFillWithNoneOrSeveralDerivedLogins) {
  QNItemSetForURL none;
  none.limitMatchesToDerivedDomain = none.quickFillMode = true;
  none.nakedLogins = logins({"naked"});
  QNItemSetForURL several;
  several.limitMatchesToDerivedDomain = several.quickFillMode = true;
  several.derivedLogins = logins({"a", "b"});
  several.nakedLogins = logins({"naked"});

  EXPECT_THAT(titlesOf(none.matchingItems()), ElementsAre("naked"));
  EXPECT_THAT(titlesOf(several.matchingItems()), ElementsAre("a", "b", "naked"));
  EXPECT_EQ(several.topLevelToDisplay(), 2u);
}

TEST_F(QNItemSetForURLTest, FallsBackOnPasswordsAndShowsTheDerivedOnesAtTheTop) {
  QNItemSetForURL set;
  set.limitMatchesToDerivedDomain = true;
  set.derivedPasswords = passwords({"y", "x"});
  set.nakedPasswords = passwords({"b", "a"});

  EXPECT_THAT(titlesOf(set.matchingItems()), ElementsAre("x", "y", "a", "b"));
  EXPECT_EQ(set.topLevelToDisplay(), 2u);
}

TEST_F(QNItemSetForURLTest, ShowsNothingAtTheTopWithNakedPasswordsOnly) {
  QNItemSetForURL set;
  set.limitMatchesToDerivedDomain = true;
  set.nakedPasswords = passwords({"a"});

  EXPECT_THAT(titlesOf(set.matchingItems()), ElementsAre("a"));
  EXPECT_EQ(set.topLevelToDisplay(), 0u);
}

TEST_F(QNItemSetForURLTest, LeavesPasswordsOutBesideAnyLogin) {
  QNItemSetForURL limited;
  limited.limitMatchesToDerivedDomain = true;
  limited.nakedLogins = logins({"login"});
  limited.derivedPasswords = passwords({"password"});
  QNItemSetForURL all;
  all.nakedLogins = logins({"login"});
  all.derivedPasswords = passwords({"password"});

  EXPECT_THAT(titlesOf(limited.matchingItems()), ElementsAre("login"));
  EXPECT_THAT(titlesOf(all.matchingItems()), ElementsAre("login"));
}

TEST_F(QNItemSetForURLTest, SortsAllLoginsTogetherWhenNotLimited) {
  QNItemSetForURL set;
  set.quickFillMode = true;
  set.derivedLogins = logins({"m"});
  set.nakedLogins = logins({"z", "a"});

  EXPECT_THAT(titlesOf(set.matchingItems()), ElementsAre("a", "m", "z"));
  EXPECT_EQ(set.topLevelToDisplay(), 0u);
}

TEST_F(QNItemSetForURLTest, SortsAllPasswordsTogetherWhenNotLimited) {
  QNItemSetForURL set;
  set.derivedPasswords = passwords({"m"});
  set.nakedPasswords = passwords({"z", "a"});

  EXPECT_THAT(titlesOf(set.matchingItems()), ElementsAre("a", "m", "z"));
  EXPECT_EQ(set.topLevelToDisplay(), 0u);
}

TEST_F(QNItemSetForURLTest, DropsLoginsThatAreNeverOfferedWhenAsked) {
  for (const bool limited : {true, false}) {
    QNItemSetForURL set;
    set.limitMatchesToDerivedDomain = limited;
    set.limitMatchesToRegularScope = true;
    set.derivedLogins = logins({"kept", "never"});
    set.derivedLogins[1]->setScope(std::string(QNItemScopeNever));
    set.nakedLogins = logins({"never either"});
    set.nakedLogins[0]->setScope(std::string(QNItemScopeNever));

    EXPECT_THAT(titlesOf(set.matchingItems()), ElementsAre("kept")) << limited;
  }
}

TEST_F(QNItemSetForURLTest, KeepsLoginsThatAreNeverOfferedUnlessAsked) {
  QNItemSetForURL set;
  set.derivedLogins = logins({"never"});
  set.derivedLogins[0]->setScope(std::string(QNItemScopeNever));

  EXPECT_THAT(titlesOf(set.matchingItems()), ElementsAre("never"));
}

TEST_F(QNItemSetForURLTest, CountsOnlyTheKeptLoginsAtTheTop) {
  QNItemSetForURL set;
  set.limitMatchesToDerivedDomain = true;
  set.limitMatchesToRegularScope = true;
  set.derivedLogins = logins({"kept", "never"});
  set.derivedLogins[1]->setScope(std::string(QNItemScopeNever));

  EXPECT_EQ(set.topLevelToDisplay(), 1u);
}

TEST_F(QNItemSetForURLTest, ShowsTheNakedLoginsAtTheTopWhenNoDerivedOneIsOffered) {
  QNItemSetForURL set;
  set.limitMatchesToDerivedDomain = set.limitMatchesToRegularScope = true;
  set.derivedLogins = logins({"never", "never either"});
  for (const auto& login : set.derivedLogins) login->setScope(std::string(QNItemScopeNever));
  set.nakedLogins = logins({"b", "a"});

  EXPECT_THAT(titlesOf(set.matchingItems()), ElementsAre("a", "b"));
  EXPECT_EQ(set.topLevelToDisplay(), 2u);
}

TEST_F(QNItemSetForURLTest, StopsInQuickFillAtTheOnlyDerivedLoginThatIsOffered) {
  QNItemSetForURL set;
  set.limitMatchesToDerivedDomain = set.limitMatchesToRegularScope = set.quickFillMode = true;
  set.derivedLogins = logins({"never", "regular"});
  set.derivedLogins[0]->setScope(std::string(QNItemScopeNever));
  set.nakedLogins = logins({"naked"});

  EXPECT_THAT(titlesOf(set.matchingItems()), ElementsAre("regular"));
  EXPECT_EQ(set.topLevelToDisplay(), 1u);
}

TEST_F(QNItemSetForURLTest, FallsBackOnPasswordsWhenNoLoginIsOffered) {
  for (const bool limited : {true, false}) {
    QNItemSetForURL set;
    set.limitMatchesToDerivedDomain = limited;
    set.limitMatchesToRegularScope = true;
    set.derivedLogins = logins({"never"});
    set.derivedLogins[0]->setScope(std::string(QNItemScopeNever));
    set.nakedLogins = logins({"never either"});
    set.nakedLogins[0]->setScope(std::string(QNItemScopeNever));
    set.derivedPasswords = passwords({"a"});
    set.nakedPasswords = passwords({"b"});

    EXPECT_THAT(titlesOf(set.matchingItems()), ElementsAre("a", "b")) << limited;
    EXPECT_EQ(set.topLevelToDisplay(), limited ? 1u : 0u);
  }
}

TEST_F(QNItemSetForURLTest, KeepsPasswordsWhateverTheirScope) {
  for (const bool limited : {true, false}) {
    QNItemSetForURL set;
    set.limitMatchesToDerivedDomain = limited;
    set.limitMatchesToRegularScope = true;
    set.derivedPasswords = passwords({"never"});
    set.derivedPasswords[0]->setScope(std::string(QNItemScopeNever));

    EXPECT_THAT(titlesOf(set.matchingItems()), ElementsAre("never")) << limited;
  }
}

TEST_F(QNItemSetForURLTest, ComputesItsResultOnce) {
  QNItemSetForURL set;
  set.limitMatchesToDerivedDomain = true;
  set.derivedLogins = logins({"a"});
  ASSERT_EQ(set.topLevelToDisplay(), 1u);

  set.derivedLogins = logins({"b", "c"});

  EXPECT_THAT(titlesOf(set.matchingItems()), ElementsAre("a"));
  EXPECT_EQ(set.topLevelToDisplay(), 1u);
}

TEST_F(QNItemSetForURLTest, FiltersAndSortsASetOfLogins) {
  const auto all = logins({"b", "never", "a"});
  all[1]->setScope(std::string(QNItemScopeNever));
  const auto descriptors = QNItemSetForURL().sortDescriptors;

  EXPECT_THAT(titlesOf(QNItemSetForURL::filterLogins(all, descriptors, true)),
              ElementsAre("a", "b"));
  EXPECT_THAT(titlesOf(QNItemSetForURL::filterLogins(all, descriptors, false)),
              ElementsAre("a", "b", "never"));
}

}  // namespace
}  // namespace quillon
