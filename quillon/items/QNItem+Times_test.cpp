#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/platform/environment/QNEnvironment.h"

namespace quillon {
namespace {

constexpr std::uint64_t kDay = 86400;

TEST(QNItemTimes, DaysAreCutTowardsZero) {
  QNScopedClock clock(10 * kDay);
  const auto item = newItem(localVault());
  item->setUpdatedAt(10 * kDay);

  clock.setSeconds(11 * kDay - 1);
  EXPECT_EQ(item->createdAtDaysAgo(), 0);
  clock.setSeconds(12 * kDay);
  EXPECT_EQ(item->createdAtDaysAgo(), 2);
  EXPECT_EQ(item->updatedAtDaysAgo(), 2);
  clock.setSeconds(9 * kDay + 1);
  EXPECT_EQ(item->createdAtDaysAgo(), 0);
  clock.setSeconds(8 * kDay);

  EXPECT_EQ(item->createdAtDaysAgo(), -2);
}

TEST(QNItemTimes, AnItemThatWasNeverUsedWasUsedInfinitelyLongAgo) {
  const QNScopedClock clock(10 * kDay);
  const auto item = newItem(localVault());
  EXPECT_EQ(item->lastUsedDaysAgo(), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(item->lastUsedAtAsDate(), std::nullopt);

  item->setLastUsedTimestamp(7 * kDay);

  EXPECT_EQ(item->lastUsedDaysAgo(), 3);
  EXPECT_EQ(item->lastUsedAtAsDate()->time_since_epoch(), std::chrono::hours(7 * 24));
}

TEST(QNItemTimes, DatesAreTheSecondsSince1970) {
  const auto item = newItem(localVault());
  item->setCreatedAt(1);
  item->setUpdatedAt(2);

  EXPECT_EQ(item->createdAtAsDate().time_since_epoch(), std::chrono::seconds(1));
  EXPECT_EQ(item->updatedAtAsDate().time_since_epoch(), std::chrono::seconds(2));
}

TEST(QNItemTimes, WithoutAPasswordTheLastChangeIsZero) {
  const QNScopedClock clock(10 * kDay);
  const auto item = newItem(localVault());

  EXPECT_EQ(item->lastPasswordChange(), 0u);
  EXPECT_EQ(item->passwordAgeInDays(), 10);
  item->setPassword("");

  EXPECT_EQ(item->lastPasswordChange(), 0u);
}

TEST(QNItemTimes, TheLastChangeIsTheCreationOrTheLatestRetirement) {
  QNScopedClock clock(10 * kDay);
  const auto item = newItem(localVault());
  item->setPassword("p");
  EXPECT_EQ(item->lastPasswordChange(), 10 * kDay);

  item->addPreviouslyUsedPassword({QNSecret("b"), 14 * kDay});
  item->addPreviouslyUsedPassword({QNSecret("a"), 12 * kDay});
  clock.setSeconds(20 * kDay);

  EXPECT_EQ(item->lastPasswordChange(), 14 * kDay);
  EXPECT_EQ(item->passwordAgeInDays(), 6);
}

TEST(QNItemTimes, HistoryFromBeforeTheItemWasMadeDoesntCountAsItsLastChange) {
  const auto item = newItem(localVault());
  item->setPassword("present");
  item->setCreatedAt(1000);
  item->addPreviouslyUsedPassword({QNSecret("older"), 500});

  EXPECT_EQ(item->lastPasswordChange(), 1000u);
}

TEST(QNItemTimes, AskingForTheAgeOfAPasswordLeavesItsHistoryAsItIsStored) {
  constexpr std::string_view stored = R"([{"value":"a","time":"1700000000","more":true},7])";
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->setPassword("present");
  row->setDetailsObject(jsonValue(stored), kDetailsPasswordHistory);
  row->setCreatedAt(1'600'000'000);
  save(*row);
  const auto item = opened(*row, vault);
  const QNScopedClock clock(1'700'000'000 + 3 * 86'400);

  EXPECT_EQ(item->passwordAgeInDays(), 3);
  save(*item);

  EXPECT_EQ(jsonText(opened(*item, vault)->detailsObjectForKey(kDetailsPasswordHistory)), stored);
}

}  // namespace
}  // namespace quillon
