#include <algorithm>

#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/urls/QNURLTools.h"
#include "quillon/templates/QNCategory.h"
#include "store/QNStore.h"
#include "store/internal/QNStoreState.h"

namespace quillon {

namespace {

std::optional<std::string> owned(std::optional<std::string_view> view) {
  return view ? std::optional(std::string(*view)) : std::nullopt;
}

std::uint64_t categoryIdOf(const QNProfile& vault, std::string_view uuid) {
  const auto category = std::dynamic_pointer_cast<QNCategory>(vault.categoryWithUUID(uuid));
  return category == nullptr ? 0 : category->oid();
}

constexpr std::string_view kSelectDetails =
    "SELECT wrapped_key, details FROM details WHERE item_id = ?1";

QNURLRow urlRow(const QNQuery& query) {
  QNURLRow row;
  row.oid = query.number(0);
  row.displayOrder = query.number(1);
  row.hashVersion = query.number(2);
  row.nakedHash = query.optionalText(3);
  row.derivedHash = query.optionalText(4);
  row.overview = query.bytes(5);
  return row;
}

std::shared_ptr<QNItemURL> urlOf(const QNQuery& query) {
  const QNURLRow row = urlRow(query);
  auto url = std::make_shared<QNItemURL>(QNExisting{row.oid});
  url->setDisplayOrder(row.displayOrder);
  url->setHashVersion(row.hashVersion);
  url->setNakedHash(owned(row.nakedHash));
  url->setDerivedHash(owned(row.derivedHash));
  url->setOverviewData(toBytes(row.overview));
  return url;
}

/// The rows that these objects were made of.
std::vector<QNURLRow> rowsOf(const std::vector<std::shared_ptr<QNItemURL>>& urls) {
  std::vector<QNURLRow> rows;
  for (const auto& url : urls) {
    rows.push_back({url->oid(), url->displayOrder(), url->hashVersion(), url->nakedHash(),
                    url->derivedHash(), *url->overviewData()});
  }
  return rows;
}

bool isPassword(const QNItem& item) {
  return item.categoryUUID() == QNCategoryUUIDPassword;
}

}  // namespace

QNItemRow itemRow(const QNQuery& query) {
  QNItemRow row;
  row.oid = query.number(0);
  row.status = query.number(1);
  row.faveIndex = query.number(2);
  row.createdAt = query.number(3);
  row.updatedAt = query.number(4);
  row.txTimestamp = query.number(5);
  row.timesUsed = query.number(6);
  row.lastUsed = query.number(7);
  row.inbox = query.number(8);
  row.attachments = query.number(9);
  row.categoryUUID = query.text(10);
  row.scope = query.optionalText(11);
  row.folderUUID = query.optionalText(12);
  row.uuid = query.text(13);
  row.bodyHash = query.bytes(14);
  row.seal = query.bytes(15);
  row.overview = query.bytes(16);
  return row;
}

std::shared_ptr<QNItem> QNStore::Database::shellOf(const QNItemRow& row,
                                                   const std::shared_ptr<QNProfile>& vault) {
  auto item = vault->existingItemWithID(row.oid, row.categoryUUID);
  if (item == nullptr) return nullptr;
  // The type first: a shell that gets a profile of another type than its own gets a new uuid.
  item->setProfileType(vault->profileType());
  item->setProfile(vault);
  item->setUuid(sharedString(std::string(row.uuid)));
  item->setCategoryId(categoryIdOf(*vault, row.categoryUUID));
  item->setFaveIndex(row.faveIndex);
  item->setDisplayOrder(row.faveIndex);  // may lie above what a favourite index is capped to
  if (row.scope) item->setScope(owned(row.scope));
  if (row.folderUUID) item->setFolderUUID(owned(row.folderUUID));
  item->setCreatedAt(row.createdAt);
  item->setUpdatedAt(row.updatedAt);
  item->setTxTimestamp(row.txTimestamp);
  item->setNumberOfTimesUsed(static_cast<std::int32_t>(row.timesUsed));
  item->setLastUsedTimestamp(row.lastUsed);
  item->setInboxItem(row.inbox != 0);
  item->setNumberOfAttachments(static_cast<std::int32_t>(row.attachments));
  if (row.status == kTrashedItem) item->setTrashed(true);
  if (row.status == 2) item->markDeleted();
  item->setOverviewData(toBytes(row.overview));
  item->didLoad();
  return item;
}

// One item

QNResult<std::shared_ptr<QNItem>> QNStore::item(const std::shared_ptr<QNProfile>& vault,
                                                std::string_view uuid) {
  return _database->read([&]() -> QNResult<std::shared_ptr<QNItem>> {
    const auto ledger = _database->ledgerNow(*vault);
    if (!ledger.ok()) return ledger.error();
    QNQuery query = _database->file->query("SELECT " QN_ITEM_COLUMNS
                                           " FROM items WHERE vault_id = ?1 AND uuid = ?2",
                                           vault->oid(), uuid);
    if (!query.next()) return storeError(QNStoreErrorCode::notFound, "no item of that uuid");
    const QNItemRow row = itemRow(query);
    if (isTombstone(row) && sealFits(QNRowSealer(*vault).seal(row), row.seal)) {
      return storeError(QNStoreErrorCode::notFound, "the item of that uuid was deleted");
    }
    return _database->itemOf(row, vault);
  });
}

QNResult<std::shared_ptr<QNItem>> QNStore::Database::itemOf(
    const QNItemRow& row, const std::shared_ptr<QNProfile>& vault) {
  if (!sealFits(QNRowSealer(*vault).seal(row), row.seal)) {
    return storeError(QNStoreErrorCode::damaged, "the item's row was altered");
  }
  const auto item = shellOf(row, vault);
  if (item == nullptr || item->mutableOverview() == nullptr) {
    return storeError(QNStoreErrorCode::damaged, "the item's overview doesn't open");
  }
  const auto filled = readBody(item, row.bodyHash);
  if (!filled.ok()) return filled.error();
  return item;
}

QNResult<QNDone> QNStore::loadDetails(const std::shared_ptr<QNItem>& item) {
  if (item->detailsLoaded()) return QNDone{};
  return _database->read([&]() -> QNResult<QNDone> {
    const auto vault = std::dynamic_pointer_cast<QNProfile>(item->profile());
    if (vault == nullptr) return storeError(QNStoreErrorCode::notFound, "the item has no vault");
    const auto ledger = _database->ledgerNow(*vault);
    if (!ledger.ok()) return ledger.error();
    QNQuery query = _database->file->query("SELECT " QN_ITEM_COLUMNS
                                           " FROM items WHERE oid = ?1 AND vault_id = ?2",
                                           item->oid(), vault->oid());
    if (!query.next()) return storeError(QNStoreErrorCode::notFound, "the item isn't there");
    const QNItemRow row = itemRow(query);
    const bool genuine = sealFits(QNRowSealer(*vault).seal(row), row.seal);
    if (genuine && isTombstone(row)) {
      return storeError(QNStoreErrorCode::notFound, "the item was deleted");
    }
    if (row.txTimestamp != item->txTimestamp()) {
      return storeError(QNStoreErrorCode::lostRace, "the item was saved by somebody else");
    }
    if (!genuine) {
      return storeError(QNStoreErrorCode::damaged, "the item's row was altered");
    }
    return _database->readBody(item, row.bodyHash);
  });
}

QNResult<QNDone> QNStore::Database::readBody(const std::shared_ptr<QNItem>& item, ByteView hash) {
  ++detailsRead;
  QNQuery query = file->query(kSelectDetails, item->oid());
  if (!query.next()) return storeError(QNStoreErrorCode::damaged, "the item has no details");
  const auto urls = readURLs(item->oid());
  if (!equalInConstantTime(bodyHash(query.bytes(0), query.bytes(1), rowsOf(urls)), hash)) {
    return storeError(QNStoreErrorCode::damaged, "the item's details or URLs were altered");
  }
  const bool wasDirty = item->dirtyRow();
  const bool orderWasDirty = item->dirtyDisplayOrder();
  item->markLoadingDetails();
  item->setEncryptedKey(query.bytes(0));
  item->setDetailsData(toBytes(query.bytes(1)));
  for (const auto& url : urls) {
    item->addURL(url);
    url->didLoad();
  }
  item->markDetailsLoaded();
  item->markAttachmentsLoaded();
  item->didLoad();
  if (wasDirty) item->markRowDirty();
  if (orderWasDirty) item->markDisplayOrderDirty();
  return QNDone{};
}

Bytes QNStore::Database::wrappedKeyOf(std::uint64_t itemOid) {
  QNQuery query = file->query(kSelectDetails, itemOid);
  return query.next() ? toBytes(query.bytes(0)) : Bytes();
}

std::optional<Bytes> QNStore::Database::wrappedKeyOf(std::uint64_t itemOid, ByteView hash) {
  QNQuery query = file->query(kSelectDetails, itemOid);
  if (!query.next()) return std::nullopt;
  const auto urls = readURLs(itemOid);
  const auto found = bodyHash(query.bytes(0), query.bytes(1), rowsOf(urls));
  return equalInConstantTime(found, hash) ? std::optional(toBytes(query.bytes(0))) : std::nullopt;
}

std::vector<std::shared_ptr<QNItemURL>> QNStore::Database::readURLs(std::uint64_t itemOid) {
  QNQuery query = file->query(
      "SELECT oid, display_order, hash_version, naked_hash, derived_hash, overview FROM urls "
      "WHERE item_id = ?1 ORDER BY display_order, oid",
      itemOid);
  std::vector<std::shared_ptr<QNItemURL>> urls;
  while (query.next()) urls.push_back(urlOf(query));
  return urls;
}

// By website

QNResult<std::unique_ptr<QNItemSetForURL>> QNStore::itemSetForURL(
    const std::shared_ptr<QNProfile>& vault, std::string_view url,
    std::vector<std::string>* damaged) {
  return _database->read([&]() -> QNResult<std::unique_ptr<QNItemSetForURL>> {
    const auto ledger = _database->ledgerNow(*vault);
    if (!ledger.ok()) return ledger.error();
    const QNURLTools& tools = QNURLTools::shared();
    const std::string& salt = *vault->uuid();
    const auto derived = _database->itemsWithHash(
        vault, kSelectItemsWithDerivedHash, tools.derivedHashWithSalt(salt, url), {}, damaged);
    if (!derived.ok()) return derived.error();
    const auto naked =
        _database->itemsWithHash(vault, kSelectItemsWithNakedHash,
                                 tools.nakedHashWithSalt(salt, url), derived.value(), damaged);
    if (!naked.ok()) return naked.error();
    auto set = std::make_unique<QNItemSetForURL>(std::string(url));
    set->profile = vault;
    for (const auto& item : derived.value()) {
      (isPassword(*item) ? set->derivedPasswords : set->derivedLogins).push_back(item);
    }
    for (const auto& item : naked.value()) {
      (isPassword(*item) ? set->nakedPasswords : set->nakedLogins).push_back(item);
    }
    return set;
  });
}

QNResult<QNItemSetForURL::Items> QNStore::Database::itemsWithHash(
    const std::shared_ptr<QNProfile>& vault, std::string_view sql,
    const std::optional<std::string>& hash, const QNItemSetForURL::Items& butNot,
    std::vector<std::string>* damaged) {
  QNItemSetForURL::Items items;
  if (!hash) return items;
  QNQuery query = file->query(sql, *hash, vault->oid());
  while (query.next()) {
    const std::uint64_t oid = query.number(0);
    if (std::any_of(butNot.begin(), butNot.end(),
                    [oid](const auto& item) { return item->oid() == oid; })) {
      continue;
    }
    QNQuery row = file->query("SELECT " QN_ITEM_COLUMNS " FROM items WHERE oid = ?1", oid);
    if (!row.next()) break;
    const auto item = itemOf(itemRow(row), vault);
    if (item.ok()) {
      items.push_back(item.value());
    } else if (damaged == nullptr) {
      return item.error();
    } else if (const std::string uuid(row.text(13));
               std::find(damaged->begin(), damaged->end(), uuid) == damaged->end()) {
      damaged->push_back(uuid);  // found by host and by domain, told once
    }
  }
  return items;
}

}  // namespace quillon
