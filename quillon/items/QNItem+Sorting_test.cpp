#include <gmock/gmock.h>

#include <algorithm>

#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/environment/QNUserSettings.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using Items = std::vector<std::shared_ptr<QNItem>>;
using Titles = std::vector<std::string>;

std::shared_ptr<QNItem> itemWithTitle(std::string_view title) {
  auto item = std::make_shared<QNItem>(initNew);
  item->setTitle(title);
  return item;
}

Items itemsWithTitles(const Titles& titles) {
  Items items;
  for (const std::string& title : titles) items.push_back(itemWithTitle(title));
  return items;
}

Titles titlesOf(const Items& items) {
  Titles titles;
  for (const auto& item : items) titles.push_back(item->title());
  return titles;
}

Titles sorted(const Titles& titles) {
  return titlesOf(QNItem::sortAlphabetically(itemsWithTitles(titles)));
}

class QNItemSorting : public testing::Test {
 protected:
  QNScopedLocale _locale{"en-US"};
};

TEST_F(QNItemSorting, FollowsTheUsersLanguageCaseApart) {
  EXPECT_THAT(sorted({"zoo", "Éclair", "apple", "Zebra", "eclipse", "echo"}),
              ElementsAre("apple", "echo", "Éclair", "eclipse", "Zebra", "zoo"));

  const QNScopedLocale swedish("sv-SE");
  EXPECT_THAT(sorted({"ärta", "zebra", "arm"}), ElementsAre("arm", "zebra", "ärta"));
}

TEST_F(QNItemSorting, KeepsTheOrderOfTitlesThatDifferInCaseAlone) {
  EXPECT_THAT(sorted({"bank", "Bank", "BANK", "atm", "Bank"}),
              ElementsAre("atm", "bank", "Bank", "BANK", "Bank"));
}

TEST_F(QNItemSorting, PutsDigitsPunctuationSymbolsAndEmptyTitlesBehindAllOthers) {
  const Titles titles{"9 lives", "zebra", "", "#1", "€uro", "apple", "(old)"};

  EXPECT_THAT(sorted(titles), ElementsAre("apple", "zebra", "", "(old)", "#1", "€uro", "9 lives"));
}

TEST_F(QNItemSorting, PutsThemWhereTheyBelongIfTheUserWantsIt) {
  const QNScopedUserSetting setting(true, QNPrefAdvancedHashSectionIsSortedFirst);
  const Titles titles{"9 lives", "zebra", "", "#1", "apple"};

  EXPECT_THAT(sorted(titles), ElementsAre("", "#1", "9 lives", "apple", "zebra"));
}

/// Whoever asks for its title finds the user's setting changed.
class ItemThatChangesTheSetting final : public QNItem {
 public:
  using QNItem::QNItem;
  std::string title() override {
    QNUserSettings::sharedSettings().setBool(true, QNPrefAdvancedHashSectionIsSortedFirst);
    return QNItem::title();
  }
};

TEST_F(QNItemSorting, ReadsTheUsersSettingOnceACall) {
  const QNScopedUserSetting setting(false, QNPrefAdvancedHashSectionIsSortedFirst);
  const auto first = std::make_shared<ItemThatChangesTheSetting>(initNew);
  first->setTitle("apple");
  const Items items{first, itemWithTitle("1")};

  EXPECT_THAT(titlesOf(QNItem::sortAlphabetically(items)), ElementsAre("apple", "1"));
  EXPECT_THAT(titlesOf(QNItem::sortAlphabetically(items)), ElementsAre("1", "apple"));
}

TEST_F(QNItemSorting, TakesASymbolOfTwoCodeUnitsForNone) {
  EXPECT_THAT(sorted({"apple", "😀 smile", "1"}), ElementsAre("😀 smile", "apple", "1"));
}

TEST_F(QNItemSorting, SortsAnItemWithoutATitleByTheWordsForIt) {
  Items items = itemsWithTitles({"zebra", "apple"});
  items.push_back(std::make_shared<QNItem>(initNew));

  EXPECT_THAT(titlesOf(QNItem::sortAlphabetically(items)),
              ElementsAre("apple", "Unnamed", "zebra"));
}

TEST_F(QNItemSorting, LeavesOutNulls) {
  EXPECT_THAT(titlesOf(QNItem::sortAlphabetically({nullptr, itemWithTitle("a"), nullptr})),
              ElementsAre("a"));
  EXPECT_THAT(QNItem::sortAlphabetically({}), IsEmpty());
}

TEST_F(QNItemSorting, MovesFavoritesToTheFrontOnlyWhenAsked) {
  Items items = itemsWithTitles({"d", "b", "1", "c", "a"});
  items[0]->setFaveIndex(1);
  items[2]->setFaveIndex(7);
  items[3]->setFaveIndex(3);

  EXPECT_THAT(titlesOf(QNItem::sortAlphabetically(items, true)),
              ElementsAre("c", "d", "1", "a", "b"));
  EXPECT_THAT(titlesOf(QNItem::sortAlphabetically(items, false)),
              ElementsAre("a", "b", "c", "d", "1"));
}

TEST_F(QNItemSorting, IsThatOfTheComparisonForTextsOfEveryShape) {
  const Titles titles{"日本",      "e\u0301", "\u00e9", "a b",  "a\nb", "\xFF",
                      "ß",         "ss",      "Ωmega",  "шифр", "שלום", std::string(300, 'x'),
                      "\u202Emoc", "a",       "A"};
  Titles expected = titles;
  std::stable_sort(expected.begin(), expected.end(), [](const auto& a, const auto& b) {
    return localizedCaseInsensitiveCompare(a, b) < 0;
  });

  EXPECT_THAT(sorted(titles), ElementsAreArray(expected));
}

}  // namespace
}  // namespace quillon
