#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <set>

#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/data/MRData.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/json/QNJsonEquality.h"
#include "store/QNStore.h"
#include "store/internal/QNFolderMerge.h"
#include "store/internal/QNItemParts.h"
#include "store/internal/QNMergeRest.h"
#include "store/internal/QNStoreState.h"
#include "store/internal/QNUUIDTable.h"

// What becomes of a uuid. "Changed" is a row whose tx_timestamp, as the merge finds it, isn't the one
// of the last pair that both sides had reached; without such a pair both have changed.
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
// Theirs is committed first, and both remember the pair of times that was reached. If mine then
// fails, theirs remembers a pair that mine never had: the older one of two that differ counts. Of
// an item that a deletion removes, the deleting side remembers the version that it removed. So if
// the removal is lost, the side has met what is there.
//
// Every row's seal and both ledgers are checked; what both sides remember as it is costs no more
// than that.

namespace quillon {

namespace {

using Kind = QNMergedItem::Kind;

constexpr std::string_view kStoreKeychainType = "store";

// Times never shrink: rows and a ledger of an older copy were put back beside a newer memory.
constexpr std::string_view kOlderThanItsMemory = "rows are older than a merge remembers them";

using ContentHash = std::array<std::uint8_t, 32>;

/// What is known of a row without opening it.
struct Head {
  std::uint64_t oid = 0;
  std::uint64_t txTimestamp = 0;
  std::uint64_t txBefore = 0;  // as the merge found the row: the one of folders may save it anew
  std::uint64_t createdAt = 0;
  std::uint64_t updatedAt = 0;
  bool isTombstone = false;
  std::uint64_t removedTx = 0;                    // of the item that this merge has deleted
  std::optional<ContentHash> sealedContent = {};  // of a row that its side doesn't remember so
};

/// Equal in a copied file only.
ContentHash sealedContentOf(const QNItemRow& row) {
  Bytes content = toBytes(row.bodyHash);
  content.insert(content.end(), row.overview.begin(), row.overview.end());
  const std::string columns =
      fmt::format("{} {} {} {} {}", row.status, row.faveIndex, row.categoryUUID,
                  row.scope.value_or(""), row.folderUUID.value_or(""));
  content.insert(content.end(), columns.begin(), columns.end());
  return sha256(content);
}

Head headOf(const QNItemRow& row) {
  return {row.oid,       row.txTimestamp, row.txTimestamp,
          row.createdAt, row.updatedAt,   isTombstone(row)};
}

bool areCopies(const Head& a, const Head& b) {
  return a.sealedContent && a.sealedContent == b.sealedContent;
}

QNError vaultDamaged(std::string_view what) {
  return storeError(QNStoreErrorCode::damaged, what);
}

/// How far the two rows of a uuid were when they held the same.
struct Reached {
  std::uint64_t mine = 0;
  std::uint64_t theirs = 0;
};

bool isNotAfter(const Reached& a, const Reached& b) {
  return a.mine <= b.mine && a.theirs <= b.theirs;
}

}  // namespace

class QNStore::Merge final {
 public:
  Merge(const QNMergeSide& mine, const QNMergeSide& theirs) : _mine{mine}, _theirs{theirs} {}
  QNResult<QNDone> run();
  QNMergeReport report;
  bool finished = false;

 private:
  struct Side {
    const QNMergeSide& given;
    Database::Partner memory = {};  // of the other side
    QNUUIDTable<Head> heads = {};
    [[nodiscard]] Database& database() const { return *given.store->_database; }
    [[nodiscard]] const std::shared_ptr<QNProfile>& vault() const { return given.vault; }
    /// How far the row was here, `localTimestamp`, and there, `sourceTimestamp`. Null if this side
    /// remembers nothing of it.
    [[nodiscard]] const QNSyncStateRow* remembered(std::string_view uuid) {
      return memory.states.itemState(uuid);
    }
  };
  using Loaded = QNResult<std::shared_ptr<QNItem>>;

  QNResult<QNDone> readMemory(Side& side, const Side& partner);
  static QNResult<QNDone> readHeads(Side& side);
  QNResult<QNDone> mergeFolders();
  static void readSavedSince(std::uint64_t txTimestamp, Side& side);
  void findWhatIsOutOfStep();
  [[nodiscard]] bool isInStep(const std::string& uuid, const Head& mine, const Head& theirs);
  QNResult<QNDone> mergeOne(const std::string& uuid);
  QNResult<QNDone> mergeDeletion(const std::string& uuid, Side& deleted, Side& living);
  QNResult<QNDone> mergeTombstones(const std::string& uuid);
  QNResult<QNDone> mergeItems(const std::string& uuid);
  QNResult<QNDone> replace(const std::string& uuid, Side& side, QNItem& loser,
                           const std::shared_ptr<QNItem>& winner);
  QNResult<QNDone> saveWithoutDuplicateURLs(const std::string& uuid, Side& side,
                                            const std::shared_ptr<QNItem>& item);
  QNResult<QNDone> join(const std::string& uuid, const std::shared_ptr<QNItem>& mine,
                        const std::shared_ptr<QNItem>& theirs);
  QNResult<QNDone> copy(const std::string& uuid, Side& from, Side& to);
  QNResult<QNDone> copyTombstone(const std::string& uuid, Side& from, Side& to);
  QNResult<QNDone> remove(const std::string& uuid, Side& side, std::uint64_t deletedAt);
  QNResult<QNDone> bury(const std::string& uuid, Side& side, std::uint64_t deletedAt);
  QNSyncStateRow stateOf(const std::string& uuid, Side& side, Side& partner) const;
  std::map<std::uint64_t, std::string> outOfStepByRow(Side& side) const;
  QNResult<QNDone> writeMemory(Side& side, Side& partner);

  Loaded load(const std::string& uuid, Side& side);
  QNResult<QNDone> saveIn(Side& side, const std::string& uuid, const std::shared_ptr<QNItem>& item,
                          Database::Times times);
  void noteWritten(Side& side, const std::string& uuid, std::uint64_t oid, const Head& content);
  std::optional<Reached> lastReached(const std::string& uuid);
  static bool hasSeen(Side& side, const std::string& uuid, const Head& other);
  static bool hasMovedOn(Side& side, const std::string& uuid, const Head& own);
  bool hasChanged(Side& side, const std::string& uuid);
  /// The last time that was given in that side's vault.
  static std::uint64_t lastTxOf(const Side& side);
  void note(const std::string& uuid, Kind kind, std::vector<QNMergedField> fields = {});

  Side _mine, _theirs;
  std::set<std::string> _outOfStep;  // uuids that must be looked at, in the report's order
  std::set<std::string> _apart;      // those that couldn't be brought into step
};

// The sides as they are

QNResult<QNDone> QNStore::Merge::run() {
  auto read = readMemory(_mine, _theirs);
  if (read.ok()) read = readMemory(_theirs, _mine);
  if (read.ok()) read = readHeads(_mine);
  if (read.ok()) read = readHeads(_theirs);
  if (read.ok()) read = mergeFolders();
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

QNResult<QNDone> QNStore::Merge::readMemory(Side& side, const Side& partner) {
  auto known =
      side.database().partnerAt(partner.given.place, *partner.vault()->uuid(), side.vault());
  if (!known.ok()) return known.error();
  side.memory = std::move(known).value();
  const std::uint64_t lastTx = lastTxOf(side);
  for (const QNSyncStateRow& state : side.memory.states.rows()) {
    const bool isItem = state.kind == QNSyncStates::kKindOfItems;
    if (isItem && state.localTimestamp > lastTx) return vaultDamaged(kOlderThanItsMemory);
  }
  if (side.memory.source != nullptr) return QNDone{};
  report.isFirst = true;
  const auto source = std::make_shared<QNSyncSource>(initNew);
  source->setProfile(side.vault());
  source->restoreKeychainIdentifier(partner.given.place, false);
  source->setKeychainType(std::string(kStoreKeychainType));
  source->setRemoteProfileUUID(*partner.vault()->uuid());
  source->setLocalProfileUUID(*side.vault()->uuid());
  side.memory.source = source;
  return QNDone{};
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
      return vaultDamaged(kOlderThanItsMemory);
    }
    if (known == nullptr || known->localTimestamp != row.txTimestamp) {
      head.sealedContent = sealedContentOf(row);
    }
  }
  if (!count.agreesWith(ledger.value().items)) return vaultDamaged("rows are missing or older");
  return QNDone{};
}

/// Before the items, which are written with the folder that they have then. Those of a deleted
/// folder are saved by it: nobody has changed them, but both sides must remember them anew.
QNResult<QNDone> QNStore::Merge::mergeFolders() {
  const std::uint64_t mine = lastTxOf(_mine), theirs = lastTxOf(_theirs);
  const auto merged = FolderMerge(_mine.given, _theirs.given, report).run();
  if (!merged.ok()) return merged.error();
  readSavedSince(mine, _mine);
  readSavedSince(theirs, _theirs);
  return QNDone{};
}

void QNStore::Merge::readSavedSince(std::uint64_t txTimestamp, Side& side) {
  QNQuery query = side.database().file->query(kSelectChanges, side.vault()->oid(), txTimestamp);
  while (query.next()) {
    const QNItemRow row = itemRow(query);
    Head& head = *side.heads.find(row.uuid);
    const std::uint64_t before = head.txBefore;
    head = headOf(row);
    head.txBefore = before;
  }
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

/// Do both sides remember these two, and nothing older? Of a deletion on both sides, one may
/// remember what it has removed from the other.
bool QNStore::Merge::isInStep(const std::string& uuid, const Head& mine, const Head& theirs) {
  const auto* const own = _mine.remembered(uuid);
  const auto* const other = _theirs.remembered(uuid);
  if (own == nullptr || other == nullptr || own->localTimestamp != mine.txTimestamp ||
      other->localTimestamp != theirs.txTimestamp) {
    return false;
  }
  if (mine.isTombstone && theirs.isTombstone) return mine.updatedAt == theirs.updatedAt;
  return own->sourceTimestamp == theirs.txTimestamp && other->sourceTimestamp == mine.txTimestamp;
}

/// Nothing if one side remembers nothing, or the two can't be told apart by age.
std::optional<Reached> QNStore::Merge::lastReached(const std::string& uuid) {
  const auto* const mine = _mine.remembered(uuid);
  const auto* const theirs = _theirs.remembered(uuid);
  if (mine == nullptr || theirs == nullptr) return std::nullopt;
  const Reached own = {mine->localTimestamp, mine->sourceTimestamp};
  const Reached other = {theirs->sourceTimestamp, theirs->localTimestamp};
  if (isNotAfter(own, other)) return own;
  return isNotAfter(other, own) ? std::optional(other) : std::nullopt;
}

bool QNStore::Merge::hasChanged(Side& side, const std::string& uuid) {
  const auto reached = lastReached(uuid);
  if (!reached) return true;
  return side.heads.find(uuid)->txBefore != (&side == &_mine ? reached->mine : reached->theirs);
}

/// Does nothing that this side remembers speak against it having met that version of the other's?
bool QNStore::Merge::hasSeen(Side& side, const std::string& uuid, const Head& other) {
  const auto* const state = side.remembered(uuid);
  return state == nullptr || state->sourceTimestamp == other.txBefore;
}

/// Has its row changed since the merge that this side alone remembers?
bool QNStore::Merge::hasMovedOn(Side& side, const std::string& uuid, const Head& own) {
  const auto* const state = side.remembered(uuid);
  return state != nullptr && state->localTimestamp != own.txBefore;
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
  const bool areSavedAnew =
      mine->txTimestamp != mine->txBefore || theirs->txTimestamp != theirs->txBefore;
  if (!hasChanged(_mine, uuid) && !hasChanged(_theirs, uuid) && !areSavedAnew) return QNDone{};
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
    note(uuid, &to == &_mine ? Kind::copiedToMine : Kind::copiedToTheirs);
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
  note(uuid, &to == &_mine ? Kind::deletedMine : Kind::deletedTheirs);
  noteWritten(to, uuid, oid, head);
  return QNDone{};
}

QNResult<QNDone> QNStore::Merge::remove(const std::string& uuid, Side& side,
                                        std::uint64_t deletedAt) {
  note(uuid, &side == &_mine ? Kind::deletedMine : Kind::deletedTheirs);
  Head& head = *side.heads.find(uuid);
  head.removedTx = head.txBefore;
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

// What is remembered for the next time

QNSyncStateRow QNStore::Merge::stateOf(const std::string& uuid, Side& side, Side& partner) const {
  const Head& here = *side.heads.find(uuid);
  const Head& there = *partner.heads.find(uuid);
  QNSyncStateRow state;
  state.objectType = static_cast<std::uint32_t>(QNObjectType::item);
  state.objectID = here.oid;
  state.syncedAt = secondsNow();
  // Of two that stay apart neither side has met the other's: no row ever has the time 0.
  if (_apart.contains(uuid)) return state;
  state.localTimestamp = here.txTimestamp;
  state.sourceTimestamp = there.removedTx != 0 ? there.removedTx : there.txTimestamp;
  return state;
}

/// So they can be read one beside the other the next time.
std::map<std::uint64_t, std::string> QNStore::Merge::outOfStepByRow(Side& side) const {
  std::map<std::uint64_t, std::string> byOid;
  for (const std::string& uuid : _outOfStep) byOid.emplace(side.heads.find(uuid)->oid, uuid);
  return byOid;
}

QNResult<QNDone> QNStore::Merge::writeMemory(Side& side, Side& partner) {
  for (const auto& [oid, uuid] : outOfStepByRow(side)) {
    const QNSyncStateRow state = stateOf(uuid, side, partner);
    const auto* const before = side.remembered(uuid);
    const bool isKnown = before != nullptr && before->localTimestamp == state.localTimestamp &&
                         before->sourceTimestamp == state.sourceTimestamp;
    if (!isKnown) side.memory.states.setItemState(uuid, state);
  }
  QNSyncSource& source = *side.memory.source;
  if (source.hasOid() && !side.memory.states.hasChanges()) return QNDone{};
  source.setLocalProfileTimestamp(lastTxOf(side));
  source.setRemoteProfileTimestamp(lastTxOf(partner));
  return side.database().savePartner(side.memory);
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
