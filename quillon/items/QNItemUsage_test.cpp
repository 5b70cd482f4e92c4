// Records that others fill: how items are used, and the keys of fill records.

#include "quillon/items/QNItemUsage.h"

#include <gtest/gtest.h>

#include "quillon/items/H9ItemUsage.h"
#include "quillon/items/QNItemFillConstants.h"
#include "quillon/items/internal/QNItemTesting.h"

namespace quillon {
namespace {

/// As a database layer derives it.
class StoredUsage final : public QNItemUsage {
 public:
  explicit StoredUsage(QNNew) : QNItemUsage(initNew) {}
  explicit StoredUsage(QNExisting existing) : QNItemUsage(existing) {}
  [[nodiscard]] std::uint64_t lastUsedAt() const override { return _lastUsedAt; }
  void setLastUsedAt(std::uint64_t seconds) override { _lastUsedAt = seconds; }
  [[nodiscard]] std::int64_t usageCounter() const override { return _usageCounter; }
  void setUsageCounter(std::int64_t count) override { _usageCounter = count; }
  [[nodiscard]] std::shared_ptr<QNItem> item() const override { return _item; }
  void setItem(const std::shared_ptr<QNItem>& item) override { _item = item; }

 private:
  std::uint64_t _lastUsedAt = 0;
  std::int64_t _usageCounter = 0;
  std::shared_ptr<QNItem> _item;
};

TEST(QNItemUsage, IsARowWhoseValuesADatabaseLayerKeeps) {
  const auto item = newItem(localVault());
  const auto usage = std::make_shared<StoredUsage>(QNExisting{9});
  QNItemUsage& plain = *usage;

  plain.setLastUsedAt(1'700'000'000);
  plain.setUsageCounter(-3);
  plain.setItem(item);

  EXPECT_EQ(plain.className(), "QNItemUsage");
  EXPECT_EQ(plain.oid(), 9u);
  EXPECT_EQ(plain.lastUsedAt(), 1'700'000'000u);
  EXPECT_EQ(plain.usageCounter(), -3);
  EXPECT_EQ(plain.item(), item);
}

TEST(QNItemUsage, IsDirtyAsANewRow) {
  EXPECT_TRUE(StoredUsage(initNew).dirtyRow());
  EXPECT_FALSE(StoredUsage(QNExisting{9}).dirtyRow());
}

TEST(H9ItemUsage, StartsEmpty) {
  const H9ItemUsage usage;

  EXPECT_EQ(usage.itemUUID(), std::nullopt);
  EXPECT_EQ(usage.vaultUUID(), std::nullopt);
  EXPECT_EQ(usage.accountId(), 0u);
  EXPECT_EQ(usage.lastUsedAt(), 0u);
  EXPECT_EQ(usage.lastUsedVersion(), 0u);
  EXPECT_EQ(usage.localEditCount(), 0);
  EXPECT_EQ(usage.usageCounter(), 0);
}

TEST(H9ItemUsage, KeepsWhatItIsGiven) {
  H9ItemUsage usage;

  usage.setItemUUID("i");
  usage.setVaultUUID("v");
  usage.setAccountId(1);
  usage.setLastUsedAt(2);
  usage.setLastUsedVersion(3);
  usage.setLocalEditCount(-4);
  usage.setUsageCounter(-5);

  EXPECT_EQ(usage.itemUUID(), "i");
  EXPECT_EQ(usage.vaultUUID(), "v");
  EXPECT_EQ(usage.accountId(), 1u);
  EXPECT_EQ(usage.lastUsedAt(), 2u);
  EXPECT_EQ(usage.lastUsedVersion(), 3u);
  EXPECT_EQ(usage.localEditCount(), -4);
  EXPECT_EQ(usage.usageCounter(), -5);
}

TEST(QNItemFillConstants, AreWhatBrowsersRead) {
  EXPECT_EQ(kQNItemFillItemKind, "itemKind");
  EXPECT_EQ(kQNItemFillBrainAction, "brainAction");
  EXPECT_EQ(kQNItemFillBrainDictionary, "brainDictionary");
  EXPECT_EQ(kQNItemFillItemUUID, "itemUUID");
  EXPECT_EQ(kQNItemFillCategoryUUID, "categoryUUID");
  EXPECT_EQ(kQNItemFillProfileUUID, "profileUUID");
  EXPECT_EQ(kQNItemFillVaultUUID, "vaultUUID");
  EXPECT_EQ(kQNItemFillUserUUID, "userUUID");
  EXPECT_EQ(kQNItemFillAccountUUID, "accountUUID");
  EXPECT_EQ(kQNItemFillURLString, "URLString");
  EXPECT_EQ(kQNItemFillAutosubmit, "autosubmitType");
  EXPECT_EQ(kQNItemFillCreatedAt, "createdAt");
  EXPECT_EQ(kQNItemFillUpdatedAt, "updatedAt");
  EXPECT_EQ(kQNItemFillCreator, "creator");
}

}  // namespace
}  // namespace quillon
