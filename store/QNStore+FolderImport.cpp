#include <algorithm>

#include "quillon/organisation/QNFolder.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "store/QNStore.h"
#include "store/internal/QNFolderTree.h"
#include "store/internal/QNStoreState.h"

namespace quillon {

namespace {

QNFolderPlace placeOf(const std::shared_ptr<QNFolder>& folder) {
  return {*folder->uuid(), folder->parentUUID()};
}

}  // namespace

QNResult<std::vector<std::string>> QNStore::addFolders(
    const std::shared_ptr<QNProfile>& vault, std::span<const std::shared_ptr<QNFolder>> folders) {
  std::vector<std::string> moved;
  const auto done = inTransaction([&] { return _database->addFolders(vault, folders, moved); });
  if (!done.ok()) return done.error();
  return moved;
}

/// Those that are there keep their places: none of them was in one that is new, but for those
/// that were misplaced.
QNResult<QNDone> QNStore::Database::addFolders(const std::shared_ptr<QNProfile>& vault,
                                               std::span<const std::shared_ptr<QNFolder>> folders,
                                               std::vector<std::string>& movedToTop) {
  const auto ledger = openLedger(vault);
  if (!ledger.ok()) return ledger.error();
  const auto known = readFolders(vault);
  if (!known.ok()) return known.error();
  std::vector<QNFolderPlace> places;
  for (const auto& folder : known.value().folders) places.push_back(placeOf(folder));
  const std::size_t first = places.size();
  for (const auto& folder : folders) {
    if (folder->uuid() == nullptr || folder->profile() != vault) {
      return storeError(QNStoreErrorCode::unreadableItem,
                        "the folder has no uuid, or another vault");
    }
    places.push_back(placeOf(folder));
  }
  const QNFolderTree tree = folderTree(places, kMaxFolderLevels);
  for (std::size_t i = 0; i < folders.size(); ++i) {
    if (tree.misplaced[first + i]) {
      folders[i]->setParentUUID(std::nullopt);
      movedToTop.push_back(*folders[i]->uuid());
    }
    const auto added = addFolder(folders[i], vault);
    if (!added.ok()) return added.error();
  }
  return QNDone{};
}

/// A time to come in a file becomes now: the folder would replace every other one in a merge, and
/// refuse each deletion. One that was deleted counts as changed when it was, whenever that was: a
/// merge would delete it again otherwise.
QNResult<QNDone> QNStore::Database::addFolder(const std::shared_ptr<QNFolder>& folder,
                                              const std::shared_ptr<QNProfile>& vault) {
  const auto before = folderBefore(*folder, vault);
  if (!before.ok()) return before.error();
  const std::uint64_t now = secondsNow();
  folder->setCreatedAt(std::min(folder->createdAt(), now));
  folder->setUpdatedAt(std::max(std::min(folder->updatedAt(), now), before.value().updatedAt));
  return writeFolder(folder, vault, before.value(), Times::kept, folder->smartFolder());
}

}  // namespace quillon
