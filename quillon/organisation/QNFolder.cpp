#include "quillon/organisation/QNFolder.h"

#include "quillon/platform/data/MRData.h"
#include "quillon/platform/images/QNImageOperations.h"
#include "quillon/platform/text/QNFormat.h"
#include "quillon/platform/text/QNText.h"

// Overview of a folder:
//
//   key                 kind     meaning
//   "title"             text     the folder's name
//   "sfVersion"         number   format of the stored question; absent is 0
//   "predicate_b64"     text     the question, formats before 4: read only
//   "predicate_b64_v4"  text     the question, format 4

namespace quillon {
namespace {

constexpr std::string_view kTitle = "title";
constexpr std::string_view kDefaultIcon = "type-folder-list";

}  // namespace

QNFolder::QNFolder(QNNew) : QNDatabaseObjectWithOverview(initNew), _uuid(sharedString(mr_uuid())) {}

std::string QNFolder::description() const {
  return formatted("<{} {}: {}/({})>", className(), static_cast<const void*>(this),
                   _uuid != nullptr ? *_uuid : "(null)", static_cast<std::int64_t>(oid()));
}

// Title

std::optional<std::string> QNFolder::title() {
  const std::lock_guard lock(monitor());
  const auto title = overviewTextForKey(kTitle);
  return title ? std::optional<std::string>(*title) : std::nullopt;
}

void QNFolder::setTitle(std::optional<std::string_view> title) {
  setOverviewText(title, kTitle);
}

std::optional<std::string> QNFolder::lowercaseTitle() {
  const auto title = this->title();
  return title ? std::optional<std::string>(lowercaseText(*title)) : std::nullopt;
}

// Columns

void QNFolder::setDisplayOrder(std::uint64_t order) {
  if (_displayOrder == order) return;
  if (_displayOrder != 0) markDisplayOrderDirty();
  _displayOrder = order;
}

void QNFolder::setParentUUID(std::optional<std::string> uuid) {
  if (_parentUUID == uuid) return;
  markRowDirty();
  _parentUUID = std::move(uuid);
}

void QNFolder::setTrashed(bool trashed) {
  QNDatabaseObject::setTrashed(trashed);
  if (!trashed) return;
  setTitle("");
  _smartFolder = false;
  setOverviewObject(std::nullopt, kOldPredicate);  // the one of format 4 stays
}

bool QNFolder::isModifiedCopyOf(QNFolder& other) {
  return _numberOfItems != other._numberOfItems || _numberOfChildren != other._numberOfChildren ||
         title() != other.title();
}

// Icon

std::shared_ptr<const QNImage> QNFolder::icon() const {
  auto own = _iconData ? QNImage::imageWithData(*_iconData) : nullptr;
  return own != nullptr ? own : mr_imageNamed(kDefaultIcon);
}

void QNFolder::setIcon(const std::shared_ptr<const QNImage>& icon) {
  auto data = QNImagePNGRepresentation(icon);
  if (icon != nullptr && !data) return;
  if (_iconData == data) return;
  markRowDirty();
  _iconData = std::move(data);
}

}  // namespace quillon
