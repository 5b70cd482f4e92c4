#include "quillon/lists/QNItemList.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "quillon/lists/QNItemSorter.h"
#include "quillon/lists/internal/QNListTesting.h"
#include "quillon/platform/data/QNNotFound.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Items = QNItemList::Items;
using Sections = QNItemList::Sections;

/// Titles in their order, in sections of their first letters.
class TitleSorter final : public QNItemSorter {
 public:
  std::string identifier() const override { return "title"; }
  std::string persistableIdentifier() const override { return "title"; }
  std::string title() const override { return "Title"; }
  bool isAscending() const override { return _ascending; }
  void setIsAscending(bool ascending) override { _ascending = ascending; }
  bool showsIndexForSectionTitle() const override { return true; }
  std::string sectionTitleForObject(QNItem& item) const override { return item.sectionName(); }
  std::string titleForObject(QNItem& item) const override { return item.title(); }
  std::string subtitleForObject(QNItem& item) const override { return *item.subtitle(); }
  Items sortObjects(Items items) const override {
    ++numberOfSorts;
    items = QNItem::sortAlphabetically(std::move(items));
    if (!_ascending) std::reverse(items.begin(), items.end());
    return items;
  }
  std::string ascendingDescription() const override { return "A to Z"; }
  std::string ascendingShortDescription() const override { return "A–Z"; }
  std::string descendingDescription() const override { return "Z to A"; }
  std::string descendingShortDescription() const override { return "Z–A"; }

  mutable int numberOfSorts = 0;

 private:
  bool _ascending = true;
};

std::shared_ptr<QNItemListSection> section(std::string name, Items items = {}) {
  return std::make_shared<QNItemListSection>(std::move(items), std::move(name));
}

std::vector<std::string> titlesIn(const std::shared_ptr<QNItemListSection>& section) {
  std::vector<std::string> titles;
  for (const auto& item : section->items()) titles.push_back(item->title());
  return titles;
}

std::vector<std::string> uuidsIn(const Items& items) {
  std::vector<std::string> uuids;
  for (const auto& item : items) uuids.push_back(*item->uuid());
  return uuids;
}

class QNItemListTest : public testing::Test {
 protected:
  QNScopedLocale _locale{"en-US"};
};

// Making

TEST_F(QNItemListTest, PutsSortedItemsIntoTheSectionsOfTheSorter) {
  const auto list = QNItemList::initWithItems(
      {listedItem("1", "beta"), listedItem("2", "9 lives"), listedItem("3", "Alpha"),
       listedItem("4", "atom"), listedItem("5", "Bravo")},
      TitleSorter());

  EXPECT_THAT(list->sectionIndexTitles(), ElementsAre("A", "B", "#"));
  ASSERT_EQ(list->sections().size(), 3u);
  EXPECT_THAT(titlesIn(list->sections()[0]), ElementsAre("Alpha", "atom"));
  EXPECT_THAT(titlesIn(list->sections()[1]), ElementsAre("beta", "Bravo"));
  EXPECT_THAT(titlesIn(list->sections()[2]), ElementsAre("9 lives"));
}

TEST_F(QNItemListTest, PutsAnItemIntoItsSectionAgainAfterAnother) {
  const auto list = QNItemList::initWithItems(
      {listedItem("1", "echo"), listedItem("2", "élan"), listedItem("3", "ember")}, TitleSorter());

  EXPECT_THAT(list->sectionIndexTitles(), ElementsAre("E", "É"));
  ASSERT_EQ(list->sections().size(), 2u);
  EXPECT_THAT(titlesIn(list->sections()[0]), ElementsAre("echo", "ember"));
  EXPECT_THAT(titlesIn(list->sections()[1]), ElementsAre("élan"));
}

TEST_F(QNItemListTest, OrdersSectionsByTheirFirstItem) {
  TitleSorter sorter;
  sorter.setIsAscending(false);

  const auto list = QNItemList::initWithItems(
      {listedItem("1", "alpha"), listedItem("2", "9 lives"), listedItem("3", "beta")}, sorter);

  EXPECT_THAT(list->sectionIndexTitles(), ElementsAre("#", "B", "A"));
}

TEST_F(QNItemListTest, OfNoItemsHasNoSectionsAndAsksNobody) {
  const TitleSorter sorter;

  const auto list = QNItemList::initWithItems({}, sorter);

  EXPECT_TRUE(list->isEmpty());
  EXPECT_THAT(list->sections(), IsEmpty());
  EXPECT_THAT(list->sectionIndexTitles(), IsEmpty());
  EXPECT_EQ(list->numberOfItems(), 0u);
  EXPECT_EQ(sorter.numberOfSorts, 0);
}

TEST_F(QNItemListTest, LeavesOutNullItems) {
  const auto list =
      QNItemList::initWithItems({nullptr, listedItem("1", "alpha"), nullptr}, TitleSorter());

  EXPECT_EQ(list->numberOfItems(), 1u);
  EXPECT_TRUE(QNItemList::initWithItems({nullptr}, TitleSorter())->isEmpty());
}

TEST_F(QNItemListTest, HoldsSearchResultsInOneSectionInTheirOrder) {
  const auto list =
      QNItemList::initWithSearchResults({listedItem("1", "zebra"), listedItem("2", "alpha")});

  EXPECT_THAT(list->sectionIndexTitles(), ElementsAre("{search}"));
  EXPECT_THAT(titlesIn(list->sections()[0]), ElementsAre("zebra", "alpha"));
  EXPECT_FALSE(list->showsSearchSection());
}

TEST_F(QNItemListTest, OfNoSearchResultsHasTheirSectionAllTheSame) {
  const auto list = QNItemList::initWithSearchResults({});

  EXPECT_THAT(list->sectionIndexTitles(), ElementsAre("{search}"));
  EXPECT_FALSE(list->isEmpty());
  EXPECT_EQ(list->numberOfItems(), 0u);
}

TEST_F(QNItemListTest, TakesSectionsAsTheyAre) {
  const auto a = section("A");
  Sections sections{a, nullptr, section("B")};

  const auto list = QNItemList::initWithSections(sections);
  sections.clear();

  EXPECT_THAT(list->sectionIndexTitles(), ElementsAre("A", "B"));
  EXPECT_EQ(list->sections()[0], a);
  EXPECT_FALSE(list->isEmpty());
  EXPECT_TRUE(QNItemList::initWithSections({})->isEmpty());
}

TEST_F(QNItemListTest, IsCopiedWithCopiesOfItsSections) {
  const auto list = QNItemList::initWithSections({section("A", {listedItem("1")})});
  list->setCategoryId(5);

  const auto copy = list->mutableCopy();
  list->sections()[0]->addItem(listedItem("2"));
  list->removeSectionAtIndex(0);

  EXPECT_THAT(copy->sectionIndexTitles(), ElementsAre("A"));
  EXPECT_THAT(uuidsIn(copy->allItems()), ElementsAre("1"));
  EXPECT_EQ(list->categoryId(), 5u);
  EXPECT_EQ(copy->categoryId(), 0u);
}

TEST_F(QNItemListTest, ACopyHasTheSearchSectionAndDoesNotShowIt) {
  const auto list = QNItemList::initWithSections({section("A")});
  list->setShowsSearchSection(true);

  const auto copy = list->mutableCopy();

  EXPECT_FALSE(copy->showsSearchSection());
  EXPECT_THAT(copy->sectionIndexTitles(), ElementsAre("{search}", "A"));
}

TEST_F(QNItemListTest, DescribesItselfAndItsSections) {
  const auto a = section("A", {listedItem("1")});
  const auto b = section("B");
  const auto list = QNItemList::initWithSections({a, b});

  EXPECT_EQ(list->description(),
            fmt::format("<QNItemList: {}, sections: ({}, {})>", fmt::ptr(list.get()),
                        a->description(), b->description()));
}

// Items

TEST_F(QNItemListTest, GivesAllItemsSectionAfterSection) {
  const auto list = QNItemList::initWithSections({section("A", {listedItem("2"), listedItem("1")}),
                                                  section("B"), section("C", {listedItem("3")})});

  EXPECT_THAT(uuidsIn(list->allItems()), ElementsAre("2", "1", "3"));
  EXPECT_EQ(list->numberOfItems(), 3u);
}

TEST_F(QNItemListTest, FindsItemsByPathAndGivesNothingBeyond) {
  const auto item = listedItem("1");
  const auto list = QNItemList::initWithSections({section("A"), section("B", {item})});

  EXPECT_EQ(list->itemAtIndexPath(QNIndexPath{0, 1}), item);
  EXPECT_EQ(list->itemAtIndexPath(QNIndexPath{1, 1}), nullptr);
  EXPECT_EQ(list->itemAtIndexPath(QNIndexPath{0, 0}), nullptr);
  EXPECT_EQ(list->itemAtIndexPath(QNIndexPath{0, 2}), nullptr);
  EXPECT_EQ(list->itemAtIndexPath(std::nullopt), nullptr);
}

TEST_F(QNItemListTest, FindsTheFirstSectionThatHasAnItem) {
  const auto list = QNItemList::initWithSections({section("A", {listedItem("1")}),
                                                  section("B", {listedItem("2"), listedItem("3")}),
                                                  section("C", {listedItem("3")})});

  EXPECT_EQ(list->indexPathForItemWithSpecifier(specifierOf("3")), (QNIndexPath{1, 1}));
  EXPECT_EQ(list->indexPathForItemWithSpecifier(specifierOf("4")), std::nullopt);
  EXPECT_EQ(list->indexPathForItemWithSpecifier(nullptr), std::nullopt);
}

TEST_F(QNItemListTest, FindsAnItemAfterItsSectionChanged) {
  const auto a = section("A", {listedItem("1"), listedItem("2")});
  const auto list = QNItemList::initWithSections({a});
  ASSERT_EQ(list->indexPathForItemWithSpecifier(specifierOf("2")), (QNIndexPath{1, 0}));

  a->removeItemAtIndex(0);

  EXPECT_EQ(list->indexPathForItemWithSpecifier(specifierOf("2")), (QNIndexPath{0, 0}));
  EXPECT_EQ(list->indexPathForItemWithSpecifier(specifierOf("1")), std::nullopt);
}

TEST_F(QNItemListTest, WalksItsItemsInOrder) {
  const auto list = QNItemList::initWithSections(
      {section("A", {listedItem("1")}), section("B", {listedItem("2"), listedItem("3")})});
  Items seen;

  list->enumerateItemsUsingBlock([&seen](const auto& item) { seen.push_back(item); });

  EXPECT_THAT(uuidsIn(seen), ElementsAre("1", "2", "3"));
}

TEST_F(QNItemListTest, EndsItsWalkWhereItIsStopped) {
  const auto list = QNItemList::initWithSections(
      {section("A", {listedItem("1"), listedItem("2"), listedItem("3")}),
       section("B", {listedItem("4")})});
  for (const std::size_t most : {1u, 2u, 3u}) {
    Items seen;
    list->enumerateItemsUsingCancelableBlock([&seen, most](const auto& item, bool& stop) {
      EXPECT_FALSE(stop);
      seen.push_back(item);
      stop = seen.size() == most;
    });
    EXPECT_EQ(seen.size(), most);
  }
}

TEST_F(QNItemListTest, WalksForNobodyWithoutFailing) {
  const auto list = QNItemList::initWithSections({section("A", {listedItem("1")})});

  EXPECT_NO_THROW(list->enumerateItemsUsingBlock({}));
  EXPECT_NO_THROW(list->enumerateItemsUsingCancelableBlock({}));
}

TEST_F(QNItemListTest, MayBeChangedByWhoWalksIt) {
  const auto list = QNItemList::initWithSections({section("A", {listedItem("1")})});

  list->enumerateItemsUsingBlock([&list](const auto& item) {
    list->sections()[0]->addItem(item);
    list->setShowsSearchSection(true);
  });

  EXPECT_EQ(list->numberOfItems(), 2u);
}

TEST_F(QNItemListTest, AddsAnItemToTheSectionOfItsOwnName) {
  const auto list = QNItemList::initWithSections({section("B"), section("A")});

  list->addItem(listedItem("1", "alpha"));

  EXPECT_THAT(titlesIn(list->sections()[1]), ElementsAre("alpha"));
  EXPECT_THAT(list->sectionIndexTitles(), ElementsAre("B", "A"));
}

TEST_F(QNItemListTest, AddsANewSectionAtTheEnd) {
  const auto list = QNItemList::initWithSections({section("M")});

  list->addItem(listedItem("1", "alpha"));
  list->addItem(listedItem("2", "9 lives"));

  EXPECT_THAT(list->sectionIndexTitles(), ElementsAre("M", "A", "#"));
  EXPECT_EQ(list->indexOfSectionWithName("A"), 1);
  EXPECT_THAT(titlesIn(list->sections()[2]), ElementsAre("9 lives"));
}

TEST_F(QNItemListTest, DropsAnItemThatItHas) {
  const auto list = QNItemList::initWithSections({});

  list->addItem(listedItem("1", "alpha"));
  list->addItem(listedItem("1", "atom"));

  EXPECT_THAT(titlesIn(list->sections()[0]), ElementsAre("alpha"));
}

// An item of another name may be in another section already: nobody looks there.
TEST_F(QNItemListTest, LooksForAnItemInItsOwnSectionAlone) {
  const auto list = QNItemList::initWithSections({section("B", {listedItem("1", "alpha")})});

  list->addItem(listedItem("1", "alpha"));

  EXPECT_THAT(list->sectionIndexTitles(), ElementsAre("B", "A"));
  EXPECT_EQ(list->numberOfItems(), 2u);
}

TEST_F(QNItemListTest, AddsNothingForNull) {
  const auto list = QNItemList::initWithSections({});

  list->addItem(nullptr);

  EXPECT_TRUE(list->isEmpty());
}

TEST_F(QNItemListTest, TakesAnItemWithoutAVaultOrAUuid) {
  const MRCapturingSink log;
  const auto item = std::make_shared<QNItem>(initNew);

  const auto list = QNItemList::initWithItems({item}, TitleSorter());
  list->addItem(std::make_shared<QNItem>(initNew));

  EXPECT_EQ(list->numberOfItems(), 2u);
  EXPECT_EQ(list->indexPathForItemWithSpecifier(specifierOf("")), std::nullopt);
}

// Sections

TEST_F(QNItemListTest, FindsTheLastSectionOfAName) {
  const auto list = QNItemList::initWithSections({section("A"), section("B"), section("A")});

  EXPECT_EQ(list->indexOfSectionWithName("A"), 2);
  EXPECT_EQ(list->indexOfSectionWithName("B"), 1);
  EXPECT_EQ(list->indexOfSectionWithName("C"), 9223372036854775807);
  EXPECT_THAT(list->sectionIndexTitles(), ElementsAre("A", "B", "A"));
}

TEST_F(QNItemListTest, HandsOutSectionTitlesThatNoChangeTouches) {
  const auto list = QNItemList::initWithSections({section("A"), section("B")});

  const auto& titles = list->sectionIndexTitles();
  list->removeSectionAtIndex(0);

  EXPECT_THAT(titles, ElementsAre("A", "B"));
}

TEST_F(QNItemListTest, GivesTheIndexOfATitleBack) {
  const auto list = QNItemList::initWithSections({section("A")});

  EXPECT_EQ(list->sectionForSectionIndexTitle("A", 0), 0);
  EXPECT_EQ(list->sectionForSectionIndexTitle("A", 77), 77);
}

TEST_F(QNItemListTest, ForgetsARemovedSection) {
  const auto list = QNItemList::initWithSections({section("A"), section("B"), section("C")});

  list->removeSectionAtIndex(1);

  EXPECT_THAT(list->sectionIndexTitles(), ElementsAre("A", "C"));
  EXPECT_EQ(list->indexOfSectionWithName("B"), kNotFound);
  EXPECT_EQ(list->indexOfSectionWithName("C"), 1);
}

TEST(QNItemListDeathTest, EndsTheProcessForTheRemovalOfASectionBeyondTheLast) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto list = QNItemList::initWithSections({section("A")});

  EXPECT_DEATH(list->removeSectionAtIndex(1), "index 1 beyond the last of 1");
}

// Search section

TEST_F(QNItemListTest, ShowsAnEmptySearchSectionFirst) {
  const auto list = QNItemList::initWithSections({});

  list->setShowsSearchSection(true);

  EXPECT_TRUE(list->showsSearchSection());
  EXPECT_FALSE(list->isEmpty());
  EXPECT_EQ(list->numberOfItems(), 0u);
  EXPECT_THAT(list->sectionIndexTitles(), ElementsAre("{search}"));
  EXPECT_EQ(list->indexOfSectionWithName(QNItemList::kSearchSectionName), 0);
}

TEST_F(QNItemListTest, AddsOneSearchSectionWhenToldTwice) {
  const auto list = QNItemList::initWithSections({section("A")});

  list->setShowsSearchSection(true);
  list->setShowsSearchSection(true);

  EXPECT_THAT(list->sectionIndexTitles(), ElementsAre("{search}", "A"));
  EXPECT_EQ(list->indexOfSectionWithName("A"), 1);
}

TEST_F(QNItemListTest, AddsASearchSectionBeforeOneThatIsThere) {
  const auto list = QNItemList::initWithSearchResults({listedItem("1")});

  list->setShowsSearchSection(true);

  EXPECT_THAT(list->sectionIndexTitles(), ElementsAre("{search}", "{search}"));
  EXPECT_EQ(list->sections()[0]->numberOfItems(), 0u);
  EXPECT_EQ(list->sections()[1]->numberOfItems(), 1u);
}

TEST_F(QNItemListTest, KeepsSearchResultsWhenToldNotToShowWhatItDoesNotShow) {
  const auto list = QNItemList::initWithSearchResults({listedItem("1")});

  list->setShowsSearchSection(false);

  EXPECT_THAT(list->sectionIndexTitles(), ElementsAre("{search}"));
  EXPECT_EQ(list->numberOfItems(), 1u);
}

TEST_F(QNItemListTest, TakesTheSearchSectionAway) {
  const auto list = QNItemList::initWithSections({section("A")});
  list->setShowsSearchSection(true);

  list->setShowsSearchSection(false);

  EXPECT_FALSE(list->showsSearchSection());
  EXPECT_THAT(list->sectionIndexTitles(), ElementsAre("A"));
  EXPECT_EQ(list->indexOfSectionWithName("A"), 0);
}

TEST_F(QNItemListTest, LeavesAFirstSectionOfAnotherNameAlone) {
  const auto list = QNItemList::initWithSections({section("A")});
  list->setShowsSearchSection(true);
  list->removeSectionAtIndex(0);

  list->setShowsSearchSection(false);

  EXPECT_THAT(list->sectionIndexTitles(), ElementsAre("A"));
}

TEST_F(QNItemListTest, MayLoseItsLastSectionBeforeTheSearchSectionGoes) {
  const auto list = QNItemList::initWithSections({});
  list->setShowsSearchSection(true);
  list->removeSectionAtIndex(0);

  list->setShowsSearchSection(false);

  EXPECT_TRUE(list->isEmpty());
}

TEST_F(QNItemListTest, AddsAnItemOnceToTheSearchSection) {
  const auto list = QNItemList::initWithSections({section("A")});
  list->setShowsSearchSection(true);

  list->addItemToSearchSection(listedItem("1"));
  list->addItemToSearchSection(listedItem("1"));
  list->addItemToSearchSection(nullptr);

  EXPECT_EQ(list->sections()[0]->numberOfItems(), 1u);
  EXPECT_EQ(list->sections()[1]->numberOfItems(), 0u);
}

TEST_F(QNItemListTest, RefusesAnItemForASearchSectionThatItDoesNotShow) {
  const auto list = QNItemList::initWithSearchResults({});
  const MRCapturingSink log;

  list->addItemToSearchSection(listedItem("1"));

  EXPECT_EQ(list->numberOfItems(), 0u);
  EXPECT_THAT(
      log.texts(MRLogKind::assertion),
      ElementsAre("You can't add an item to the search section if showsSearchSection is NO"));
  EXPECT_EQ(log.records().size(), 1u);
  EXPECT_EQ(log.records().front().subsystem, DEBUG_DATABASE);
  EXPECT_EQ(log.records().front().file, "Common/QNItemList");
}

TEST_F(QNItemListTest, RefusesAnItemForASearchSectionThatIsGone) {
  for (const bool another : {true, false}) {
    const auto list = QNItemList::initWithSections({});
    list->setShowsSearchSection(true);
    list->removeSectionAtIndex(0);
    if (another) list->addItem(listedItem("2", "alpha"));
    const std::size_t before = list->numberOfItems();
    const MRCapturingSink log;

    list->addItemToSearchSection(listedItem("1"));

    EXPECT_EQ(list->numberOfItems(), before);
    EXPECT_THAT(log.texts(MRLogKind::assertion),
                ElementsAre("It looks like showsSearchSection is YES, but there doesn't appear to "
                            "be a search section"));
    EXPECT_EQ(log.records().front().subsystem, DEBUG_DATABASE);
    EXPECT_EQ(log.records().front().file, "Common/QNItemList");
  }
}

}  // namespace
}  // namespace quillon
