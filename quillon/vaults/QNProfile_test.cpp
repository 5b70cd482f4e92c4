#include "quillon/vaults/QNProfile.h"

#include <fmt/format.h>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/vaults/internal/QNTestServerProfile.h"
#include "quillon/vaults/internal/QNVaultTesting.h"

namespace quillon {
namespace {

// A vault is stored like any row, and answers as any vault.
static_assert(std::is_base_of_v<QNDatabaseObjectWithOverview, QNProfile>);
static_assert(std::is_base_of_v<QNGenericProfile, QNProfile>);
static_assert(!std::is_abstract_v<QNProfile>);
static_assert(!std::is_copy_constructible_v<QNProfile> && !std::is_copy_assignable_v<QNProfile>);
static_assert(std::is_base_of_v<QNGenericProfile, QNServerProfile>);

// Numbers that applications and stored rows know.
static_assert(kProfileTypeUnion == 1 && kProfileTypeLocalVault == 2);
static_assert(kProfileTypeAccountVault == 3 && kProfileTypeMasterUnlock == 4);
static_assert(kFeatureDocuments == 7 && kFeatureLocalIcons == 8 && kFeatureServerIcons == 9);
static_assert(kPermissionImplyingCreateItems == 0x200000);
static_assert(kPermissionExportAttributes == 0x400000);
static_assert(MASTER_KEY_SIZE == 256 && OVERVIEW_KEY_SIZE == 64);

// Making

TEST(QNProfile, ANewVaultIsUnlockedWithFreshKeys) {
  const QNScopedClock clock(1'700'000'000);

  const auto vault = QNProfile::initNewWithPassword(DEMO_PASSWORD);

  EXPECT_TRUE(vault->isUnlocked());
  EXPECT_EQ(vault->overviewKey()->size(), 64u);
  EXPECT_EQ(vault->masterKey()->size(), 256u);
  EXPECT_TRUE(vault->encryptedOverviewKey().has_value());
  EXPECT_TRUE(vault->encryptedMasterKey().has_value());
  EXPECT_EQ(vault->createdAt(), 1'700'000'000u);
  EXPECT_EQ(vault->uuid()->size(), 36u);
  EXPECT_EQ(vault->oid(), 0u);
  EXPECT_TRUE(vault->dirtyRow());
}

TEST(QNProfile, TwoNewVaultsShareNothing) {
  const auto one = demoVault();
  const auto other = demoVault();

  EXPECT_NE(*one->uuid(), *other->uuid());
  EXPECT_NE(*one->overviewKey(), *other->overviewKey());
  EXPECT_NE(*one->masterKey(), *other->masterKey());
  EXPECT_NE(one->salt(), other->salt());
}

TEST(QNProfile, ANewVaultWithoutAPasswordHasKeysThatCannotBeStored) {
  const MRCapturingSink sink;

  const auto vault = QNProfile::initNewWithPassword(std::nullopt);

  EXPECT_TRUE(vault->isUnlocked());
  EXPECT_TRUE(vault->overviewKey().has_value());
  EXPECT_TRUE(vault->masterKey().has_value());
  EXPECT_EQ(vault->encryptedOverviewKey(), std::nullopt);
  EXPECT_EQ(vault->encryptedMasterKey(), std::nullopt);
  EXPECT_EQ(sink.texts(MRLogKind::assertion), std::vector<std::string>{"Password cannot be nil"});
}

TEST(QNProfile, MakesAVaultWithNameAndHint) {
  const auto vault = QNProfile::profileWithName("home", DEMO_PASSWORD, "the usual");

  EXPECT_EQ(vault->profileName(), "home");
  EXPECT_EQ(vault->passwordHint(), "the usual");
  EXPECT_EQ(vault->profilePassword()->reveal(), DEMO_PASSWORD);
}

TEST(QNProfile, AnExistingVaultIsACleanLockedShell) {
  const auto vault = QNProfile::initExistingWithID(5);

  EXPECT_TRUE(vault->isLocked());
  EXPECT_EQ(vault->oid(), 5u);
  EXPECT_FALSE(vault->dirtyRow());
  EXPECT_TRUE(vault->allTags().empty());
  EXPECT_TRUE(vault->allCategories().empty());
}

TEST(QNProfile, KeepsAnOverviewOfItsOwnUnderItsOverviewKey) {
  const auto vault = demoVault();
  vault->setOverviewText("a", "title");
  vault->willSave();
  const auto stored = storedCopyOf(*vault);
  stored->setOverviewData(vault->overviewData());

  ASSERT_TRUE(stored->_unlockWithPassword(DEMO_PASSWORD));

  EXPECT_EQ(stored->overviewTextForKey("title"), "a");
}

TEST(QNProfile, IsItsOwnProfileWithoutHoldingItself) {
  auto vault = demoVault();
  const std::weak_ptr<QNProfile> watched = vault;

  EXPECT_EQ(vault->profile(), vault);
  vault->setProfile(vault);
  vault.reset();

  EXPECT_TRUE(watched.expired());
}

TEST(QNProfile, NoOtherProfileTakesItsOwnPlace) {
  const auto vault = storedCopyOf(*demoVault());
  for (const auto& other : std::vector<std::shared_ptr<QNGenericProfile>>{demoVault(), nullptr}) {
    const MRCapturingSink sink;

    vault->setProfile(other);

    EXPECT_EQ(sink.texts(MRLogKind::assertion),
              std::vector<std::string>{"A vault is its own profile"});
    EXPECT_EQ(sink.records().size(), 1u);
    EXPECT_EQ(vault->profile(), vault);
    EXPECT_EQ(vault->profileId(), 0u);
    EXPECT_EQ(vault->profileType(), 2u);
    EXPECT_FALSE(vault->dirtyRow());
  }
}

TEST(QNProfile, BeingItsOwnProfileIsNoNews) {
  const auto vault = storedCopyOf(*demoVault());
  const MRCapturingSink sink;

  vault->setProfile(vault);

  EXPECT_TRUE(sink.records().empty());
  EXPECT_FALSE(vault->dirtyRow());
}

TEST(QNProfile, AUuidIsSetOnceAndStays) {
  const auto vault = QNProfile::initExistingWithID(5);
  vault->setUuid(sharedString("U"));
  for (const auto& other : {sharedString("V"), QNSharedString()}) {
    const MRCapturingSink sink;

    vault->setUuid(other);

    EXPECT_EQ(sink.texts(MRLogKind::assertion),
              std::vector<std::string>{"A vault's uuid can't be replaced"});
    EXPECT_EQ(*vault->uuid(), "U");
  }
}

TEST(QNProfile, TheSameUuidMayBeSetAgain) {
  const auto vault = QNProfile::initExistingWithID(5);
  const auto again = sharedString("U");
  vault->setUuid(sharedString("U"));
  const MRCapturingSink sink;

  vault->setUuid(again);

  EXPECT_EQ(vault->uuid(), again);
  EXPECT_TRUE(sink.records().empty());
}

TEST(QNProfile, AccessorsStoreAndDirtyNothing) {
  const auto vault = QNProfile::initExistingWithID(5);

  vault->setCreatedAt(1);
  vault->setUpdatedAt(2);
  vault->setProfileName("home");
  vault->setPasswordHint("hint");
  vault->setLastUpdatedBy("host");
  vault->setAttributesData(Bytes{1, 2});
  vault->setIterations(8);
  vault->setSalt(Bytes{3});
  vault->setEncryptedMasterKey(Bytes{4});
  vault->setEncryptedOverviewKey(Bytes{5});
  vault->setOpenedForImport(true);
  vault->setProfileColor(QNColor{0.25f, 0.5f, 0.75f, 1});
  vault->setTagsLoaded(true);

  EXPECT_EQ(vault->createdAt(), 1u);
  EXPECT_EQ(vault->updatedAt(), 2u);
  EXPECT_EQ(vault->profileName(), "home");
  EXPECT_EQ(vault->passwordHint(), "hint");
  EXPECT_EQ(vault->lastUpdatedBy(), "host");
  EXPECT_EQ(vault->attributesData(), (Bytes{1, 2}));
  EXPECT_EQ(vault->iterations(), 8u);
  EXPECT_EQ(vault->salt(), Bytes{3});
  EXPECT_EQ(vault->encryptedMasterKey(), Bytes{4});
  EXPECT_EQ(vault->encryptedOverviewKey(), Bytes{5});
  EXPECT_TRUE(vault->openedForImport());
  EXPECT_EQ(vault->profileColor(), (QNColor{0.25f, 0.5f, 0.75f, 1}));
  EXPECT_TRUE(vault->tagsLoaded());
  EXPECT_FALSE(vault->dirtyRow());
}

// Shared questions

TEST(QNProfile, AnswersTheSharedQuestions) {
  const auto vault = demoVault("home");

  EXPECT_EQ(vault->profileType(), 2u);
  EXPECT_FALSE(vault->isAllVaultsVault());
  EXPECT_TRUE(vault->isVisible());
  EXPECT_FALSE(vault->includeUnknownItems());
  EXPECT_EQ(vault->vaults(), std::vector<std::shared_ptr<QNGenericProfile>>{vault});
  EXPECT_EQ(vault->vaultUUIDs(), std::set<std::string>{*vault->uuid()});
}

TEST(QNProfile, AVaultWithoutAUuidHasNoVaultUuids) {
  EXPECT_TRUE(QNProfile::initExistingWithID(5)->vaultUUIDs().empty());
}

struct NameCase {
  std::optional<std::string> name;
  bool primary, demo;
  std::string keychainFileName;
};
class QNProfileNames : public testing::TestWithParam<NameCase> {};

TEST_P(QNProfileNames, TellThePrimaryAndTheDemonstrationVault) {
  const auto vault = QNProfile::initExistingWithID(5);

  vault->setProfileName(GetParam().name);

  EXPECT_EQ(vault->isPrimaryProfile(), GetParam().primary);
  EXPECT_EQ(vault->isDemoProfile(), GetParam().demo);
  EXPECT_EQ(vault->keychainFileName(), GetParam().keychainFileName);
}

INSTANTIATE_TEST_SUITE_P(Names, QNProfileNames,
                         testing::Values(NameCase{"default", true, false, "Quillon"},
                                         NameCase{"demo", false, true, "demo"},
                                         NameCase{"Default", false, false, "Default"},
                                         NameCase{"home", false, false, "home"},
                                         NameCase{std::nullopt, false, false, ""}));

class QNProfileFeatures : public testing::TestWithParam<std::uint32_t> {};

TEST_P(QNProfileFeatures, AreThoseOfALocalVault) {
  const std::set<std::uint32_t> supported = {1, 2, 3, 4, 5, 8};

  EXPECT_EQ(demoVault()->supportsFeature(GetParam()), supported.count(GetParam()) == 1);
}

INSTANTIATE_TEST_SUITE_P(Numbers, QNProfileFeatures,
                         testing::Values(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 4294967295));

TEST(QNProfile, KeepsItemIconsLocallyAndNotOnAServer) {
  const auto vault = demoVault();

  EXPECT_TRUE(vault->supportsFeature(8));
  EXPECT_FALSE(vault->supportsFeature(9));
}

struct PermissionCase {
  std::uint64_t mask;
  bool granted;
};
class QNProfilePermissions : public testing::TestWithParam<PermissionCase> {};

TEST_P(QNProfilePermissions, AreGrantedUnlessALowBitIsAsked) {
  EXPECT_EQ(demoVault()->hasPermission(GetParam().mask), GetParam().granted);
}

INSTANTIATE_TEST_SUITE_P(Masks, QNProfilePermissions,
                         testing::Values(PermissionCase{0, true}, PermissionCase{1, false},
                                         PermissionCase{2, false}, PermissionCase{3, false},
                                         PermissionCase{4, true}, PermissionCase{0x40, true},
                                         PermissionCase{0x42, false}, PermissionCase{0x300, true},
                                         PermissionCase{~std::uint64_t{3}, true},
                                         PermissionCase{~std::uint64_t{0}, false}));

class QNProfileActions : public testing::TestWithParam<std::uint32_t> {};

TEST_P(QNProfileActions, AreAllowedByAnUnlockedVaultButForItsManagement) {
  const std::uint32_t action = GetParam();
  const bool allowed = action >= 1 && action <= 15 && action != 8;

  EXPECT_EQ(demoVault()->hasPermissionToPerformAction(action), allowed);
}

TEST_P(QNProfileActions, AreRefusedByALockedVault) {
  EXPECT_FALSE(QNProfile::initExistingWithID(5)->hasPermissionToPerformAction(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Numbers, QNProfileActions, testing::Range(0u, 18u));

TEST(QNProfile, VaultsOfOneUuidAreEqual) {
  const auto vault = demoVault();
  const auto copy = storedCopyOf(*vault);
  copy->setUuid(sharedString(*vault->uuid()));

  EXPECT_TRUE(vault->isEqual(*copy));
  EXPECT_EQ(vault->hash(), copy->hash());
  EXPECT_NE(vault->hash(), 0u);
}

TEST(QNProfile, VaultsOfOtherUuidsDiffer) {
  EXPECT_FALSE(demoVault()->isEqual(*demoVault()));
}

TEST(QNProfile, AVaultWithoutAUuidEqualsNone) {
  const auto vault = QNProfile::initExistingWithID(5);

  EXPECT_FALSE(vault->isEqual(*vault));
  EXPECT_FALSE(vault->isEqual(*demoVault()));
  EXPECT_FALSE(demoVault()->isEqual(*vault));
  EXPECT_EQ(vault->hash(), 0u);
}

TEST(QNProfile, AVaultOfAnotherClassDiffers) {
  const auto vault = demoVault();
  QNTestServerProfile account;
  account.setUuid(vault->uuid());

  EXPECT_FALSE(vault->isEqual(account));
}

TEST(QNProfile, DescribesItself) {
  const auto vault = QNProfile::initExistingWithID(5);
  vault->setUuid(sharedString("U"));
  vault->setProfileName("home");

  EXPECT_EQ(vault->description(), fmt::format("<QNProfile-U-5 'home' {}>", fmt::ptr(vault.get())));
}

TEST(QNProfile, DescribesAnEmptyShell) {
  const auto vault = QNProfile::initExistingWithID(5);

  EXPECT_EQ(vault->description(),
            fmt::format("<QNProfile-(null)-5 '(null)' {}>", fmt::ptr(vault.get())));
}

// Names for people

class ScopedLanguage final {
 public:
  explicit ScopedLanguage(std::string_view tag) : _before(localization().language()) {
    localization().setLanguage(tag);
  }
  ~ScopedLanguage() { localization().setLanguage(_before); }
  ScopedLanguage(const ScopedLanguage&) = delete;
  ScopedLanguage& operator=(const ScopedLanguage&) = delete;

 private:
  static QNLocalization& localization() { return QNLocalization::sharedLocalization(); }
  std::string _before;
};

struct DisplayedCase {
  const char* language;
  const char* name;
  const char* displayed;
  const char* withVault;
};
class QNProfileDisplayedNames : public testing::TestWithParam<DisplayedCase> {};

TEST_P(QNProfileDisplayedNames, FollowTheLanguage) {
  const ScopedLanguage language(GetParam().language);
  const auto vault = QNProfile::initExistingWithID(5);
  vault->setProfileName(GetParam().name);

  EXPECT_EQ(QNProfile::displayedProfileNameForName(GetParam().name), GetParam().displayed);
  EXPECT_EQ(vault->displayedProfileName(), GetParam().displayed);
  EXPECT_EQ(vault->displayedProfileNameWithVaultAppendedAsNeeded(), GetParam().withVault);
}

INSTANTIATE_TEST_SUITE_P(
    Languages, QNProfileDisplayedNames,
    testing::Values(DisplayedCase{"en", "default", "Primary", "Primary Vault"},
                    DisplayedCase{"en", "demo", "Demo", "Demo Vault"},
                    DisplayedCase{"en", "Home", "Home", "Home Vault"},
                    DisplayedCase{"xx", "default", "Primary", "Primary Vault"},
                    DisplayedCase{"de", "default", "Primär", "Tresor Primär"},
                    DisplayedCase{"de-AT", "Haus", "Haus", "Tresor Haus"},
                    DisplayedCase{"fr", "default", "Principal", "Coffre Principal"},
                    DisplayedCase{"fr", "demo", "Démo", "Coffre Démo"},
                    DisplayedCase{"es", "default", "Principal", "Bóveda Principal"},
                    DisplayedCase{"ja", "default", "メイン", "メイン 保管庫"}));

TEST(QNProfile, AVaultWithoutANameDisplaysNone) {
  EXPECT_EQ(QNProfile::initExistingWithID(5)->displayedProfileName(), "");
}

struct VaultWordCase {
  const char* language;
  const char* name;
  const char* displayed;
};
class QNProfileVaultWord : public testing::TestWithParam<VaultWordCase> {};

TEST_P(QNProfileVaultWord, IsAppendedUnlessTheNameSaysItBesideABlank) {
  const ScopedLanguage language(GetParam().language);

  EXPECT_EQ(QNDisplayedProfileNameWithVaultAppendedAsNeeded(GetParam().name), GetParam().displayed);
}

INSTANTIATE_TEST_SUITE_P(
    Names, QNProfileVaultWord,
    testing::Values(
        VaultWordCase{"en", "My Vault", "My Vault"}, VaultWordCase{"en", "my vault", "my vault"},
        VaultWordCase{"en", "VAULT of keys", "VAULT of keys"},
        VaultWordCase{"en", "ｖａｕｌｔ at home", "ｖａｕｌｔ at home"},
        VaultWordCase{"en", "old vaults", "old vaults"},
        VaultWordCase{"en", "vault", "vault Vault"},
        VaultWordCase{"en", "MyVault", "MyVault Vault"}, VaultWordCase{"en", "", " Vault"},
        VaultWordCase{"en", "%@", "%@ Vault"}, VaultWordCase{"en", "{}", "{} Vault"},
        VaultWordCase{"en", "{0} %d 100%", "{0} %d 100% Vault"},
        VaultWordCase{"de", "%@ {}", "Tresor %@ {}"},
        VaultWordCase{"de", "Mein Tresor", "Mein Tresor"},
        VaultWordCase{"de", "My Vault", "Tresor My Vault"},
        VaultWordCase{"fr", "Coffre bleu", "Coffre bleu"},
        VaultWordCase{"es", "Mi bóveda", "Mi bóveda"},
        VaultWordCase{"es", "Mi boveda", "Bóveda Mi boveda"},
        VaultWordCase{"ja", "家 保管庫", "家 保管庫"}, VaultWordCase{"ja", "家", "家 保管庫"}));

}  // namespace
}  // namespace quillon
