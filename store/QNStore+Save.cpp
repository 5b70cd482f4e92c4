#include <algorithm>

#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "store/QNStore.h"
#include "store/internal/QNStoreState.h"

namespace quillon {

namespace {

/// Rating passwords, sealing and SQLite push each other out of the processor's cache: items are
/// made ready in groups, and then written.
constexpr std::size_t kItemsAtOnce = 64;

using URLs = std::vector<std::shared_ptr<QNItemURL>>;

URLs urlsOf(QNItem& item) {
  return item.detailsLoaded() ? item.URLs() : URLs();
}

bool isDirty(const QNDatabaseObject& object) {
  return !object.hasOid() || object.dirtyRow() || object.dirtyDisplayOrder();
}

/// A change to a field dirties nothing until the sections are written into the details.
bool needsSaving(QNItem& item) {
  if (item.deleted() && !item.hasOid()) return false;
  if (item.detailsLoaded()) item.saveFieldSections();
  const URLs urls = urlsOf(item);
  return isDirty(item) ||
         std::any_of(urls.begin(), urls.end(), [](const auto& url) { return isDirty(*url); });
}

/// Can everything that a save would encrypt anew be read? What doesn't open reads as empty, and
/// must not be written as empty.
bool opens(QNItem& item) {
  const URLs urls = urlsOf(item);
  const bool isShell = item.hasOid() && !item.detailsLoaded();
  return item.categoryUUID() && item.mutableOverview() != nullptr &&
         (isShell || (item.detailsLoaded() && item.details() != nullptr)) &&
         std::all_of(urls.begin(), urls.end(),
                     [](const auto& url) { return url->mutableOverview() != nullptr; });
}

/// Random bytes stand in here: two sealings of one text differ in them.
Bytes headOf(const std::optional<Bytes>& sealed) {
  if (!sealed) return {};
  const std::size_t size = std::min(sealed->size(), QNAESKey::kMinSealedSize);
  return toBytes(ByteView(*sealed).first(size));
}

/// The same as sealAnew() for both forms.
bool prepare(QNItem& item) {
  const Bytes details = headOf(item.detailsData());
  if (!sealAnew(item)) return false;
  return !item.detailsLoaded() || (item.detailsData() && headOf(item.detailsData()) != details);
}

/// The list's order is what a reader must find again: it becomes the order of the rows.
bool prepareURLs(const URLs& urls) {
  std::uint64_t last = 0;
  for (const auto& url : urls) {
    if (url->displayOrder() <= last) url->setDisplayOrder(last + 1);
    last = url->displayOrder();
    if (!sealAnew(*url)) return false;
  }
  return true;
}

QNURLRow urlRow(const QNItemURL& url) {
  return {url.oid(),       url.displayOrder(), url.hashVersion(),
          url.nakedHash(), url.derivedHash(),  *url.overviewData()};
}

std::array<std::uint8_t, 32> bodyHashOf(QNItem& item) {
  std::vector<QNURLRow> rows;
  for (const auto& url : item.URLs()) rows.push_back(urlRow(*url));
  return bodyHash(item.encryptedKey(), *item.detailsData(), rows);
}

/// The item's columns, with the copies that the row's views lie in.
struct ItemColumns {
  explicit ItemColumns(QNItem& item) : scope(item.scope()), folderUUID(item.folderUUID()) {
    row.oid = item.oid();
    row.status = item.status();
    row.faveIndex = item.faveIndex();
    row.createdAt = item.createdAt();
    row.updatedAt = item.updatedAt();
    row.txTimestamp = item.txTimestamp();
    row.timesUsed = static_cast<std::uint32_t>(item.numberOfTimesUsed());
    row.lastUsed = item.lastUsedTimestamp();
    row.inbox = item.inboxItem() ? 1 : 0;
    row.attachments = static_cast<std::uint32_t>(item.numberOfAttachments());
    row.categoryUUID = *item.categoryUUID();
    row.scope = scope;
    row.folderUUID = folderUUID;
    row.uuid = *item.uuid();
    row.overview = *item.overviewData();
  }
  std::optional<std::string> scope, folderUUID;
  QNItemRow row;
};

}  // namespace

bool sealAnew(QNDatabaseObjectWithOverview& object) {
  const Bytes before = headOf(object.overviewData());
  object.willSave();
  return object.overviewData() && headOf(object.overviewData()) != before;
}

// Transactions

QNResult<QNDone> QNStore::inTransaction(const std::function<QNResult<QNDone>()>& work) {
  return _database->run(work);
}

QNResult<QNDone> QNStore::Database::run(const std::function<QNResult<QNDone>()>& work) {
  if (listing) return listingError();
  const bool outermost = !file->inTransaction();
  Ending ending(*this, outermost);
  QNTransaction transaction(*file, QNTransaction::Kind::write);
  if (!file->failed()) {
    // SQLite's error, if there is one, is the reason for whatever the work says.
    const auto done = work();
    if (!done.ok()) file->fail(done.error());
  }
  if (outermost) writeLedgers();
  auto committed = transaction.commit();
  ending.committed = committed.ok();
  return committed;
}

QNStore::Database::Ending::~Ending() {
  if (!_outermost) return;
  auto steps = std::exchange(committed ? _database.afterCommit : _database.undo, {});
  if (!committed) std::reverse(steps.begin(), steps.end());
  _database.ledgers.clear();
  _database.lastItemOid = 0;
  _database.afterCommit.clear();
  _database.undo.clear();
  for (const auto& step : steps) step();
}

void QNStore::Database::writeLedgers() {
  if (file->failed()) return;
  for (const auto& [oid, open] : ledgers) {
    const auto content = open.ledger.sealed(*open.vault);
    if (!content) return file->fail(storeError(QNStoreErrorCode::locked, "the vault is locked"));
    file->change(
        "INSERT INTO ledgers (vault_id, content) VALUES (?1, ?2) "
        "ON CONFLICT (vault_id) DO UPDATE SET content = excluded.content",
        oid, ByteView(*content));
  }
}

// Saving

QNResult<QNDone> QNStore::save(const std::shared_ptr<QNItem>& item) {
  if (!needsSaving(*item)) return QNDone{};
  return inTransaction([this, &item] {
    return _database->saveItems({&item, 1}, Database::Times::now);
  });
}

QNResult<QNDone> QNStore::saveAll(std::span<const std::shared_ptr<QNItem>> items) {
  return inTransaction([&] { return _database->saveChanged(items, Database::Times::now); });
}

QNResult<QNDone> QNStore::saveAllWithTheirTimes(std::span<const std::shared_ptr<QNItem>> items) {
  return inTransaction([&] { return _database->saveChanged(items, Database::Times::kept); });
}

QNResult<QNDone> QNStore::Database::saveChanged(std::span<const std::shared_ptr<QNItem>> items,
                                                Times times) {
  std::vector<std::shared_ptr<QNItem>> changed;
  std::copy_if(items.begin(), items.end(), std::back_inserter(changed),
               [](const auto& item) { return needsSaving(*item); });
  for (std::span<const std::shared_ptr<QNItem>> rest = changed; !rest.empty();) {
    const std::size_t count = std::min(kItemsAtOnce, rest.size());
    const auto saved = saveItems(rest.first(count), times);
    if (!saved.ok()) return saved.error();
    rest = rest.subspan(count);
  }
  return QNDone{};
}

QNResult<QNDone> QNStore::Database::saveItems(std::span<const std::shared_ptr<QNItem>> items,
                                              Times times) {
  std::vector<Prepared> prepared;
  prepared.reserve(items.size());
  for (const auto& item : items) {
    const bool isRepeated = std::any_of(prepared.begin(), prepared.end(),
                                        [&](const Prepared& one) { return one.item == item; });
    if (isRepeated) continue;
    if (item->isTombstone()) {
      const auto buried = saveTombstone(item);
      if (!buried.ok()) return buried.error();
      continue;
    }
    auto ready = prepareItem(item, times);
    if (!ready.ok()) return ready.error();
    prepared.push_back(std::move(ready).value());
  }
  for (const Prepared& ready : prepared) {
    const auto written = writeItem(ready);
    if (!written.ok()) return written.error();
  }
  return QNDone{};
}

QNResult<std::shared_ptr<QNProfile>> QNStore::Database::vaultOf(const QNDatabaseObject& object) {
  auto vault = std::dynamic_pointer_cast<QNProfile>(object.profile());
  if (vault == nullptr) {
    return storeError(QNStoreErrorCode::notFound, "the object has no vault of a store");
  }
  const auto ledger = openLedger(vault);
  if (!ledger.ok()) return ledger.error();
  return vault;
}

QNResult<QNStore::Database::Prepared> QNStore::Database::prepareItem(
    const std::shared_ptr<QNItem>& item, Times times) {
  const auto vault = vaultOf(*item);
  if (!vault.ok()) return vault.error();
  if (!opens(*item)) return storeError(QNStoreErrorCode::unreadableItem, "the item doesn't open");
  auto before = rowBefore(*item, vault.value());
  if (!before.ok()) return before.error();

  noteForUndo(item);
  const std::uint64_t now = secondsNow();
  if (times == Times::now) item->setUpdatedAt(now);
  item->setTxTimestamp(ledgers.at(vault.value()->oid()).ledger.nextTx(now));
  if (!prepare(*item) || !prepareURLs(urlsOf(*item))) {
    return storeError(QNStoreErrorCode::unreadableItem, "the item can't be encrypted");
  }
  return Prepared{item, vault.value(), std::move(before).value()};
}

QNResult<QNStore::Database::Before> QNStore::Database::rowWithOid(
    std::uint64_t oid, const std::shared_ptr<QNProfile>& vault) {
  QNQuery query = file->query(
      "SELECT " QN_ITEM_COLUMNS " FROM items WHERE oid = ?1 AND vault_id = ?2", oid, vault->oid());
  const QNItemRow row = query.next() ? itemRow(query) : QNItemRow();
  Before before = beforeOf(row, vault);
  if (!sealFits(before.seal, row.seal)) {
    return storeError(QNStoreErrorCode::damaged, "the item's row was altered");
  }
  return before;
}

QNStore::Database::Before QNStore::Database::beforeOf(const QNItemRow& row,
                                                      const std::shared_ptr<QNProfile>& vault) {
  Before before;
  before.seal = QNRowSealer(*vault).seal(row);
  before.oid = row.oid;
  before.txTimestamp = row.txTimestamp;
  before.createdAt = row.createdAt;
  before.uuid = row.uuid;
  before.bodyHash = toBytes(row.bodyHash);
  before.vault = vault;
  return before;
}

QNResult<QNStore::Database::Before> QNStore::Database::rowBefore(
    QNItem& item, const std::shared_ptr<QNProfile>& vault) {
  if (!item.hasOid()) return Before{};
  QNQuery query =
      file->query("SELECT " QN_ITEM_COLUMNS ", vault_id FROM items WHERE oid = ?1", item.oid());
  if (!query.next() || query.number(5) != item.txTimestamp()) {
    if (file->failed()) return *file->error();
    return storeError(QNStoreErrorCode::lostRace, "the item was saved or deleted by somebody else");
  }
  const QNItemRow row = itemRow(query);
  const std::uint64_t home = query.number(17);
  const auto from = home == vault->oid() ? vault : unlockedVaultWithOid(home);
  if (from == nullptr) {
    return storeError(QNStoreErrorCode::locked, "the vault that the item comes from is locked");
  }
  if (from != vault && !item.detailsLoaded()) {
    return storeError(QNStoreErrorCode::unreadableItem, "an item moves with its details loaded");
  }
  Before before = beforeOf(row, from);
  if (!sealFits(before.seal, row.seal)) {
    return storeError(QNStoreErrorCode::damaged, "the item's row was altered");
  }
  return before;
}

QNResult<QNDone> QNStore::Database::writeItem(const Prepared& prepared) {
  const auto& [item, vault, before] = prepared;
  const bool isNew = before.vault != vault;
  if (isNew) {
    const auto buried =
        before.vault == nullptr ? QNResult<QNDone>(QNDone{}) : bury(before, secondsNow());
    if (!buried.ok()) return buried.error();
  }
  ItemColumns columns(*item);
  QNItemRow& row = columns.row;
  const auto freshHash = item->detailsLoaded() ? std::optional(bodyHashOf(*item)) : std::nullopt;
  row.bodyHash = freshHash ? ByteView(*freshHash) : ByteView(before.bodyHash);
  const auto written = isNew ? writeNewRow(row, vault) : writeRow(row, vault, before);
  if (!written.ok()) return written.error();
  item->_setOid(row.oid);
  if (item->detailsLoaded()) writeBody(*item, isNew);
  writeCategory(vault, row.categoryUUID);
  afterCommit.emplace_back([saved = std::weak_ptr(item)] {
    const auto kept = saved.lock();
    if (kept == nullptr) return;
    for (const auto& url : urlsOf(*kept)) url->didSave();
    kept->didSave();
  });
  return QNDone{};
}

std::uint64_t QNStore::Database::freshOid() {
  if (lastItemOid == 0) lastItemOid = file->number("SELECT coalesce(max(oid), 0) FROM items");
  return ++lastItemOid;
}

// Looked for only when the row can't be added: an import needn't ask for each item.
QNResult<QNDone> QNStore::Database::writeNewRow(QNItemRow& row,
                                                const std::shared_ptr<QNProfile>& vault) {
  row.oid = freshOid();
  const auto added = writeRow(row, vault, Before{});
  if (added.ok() || added.error().code != static_cast<int>(QNStoreErrorCode::exists)) return added;
  const auto tombstone = tombstoneBefore(vault, row.uuid);
  if (!tombstone.ok()) return tombstone.error();
  if (!tombstone.value().seal) return added;
  row.oid = tombstone.value().oid;
  return writeRow(row, vault, tombstone.value());
}

QNResult<QNDone> QNStore::Database::writeRow(QNItemRow& row,
                                             const std::shared_ptr<QNProfile>& vault,
                                             const Before& before) {
  const auto seal = QNRowSealer(*vault).seal(row);
  if (!seal) return storeError(QNStoreErrorCode::locked, "the vault's keys aren't there");
  row.seal = seal->tag;
  const std::uint64_t changed = file->change(
      "INSERT INTO items (" QN_ITEM_COLUMNS
      ", vault_id) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14, ?15, ?16, "
      "?17, ?18) ON CONFLICT (oid) DO UPDATE SET status = ?2, fave_index = ?3, created_at = ?4, "
      "updated_at = ?5, tx_timestamp = ?6, times_used = ?7, last_used = ?8, inbox = ?9, "
      "attachments = ?10, category_uuid = ?11, scope = ?12, folder_uuid = ?13, uuid = ?14, "
      "body_hash = ?15, seal = ?16, overview = ?17 WHERE vault_id = ?18 AND tx_timestamp = ?19 "
      "ON CONFLICT (vault_id, uuid) DO NOTHING",
      row.oid, row.status, row.faveIndex, row.createdAt, row.updatedAt, row.txTimestamp,
      row.timesUsed, row.lastUsed, row.inbox, row.attachments, row.categoryUUID, row.scope,
      row.folderUUID, row.uuid, row.bodyHash, row.seal, row.overview, vault->oid(),
      before.txTimestamp);
  if (changed != 1) {
    return before.seal ? storeError(QNStoreErrorCode::lostRace, "the item's row was changed")
                       : storeError(QNStoreErrorCode::exists, "an item of this uuid is there");
  }
  QNRowSum& sum = ledgers.at(vault->oid()).ledger.items;
  if (before.seal) sum.remove(*before.seal);
  sum.add(*seal);
  return QNDone{};
}

/// The rows of removed URLs go with the others: all of them are written anew.
void QNStore::Database::writeBody(QNItem& item, bool isNew) {
  writeDetails(item.oid(), item.encryptedKey(), *item.detailsData());
  if (!isNew) file->change("DELETE FROM urls WHERE item_id = ?1", item.oid());
  for (const auto& url : item.URLs()) {
    const QNURLRow row = urlRow(*url);
    file->change(
        "INSERT INTO urls (item_id, display_order, hash_version, naked_hash, derived_hash, "
        "overview) VALUES (?1, ?2, ?3, ?4, ?5, ?6)",
        item.oid(), row.displayOrder, row.hashVersion, row.nakedHash, row.derivedHash,
        row.overview);
    url->_setOid(file->lastRow());
  }
}

void QNStore::Database::writeDetails(std::uint64_t itemOid, ByteView wrappedKey, ByteView details) {
  file->change(
      "INSERT INTO details (item_id, wrapped_key, details) VALUES (?1, ?2, ?3) ON CONFLICT "
      "(item_id) DO UPDATE SET wrapped_key = excluded.wrapped_key, details = excluded.details",
      itemOid, wrappedKey, details);
}

void QNStore::Database::noteForUndo(const std::shared_ptr<QNItem>& item) {
  std::vector<std::pair<std::weak_ptr<QNItemURL>, std::uint64_t>> urlRows;
  for (const auto& url : urlsOf(*item)) urlRows.emplace_back(url, url->oid());
  undo.emplace_back([saved = std::weak_ptr(item), urlRows = std::move(urlRows), oid = item->oid(),
                     updatedAt = item->updatedAt(), txTimestamp = item->txTimestamp()] {
    for (const auto& [url, urlOid] : urlRows) {
      if (const auto object = url.lock()) object->_setOid(urlOid);
    }
    const auto kept = saved.lock();
    if (kept == nullptr) return;
    kept->_setOid(oid);
    kept->setUpdatedAt(updatedAt);
    kept->setTxTimestamp(txTimestamp);
  });
}

}  // namespace quillon
