#include <gmock/gmock.h>

#include "quillon/platform/archive/QNKeyedArchiver.h"
#include "quillon/platform/data/MRData.h"
#include "quillon/templates/QNCategory.h"
#include "quillon/vaults/internal/QNVaultTesting.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::shared_ptr<QNProfile> archivedAndRead(QNProfile& vault) {
  const auto archive = QNKeyedArchiver::archivedDataWithRootObject(vault);
  if (!archive.ok()) return nullptr;
  const QNDecodableClass classes[] = {
      {"QNProfile",
       [](QNDecoder& coder) -> std::shared_ptr<QNCoding> {
         return QNProfile::initWithCoder(coder);
       }},
      {"QNCategory", [](QNDecoder& coder) -> std::shared_ptr<QNCoding> {
         return std::make_shared<QNCategory>(coder);
       }}};
  const auto read = QNKeyedUnarchiver::unarchivedObjectOfClasses(classes, archive.value());
  return read.ok() ? std::dynamic_pointer_cast<QNProfile>(read.value()) : nullptr;
}

std::string archiveText(QNProfile& vault) {
  return std::string(textOf(QNKeyedArchiver::archivedDataWithRootObject(vault).value()));
}

std::shared_ptr<QNProfile> filledVault() {
  auto vault = demoVault("work");
  vault->_setOid(5);
  vault->didSave();
  vault->setCreatedAt(1'600'000'000);
  vault->setUpdatedAt(1'700'000'000);
  vault->setPasswordHint("the usual");
  vault->setIconData(Bytes{7, 8, 9});
  vault->setProfileColor(QNColor{0.5F, 0.25F, 1.0F, 0.75F});
  vault->setLastUpdatedBy("host");
  vault->addTag("home", 4);
  vault->addTag("work", 18'446'744'073'709'551'615u);
  const auto category =
      std::dynamic_pointer_cast<QNCategory>(vault->newSystemCategoryWithUUID("001"));
  category->setNumberOfItems(12);
  vault->addCategory(category);
  return vault;
}

TEST(QNProfileArchive, OfAnUnlockedVaultIsUnlocked) {
  const auto vault = filledVault();

  const auto read = archivedAndRead(*vault);

  ASSERT_NE(read, nullptr);
  EXPECT_TRUE(read->isUnlocked());
  EXPECT_EQ(read->overviewKey(), vault->overviewKey());
  EXPECT_EQ(read->masterKey(), vault->masterKey());
  EXPECT_TRUE(read->profilePassword()->equals(DEMO_PASSWORD));
  const auto sealed = vault->encryptOverview(Bytes{1});
  EXPECT_EQ(read->decryptOverview(*sealed), Bytes{1});
}

TEST(QNProfileArchive, OfALockedVaultIsLockedAndHasNoKeys) {
  const auto vault = filledVault();
  vault->lock();

  const auto read = archivedAndRead(*vault);

  ASSERT_NE(read, nullptr);
  EXPECT_TRUE(read->isLocked());
  for (const std::string_view key : {"\"pp\"", "\"overviewKey\"", "\"masterKey\""}) {
    EXPECT_EQ(archiveText(*vault).find(key), std::string::npos) << key;
  }
  EXPECT_TRUE(read->_unlockWithPassword(DEMO_PASSWORD));
}

TEST(QNProfileArchive, KeepsEveryField) {
  const auto vault = filledVault();

  const auto read = archivedAndRead(*vault);

  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->oid(), 5u);
  EXPECT_EQ(*read->uuid(), *vault->uuid());
  EXPECT_EQ(read->profileName(), "work");
  EXPECT_EQ(read->createdAt(), 1'600'000'000u);
  EXPECT_EQ(read->updatedAt(), 1'700'000'000u);
  EXPECT_EQ(read->encryptedMasterKey(), vault->encryptedMasterKey());
  EXPECT_EQ(read->encryptedOverviewKey(), vault->encryptedOverviewKey());
  EXPECT_EQ(read->salt(), vault->salt());
  EXPECT_EQ(read->iterations(), 100u);
  EXPECT_EQ(read->passwordHint(), "the usual");
  EXPECT_EQ(read->iconData(), (Bytes{7, 8, 9}));
  EXPECT_EQ(read->profileColor(), (QNColor{0.5F, 0.25F, 1.0F, 0.75F}));
  EXPECT_EQ(read->lastUpdatedBy(), "host");
}

TEST(QNProfileArchive, KeepsTheRegistries) {
  const auto vault = filledVault();

  const auto read = archivedAndRead(*vault);

  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->tagWithId(4), "home");
  EXPECT_EQ(read->tagId("home"), 4u);
  EXPECT_EQ(read->tagId("work"), 18'446'744'073'709'551'615u);
  const auto category = std::dynamic_pointer_cast<QNCategory>(read->categoryWithUUID("001"));
  ASSERT_NE(category, nullptr);
  EXPECT_EQ(category->singularName(), vault->categoryWithUUID("001")->singularName());
  EXPECT_EQ(category->numberOfItems(), 12u);
  EXPECT_EQ(category->displayOrder(), 10'000u);
  EXPECT_EQ(category->profile(), read);
}

TEST(QNProfileArchive, NamesItsKeysAsStoredArchivesDo) {
  const std::string text = archiveText(*filledVault());

  for (const std::string_view key :
       {"uuid",          "profileName",  "createdAt",   "updatedAt",    "eMasterKey",
        "eOverviewKey",  "salt",         "iterations",  "passwordHint", "iconData",
        "hasColor",      "cH",           "cS",          "cB",           "cA",
        "lastUpdatedBy", "pp",           "overviewKey", "masterKey",    "categories",
        "tags",          "sName",        "pName",       "listIconName", "detaiIconName",
        "displayOrder",  "numberOfItems"}) {
    EXPECT_NE(text.find("\"" + std::string(key) + "\""), std::string::npos) << key;
  }
}

TEST(QNProfileArchive, DoesNotShowThePassword) {
  EXPECT_EQ(archiveText(*filledVault()).find("try quillon"), std::string::npos);
}

TEST(QNProfileArchive, WithoutAColourOrRegistriesHasNoKeysForThem) {
  const std::string text = archiveText(*demoVault());

  for (const std::string_view key :
       {"hasColor", "cH", "categories", "tags", "iconData", "passwordHint"}) {
    EXPECT_EQ(text.find("\"" + std::string(key) + "\""), std::string::npos) << key;
  }
  EXPECT_EQ(archivedAndRead(*demoVault())->profileColor(), std::nullopt);
}

// The twin archive

class QNProfileTwin : public testing::Test {
 protected:
  std::shared_ptr<QNProfile> primary = demoVault("default");
  std::shared_ptr<QNProfile> other = filledVault();
  /// The other vault as it is stored: locked, with its twin archive.
  std::shared_ptr<QNProfile> stored() {
    EXPECT_TRUE(other->encryptAttributesWithPrimaryProfile(primary));
    auto copy = storedCopyOf(*other);
    copy->setAttributesData(other->attributesData());
    return copy;
  }
  static std::vector<std::string> errors(const MRCapturingSink& sink) {
    return sink.texts(MRLogKind::error);
  }
};

TEST_F(QNProfileTwin, OpensAnotherVaultThroughThePrimaryOne) {
  const auto vault = stored();
  const QNVaultListener listener(*vault);
  const MRCapturingSink sink;
  QNError error;

  EXPECT_TRUE(vault->decryptAttributesWithPrimaryProfile(primary, &error));

  EXPECT_TRUE(vault->isUnlocked());
  EXPECT_EQ(vault->overviewKey(), other->overviewKey());
  EXPECT_EQ(vault->masterKey(), other->masterKey());
  EXPECT_TRUE(vault->profilePassword()->equals(DEMO_PASSWORD));
  EXPECT_THAT(listener.heard, ElementsAre("QNProfileWillUnlockNotification locked",
                                          "QNProfileDidUnlockNotification unlocked"));
  EXPECT_TRUE(sink.records().empty());
  EXPECT_EQ(error.code, 0);
}

TEST_F(QNProfileTwin, GivesTheKeysAndThePasswordOnly) {
  const auto vault = stored();
  vault->setProfileName("renamed since");

  ASSERT_TRUE(vault->decryptAttributesWithPrimaryProfile(primary));

  EXPECT_EQ(vault->profileName(), "renamed since");
  EXPECT_EQ(vault->profileColor(), std::nullopt);
  EXPECT_THAT(vault->allTags(), IsEmpty());
  EXPECT_THAT(vault->allCategories(), IsEmpty());
}

TEST_F(QNProfileTwin, IsSealed) {
  ASSERT_TRUE(other->encryptAttributesWithPrimaryProfile(primary));

  EXPECT_TRUE(isQNProfileEncrypted(*other->attributesData()));
  EXPECT_TRUE(primary->decryptOverview(*other->attributesData()));
  EXPECT_FALSE(demoVault("stranger")->decryptOverview(*other->attributesData()));
}

TEST_F(QNProfileTwin, IsNotMadeWithoutAPrimaryVault) {
  const MRCapturingSink sink;
  QNError error;

  EXPECT_FALSE(other->encryptAttributesWithPrimaryProfile(nullptr, &error));

  EXPECT_THAT(sink.texts(MRLogKind::assertion), ElementsAre("Primary profile is not available"));
  EXPECT_EQ(error.code, 0);
  EXPECT_EQ(other->attributesData(), std::nullopt);
}

TEST_F(QNProfileTwin, IsNotMadeByALockedPrimaryVaultAndTheOldOneStays) {
  other->setAttributesData(Bytes{1});
  primary->lock();

  EXPECT_FALSE(other->encryptAttributesWithPrimaryProfile(primary));

  EXPECT_EQ(other->attributesData(), Bytes{1});
}

TEST_F(QNProfileTwin, IsNotReadWithoutAPrimaryVault) {
  const auto vault = stored();
  const MRCapturingSink sink;
  QNError error;

  EXPECT_FALSE(vault->decryptAttributesWithPrimaryProfile(nullptr, &error));

  EXPECT_EQ(error.domain, "QNErrorDomain");
  EXPECT_EQ(error.code, 103);
  EXPECT_EQ(error.message, "Primary profile is not available");
  EXPECT_THAT(sink.texts(MRLogKind::assertion), ElementsAre("Primary profile is not available"));
  EXPECT_TRUE(vault->isLocked());
}

TEST_F(QNProfileTwin, ThatIsAbsentIsReported) {
  const auto vault = storedCopyOf(*other);
  const MRCapturingSink sink;
  QNError error;

  EXPECT_FALSE(vault->decryptAttributesWithPrimaryProfile(primary, &error));

  EXPECT_EQ(error.code, 103);
  EXPECT_EQ(error.message, "No profile attributes");
  EXPECT_THAT(errors(sink), ElementsAre("No profile attributes"));
}

TEST_F(QNProfileTwin, ThatDoesntOpenIsReported) {
  const auto vault = stored();
  const MRCapturingSink sink;
  QNError error;

  EXPECT_FALSE(vault->decryptAttributesWithPrimaryProfile(demoVault("stranger"), &error));

  EXPECT_EQ(error.code, 103);
  EXPECT_EQ(error.message, "Failed to decrypt profile attributes with primary profile");
  EXPECT_THAT(errors(sink),
              ElementsAre("Failed to decrypt profile attributes with primary profile."));
}

TEST_F(QNProfileTwin, ThatHoldsNoVaultIsReported) {
  const auto category = std::make_shared<QNCategory>(initNew);
  for (const Bytes& content : {mr_asData("not an archive"),
                               QNKeyedArchiver::archivedDataWithRootObject(*category).value()}) {
    const auto vault = storedCopyOf(*other);
    vault->setAttributesData(primary->encryptOverview(content));
    const MRCapturingSink sink;
    QNError error;

    EXPECT_FALSE(vault->decryptAttributesWithPrimaryProfile(primary, &error));

    EXPECT_EQ(error.code, 103);
    EXPECT_EQ(error.message, "Failed to unarchive twin profile");
    EXPECT_THAT(errors(sink), ElementsAre("Failed to unarchive twin profile"));
    EXPECT_TRUE(vault->isLocked());
  }
}

TEST_F(QNProfileTwin, OfALockedVaultOpensNothing) {
  other->lock();
  const auto vault = stored();
  const QNVaultListener listener(*vault);
  const MRCapturingSink sink;
  QNError error;

  EXPECT_FALSE(vault->decryptAttributesWithPrimaryProfile(primary, &error));

  EXPECT_EQ(error.code, 103);
  EXPECT_EQ(error.message, "overviewKey is nil. masterKey is nil. ");
  EXPECT_THAT(errors(sink),
              ElementsAre("profilePassword is nil, setting profilePassword to UUID."));
  EXPECT_TRUE(vault->isLocked());
  EXPECT_THAT(listener.heard, IsEmpty());
}

TEST_F(QNProfileTwin, WithoutAMasterKeyOpensNothing) {
  other->setMasterKey(std::nullopt);
  const auto vault = stored();
  QNError error;

  EXPECT_FALSE(vault->decryptAttributesWithPrimaryProfile(primary, &error));

  EXPECT_EQ(error.message, "masterKey is nil. ");
  EXPECT_TRUE(vault->isLocked());
}

TEST_F(QNProfileTwin, WithoutAPasswordGetsARandomOne) {
  other->setProfilePassword(std::nullopt);
  const auto vault = stored();
  const MRCapturingSink sink;

  EXPECT_TRUE(vault->decryptAttributesWithPrimaryProfile(primary));

  EXPECT_THAT(errors(sink),
              ElementsAre("profilePassword is nil, setting profilePassword to UUID."));
  ASSERT_TRUE(vault->profilePassword());
  EXPECT_EQ(vault->profilePassword()->size(), 20u);
}

}  // namespace
}  // namespace quillon
