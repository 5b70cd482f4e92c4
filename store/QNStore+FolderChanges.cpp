#include <algorithm>
#include <unordered_map>

#include "quillon/organisation/QNFolder.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "store/QNStore.h"
#include "store/internal/QNStoreState.h"

// A deleted folder's row stays, so that another store can be told of the deletion:
//
//   stays    row id, uuid, created_at
//   becomes  status 2, updated_at the time of the deletion, a new tx_timestamp
//   is gone  everything else: other numbers are 0, texts and icon NULL, the overview empty
//
// What it held is saved with the time that it has: it was moved, not edited, and in a merge an edit
// on the other side must count as the later change.

namespace quillon {

namespace {

/// Would the folder's predicate end the process, if it were a smart one?
bool isQuarantined(QNFolder& folder) {
  folder.setSmartFolder(true);
  const bool isFatal = folder.smartFolderFault().has_value();
  folder.setSmartFolder(false);
  return isFatal;
}

/// The folder calls itself an ordinary one. Did its row's predicate make it so, and was it given
/// another one, of the present format?
bool leavesQuarantine(QNFolder& folder, const std::shared_ptr<QNFolder>& stored) {
  return stored != nullptr && isQuarantined(*stored) &&
         folder.smartFolderVersion() > stored->smartFolderVersion();
}

/// The icon may be missing, but not for want of a key.
QNResult<std::optional<Bytes>> sealedIcon(const QNFolder& folder, QNProfile& vault) {
  if (!folder.iconData()) return std::optional<Bytes>();
  auto sealed = vault.encryptOverview(*folder.iconData());
  if (!sealed) return storeError(QNStoreErrorCode::locked, "the vault's keys aren't there");
  return sealed;
}

}  // namespace

// Rows

QNStore::Database::FolderBefore QNStore::Database::folderBeforeOf(
    const QNFolderRow& row, const std::shared_ptr<QNProfile>& vault) {
  FolderBefore before;
  before.seal = QNRowSealer(*vault).seal(row);
  before.oid = row.oid;
  before.createdAt = row.createdAt;
  before.updatedAt = row.updatedAt;
  before.txTimestamp = row.txTimestamp;
  before.uuid = row.uuid;
  if (row.parentUUID) before.parentUUID = *row.parentUUID;
  before.isSmart = row.smart != 0;
  before.isDeleted = isDeleted(row);
  return before;
}

QNResult<QNStore::Database::FolderBefore> QNStore::Database::folderBefore(
    QNQuery query, const std::shared_ptr<QNProfile>& vault) {
  if (!query.next()) return FolderBefore{};
  const QNFolderRow row = folderRow(query);
  FolderBefore before = folderBeforeOf(row, vault);
  if (!sealFits(before.seal, row.seal)) {
    return storeError(QNStoreErrorCode::damaged, "the folder's row was altered");
  }
  return before;
}

QNResult<QNStore::Database::FolderBefore> QNStore::Database::folderRowNow(
    std::uint64_t oid, const std::shared_ptr<QNProfile>& vault) {
  return folderBefore(
      file->query("SELECT " QN_FOLDER_COLUMNS " FROM folders WHERE oid = ?1 AND vault_id = ?2", oid,
                  vault->oid()),
      vault);
}

QNResult<QNStore::Database::FolderBefore> QNStore::Database::folderBefore(
    const QNFolder& folder, const std::shared_ptr<QNProfile>& vault) {
  if (folder.uuid() == nullptr) {
    return storeError(QNStoreErrorCode::unreadableItem, "the folder has no uuid");
  }
  auto before = folder.hasOid()
                    ? folderRowNow(folder.oid(), vault)
                    : folderBefore(file->query("SELECT " QN_FOLDER_COLUMNS
                                               " FROM folders WHERE uuid = ?1 AND vault_id = ?2",
                                               *folder.uuid(), vault->oid()),
                                   vault);
  if (!before.ok() || file->failed()) return before;
  const bool isThere = before.value().seal.has_value() && !before.value().isDeleted;
  if (!folder.hasOid() && isThere) {
    return storeError(QNStoreErrorCode::exists, "a folder of this uuid is there");
  }
  if (folder.hasOid() && (!isThere || before.value().txTimestamp != folder.txTimestamp())) {
    return storeError(QNStoreErrorCode::lostRace,
                      "the folder was saved or deleted by somebody else");
  }
  if (isThere && before.value().uuid != *folder.uuid()) {  // a row keeps its uuid
    return storeError(QNStoreErrorCode::notFound, "the folder's row is that of another uuid");
  }
  return before;
}

std::vector<QNStore::Database::FolderBefore> QNStore::Database::deletedFolders(
    const std::shared_ptr<QNProfile>& vault) {
  std::vector<FolderBefore> deleted;
  QNQuery query = file->query(
      "SELECT " QN_FOLDER_COLUMNS " FROM folders WHERE vault_id = ?1 AND status = 2", vault->oid());
  while (query.next()) deleted.push_back(folderBeforeOf(folderRow(query), vault));
  return deleted;
}

QNResult<QNDone> QNStore::Database::writeFolderRow(QNFolderRow& row,
                                                   const std::shared_ptr<QNProfile>& vault,
                                                   const FolderBefore& before) {
  const auto seal = QNRowSealer(*vault).seal(row);
  if (!seal) return storeError(QNStoreErrorCode::locked, "the vault's keys aren't there");
  row.seal = seal->tag;
  const std::uint64_t changed = file->change(
      "INSERT INTO folders (" QN_FOLDER_COLUMNS
      ", vault_id) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13) "
      "ON CONFLICT (oid) DO UPDATE SET status = ?2, created_at = ?3, updated_at = ?4, "
      "tx_timestamp = ?5, smart = ?6, display_order = ?7, parent_uuid = ?8, icon = ?10, "
      "seal = ?11, overview = ?12 WHERE vault_id = ?13 AND tx_timestamp = ?14",
      row.oid, row.status, row.createdAt, row.updatedAt, row.txTimestamp, row.smart,
      row.displayOrder, row.parentUUID, row.uuid, row.icon, row.seal, row.overview, vault->oid(),
      before.txTimestamp);
  if (changed != 1) return storeError(QNStoreErrorCode::lostRace, "the folder's row was changed");
  QNRowSum& sum = ledgers.at(vault->oid()).ledger.folders;
  if (before.seal) sum.remove(*before.seal);
  sum.add(*seal);
  return QNDone{};
}

// Saving

QNResult<QNDone> QNStore::saveFolder(const std::shared_ptr<QNFolder>& folder) {
  return inTransaction([this, &folder] { return _database->saveFolder(folder); });
}

QNResult<QNDone> QNStore::Database::saveFolder(const std::shared_ptr<QNFolder>& folder) {
  if (folder->trashed() || folder->deleted()) return deleteFolder(folder);
  const auto vault = vaultOf(*folder);
  if (!vault.ok()) return vault.error();
  const auto before = folderBefore(*folder, vault.value());
  if (!before.ok()) return before.error();
  const bool moves = !before.value().seal || before.value().parentUUID != folder->parentUUID();
  const auto placed =
      moves ? requirePlace(*folder, before.value(), *vault.value()) : QNResult<QNDone>(QNDone{});
  if (!placed.ok()) return placed.error();
  if (before.value().isSmart && !folder->smartFolder() &&
      leavesQuarantine(*folder, folderWithOid(before.value().oid, vault.value()))) {
    undo.emplace_back([folder] { folder->setSmartFolder(false); });
    folder->setSmartFolder(true);
  }
  const bool isSmart = folder->smartFolder() || (before.value().isSmart && isQuarantined(*folder));
  return writeFolder(folder, vault.value(), before.value(), Times::now, isSmart);
}

/// Goes up from the parent: it must come to the top, and not to the folder on its way. What hangs
/// below the folder must find its place too.
QNResult<QNDone> QNStore::Database::requirePlace(const QNFolder& folder, const FolderBefore& before,
                                                 const QNProfile& vault) {
  std::optional<std::string> above = folder.parentUUID();
  if (!above) return QNDone{};
  std::size_t level = 1;
  for (; above; ++level) {
    QNQuery query = file->query(
        "SELECT parent_uuid FROM folders WHERE vault_id = ?1 AND uuid = ?2 AND status = 0",
        vault.oid(), *above);
    const bool isThere = query.next();
    if (level == 1 && !isThere) {
      return storeError(QNStoreErrorCode::misplacedFolder, "the parent folder isn't there");
    }
    if (*above == *folder.uuid()) {
      return storeError(QNStoreErrorCode::misplacedFolder, "the folder would lie in itself");
    }
    if (level == kMaxFolderLevels) {
      return storeError(QNStoreErrorCode::misplacedFolder, "the folder would lie too deep");
    }
    above.reset();
    if (isThere && query.optionalText(0)) above.emplace(*query.optionalText(0));
  }
  const std::size_t below = before.seal ? levelsBelow(*folder.uuid(), vault) : 0;
  if (level + below > kMaxFolderLevels) {
    return storeError(QNStoreErrorCode::misplacedFolder,
                      "what is in the folder would lie too deep");
  }
  return QNDone{};
}

/// In time linear in the folders of the vault, which no index finds by their parent. It ends where
/// the folder lies in itself.
std::size_t QNStore::Database::levelsBelow(const std::string& uuid, const QNProfile& vault) {
  std::unordered_multimap<std::string, std::string> subfolders;
  QNQuery query = file->query(
      "SELECT parent_uuid, uuid FROM folders WHERE vault_id = ?1 AND status = 0 AND parent_uuid IS "
      "NOT NULL AND uuid <> ?2",
      vault.oid(), uuid);
  while (query.next()) subfolders.emplace(query.text(0), query.text(1));
  std::size_t levels = 0;
  std::vector<std::string> level = {uuid};
  while (true) {
    std::vector<std::string> below;
    for (const std::string& each : level) {
      const auto [first, last] = subfolders.equal_range(each);
      std::for_each(first, last, [&below](const auto& it) { below.push_back(it.second); });
    }
    if (below.empty()) return levels;
    level = std::move(below);
    ++levels;
  }
}

QNResult<QNDone> QNStore::Database::writeFolder(const std::shared_ptr<QNFolder>& folder,
                                                const std::shared_ptr<QNProfile>& vault,
                                                const FolderBefore& before, Times times,
                                                bool isSmart) {
  if (folder->mutableOverview() == nullptr) {
    return storeError(QNStoreErrorCode::unreadableItem, "the folder doesn't open");
  }
  const auto ledger = openLedger(vault);
  if (!ledger.ok()) return ledger.error();
  const auto icon = sealedIcon(*folder, *vault);
  if (!icon.ok()) return icon.error();
  noteForUndo(folder);
  const std::uint64_t now = secondsNow();
  if (times == Times::now) folder->setUpdatedAt(now);
  folder->setTxTimestamp(ledgers.at(vault->oid()).ledger.nextTx(now));
  folder->_setOid(before.seal ? before.oid : freshFolderOid());
  if (!sealAnew(*folder)) {
    return storeError(QNStoreErrorCode::unreadableItem, "the folder can't be encrypted");
  }
  QNFolderRow row;
  row.oid = folder->oid();
  row.createdAt = folder->createdAt();
  row.updatedAt = folder->updatedAt();
  row.txTimestamp = folder->txTimestamp();
  row.smart = isSmart ? 1 : 0;
  row.displayOrder = folder->displayOrder();
  row.parentUUID = folder->parentUUID();
  row.uuid = *folder->uuid();
  row.icon = icon.value();
  row.overview = *folder->overviewData();
  const auto written = writeFolderRow(row, vault, before);
  if (!written.ok()) return written.error();
  afterCommit.emplace_back([folder] { folder->didSave(); });
  return QNDone{};
}

std::uint64_t QNStore::Database::freshFolderOid() {
  return file->number("SELECT coalesce(max(oid), 0) + 1 FROM folders");
}

void QNStore::Database::noteForUndo(const std::shared_ptr<QNFolder>& folder) {
  undo.emplace_back([folder, oid = folder->oid(), updatedAt = folder->updatedAt(),
                     txTimestamp = folder->txTimestamp()] {
    folder->_setOid(oid);
    folder->setUpdatedAt(updatedAt);
    folder->setTxTimestamp(txTimestamp);
  });
}

// Deleting

QNResult<QNDone> QNStore::deleteFolder(const std::shared_ptr<QNFolder>& folder) {
  return inTransaction([this, &folder] { return _database->deleteFolder(folder); });
}

QNResult<QNDone> QNStore::Database::deleteFolder(const std::shared_ptr<QNFolder>& folder) {
  const auto vault = vaultOf(*folder);
  if (!vault.ok()) return vault.error();
  if (!folder->hasOid()) {
    return storeError(QNStoreErrorCode::notFound, "the folder isn't in this store");
  }
  const auto before = folderBefore(*folder, vault.value());
  if (!before.ok()) return before.error();
  const auto buried = buryFolder(before.value(), vault.value(), secondsNow());
  if (!buried.ok()) return buried.error();
  afterCommit.emplace_back([folder] {
    folder->_setOid(0);
    folder->markDeleted();
    folder->didSave();
  });
  return QNDone{};
}

QNResult<QNDone> QNStore::Database::buryFolder(const FolderBefore& before,
                                               const std::shared_ptr<QNProfile>& vault,
                                               std::uint64_t deletedAt) {
  const auto written = writeFolderTombstone(before, vault, deletedAt);
  if (!written.ok()) return written.error();
  const auto moved = moveSubfolders(before, vault);
  if (!moved.ok()) return moved.error();
  const auto freed = takeOutOfFolder(
      oidsOf(file->query("SELECT oid FROM items WHERE vault_id = ?1 AND folder_uuid = ?2",
                         vault->oid(), before.uuid)),
      vault);
  return freed.ok() ? QNResult<QNDone>(QNDone{}) : freed.error();
}

QNResult<QNDone> QNStore::Database::writeFolderTombstone(const FolderBefore& before,
                                                         const std::shared_ptr<QNProfile>& vault,
                                                         std::uint64_t deletedAt) {
  const auto ledger = openLedger(vault);
  if (!ledger.ok()) return ledger.error();
  QNFolderRow row;
  row.oid = before.seal ? before.oid : freshFolderOid();
  row.status = kDeletedFolder;
  row.createdAt = before.createdAt;
  row.updatedAt = deletedAt;
  row.txTimestamp = ledgers.at(vault->oid()).ledger.nextTx(secondsNow());
  row.uuid = before.uuid;
  return writeFolderRow(row, vault, before);
}

/// Up to where the folder was. Rows that aren't sound stay as they are.
QNResult<QNDone> QNStore::Database::moveSubfolders(const FolderBefore& deleted,
                                                   const std::shared_ptr<QNProfile>& vault) {
  const auto oids = oidsOf(
      file->query("SELECT oid FROM folders WHERE vault_id = ?1 AND parent_uuid = ?2 AND status = 0",
                  vault->oid(), deleted.uuid));
  for (const std::uint64_t oid : oids) {
    const auto folder = folderWithOid(oid, vault);
    if (folder == nullptr) continue;
    const bool wouldHoldItself = deleted.parentUUID == *folder->uuid();
    folder->setParentUUID(wouldHoldItself ? std::nullopt : deleted.parentUUID);
    const auto saved = saveFolderInPlace(folder, vault);
    if (!saved.ok()) return saved.error();
  }
  return QNDone{};
}

std::shared_ptr<QNFolder> QNStore::Database::folderWithOid(
    std::uint64_t oid, const std::shared_ptr<QNProfile>& vault) {
  QNQuery query = file->query("SELECT " QN_FOLDER_COLUMNS " FROM folders WHERE oid = ?1", oid);
  if (!query.next()) return nullptr;
  const QNFolderRow row = folderRow(query);
  if (!sealFits(QNRowSealer(*vault).seal(row), row.seal)) return nullptr;
  return folderOf(row, vault);
}

QNResult<QNDone> QNStore::Database::saveFolderInPlace(const std::shared_ptr<QNFolder>& folder,
                                                      const std::shared_ptr<QNProfile>& vault) {
  const auto before = folderBefore(*folder, vault);
  if (!before.ok()) return before.error();
  return writeFolder(folder, vault, before.value(), Times::kept, folder->smartFolder());
}

std::vector<std::uint64_t> QNStore::Database::oidsOf(QNQuery query) {
  std::vector<std::uint64_t> oids;
  while (query.next()) oids.push_back(query.number(0));
  return oids;
}

QNResult<std::vector<std::string>> QNStore::Database::takeOutOfFolder(
    const std::vector<std::uint64_t>& oids, const std::shared_ptr<QNProfile>& vault) {
  std::vector<std::string> uuids;
  for (const std::uint64_t oid : oids) {
    QNQuery query = file->query("SELECT " QN_ITEM_COLUMNS " FROM items WHERE oid = ?1", oid);
    if (!query.next()) continue;
    const QNItemRow row = itemRow(query);
    const auto refiled = refile(row, std::nullopt, vault);
    if (!refiled.ok()) return refiled.error();
    if (refiled.value()) uuids.emplace_back(row.uuid);
  }
  return uuids;
}

QNResult<bool> QNStore::Database::refile(QNItemRow row, std::optional<std::string_view> folderUUID,
                                         const std::shared_ptr<QNProfile>& vault) {
  const Before before = beforeOf(row, vault);
  if (!sealFits(before.seal, row.seal)) return false;
  row.folderUUID = folderUUID;
  const auto written = writeRow(row, vault, before);
  return written.ok() ? QNResult<bool>(true) : written.error();
}

QNResult<QNDone> QNStore::Database::refileUnedited(std::string_view itemUUID,
                                                   std::uint64_t updatedAt,
                                                   std::string_view folderUUID,
                                                   const std::shared_ptr<QNProfile>& vault) {
  QNQuery query =
      file->query("SELECT " QN_ITEM_COLUMNS " FROM items WHERE vault_id = ?1 AND uuid = ?2",
                  vault->oid(), itemUUID);
  if (!query.next()) return QNDone{};
  const QNItemRow row = itemRow(query);
  if (row.folderUUID || isTombstone(row) || row.updatedAt != updatedAt) return QNDone{};
  const auto refiled = refile(row, folderUUID, vault);
  return refiled.ok() ? QNResult<QNDone>(QNDone{}) : refiled.error();
}

// Repairing

QNResult<QNFolderRepair> QNStore::repairFolders(const std::shared_ptr<QNProfile>& vault) {
  QNFolderRepair repair;
  const auto done = inTransaction([&] { return _database->repairFolders(vault, repair); });
  if (!done.ok()) return done.error();
  return repair;
}

QNResult<std::vector<std::string>> QNStore::Database::moveMisplacedToTop(
    const std::shared_ptr<QNProfile>& vault) {
  const auto folders = readFolders(vault);
  if (!folders.ok()) return folders.error();
  const std::set<std::string> misplaced(folders.value().misplaced.begin(),
                                        folders.value().misplaced.end());
  std::vector<std::string> moved;
  for (const auto& folder : folders.value().folders) {
    if (!misplaced.contains(*folder->uuid())) continue;
    folder->setParentUUID(std::nullopt);
    const auto saved = saveFolderInPlace(folder, vault);
    if (!saved.ok()) return saved.error();
    moved.push_back(*folder->uuid());
  }
  return moved;
}

QNResult<QNDone> QNStore::Database::repairFolders(const std::shared_ptr<QNProfile>& vault,
                                                  QNFolderRepair& repair) {
  const auto ledger = openLedger(vault);
  if (!ledger.ok()) return ledger.error();
  const auto mended = mendFolderRows(vault, repair);
  if (!mended.ok()) return mended.error();
  auto moved = moveMisplacedToTop(vault);
  if (!moved.ok()) return moved.error();
  auto freed = takeOutOfFolder(oidsOf(file->query(kSelectStrayItems, vault->oid())), vault);
  if (!freed.ok()) return freed.error();
  repair.foldersMovedToTop = std::move(moved).value();
  repair.itemsMovedToTop = std::move(freed).value();
  return QNDone{};
}

}  // namespace quillon
