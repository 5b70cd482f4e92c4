#include <algorithm>

#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "store/QNStore.h"
#include "store/internal/QNStoreState.h"

// A deleted item's row becomes a tombstone, so that another store can be told of the deletion:
//
//   stays    row id, uuid, created_at, the wrapped key
//   becomes  status 1, category "099", updated_at the time of the deletion, a new tx_timestamp
//   is gone  everything else: other numbers are 0, texts NULL, overview and details empty; no URLs

namespace quillon {

namespace {

/// The wrapped key, or nothing if the item never had one: a buffer of zeros stands for it.
ByteView keyOf(const QNItem& item) {
  const ByteView key = item.encryptedKey();
  const bool isNone = std::all_of(key.begin(), key.end(), [](auto byte) { return byte == 0; });
  return isNone ? ByteView() : key;
}

}  // namespace

QNResult<QNDone> QNStore::deleteItem(const std::shared_ptr<QNItem>& item) {
  return inTransaction([this, &item] { return _database->deleteItem(item); });
}

QNResult<QNDone> QNStore::Database::deleteItem(const std::shared_ptr<QNItem>& item) {
  const auto vault = std::dynamic_pointer_cast<QNProfile>(item->profile());
  if (vault == nullptr || !item->hasOid()) {
    return storeError(QNStoreErrorCode::notFound, "the item isn't in this store");
  }
  const auto ledger = openLedger(vault);
  if (!ledger.ok()) return ledger.error();
  const auto before = rowBefore(*item, vault);
  if (!before.ok()) return before.error();
  const auto buried = bury(before.value(), secondsNow());
  if (!buried.ok()) return buried.error();
  afterCommit.emplace_back([item] {
    if (item->detailsLoaded()) {
      for (const auto& url : item->URLs()) url->_setOid(0);
    }
    item->_setOid(0);
    item->markDeleted();
    item->didSave();
  });
  return QNDone{};
}

QNResult<QNDone> QNStore::Database::bury(const Before& before, std::uint64_t deletedAt) {
  const auto ledger = openLedger(before.vault);
  if (!ledger.ok()) return ledger.error();
  const Bytes key = wrappedKeyOf(before.oid, before.bodyHash).value_or(Bytes());
  return writeTombstone({before.oid, before.uuid, before.createdAt, deletedAt,
                         ledger.value()->nextTx(secondsNow()), key},
                        before.vault, before);
}

QNResult<QNDone> QNStore::Database::saveTombstone(const std::shared_ptr<QNItem>& item) {
  const auto vault = vaultOf(*item);
  if (!vault.ok()) return vault.error();
  const auto before = item->hasOid() ? rowBefore(*item, vault.value())
                                     : tombstoneBefore(vault.value(), *item->uuid());
  if (!before.ok()) return before.error();
  noteForUndo(item);
  const std::uint64_t now = secondsNow();
  item->setUpdatedAt(now);
  item->setTxTimestamp(ledgers.at(vault.value()->oid()).ledger.nextTx(now));
  item->_setOid(before.value().seal ? before.value().oid : freshOid());
  const auto written = writeTombstone(
      {item->oid(), *item->uuid(), item->createdAt(), now, item->txTimestamp(), keyOf(*item)},
      vault.value(), before.value());
  if (!written.ok()) return written.error();
  afterCommit.emplace_back([item] { item->didSave(); });
  return QNDone{};
}

QNResult<QNDone> QNStore::Database::writeTombstone(const Remains& remains,
                                                   const std::shared_ptr<QNProfile>& vault,
                                                   const Before& before) {
  const auto hash = bodyHash(remains.wrappedKey, {}, {});
  QNItemRow row;
  row.oid = remains.oid;
  row.status = kTrashedItem;
  row.createdAt = remains.createdAt;
  row.updatedAt = remains.updatedAt;
  row.txTimestamp = remains.txTimestamp;
  row.categoryUUID = QNCategoryUUIDTombstone;
  row.uuid = remains.uuid;
  row.bodyHash = hash;
  const auto written = writeRow(row, vault, before);
  if (!written.ok()) return written.error();
  writeDetails(row.oid, remains.wrappedKey, {});
  file->change("DELETE FROM urls WHERE item_id = ?1", row.oid);
  return QNDone{};
}

QNResult<QNStore::Database::Before> QNStore::Database::tombstoneBefore(
    const std::shared_ptr<QNProfile>& vault, std::string_view uuid) {
  QNQuery query =
      file->query("SELECT " QN_ITEM_COLUMNS " FROM items WHERE vault_id = ?1 AND uuid = ?2",
                  vault->oid(), uuid);
  if (!query.next()) return Before{};
  const QNItemRow row = itemRow(query);
  // An item of that uuid stays: the columns' own rule refuses a second one.
  if (!isTombstone(row)) return Before{};
  Before before = beforeOf(row, vault);
  if (!sealFits(before.seal, row.seal)) {
    return storeError(QNStoreErrorCode::damaged, "the row of the deleted item was altered");
  }
  return before;
}

}  // namespace quillon
