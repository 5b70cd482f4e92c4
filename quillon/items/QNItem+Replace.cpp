#include "quillon/items/QNTombstone.h"
#include "quillon/items/internal/QNItemState.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {

std::shared_ptr<QNDatabaseObject> QNItem::objectByReplacingWith(
    const std::shared_ptr<QNDatabaseObject>& other) {
  const auto winner = std::dynamic_pointer_cast<QNItem>(other);
  if (winner == nullptr) {
    MRLogger::sharedLogger().error(DEBUG_DATABASE, descriptionForLogging(),
                                   "Attempted to replace {} with what is no item", description());
    return shared_from_this();
  }
  if (winner->isTombstone()) return makeTombstone();
  if (isTombstone()) {
    if (hasOid()) winner->copyOidFrom(shared_from_this());
    return winner;
  }
  if (winner.get() == this) return winner;
  copyColumnsOf(*winner);
  copyContentOf(*winner);
  replaceURLsWithThoseOf(*winner);
  if (profileType() == kProfileTypeAccountVault) {
    H9ItemProperties* const theirs = winner->h9ItemProperties();
    if (theirs != nullptr) *h9ItemProperties() = *theirs;
  }
  if (!hasOid()) copyOidFrom(winner);
  return shared_from_this();
}

// Some of these setters dirty nothing by themselves.
void QNItem::copyColumnsOf(const QNItem& other) {
  if (_createdAt != other._createdAt || _updatedAt != other._updatedAt ||
      _folderId != other._folderId) {
    markRowDirty();
  }
  setCategoryUUID(other._categoryUUID);
  setCreatedAt(other._createdAt);
  setUpdatedAt(other._updatedAt);
  setFaveIndex(other._faveIndex);
  setFolderId(other._folderId);
  setFolderUUID(other.folderUUID());
  setScope(other.scope());
  setTrashed(other.trashed());
}

// The key stays this item's, and so do the keys before it: attachments may be sealed under each.
// What doesn't open replaces nothing.
void QNItem::copyContentOf(QNItem& other) {
  QNSecretSet ownKeys = backupKeysBase64Encoded();
  if (const auto overview = other.overviewCopy()) copyOverview(*overview);
  if (const auto details = other.detailsCopy()) copyDetails(*details);
  addBackupKeysBase64Encoded(std::move(ownKeys));
}

}  // namespace quillon
