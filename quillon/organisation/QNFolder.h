#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/objects/QNDatabaseObjectWithOverview.h"
#include "quillon/organisation/predicates/QNPredicate.h"
#include "quillon/platform/images/QNImage.h"

namespace quillon {

/// A group of items in a local vault. Items point at it; it may hang under another folder. A smart
/// folder has no items of its own but a stored question. It doesn't walk its items: the database
/// layer sets the counts, and links parents and children. The monitor guards the overview; all else
/// is one thread's business. Made with std::make_shared.
class QNFolder final : public QNDatabaseObjectWithOverview,
                       public QNSyncable,
                       public QNDisplayOrderable,
                       public std::enable_shared_from_this<QNFolder> {
 public:
  /// Has a uuid of its own.
  explicit QNFolder(QNNew);
  explicit QNFolder(QNExisting existing) : QNDatabaseObjectWithOverview(existing) {}
  explicit QNFolder(QNDecoder& coder);
  ~QNFolder() override;

  // Identity: QNFolder.cpp
  [[nodiscard]] std::string_view className() const override { return "QNFolder"; }
  /// "<QNFolder ADDRESS: UUID/(OID)>".
  [[nodiscard]] std::string description() const override;
  [[nodiscard]] QNSharedString uuid() const override { return _uuid; }
  void setUuid(QNSharedString uuid) override { _uuid = std::move(uuid); }
  [[nodiscard]] QNObjectType objectType() const override { return QNObjectType::folder; }
  [[nodiscard]] bool isTombstone() const override { return false; }
  [[nodiscard]] bool isFolder() const override { return true; }

  // Title: QNFolder.cpp
  [[nodiscard]] std::optional<std::string> title();
  void setTitle(std::optional<std::string_view> title);
  [[nodiscard]] std::optional<std::string> lowercaseTitle();

  // Columns: QNFolder.cpp. Plain stores, unless they say otherwise.
  [[nodiscard]] bool smartFolder() const { return _smartFolder; }
  void setSmartFolder(bool smart) { _smartFolder = smart; }
  [[nodiscard]] std::uint64_t displayOrder() const override { return _displayOrder; }
  /// A change marks the order dirty, but for the first from 0.
  void setDisplayOrder(std::uint64_t order) override;
  [[nodiscard]] std::uint64_t txTimestamp() const override { return _txTimestamp; }
  void setTxTimestamp(std::uint64_t timestamp) override { _txTimestamp = timestamp; }
  [[nodiscard]] std::uint64_t createdAt() const { return _createdAt; }
  void setCreatedAt(std::uint64_t seconds) { _createdAt = seconds; }
  [[nodiscard]] std::uint64_t updatedAt() const override { return _updatedAt; }
  void setUpdatedAt(std::uint64_t seconds) override { _updatedAt = seconds; }
  [[nodiscard]] std::uint64_t parentId() const { return _parentId; }
  void setParentId(std::uint64_t id) { _parentId = id; }
  [[nodiscard]] const std::optional<std::string>& parentUUID() const { return _parentUUID; }
  /// Another uuid marks the row dirty.
  void setParentUUID(std::optional<std::string> uuid);
  [[nodiscard]] std::uint64_t numberOfChildren() const { return _numberOfChildren; }
  void setNumberOfChildren(std::uint64_t count) { _numberOfChildren = count; }
  [[nodiscard]] std::uint64_t numberOfItems() const { return _numberOfItems; }
  void setNumberOfItems(std::uint64_t count) { _numberOfItems = count; }
  /// The title becomes "", the folder an ordinary one, and its question of an older format goes;
  /// one of the present format stays stored. False only takes the mark away.
  void setTrashed(bool trashed) override;
  /// Do counts or title differ?
  [[nodiscard]] bool isModifiedCopyOf(QNFolder& other);

  // Icon: QNFolder.cpp
  /// PNG.
  [[nodiscard]] const std::optional<Bytes>& iconData() const { return _iconData; }
  void setIconData(std::optional<Bytes> data) { _iconData = std::move(data); }
  /// The folder's own, or that of every folder; null where neither is a picture.
  [[nodiscard]] std::shared_ptr<const QNImage> icon() const;
  /// Kept as PNG; the same bytes dirty nothing. Null clears. A picture that can't be drawn changes
  /// nothing.
  void setIcon(const std::shared_ptr<const QNImage>& icon);

  // Tree: QNFolder+Tree.cpp. Linked by the caller, and a ring in it is his mistake: each operation
  // ends on one all the same.
  void addSubfolder(const std::shared_ptr<QNFolder>& folder);
  [[nodiscard]] std::span<const std::shared_ptr<QNFolder>> subfolders() const {
    return _subfolders;
  }
  [[nodiscard]] std::shared_ptr<QNFolder> parentFolder() const { return _parentFolder.lock(); }
  void setParentFolder(const std::shared_ptr<QNFolder>& folder) { _parentFolder = folder; }
  /// Folders above it.
  [[nodiscard]] std::uint64_t indentationLevel() const;
  /// Is the parent of `folder` this one or one that stands above this one?
  [[nodiscard]] bool isParentOfFolder(const QNFolder& folder) const;
  /// This folder and all below it, depth first, by title; each once for every way down to it.
  [[nodiscard]] std::vector<std::shared_ptr<QNFolder>> flattenedAndSorted();
  /// By title, in the user's language and case apart; those of one title in the order given.
  [[nodiscard]] static std::vector<std::shared_ptr<QNFolder>> sortedByTitle(
      std::span<const std::shared_ptr<QNFolder>> folders);
  /// "empty", "1 item" or "%@ items" in the user's language; subfolders count as items.
  [[nodiscard]] std::string localizedSubtitle() const;

  // Smart folder: QNFolder+Predicate.cpp
  /// Null for an ordinary folder. Of a smart folder whose question is missing or can't be read, one
  /// that is never true, with an error log, but for a missing one of the present format. One of an
  /// older format is rewritten at each call, and stays stored as it is. DANGER: stops the process
  /// where the rewriting does; ask smartFolderFault() first of a folder that came from elsewhere.
  [[nodiscard]] QNPredicateRef smartFolderPredicate();
  /// Stored in the present format, 4. False, and nothing changed, for a null one and one that the
  /// archiver refuses, each with an error log, and if the overview doesn't open.
  bool setSmartFolderPredicate(const QNPredicateRef& predicate);
  /// Why smartFolderPredicate() would stop the process, which this doesn't; nothing if it wouldn't.
  /// Logs nothing.
  [[nodiscard]] std::optional<QNError> smartFolderFault();
  [[nodiscard]] std::uint64_t smartFolderVersion();
  void setSmartFolderVersion(std::uint64_t version);

  // Questions of older formats: QNPredicateUpgrade.cpp
  /// The question in today's words. Null, for what has no meaning any more; with an error log for
  /// what isn't known. DANGER: stops the process, with the assertion "subpredicates.count == 1",
  /// at a NOT over a condition that has no meaning any more.
  [[nodiscard]] QNPredicateRef upgradeSmartFolderPredicateFormat(
      const QNPredicateRef& predicate) const;
  /// The strength that an old key path stood for; 0 for any other.
  [[nodiscard]] static std::int64_t passwordStrengthForKeyPath(std::string_view keyPath);
  /// Nothing for an unknown name.
  [[nodiscard]] static std::optional<std::string> categoryUUIDForName(std::string_view name);

  // Merging: QNFolder+Merge.cpp. What is no folder changes nothing, with an error log.
  /// Keeps this folder, and takes the row's id of `other` if it has none itself.
  std::shared_ptr<QNDatabaseObject> mergeWithConflict(
      const std::shared_ptr<QNDatabaseObject>& other) override;
  /// Takes all of `other` but uuid, transaction time and counts. What that changes dirties the row.
  std::shared_ptr<QNDatabaseObject> objectByReplacingWith(
      const std::shared_ptr<QNDatabaseObject>& other) override;
  /// Another row's id dirties the row.
  void copyOidFrom(const std::shared_ptr<QNDatabaseObject>& other) override;

  // Stored forms: QNFolder+Rows.cpp
  void saveAllAttributes(JsonObject& attributes) override;
  /// "iconData" isn't read back: a row's bytes are no picture here, and the icon goes. Without a
  /// uuid in it, the folder keeps its own.
  void restoreAllAttributes(const JsonObject& attributes) override;
  void encodeWithCoder(QNEncoder& coder) override;

  // One object per row: what two bases declare is the same thing
  void _setOid(std::uint64_t oid) override { QNDatabaseObject::_setOid(oid); }
  [[nodiscard]] std::uint64_t oid() const override { return QNDatabaseObject::oid(); }
  [[nodiscard]] bool dirtyRow() const override { return QNDatabaseObject::dirtyRow(); }
  void markRowDirty() override { QNDatabaseObject::markRowDirty(); }
  void willSave() override { QNDatabaseObjectWithOverview::willSave(); }
  void didSave() override { QNDatabaseObjectWithOverview::didSave(); }
  [[nodiscard]] bool authentic() const override { return QNDatabaseObject::authentic(); }
  void setAuthentic(bool authentic) override { QNDatabaseObject::setAuthentic(authentic); }
  [[nodiscard]] bool trashed() const override { return QNDatabaseObject::trashed(); }

 private:
  std::shared_ptr<QNFolder> folderToMerge(const std::shared_ptr<QNDatabaseObject>& other) const;
  void copyColumnsOf(const QNFolder& other);
  /// Its parent, that one's parent and so on, each once.
  [[nodiscard]] std::vector<std::shared_ptr<QNFolder>> foldersAbove() const;
  QNResult<QNPredicateRef> storedPredicate();
  QNResult<QNPredicateRef> storedPredicateForKey(std::string_view key);

  static constexpr std::string_view kOldPredicate = "predicate_b64";  // key of the overview
  bool _smartFolder = false;
  std::uint64_t _displayOrder = 0;
  std::uint64_t _txTimestamp = 0;
  std::uint64_t _createdAt = 0;
  std::uint64_t _updatedAt = 0;
  QNSharedString _uuid;
  std::uint64_t _parentId = 0;
  std::optional<std::string> _parentUUID;
  std::optional<Bytes> _iconData;
  std::uint64_t _numberOfChildren = 0;
  std::uint64_t _numberOfItems = 0;
  std::vector<std::shared_ptr<QNFolder>> _subfolders;
  std::weak_ptr<QNFolder> _parentFolder;
};

}  // namespace quillon
