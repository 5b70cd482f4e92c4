#include <algorithm>

#include "quillon/organisation/QNFolder.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "store/QNStore.h"
#include "store/internal/QNStoreState.h"

// What a repair makes of a folder's row that isn't sound:
//
//   its overview      then
//   opens             sealed anew as it stands, with its times; an icon that doesn't open goes
//   is a tombstone's  sealed anew as one, deleted when it says: or the folder would come back from
//                     another store
//   else doesn't      a tombstone, deleted at 0: older than any folder, so that the deletion takes
//                     none from another store, and a sound one comes back from there
//
// No time of change is left to come: the row would replace every other one in a merge.
//
// The ledger becomes that of the rows that are there: what its sum was made of can't be told from
// it. What the folder held is as in a folder that isn't there.

namespace quillon {

namespace {

/// Does it have what a deletion leaves, and no more of a folder? The status alone may be altered.
bool isTombstone(const QNFolderRow& row) {
  return isDeleted(row) && row.overview.empty() && !row.parentUUID && !row.icon;
}

}  // namespace

/// An empty overview is that of a deleted folder, and would open as one without a title.
std::shared_ptr<QNFolder> QNStore::Database::keptFolder(QNFolderRow row,
                                                        const std::shared_ptr<QNProfile>& vault) {
  if (!vault->decryptOverview(row.overview)) return nullptr;
  if (row.icon && !vault->decryptOverview(*row.icon)) row.icon.reset();
  return folderOf(row, vault);
}

QNResult<QNDone> QNStore::Database::mendFolderRow(const std::string& uuid,
                                                  const std::shared_ptr<QNProfile>& vault,
                                                  QNFolderRepair& repair) {
  FolderBefore before;
  bool wasDeleted = false;
  std::shared_ptr<QNFolder> kept;
  {
    QNQuery query =
        file->query("SELECT " QN_FOLDER_COLUMNS " FROM folders WHERE vault_id = ?1 AND uuid = ?2",
                    vault->oid(), uuid);
    if (!query.next()) return QNDone{};  // SQLite's error stays with the connection
    const QNFolderRow row = folderRow(query);
    before = folderBeforeOf(row, vault);
    wasDeleted = isTombstone(row);
    kept = keptFolder(row, vault);
  }
  const std::uint64_t changedAt = std::min(before.updatedAt, secondsNow());
  auto& mended = kept || wasDeleted ? repair.foldersSealedAnew : repair.foldersRemoved;
  mended.push_back(uuid);
  if (kept == nullptr) return writeFolderTombstone(before, vault, wasDeleted ? changedAt : 0);
  kept->setUpdatedAt(changedAt);
  return writeFolder(kept, vault, before, Times::kept, before.isSmart);
}

QNRowSum QNStore::Database::sumOfFolders(const QNProfile& vault) {
  QNRowSum sum;
  QNRowSealer sealer(vault);
  QNQuery query =
      file->query("SELECT " QN_FOLDER_COLUMNS " FROM folders WHERE vault_id = ?1", vault.oid());
  while (query.next()) {
    const auto seal = sealer.seal(folderRow(query));
    if (seal) sum.add(*seal);
  }
  return sum;
}

QNResult<QNDone> QNStore::Database::mendFolderRows(const std::shared_ptr<QNProfile>& vault,
                                                   QNFolderRepair& repair) {
  const auto folders = readFolders(vault);
  if (!folders.ok()) return folders.error();
  if (folders.value().damaged.empty() && !folders.value().ledgerBroken) return QNDone{};
  QNRowSum& sum = ledgers.at(vault->oid()).ledger.folders;
  const std::uint64_t rows = sum.rows;
  for (const std::string& uuid : folders.value().damaged) {
    const auto mended = mendFolderRow(uuid, vault, repair);
    if (!mended.ok()) return mended.error();
  }
  sum = sumOfFolders(*vault);
  repair.ledgerSetRight = folders.value().ledgerBroken;
  repair.foldersMissing = rows > sum.rows ? rows - sum.rows : 0;
  return QNDone{};
}

}  // namespace quillon
