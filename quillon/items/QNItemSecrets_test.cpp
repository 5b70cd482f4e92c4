#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/platform/internal/QNMemoryWatch.h"

// Neither a password nor a note nor a key may stay behind in memory that nobody owns any more.

namespace quillon {
namespace {

// Of a length that lies inside a JSON value, and of one that lies outside.
constexpr std::string_view kShort = "qZ7!xK";
constexpr std::string_view kLong = "a long secret #481516 that no value holds inside itself";
constexpr std::string_view kNextShort = "wY8?vJ";
constexpr std::string_view kNextLong = "the secret #2342 that came after it, and is as long";

std::size_t blocksReleased = 0;
std::size_t bytesNotWiped = 0;

void lookAtReleased(const void* block, std::size_t size) {
  ++blocksReleased;
  const auto* const bytes = static_cast<const std::uint8_t*>(block);
  for (std::size_t i = 0; i < size; ++i) bytesNotWiped += bytes[i] != 0;
}

// A life of an item: made, saved, opened, edited, saved, retired, closed.
void liveWith(const std::shared_ptr<QNGenericProfile>& vault, std::string_view first,
              std::string_view second) {
  const auto row = newItem(vault);
  row->setPassword(first);
  row->setNotesPlain(first);
  row->setDetailsText(first, "other");
  save(*row);
  const auto item = opened(*row, vault);
  ASSERT_TRUE(item->password()->equals(first));
  item->setPassword(second);
  item->setDetailsText(second, "other");
  item->setNotesPlain(std::nullopt);
  save(*item);
  const auto read = opened(*item, vault);
  ASSERT_TRUE(read->password()->equals(second));
  ASSERT_TRUE(read->containsPasswordValue(first));
  ASSERT_TRUE(read->previouslyUsedPasswordAtIndex(0)->value()->equals(first));
  read->removePreviouslyUsedPasswordAtIndex(0);
  save(*read);
  vault->lock();
}

std::shared_ptr<QNGenericProfile> vaultOfType(std::uint64_t type) {
  if (type == kProfileTypeAccountVault) return accountVault();
  return localVault();
}

class QNItemSecrets : public testing::TestWithParam<std::uint64_t> {};

TEST_P(QNItemSecrets, TheWatchSeesAPlainTextThatIsFreed) {
  const QNFreedBlockWatch watch(kLong);

  { const std::string plain(kLong); }

  EXPECT_EQ(watch.found(), 1u);
}

TEST_P(QNItemSecrets, NoFreedBlockHoldsALongOne) {
  const QNFreedBlockWatch first(kLong);
  const QNFreedBlockWatch second(kNextLong);

  liveWith(vaultOfType(GetParam()), kLong, kNextLong);

  EXPECT_EQ(first.found(), 0u);
  EXPECT_EQ(second.found(), 0u);
}

TEST_P(QNItemSecrets, NoFreedBlockHoldsAShortOne) {
  const QNFreedBlockWatch first(kShort);
  const QNFreedBlockWatch second(kNextShort);

  liveWith(vaultOfType(GetParam()), kShort, kNextShort);

  EXPECT_EQ(first.found(), 0u);
  EXPECT_EQ(second.found(), 0u);
}

TEST_P(QNItemSecrets, NoStackKeepsALongOne) {
  const auto type = GetParam();

  EXPECT_EQ(remainsOnStack(kLong, [type] { liveWith(vaultOfType(type), kLong, kNextLong); }), 0u);
}

TEST_P(QNItemSecrets, NoStackKeepsAShortOne) {
  const auto type = GetParam();

  EXPECT_EQ(remainsOnStack(kShort, [type] { liveWith(vaultOfType(type), kShort, kNextShort); }),
            0u);
}

TEST_P(QNItemSecrets, EveryReleasedBlockIsZero) {
  blocksReleased = bytesNotWiped = 0;
  setReleasedBlockObserver(&lookAtReleased);

  liveWith(vaultOfType(GetParam()), kLong, kShort);
  setReleasedBlockObserver(nullptr);

  EXPECT_GT(blocksReleased, 50u);
  EXPECT_EQ(bytesNotWiped, 0u);
}

INSTANTIATE_TEST_SUITE_P(BothGenerations, QNItemSecrets,
                         testing::Values(kProfileTypeLocalVault, kProfileTypeAccountVault),
                         [](const auto& made) {
                           return made.param == kProfileTypeLocalVault ? "LocalVault" : "Account";
                         });

TEST(QNItemSecretKeys, NoFreedBlockHoldsABackupKey) {
  const auto vault = localVault();
  auto item = newItem(vault);
  const QNSecret text(item->backupKeysBase64Encoded().begin()->reveal());
  const QNFreedBlockWatch watch(text.reveal());

  save(*item);
  const auto read = opened(*item, vault);
  ASSERT_EQ(read->backupAESKeys().size(), 1u);
  read->disableBackupKeys();
  read->enableBackupKeys();
  save(*read);
  item = nullptr;

  EXPECT_EQ(watch.found(), 0u);
}

TEST(QNItemSecretKeys, LockingLeavesTheItemsKeyWithTheItemAlone) {
  const std::size_t before = lockedBytesInUse();
  {
    const auto vault = localVault();
    const auto item = newItem(vault);
    save(*item);
    vault->lock();

    EXPECT_EQ(lockedBytesInUse(), before + QNAESKey::kRawKeySize);
  }

  EXPECT_EQ(lockedBytesInUse(), before);
}

}  // namespace
}  // namespace quillon
