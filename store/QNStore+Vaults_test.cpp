#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/templates/QNCategory.h"
#include "store/internal/QNStoreTesting.h"

namespace quillon {
namespace {

TEST(QNStoreVaults, GivesBackEveryColumnOfAVault) {
  const TemporaryFolder folder;
  std::shared_ptr<QNProfile> saved;
  {
    Session session = makeSession(folder / "a.quillon");
    saved = session.vault;
    saved->setProfileColor(QNColor{0.5f, 0.25f, 0.75f, 1.0f});
    saved->setIconData(toBytes(bytesOf("icon bytes")));
    saved->setAttributesData(toBytes(bytesOf("attributes")));
    ASSERT_TRUE(session.store->saveVault(*saved).ok());
  }

  const Session session = openSession(folder / "a.quillon");

  const QNProfile& vault = *session.vault;
  EXPECT_EQ(*vault.uuid(), *saved->uuid());
  EXPECT_EQ(vault.profileName(), kVaultName);
  EXPECT_EQ(vault.createdAt(), saved->createdAt());
  EXPECT_EQ(vault.updatedAt(), saved->updatedAt());
  EXPECT_EQ(vault.encryptedMasterKey(), saved->encryptedMasterKey());
  EXPECT_EQ(vault.encryptedOverviewKey(), saved->encryptedOverviewKey());
  EXPECT_EQ(vault.salt(), saved->salt());
  EXPECT_EQ(vault.iterations(), 100u);
  EXPECT_EQ(vault.passwordHint(), "the usual");
  EXPECT_EQ(vault.lastUpdatedBy(), saved->lastUpdatedBy());
  EXPECT_EQ(vault.iconData(), saved->iconData());
  EXPECT_EQ(vault.profileColorText(), saved->profileColorText());
  EXPECT_EQ(vault.attributesData(), saved->attributesData());
  EXPECT_FALSE(vault.dirtyRow());
}

TEST(QNStoreVaults, GivesTheRowIdAndLeavesTheVaultClean) {
  const TemporaryFolder folder;

  const Session session = makeSession(folder / "a.quillon");

  EXPECT_TRUE(session.vault->hasOid());
  EXPECT_FALSE(session.vault->dirtyRow());
}

TEST(QNStoreVaults, CountsRowsWithoutAPassword) {
  const TemporaryFolder folder;
  std::string uuid;
  {
    Session session = makeSession(folder / "a.quillon");
    uuid = *session.vault->uuid();
    savedLogin(session, "a");
    savedLogin(session, "b");
    const auto trashed = makeLogin(session.vault, "c");
    trashed->setTrashed(true);
    ASSERT_TRUE(session.store->save(trashed).ok());
    auto second = QNProfile::profileWithName("second", DEMO_PASSWORD, std::nullopt);
    ASSERT_TRUE(session.store->saveVault(*second).ok());
  }
  const auto store = std::move(QNStore::open(folder / "a.quillon")).value();

  const auto infos = store->vaults();

  ASSERT_TRUE(infos.ok());
  ASSERT_EQ(infos.value().size(), 2u);
  const QNStoredVaultInfo& first = infos.value()[0];
  EXPECT_EQ(first.uuid, uuid);
  EXPECT_EQ(first.name, kVaultName);
  EXPECT_EQ(first.items, 2u);
  EXPECT_EQ(first.trashed, 1u);
  EXPECT_EQ(infos.value()[1].name, "second");
  EXPECT_EQ(infos.value()[1].items, 0u);
}

TEST(QNStoreVaults, DoesNotFindAVaultOfAnotherName) {
  const TemporaryFolder folder;
  const Session session = makeSession(folder / "a.quillon");

  EXPECT_EQ(errorOf(session.store->vaultNamed("other")), codeText(QNStoreErrorCode::notFound));
}

TEST(QNStoreVaults, RefusesASecondVaultOfOneName) {
  const TemporaryFolder folder;
  const Session session = makeSession(folder / "a.quillon");
  const auto second = QNProfile::profileWithName(kVaultName, DEMO_PASSWORD, std::nullopt);

  const auto saved = session.store->saveVault(*second);

  EXPECT_EQ(errorOf(saved), codeText(QNStoreErrorCode::exists));
  EXPECT_FALSE(second->hasOid());
  EXPECT_TRUE(second->dirtyRow());
}

TEST(QNStoreVaults, DoesNotSaveALockedVault) {
  const TemporaryFolder folder;
  const Session session = makeSession(folder / "a.quillon");
  session.vault->lock();

  EXPECT_EQ(errorOf(session.store->saveVault(*session.vault)), codeText(QNStoreErrorCode::locked));
}

TEST(QNStoreVaults, DoesNotSaveAVaultThatNoPasswordWouldOpen) {
  const TemporaryFolder folder;
  const MRCapturingSink silence;
  const Session session = makeSession(folder / "a.quillon");
  const auto keyless = QNProfile::profileWithName("keyless", std::nullopt, std::nullopt);

  EXPECT_EQ(errorOf(session.store->saveVault(*keyless)),
            codeText(QNStoreErrorCode::unreadableItem));
}

TEST(QNStoreVaults, DoesNotKnowAVaultOfAnotherStore) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  Session other = makeSession(folder / "b.quillon");

  EXPECT_EQ(errorOf(session.store->saveVault(*other.vault)), codeText(QNStoreErrorCode::notFound));
  EXPECT_EQ(errorOf(session.store->save(makeLogin(other.vault, "a"))),
            codeText(QNStoreErrorCode::notFound));
  EXPECT_EQ(errorOf(session.store->list(other.vault, QNStore::Which::all, [](const auto&) {})),
            codeText(QNStoreErrorCode::notFound));
}

TEST(QNStoreVaults, SaysFalseToAWrongPasswordAndStaysLocked) {
  const TemporaryFolder folder;
  { makeSession(folder / "a.quillon"); }
  const auto store = std::move(QNStore::open(folder / "a.quillon")).value();
  const auto vault = std::move(store->vaultNamed(kVaultName)).value();

  const auto unlocked = store->unlock(*vault, "wrong");

  ASSERT_TRUE(unlocked.ok());
  EXPECT_FALSE(unlocked.value());
  EXPECT_TRUE(vault->isLocked());
}

TEST(QNStoreVaults, ChangesThePasswordWithoutTouchingAnItemRow) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto item = savedLogin(session, "a");
  const std::uint64_t revision = item->txTimestamp();
  ASSERT_TRUE(session.vault->changePasswordTo("a better one"));

  ASSERT_TRUE(session.store->saveVault(*session.vault).ok());

  const auto again = std::move(session.store->vaultNamed(kVaultName)).value();
  EXPECT_FALSE(session.store->unlock(*again, DEMO_PASSWORD).value());
  ASSERT_TRUE(session.store->unlock(*again, "a better one").value());
  const auto read = std::move(session.store->item(again, *item->uuid())).value();
  EXPECT_EQ(read->txTimestamp(), revision);
  EXPECT_EQ(read->overviewData(), item->overviewData());
  EXPECT_EQ(read->detailsData(), item->detailsData());
  EXPECT_TRUE(read->password()->equals("correct horse"));
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST(QNStoreVaults, TellsTheSecondOfTwoWhoChangeThePassword) {
  const TemporaryFolder folder;
  makeSession(folder / "a.quillon");
  Session first = openSession(folder / "a.quillon");
  Session second = openSession(folder / "a.quillon");
  first.vault->setPasswordHint("first");
  second.vault->setPasswordHint("second");
  second.vault->markRowDirty();
  ASSERT_TRUE(first.store->saveVault(*first.vault).ok());

  const auto saved = second.store->saveVault(*second.vault);

  EXPECT_EQ(errorOf(saved), codeText(QNStoreErrorCode::lostRace));
  EXPECT_TRUE(second.vault->dirtyRow());
  EXPECT_EQ(openSession(folder / "a.quillon").vault->passwordHint(), "first");
  first.vault->setPasswordHint("first again");
  EXPECT_EQ(errorOf(first.store->saveVault(*first.vault)), "");
}

TEST(QNStoreVaults, SavesANewVaultAndItsItemsInOneTransaction) {
  const TemporaryFolder folder;
  Session session;
  session.store = std::move(QNStore::create(folder / "a.quillon")).value();
  session.vault = QNProfile::profileWithName(kVaultName, DEMO_PASSWORD, std::nullopt);

  const auto done = session.store->inTransaction([&session]() -> QNResult<QNDone> {
    const auto saved = session.store->saveVault(*session.vault);
    if (!saved.ok()) return saved.error();
    session.vault->setPasswordHint("changed at once");
    const auto again = session.store->saveVault(*session.vault);
    if (!again.ok()) return again.error();
    return session.store->save(makeLogin(session.vault, "a"));
  });

  ASSERT_TRUE(done.ok()) << done.error().message;
  EXPECT_EQ(titlesIn(session), std::vector<std::string>{"a"});
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST(QNStoreVaults, ForgetsANewVaultWhoseTransactionFailed) {
  const TemporaryFolder folder;
  Session session;
  session.store = std::move(QNStore::create(folder / "a.quillon")).value();
  session.vault = QNProfile::profileWithName(kVaultName, DEMO_PASSWORD, std::nullopt);

  const auto done = session.store->inTransaction([&session]() -> QNResult<QNDone> {
    EXPECT_TRUE(session.store->saveVault(*session.vault).ok());
    return QNError{"test", 1, "no"};
  });

  EXPECT_EQ(errorOf(done), "test 1");
  EXPECT_FALSE(session.vault->hasOid());
  EXPECT_TRUE(session.store->vaults().value().empty());
  EXPECT_EQ(errorOf(session.store->saveVault(*session.vault)), "");
}

TEST(QNStoreVaults, RegistersTheCategoriesOfItsItems) {
  const TemporaryFolder folder;
  {
    Session session = makeSession(folder / "a.quillon");
    EXPECT_TRUE(session.vault->allCategories().empty());
    savedLogin(session, "a");
    savedLogin(session, "b");
    const auto note = session.vault->newItemForCategoryUUID(QNCategoryUUIDSecureNote);
    note->setProfile(session.vault);
    ASSERT_TRUE(session.store->save(note).ok());
    EXPECT_EQ(session.vault->allCategories().size(), 2u);
  }

  const Session session = openSession(folder / "a.quillon");

  const auto logins =
      std::dynamic_pointer_cast<QNCategory>(session.vault->categoryWithUUID(QNCategoryUUIDLogin));
  ASSERT_NE(logins, nullptr);
  EXPECT_TRUE(logins->hasOid());
  EXPECT_FALSE(logins->dirtyRow());
  EXPECT_EQ(logins->displayOrder(), QNGenericCategoryDefaultDisplayOrder(QNCategoryUUIDLogin));
  EXPECT_EQ(session.vault->allDisplayedCategories().size(), 2u);
}

TEST(QNStoreVaults, RegistersNoCategoryOfASaveThatFailed) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");

  const auto done = session.store->inTransaction([&session]() -> QNResult<QNDone> {
    savedLogin(session, "a");
    return QNError{"test", 1, "no"};
  });

  EXPECT_FALSE(done.ok());
  EXPECT_TRUE(session.vault->allCategories().empty());
  savedLogin(session, "b");
  EXPECT_EQ(session.vault->allCategories().size(), 1u);
}

// Twins: a vault that its store's primary vault opens

class QNStoreTwins : public ::testing::Test {
 protected:
  QNStoreTwins() {
    const Session made = makeSession(file);
    for (const char* const name : {"work", "club"}) {
      const auto vault = addVault(*made.store, name);
      EXPECT_TRUE(vault->encryptAttributesWithPrimaryProfile(made.vault));
      EXPECT_TRUE(made.store->saveVault(*vault).ok());
      EXPECT_TRUE(made.store->save(makeLogin(vault, std::string("in ") + name)).ok());
    }
    session = openSession(file);
  }
  static std::shared_ptr<QNProfile> addVault(QNStore& store, std::string_view name) {
    auto vault = QNProfile::profileWithName(name, DEMO_PASSWORD, std::nullopt);
    EXPECT_TRUE(store.saveVault(*vault).ok());
    return vault;
  }
  std::shared_ptr<QNProfile> locked(std::string_view name) const {
    return std::move(session.store->vaultNamed(name)).value();
  }

  const TemporaryFolder folder;
  const std::filesystem::path file = folder / "a.quillon";
  Session session;
};

TEST_F(QNStoreTwins, AreOpenedByThePrimaryVaultWithAllTheirItems) {
  Session work{std::move(session.store), nullptr};
  work.vault = std::move(work.store->vaultNamed("work")).value();

  const auto unlocked = work.store->unlockWithPrimary(*work.vault, session.vault);

  ASSERT_TRUE(unlocked.ok()) << unlocked.error().message;
  EXPECT_TRUE(unlocked.value());
  EXPECT_EQ(titlesIn(work), std::vector<std::string>{"in work"});
  EXPECT_EQ(problemsIn(work), std::vector<std::string>());
}

TEST_F(QNStoreTwins, StayOpenToThePrimaryVaultWhenEitherPasswordChanges) {
  ASSERT_TRUE(session.vault->changePasswordTo("a better one"));
  ASSERT_TRUE(session.store->saveVault(*session.vault).ok());
  const auto work = locked("work");
  ASSERT_TRUE(session.store->unlock(*work, DEMO_PASSWORD).value());
  ASSERT_TRUE(work->changePasswordTo("another one"));
  ASSERT_TRUE(session.store->saveVault(*work).ok());

  const auto again = locked("work");

  EXPECT_TRUE(session.store->unlockWithPrimary(*again, session.vault).value());
}

TEST_F(QNStoreTwins, WithoutAnArchiveStayLocked) {
  const auto plain = addVault(*session.store, "plain");
  plain->lock();

  const auto unlocked = session.store->unlockWithPrimary(*plain, session.vault);

  ASSERT_TRUE(unlocked.ok());
  EXPECT_FALSE(unlocked.value());
  EXPECT_TRUE(plain->isLocked());
}

TEST_F(QNStoreTwins, NeedAnUnlockedPrimaryVault) {
  const auto work = locked("work");
  session.vault->lock();

  EXPECT_EQ(errorOf(session.store->unlockWithPrimary(*work, session.vault)),
            codeText(QNStoreErrorCode::locked));
  EXPECT_EQ(errorOf(session.store->unlockWithPrimary(*work, nullptr)),
            codeText(QNStoreErrorCode::locked));
}

TEST_F(QNStoreTwins, AreRefusedWithTheArchiveOfAnotherVault) {
  const auto work = locked("work");
  work->setAttributesData(locked("club")->attributesData());

  EXPECT_EQ(errorOf(session.store->unlockWithPrimary(*work, session.vault)),
            codeText(QNStoreErrorCode::damaged));
  EXPECT_TRUE(work->isLocked());
}

TEST_F(QNStoreTwins, AreRefusedWithABrokenArchive) {
  const MRCapturingSink silence;
  const auto work = locked("work");
  Bytes broken = *work->attributesData();
  broken[broken.size() / 2] ^= 1;
  work->setAttributesData(std::move(broken));

  EXPECT_EQ(errorOf(session.store->unlockWithPrimary(*work, session.vault)),
            codeText(QNStoreErrorCode::damaged));
  EXPECT_TRUE(work->isLocked());
}

TEST_F(QNStoreTwins, AreRefusedByTheVaultOfAnotherStore) {
  const MRCapturingSink silence;
  const Session other = makeSession(folder / "b.quillon");
  const auto work = locked("work");

  EXPECT_EQ(errorOf(session.store->unlockWithPrimary(*work, other.vault)),
            codeText(QNStoreErrorCode::damaged));
}

}  // namespace
}  // namespace quillon
