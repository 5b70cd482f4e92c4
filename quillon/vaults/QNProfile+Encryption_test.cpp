#include "quillon/platform/data/MRData.h"
#include "quillon/platform/files/QNResources.h"
#include "quillon/vaults/internal/QNVaultTesting.h"

namespace quillon {
namespace {

using Texts = std::vector<std::string>;

const Json& frozen() {
  static const Json cases =
      mr_valueFromJSONDataWithError(
          bytesOf(fileContent(QUILLON_TESTDATA "/vault-v1.json", 1 << 20).value()))
          .value();
  return cases;
}
std::string frozenText(std::string_view key) {
  return std::string(frozen().at(key).as_string());
}
Bytes frozenBytes(std::string_view key) {
  return bytesFromHex(frozenText(key)).value();
}

std::shared_ptr<QNProfile> frozenVault() {
  auto vault = QNProfile::initExistingWithID(1);
  vault->setSalt(frozenBytes("salt"));
  vault->setIterations(frozen().at("iterations").to_number<std::uint32_t>());
  vault->setEncryptedMasterKey(frozenBytes("encryptedMasterKey"));
  vault->setEncryptedOverviewKey(frozenBytes("encryptedOverviewKey"));
  return vault;
}
std::shared_ptr<QNProfile> openFrozenVault() {
  auto vault = frozenVault();
  EXPECT_TRUE(vault->_unlockWithPassword(frozenText("password")));
  return vault;
}

// What every version must open

TEST(QNProfileEncryption, OpensTheFrozenVault) {
  const auto vault = openFrozenVault();

  EXPECT_EQ(toBytes(*vault->overviewKey()), frozenBytes("overviewKey"));
  EXPECT_EQ(toBytes(*vault->masterKey()), frozenBytes("masterKey"));
}

TEST(QNProfileEncryption, OpensWhatTheFrozenVaultSealed) {
  const auto vault = openFrozenVault();

  EXPECT_EQ(vault->decryptOverview(frozenBytes("sealedOverview")), frozenBytes("overview"));
  EXPECT_EQ(vault->decryptWithMaster(frozenBytes("sealedNote")), frozenBytes("note"));
}

TEST(QNProfileEncryption, UnwrapsTheFrozenItemKey) {
  const auto key = openFrozenVault()->decryptItemKey(frozenBytes("wrappedItemKey"));

  ASSERT_NE(key, nullptr);
  EXPECT_EQ(toBytes(key->rawKeyData()), frozenBytes("itemKey"));
}

TEST(QNProfileEncryption, HashesAsTheFrozenVaultDid) {
  const auto vault = openFrozenVault();

  const auto hmac = vault->hmacForData(bytesOf(frozenText("hmacText")));

  ASSERT_TRUE(hmac.has_value());
  EXPECT_EQ(hexText(*hmac), frozenText("hmac"));
  EXPECT_EQ(vault->hmacForString(frozenText("hmacText")), frozenText("sha256OfHmac"));
}

// Round trips

TEST(QNProfileEncryption, OpensWhatItSealed) {
  const auto vault = demoVault();

  EXPECT_EQ(vault->decryptOverview(vault->encryptOverview(Bytes{1, 2}).value()), (Bytes{1, 2}));
  EXPECT_EQ(vault->decryptWithMaster(vault->encryptWithMaster(Bytes{1, 2}).value()), (Bytes{1, 2}));
  EXPECT_EQ(vault->decryptOverview(vault->encryptOverview({}).value()), Bytes());
}

TEST(QNProfileEncryption, TheTwoKeysDoNotOpenEachOthersData) {
  const auto vault = demoVault();
  const MRCapturingSink sink;

  EXPECT_EQ(vault->decryptWithMaster(vault->encryptOverview(Bytes{1}).value()), std::nullopt);
  EXPECT_EQ(vault->decryptOverview(vault->encryptWithMaster(Bytes{1}).value()), std::nullopt);
  EXPECT_TRUE(sink.records().empty());
}

TEST(QNProfileEncryption, AnotherVaultOpensNothing) {
  const auto vault = demoVault();
  const auto other = demoVault();
  const auto wrapped = vault->encryptItemKey(QNAESKey::initWithRandomKey()).value();

  EXPECT_EQ(other->decryptOverview(vault->encryptOverview(Bytes{1}).value()), std::nullopt);
  EXPECT_EQ(other->decryptItemKey(wrapped), nullptr);
}

TEST(QNProfileEncryption, WrapsAnItemKeyInto112Bytes) {
  const auto vault = demoVault();
  const auto key = QNAESKey::initWithRandomKey();

  const auto wrapped = vault->encryptItemKey(key);

  ASSERT_EQ(wrapped->size(), 112u);
  EXPECT_EQ(vault->decryptItemKey(*wrapped)->rawKeyData(), key->rawKeyData());
}

TEST(QNProfileEncryption, WrapsNoAbsentKeyAndUnwrapsNothingOfAnotherLength) {
  const auto vault = demoVault();

  EXPECT_EQ(vault->encryptItemKey(nullptr), std::nullopt);
  EXPECT_EQ(vault->decryptItemKey(Bytes(111)), nullptr);
  EXPECT_EQ(vault->decryptItemKey(Bytes(112)), nullptr);
}

TEST(QNProfileEncryption, CountsTheItemKeysThatItUnwrapped) {
  const auto vault = demoVault();
  const auto wrapped = vault->encryptItemKey(QNAESKey::initWithRandomKey()).value();

  vault->decryptItemKey(wrapped);
  vault->decryptItemKey(wrapped);
  vault->decryptItemKey(Bytes(112));
  vault->decryptOverview(vault->encryptOverview({}).value());

  EXPECT_EQ(vault->numberOfItemKeysUnwrapped(), 2u);
}

TEST(QNProfileEncryption, APasswordChangeTouchesNothingThatIsSealed) {
  const auto vault = demoVault();
  const auto sealed = vault->encryptOverview(Bytes{1}).value();
  const auto hash = vault->hmacForString("example.com");

  ASSERT_TRUE(vault->changePasswordTo(DEMO_PASSWORD));
  const auto stored = storedCopyOf(*vault);
  ASSERT_TRUE(stored->_unlockWithPassword(DEMO_PASSWORD));

  EXPECT_EQ(vault->decryptOverview(sealed), Bytes{1});
  EXPECT_EQ(vault->hmacForString("example.com"), hash);
  EXPECT_EQ(stored->decryptOverview(sealed), Bytes{1});
  EXPECT_EQ(stored->hmacForString("example.com"), hash);
}

// Keyed hashes

TEST(QNProfileEncryption, HashesDifferByVaultAndByText) {
  const auto vault = demoVault();

  const auto hash = vault->hmacForString("a");

  ASSERT_EQ(hash->size(), 64u);
  EXPECT_NE(hash, vault->hmacForString("b"));
  EXPECT_NE(hash, demoVault()->hmacForString("a"));
  EXPECT_EQ(hash, vault->hmacForString("a"));
}

TEST(QNProfileEncryption, HashesNothingOfNothing) {
  const auto vault = demoVault();
  const MRCapturingSink sink;

  EXPECT_EQ(vault->hmacForData(std::nullopt), std::nullopt);
  EXPECT_EQ(vault->hmacForString(std::nullopt), std::nullopt);
  EXPECT_TRUE(vault->hmacForString("").has_value());
  EXPECT_TRUE(sink.records().empty());
}

TEST(QNProfileEncryption, HashesNothingWithoutTheOverviewKey) {
  const auto vault = demoVault();
  vault->setOverviewKey(std::nullopt);

  EXPECT_EQ(vault->hmacForString("a"), std::nullopt);
}

// Without keys

struct Operation {
  const char* name;
  bool (*gives)(QNProfile&);  // does it give something?
  void (*removeKey)(QNProfile&);
  MRLogKind kindWithoutKey;
  const char* reportWithoutKey;
};

void removeMasterKey(QNProfile& vault) {
  vault.setMasterKey(std::nullopt);
}
void removeOverviewKey(QNProfile& vault) {
  vault.setOverviewKey(std::nullopt);
}

class QNProfileWithoutKeys : public testing::TestWithParam<Operation> {};

TEST_P(QNProfileWithoutKeys, ALockedVaultReportsAndGivesNothing) {
  const auto vault = frozenVault();
  const MRCapturingSink sink;

  EXPECT_FALSE(GetParam().gives(*vault));

  ASSERT_EQ(sink.texts(MRLogKind::assertion), Texts{"profile must be unlocked"});
  EXPECT_EQ(sink.records()[0].method, GetParam().name);
  EXPECT_EQ(sink.records()[0].subsystem, DEBUG_DATABASE);
}

TEST_P(QNProfileWithoutKeys, AnUnlockedVaultWithoutTheKeyReportsThat) {
  const auto vault = openFrozenVault();
  GetParam().removeKey(*vault);
  ASSERT_TRUE(vault->isUnlocked());
  const MRCapturingSink sink;

  EXPECT_FALSE(GetParam().gives(*vault));

  EXPECT_EQ(sink.texts(GetParam().kindWithoutKey), Texts{GetParam().reportWithoutKey});
  ASSERT_EQ(sink.records().size(), 1u);
  EXPECT_EQ(sink.records()[0].method, GetParam().name);
}

TEST_P(QNProfileWithoutKeys, AnUnlockedVaultGivesSomething) {
  const auto vault = openFrozenVault();
  const MRCapturingSink sink;

  EXPECT_TRUE(GetParam().gives(*vault));

  EXPECT_TRUE(sink.records().empty());
}

INSTANTIATE_TEST_SUITE_P(
    Operations, QNProfileWithoutKeys,
    testing::Values(
        Operation{"encryptItemKey",
                  [](QNProfile& it) {
                    return it.encryptItemKey(QNAESKey::initWithRandomKey()).has_value();
                  },
                  &removeMasterKey, MRLogKind::assertion,
                  "Item key encryption failed, master key not available"},
        Operation{"decryptItemKey",
                  [](QNProfile& it) {
                    return it.decryptItemKey(frozenBytes("wrappedItemKey")) != nullptr;
                  },
                  &removeMasterKey, MRLogKind::assertion,
                  "Item key decryption failed, master key not available"},
        Operation{"encryptOverview",
                  [](QNProfile& it) { return it.encryptOverview(Bytes{1}).has_value(); },
                  &removeOverviewKey, MRLogKind::assertion,
                  "Encryption failed: overviewAESKey is not available"},
        Operation{"decryptOverview",
                  [](QNProfile& it) {
                    return it.decryptOverview(frozenBytes("sealedOverview")).has_value();
                  },
                  &removeOverviewKey, MRLogKind::error,
                  "Decryption failed: overviewAESKey is not available"},
        Operation{"encryptWithMaster",
                  [](QNProfile& it) { return it.encryptWithMaster(Bytes{1}).has_value(); },
                  &removeMasterKey, MRLogKind::assertion,
                  "Encryption failed: overviewAESKey is not available"},
        Operation{"decryptWithMaster",
                  [](QNProfile& it) {
                    return it.decryptWithMaster(frozenBytes("sealedNote")).has_value();
                  },
                  &removeMasterKey, MRLogKind::error,
                  "Decryption failed: overviewAESKey is not available"}),
    [](const auto& operation) { return operation.param.name; });

TEST(QNProfileEncryption, ALockedVaultHashesNothingAndReportsIt) {
  const auto vault = frozenVault();
  const MRCapturingSink sink;

  EXPECT_EQ(vault->hmacForData(Bytes{1}), std::nullopt);
  EXPECT_EQ(vault->hmacForString("a"), std::nullopt);

  EXPECT_EQ(sink.texts(MRLogKind::assertion),
            (Texts{"profile must be unlocked", "profile must be unlocked"}));
}

TEST(QNProfileEncryption, ALockedVaultReportsThatBeforeItMissesTheText) {
  const auto vault = frozenVault();
  const MRCapturingSink sink;

  EXPECT_EQ(vault->hmacForString(std::nullopt), std::nullopt);

  EXPECT_EQ(sink.texts(MRLogKind::assertion), Texts{"profile must be unlocked"});
}

TEST(QNProfileEncryption, AVaultThatWasOpenReportsAndGivesNothingAfterALock) {
  const auto vault = demoVault();
  ASSERT_TRUE(vault->encryptOverview(Bytes{1}).has_value());
  vault->lock();
  const MRCapturingSink sink;

  EXPECT_EQ(vault->encryptOverview(Bytes{1}), std::nullopt);

  EXPECT_EQ(sink.texts(MRLogKind::assertion), Texts{"profile must be unlocked"});
  EXPECT_EQ(sink.records().size(), 1u);
}

// Other keys on an open vault

TEST(QNProfileEncryption, OtherBytesForTheOverviewKeyReplaceItsKeyObject) {
  const auto vault = demoVault();
  const auto sealed = vault->encryptOverview(Bytes{1}).value();
  const auto hash = vault->hmacForString("a");
  const QNKeyBytes before = *vault->overviewKey();

  vault->setOverviewKey(Bytes(64, 7));

  EXPECT_EQ(vault->decryptOverview(sealed), std::nullopt);
  EXPECT_NE(vault->hmacForString("a"), hash);
  EXPECT_EQ(vault->decryptOverview(vault->encryptOverview(Bytes{2}).value()), Bytes{2});
  vault->setOverviewKey(before);
  EXPECT_EQ(vault->decryptOverview(sealed), Bytes{1});
  EXPECT_EQ(vault->hmacForString("a"), hash);
}

TEST(QNProfileEncryption, OtherBytesForTheMasterKeyReplaceItsKeyObject) {
  const auto vault = demoVault();
  const auto sealed = vault->encryptWithMaster(Bytes{1}).value();
  const auto wrapped = vault->encryptItemKey(QNAESKey::initWithRandomKey()).value();
  const auto hash = vault->hmacForString("a");
  const QNKeyBytes before = *vault->masterKey();

  vault->setMasterKey(Bytes(256, 7));

  EXPECT_EQ(vault->decryptWithMaster(sealed), std::nullopt);
  EXPECT_EQ(vault->decryptItemKey(wrapped), nullptr);
  EXPECT_EQ(vault->hmacForString("a"), hash);
  vault->setMasterKey(before);
  EXPECT_EQ(vault->decryptWithMaster(sealed), Bytes{1});
  EXPECT_NE(vault->decryptItemKey(wrapped), nullptr);
}

}  // namespace
}  // namespace quillon
