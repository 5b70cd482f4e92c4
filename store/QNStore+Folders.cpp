#include <algorithm>
#include <map>

#include "quillon/organisation/QNFolder.h"
#include "store/QNStore.h"
#include "store/internal/QNFolderTree.h"
#include "store/internal/QNStoreState.h"

namespace quillon {

namespace {

/// Links the folders of a report, and fills in what follows from that.
void linkFolders(QNFolderReport& report) {
  std::vector<QNFolderPlace> places;
  for (const auto& folder : report.folders)
    places.push_back({*folder->uuid(), folder->parentUUID()});
  const QNFolderTree tree = folderTree(places, QNStore::kMaxFolderLevels);
  for (std::size_t i = 0; i < report.folders.size(); ++i) {
    const auto& folder = report.folders[i];
    if (tree.misplaced[i]) report.misplaced.push_back(places[i].uuid);
    if (!tree.parents[i]) {
      report.top.push_back(folder);
      continue;
    }
    const auto& parent = report.folders[*tree.parents[i]];
    folder->setParentId(parent->oid());
    parent->addSubfolder(folder);
    parent->setNumberOfChildren(parent->subfolders().size());
  }
  report.top = QNFolder::sortedByTitle(report.top);
}

}  // namespace

QNFolderRow folderRow(const QNQuery& query) {
  QNFolderRow row;
  row.oid = query.number(0);
  row.status = query.number(1);
  row.createdAt = query.number(2);
  row.updatedAt = query.number(3);
  row.txTimestamp = query.number(4);
  row.smart = query.number(5);
  row.displayOrder = query.number(6);
  row.parentUUID = query.optionalText(7);
  row.uuid = query.text(8);
  row.icon = query.optionalBytes(9);
  row.seal = query.bytes(10);
  row.overview = query.bytes(11);
  return row;
}

std::shared_ptr<QNFolder> QNStore::Database::folderOf(const QNFolderRow& row,
                                                      const std::shared_ptr<QNProfile>& vault) {
  auto folder = std::make_shared<QNFolder>(QNExisting{row.oid});
  folder->setProfileType(vault->profileType());
  folder->setProfile(vault);
  folder->setUuid(sharedString(std::string(row.uuid)));
  folder->setCreatedAt(row.createdAt);
  folder->setUpdatedAt(row.updatedAt);
  folder->setTxTimestamp(row.txTimestamp);
  folder->setSmartFolder(row.smart != 0);
  folder->setDisplayOrder(row.displayOrder);
  if (row.parentUUID) folder->setParentUUID(std::string(*row.parentUUID));
  if (row.icon) {
    auto icon = vault->decryptOverview(*row.icon);
    if (!icon) return nullptr;
    folder->setIconData(std::move(icon));
  }
  folder->setOverviewData(toBytes(row.overview));
  folder->didLoad();
  return folder->mutableOverview() == nullptr ? nullptr : folder;
}

QNResult<QNFolderReport> QNStore::Database::readFolders(const std::shared_ptr<QNProfile>& vault) {
  const auto ledger = ledgerNow(*vault);
  if (!ledger.ok()) return ledger.error();
  QNFolderReport report;
  QNRowCount count;
  QNRowSealer sealer(*vault);
  QNQuery query = file->query(
      "SELECT " QN_FOLDER_COLUMNS " FROM folders WHERE vault_id = ?1 ORDER BY oid", vault->oid());
  while (query.next()) {
    const QNFolderRow row = folderRow(query);
    const bool genuine = count.add(sealer.seal(row), row.seal);
    if (genuine && isDeleted(row)) continue;
    auto folder = genuine ? folderOf(row, vault) : nullptr;
    if (folder == nullptr) {
      report.damaged.emplace_back(row.uuid);
    } else {
      report.folders.push_back(std::move(folder));
    }
  }
  report.ledgerBroken = !count.agreesWith(ledger.value().folders);
  linkFolders(report);
  return report;
}

void QNStore::Database::quarantine(QNFolderReport& report) {
  for (const auto& folder : report.folders) {
    if (!folder->smartFolder() || !folder->smartFolderFault()) continue;
    folder->setSmartFolder(false);
    report.quarantined.push_back(*folder->uuid());
  }
}

void QNStore::Database::countItems(const QNFolderReport& report, QNProfile& vault) {
  std::map<std::string, std::uint64_t, std::less<>> counts;
  QNQuery query = file->query(kCountItemsOfFolders, vault.oid());
  while (query.next()) counts.emplace(query.text(0), query.number(1));
  for (const auto& folder : report.folders) {
    const auto count = counts.find(*folder->uuid());
    if (count != counts.end()) folder->setNumberOfItems(count->second);
  }
}

QNResult<QNFolderReport> QNStore::folders(const std::shared_ptr<QNProfile>& vault) {
  return _database->read([&]() -> QNResult<QNFolderReport> {
    auto report = _database->readFolders(vault);
    if (!report.ok()) return report.error();
    Database::quarantine(report.value());
    _database->countItems(report.value(), *vault);
    return report;
  });
}

QNResult<std::shared_ptr<QNFolder>> QNStore::folder(const std::shared_ptr<QNProfile>& vault,
                                                    std::string_view uuid) {
  const auto report = folders(vault);
  if (!report.ok()) return report.error();
  const auto& damaged = report.value().damaged;
  if (std::find(damaged.begin(), damaged.end(), uuid) != damaged.end()) {
    return storeError(QNStoreErrorCode::damaged, "the folder was altered");
  }
  const auto& all = report.value().folders;
  const auto found = std::find_if(all.begin(), all.end(),
                                  [uuid](const auto& each) { return *each->uuid() == uuid; });
  if (found == all.end()) return storeError(QNStoreErrorCode::notFound, "no folder of that uuid");
  return *found;
}

void QNStore::Database::checkFolders(const std::shared_ptr<QNProfile>& vault,
                                     QNCheckReport& report) {
  auto read = readFolders(vault);
  if (!read.ok()) return;  // SQLite's error stays with the connection
  QNFolderReport& folders = read.value();
  quarantine(folders);
  report.foldersChecked = folders.folders.size() + folders.damaged.size();
  for (const std::string& uuid : folders.damaged) {
    report.problems.push_back("folder " + uuid + ": it was altered or doesn't open");
  }
  for (const std::string& uuid : folders.misplaced) {
    report.problems.push_back("folder " + uuid +
                              ": its parent isn't there, lies in it, or is too deep");
  }
  if (folders.ledgerBroken) {
    report.problems.emplace_back(
        "folders are missing, were added, or are older than the ledger says");
  }
  for (const std::string& uuid : folders.quarantined) {
    report.remarks.push_back("folder " + uuid +
                             ": its predicate is an older version's and can't be brought forward");
  }
  QNQuery strays = file->query(kSelectStrayItems, vault->oid());
  while (strays.next()) {
    report.remarks.push_back("item " + std::string(strays.text(1)) + ": its folder isn't there");
  }
}

}  // namespace quillon
