#include "quillon/organisation/QNFolder.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {

std::shared_ptr<QNFolder> QNFolder::folderToMerge(
    const std::shared_ptr<QNDatabaseObject>& other) const {
  auto folder = std::dynamic_pointer_cast<QNFolder>(other);
  if (folder == nullptr) {
    MRLogger::sharedLogger().error(
        DEBUG_DATABASE, descriptionForLogging(),
        "Attempted to merge {} into {}. Avoiding that as it doesn't make sense to do so.",
        other == nullptr ? "(null)" : other->description(), description());
  }
  return folder;
}

void QNFolder::copyOidFrom(const std::shared_ptr<QNDatabaseObject>& other) {
  const auto folder = folderToMerge(other);
  if (folder == nullptr || oid() == folder->oid()) return;
  _setOid(folder->oid());
  markRowDirty();
}

std::shared_ptr<QNDatabaseObject> QNFolder::mergeWithConflict(
    const std::shared_ptr<QNDatabaseObject>& other) {
  const auto folder = folderToMerge(other);
  if (folder != nullptr && !hasOid()) copyOidFrom(folder);
  return shared_from_this();
}

// The overview last: setTrashed() blanks the title. One that doesn't open replaces nothing, since
// nobody can tell what it says.
std::shared_ptr<QNDatabaseObject> QNFolder::objectByReplacingWith(
    const std::shared_ptr<QNDatabaseObject>& other) {
  const auto folder = folderToMerge(other);
  if (folder == nullptr || folder.get() == this) return shared_from_this();
  const auto overview = folder->overviewCopy();
  if (!overview) {
    MRLogger::sharedLogger().error(DEBUG_DATABASE, descriptionForLogging(),
                                   "The overview of {} doesn't open. It replaces nothing.",
                                   folder->description());
    return shared_from_this();
  }
  copyColumnsOf(*folder);
  copyOverview(*overview);
  return shared_from_this();
}

// Most of these setters dirty nothing by themselves.
void QNFolder::copyColumnsOf(const QNFolder& other) {
  if (_createdAt != other._createdAt || _updatedAt != other._updatedAt ||
      _parentId != other._parentId || _smartFolder != other._smartFolder ||
      _displayOrder != other._displayOrder || _iconData != other._iconData) {
    markRowDirty();
  }
  setCreatedAt(other._createdAt);
  setUpdatedAt(other._updatedAt);
  setParentId(other._parentId);
  setParentUUID(other._parentUUID);
  setSmartFolder(other._smartFolder);
  setDisplayOrder(other._displayOrder);
  setIconData(other._iconData);
  setTrashed(other.trashed());
}

}  // namespace quillon
