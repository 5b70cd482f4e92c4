#include <algorithm>

#include "quillon/organisation/QNFolder.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "store/QNStore.h"
#include "store/internal/QNStoreState.h"

// What a repair makes of a folder's row that isn't sound:
//
//   its overview      then
//   opens             sealed anew as it stands, with its times; an icon that doesn't open goes
//   doesn't           a tombstone, deleted at 0: older than any folder, so that the deletion takes
//                     none from another store, and a sound one comes back from there
//
// The ledger becomes that of the rows that are there: what its sum was made of can't be told from
// it. What the folder held is as in a folder that isn't there.

namespace quillon {

namespace {

/// Was the row changed at a time to come, it would replace every other one in a merge.
void bringTimeBack(QNFolder& folder) {
  folder.setUpdatedAt(std::min(folder.updatedAt(), secondsNow()));
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
  std::shared_ptr<QNFolder> kept;
  {
    QNQuery query =
        file->query("SELECT " QN_FOLDER_COLUMNS " FROM folders WHERE vault_id = ?1 AND uuid = ?2",
                    vault->oid(), uuid);
    if (!query.next()) return QNDone{};  // SQLite's error stays with the connection
    before = folderBeforeOf(folderRow(query), vault);
    kept = keptFolder(folderRow(query), vault);
  }
  if (kept == nullptr) {
    repair.foldersRemoved.push_back(uuid);
    return writeFolderTombstone(before, vault, 0);
  }
  repair.foldersSealedAnew.push_back(uuid);
  bringTimeBack(*kept);
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
