#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/platform/environment/QNEnvironment.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::Pair;

constexpr std::uint64_t kAllOnes = std::numeric_limits<std::uint64_t>::max();

QNSampleItemRef itemWithHistory(std::string_view json) {
  auto item = newItem(localVault());
  item->setDetailsObject(jsonValue(json), kDetailsPasswordHistory);
  item->didSave();
  return item;
}

std::vector<std::pair<std::string, std::uint64_t>> entriesOf(QNItem& item) {
  std::vector<std::pair<std::string, std::uint64_t>> entries;
  for (const auto& entry : *item.mutablePreviouslyUsedPasswords()) {
    entries.emplace_back(entry.value() ? entry.value()->reveal() : "(none)", entry.retiredAt());
  }
  return entries;
}

std::string storedAfterSave(QNItem& item) {
  save(item);
  return jsonText(item.detailsObjectForKey(kDetailsPasswordHistory));
}

QNPreviouslyUsedPassword entry(std::string_view value, std::uint64_t time) {
  return {QNSecret(value), time};
}

TEST(QNItemHistory, ReadsTheStoredEntriesInOrder) {
  const auto item =
      itemWithHistory(R"([{"time":1500000000,"value":"a"},{"time":1400000000,"value":"b"}])");

  EXPECT_THAT(entriesOf(*item), ElementsAre(Pair("a", 1500000000), Pair("b", 1400000000)));
}

TEST(QNItemHistory, ReadsATimeThatIsAText) {
  const auto item = itemWithHistory(
      R"([{"time":"1500000000","value":"a"},{"time":"1500000000.9","value":"b"},
          {"time":"12 days","value":"c"},{"time":" \t\n13","value":"d"},
          {"time":"+14","value":"e"},{"time":" +15","value":"f"}])");

  EXPECT_THAT(entriesOf(*item),
              ElementsAre(Pair("a", 1500000000), Pair("b", 1500000000), Pair("c", 12),
                          Pair("d", 13), Pair("e", 14), Pair("f", 15)));
}

TEST(QNItemHistory, ATimeThatIsNoNumberIsZero) {
  const auto item = itemWithHistory(
      R"([{"time":"never","value":"a"},{"time":null,"value":"b"},{"value":"c"},
          {"time":-5,"value":"d"},{"time":{},"value":"e"},{"time":"1e40","value":"f"},
          {"time":"++5","value":"g"},{"time":" ","value":"h"},{"time":"","value":"i"}])");

  EXPECT_THAT(entriesOf(*item),
              ElementsAre(Pair("a", 0), Pair("b", 0), Pair("c", 0), Pair("d", 0), Pair("e", 0),
                          Pair("f", 0), Pair("g", 0), Pair("h", 0), Pair("i", 0)));
}

TEST(QNItemHistory, AValueThatIsNoTextReadsAsItsText) {
  const auto item = itemWithHistory(R"([{"time":1,"value":1234},{"time":2,"value":null}])");

  EXPECT_THAT(entriesOf(*item), ElementsAre(Pair("1234", 1), Pair("(none)", 2)));
}

TEST(QNItemHistory, AnElementThatIsNoObjectDoesNotFail) {
  const auto item = itemWithHistory(R"(["x",{"time":1,"value":"a"}])");

  EXPECT_THAT(entriesOf(*item), ElementsAre(Pair("(none)", 0), Pair("a", 1)));
}

TEST(QNItemHistory, AnEntryWithoutAValueIsNotWrittenBack) {
  const auto item = itemWithHistory(R"([{"time":1},{"time":2,"value":"b"}])");
  ASSERT_EQ(entriesOf(*item).size(), 2u);

  EXPECT_EQ(storedAfterSave(*item), R"([{"time":2,"value":"b"}])");
}

TEST(QNItemHistory, EntriesWithoutAnyValueLeaveNoEmptyList) {
  const auto item = itemWithHistory(R"([{"time":1}])");
  ASSERT_EQ(entriesOf(*item).size(), 1u);

  EXPECT_EQ(storedAfterSave(*item), "(none)");
}

TEST(QNItemHistory, AHistoryThatWasNeverReadStaysAsItIsStored) {
  const auto item = itemWithHistory(R"([{"value":"a","time":"1","more":1},7])");

  EXPECT_EQ(storedAfterSave(*item), R"([{"value":"a","time":"1","more":1},7])");
}

TEST(QNItemHistory, CountsTheStoredEntriesWithoutReadingThem) {
  const auto item = itemWithHistory(R"([{"value":"a","time":1,"more":1},7])");

  EXPECT_EQ(item->numberOfPreviouslyUsedPasswords(), 2u);
  EXPECT_TRUE(item->hasPreviouslyUsedPasswords());

  EXPECT_EQ(storedAfterSave(*item), R"([{"value":"a","time":1,"more":1},7])");
}

TEST(QNItemHistory, CountsNothingWhereNoListIsStored) {
  const auto item = itemWithHistory(R"("x")");

  EXPECT_EQ(item->numberOfPreviouslyUsedPasswords(), 0u);
  EXPECT_FALSE(newItem(localVault())->hasPreviouslyUsedPasswords());
}

TEST(QNItemHistory, GivesCopies) {
  const auto item = itemWithHistory(R"([{"time":1,"value":"a"},{"time":2}])");

  auto copies = item->previouslyUsedPasswords();
  item->removePreviouslyUsedPasswordAtIndex(0);

  ASSERT_EQ(copies.size(), 2u);
  EXPECT_TRUE(copies[0].value()->equals("a"));
  EXPECT_EQ(copies[0].retiredAt(), 1u);
  EXPECT_FALSE(copies[1].value());
}

TEST(QNItemHistory, AddsAtTheEndAndDirtiesTheRow) {
  const auto item = itemWithHistory(R"([{"time":1,"value":"a"}])");

  item->addPreviouslyUsedPassword(entry("b", 2));

  EXPECT_TRUE(item->dirtyRow());
  EXPECT_EQ(item->numberOfPreviouslyUsedPasswords(), 2u);
  EXPECT_EQ(storedAfterSave(*item), R"([{"time":1,"value":"a"},{"time":2,"value":"b"}])");
}

TEST(QNItemHistory, KeepsEqualValuesOfDifferentTimes) {
  const auto item = itemWithHistory(R"([{"time":1,"value":"a"}])");

  item->addPreviouslyUsedPassword(entry("a", 2));

  EXPECT_THAT(entriesOf(*item), ElementsAre(Pair("a", 1), Pair("a", 2)));
}

TEST(QNItemHistory, RemovesByIndexAndDirtiesTheRow) {
  const auto item = itemWithHistory(R"([{"time":1,"value":"a"},{"time":2,"value":"b"}])");

  item->removePreviouslyUsedPasswordAtIndex(2);
  EXPECT_FALSE(item->dirtyRow());
  item->removePreviouslyUsedPasswordAtIndex(0);

  EXPECT_TRUE(item->dirtyRow());
  EXPECT_EQ(storedAfterSave(*item), R"([{"time":2,"value":"b"}])");
}

TEST(QNItemHistory, EmptyingItRemovesTheKey) {
  const auto item = itemWithHistory(R"([{"time":1,"value":"a"}])");

  item->removePreviouslyUsedPasswordAtIndex(0);

  EXPECT_EQ(storedAfterSave(*item), "(none)");
  EXPECT_FALSE(item->details()->contains(kDetailsPasswordHistory));
}

TEST(QNItemHistory, FindsByIndexAndByExactValue) {
  const auto item =
      itemWithHistory(R"([{"time":1,"value":"a"},{"time":2},{"time":3,"value":"a"}])");

  EXPECT_EQ(item->previouslyUsedPasswordAtIndex(2)->retiredAt(), 3u);
  EXPECT_EQ(item->previouslyUsedPasswordAtIndex(3), nullptr);
  EXPECT_EQ(item->previouslyUsedPasswordWithValue("a")->retiredAt(), 1u);
  EXPECT_EQ(item->previouslyUsedPasswordWithValue("A"), nullptr);
}

TEST(QNItemHistory, APresentPasswordCountsAsContained) {
  const auto item = itemWithHistory(R"([{"time":1,"value":"a"}])");
  item->setPassword("b");

  EXPECT_TRUE(item->containsPasswordValue("a"));
  EXPECT_TRUE(item->containsPasswordValue("b"));
  EXPECT_FALSE(item->containsPasswordValue("c"));
}

TEST(QNItemHistory, NewDetailsDropTheList) {
  const auto item = itemWithHistory(R"([{"time":1,"value":"a"}])");
  ASSERT_EQ(entriesOf(*item).size(), 1u);

  item->copyDetails(jsonObject(R"({"passwordHistory":[{"time":5,"value":"e"}]})"));

  EXPECT_THAT(entriesOf(*item), ElementsAre(Pair("e", 5)));
}

TEST(QNItemHistory, NewStoredDetailsDropTheList) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->addPreviouslyUsedPassword(entry("a", 1));
  save(*row);
  const Bytes first = *row->detailsData();
  row->addPreviouslyUsedPassword(entry("b", 2));
  save(*row);
  const auto item = opened(*row, vault);
  ASSERT_EQ(entriesOf(*item).size(), 2u);

  item->setDetailsData(first);

  EXPECT_THAT(entriesOf(*item), ElementsAre(Pair("a", 1)));
}

TEST(QNItemHistory, WithoutDetailsThereIsNoListAndNothingIsLost) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->addPreviouslyUsedPassword(entry("a", 1));
  save(*row);
  const auto item = opened(*row, vault);
  item->markLoadingDetails();
  const MRCapturingSink sink;

  EXPECT_EQ(item->mutablePreviouslyUsedPasswords(), nullptr);
  EXPECT_TRUE(item->previouslyUsedPasswords().empty());
  EXPECT_EQ(item->numberOfPreviouslyUsedPasswords(), 0u);
  EXPECT_EQ(item->previouslyUsedPasswordAtIndex(0), nullptr);
  EXPECT_EQ(item->previouslyUsedPasswordWithValue("a"), nullptr);
  item->addPreviouslyUsedPassword(entry("b", 2));
  item->removePreviouslyUsedPasswordAtIndex(0);
  item->markDetailsLoaded();
  save(*item);

  EXPECT_THAT(entriesOf(*opened(*item, vault)), ElementsAre(Pair("a", 1)));
}

TEST(QNItemHistory, HasNoLimit) {
  const auto vault = localVault();
  const auto item = newItem(vault);
  for (std::uint64_t i = 0; i < 2000; ++i) item->addPreviouslyUsedPassword(entry("a", i));

  save(*item);

  EXPECT_EQ(opened(*item, vault)->numberOfPreviouslyUsedPasswords(), 2000u);
}

TEST(QNItemHistory, GrowsOverManySaves) {
  QNScopedClock clock(0);
  const auto vault = localVault();
  auto item = newItem(vault);
  item->setPassword("0");
  save(*item);
  for (std::uint64_t i = 1; i <= 20; ++i) {
    clock.setSeconds(i);
    item = opened(*item, vault);
    item->setPassword(std::to_string(i));
    save(*item);
  }

  const auto entries = entriesOf(*opened(*item, vault));

  ASSERT_EQ(entries.size(), 20u);
  for (std::uint64_t i = 0; i < 20; ++i) {
    EXPECT_THAT(entries[i], Pair(std::to_string(i), i + 1));
  }
}

// The entry

TEST(QNPreviouslyUsedPassword, IsEqualByValueAndTime) {
  EXPECT_TRUE(entry("a", 1).isEqualToPreviouslyUsedPassword(entry("a", 1)));
  EXPECT_TRUE(entry("a", 1).isEqual(entry("a", 1)));
  EXPECT_FALSE(entry("a", 1).isEqualToPreviouslyUsedPassword(entry("a", 2)));
  EXPECT_FALSE(entry("a", 1).isEqualToPreviouslyUsedPassword(entry("b", 1)));
  EXPECT_FALSE(entry("a", 1).isEqualToPreviouslyUsedPassword({std::nullopt, 1}));
  EXPECT_TRUE(
      QNPreviouslyUsedPassword(std::nullopt, 1).isEqualToPreviouslyUsedPassword({std::nullopt, 1}));
}

TEST(QNPreviouslyUsedPassword, HashesEqualEntriesEqually) {
  EXPECT_EQ(entry("a", 1).hash(), entry("a", 1).hash());
  EXPECT_EQ(entry("a", 5).hash() ^ entry("a", 0).hash(), 5u);
  EXPECT_EQ(entry("a", kAllOnes).hash(), entry("a", 0).hash());
}

TEST(QNPreviouslyUsedPassword, TellsItsTimeAsADate) {
  EXPECT_EQ(entry("a", 86400).retiredAtAsDate().time_since_epoch(), std::chrono::hours(24));
}

}  // namespace
}  // namespace quillon
