#include <gmock/gmock.h>

#include "quillon/platform/data/MRData.h"
#include "quillon/vaults/internal/QNVaultTesting.h"

namespace quillon {
namespace {

using testing::ElementsAre;

// A locked vault with a value in every field.
std::shared_ptr<QNProfile> filledVault() {
  auto vault = QNProfile::initExistingWithID(5);
  vault->setUuid(sharedString("VAULT"));
  vault->setProfileName("work");
  vault->setCreatedAt(1'600'000'000);
  vault->setUpdatedAt(1'700'000'000);
  vault->setEncryptedMasterKey(Bytes{1, 2, 3});
  vault->setEncryptedOverviewKey(Bytes{4, 5, 6});
  vault->setPasswordHint("the usual");
  vault->setIterations(65'536);
  vault->setIconData(Bytes{7, 8, 9});
  vault->setProfileColor(QNColor{0.5F, 0.25F, 1.0F, 0.75F});
  vault->setLastUpdatedBy("host");
  vault->setSalt(Bytes{10, 11, 12});
  return vault;
}

constexpr std::string_view kBlob =
    R"({"uuid":"VAULT","name":"work","createdAt":1600000000,"updatedAt":1700000000,)"
    R"("master":"AQID","overview":"BAUG","hint":"the usual","iterations":65536,"icon":"BwgJ",)"
    R"("color":{"h":5E-1,"s":2.5E-1,"b":1E0,"a":7.5E-1},"lastUpdatedBy":"host","salt":"CgsM"})";

void expectFilled(const QNProfile& vault) {
  EXPECT_EQ(*vault.uuid(), "VAULT");
  EXPECT_EQ(vault.profileName(), "work");
  EXPECT_EQ(vault.createdAt(), 1'600'000'000u);
  EXPECT_EQ(vault.updatedAt(), 1'700'000'000u);
  EXPECT_EQ(vault.encryptedMasterKey(), (Bytes{1, 2, 3}));
  EXPECT_EQ(vault.encryptedOverviewKey(), (Bytes{4, 5, 6}));
  EXPECT_EQ(vault.passwordHint(), "the usual");
  EXPECT_EQ(vault.iterations(), 65'536u);
  EXPECT_EQ(vault.iconData(), (Bytes{7, 8, 9}));
  EXPECT_EQ(vault.profileColor(), (QNColor{0.5F, 0.25F, 1.0F, 0.75F}));
  EXPECT_EQ(vault.lastUpdatedBy(), "host");
  EXPECT_EQ(vault.salt(), (Bytes{10, 11, 12}));
}

std::shared_ptr<QNProfile> vaultFrom(std::string_view blob) {
  auto vault = QNProfile::initExistingWithID(6);
  vault->setBlob(bytesOf(blob));
  return vault;
}

TEST(QNProfileBlob, HoldsEveryFieldWithTheKeysSealed) {
  EXPECT_EQ(textOf(*filledVault()->blob()), kBlob);
}

TEST(QNProfileBlob, IsReadBack) {
  expectFilled(*vaultFrom(kBlob));
  EXPECT_TRUE(vaultFrom(kBlob)->isLocked());
}

TEST(QNProfileBlob, LeavesAbsentFieldsOut) {
  EXPECT_EQ(textOf(*QNProfile::initExistingWithID(5)->blob()),
            R"({"createdAt":0,"updatedAt":0,"iterations":0})");
}

TEST(QNProfileBlob, OfAnUnlockedVaultHasNoPlainKey) {
  const auto vault = demoVault();

  const std::string blob(textOf(*vault->blob()));

  for (const auto& key : {*vault->overviewKey(), *vault->masterKey()}) {
    EXPECT_EQ(blob.find(mr_base64encode(key).substr(0, 20)), std::string::npos);
  }
  const auto read = vaultFrom(blob);
  EXPECT_TRUE(read->_unlockWithPassword(DEMO_PASSWORD));
  EXPECT_EQ(read->masterKey(), vault->masterKey());
}

TEST(QNProfileBlob, SaysThatTheVaultIsTrashed) {
  const auto vault = QNProfile::initExistingWithID(5);
  vault->setTrashed(true);

  EXPECT_EQ(textOf(*vault->blob()), R"({"createdAt":0,"updatedAt":0,"iterations":0,"trashed":1})");
}

struct StatusCase {
  std::string_view stored;
  std::uint32_t status;
};

TEST(QNProfileBlob, OfADeletedVaultSaysNothingOfIt) {
  const auto vault = QNProfile::initExistingWithID(5);
  vault->markDeleted();

  EXPECT_EQ(textOf(*vault->blob()), R"({"createdAt":0,"updatedAt":0,"iterations":0})");
}

std::shared_ptr<QNProfile> vaultOfStatus(std::uint32_t status) {
  auto vault = filledVault();
  if (status == 1) vault->setTrashed(true);
  if (status == 2) vault->markDeleted();
  return vault;
}

// From each status that a vault may have before.
class QNProfileBlobStatus : public testing::TestWithParam<std::uint32_t> {};

TEST_P(QNProfileBlobStatus, IsReadAsOlderProgramsWroteItToo) {
  constexpr StatusCase cases[] = {{"2", 2},     {"1", 1},     {"0", 0},     {"3", 0},
                                  {"-1", 0},    {"1.0", 1},   {"2.0", 2},   {"1.5", 0},
                                  {"\"Y\"", 1}, {"\"D\"", 2}, {"\"N\"", 0}, {"\"\"", 0},
                                  {"\"y\"", 0}, {"\"1\"", 0}};
  for (const auto& each : cases) {
    const auto vault = vaultOfStatus(GetParam());
    ASSERT_EQ(vault->status(), GetParam());

    vault->setBlob(bytesOf(R"({"trashed":)" + std::string(each.stored) + "}"));

    EXPECT_EQ(vault->status(), each.status) << each.stored;
  }
}

TEST_P(QNProfileBlobStatus, StaysWhereNoneIsStoredOrOneOfAnotherType) {
  for (const std::string_view blob : {"{}", R"({"trashed":true})", R"({"trashed":null})",
                                      R"({"trashed":[1]})", R"({"trashed":{"Y":1}})"}) {
    const auto vault = vaultOfStatus(GetParam());

    vault->setBlob(bytesOf(blob));

    EXPECT_EQ(vault->status(), GetParam()) << blob;
  }
}

INSTANTIATE_TEST_SUITE_P(Before, QNProfileBlobStatus, testing::Values(0u, 1u, 2u));

// What no member gives: all but the sealed keys.
void expectCleared(const QNProfile& vault) {
  EXPECT_EQ(vault.uuid(), nullptr);
  EXPECT_EQ(vault.profileName(), std::nullopt);
  EXPECT_EQ(vault.createdAt(), 0u);
  EXPECT_EQ(vault.updatedAt(), 0u);
  EXPECT_EQ(vault.encryptedMasterKey(), (Bytes{1, 2, 3}));
  EXPECT_EQ(vault.encryptedOverviewKey(), (Bytes{4, 5, 6}));
  EXPECT_EQ(vault.passwordHint(), std::nullopt);
  EXPECT_EQ(vault.iterations(), 0u);
  EXPECT_EQ(vault.iconData(), std::nullopt);
  EXPECT_EQ(vault.profileColor(), std::nullopt);
  EXPECT_EQ(vault.lastUpdatedBy(), std::nullopt);
  EXPECT_EQ(vault.salt(), std::nullopt);
}

TEST(QNProfileBlob, AValueOfAnotherTypeCountsAsAbsent) {
  const auto vault = filledVault();

  vault->setBlob(bytesOf(R"({"uuid":1,"name":2,"createdAt":"3","updatedAt":[],"master":4,)"
                         R"("overview":{},"hint":5,"iterations":"6","icon":7,"color":"8",)"
                         R"("lastUpdatedBy":9,"salt":10})"));

  expectCleared(*vault);
}

TEST(QNProfileBlob, ThatIsNoJsonObjectIsReportedAndClearsAllButTheSealedKeys) {
  for (const std::string_view blob : {"not JSON", "[]", "7", "", "null", "{", "{} {}"}) {
    const auto vault = vaultOfStatus(1);
    const MRCapturingSink sink;

    vault->setBlob(bytesOf(blob));

    EXPECT_THAT(sink.texts(MRLogKind::error),
                ElementsAre("Unable to parse JSON: MRErrorDomain 114"))
        << blob;
    expectCleared(*vault);
    EXPECT_EQ(vault->status(), 1u) << blob;
  }
}

TEST(QNProfileBlob, OfATextThatHasNoJsonFormIsNothingAndReported) {
  void (*const spoil[])(QNProfile&) = {[](QNProfile& vault) { vault.setProfileName("\xff"); },
                                       [](QNProfile& vault) { vault.setPasswordHint("\xff"); },
                                       [](QNProfile& vault) { vault.setLastUpdatedBy("\xff"); }};
  for (const auto each : spoil) {
    const auto vault = filledVault();
    each(*vault);
    const MRCapturingSink sink;

    EXPECT_EQ(vault->blob(), std::nullopt);

    EXPECT_THAT(sink.texts(MRLogKind::error),
                ElementsAre("Error serializing profile: MRErrorDomain 114"));
  }
}

TEST(QNProfileBlob, ACountThatDoesntFitMakesNoKey) {
  EXPECT_EQ(vaultFrom(R"({"iterations":4294967296})")->iterations(), 0u);
  EXPECT_EQ(vaultFrom(R"({"iterations":4294967295})")->iterations(), 4'294'967'295u);
}

// The snapshot

TEST(QNProfileSnapshot, HoldsThePlainKeys) {
  const auto vault = filledVault();
  vault->setOverviewKey(Bytes(64, 1));
  vault->setMasterKey(Bytes(256, 2));

  const JsonObject all = vault->allAttributes();

  EXPECT_EQ(mr_validStringValueForKey(all, "uuid"), "VAULT");
  EXPECT_EQ(mr_validStringValueForKey(all, "profileName"), "work");
  EXPECT_EQ(mr_unsignedValueForKey(all, "createdAt"), 1'600'000'000u);
  EXPECT_EQ(mr_unsignedValueForKey(all, "updatedAt"), 1'700'000'000u);
  EXPECT_EQ(mr_validStringValueForKey(all, "overviewKey"), mr_base64encode(Bytes(64, 1)));
  EXPECT_EQ(mr_validStringValueForKey(all, "masterKey"), mr_base64encode(Bytes(256, 2)));
  EXPECT_EQ(mr_validStringValueForKey(all, "passwordHint"), "the usual");
  EXPECT_EQ(mr_unsignedValueForKey(all, "iterations"), 65'536u);
  EXPECT_EQ(mr_validStringValueForKey(all, "iconData"), "BwgJ");
  ASSERT_NE(all.if_contains("color"), nullptr);
  EXPECT_EQ(all.at("color").at("h"), 0.5);
  EXPECT_EQ(mr_validStringValueForKey(all, "lastUpdatedBy"), "host");
  EXPECT_EQ(mr_validStringValueForKey(all, "salt"), "CgsM");
  for (const std::string_view sealed : {"master", "eMasterKey", "eOverviewKey", "attributesData"}) {
    EXPECT_EQ(all.if_contains(sealed), nullptr) << sealed;
  }
}

TEST(QNProfileSnapshot, OfALockedVaultWithoutAFieldLeavesItOut) {
  const JsonObject all = QNProfile::initExistingWithID(5)->allAttributes();

  for (const std::string_view key :
       {"uuid", "profileName", "overviewKey", "masterKey", "passwordHint", "iconData", "color",
        "lastUpdatedBy", "salt"}) {
    EXPECT_EQ(all.if_contains(key), nullptr) << key;
  }
}

TEST(QNProfileSnapshot, IsRestoredWithTheKeysUsable) {
  const auto vault = demoVault("work");
  const auto sealed = vault->encryptOverview(Bytes{1, 2, 3});
  const auto copy = QNProfile::initExistingWithID(9);
  copy->setEncryptedMasterKey(Bytes{1});
  copy->setAttributesData(Bytes{2});

  copy->setAllAttributes(vault->allAttributes());

  EXPECT_EQ(*copy->uuid(), *vault->uuid());
  EXPECT_EQ(copy->profileName(), "work");
  EXPECT_EQ(copy->decryptOverview(*sealed), (Bytes{1, 2, 3}));
  EXPECT_EQ(copy->masterKey(), vault->masterKey());
  EXPECT_EQ(copy->iterations(), vault->iterations());
  EXPECT_EQ(copy->salt(), vault->salt());
  EXPECT_EQ(copy->encryptedMasterKey(), Bytes{1});
  EXPECT_EQ(copy->attributesData(), Bytes{2});
  EXPECT_FALSE(copy->profilePassword());
}

TEST(QNProfileSnapshot, IsRestoredWithEveryField) {
  const auto vault = filledVault();
  vault->setOverviewKey(Bytes(OVERVIEW_KEY_SIZE, 1));
  vault->setMasterKey(Bytes(MASTER_KEY_SIZE, 2));
  const auto copy = QNProfile::initExistingWithID(9);
  copy->setEncryptedMasterKey(Bytes{1, 2, 3});
  copy->setEncryptedOverviewKey(Bytes{4, 5, 6});

  copy->setAllAttributes(vault->allAttributes());

  expectFilled(*copy);
  EXPECT_EQ(toBytes(*copy->overviewKey()), Bytes(OVERVIEW_KEY_SIZE, 1));
  EXPECT_EQ(toBytes(*copy->masterKey()), Bytes(MASTER_KEY_SIZE, 2));
  EXPECT_TRUE(copy->isUnlocked());
}

TEST(QNProfileSnapshot, OfAnEmptyVaultClearsAFilledOne) {
  const auto vault = filledVault();
  vault->setOverviewKey(Bytes(OVERVIEW_KEY_SIZE, 1));
  vault->setMasterKey(Bytes(MASTER_KEY_SIZE, 2));
  vault->setProfilePassword("its own");
  vault->setAttributesData(Bytes{13});
  const auto sealed = vault->encryptOverview(Bytes{1});
  ASSERT_TRUE(sealed);

  vault->setAllAttributes(QNProfile::initExistingWithID(9)->allAttributes());

  expectCleared(*vault);
  EXPECT_FALSE(vault->overviewKey());
  EXPECT_FALSE(vault->masterKey());
  EXPECT_EQ(vault->decryptOverview(*sealed), std::nullopt);
  EXPECT_TRUE(vault->profilePassword()->equals("its own"));
  EXPECT_EQ(vault->attributesData(), Bytes{13});
}

}  // namespace
}  // namespace quillon
