#include "quillon/platform/crypto/internal/QNKeyDerivation.h"
#include "quillon/platform/data/MRData.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/vaults/internal/QNVaultTesting.h"

namespace quillon {
namespace {

using Texts = std::vector<std::string>;
using Heard = Texts;

// Unlocking

TEST(QNProfileLock, TheRightPasswordUnlocks) {
  const auto vault = demoVault();
  const auto stored = storedCopyOf(*vault);

  EXPECT_TRUE(stored->_unlockWithPassword(DEMO_PASSWORD));

  EXPECT_TRUE(stored->isUnlocked());
  EXPECT_EQ(stored->overviewKey(), vault->overviewKey());
  EXPECT_EQ(stored->masterKey(), vault->masterKey());
  EXPECT_EQ(stored->profilePassword()->reveal(), DEMO_PASSWORD);
  EXPECT_FALSE(stored->dirtyRow());
}

TEST(QNProfileLock, AnUnlockPostsWillWhileLockedAndDidWhileUnlocked) {
  const auto vault = storedCopyOf(*demoVault());
  const QNVaultListener listener(*vault);

  vault->_unlockWithPassword(DEMO_PASSWORD);

  EXPECT_EQ(listener.heard, (Heard{"QNProfileWillUnlockNotification locked",
                                   "QNProfileDidUnlockNotification unlocked"}));
}

TEST(QNProfileLock, AnUnlockDerivesOneKeyWhetherThePasswordIsRightOrWrong) {
  const auto vault = storedCopyOf(*demoVault());
  const auto before = numberOfPasswordDerivations();

  EXPECT_FALSE(vault->_unlockWithPassword("wrong"));
  EXPECT_EQ(numberOfPasswordDerivations(), before + 1);
  EXPECT_TRUE(vault->_unlockWithPassword(DEMO_PASSWORD));

  EXPECT_EQ(numberOfPasswordDerivations(), before + 2);
}

TEST(QNProfileLock, AWrongPasswordChangesAndPostsNothing) {
  const auto vault = storedCopyOf(*demoVault());
  const QNVaultListener listener(*vault);
  const MRCapturingSink sink;

  EXPECT_FALSE(vault->_unlockWithPassword("try quillon "));

  EXPECT_TRUE(vault->isLocked());
  EXPECT_EQ(listener.heard, Heard{});
  EXPECT_TRUE(sink.records().empty());
}

TEST(QNProfileLock, AWrongPasswordLeavesAnUnlockedVaultAsItWas) {
  const auto vault = demoVault();

  EXPECT_FALSE(vault->_unlockWithPassword("wrong"));

  EXPECT_TRUE(vault->isUnlocked());
  EXPECT_EQ(vault->profilePassword()->reveal(), DEMO_PASSWORD);
}

TEST(QNProfileLock, AnAbsentPasswordDoesNotUnlock) {
  const auto vault = storedCopyOf(*demoVault());
  const QNVaultListener listener(*vault);

  EXPECT_FALSE(vault->_unlockWithPassword(std::nullopt));

  EXPECT_TRUE(vault->isLocked());
  EXPECT_EQ(listener.heard, Heard{});
}

TEST(QNProfileLock, APasswordThatIsNotUTF8DoesNotUnlock) {
  const auto vault = storedCopyOf(*demoVault());
  const QNVaultListener listener(*vault);
  const MRCapturingSink sink;

  EXPECT_FALSE(vault->_unlockWithPassword("try quillon\xFF"));

  EXPECT_TRUE(vault->isLocked());
  EXPECT_EQ(listener.heard, Heard{});
  ASSERT_EQ(sink.texts(MRLogKind::error), Texts{"No key can be made of the password"});
  EXPECT_EQ(sink.records()[0].method, "_unlockWithPassword");
  EXPECT_EQ(sink.records()[0].subsystem, DEBUG_DATABASE);
}

struct BrokenCase {
  const char* name;
  void (*spoil)(QNProfile&);
  bool makesAKey = true;  // of the password; where it makes none, that is reported
};
class QNProfileBrokenRow : public testing::TestWithParam<BrokenCase> {};

Bytes spoiled(Bytes data) {
  data.back() = static_cast<std::uint8_t>(data.back() ^ 1);
  return data;
}

TEST_P(QNProfileBrokenRow, DoesNotUnlock) {
  const auto vault = storedCopyOf(*demoVault());
  GetParam().spoil(*vault);
  const QNVaultListener listener(*vault);
  const MRCapturingSink sink;

  EXPECT_FALSE(vault->_unlockWithPassword(DEMO_PASSWORD));

  EXPECT_TRUE(vault->isLocked());
  EXPECT_EQ(listener.heard, Heard{});
  EXPECT_EQ(sink.texts(MRLogKind::error),
            GetParam().makesAKey ? Texts{} : Texts{"No key can be made of the password"});
  EXPECT_EQ(sink.records().size(), GetParam().makesAKey ? 0u : 1u);
}

INSTANTIATE_TEST_SUITE_P(
    Fields, QNProfileBrokenRow,
    testing::Values(
        BrokenCase{"NoSalt", [](QNProfile& it) { it.setSalt(std::nullopt); }, false},
        BrokenCase{"ShortSalt", [](QNProfile& it) { it.setSalt(Bytes(15)); }, false},
        BrokenCase{"OtherSalt", [](QNProfile& it) { it.setSalt(spoiled(*it.salt())); }},
        BrokenCase{"NoIterations", [](QNProfile& it) { it.setIterations(0); }, false},
        BrokenCase{"OtherIterations", [](QNProfile& it) { it.setIterations(101); }},
        BrokenCase{"TooManyIterations", [](QNProfile& it) { it.setIterations(4294967295); }, false},
        BrokenCase{"NoMasterKey", [](QNProfile& it) { it.setEncryptedMasterKey(std::nullopt); }},
        BrokenCase{"NoOverviewKey",
                   [](QNProfile& it) { it.setEncryptedOverviewKey(std::nullopt); }},
        BrokenCase{
            "DamagedMasterKey",
            [](QNProfile& it) { it.setEncryptedMasterKey(spoiled(*it.encryptedMasterKey())); }},
        BrokenCase{
            "DamagedOverviewKey",
            [](QNProfile& it) { it.setEncryptedOverviewKey(spoiled(*it.encryptedOverviewKey())); }},
        BrokenCase{"ExchangedKeys",
                   [](QNProfile& it) {
                     const auto master = it.encryptedMasterKey();
                     it.setEncryptedMasterKey(it.encryptedOverviewKey());
                     it.setEncryptedOverviewKey(master);
                   }},
        BrokenCase{"MasterKeyIsTheOverviewKey",
                   [](QNProfile& it) { it.setEncryptedMasterKey(it.encryptedOverviewKey()); }},
        BrokenCase{"OverviewKeyIsTheMasterKey",
                   [](QNProfile& it) { it.setEncryptedOverviewKey(it.encryptedMasterKey()); }}),
    [](const auto& field) { return field.param.name; });

TEST(QNProfileLock, EqualPasswordsInOtherCodePointsUnlock) {
  const auto vault = QNProfile::initNewWithPassword(DEMO_PASSWORD);
  vault->setSalt(Bytes(16));
  vault->setIterations(8);
  const auto key = QNAESKey::initWithPassword("\u00C5ngstr\u00F6m", *vault->salt(), 8);
  vault->setEncryptedMasterKey(key->encrypt(*vault->masterKey()));
  vault->setEncryptedOverviewKey(key->encrypt(*vault->overviewKey()));

  EXPECT_TRUE(storedCopyOf(*vault)->_unlockWithPassword("A\u030Angstro\u0308m"));
}

TEST(QNProfileLock, AnUnlockLogsItsEntryAndItsExitWhereStatusLogsAreAllowed) {
  const auto vault = storedCopyOf(*demoVault());
  const MRCapturingSink sink;

  MRLogger::sharedLogger().allowStatus(DEBUG_DATABASE);
  vault->_unlockWithPassword("wrong");
  MRLogger::sharedLogger().allowStatus(0);
  vault->_unlockWithPassword("wrong");

  const auto records = sink.records();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0].kind, MRLogKind::enter);
  EXPECT_EQ(records[0].method, "_unlockWithPassword");
  EXPECT_EQ(records[1].kind, MRLogKind::exit);
  EXPECT_EQ(records[1].method, "_unlockWithPassword");
  EXPECT_GT(records[1].elapsedSeconds, 0);
}

TEST(QNProfileLock, AnUnlockWithoutAPasswordLogsItsEntryAndItsExitToo) {
  const auto vault = storedCopyOf(*demoVault());
  const MRCapturingSink sink;

  MRLogger::sharedLogger().allowStatus(DEBUG_DATABASE);
  vault->_unlockWithPassword(std::nullopt);
  MRLogger::sharedLogger().allowStatus(0);

  const auto records = sink.records();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0].kind, MRLogKind::enter);
  EXPECT_EQ(records[1].kind, MRLogKind::exit);
  EXPECT_EQ(records[1].method, "_unlockWithPassword");
}

// Locking

TEST(QNProfileLock, ALockClearsTheKeysAndThePassword) {
  const auto vault = demoVault();

  vault->lock();

  EXPECT_TRUE(vault->isLocked());
  EXPECT_FALSE(vault->isUnlocked());
  EXPECT_EQ(vault->overviewKey(), std::nullopt);
  EXPECT_EQ(vault->masterKey(), std::nullopt);
  EXPECT_FALSE(vault->profilePassword().has_value());
}

TEST(QNProfileLock, ALockPostsWillWhileUnlockedAndDidWhileLocked) {
  const auto vault = demoVault();
  const QNVaultListener listener(*vault);

  vault->lock();

  EXPECT_EQ(listener.heard, (Heard{"QNProfileWillLockNotification unlocked",
                                   "QNProfileDidLockNotification locked"}));
}

TEST(QNProfileLock, ALockOfALockedVaultPostsAgainAndChangesNothingElse) {
  const auto vault = storedCopyOf(*demoVault());
  const QNVaultListener listener(*vault);

  vault->lock();

  EXPECT_EQ(listener.heard,
            (Heard{"QNProfileWillLockNotification locked", "QNProfileDidLockNotification locked"}));
  EXPECT_FALSE(vault->dirtyRow());
  EXPECT_TRUE(vault->_unlockWithPassword(DEMO_PASSWORD));
}

TEST(QNProfileLock, NothingIsPostedByAVaultThatAnImporterOpened) {
  const auto vault = demoVault();
  const QNVaultListener listener(*vault);
  vault->setOpenedForImport(true);

  vault->lock();
  vault->_unlockWithPassword(DEMO_PASSWORD);
  vault->postNotificationName(QNProfileDidLockNotification);

  EXPECT_EQ(listener.heard, Heard{});
}

// Drops the last reference to a vault at the first of its notifications, and tells whether the
// vault was still there at the last one.
class LastReference final {
 public:
  explicit LastReference(std::shared_ptr<QNProfile> vault)
      : held(std::move(vault)),
        _watched(held),
        _token(center().addObserver(
            "", held.get(), [this](std::string_view name, const void* /*object*/) {
              held.reset();
              heard.push_back(std::string(name) + (_watched.expired() ? " gone" : ""));
            })) {}
  ~LastReference() { center().removeObserver(_token); }
  LastReference(const LastReference&) = delete;
  LastReference& operator=(const LastReference&) = delete;
  [[nodiscard]] bool isGone() const { return _watched.expired(); }

  std::shared_ptr<QNProfile> held;
  Heard heard;

 private:
  static MRNotificationCenter& center() { return MRNotificationCenter::defaultCenter(); }
  std::weak_ptr<QNProfile> _watched;
  MRNotificationCenter::Token _token;
};

TEST(QNProfileLock, AnObserverMayDropTheVaultThatLocks) {
  LastReference vault(demoVault());

  vault.held->lock();

  EXPECT_EQ(vault.heard, (Heard{"QNProfileWillLockNotification", "QNProfileDidLockNotification"}));
  EXPECT_TRUE(vault.isGone());
}

TEST(QNProfileLock, AnObserverMayDropTheVaultThatUnlocks) {
  LastReference vault(storedCopyOf(*demoVault()));

  EXPECT_TRUE(vault.held->_unlockWithPassword(DEMO_PASSWORD));

  EXPECT_EQ(vault.heard,
            (Heard{"QNProfileWillUnlockNotification", "QNProfileDidUnlockNotification"}));
  EXPECT_TRUE(vault.isGone());
}

TEST(QNProfileLock, PostsAsTheWholeObject) {
  const auto vault = demoVault();
  const std::shared_ptr<QNGenericProfile> asAnyVault = vault;
  const void* poster = nullptr;
  auto& center = MRNotificationCenter::defaultCenter();
  const auto token = center.addObserver(
      "a name", nullptr, [&](std::string_view, const void* object) { poster = object; });

  vault->postNotificationName("a name");
  center.removeObserver(token);

  EXPECT_EQ(poster, dynamic_cast<const void*>(asAnyVault.get()));
}

TEST(QNProfileLock, MakingAndAPasswordChangePostNothing) {
  Heard heard;
  auto& center = MRNotificationCenter::defaultCenter();
  const auto token = center.addObserver(
      "", nullptr, [&](std::string_view name, const void*) { heard.emplace_back(name); });

  const auto vault = demoVault();
  vault->changePasswordTo(DEMO_PASSWORD);
  vault->setOverviewKey(std::nullopt);
  vault->setMasterKey(std::nullopt);
  center.removeObserver(token);

  EXPECT_EQ(heard, Heard{});
}

TEST(QNProfileLock, AnyKeyOrThePasswordAloneCountsAsUnlocked) {
  const auto vault = QNProfile::initExistingWithID(5);

  vault->setMasterKey(Bytes(256));
  EXPECT_TRUE(vault->isUnlocked());
  vault->setMasterKey(std::nullopt);
  EXPECT_TRUE(vault->isLocked());
  vault->setOverviewKey(Bytes(64));
  EXPECT_TRUE(vault->isUnlocked());
  vault->setOverviewKey(std::nullopt);
  EXPECT_TRUE(vault->isLocked());
  vault->setProfilePassword("a");
  EXPECT_TRUE(vault->isUnlocked());
}

TEST(QNProfileLock, AnEmptyPasswordIsNotKept) {
  const auto vault = QNProfile::initExistingWithID(5);
  vault->setProfilePassword("a");

  vault->setProfilePassword("");

  EXPECT_FALSE(vault->profilePassword().has_value());
  EXPECT_TRUE(vault->isLocked());
}

TEST(QNProfileLock, EmptyKeyBytesCountAsAbsent) {
  const auto vault = demoVault();
  vault->setProfilePassword(std::nullopt);

  vault->setOverviewKey(Bytes());
  vault->setMasterKey(Bytes());

  EXPECT_EQ(vault->overviewKey(), std::nullopt);
  EXPECT_EQ(vault->masterKey(), std::nullopt);
  EXPECT_TRUE(vault->isLocked());
}

TEST(QNProfileLock, AKeyMayBeSetFromItself) {
  const auto vault = demoVault();
  const QNKeyBytes before = *vault->overviewKey();

  vault->setOverviewKey(*vault->overviewKey());

  EXPECT_EQ(vault->overviewKey(), before);
}

// A change of password

TEST(QNProfileLock, ANewPasswordTakesThePlaceOfTheOldOne) {
  const auto vault = QNProfile::initNewWithPassword("the old password");
  vault->didSave();
  const QNKeyBytes overviewKey = *vault->overviewKey();
  const QNKeyBytes masterKey = *vault->masterKey();

  EXPECT_TRUE(vault->changePasswordTo(DEMO_PASSWORD));

  const auto stored = storedCopyOf(*vault);
  EXPECT_FALSE(stored->_unlockWithPassword("the old password"));
  EXPECT_TRUE(stored->_unlockWithPassword(DEMO_PASSWORD));
  EXPECT_EQ(stored->overviewKey(), overviewKey);
  EXPECT_EQ(stored->masterKey(), masterKey);
  EXPECT_EQ(vault->profilePassword()->reveal(), DEMO_PASSWORD);
  EXPECT_TRUE(vault->dirtyRow());
}

TEST(QNProfileLock, APasswordChangeDrawsANewSaltAndSealsBothKeysAnew) {
  const auto vault = demoVault();
  const auto before = storedCopyOf(*vault);

  ASSERT_TRUE(vault->changePasswordTo(DEMO_PASSWORD));

  EXPECT_EQ(vault->salt()->size(), 16u);
  EXPECT_NE(vault->salt(), before->salt());
  EXPECT_NE(vault->encryptedMasterKey(), before->encryptedMasterKey());
  EXPECT_NE(vault->encryptedOverviewKey(), before->encryptedOverviewKey());
}

TEST(QNProfileLock, APasswordChangeTellsWhereAndWhen) {
  const auto vault = demoVault();
  vault->setLastUpdatedBy("elsewhere");
  const QNScopedClock clock(1'700'000'123);
  const QNScopedHostName host("kestrel");

  ASSERT_TRUE(vault->changePasswordTo(DEMO_PASSWORD));

  EXPECT_EQ(vault->lastUpdatedBy(), "kestrel");
  EXPECT_EQ(vault->updatedAt(), 1'700'000'123u);
}

TEST(QNProfileLock, TheDemonstrationPasswordHasItsFixedCount) {
  EXPECT_EQ(demoVault()->iterations(), 100u);
}

TEST(QNProfileLock, AnyOtherPasswordHasACalibratedCount) {
  const auto vault = QNProfile::initNewWithPassword("correct horse battery staple");
  const auto stored = storedCopyOf(*vault);

  EXPECT_GE(vault->iterations(), QNAESKey::kMinCalibratedIterations);
  EXPECT_LE(vault->iterations(), QNAESKey::kMaxCalibratedIterations);
  EXPECT_TRUE(stored->_unlockWithPassword("correct horse battery staple"));
}

TEST(QNProfileLock, AnEmptyPasswordSealsAndOpensButIsNotKept) {
  const auto vault = demoVault();

  ASSERT_TRUE(vault->changePasswordTo(""));

  EXPECT_FALSE(vault->profilePassword().has_value());
  EXPECT_TRUE(vault->isUnlocked());
  EXPECT_TRUE(storedCopyOf(*vault)->_unlockWithPassword(""));
}

TEST(QNProfileLock, ANewVaultWhosePasswordIsNotUTF8HasKeysThatCannotBeStored) {
  const MRCapturingSink sink;

  const auto vault = QNProfile::initNewWithPassword("p\xFF");

  EXPECT_TRUE(vault->encryptOverview(Bytes{1}).has_value());
  EXPECT_EQ(vault->encryptedOverviewKey(), std::nullopt);
  EXPECT_EQ(vault->encryptedMasterKey(), std::nullopt);
  EXPECT_EQ(sink.texts(MRLogKind::error).size(), 1u);
}

std::optional<std::string> keptPassword(const QNProfile& vault) {
  const auto kept = vault.profilePassword();
  return kept ? std::optional(std::string(kept->reveal())) : std::nullopt;
}

struct RefusedChange {
  const char* name;
  void (*prepare)(QNProfile&);
  std::optional<std::string> password;
  MRLogKind kind;
  std::string report;
};
class QNProfileRefusedChange : public testing::TestWithParam<RefusedChange> {};

TEST_P(QNProfileRefusedChange, ReportsAndChangesNothing) {
  const auto vault = demoVault();
  vault->didSave();
  GetParam().prepare(*vault);
  const auto before = storedCopyOf(*vault);
  const auto password = keptPassword(*vault);
  vault->setUpdatedAt(5);
  vault->setLastUpdatedBy("elsewhere");
  const MRCapturingSink sink;

  EXPECT_FALSE(vault->changePasswordTo(GetParam().password));

  EXPECT_EQ(sink.texts(GetParam().kind), std::vector<std::string>{GetParam().report});
  ASSERT_EQ(sink.records().size(), 1u);
  EXPECT_EQ(sink.records()[0].method, "changePasswordTo");
  EXPECT_EQ(vault->salt(), before->salt());
  EXPECT_EQ(vault->iterations(), before->iterations());
  EXPECT_EQ(vault->encryptedMasterKey(), before->encryptedMasterKey());
  EXPECT_EQ(vault->encryptedOverviewKey(), before->encryptedOverviewKey());
  EXPECT_EQ(vault->updatedAt(), 5u);
  EXPECT_EQ(vault->lastUpdatedBy(), "elsewhere");
  EXPECT_EQ(keptPassword(*vault), password);
  EXPECT_FALSE(vault->dirtyRow());
}

INSTANTIATE_TEST_SUITE_P(
    Reasons, QNProfileRefusedChange,
    testing::Values(
        RefusedChange{"NoPassword", [](QNProfile&) {}, std::nullopt, MRLogKind::assertion,
                      "Password cannot be nil"},
        RefusedChange{"NotUTF8", [](QNProfile&) {}, "p\xFF", MRLogKind::error,
                      "Failed to encrypt the vault's keys under the new password"},
        RefusedChange{"Locked", [](QNProfile& it) { it.lock(); }, "new", MRLogKind::assertion,
                      "Cannot change password, overviewKey is not available"},
        RefusedChange{"NoOverviewKey", [](QNProfile& it) { it.setOverviewKey(std::nullopt); },
                      "new", MRLogKind::assertion,
                      "Cannot change password, overviewKey is not available"},
        RefusedChange{"NoMasterKey", [](QNProfile& it) { it.setMasterKey(std::nullopt); }, "new",
                      MRLogKind::assertion, "Cannot change password, masterKey is not available"}),
    [](const auto& reason) { return reason.param.name; });

}  // namespace
}  // namespace quillon
