#include <gmock/gmock.h>

#include "quillon/platform/archive/QNKeyedArchiver.h"
#include "quillon/platform/data/MRData.h"
#include "quillon/platform/files/QNResources.h"
#include "quillon/templates/QNCategory.h"
#include "quillon/vaults/internal/QNVaultTesting.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::shared_ptr<QNProfile> readArchive(ByteView archive) {
  const QNDecodableClass classes[] = {
      {"QNProfile",
       [](QNDecoder& coder) -> std::shared_ptr<QNCoding> {
         return QNProfile::initWithCoder(coder);
       }},
      {"QNCategory", [](QNDecoder& coder) -> std::shared_ptr<QNCoding> {
         return std::make_shared<QNCategory>(coder);
       }}};
  const auto read = QNKeyedUnarchiver::unarchivedObjectOfClasses(classes, archive);
  return read.ok() ? std::dynamic_pointer_cast<QNProfile>(read.value()) : nullptr;
}

std::shared_ptr<QNProfile> archivedAndRead(QNProfile& vault) {
  const auto archive = QNKeyedArchiver::archivedDataWithRootObject(vault);
  return archive.ok() ? readArchive(archive.value()) : nullptr;
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

// A member as "KEY kind".
std::string keyAndKind(std::string_view key, const Json& value) {
  const auto kind = [&value]() -> std::string {
    if (value.is_bool()) return "bool";
    if (value.is_int64() || value.is_uint64()) return "integer";
    if (value.is_double()) return "float";
    if (value.is_string()) return "text";
    if (value.is_array()) return "objects";
    if (!value.is_object() || value.get_object().size() != 1) return "unknown";
    return std::string(value.get_object().begin()->key());
  }();
  return std::string(key) + " " + kind;
}
std::vector<std::string> keysAndKinds(const Json& object) {
  std::vector<std::string> members;
  for (const auto& member : object.get_object()) {
    members.push_back(keyAndKind(member.key(), member.value()));
  }
  return members;
}

TEST(QNProfileArchive, HasItsKeysAndKindsInTheStoredOrder) {
  const auto archive = mr_valueFromJSONDataWithError(bytesOf(archiveText(*filledVault())));

  ASSERT_TRUE(archive);
  const Json& root = archive->at("root");
  EXPECT_THAT(
      keysAndKinds(root),
      ElementsAre("$class text", "oid integer", "objectFlags integer", "profileID integer",
                  "profileType integer", "uuid text", "profileName text", "createdAt integer",
                  "updatedAt integer", "eMasterKey $bytes", "eOverviewKey $bytes", "salt $bytes",
                  "iterations integer", "passwordHint text", "iconData $bytes", "hasColor bool",
                  "cH float", "cS float", "cB float", "cA float", "lastUpdatedBy text", "pp text",
                  "overviewKey $bytes", "masterKey $bytes", "categories objects", "tags $json"));
  EXPECT_THAT(keysAndKinds(root.at("categories").at(0)),
              ElementsAre("$class text", "oid integer", "objectFlags integer", "profileID integer",
                          "profileType integer", "uuid text", "sName text", "pName text",
                          "listIconName text", "detaiIconName text", "displayOrder integer",
                          "numberOfItems integer"));
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

TEST(QNProfileArchive, OfTextThatIsNotUTF8IsNotMade) {
  const auto vault = filledVault();
  vault->setPasswordHint("\xff");

  EXPECT_FALSE(QNKeyedArchiver::archivedDataWithRootObject(*vault).ok());
}

// The frozen archive

Bytes bytesFrom(std::size_t count, unsigned factor, unsigned offset) {
  Bytes bytes(count);
  for (std::size_t i = 0; i < count; ++i) {
    bytes[i] = static_cast<std::uint8_t>(factor * i + offset);
  }
  return bytes;
}
std::string frozenArchive() {
  return fileContent(QUILLON_TESTDATA "/archive-v1.json", 1 << 20).value();
}

// The vault that the frozen archive is of.
std::shared_ptr<QNProfile> frozenVault() {
  auto vault = QNProfile::initExistingWithID(5);
  vault->setUuid(sharedString("VAULT"));
  vault->setProfileName("Tresor für alle");
  vault->setCreatedAt(1'600'000'000);
  vault->setUpdatedAt(18'446'744'073'709'551'615u);
  vault->setEncryptedMasterKey(Bytes{1, 2, 3});
  vault->setEncryptedOverviewKey(Bytes{4, 5, 6, 7});
  vault->setSalt(toBytes(bytesOf("fedcba9876543210")));
  vault->setIterations(65'536);
  vault->setPasswordHint("the usual");
  vault->setIconData(Bytes{7, 8, 9});
  vault->setProfileColor(QNColor{0.5F, 0.25F, 1.0F, 0.8125F});
  vault->setLastUpdatedBy("host");
  vault->setProfilePassword(DEMO_PASSWORD);
  vault->setOverviewKey(bytesFrom(64, 5, 1));
  vault->setMasterKey(bytesFrom(256, 11, 7));
  const auto login = std::make_shared<QNCategory>(QNExisting{3});
  login->setProfile(vault);
  login->setUuid("001");
  login->setSingularName("Login");
  login->setPluralName("Logins");
  login->setListIconName("list");
  login->setDetailIconName("detail");
  login->setDisplayOrder(10'000);
  login->setNumberOfItems(12);
  vault->addCategory(login);
  const auto bare = std::make_shared<QNCategory>(QNExisting{4});
  bare->setProfile(vault);
  bare->setUuid("zzz");
  vault->addCategory(bare);
  vault->addTag("home", 4);
  vault->addTag("wörk", 18'446'744'073'709'551'615u);
  vault->setTrashed(true);
  vault->didSave();
  return vault;
}

TEST(QNProfileFrozenArchive, IsWrittenByteForByte) {
  EXPECT_EQ(archiveText(*frozenVault()), frozenArchive());
}

TEST(QNProfileFrozenArchive, IsReadWithEveryField) {
  const auto read = readArchive(bytesOf(frozenArchive()));

  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->oid(), 5u);
  EXPECT_EQ(read->status(), 1u);
  EXPECT_FALSE(read->dirtyRow());
  EXPECT_EQ(*read->uuid(), "VAULT");
  EXPECT_EQ(read->profileName(), "Tresor für alle");
  EXPECT_EQ(read->createdAt(), 1'600'000'000u);
  EXPECT_EQ(read->updatedAt(), 18'446'744'073'709'551'615u);
  EXPECT_EQ(read->encryptedMasterKey(), (Bytes{1, 2, 3}));
  EXPECT_EQ(read->encryptedOverviewKey(), (Bytes{4, 5, 6, 7}));
  EXPECT_EQ(read->salt(), toBytes(bytesOf("fedcba9876543210")));
  EXPECT_EQ(read->iterations(), 65'536u);
  EXPECT_EQ(read->passwordHint(), "the usual");
  EXPECT_EQ(read->iconData(), (Bytes{7, 8, 9}));
  EXPECT_EQ(read->profileColor(), (QNColor{0.5F, 0.25F, 1.0F, 0.8125F}));
  EXPECT_EQ(read->lastUpdatedBy(), "host");
  EXPECT_TRUE(read->profilePassword()->equals(DEMO_PASSWORD));
  EXPECT_EQ(toBytes(*read->overviewKey()), bytesFrom(64, 5, 1));
  EXPECT_EQ(toBytes(*read->masterKey()), bytesFrom(256, 11, 7));
}

TEST(QNProfileFrozenArchive, IsReadWithItsRegistries) {
  const auto read = readArchive(bytesOf(frozenArchive()));

  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->tagId("home"), 4u);
  EXPECT_EQ(read->tagWithId(18'446'744'073'709'551'615u), "wörk");
  ASSERT_EQ(read->allCategories().size(), 2u);
  const auto login = std::dynamic_pointer_cast<QNCategory>(read->categoryWithUUID("001"));
  ASSERT_NE(login, nullptr);
  EXPECT_EQ(login->oid(), 3u);
  EXPECT_EQ(login->singularName(), "Login");
  EXPECT_EQ(login->pluralName(), "Logins");
  EXPECT_EQ(login->listIconName(), "list");
  EXPECT_EQ(login->detailIconName(), "detail");
  EXPECT_EQ(login->displayOrder(), 10'000u);
  EXPECT_EQ(login->numberOfItems(), 12u);
  EXPECT_EQ(login->profile(), read);
  EXPECT_EQ(read->categoryWithUUID("zzz")->singularName(), std::nullopt);
}

// Archives made by a foreign hand

std::shared_ptr<QNProfile> vaultWith(std::string_view members) {
  return readArchive(bytesOf(R"({"quillon-archive":1,"root":{"$class":"QNProfile",)" +
                             std::string(members) + "}}"));
}

TEST(QNProfileForeignArchive, GivesNoTagWithoutANumberAndAText) {
  const auto read = vaultWith(
      R"("tags":{"$json":{"4":"home","x":"a","":"b","-1":"c","4x":"d"," 5":"e",)"
      R"("18446744073709551616":"f","6":7,"7":null,"8":["g"],"9":{"h":1},"1.5":"i","+3":"j"}})");

  ASSERT_NE(read, nullptr);
  EXPECT_THAT(read->allTags(), ElementsAre("home"));
  EXPECT_EQ(read->tagId("home"), 4u);
  EXPECT_EQ(read->tagId("f"), 0u);
}

TEST(QNProfileForeignArchive, GivesNoTagsOfAnotherKindOfValue) {
  for (const std::string_view tags : {R"({"$json":["4"]})", R"({"$json":"4"})", R"({"4":"home"})",
                                      "[]", "7", "null", R"({"$bytes":"AQID"})"}) {
    const auto read = vaultWith(R"("uuid":"V","tags":)" + std::string(tags));

    ASSERT_NE(read, nullptr) << tags;
    EXPECT_EQ(*read->uuid(), "V");
    EXPECT_THAT(read->allTags(), IsEmpty()) << tags;
  }
}

TEST(QNProfileForeignArchive, GivesNoCategoryOfAnotherClass) {
  const auto read =
      vaultWith(R"("categories":[{"$class":"QNItem","uuid":"002"},7,null,[],{"uuid":"003"},)"
                R"({"$class":"QNProfile","uuid":"004","categories":[{"$class":"QNCategory",)"
                R"("uuid":"005"}]},{"$class":"QNCategory","uuid":"001"},{"$class":"QNCategory"}])");

  ASSERT_NE(read, nullptr);
  ASSERT_EQ(read->allCategories().size(), 1u);
  EXPECT_EQ(read->allCategories().front()->uuid(), "001");
}

TEST(QNProfileForeignArchive, GivesNoCategoriesThatAreNoList) {
  const auto read = vaultWith(R"("categories":{"$class":"QNCategory","uuid":"001"})");

  ASSERT_NE(read, nullptr);
  EXPECT_THAT(read->allCategories(), IsEmpty());
}

TEST(QNProfileForeignArchive, GivesAColourWithinItsRange) {
  const auto read = vaultWith(R"("hasColor":true,"cH":7.5,"cS":-1E0,"cB":"1","cA":2.5E-1)");

  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->profileColor(), (QNColor{1, 0, 0, 0.25F}));
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

TEST_F(QNProfileTwin, OfTextThatIsNotUTF8IsNotMadeAndReportedAndTheOldOneStays) {
  other->setAttributesData(Bytes{1});
  other->setPasswordHint("\xff");
  const MRCapturingSink sink;
  QNError error;

  EXPECT_FALSE(other->encryptAttributesWithPrimaryProfile(primary, &error));

  EXPECT_THAT(errors(sink), ElementsAre("Failed to archive profile: QNErrorDomain 114"));
  EXPECT_EQ(error.code, 0);
  EXPECT_EQ(other->attributesData(), Bytes{1});
}

constexpr std::string_view kNoPrimary = "Primary profile is not available";
constexpr std::string_view kNotOpened = "Failed to decrypt profile attributes with primary profile";
constexpr std::string_view kNotRead = "Failed to unarchive twin profile";
constexpr std::string_view kRandomPassword =
    "profilePassword is nil, setting profilePassword to UUID.";

struct TwinVaults {
  std::shared_ptr<QNProfile> primary, other, stored;
  void seal() {
    EXPECT_TRUE(other->encryptAttributesWithPrimaryProfile(primary));
    stored->setAttributesData(other->attributesData());
  }
  void sealContent(ByteView content) {
    stored->setAttributesData(primary->encryptOverview(content));
  }
};

struct TwinFailure {
  const char* name;
  void (*prepare)(TwinVaults& vaults);
  std::string_view message;
  std::vector<std::string> assertions, errors;
};

const TwinFailure kTwinFailures[] = {
    {"NoPrimaryVault",
     [](TwinVaults& vaults) {
       vaults.seal();
       vaults.primary = nullptr;
     },
     kNoPrimary,
     {std::string(kNoPrimary)},
     {}},
    {"NoArchive", [](TwinVaults&) {}, "No profile attributes", {}, {"No profile attributes"}},
    {"ALockedPrimaryVault",
     [](TwinVaults& vaults) {
       vaults.seal();
       vaults.primary->lock();
     },
     kNotOpened,
     {"profile must be unlocked"},
     {std::string(kNotOpened) + "."}},
    {"AnotherPrimaryVault",
     [](TwinVaults& vaults) {
       vaults.seal();
       vaults.primary = demoVault("stranger");
     },
     kNotOpened,
     {},
     {std::string(kNotOpened) + "."}},
    {"NoArchiveInTheSeal",
     [](TwinVaults& vaults) { vaults.sealContent(bytesOf("not an archive")); },
     kNotRead,
     {},
     {std::string(kNotRead)}},
    {"AnArchiveOfACategory",
     [](TwinVaults& vaults) {
       QNCategory category(initNew);
       vaults.sealContent(QNKeyedArchiver::archivedDataWithRootObject(category).value());
     },
     kNotRead,
     {},
     {std::string(kNotRead)}},
    {"AnotherVaultsArchive",
     [](TwinVaults& vaults) {
       vaults.other = demoVault("third");
       vaults.seal();
     },
     kNotRead,
     {},
     {std::string(kNotRead)}},
    {"AnArchiveWithoutAnIdentifier",
     [](TwinVaults& vaults) {
       vaults.sealContent(bytesOf(R"({"quillon-archive":1,"root":{"$class":"QNProfile"}})"));
     },
     kNotRead,
     {},
     {std::string(kNotRead)}},
    {"ALockedVaultsArchive",
     [](TwinVaults& vaults) {
       vaults.other->lock();
       vaults.seal();
     },
     "overviewKey is nil. masterKey is nil. ",
     {},
     {std::string(kRandomPassword)}},
    {"NoOverviewKey",
     [](TwinVaults& vaults) {
       vaults.other->setOverviewKey(std::nullopt);
       vaults.seal();
     },
     "overviewKey is nil. ",
     {},
     {}},
    {"NoMasterKey",
     [](TwinVaults& vaults) {
       vaults.other->setMasterKey(std::nullopt);
       vaults.seal();
     },
     "masterKey is nil. ",
     {},
     {}},
    {"AnOverviewKeyOfAnotherSize",
     [](TwinVaults& vaults) {
       vaults.other->setOverviewKey(Bytes(OVERVIEW_KEY_SIZE - 1, 1));
       vaults.seal();
     },
     "overviewKey is nil. ",
     {},
     {}},
    {"TheKeysExchanged",
     [](TwinVaults& vaults) {
       vaults.other->setOverviewKey(Bytes(MASTER_KEY_SIZE, 1));
       vaults.other->setMasterKey(Bytes(OVERVIEW_KEY_SIZE, 2));
       vaults.seal();
     },
     "overviewKey is nil. masterKey is nil. ",
     {},
     {}},
};

class QNProfileTwinFailure : public testing::TestWithParam<TwinFailure> {
 protected:
  void SetUp() override {
    const auto other = filledVault();
    vaults = {demoVault("default"), other, storedCopyOf(*other)};
    GetParam().prepare(vaults);
  }
  void expectUntouched(const QNVaultListener& listener) const {
    EXPECT_TRUE(vaults.stored->isLocked());
    EXPECT_FALSE(vaults.stored->dirtyRow());
    EXPECT_THAT(listener.heard, IsEmpty());
  }

  TwinVaults vaults;
};

TEST_P(QNProfileTwinFailure, IsReportedAndChangesNothing) {
  const QNVaultListener listener(*vaults.stored);
  const MRCapturingSink sink;
  QNError error;

  EXPECT_FALSE(vaults.stored->decryptAttributesWithPrimaryProfile(vaults.primary, &error));

  EXPECT_EQ(error.domain, "QNErrorDomain");
  EXPECT_EQ(error.code, 103);
  EXPECT_EQ(error.message, GetParam().message);
  EXPECT_EQ(sink.texts(MRLogKind::assertion), GetParam().assertions);
  EXPECT_EQ(sink.texts(MRLogKind::error), GetParam().errors);
  expectUntouched(listener);
}

TEST_P(QNProfileTwinFailure, NeedsNoErrorSlot) {
  const QNVaultListener listener(*vaults.stored);
  const MRCapturingSink sink;

  EXPECT_FALSE(vaults.stored->decryptAttributesWithPrimaryProfile(vaults.primary, nullptr));

  EXPECT_EQ(sink.texts(MRLogKind::error), GetParam().errors);
  expectUntouched(listener);
}

TEST_P(QNProfileTwinFailure, LeavesAnOpenVaultAsItWas) {
  vaults.stored->setOverviewKey(Bytes(OVERVIEW_KEY_SIZE, 8));
  vaults.stored->setMasterKey(Bytes(MASTER_KEY_SIZE, 9));
  vaults.stored->setProfilePassword("its own");
  const MRCapturingSink sink;

  EXPECT_FALSE(vaults.stored->decryptAttributesWithPrimaryProfile(vaults.primary));

  EXPECT_EQ(toBytes(*vaults.stored->overviewKey()), Bytes(OVERVIEW_KEY_SIZE, 8));
  EXPECT_EQ(toBytes(*vaults.stored->masterKey()), Bytes(MASTER_KEY_SIZE, 9));
  EXPECT_TRUE(vaults.stored->profilePassword()->equals("its own"));
}

INSTANTIATE_TEST_SUITE_P(By, QNProfileTwinFailure, testing::ValuesIn(kTwinFailures),
                         [](const auto& made) { return std::string(made.param.name); });

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
