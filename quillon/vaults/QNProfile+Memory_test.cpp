// Keys and passwords leave nothing behind: not in locked memory, not in freed blocks, not on the
// stack.

#include <algorithm>

#include "quillon/platform/data/MRData.h"
#include "quillon/platform/internal/QNMemoryWatch.h"
#include "quillon/vaults/internal/QNVaultTesting.h"

namespace quillon {
namespace {

constexpr std::string_view kPassword = "Mnemosyne, 9 muses";

/// A vault with kPassword that is cheap to open, which no password but the demonstration one
/// would be by itself.
std::shared_ptr<QNProfile> cheapLockedVault() {
  const auto vault = demoVault();
  const auto key = QNAESKey::initWithPassword(kPassword, *vault->salt(), 8);
  auto stored = storedCopyOf(*vault);
  stored->setIterations(8);
  stored->setEncryptedMasterKey(key->encrypt(*vault->masterKey()));
  stored->setEncryptedOverviewKey(key->encrypt(*vault->overviewKey()));
  return stored;
}

TEST(QNProfileMemory, ALockGivesBackAllLockedMemory) {
  const auto vault = cheapLockedVault();
  const std::size_t before = lockedBytesInUse();

  ASSERT_TRUE(vault->_unlockWithPassword(kPassword));
  EXPECT_GT(lockedBytesInUse(), before);
  vault->lock();

  EXPECT_EQ(lockedBytesInUse(), before);
}

std::vector<std::size_t> releasedSizes;

TEST(QNProfileMemory, PlainKeysAreReleasedBeforeAnybodyIsToldOfAnUnlock) {
  const auto vault = cheapLockedVault();
  std::vector<std::size_t> releasedAtWill;
  std::size_t lockedAtDid = 0;
  auto& center = MRNotificationCenter::defaultCenter();
  const auto will = center.addObserver(QNProfileWillUnlockNotification, vault.get(),
                                       [&](auto&&...) { releasedAtWill = releasedSizes; });
  const auto did = center.addObserver(QNProfileDidUnlockNotification, vault.get(),
                                      [&](auto&&...) { lockedAtDid = lockedBytesInUse(); });
  releasedSizes.clear();

  setReleasedBlockObserver([](const void*, std::size_t size) { releasedSizes.push_back(size); });
  const bool unlocked = vault->_unlockWithPassword(kPassword);
  setReleasedBlockObserver(nullptr);
  center.removeObserver(will);
  center.removeObserver(did);

  ASSERT_TRUE(unlocked);
  EXPECT_EQ(std::count(releasedAtWill.begin(), releasedAtWill.end(), MASTER_KEY_SIZE), 1);
  EXPECT_EQ(std::count(releasedAtWill.begin(), releasedAtWill.end(), OVERVIEW_KEY_SIZE), 1);
  EXPECT_EQ(lockedAtDid, lockedBytesInUse());
}

TEST(QNProfileMemory, LockedMemoryComesBackOnceTheItemKeysAreReleased) {
  const std::size_t before = lockedBytesInUse();
  const auto vault = demoVault();
  auto itemKey =
      vault->decryptItemKey(vault->encryptItemKey(QNAESKey::initWithRandomKey()).value());

  vault->lock();
  EXPECT_GT(lockedBytesInUse(), before);
  itemKey.reset();

  EXPECT_EQ(lockedBytesInUse(), before);
}

TEST(QNProfileMemory, AWrongPasswordLeavesNoLockedMemory) {
  const auto vault = cheapLockedVault();
  const std::size_t before = lockedBytesInUse();

  ASSERT_FALSE(vault->_unlockWithPassword("wrong"));

  EXPECT_EQ(lockedBytesInUse(), before);
}

TEST(QNProfileMemory, AVaultThatGoesAwayUnlockedGivesItsKeysBack) {
  const std::size_t before = lockedBytesInUse();

  demoVault().reset();

  EXPECT_EQ(lockedBytesInUse(), before);
}

TEST(QNProfileMemory, AVaultWithCategoriesGoesAwayAndGivesItsKeysBack) {
  const std::size_t before = lockedBytesInUse();
  auto vault = demoVault();
  const std::weak_ptr<QNProfile> watched = vault;
  vault->addCategory(vault->newSystemCategoryWithUUID("001"));
  ASSERT_EQ(vault->allCategories().size(), 1u);

  vault.reset();

  EXPECT_TRUE(watched.expired());
  EXPECT_EQ(lockedBytesInUse(), before);
}

TEST(QNProfileMemory, FreedBlocksHoldNoPasswordAndNoKey) {
  const auto vault = cheapLockedVault();
  const auto open = storedCopyOf(*vault);
  ASSERT_TRUE(open->_unlockWithPassword(kPassword));
  const QNFreedBlockWatch password(kPassword);
  const QNFreedBlockWatch wrongPassword("Mnemosyne, 8 muses");
  const QNFreedBlockWatch overviewKey(textOf(*open->overviewKey()));
  const QNFreedBlockWatch masterKey(textOf(*open->masterKey()).substr(0, 64));

  vault->_unlockWithPassword("Mnemosyne, 8 muses");
  vault->_unlockWithPassword(kPassword);
  EXPECT_EQ(vault->profilePassword()->reveal(), kPassword);
  vault->changePasswordTo(DEMO_PASSWORD);
  vault->lock();

  EXPECT_EQ(password.found(), 0u);
  EXPECT_EQ(wrongPassword.found(), 0u);
  EXPECT_EQ(overviewKey.found(), 0u);
  EXPECT_EQ(masterKey.found(), 0u);
}

TEST(QNProfileMemory, TheStackHoldsNoKeyAfterAnUnlock) {
  const auto vault = cheapLockedVault();
  const auto open = storedCopyOf(*vault);
  ASSERT_TRUE(open->_unlockWithPassword(kPassword));
  bool unlocked = false;
  const auto unlock = [&] { unlocked = vault->_unlockWithPassword(kPassword); };

  const std::size_t remains = remainsOnStack(textOf(*open->overviewKey()).substr(0, 16), unlock);

  EXPECT_EQ(remains, 0u);
  EXPECT_TRUE(unlocked);
}

TEST(QNProfileMemory, TheStackHoldsNoOverviewInClear) {
  const auto vault = demoVault();
  constexpr std::string_view title = "the title of a page";
  const auto page = [&] {
    const auto sealed =
        vault->encryptOverview(bytesOf(R"({"title":"the title of a page","ainfo":"x"})"));
    const auto shell = QNProfile::initExistingWithID(6);
    shell->setOverviewKey(*vault->overviewKey());
    shell->setOverviewData(sealed);
    shell->overviewObjectForKey("title");
    shell->willSave();
  };

  EXPECT_EQ(remainsOnStack(title, page), 0u);
}

}  // namespace
}  // namespace quillon
