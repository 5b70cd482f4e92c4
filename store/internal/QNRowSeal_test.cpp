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

TEST(QNRowSeal, SealsFoldersAsTheirTableSays) {
  const auto vault = vaultOfVectors();
  for (const Json& each : vectors().at("folders").as_array()) {
    const Json& columns = each.at("row");
    QNFolderRow row;
    row.oid = numberAt(columns, "oid");
    row.status = numberAt(columns, "status");
    row.createdAt = numberAt(columns, "created_at");
    row.updatedAt = numberAt(columns, "updated_at");
    row.txTimestamp = numberAt(columns, "tx_timestamp");
    row.smart = numberAt(columns, "smart");
    row.displayOrder = numberAt(columns, "display_order");
    row.parentUUID = optionalTextAt(columns, "parent_uuid");
    row.uuid = textAt(columns, "uuid");
    row.icon = optionalBytesAt(columns, "icon");
    row.overview = bytesOf(textAt(columns, "overview"));

    const auto seal = QNRowSealer(*vault).seal(row);

    ASSERT_TRUE(seal);
    EXPECT_EQ(hexText(seal->tag), textAt(each, "tag"));
    EXPECT_EQ(hexText(seal->term), textAt(each, "term"));
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

TEST(QNRowSum, TakesBackWhatWasAddedInAnyOrder) {
  QNRowSum sum;
  const QNSeal one = sealOfTerm(0xff, 0xff);
  const QNSeal two = sealOfTerm(0x80, 0x01);
  const QNSeal three = sealOfTerm(0x00, 0xfe);
  for (const QNSeal& seal : {one, two, three}) sum.add(seal);
  EXPECT_EQ(sum.rows, 3u);

  for (const QNSeal& seal : {two, one, three}) sum.remove(seal);

  EXPECT_EQ(sum.rows, 0u);
  EXPECT_EQ(sum.high, 0u);
  EXPECT_EQ(sum.low, 0u);
}

TEST(QNRowSum, CarriesFromTheLowHalfToTheHighOne) {
  QNRowSum sum;
  QNSeal lowOnes{};
  std::fill(lowOnes.term.begin() + 8, lowOnes.term.end(), std::uint8_t{0xff});
  QNSeal one{};
  one.term.back() = 1;
  sum.add(lowOnes);
  sum.add(one);

  EXPECT_EQ(sum.high, 1u);
  EXPECT_EQ(sum.low, 0u);
  sum.remove(one);
  EXPECT_EQ(sum.high, 0u);
  EXPECT_EQ(sum.low, std::numeric_limits<std::uint64_t>::max());
}

TEST(QNLedger, GivesRevisionsThatFollowTheClockAndNeverRepeat) {
  QNLedger ledger;

  EXPECT_EQ(ledger.nextTx(1'000), 1'000u);
  EXPECT_EQ(ledger.nextTx(1'000), 1'001u);
  EXPECT_EQ(ledger.nextTx(5), 1'002u);
  EXPECT_EQ(ledger.nextTx(2'000), 2'000u);
}

QNLedger ledgerOfVectors() {
  QNLedger ledger;
  ledger.items = {3, 0x0102'0304'0506'0708, 0xf1f2'f3f4'f5f6'f7f8};
  ledger.lastTx = 1'700'000'000;
  ledger.vaultRevision = 2;
  ledger.folders = {4, std::numeric_limits<std::uint64_t>::max(),
                    std::numeric_limits<std::uint64_t>::max() - 1};
  return ledger;
}

TEST(QNLedger, IsStoredAsItsTableSays) {
  const auto vault = vaultOfVectors();

  const auto clear = vault->decryptOverview(*ledgerOfVectors().sealed(*vault));

  ASSERT_TRUE(clear);
  EXPECT_EQ(hexText(*clear), textAt(vectors().at("ledgers"), "withFolders"));
}

TEST(QNLedger, OfVersions1And2HasNoFolders) {
  const auto vault = vaultOfVectors();
  const Bytes clear = *bytesFromHex(textAt(vectors().at("ledgers"), "without"));

  const auto opened = QNLedger::open(*vault, *vault->encryptOverview(clear));

  ASSERT_TRUE(opened);
  const QNLedger expected = ledgerOfVectors();
  EXPECT_EQ(opened->items.rows, expected.items.rows);
  EXPECT_EQ(opened->items.high, expected.items.high);
  EXPECT_EQ(opened->items.low, expected.items.low);
  EXPECT_EQ(opened->lastTx, expected.lastTx);
  EXPECT_EQ(opened->vaultRevision, expected.vaultRevision);
  EXPECT_EQ(opened->folders.rows, 0u);
  EXPECT_EQ(opened->folders.high, 0u);
  EXPECT_EQ(opened->folders.low, 0u);
  EXPECT_FALSE(QNLedger::open(*vaultOfVectors("another-uuid"), *vault->encryptOverview(clear)));
}

TEST(QNLedger, OpensInItsOwnVaultOnly) {
  const auto vault = vaultOfVectors();
  const QNLedger ledger = ledgerOfVectors();
  const auto sealed = ledger.sealed(*vault);
  ASSERT_TRUE(sealed);

  const auto opened = QNLedger::open(*vault, *sealed);
  ASSERT_TRUE(opened);
  EXPECT_EQ(opened->items.rows, 3u);
  EXPECT_EQ(opened->lastTx, 1'700'000'000u);
  EXPECT_EQ(opened->vaultRevision, 2u);
  EXPECT_EQ(opened->items.high, ledger.items.high);
  EXPECT_EQ(opened->items.low, ledger.items.low);
  EXPECT_EQ(opened->folders.rows, 4u);
  EXPECT_EQ(opened->folders.high, ledger.folders.high);
  EXPECT_EQ(opened->folders.low, ledger.folders.low);

  EXPECT_FALSE(QNLedger::open(*vaultOfVectors("another-uuid"), *sealed));
}

TEST(QNLedger, IsNoOtherSealedThing) {
  const auto vault = vaultOfVectors();

  EXPECT_FALSE(QNLedger::open(*vault, *vault->encryptOverview(bytesOf(R"({"title":"a"})"))));
  EXPECT_FALSE(QNLedger::open(*vault, *vault->encryptOverview(Bytes(80, 'x'))));
  EXPECT_FALSE(QNLedger::open(*vault, *vault->encryptOverview(bytesOf("quillon ledger 1"))));
  EXPECT_FALSE(QNLedger::open(*vault, *vault->encryptOverview(bytesOf("quillon ledger 2"))));
  EXPECT_FALSE(QNLedger::open(*vault, *vault->encryptOverview(bytesOf("quillon ledger 3"))));
  EXPECT_FALSE(QNLedger::open(*vault, {}));
}

TEST(QNRowCount, ComparesNumbersOnlyWhereARowIsAltered) {
  QNRowSum sum;
  const QNSeal one = sealOfTerm(1, 1);
  const QNSeal two = sealOfTerm(2, 2);
  sum.add(one);
  sum.add(two);
  QNRowCount whole, altered, missing, other;

  EXPECT_TRUE(whole.add(one, one.tag) && whole.add(two, two.tag));
  EXPECT_TRUE(altered.add(one, one.tag));
  EXPECT_FALSE(altered.add(two, Bytes(16, 7)));
  EXPECT_TRUE(missing.add(one, one.tag));
  EXPECT_TRUE(other.add(one, one.tag) && other.add(one, one.tag));

  EXPECT_TRUE(whole.agreesWith(sum));
  EXPECT_TRUE(altered.agreesWith(sum));
  EXPECT_FALSE(missing.agreesWith(sum));
  EXPECT_FALSE(other.agreesWith(sum));
}

}  // namespace
}  // namespace quillon
