#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/data/MRData.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/json/QNJsonEquality.h"
#include "store/internal/QNFolderMerge.h"
#include "store/internal/QNItemParts.h"
#include "store/internal/QNMergeRest.h"
#include "store/internal/QNStoreMerge.h"

// What becomes of a uuid. "Changed" is a row whose tx_timestamp isn't the one of the last pair that
// both sides had reached; without such a pair both have changed.
//
//   mine       theirs     then
//   unchanged  unchanged  nothing, and nothing is opened
//   an item    none       copied, or a tombstone; the same the other way round
//   equal      equal      nothing: the same bytes, or the same content once opened
//   changed    unchanged  replaces theirs; the same the other way round
//   changed    changed    joined into the one that was changed later (into mine, if both were in
//                         one second), which then replaces the other
//   deleted    unchanged  deleted, unless it is newer than the deletion
//   deleted    changed    refused: copied back. Without a pair the times decide, and of one second
//                         the item stays; so it does if all that either side remembers is another
//                         version
//   deleted    deleted    the later time for both
//
// Every row's seal and both ledgers are checked; what both sides remember as it is costs no more
// than that.

namespace quillon {

namespace {

/// Equal in a copied file only.
std::array<std::uint8_t, 32> sealedContentOf(const QNItemRow& row) {
  Bytes content = toBytes(row.bodyHash);
  content.insert(content.end(), row.overview.begin(), row.overview.end());
  const std::string columns =
      fmt::format("{} {} {} {} {}", row.status, row.faveIndex, row.categoryUUID,
                  row.scope.value_or(""), row.folderUUID.value_or(""));
  content.insert(content.end(), columns.begin(), columns.end());
  return sha256(content);
}

QNMergeHead headOf(const QNItemRow& row) {
  return {row.oid, row.txTimestamp, row.createdAt, row.updatedAt, isTombstone(row)};
}

bool areCopies(const QNMergeHead& a, const QNMergeHead& b) {
  return a.sealedContent && a.sealedContent == b.sealedContent;
}

}  // namespace

// The sides as they are

QNResult<QNDone> QNStore::Merge::run() {
  auto read = readMemory(_mine, _theirs);
  if (read.ok()) read = readMemory(_theirs, _mine);
  // Before the items, which are written with the folder that they have then.
  if (read.ok()) read = FolderMerge(_mine.given, _theirs.given, report).run();
  if (read.ok()) read = readHeads(_mine);
  if (read.ok()) read = readHeads(_theirs);
  if (!read.ok()) return read.error();
  findWhatIsOutOfStep();
  for (const std::string& uuid : _outOfStep) {
    const auto merged = mergeOne(uuid);
    if (!merged.ok()) return merged.error();
  }
  auto written = writeMemory(_theirs, _mine);
  if (written.ok()) written = writeMemory(_mine, _theirs);
  finished = written.ok();
  return written;
}

/// A row that isn't genuine would be carried over under a good seal: nothing is merged then.
QNResult<QNDone> QNStore::Merge::readHeads(Side& side) {
  const auto ledger = side.database().ledgerNow(*side.vault());
  if (!ledger.ok()) return ledger.error();
  QNRowCount count;
  QNRowSealer sealer(*side.vault());
  QNQuery query = side.database().file->query(kSelectItemsOfVault, side.vault()->oid());
  while (query.next()) {
    const QNItemRow row = itemRow(query);
    if (!count.add(sealer.seal(row), row.seal)) return vaultDamaged("a row was altered");
    Head& head = side.heads.add(row.uuid, headOf(row)).value;
    const auto* const known = side.remembered(row.uuid);
    if (known != nullptr && known->localTimestamp > row.txTimestamp) {
      return rowsOlderThanMemory();
    }
    if (known == nullptr || known->localTimestamp != row.txTimestamp) {
      head.sealedContent = sealedContentOf(row);
    }
  }
  if (!count.agreesWith(ledger.value().items)) return vaultDamaged("rows are missing or older");
  return QNDone{};
}

void QNStore::Merge::findWhatIsOutOfStep() {
  report.compared = _mine.heads.size();
  for (const auto& [uuid, mine] : _mine.heads) {
    const Head* const theirs = _theirs.heads.find(uuid);
    if (theirs == nullptr || !isInStep(uuid, mine, *theirs)) _outOfStep.insert(uuid);
  }
  for (const auto& [uuid, theirs] : _theirs.heads) {
    if (_mine.heads.find(uuid) != nullptr) continue;
    ++report.compared;
    _outOfStep.insert(uuid);
  }
}

// One uuid

QNResult<QNDone> QNStore::Merge::mergeOne(const std::string& uuid) {
  const Head* const mine = _mine.heads.find(uuid);
  const Head* const theirs = _theirs.heads.find(uuid);
  if (mine == nullptr) return copy(uuid, _theirs, _mine);
  if (theirs == nullptr) return copy(uuid, _mine, _theirs);
  if (mine->isTombstone && theirs->isTombstone) return mergeTombstones(uuid);
  if (mine->isTombstone) return mergeDeletion(uuid, _mine, _theirs);
  if (theirs->isTombstone) return mergeDeletion(uuid, _theirs, _mine);
  if (!hasChanged(_mine, uuid) && !hasChanged(_theirs, uuid)) return QNDone{};
  if (areCopies(*mine, *theirs)) return QNDone{};
  return mergeItems(uuid);
}

QNResult<QNDone> QNStore::Merge::mergeDeletion(const std::string& uuid, Side& deleted,
                                               Side& living) {
  const std::uint64_t deletedAt = deleted.heads.find(uuid)->updatedAt;
  const Head& item = *living.heads.find(uuid);
  const bool isKnown = lastReached(uuid).has_value();
  const bool isNewer = item.updatedAt > deletedAt || (item.updatedAt == deletedAt && !isKnown);
  const bool hasChangedSince =
      isKnown ? hasChanged(living, uuid)
              : !hasSeen(deleted, uuid, item) || hasMovedOn(living, uuid, item);
  if (!isNewer && !hasChangedSince) return remove(uuid, living, deletedAt);
  note(uuid, Kind::deletionRefused);
  return copy(uuid, living, deleted);
}

/// Not told: it was deleted on both sides before.
QNResult<QNDone> QNStore::Merge::mergeTombstones(const std::string& uuid) {
  const std::uint64_t mine = _mine.heads.find(uuid)->updatedAt;
  const std::uint64_t theirs = _theirs.heads.find(uuid)->updatedAt;
  if (mine == theirs) return QNDone{};
  return bury(uuid, mine < theirs ? _mine : _theirs, std::max(mine, theirs));
}

QNResult<QNDone> QNStore::Merge::mergeItems(const std::string& uuid) {
  const Loaded mine = load(uuid, _mine);
  if (!mine.ok()) return mine.error();
  const Loaded theirs = load(uuid, _theirs);
  if (!theirs.ok()) return theirs.error();
  const auto ownContent = contentOf(*mine.value());
  const auto otherContent = contentOf(*theirs.value());
  if (!ownContent || !otherContent) return vaultDamaged("an item doesn't open");
  if (equalJson(*ownContent, *otherContent)) return QNDone{};
  const auto own = partsOf(*ownContent);
  const auto other = partsOf(*otherContent);
  if (!hasChanged(_theirs, uuid)) {
    note(uuid, Kind::replacedTheirs, outcomes(other, own, own));
    return replace(uuid, _theirs, *theirs.value(), mine.value());
  }
  if (!hasChanged(_mine, uuid)) {
    note(uuid, Kind::replacedMine, outcomes(own, other, other));
    return replace(uuid, _mine, *mine.value(), theirs.value());
  }
  return join(uuid, mine.value(), theirs.value());
}

QNResult<QNDone> QNStore::Merge::replace(const std::string& uuid, Side& side, QNItem& loser,
                                         const std::shared_ptr<QNItem>& winner) {
  Side& partner = &side == &_mine ? _theirs : _mine;
  const auto cleaned = saveWithoutDuplicateURLs(uuid, partner, winner);
  if (!cleaned.ok()) return cleaned.error();
  const std::uint64_t favePlace = loser.faveIndex();
  const auto result = std::dynamic_pointer_cast<QNItem>(loser.objectByReplacingWith(winner));
  if (result == nullptr) return vaultDamaged("an item can't take another's place");
  if (favePlace != 0 && result->isFavorite()) result->setFaveIndex(favePlace);
  result->setUpdatedAt(winner->updatedAt());
  // What the loser had isn't retired now: the winner's history is the one that counts.
  result->noteOriginalPassword();
  return saveIn(side, uuid, result, Database::Times::kept);
}

/// The replaced side gets each address once, so the winner's side must have it once too. Before the
/// replacement, which takes objects of the winner over.
QNResult<QNDone> QNStore::Merge::saveWithoutDuplicateURLs(const std::string& uuid, Side& side,
                                                          const std::shared_ptr<QNItem>& item) {
  const std::size_t before = item->numberOfURLs();
  item->removeDuplicateURLs();
  if (item->numberOfURLs() == before) return QNDone{};
  return saveIn(side, uuid, item, Database::Times::kept);
}

/// The merge takes objects of the other over, so what the other becomes is read once more.
QNResult<QNDone> QNStore::Merge::join(const std::string& uuid, const std::shared_ptr<QNItem>& mine,
                                      const std::shared_ptr<QNItem>& theirs) {
  const auto own = contentOf(*mine);
  const auto other = contentOf(*theirs);
  const bool isTheirsLater = theirs->updatedAt() > mine->updatedAt();
  Side& into = isTheirsLater ? _theirs : _mine;
  Side& from = isTheirsLater ? _mine : _theirs;
  const auto& later = isTheirsLater ? theirs : mine;
  const auto& earlier = isTheirsLater ? mine : theirs;
  const QNMergeRest rest(*earlier);
  std::set<std::string> tags = mine->tags();
  tags.merge(theirs->tags());
  const auto joined = std::dynamic_pointer_cast<QNItem>(later->mergeWithConflict(earlier));
  if (joined == nullptr) {
    note(uuid, Kind::notJoined);
    _apart.insert(uuid);
    return QNDone{};
  }
  if (joined->tags() != tags) joined->setTags(tags);
  rest.addTo(*joined);
  const auto saved = saveIn(into, uuid, joined, Database::Times::now);
  if (!saved.ok()) return saved.error();
  const auto content = contentOf(*joined);
  if (!own || !other || !content) return vaultDamaged("an item doesn't open");
  note(uuid, Kind::joined, outcomes(partsOf(*own), partsOf(*other), partsOf(*content)));
  const Loaded again = load(uuid, from);
  if (!again.ok()) return again.error();
  return replace(uuid, from, *again.value(), joined);
}

QNResult<QNDone> QNStore::Merge::copy(const std::string& uuid, Side& from, Side& to) {
  if (from.heads.find(uuid)->isTombstone) return copyTombstone(uuid, from, to);
  const Loaded item = load(uuid, from);
  if (!item.ok()) return item.error();
  if (to.heads.find(uuid) == nullptr) {
    note(uuid, kindFor(to, Kind::copiedToMine, Kind::copiedToTheirs));
  }
  return saveIn(to, uuid, item.value(), Database::Times::kept);
}

QNResult<QNDone> QNStore::Merge::copyTombstone(const std::string& uuid, Side& from, Side& to) {
  const Head& head = *from.heads.find(uuid);
  const auto before = from.database().rowWithOid(head.oid, from.vault());
  if (!before.ok()) return before.error();
  // A key that isn't this row's may be another's.
  const Bytes own =
      from.database().wrappedKeyOf(head.oid, before.value().bodyHash).value_or(Bytes());
  const auto key = own.empty() ? nullptr : from.vault()->decryptItemKey(own);
  const Bytes wrapped =
      key == nullptr ? Bytes() : to.vault()->encryptItemKey(key).value_or(Bytes());
  const auto ledger = to.database().openLedger(to.vault());
  if (!ledger.ok()) return ledger.error();
  const std::uint64_t oid = to.database().freshOid();
  const auto written = to.database().writeTombstone(
      {oid, uuid, head.createdAt, head.updatedAt, ledger.value()->nextTx(secondsNow()), wrapped},
      to.vault(), {});
  if (!written.ok()) return written.error();
  note(uuid, kindFor(to, Kind::deletedMine, Kind::deletedTheirs));
  noteWritten(to, uuid, oid, head);
  return QNDone{};
}

QNResult<QNDone> QNStore::Merge::remove(const std::string& uuid, Side& side,
                                        std::uint64_t deletedAt) {
  note(uuid, kindFor(side, Kind::deletedMine, Kind::deletedTheirs));
  Head& head = *side.heads.find(uuid);
  head.removedTx = head.txTimestamp;
  return bury(uuid, side, deletedAt);
}

QNResult<QNDone> QNStore::Merge::bury(const std::string& uuid, Side& side,
                                      std::uint64_t deletedAt) {
  Head head = *side.heads.find(uuid);
  const auto before = side.database().rowWithOid(head.oid, side.vault());
  if (!before.ok()) return before.error();
  const auto buried = side.database().bury(before.value(), deletedAt);
  if (!buried.ok()) return buried.error();
  head.isTombstone = true;
  head.updatedAt = deletedAt;
  noteWritten(side, uuid, head.oid, head);
  return QNDone{};
}

// Reading and writing

QNStore::Merge::Loaded QNStore::Merge::load(const std::string& uuid, Side& side) {
  ++report.opened;
  return side.given.store->item(side.vault(), uuid);
}

/// The item takes the place of the row of its uuid in that side's vault, whose it becomes.
QNResult<QNDone> QNStore::Merge::saveIn(Side& side, const std::string& uuid,
                                        const std::shared_ptr<QNItem>& item,
                                        Database::Times times) {
  const Head* const head = side.heads.find(uuid);
  const bool replacesRow = head != nullptr && !head->isTombstone;
  item->setProfile(side.vault());
  item->setUuid(sharedString(uuid));
  item->_setOid(replacesRow ? head->oid : 0);
  item->setTxTimestamp(replacesRow ? head->txTimestamp : 0);
  if (!replacesRow) {
    for (const auto& url : item->URLs()) url->_setOid(0);
  }
  item->markRowDirty();
  const auto saved = side.database().saveItems({&item, 1}, times);
  if (!saved.ok()) return saved.error();
  Head written;
  written.createdAt = item->createdAt();
  written.updatedAt = item->updatedAt();
  noteWritten(side, uuid, item->oid(), written);
  return QNDone{};
}

void QNStore::Merge::noteWritten(Side& side, const std::string& uuid, std::uint64_t oid,
                                 const Head& content) {
  Head* const known = side.heads.find(uuid);
  Head& head = known == nullptr ? side.heads.add(uuid, {}).value : *known;
  head = content;
  head.oid = oid;
  head.txTimestamp = lastTxOf(side);
}

std::uint64_t QNStore::Merge::lastTxOf(const Side& side) {
  const auto ledger = side.database().ledgerNow(*side.vault());
  return ledger.ok() ? ledger.value().lastTx : 0;
}

void QNStore::Merge::note(const std::string& uuid, Kind kind, std::vector<QNMergedField> fields) {
  report.items.push_back({uuid, kind, std::move(fields)});
}

// The whole

/// One file would be locked against itself, and an open transaction would end after the merge has
/// said that it is durable.
QNResult<QNDone> QNStore::requireTwoStores(const QNMergeSide& mine, const QNMergeSide& theirs) {
  for (const QNMergeSide* side : {&mine, &theirs}) {
    if (side->store == nullptr || side->vault == nullptr) {
      return storeError(QNStoreErrorCode::notFound, "a side has no store or no vault");
    }
    if (side->store->_database->file->inTransaction()) {
      return storeError(QNStoreErrorCode::busy, "a transaction of this store is going on");
    }
  }
  std::error_code unknown;
  const bool isOne = mine.store == theirs.store ||
                     std::filesystem::equivalent(mine.store->_database->file->path(),
                                                 theirs.store->_database->file->path(), unknown);
  if (isOne) return storeError(QNStoreErrorCode::sameFile, "both sides are one file");
  return QNDone{};
}

QNResult<QNMergeReport> QNStore::merge(const QNMergeSide& mine, const QNMergeSide& theirs,
                                       MergeMode mode) {
  const auto two = requireTwoStores(mine, theirs);
  if (!two.ok()) return two.error();
  Merge merge(mine, theirs);
  const auto work = [&]() -> QNResult<QNDone> {
    const auto run = merge.run();
    if (!run.ok()) return run.error();
    if (mode == MergeMode::dryRun) return storeError(QNStoreErrorCode::busy, "a dry run ends here");
    return QNDone{};
  };
  const auto done = mine.store->inTransaction([&] { return theirs.store->inTransaction(work); });
  const bool isDryRun = mode == MergeMode::dryRun && merge.finished;
  if (!done.ok() && !isDryRun) return done.error();
  return std::move(merge.report);
}

}  // namespace quillon
