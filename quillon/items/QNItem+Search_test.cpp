#include <thread>

#include "quillon/fields/QNFieldSection.h"
#include "quillon/items/QNPredicateCache.h"
#include "quillon/items/internal/QNItemSearchTexts.h"
#include "quillon/items/internal/QNMergeTesting.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/internal/QNMemoryWatch.h"
#include "quillon/platform/text/QNCharacterSet.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

/// Something in every place that the contents level looks at.
QNSampleItemRef filledItem(const std::shared_ptr<QNGenericProfile>& vault = localVault()) {
  auto item = newItem(vault);
  item->setTitle("My Bank");
  item->setAdditionalInformation("Ann");
  item->addURLString("https://www.Bank.example/login");
  item->addURLString("https://shop.example/");
  item->setTags({"money/savings"});
  item->setNotesPlain("Crème brûlée");
  addField(*item, "Card", "n1", "4111")->setTitle("number");
  addField(*item, "Card", "n2", "9876", "concealed")->setTitle("code");
  addField(*item, "Card", "n3", "");
  item->addPreviouslyUsedPassword({QNSecret("old secret"), 5});
  item->addPreviouslyUsedPassword({QNSecret(""), 6});
  return item;
}

// Caches

TEST(QNItemSearch, TypedTextIsCutAtWhiteSpace) {
  EXPECT_THAT(QNItem::searchSeparatorSet().piecesOf("my bank\tat-home"),
              ElementsAre("my", "bank", "at-home"));
}

TEST(QNItemSearch, TestsAreKeptUntilTheCachesAreCleared) {
  QNItem::clearCaches();
  const auto test = QNItem::cachedPredicateForSearchString("bank");
  EXPECT_EQ(QNItem::cachedPredicateForSearchString("bank"), test);
  EXPECT_EQ(QNItem::predicateCache().count(), 1u);

  QNItem::clearCaches();

  EXPECT_EQ(QNItem::predicateCache().count(), 0u);
}

TEST(QNItemSearch, EveryLevelAsksTheCache) {
  const auto item = itemTitled("My Bank");
  QNItem::clearCaches();

  EXPECT_TRUE(item->titleMatchesLowercaseString("bank"));
  EXPECT_TRUE(item->overviewMatchesLowercaseString("bank"));
  EXPECT_TRUE(item->contentsMatchesLowercaseString("bank"));

  EXPECT_EQ(QNItem::predicateCache().count(), 1u);
}

TEST(QNItemSearch, ALockForgetsWhatWasSearchedFor) {
  const auto vault = localVault();
  EXPECT_FALSE(newItem(vault)->titleMatchesLowercaseString("a search"));
  EXPECT_GT(QNItem::predicateCache().count(), 0u);

  vault->lock();

  EXPECT_EQ(QNItem::predicateCache().count(), 0u);
}

// Texts of the overview

TEST(QNItemSearch, TheTitleIsInSmallLettersInEveryLanguage) {
  for (const char* const tag : {"en-US", "tr-TR"}) {
    const QNScopedLocale locale(tag);

    EXPECT_EQ(itemTitled("MY CAFÉ IS")->lowercaseTitle(), "my café is") << tag;
  }
}

TEST(QNItemSearch, AnUnnamedItemIsSearchedAsSuch) {
  EXPECT_EQ(newItem(localVault())->lowercaseTitle(), "unnamed");
}

TEST(QNItemSearch, TheOverviewIsTitleHostAndSubtitle) {
  EXPECT_EQ(filledItem()->lowercaseOverviewStringForSearch(), "my bank www.bank.example ann");
}

TEST(QNItemSearch, PartsThatAreEmptyLeaveNoBlank) {
  const auto item = newItem(localVault());
  item->setTitle("");
  EXPECT_EQ(item->lowercaseOverviewStringForSearch(), "");

  item->setTitle("My Bank");
  EXPECT_EQ(item->lowercaseOverviewStringForSearch(), "my bank ");
  item->setAdditionalInformation("ANN");
  EXPECT_EQ(item->lowercaseOverviewStringForSearch(), "my bank ann");
  item->setTitle("");
  EXPECT_EQ(item->lowercaseOverviewStringForSearch(), "ann");
  item->setURLString("HTTPS://A.example/");

  EXPECT_EQ(item->lowercaseOverviewStringForSearch(), "a.example ann");
}

TEST(QNItemSearch, TheOtherFormLeavesTheBlanksOfEmptyParts) {
  const auto item = newItem(localVault());
  item->setTitle("");
  EXPECT_EQ(item->lowercaseOverviewStringForSearch2(), "  ");

  item->setTitle("My Bank");
  EXPECT_EQ(item->lowercaseOverviewStringForSearch2(), "my bank  ");

  EXPECT_EQ(filledItem()->lowercaseOverviewStringForSearch2(), "my bank www.bank.example ann");
}

TEST(QNItemSearch, WhichFormRanFirstDecidesWhatBothGive) {
  const auto one = itemTitled("My Bank");
  const auto two = itemTitled("My Bank");

  EXPECT_EQ(one->lowercaseOverviewStringForSearch(), "my bank ");
  EXPECT_EQ(one->lowercaseOverviewStringForSearch2(), "my bank ");

  EXPECT_EQ(two->lowercaseOverviewStringForSearch2(), "my bank  ");
  EXPECT_EQ(two->lowercaseOverviewStringForSearch(), "my bank  ");
}

TEST(QNItemSearch, AListedItemIsSearchedByTheCopyOfItsAddress) {
  const auto vault = localVault();
  const auto row = filledItem(vault);
  save(*row);
  const auto item = listed(*row, vault);
  const MRCapturingSink sink;

  EXPECT_TRUE(item->overviewMatchesLowercaseString("www.bank"));

  EXPECT_THAT(sink.records(), IsEmpty());
}

// What drops them

/// Is searched in the middle of each change, as another thread may do.
class ItemSearchedWhileItChanges final : public QNItem {
 public:
  using QNItem::QNItem;
  std::string_view className() const override { return "ItemSearchedWhileItChanges"; }
  void markRowDirty() override {
    QNItem::markRowDirty();
    if (!isSearched) return;
    EXPECT_NE(lowercaseOverviewStringForSearch(), "");
    EXPECT_NE(nakedDomain(), std::nullopt);
  }
  bool isSearched = false;
};

TEST(QNItemSearch, ASearchInTheMiddleOfAChangeKeepsNothingOfWhatWas) {
  const auto item = std::make_shared<ItemSearchedWhileItChanges>(initNew);
  item->setProfile(localVault());
  item->setTitle("My Bank");
  item->setAdditionalInformation("Ann");
  item->setURLString("https://a.example/");
  item->isSearched = true;

  item->setTitle("My Shop");
  EXPECT_EQ(item->lowercaseOverviewStringForSearch(), "my shop a.example ann");
  item->setAdditionalInformation("Ben");
  EXPECT_EQ(item->lowercaseOverviewStringForSearch(), "my shop a.example ben");
  item->setURLString("https://b.example/");
  EXPECT_EQ(item->lowercaseOverviewStringForSearch(), "my shop b.example ben");
  EXPECT_EQ(item->nakedDomain(), "b.example");
  item->setURLString(std::nullopt);

  EXPECT_EQ(item->lowercaseOverviewStringForSearch(), "my shop ben");
}

TEST(QNItemSearch, ANewTitleIsFound) {
  const auto item = itemTitled("My Bank");
  EXPECT_TRUE(item->overviewMatchesLowercaseString("bank"));

  item->setTitle("My Shop");

  EXPECT_EQ(item->lowercaseTitle(), "my shop");
  EXPECT_EQ(item->lowercaseOverviewStringForSearch(), "my shop ");
}

TEST(QNItemSearch, ANewSubtitleOrAddressIsFoundBesideTheTitleAsItWas) {
  const auto item = itemTitled("My Bank");
  EXPECT_EQ(item->lowercaseOverviewStringForSearch(), "my bank ");
  item->setOverviewText("Other", kOverviewTitle);

  item->setAdditionalInformation("Ann");
  EXPECT_EQ(item->lowercaseOverviewStringForSearch(), "my bank ann");
  item->setURLString("https://a.example/");
  EXPECT_EQ(item->lowercaseOverviewStringForSearch(), "my bank a.example ann");
  item->setURLString(std::nullopt);

  EXPECT_EQ(item->lowercaseOverviewStringForSearch(), "my bank ann");
}

TEST(QNItemSearch, ASaveMakesTheOverviewAnew) {
  const auto item = itemTitled("My Bank");
  item->setAdditionalInformation("Ann");
  EXPECT_EQ(item->lowercaseOverviewStringForSearch(), "my bank ann");
  item->setOverviewText("Ben", kOverviewAdditionalInformation);

  item->willSave();

  EXPECT_EQ(item->lowercaseOverviewStringForSearch(), "my bank ben");
}

TEST(QNItemSearch, AnotherOverviewDropsNothing) {
  const auto item = itemTitled("My Bank");
  EXPECT_EQ(item->lowercaseOverviewStringForSearch(), "my bank ");

  item->copyOverview(jsonObject(R"({"title":"Other","ainfo":"Ann"})"));
  EXPECT_EQ(item->lowercaseTitle(), "my bank");
  EXPECT_EQ(item->lowercaseOverviewStringForSearch(), "my bank ");
  item->setOverviewData(std::nullopt);

  EXPECT_EQ(item->lowercaseTitle(), "my bank");
  EXPECT_EQ(item->lowercaseOverviewStringForSearch(), "my bank ");
}

TEST(QNItemSearch, AChangeOfTheAddressItselfOrOfTheListDropsNothing) {
  const auto item = itemTitled("My Bank");
  item->addURLString("https://a.example/");
  EXPECT_EQ(item->lowercaseOverviewStringForSearch(), "my bank a.example ");

  item->URLAtIndex(0)->setURLString("https://b.example/");
  item->addURLString("https://c.example/");
  item->removeURLAtIndex(0);

  EXPECT_EQ(item->lowercaseOverviewStringForSearch(), "my bank a.example ");
}

TEST(QNItemSearch, WhatDidNotOpenIsLookedAtAgain) {
  const auto vault = localVault();
  const auto row = filledItem(vault);
  save(*row);
  const auto item = listed(*row, vault);
  item->setOverviewData(Bytes(60, 1));
  {
    const MRCapturingSink sink;
    EXPECT_EQ(item->lowercaseTitle(), "unnamed");
    EXPECT_EQ(item->lowercaseOverviewStringForSearch(), "unnamed ");
  }

  item->setOverviewData(row->overviewData());

  EXPECT_EQ(item->lowercaseOverviewStringForSearch(), "my bank www.bank.example ann");
}

TEST(QNItemSearch, WhatDidNotOpenIsLookedAtAgainAfterANewUuidToo) {
  const auto vault = localVault();
  const auto row = filledItem(vault);
  save(*row);
  const auto item = listed(*row, vault);
  item->setOverviewData(Bytes(60, 1));
  {
    const MRCapturingSink sink;
    EXPECT_EQ(item->lowercaseTitle(), "unnamed");
    item->setUuid(sharedString("NEW-UUID"));
  }

  item->setOverviewData(row->overviewData());

  EXPECT_EQ(item->lowercaseTitle(), "my bank");
}

TEST(QNItemSearch, OfManyItemsLooksAgainAtOneThatDidNotOpen) {
  const auto vault = localVault();
  const auto row = filledItem(vault);
  save(*row);
  const std::shared_ptr<QNItem> item = listed(*row, vault);
  const std::vector<std::shared_ptr<QNItem>> items = {item};
  item->setOverviewData(Bytes(60, 1));
  const auto levels = {QNSearchLevel::title, QNSearchLevel::overview};
  {
    const MRCapturingSink sink;
    for (const auto level : levels) {
      EXPECT_THAT(QNItem::itemsMatchingLowercaseStrings(items, {"unnamed"}, level),
                  ElementsAre(item));
    }
  }

  item->setOverviewData(row->overviewData());

  for (const auto level : levels) {
    EXPECT_THAT(QNItem::itemsMatchingLowercaseStrings(items, {"unnamed"}, level), IsEmpty());
    EXPECT_THAT(QNItem::itemsMatchingLowercaseStrings(items, {"bank"}, level), ElementsAre(item));
  }
}

// Levels

TEST(QNItemSearch, TheTitleMatchesWithoutRegardToDiacritics) {
  const auto item = itemTitled("Café");

  EXPECT_TRUE(item->titleMatchesLowercaseString("cafe"));
  EXPECT_TRUE(item->titleMatchesLowercaseString("café"));
  EXPECT_FALSE(item->titleMatchesLowercaseString("cafe "));
}

TEST(QNItemSearch, TheTitleLevelLooksAtTheTitleAlone) {
  const auto item = filledItem();
  EXPECT_TRUE(item->overviewMatchesLowercaseString("ann"));

  EXPECT_FALSE(item->titleMatchesLowercaseString("ann"));
  EXPECT_FALSE(item->titleMatchesLowercaseString("bank w"));
  EXPECT_TRUE(item->titleMatchesLowercaseString("y b"));
}

TEST(QNItemSearch, TheOverviewMatchesInEachOfItsParts) {
  const auto item = filledItem();

  EXPECT_TRUE(item->overviewMatchesLowercaseString("my"));
  EXPECT_TRUE(item->overviewMatchesLowercaseString("www.bank"));
  EXPECT_TRUE(item->overviewMatchesLowercaseString("änn"));
  EXPECT_FALSE(item->overviewMatchesLowercaseString("shop"));
}

TEST(QNItemSearch, TheOverviewMatchesTheExactAndWholeUuidOnly) {
  const auto item = itemTitled("My Bank");
  std::string uuid = *item->uuid();
  for (char& c : uuid) c = static_cast<char>(std::tolower(c));
  std::string upper = uuid;
  for (char& c : upper) c = static_cast<char>(std::toupper(c));

  EXPECT_TRUE(item->overviewMatchesLowercaseString(uuid));
  EXPECT_TRUE(item->contentsMatchesLowercaseString(uuid));
  EXPECT_FALSE(item->overviewMatchesLowercaseString(uuid.substr(1)));
  EXPECT_FALSE(item->overviewMatchesLowercaseString(uuid + "0"));
  EXPECT_FALSE(item->overviewMatchesLowercaseString(upper));
  EXPECT_FALSE(item->titleMatchesLowercaseString(uuid));
}

TEST(QNItemSearch, TheContentsMatchInEachOfTheirPlaces) {
  const auto item = filledItem();
  for (const char* const text : {"my bank", "ann", "shop.example", "savings", "creme brulee",
                                 "number", "code", "4111", "9876", "card", "old secret"}) {
    EXPECT_TRUE(item->contentsMatchesLowercaseString(text)) << text;
  }
  for (const char* const text : {"n1", "login", "retired", "concealed"}) {
    EXPECT_FALSE(item->contentsMatchesLowercaseString(text)) << text;
  }
}

TEST(QNItemSearch, TheOverviewLevelOpensNoDetails) {
  const auto vault = localVault();
  const auto row = filledItem(vault);
  save(*row);
  const auto item = opened(*row, vault);
  const auto unwrapped = vault->numberOfItemKeysUnwrapped();

  EXPECT_TRUE(item->titleMatchesLowercaseString("bank"));
  EXPECT_FALSE(item->titleMatchesLowercaseString("9876"));
  EXPECT_TRUE(item->overviewMatchesLowercaseString("ann"));
  EXPECT_FALSE(item->overviewMatchesLowercaseString("9876"));
  EXPECT_TRUE(item->contentsMatchesLowercaseString("ann"));
  EXPECT_TRUE(item->contentsMatchesLowercaseString("savings"));
  EXPECT_EQ(vault->numberOfItemKeysUnwrapped(), unwrapped);
  EXPECT_TRUE(item->contentsMatchesLowercaseString("9876"));

  EXPECT_EQ(vault->numberOfItemKeysUnwrapped(), unwrapped + 1);
}

TEST(QNItemSearch, ContentsThatDoNotOpenMatchByTheOverview) {
  const auto vault = localVault();
  const auto row = filledItem(vault);
  save(*row);
  const auto item = listed(*row, vault);
  const MRCapturingSink sink;

  EXPECT_TRUE(item->contentsMatchesLowercaseString("ann"));
  EXPECT_TRUE(item->contentsMatchesLowercaseString("savings"));
  EXPECT_FALSE(item->contentsMatchesLowercaseString("9876"));

  EXPECT_THAT(assertions(sink), testing::Contains("Item URLs must be loaded"));
}

TEST(QNItemSearch, EachOfSeveralStringsMustMatch) {
  const auto item = filledItem();

  EXPECT_TRUE(item->titleMatchesLowercaseStrings({"bank", "my"}));
  EXPECT_FALSE(item->titleMatchesLowercaseStrings({"bank", "ann"}));
  EXPECT_TRUE(item->overviewMatchesLowercaseStrings({"bank", "ann"}));
  EXPECT_FALSE(item->overviewMatchesLowercaseStrings({"shop", "ann"}));
  EXPECT_TRUE(item->contentsMatchesLowercaseStrings({"shop", "ann", "9876"}));
  EXPECT_FALSE(item->contentsMatchesLowercaseStrings({"shop", "zzz"}));
}

TEST(QNItemSearch, NoStringsMatchAlways) {
  const auto item = newItem(localVault());

  EXPECT_TRUE(item->titleMatchesLowercaseStrings({}));
  EXPECT_TRUE(item->overviewMatchesLowercaseStrings({}));
  EXPECT_TRUE(item->contentsMatchesLowercaseStrings({}));
}

TEST(QNItemSearch, OfManyItemsFindsWhatEachWouldSay) {
  const auto vault = localVault();
  std::vector<std::shared_ptr<QNItem>> items;
  for (int i = 0; i < 100; ++i) {
    items.push_back(newItem(vault));
    items.back()->setTitle("Item " + std::to_string(i));
    items.back()->setAdditionalInformation(i % 2 == 0 ? "even" : "odd");
    items.back()->setNotesPlain(i % 5 == 0 ? "fifth" : "");
    if (i % 10 == 0) items.push_back(nullptr);
  }
  const QNItem::SearchStrings strings = {"7", "e"};
  for (const auto level :
       {QNSearchLevel::title, QNSearchLevel::overview, QNSearchLevel::contents}) {
    std::vector<std::shared_ptr<QNItem>> expected;
    for (const auto& item : items) {
      if (item == nullptr) continue;
      const bool matches =
          level == QNSearchLevel::title      ? item->titleMatchesLowercaseStrings(strings)
          : level == QNSearchLevel::overview ? item->overviewMatchesLowercaseStrings(strings)
                                             : item->contentsMatchesLowercaseStrings(strings);
      if (matches) expected.push_back(item);
    }

    EXPECT_EQ(QNItem::itemsMatchingLowercaseStrings(items, strings, level), expected);
    EXPECT_FALSE(expected.empty());
  }
  EXPECT_EQ(QNItem::itemsMatchingLowercaseStrings(items, {}, QNSearchLevel::title).size(), 100u);
  EXPECT_THAT(QNItem::itemsMatchingLowercaseStrings(items, {"fifth"}, QNSearchLevel::overview),
              IsEmpty());
}

TEST(QNItemSearch, OfManyItemsFindsOneByItsUuidAsItIsNow) {
  const std::vector<std::shared_ptr<QNItem>> items = {itemTitled("a"), itemTitled("b")};
  const auto found = [&items](const std::string& string) {
    return QNItem::itemsMatchingLowercaseStrings(items, {string}, QNSearchLevel::overview);
  };
  const std::string former = lowercaseIdentifier(*items[1]->uuid());
  EXPECT_THAT(found(former), ElementsAre(items[1]));
  EXPECT_THAT(found(former), ElementsAre(items[1]));

  items[1]->setUuid(sharedString("NEW-UUID"));

  EXPECT_THAT(found("new-uuid"), ElementsAre(items[1]));
  EXPECT_THAT(found("ew-uuid"), IsEmpty());
  EXPECT_THAT(found(former), IsEmpty());
}

TEST(QNItemSearch, OfManyItemsFindsWhatHasChangedSince) {
  const std::vector<std::shared_ptr<QNItem>> items = {itemTitled("a"), itemTitled("b")};
  const auto found = [&items](const std::string& string, QNSearchLevel level) {
    return QNItem::itemsMatchingLowercaseStrings(items, {string}, level);
  };
  EXPECT_THAT(found("b", QNSearchLevel::title), ElementsAre(items[1]));
  EXPECT_THAT(found("b", QNSearchLevel::overview), ElementsAre(items[1]));

  items[0]->setTitle("bank");
  items[1]->setAdditionalInformation("ann");

  EXPECT_THAT(found("b", QNSearchLevel::title), ElementsAre(items[0], items[1]));
  EXPECT_THAT(found("ann", QNSearchLevel::overview), ElementsAre(items[1]));
  EXPECT_THAT(found("ann", QNSearchLevel::title), IsEmpty());
}

// What is looked at

TEST(QNItemSearch, ValuesComeInAnOrder) {
  EXPECT_THAT(revealed(filledItem()->allValuesForSearch()),
              ElementsAre("My Bank", "www.bank.example", "shop.example", "Crème brûlée", "4111",
                          "9876", "old secret"));
}

TEST(QNItemSearch, AmongTheValuesAnUnnamedItemIsUnnamed) {
  EXPECT_THAT(revealed(newItem(localVault())->allValuesForSearch()), ElementsAre("Unnamed"));
}

TEST(QNItemSearch, EmptyValuesAreLeftOut) {
  EXPECT_THAT(itemTitled("")->allValuesForSearch(), IsEmpty());
  EXPECT_THAT(itemTitled("")->allPasswordsForSearch(), IsEmpty());
}

TEST(QNItemSearch, PasswordsComeInAnOrder) {
  const auto item = filledItem();
  EXPECT_THAT(revealed(item->allPasswordsForSearch()), ElementsAre("9876", "old secret"));

  item->setPassword("present");

  EXPECT_THAT(revealed(item->allPasswordsForSearch()),
              ElementsAre("present", "9876", "old secret"));
}

TEST(QNItemSearch, TitlesOfFieldsAndSectionsComeInOrder) {
  const auto item = filledItem();
  item->fieldSectionWithName("nameless", "");

  EXPECT_THAT(revealed(item->allFieldTitlesForSearch()), ElementsAre("number", "code"));
  EXPECT_THAT(revealed(item->allSectionTitlesForSearch()), ElementsAre("Card"));
  EXPECT_THAT(newItem(localVault())->allFieldTitlesForSearch(), IsEmpty());
  EXPECT_THAT(newItem(localVault())->allSectionTitlesForSearch(), IsEmpty());
}

TEST(QNItemSearch, TheFolderIsItsUuidOrEmpty) {
  const auto item = newItem(localVault());
  EXPECT_EQ(item->folderUUIDForSearch(), "");

  item->setFolderUUID("F");

  EXPECT_EQ(item->folderUUIDForSearch(), "F");
}

TEST(QNItemSearch, HashesOfAddressesAreThoseThatArentEmpty) {
  const auto item = filledItem();
  EXPECT_THAT(item->nakedHashesForSearch(), IsEmpty());

  item->URLAtIndex(1)->setNakedHash("H");
  item->URLAtIndex(0)->setNakedHash("");

  EXPECT_THAT(item->nakedHashesForSearch(), ElementsAre("H"));
}

// As a row of lists

TEST(QNItemSearch, AnItemIsARowOfAMixedList) {
  const auto item = filledItem();
  QNGenericListObject& row = *item;

  EXPECT_EQ(row.identifier(), *item->profile()->uuid() + "_" + *item->uuid());
  EXPECT_EQ(row.title(), "My Bank");
  EXPECT_EQ(row.subtitle(), "Ann");
  EXPECT_FALSE(row.read());
  EXPECT_EQ(row.accessoryText(), std::nullopt);
  EXPECT_EQ(row.listItemType(), QNListItemType::item);
}

TEST(QNItemSearch, ARowWithoutAUuidHasNoIdentifier) {
  const auto item = std::make_shared<QNSampleItem>(initNew);
  const MRCapturingSink sink;

  EXPECT_EQ(item->identifier(), "");

  EXPECT_THAT(assertions(sink), ElementsAre("UUID ((null)) is required"));
}

TEST(QNItemSearch, TypesOfRowsHaveNumbersUpToThree) {
  for (std::uint64_t i = 0; i <= 3; ++i) {
    EXPECT_EQ(static_cast<std::uint64_t>(*QNListItemTypeWithRawValue(i)), i);
  }
  EXPECT_EQ(QNListItemTypeWithRawValue(1), QNListItemType::item);
  EXPECT_EQ(QNListItemTypeWithRawValue(4), std::nullopt);
}

// Memory and threads

TEST(QNItemSearch, WhatASearchKeepsIsWiped) {
  constexpr std::string_view folded = "ein titel uber ol und apfel";
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->setTitle("Ein Titel über Öl und Äpfel");
  save(*row);
  const QNFreedBlockWatch watch(folded);
  {
    const auto item = listed(*row, vault);
    EXPECT_TRUE(item->overviewMatchesLowercaseString("apfel"));
    item->setAdditionalInformation("x");
    EXPECT_TRUE(item->overviewMatchesLowercaseString("apfel x"));
    item->setTitle("Ein Titel über Öl und Äpfel!");
    EXPECT_TRUE(item->titleMatchesLowercaseString("apfel!"));
  }

  EXPECT_EQ(watch.found(), 0u);
}

TEST(QNItemSearch, WhatASearchOverManyKeepsIsWipedAndReleased) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->setTitle("A Title Of Plain Letters");
  row->setAdditionalInformation("A Subtitle Of Plain Letters");
  row->setURLString("https://a.example/sign-in?token=Of-Some-Length");
  addField(*row, "A Section Of Plain Letters", "n1", "v")->setTitle("A Field Of Plain Letters");
  save(*row);
  row->URLAtIndex(0)->willSave();
  const QNFreedBlockWatch title("Title Of Plain");
  const QNFreedBlockWatch lowercaseTitle("title of plain");
  const QNFreedBlockWatch lowercaseSubtitle("subtitle of plain");
  const QNFreedBlockWatch address("token=Of-Some-Length");
  const QNFreedBlockWatch fieldTitle("Field Of Plain");
  const QNFreedBlockWatch sectionTitle("Section Of Plain");
  {
    const std::vector<std::shared_ptr<QNItem>> items = {listed(*row, vault), opened(*row, vault)};
    const auto url = std::make_shared<QNItemURL>(QNExisting{3});
    url->setProfile(vault);
    url->setOverviewData(row->URLAtIndex(0)->overviewData());
    items[1]->addURL(url);
    for (const auto level : {QNSearchLevel::title, QNSearchLevel::overview}) {
      EXPECT_EQ(QNItem::itemsMatchingLowercaseStrings(items, {"plain"}, level).size(), 2u);
    }
    items[0]->setUuid(sharedString("NEW-UUID"));
    EXPECT_TRUE(items[1]->overviewMatchesLowercaseString("a.example"));
    EXPECT_TRUE(items[1]->contentsMatchesLowercaseString("section of plain"));
    EXPECT_FALSE(items[1]->contentsMatchesLowercaseString("no such text"));
  }

  EXPECT_EQ(title.found(), 0u);
  EXPECT_EQ(lowercaseTitle.found(), 0u);
  EXPECT_EQ(lowercaseSubtitle.found(), 0u);
  EXPECT_EQ(address.found(), 0u);
  EXPECT_EQ(fieldTitle.found(), 0u);
  EXPECT_EQ(sectionTitle.found(), 0u);
  EXPECT_EQ(numberOfDroppedSearchTexts(), 0u);
}

TEST(QNItemSearch, NothingStaysDroppedWhenSearchesEndBesideChanges) {
  const auto item = itemTitled("My Bank");
  const std::vector<std::shared_ptr<QNItem>> items = {item};
  std::atomic<bool> done{false};
  const auto search = [&] {
    while (!done) {
      QNItem::itemsMatchingLowercaseStrings(items, {"bank"}, QNSearchLevel::overview);
    }
  };

  std::thread one(search);
  std::thread two(search);
  for (int i = 0; i < 3000; ++i) {
    item->setTitle(i % 2 == 0 ? "My Bank" : "My Shop");
    item->setUuid(sharedString("UUID-" + std::to_string(i)));
  }
  done = true;
  one.join();
  two.join();

  EXPECT_EQ(numberOfDroppedSearchTexts(), 0u);
}

TEST(QNItemSearch, SearchesMayOverlapWithEachOtherAndWithSaves) {
  const auto item = filledItem();
  std::atomic<int> wrong{0};
  std::atomic<bool> done{false};
  const std::vector<std::shared_ptr<QNItem>> items(20, item);
  const auto search = [&] {
    while (!done) {
      wrong += !item->overviewMatchesLowercaseString("ann");
      wrong += !item->titleMatchesLowercaseStrings({"my", "bank"});
      wrong +=
          QNItem::itemsMatchingLowercaseStrings(items, {"bank"}, QNSearchLevel::overview).size() !=
          items.size();
    }
  };

  std::thread one(search);
  std::thread two(search);
  for (int i = 0; i < 60; ++i) {
    item->setAdditionalInformation("Ann");
    item->willSave();
    item->setUuid(sharedString("UUID-" + std::to_string(i)));
    item->setAdditionalInformation("Ann");
  }
  done = true;
  one.join();
  two.join();

  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace quillon
