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

TEST(QNProfileBlob, ReadsTheStatusOfOlderProgramsToo) {
  constexpr StatusCase cases[] = {{"2", 2},     {"1", 1},   {"0", 0},     {"3", 0},
                                  {"-1", 0},    {"1.0", 1}, {"\"Y\"", 1}, {"\"D\"", 2},
                                  {"\"N\"", 0}, {"\"\"", 0}};
  for (const auto& each : cases) {
    const auto vault = QNProfile::initExistingWithID(6);
    vault->setTrashed(true);

    vault->setBlob(bytesOf(R"({"trashed":)" + std::string(each.stored) + "}"));

    EXPECT_EQ(vault->status(), each.status) << each.stored;
  }
}

TEST(QNProfileBlob, WithoutAStatusOrOfAnotherTypeLeavesItAsItWas) {
  for (const std::string_view blob :
       {"{}", R"({"trashed":true})", R"({"trashed":null})", R"({"trashed":[1]})"}) {
    const auto vault = QNProfile::initExistingWithID(6);
    vault->setTrashed(true);

    vault->setBlob(bytesOf(blob));

    EXPECT_TRUE(vault->trashed()) << blob;
  }
}

TEST(QNProfileBlob, AValueOfAnotherTypeCountsAsAbsent) {
  const auto vault = filledVault();

  vault->setBlob(bytesOf(R"({"uuid":1,"name":2,"createdAt":"3","updatedAt":[],"master":4,)"
                         R"("overview":{},"hint":5,"iterations":"6","icon":7,"color":"8",)"
                         R"("lastUpdatedBy":9,"salt":10})"));

  EXPECT_EQ(vault->uuid(), nullptr);
  EXPECT_EQ(vault->profileName(), std::nullopt);
  EXPECT_EQ(vault->createdAt(), 0u);
  EXPECT_EQ(vault->updatedAt(), 0u);
  EXPECT_EQ(vault->encryptedMasterKey(), (Bytes{1, 2, 3}));
  EXPECT_EQ(vault->encryptedOverviewKey(), (Bytes{4, 5, 6}));
  EXPECT_EQ(vault->passwordHint(), std::nullopt);
  EXPECT_EQ(vault->iterations(), 0u);
  EXPECT_EQ(vault->iconData(), std::nullopt);
  EXPECT_EQ(vault->profileColor(), std::nullopt);
  EXPECT_EQ(vault->lastUpdatedBy(), std::nullopt);
  EXPECT_EQ(vault->salt(), std::nullopt);
}

TEST(QNProfileBlob, ThatIsNoJsonIsReportedAndClearsAllButTheSealedKeys) {
  const auto vault = filledVault();
  const MRCapturingSink sink;

  vault->setBlob(bytesOf("not JSON"));

  EXPECT_THAT(sink.texts(MRLogKind::error), ElementsAre("Unable to parse JSON: MRErrorDomain 114"));
  EXPECT_EQ(vault->uuid(), nullptr);
  EXPECT_EQ(vault->profileName(), std::nullopt);
  EXPECT_EQ(vault->iterations(), 0u);
  EXPECT_EQ(vault->salt(), std::nullopt);
  EXPECT_EQ(vault->encryptedMasterKey(), (Bytes{1, 2, 3}));
  EXPECT_EQ(vault->encryptedOverviewKey(), (Bytes{4, 5, 6}));
}

TEST(QNProfileBlob, OfANameThatHasNoJsonFormIsNothingAndReported) {
  const auto vault = filledVault();
  vault->setProfileName("\xff");
  const MRCapturingSink sink;

  EXPECT_EQ(vault->blob(), std::nullopt);

  EXPECT_THAT(sink.texts(MRLogKind::error),
              ElementsAre("Error serializing profile: MRErrorDomain 114"));
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

}  // namespace
}  // namespace quillon
