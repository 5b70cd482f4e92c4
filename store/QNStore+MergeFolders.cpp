#include <algorithm>
#include <set>

#include "quillon/organisation/QNFolder.h"
#include "quillon/platform/json/QNJsonEquality.h"
#include "store/QNStore.h"
#include "store/internal/QNFolderMerge.h"

// What becomes of a folder. Nothing is remembered of folders: the later time decides.
//
//   mine      theirs    then
//   a folder  none      copied, or a tombstone; the same the other way round
//   a folder  a folder  what was changed later replaces the other; of one second, mine does, unless
//                       it has moved up there: theirs has the place that it had
//   deleted   a folder  deleted, unless the folder was changed in the second of the deletion or
//                       later: it is copied back, and what its deletion took out of it goes back
//   deleted   deleted   the later time for both
//
// A folder that is deleted leaves its items in none, and its subfolders move up; none of them has a
// new time by that. Both sides can have moved folders into each other: then, as with one whose
// parent is gone, all of the circle go to the top on both sides.

namespace quillon {

namespace {

bool areEqual(QNFolder& a, QNFolder& b) {
  const auto overview = a.overviewCopy();
  const auto other = b.overviewCopy();
  return a.updatedAt() == b.updatedAt() && a.createdAt() == b.createdAt() &&
         a.parentUUID() == b.parentUUID() && a.smartFolder() == b.smartFolder() &&
         a.displayOrder() == b.displayOrder() && a.iconData() == b.iconData() && overview &&
         other && equalJson(*overview, *other);
}

}  // namespace

// Deletions go first: what they move up must be there before it is copied.
QNResult<QNDone> QNStore::FolderMerge::run() {
  auto done = read();
  for (const std::string& uuid : uuids()) {
    if (done.ok()) done = bury(uuid, _mine, _theirs);
    if (done.ok()) done = bury(uuid, _theirs, _mine);
  }
  if (done.ok()) done = read();
  for (const std::string& uuid : uuids()) {
    if (done.ok()) done = join(uuid);
  }
  return done.ok() ? settle() : done;
}

std::set<std::string> QNStore::FolderMerge::uuids() const {
  std::set<std::string> uuids;
  for (const Side* side : {&_mine, &_theirs}) {
    for (const auto& [uuid, version] : side->versions) uuids.insert(uuid);
  }
  return uuids;
}

QNResult<QNDone> QNStore::FolderMerge::read() {
  const auto mine = read(_mine);
  return mine.ok() ? read(_theirs) : mine;
}

/// What isn't genuine would be carried over under a good seal: nothing is merged then.
QNResult<QNDone> QNStore::FolderMerge::read(Side& side) {
  const auto report = side.database().readFolders(side.vault());
  if (!report.ok()) return report.error();
  if (!report.value().damaged.empty() || report.value().ledgerBroken) {
    return storeError(QNStoreErrorCode::damaged, "a folder was altered, or is missing or older");
  }
  side.versions.clear();
  for (const auto& folder : report.value().folders) {
    Version& version = side.versions[*folder->uuid()];
    version.updatedAt = folder->updatedAt();
    version.folder = folder;
  }
  for (auto& tombstone : side.database().deletedFolders(side.vault())) {
    const std::string uuid = tombstone.uuid;
    side.versions[uuid] = {tombstone.updatedAt, nullptr, std::move(tombstone)};
  }
  return QNDone{};
}

/// What is older than its deletion on the other side, or isn't there, is deleted as it was there.
QNResult<QNDone> QNStore::FolderMerge::bury(const std::string& uuid, const Side& from, Side& to) {
  const Version* const deleted = from.version(uuid);
  const Version* const version = to.version(uuid);
  if (deleted == nullptr || deleted->folder != nullptr) return QNDone{};
  if (version != nullptr && version->updatedAt >= deleted->updatedAt) return QNDone{};
  Database::FolderBefore before;
  before.uuid = uuid;
  before.createdAt = deleted->tombstone.createdAt;
  if (version != nullptr) before = version->tombstone;
  if (version != nullptr && version->folder != nullptr) {
    auto row = to.database().folderRowNow(version->folder->oid(), to.vault());
    if (!row.ok()) return row.error();
    before = std::move(row).value();
    _report.folders.push_back({uuid, kindFor(to, Kind::deletedMine, Kind::deletedTheirs)});
  }
  return to.database().buryFolder(before, to.vault(), deleted->updatedAt);
}

QNResult<QNDone> QNStore::FolderMerge::join(const std::string& uuid) {
  const Version* const mine = _mine.version(uuid);
  const Version* const theirs = _theirs.version(uuid);
  const bool isMine = mine != nullptr && mine->folder != nullptr;
  const bool isTheirs = theirs != nullptr && theirs->folder != nullptr;
  if (!isMine && !isTheirs) return QNDone{};
  if (!isMine) return copy(uuid, _theirs, _mine);
  if (!isTheirs) return copy(uuid, _mine, _theirs);
  if (areEqual(*mine->folder, *theirs->folder)) return QNDone{};
  const bool isLater =
      theirs->updatedAt > mine->updatedAt ||
      (theirs->updatedAt == mine->updatedAt && hasMovedUp(*mine->folder, *theirs->folder, _theirs));
  return isLater ? replace(uuid, _theirs, _mine) : replace(uuid, _mine, _theirs);
}

/// Does it lie in what is above the other's place, as the other side has it? At the top all is.
bool QNStore::FolderMerge::hasMovedUp(const QNFolder& moved, const QNFolder& other,
                                      const Side& others) {
  auto place = other.parentUUID();
  for (std::size_t level = 0; place && level < others.versions.size(); ++level) {
    const Version* const parent = others.version(*place);
    if (parent == nullptr || parent->folder == nullptr) return false;
    place = parent->folder->parentUUID();
    if (place == moved.parentUUID()) return true;
  }
  return false;
}

/// Over nothing, or over a tombstone.
QNResult<QNDone> QNStore::FolderMerge::copy(const std::string& uuid, const Side& from, Side& to) {
  const Version* const deleted = to.version(uuid);
  _report.folders.push_back({uuid, deleted != nullptr
                                       ? Kind::deletionRefused
                                       : kindFor(to, Kind::copiedToMine, Kind::copiedToTheirs)});
  const auto folder = std::make_shared<QNFolder>(initNew);
  folder->setProfile(to.vault());
  folder->setUuid(sharedString(uuid));
  folder->objectByReplacingWith(from.version(uuid)->folder);
  const auto written = to.database().writeFolder(
      folder, to.vault(), deleted != nullptr ? deleted->tombstone : Database::FolderBefore(),
      Database::Times::kept, folder->smartFolder());
  return written.ok() && deleted != nullptr ? refileItems(uuid, from, to) : written;
}

/// What its deletion took out of it, and nobody has edited on either side since, lies in it again.
QNResult<QNDone> QNStore::FolderMerge::refileItems(const std::string& uuid, const Side& from,
                                                   Side& to) {
  QNQuery inside = from.database().file->query(
      "SELECT " QN_ITEM_COLUMNS " FROM items WHERE vault_id = ?1 AND folder_uuid = ?2",
      from.vault()->oid(), uuid);
  while (inside.next()) {
    const QNItemRow there = itemRow(inside);
    auto refiled = to.database().refileUnedited(there.uuid, there.updatedAt, uuid, to.vault());
    if (!refiled.ok()) return refiled;
  }
  return QNDone{};
}

QNResult<QNDone> QNStore::FolderMerge::replace(const std::string& uuid, const Side& from,
                                               Side& to) {
  _report.folders.push_back({uuid, kindFor(to, Kind::replacedMine, Kind::replacedTheirs)});
  const auto& folder = to.version(uuid)->folder;
  folder->objectByReplacingWith(from.version(uuid)->folder);
  return to.database().saveFolderInPlace(folder, to.vault());
}

/// Both sides have the same folders with the same parents now: so what is misplaced is the same.
QNResult<QNDone> QNStore::FolderMerge::settle() {
  for (Side* side : {&_mine, &_theirs}) {
    auto moved = side->database().moveMisplacedToTop(side->vault());
    if (!moved.ok()) return moved.error();
    _report.foldersMovedToTop = std::move(moved).value();
  }
  auto folders = _mine.database().readFolders(_mine.vault());
  if (!folders.ok()) return folders.error();
  Database::quarantine(folders.value());
  _report.quarantinedFolders = folders.value().quarantined;
  return QNDone{};
}

}  // namespace quillon
