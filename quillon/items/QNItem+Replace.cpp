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
  if (!opensToReplaceThis(*winner)) return shared_from_this();
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

bool QNItem::opensToReplaceThis(QNItem& winner) const {
  if (winner.mutableOverview() != nullptr && winner.mutableDetails() != nullptr) return true;
  MRLogger::sharedLogger().error(DEBUG_DATABASE, descriptionForLogging(),
                                 "Attempted to replace {} with {}, which doesn't open",
                                 description(), winner.description());
  return false;
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
void QNItem::copyContentOf(QNItem& other) {
  QNSecretSet ownKeys = backupKeysBase64Encoded();
  if (const auto overview = other.overviewCopy()) copyOverview(*overview);
  if (const auto details = other.detailsCopy()) copyDetails(*details);
  addBackupKeysBase64Encoded(std::move(ownKeys));
  forgetOriginalPasswordThatIsHistory();
}

// The password that gave way retires at the next save, unless the winner's history has it already.
void QNItem::forgetOriginalPasswordThatIsHistory() {
  const std::lock_guard lock(monitor());
  const auto& noted = openState().originalPassword;
  if (!noted) return;
  const QNSecret original = noted->clone();  // to look for it may note another one
  if (containsPasswordValue(original.reveal())) noteOriginalPassword();
}

}  // namespace quillon
