#include "store/internal/QNRowSeal.h"

#include "quillon/platform/data/MRData.h"
#include "quillon/platform/json/QNJson.h"
#include "store/internal/QNLedger.h"
#include "store/internal/QNStoreTesting.h"

namespace quillon {
namespace {

/// Worked out by testdata/stored_forms.py.
const Json& vectors() {
  static const Json all =
      boost::json::parse(bytesOfFile(std::filesystem::path(QUILLON_TESTDATA) / "seals.json"));
  return all;
}

std::string_view textAt(const Json& object, std::string_view key) {
  return object.at(key).as_string();
}
std::optional<std::string_view> optionalTextAt(const Json& object, std::string_view key) {
  if (object.at(key).is_null()) return std::nullopt;
  return textAt(object, key);
}
std::uint64_t numberAt(const Json& object, std::string_view key) {
  return object.at(key).to_number<std::uint64_t>();
}

std::shared_ptr<QNProfile> vaultOfVectors(const std::string& uuid = "vault-uuid") {
  const auto vault = QNProfile::initExistingWithID(2);
  vault->setUuid(sharedString(uuid));
  vault->setOverviewKey(ByteView(*bytesFromHex(textAt(vectors(), "overviewKey"))));
  return vault;
}

QNItemRow itemRowOf(const Json& row, ByteView hash) {
  QNItemRow item;
  item.oid = numberAt(row, "oid");
  item.status = numberAt(row, "status");
  item.faveIndex = numberAt(row, "fave_index");
  item.createdAt = numberAt(row, "created_at");
  item.updatedAt = numberAt(row, "updated_at");
  item.txTimestamp = numberAt(row, "tx_timestamp");
  item.timesUsed = numberAt(row, "times_used");
  item.lastUsed = numberAt(row, "last_used");
  item.inbox = numberAt(row, "inbox");
  item.attachments = numberAt(row, "attachments");
  item.categoryUUID = textAt(row, "category_uuid");
  item.scope = optionalTextAt(row, "scope");
  item.folderUUID = optionalTextAt(row, "folder_uuid");
  item.uuid = textAt(row, "uuid");
  item.bodyHash = hash;
  item.overview = bytesOf(textAt(vectors(), "overview"));
  return item;
}

TEST(QNRowSeal, SealsItemsAsTheirTableSays) {
  const auto vault = vaultOfVectors();
  const Bytes hash = *bytesFromHex(textAt(vectors(), "bodyHash"));
  QNRowSealer sealer(*vault);

  for (const Json& each : vectors().at("items").as_array()) {
    const auto seal = sealer.seal(itemRowOf(each.at("row"), hash));
    ASSERT_TRUE(seal);
    EXPECT_EQ(hexText(seal->tag), textAt(each, "tag"));
    EXPECT_EQ(hexText(seal->term), textAt(each, "term"));
  }
}

TEST(QNRowSeal, SealsVaultsAsTheirTableSays) {
  const Json& row = vectors().at("vault").at("row");
  QNVaultRow vault;
  vault.oid = numberAt(row, "oid");
  vault.uuid = textAt(row, "uuid");
  vault.name = textAt(row, "name");
  vault.revision = numberAt(row, "revision");
  vault.status = numberAt(row, "status");
  vault.createdAt = numberAt(row, "created_at");
  vault.updatedAt = numberAt(row, "updated_at");
  vault.masterKey = bytesOf(textAt(row, "master_key"));
  vault.overviewKey = bytesOf(textAt(row, "overview_key"));
  vault.salt = bytesOf(textAt(row, "salt"));
  vault.iterations = numberAt(row, "iterations");
  vault.hint = optionalTextAt(row, "hint");
  vault.lastUpdatedBy = optionalTextAt(row, "last_updated_by");
  vault.color = optionalTextAt(row, "color");
  vault.attributes = bytesOf(textAt(row, "attributes"));

  const auto seal = QNRowSealer(*vaultOfVectors()).seal(vault);

  ASSERT_TRUE(seal);
  EXPECT_EQ(hexText(seal->tag), textAt(vectors().at("vault"), "tag"));
}

std::optional<ByteView> optionalBytesAt(const Json& object, std::string_view key) {
  const auto text = optionalTextAt(object, key);
  return text ? std::optional(bytesOf(*text)) : std::nullopt;
}

std::vector<QNSyncStateRow> stateRowsOf(const Json& states) {
  std::vector<QNSyncStateRow> rows;
  for (const Json& state : states.as_array()) {
    rows.push_back({numberAt(state, "kind"), numberAt(state, "object_type"),
                    numberAt(state, "object_id"), optionalTextAt(state, "object_uuid"),
                    numberAt(state, "synced_at"), numberAt(state, "source_timestamp"),
                    numberAt(state, "local_timestamp")});
  }
  return rows;
}

QNSyncSourceRow sourceRowOf(const Json& row) {
  QNSyncSourceRow source;
  source.oid = numberAt(row, "oid");
  source.revision = numberAt(row, "revision");
  source.legacy = numberAt(row, "legacy");
  source.keychainIdentifier = optionalTextAt(row, "keychain_identifier");
  source.keychainType = optionalTextAt(row, "keychain_type");
  source.remoteProfileUUID = optionalTextAt(row, "remote_profile_uuid");
  source.remoteProfileTimestamp = numberAt(row, "remote_profile_timestamp");
  source.remoteProfileAttributes = optionalBytesAt(row, "remote_profile_attributes");
  source.localProfileUUID = optionalTextAt(row, "local_profile_uuid");
  source.localProfileTimestamp = numberAt(row, "local_profile_timestamp");
  source.localProfileAttributes = optionalBytesAt(row, "local_profile_attributes");
  return source;
}

TEST(QNRowSeal, SealsSyncSourcesWithTheirStatesAsTheirTablesSay) {
  const auto vault = vaultOfVectors();
  for (const Json& each : vectors().at("syncSources").as_array()) {
    const auto hash = statesHash(stateRowsOf(each.at("states")));
    EXPECT_EQ(hexText(hash), textAt(each, "hash"));
    QNSyncSourceRow row = sourceRowOf(each.at("row"));
    row.statesHash = hash;

    const auto seal = QNRowSealer(*vault).seal(row);

    ASSERT_TRUE(seal);
    EXPECT_EQ(hexText(seal->tag), textAt(each, "tag"));
  }
}

TEST(QNRowSeal, HashesBodiesAsTheirTableSays) {
  const Json& body = vectors().at("body");
  const ByteView key = bytesOf(textAt(body, "wrapped_key"));
  const ByteView details = bytesOf(textAt(body, "details"));
  std::vector<QNURLRow> urls;
  for (const Json& url : body.at("urls").as_array()) {
    urls.push_back({9, numberAt(url, "display_order"), numberAt(url, "hash_version"),
                    optionalTextAt(url, "naked_hash"), optionalTextAt(url, "derived_hash"),
                    bytesOf(textAt(url, "overview"))});
  }

  EXPECT_EQ(hexText(bodyHash(key, details, urls)), textAt(body, "hash"));
  EXPECT_EQ(hexText(bodyHash(key, details, {})), textAt(body, "hashWithoutURLs"));
}

TEST(QNRowSeal, FitsOnlyTheWholeTag) {
  const QNSeal seal = {{1, 2, 3}, {}};
  Bytes stored = toBytes(seal.tag);
  EXPECT_TRUE(sealFits(seal, stored));
  EXPECT_FALSE(sealFits(std::nullopt, stored));

  stored.pop_back();
  EXPECT_FALSE(sealFits(seal, stored));
  stored.assign(16, 9);
  EXPECT_FALSE(sealFits(seal, stored));
}

// Ledgers

QNSeal sealOfTerm(std::uint8_t first, std::uint8_t last) {
  QNSeal seal{};
  seal.term.fill(last);
  seal.term[0] = first;
  return seal;
}

TEST(QNLedger, TakesBackWhatWasAddedInAnyOrder) {
  QNLedger ledger;
  const QNSeal one = sealOfTerm(0xff, 0xff);
  const QNSeal two = sealOfTerm(0x80, 0x01);
  const QNSeal three = sealOfTerm(0x00, 0xfe);
  for (const QNSeal& seal : {one, two, three}) ledger.add(seal);
  EXPECT_EQ(ledger.rows, 3u);

  for (const QNSeal& seal : {two, one, three}) ledger.remove(seal);

  EXPECT_EQ(ledger.rows, 0u);
  EXPECT_EQ(ledger.sumHigh, 0u);
  EXPECT_EQ(ledger.sumLow, 0u);
}

TEST(QNLedger, CarriesFromTheLowHalfToTheHighOne) {
  QNLedger ledger;
  QNSeal lowOnes{};
  std::fill(lowOnes.term.begin() + 8, lowOnes.term.end(), std::uint8_t{0xff});
  QNSeal one{};
  one.term.back() = 1;
  ledger.add(lowOnes);
  ledger.add(one);

  EXPECT_EQ(ledger.sumHigh, 1u);
  EXPECT_EQ(ledger.sumLow, 0u);
  ledger.remove(one);
  EXPECT_EQ(ledger.sumHigh, 0u);
  EXPECT_EQ(ledger.sumLow, std::numeric_limits<std::uint64_t>::max());
}

TEST(QNLedger, GivesRevisionsThatFollowTheClockAndNeverRepeat) {
  QNLedger ledger;

  EXPECT_EQ(ledger.nextTx(1'000), 1'000u);
  EXPECT_EQ(ledger.nextTx(1'000), 1'001u);
  EXPECT_EQ(ledger.nextTx(5), 1'002u);
  EXPECT_EQ(ledger.nextTx(2'000), 2'000u);
}

TEST(QNLedger, OpensInItsOwnVaultOnly) {
  const auto vault = vaultOfVectors();
  QNLedger ledger;
  ledger.rows = 3;
  ledger.lastTx = 1'700'000'000;
  ledger.vaultRevision = 2;
  ledger.sumHigh = 0x0102'0304'0506'0708;
  ledger.sumLow = 0xf1f2'f3f4'f5f6'f7f8;
  const auto sealed = ledger.sealed(*vault);
  ASSERT_TRUE(sealed);

  const auto opened = QNLedger::open(*vault, *sealed);
  ASSERT_TRUE(opened);
  EXPECT_EQ(opened->rows, 3u);
  EXPECT_EQ(opened->lastTx, 1'700'000'000u);
  EXPECT_EQ(opened->vaultRevision, 2u);
  EXPECT_EQ(opened->sumHigh, ledger.sumHigh);
  EXPECT_EQ(opened->sumLow, ledger.sumLow);

  EXPECT_FALSE(QNLedger::open(*vaultOfVectors("another-uuid"), *sealed));
}

TEST(QNLedger, IsNoOtherSealedThing) {
  const auto vault = vaultOfVectors();

  EXPECT_FALSE(QNLedger::open(*vault, *vault->encryptOverview(bytesOf(R"({"title":"a"})"))));
  EXPECT_FALSE(QNLedger::open(*vault, *vault->encryptOverview(Bytes(80, 'x'))));
  EXPECT_FALSE(QNLedger::open(*vault, *vault->encryptOverview(bytesOf("quillon ledger 1"))));
  EXPECT_FALSE(QNLedger::open(*vault, {}));
}

TEST(QNRowCount, ComparesNumbersOnlyWhereARowIsAltered) {
  QNLedger ledger;
  const QNSeal one = sealOfTerm(1, 1);
  const QNSeal two = sealOfTerm(2, 2);
  ledger.add(one);
  ledger.add(two);
  QNRowCount whole, altered, missing, other;

  EXPECT_TRUE(whole.add(one, one.tag) && whole.add(two, two.tag));
  EXPECT_TRUE(altered.add(one, one.tag));
  EXPECT_FALSE(altered.add(two, Bytes(16, 7)));
  EXPECT_TRUE(missing.add(one, one.tag));
  EXPECT_TRUE(other.add(one, one.tag) && other.add(one, one.tag));

  EXPECT_TRUE(whole.agreesWith(ledger));
  EXPECT_TRUE(altered.agreesWith(ledger));
  EXPECT_FALSE(missing.agreesWith(ledger));
  EXPECT_FALSE(other.agreesWith(ledger));
}

}  // namespace
}  // namespace quillon
