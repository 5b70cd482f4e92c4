#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/templates/internal/QNTestCategories.h"
#include "quillon/touchpoints/QNItemSpecifier.h"

namespace quillon {
namespace {

using testing::Contains;
using testing::ElementsAre;

TEST(QNItemProfile, TheUnionProfileChangesNothingAndIsReported) {
  const auto vault = localVault();
  const auto item = newItem(vault);
  const auto uuid = item->uuid();
  item->didSave();
  const auto all = accountVault();
  all->setProfileType(kProfileTypeUnion);
  const MRCapturingSink sink;

  item->setProfile(all);

  EXPECT_EQ(item->profile(), vault);
  EXPECT_EQ(item->profileType(), kProfileTypeLocalVault);
  EXPECT_EQ(item->uuid(), uuid);
  EXPECT_FALSE(item->dirtyRow());
  EXPECT_THAT(
      assertions(sink),
      ElementsAre("Attempting to move an item to the union profile. That's not supported!"));
}

TEST(QNItemProfile, TheSameProfileAgainChangesNothing) {
  const auto vault = localVault();
  const auto item = newItem(vault);
  const auto uuid = item->uuid();

  item->setProfile(vault);

  EXPECT_EQ(item->uuid(), uuid);
}

TEST(QNItemProfile, AnAccountVaultGivesAShortUuid) {
  const auto item = newItem(accountVault());

  ASSERT_NE(item->uuid(), nullptr);
  EXPECT_EQ(item->uuid()->size(), 22u);
}

TEST(QNItemProfile, AMoveBetweenLocalVaultsChangesTheUuidAndKeepsTheKey) {
  const auto item = newItem(localVault(1));
  item->setNotesPlain("the notes");
  save(*item);
  const auto key = item->key();
  const auto uuid = item->uuid();
  const auto target = localVault(2);

  item->setProfile(target);
  save(*item);

  EXPECT_NE(*item->uuid(), *uuid);
  EXPECT_EQ(item->uuid()->size(), 36u);
  EXPECT_EQ(item->key(), key);
  EXPECT_EQ(opened(*item, target)->notesPlain(), "the notes");
}

TEST(QNItemProfile, AMoveOfAnUnopenedItemBetweenLocalVaultsTakesItsKeyAlong) {
  const auto from = localVault(1);
  const auto row = newItem(from);
  row->setTitle("T");
  row->setNotesPlain("the notes");
  save(*row);
  const auto target = localVault(2);
  const auto item = opened(*row, from);

  item->setProfile(target);
  save(*item);

  const auto read = opened(*item, target);
  EXPECT_EQ(read->title(), "T");
  EXPECT_EQ(read->notesPlain(), "the notes");
  EXPECT_EQ(read->key()->rawKeyData(), row->key()->rawKeyData());
}

TEST(QNItemProfile, AMoveFromALocalVaultToAnAccountBringsTheDetailsAlong) {
  const auto from = localVault();
  const auto row = newItem(from);
  row->setTitle("T");
  row->setNotesPlain("the notes");
  save(*row);
  const auto target = accountVault();
  const auto item = opened(*row, from);

  item->setProfile(target);
  save(*item);

  EXPECT_EQ(item->uuid()->size(), 22u);
  const auto read = opened(*item, target);
  EXPECT_EQ(read->title(), "T");
  EXPECT_EQ(read->notesPlain(), "the notes");
  EXPECT_EQ(read->detailsObjectForKey(kDetailsBackupKeys), nullptr);
}

TEST(QNItemProfile, AMoveFromAnAccountToALocalVaultGivesANewKeyANewUuidAndClearDetails) {
  const auto from = accountVault();
  const auto row = newItem(from);
  row->setNotesPlain("the notes");
  save(*row);
  const auto item = opened(*row, from);
  item->setKey(QNAESKey::initWithRandomKey());
  const auto unusedKey = item->key();
  const auto uuid = item->uuid();
  const auto target = localVault();

  item->setProfile(target);

  EXPECT_NE(*item->uuid(), *uuid);
  EXPECT_EQ(item->uuid()->size(), 36u);
  ASSERT_NE(item->key(), nullptr);
  EXPECT_NE(item->key(), unusedKey);
  item->setDetailsObject(Json(1), "n");  // the details are in clear: no vault is asked
  EXPECT_EQ(item->notesPlain(), "the notes");
  save(*item);
  EXPECT_EQ(opened(*item, target)->notesPlain(), "the notes");
}

TEST(QNItemProfile, ANewItemThatCrossesGetsANewKey) {
  const auto item = newItem(accountVault());
  const MRCapturingSink sink;
  const auto made = item->key();

  item->setProfile(localVault());

  EXPECT_NE(item->key(), made);
}

TEST(QNItemProfile, AMoveBetweenAccountVaultsChangesTheUuid) {
  const auto item = newItem(accountVault(2));
  const auto uuid = item->uuid();

  item->setProfile(accountVault(3));

  EXPECT_NE(*item->uuid(), *uuid);
  EXPECT_EQ(item->uuid()->size(), 22u);
}

TEST(QNItemProfile, AMoveOfAnUnopenedItemBetweenAccountVaultsTakesItsDetailsAlong) {
  const auto from = accountVault(2);
  const auto row = newItem(from);
  row->setTitle("T");
  row->setNotesPlain("the notes");
  save(*row);
  const auto target = accountVault(3);
  const auto item = opened(*row, from);
  const auto marker = QNAESKey::initWithRandomKey();
  item->setKey(marker);

  item->setProfile(target);
  save(*item);

  const auto read = opened(*item, target);
  EXPECT_EQ(read->title(), "T");
  EXPECT_EQ(read->notesPlain(), "the notes");
  EXPECT_EQ(opened(*item, from)->notesPlain(), std::nullopt);
  EXPECT_EQ(item->key(), marker);
}

TEST(QNItemProfile, WithoutAProfileAgainItLosesItsUuidAndSaysSo) {
  const auto item = newItem(localVault());
  item->setTitle("T");
  const MRCapturingSink sink;

  item->setProfile(nullptr);

  EXPECT_EQ(item->uuid(), nullptr);
  EXPECT_EQ(item->title(), "T");
  EXPECT_THAT(assertions(sink), testing::Contains("Unknown profile type: 0"));
}

TEST(QNItemProfile, AMoveToAVaultWithTheSameUuidKeepsTheItemsUuid) {
  const auto vault = localVault(1);
  const auto reloaded = localVault(1, *vault->uuid());
  const auto item = newItem(vault);
  const auto uuid = item->uuid();

  item->setProfile(reloaded);

  EXPECT_EQ(item->uuid(), uuid);
  EXPECT_EQ(item->profile(), reloaded);
}

TEST(QNItemProfile, AFirstProfileOfTheKnownTypeKeepsTheUuid) {
  const auto item = std::make_shared<QNSampleItem>(QNExisting{3});
  item->setProfileType(kProfileTypeLocalVault);
  item->setUuid(sharedString("U"));

  item->setProfile(localVault());

  EXPECT_EQ(*item->uuid(), "U");
}

TEST(QNItemProfile, TellsWhenAUuidIsToBeMadeAnew) {
  const auto item = std::make_shared<QNSampleItem>(initNew);
  const auto vault = localVault();
  const auto twin = localVault(1, *vault->uuid());
  const auto needed = [&](const std::shared_ptr<QNGenericProfile>& from, std::uint64_t type,
                          const std::shared_ptr<QNGenericProfile>& to) {
    return item->shouldRegenerateUUIDMovingFromProfile(from, type, to);
  };

  EXPECT_FALSE(needed(nullptr, 2, vault));
  EXPECT_TRUE(needed(nullptr, 0, vault));
  EXPECT_TRUE(needed(nullptr, 3, vault));
  EXPECT_TRUE(needed(accountVault(), 3, vault));
  EXPECT_TRUE(needed(localVault(), 2, vault));
  EXPECT_FALSE(needed(twin, 2, vault));
}

TEST(QNItemProfile, AMoveTakesTheURLsAlong) {
  const auto item = newItem(localVault(1));
  item->addURLString("https://a.example");
  item->addURLString("https://b.example");
  const auto kept = item->URLAtIndex(0);
  const auto removed = item->URLAtIndex(1);
  removed->_setOid(9);
  item->removeURL(removed);
  const auto target = localVault(2);

  item->setProfile(target);

  EXPECT_EQ(kept->profile(), target);
  EXPECT_EQ(removed->profile(), target);
}

TEST(QNItemProfile, AMoveMakesANewSpecifier) {
  const auto item = newItem(localVault(1));
  const auto before = item->itemSpecifier();
  const auto target = localVault(2);

  item->setProfile(target);

  EXPECT_NE(item->itemSpecifier(), before);
  EXPECT_EQ(item->itemSpecifier()->uuid(), *item->uuid());
  EXPECT_EQ(item->itemSpecifier()->profileUUID(), *target->uuid());
}

TEST(QNItemProfile, AMoveWhoseDetailsDontOpenKeepsThem) {
  const auto from = localVault();
  const auto row = newItem(from);
  row->setNotesPlain("the notes");
  save(*row);
  const auto item = opened(*row, from);
  const Bytes damaged = mr_randomData(100);
  item->setDetailsData(damaged);
  const MRCapturingSink sink;

  item->setProfile(accountVault());
  item->willSave();

  EXPECT_EQ(item->detailsData(), damaged);
  EXPECT_THAT(errors(sink), Contains("Failed to saveItem: Failed to serialize details: "
                                     "MRErrorDomain 114"));
}

TEST(QNItemProfile, FindsItsCategoryInTheVault) {
  const auto vault = accountVault();
  const auto category = std::make_shared<QNTestCategory>("001", "Login");
  vault->addCategory(category);
  const auto item = newItem(vault);
  item->setCategoryUUID("001");

  EXPECT_EQ(item->category(), category);
}

TEST(QNItemProfile, MakesALegacyCategoryWhereTheVaultKnowsNone) {
  const QNScopedTemplates templates{R"({"uuid":"x10"})"};
  const auto item = newItem(localVault());
  item->setCategoryUUID("x10");

  const auto category = item->category();

  ASSERT_NE(category, nullptr);
  EXPECT_EQ(category->uuid(), "x10");
}

TEST(QNItemProfile, HasNoCategoryWhereNothingServesIt) {
  const auto item = newItem(localVault());
  item->setCategoryUUID("x11");

  EXPECT_EQ(item->category(), nullptr);
}

TEST(QNItemProfile, WithoutAProfileThereIsNoCategoryAndNoEditing) {
  const auto item = std::make_shared<QNSampleItem>(initNew);

  EXPECT_EQ(item->category(), nullptr);
  EXPECT_FALSE(item->isUIEditable());
}

TEST(QNItemProfile, IsEditableWithThePermissionAndAnEditableCategory) {
  const auto vault = accountVault();
  const auto item = newItem(vault);
  item->setCategoryUUID("001");
  EXPECT_TRUE(item->isUIEditable());

  vault->setPermissions(kPermissionReveal);
  EXPECT_FALSE(item->isUIEditable());
  vault->setPermissions(kPermissionEdit);
  item->setCategoryUUID(std::string(QNCategoryUUIDSSHKey));

  EXPECT_FALSE(item->isUIEditable());
}

TEST(QNItemProfile, AMoveToAVaultWithTheSameUuidMakesANewSpecifierToo) {
  const auto from = localVault(1);
  const auto to = localVault(2);
  to->setUuid(from->uuid());
  const auto item = newItem(from);
  const auto before = item->itemSpecifier();

  item->setProfile(to);

  EXPECT_NE(item->itemSpecifier(), before);
  EXPECT_EQ(item->itemSpecifier()->uuid(), *item->uuid());
  EXPECT_EQ(item->itemSpecifier()->profileUUID(), *to->uuid());
}

TEST(QNItemProfile, TwoVaultsWithoutAUuidAreTwoVaults) {
  const auto from = localVault(1);
  const auto to = localVault(2);
  from->setUuid(nullptr);
  to->setUuid(nullptr);
  const auto item = newItem(from);

  EXPECT_TRUE(item->shouldRegenerateUUIDMovingFromProfile(from, kProfileTypeLocalVault, to));
  EXPECT_TRUE(item->shouldRegenerateUUIDMovingFromProfile(from, 0, nullptr));
}

}  // namespace
}  // namespace quillon
