#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/data/MRData.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/sync/QNSyncState.h"
#include "store/QNStore.h"
#include "store/internal/QNItemParts.h"
#include "store/internal/QNStoreState.h"

// What becomes of a uuid. "Changed" is a row whose tx_timestamp isn't the one that both sides
// remember alike; without such a memory both have changed.
//
//   mine       theirs     then
//   unchanged  unchanged  nothing, and nothing is opened
//   an item    none       copied, or a tombstone; the same the other way round
//   equal      equal      nothing: the same bytes, or the same parts once opened
//   changed    unchanged  replaces theirs; the same the other way round
//   changed    changed    joined into mine, which then replaces theirs
//   deleted    unchanged  deleted, unless it is newer than the deletion
//   deleted    changed    refused: copied back. Without a memory the times alone decide
//
// Theirs is committed first. If mine then fails, the two memories differ, and what was done counts
// as changed on both sides the next time: joined again, which adds nothing.

namespace quillon {

namespace {

using Kind = QNMergedItem::Kind;

constexpr std::string_view kStoreKeychainType = "store";

/// What is known of a row without opening it.
struct Head {
  std::uint64_t oid = 0;
  std::uint64_t txTimestamp = 0;
  std::uint64_t createdAt = 0;
  std::uint64_t updatedAt = 0;
  bool isTombstone = false;
  std::array<std::uint8_t, 32> sealedContent{};  // equal in a copied file only
};

Head headOf(const QNItemRow& row) {
  Bytes content = toBytes(row.bodyHash);
  content.insert(content.end(), row.overview.begin(), row.overview.end());
  const std::string columns =
      fmt::format("{} {} {} {} {}", row.status, row.faveIndex, row.categoryUUID,
                  row.scope.value_or(""), row.folderUUID.value_or(""));
  content.insert(content.end(), columns.begin(), columns.end());
  return {row.oid,       row.txTimestamp,  row.createdAt,
          row.updatedAt, isTombstone(row), sha256(content)};
}

QNError vaultDamaged(std::string_view what) {
  return storeError(QNStoreErrorCode::damaged, what);
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
    std::map<std::string, Head> heads = {};
    std::shared_ptr<QNSyncSource> source = nullptr;
    [[nodiscard]] Database& database() const { return *given.store->_database; }
    [[nodiscard]] const std::shared_ptr<QNProfile>& vault() const { return given.vault; }
    [[nodiscard]] Head* head(const std::string& uuid) {
      const auto found = heads.find(uuid);
      return found == heads.end() ? nullptr : &found->second;
    }
  };
  using Loaded = QNResult<std::shared_ptr<QNItem>>;

  QNResult<QNDone> readHeads(Side& side);
  QNResult<QNDone> readSource(Side& side, const Side& partner);
  [[nodiscard]] std::set<std::string> uuids() const;
  QNResult<QNDone> mergeOne(const std::string& uuid);
  QNResult<QNDone> mergeDeletion(const std::string& uuid, Side& deleted, Side& living);
  QNResult<QNDone> mergeItems(const std::string& uuid);
  QNResult<QNDone> replace(const std::string& uuid, Side& side, QNItem& loser,
                           const std::shared_ptr<QNItem>& winner);
  QNResult<QNDone> join(const std::string& uuid, const std::shared_ptr<QNItem>& mine,
                        const std::shared_ptr<QNItem>& theirs);
  QNResult<QNDone> copy(const std::string& uuid, Side& from, Side& to);
  QNResult<QNDone> copyTombstone(const std::string& uuid, Side& from, Side& to);
  QNResult<QNDone> remove(const std::string& uuid, Side& side, std::uint64_t deletedAt);
  QNResult<QNDone> writeState(Side& side, Side& partner);

  Loaded load(const std::string& uuid, Side& side);
  QNResult<QNDone> saveIn(Side& side, const std::string& uuid, const std::shared_ptr<QNItem>& item,
                          Database::Times times);
  void noteWritten(Side& side, const std::string& uuid, std::uint64_t oid, const Head& content);
  bool isRemembered(const std::string& uuid);
  bool hasChanged(Side& side, const std::string& uuid);
  /// The last time that was given in that side's vault.
  static std::uint64_t lastTxOf(const Side& side);
  void note(const std::string& uuid, Kind kind, std::vector<QNMergedField> fields = {});

  Side _mine, _theirs;
  std::set<std::string> _apart;  // uuids that couldn't be brought into step
};

// The sides as they are

QNResult<QNDone> QNStore::Merge::run() {
  for (Side* side : {&_mine, &_theirs}) {
    const auto read = readHeads(*side);
    if (!read.ok()) return read.error();
  }
  auto known = readSource(_mine, _theirs);
  if (known.ok()) known = readSource(_theirs, _mine);
  if (!known.ok()) return known.error();
  for (const std::string& uuid : uuids()) {
    const auto merged = mergeOne(uuid);
    if (!merged.ok()) return merged.error();
    ++report.compared;
  }
  auto written = writeState(_theirs, _mine);
  if (written.ok()) written = writeState(_mine, _theirs);
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
    side.heads.emplace(row.uuid, headOf(row));
  }
  if (!count.agreesWith(ledger.value())) return vaultDamaged("rows are missing or older");
  return QNDone{};
}

QNResult<QNDone> QNStore::Merge::readSource(Side& side, const Side& partner) {
  auto sources = side.given.store->syncSources(side.vault());
  if (!sources.ok()) return sources.error();
  for (const auto& source : sources.value()) {
    if (source->keychainIdentifier() == partner.given.place &&
        source->remoteProfileUUID() == *partner.vault()->uuid()) {
      side.source = source;
      return QNDone{};
    }
  }
  side.source = std::make_shared<QNSyncSource>(initNew);
  side.source->setProfile(side.vault());
  side.source->restoreKeychainIdentifier(partner.given.place, false);
  side.source->setKeychainType(std::string(kStoreKeychainType));
  side.source->setRemoteProfileUUID(*partner.vault()->uuid());
  side.source->setLocalProfileUUID(*side.vault()->uuid());
  return QNDone{};
}

std::set<std::string> QNStore::Merge::uuids() const {
  std::set<std::string> all;
  for (const Side* side : {&_mine, &_theirs}) {
    for (const auto& [uuid, head] : side->heads) all.insert(uuid);
  }
  return all;
}

/// Do both sides remember the same of it?
bool QNStore::Merge::isRemembered(const std::string& uuid) {
  const auto mine = _mine.source->syncStateForItemUUID(uuid);
  const auto theirs = _theirs.source->syncStateForItemUUID(uuid);
  return mine != nullptr && theirs != nullptr &&
         mine->localTimestamp() == theirs->sourceTimestamp() &&
         mine->sourceTimestamp() == theirs->localTimestamp();
}

bool QNStore::Merge::hasChanged(Side& side, const std::string& uuid) {
  if (!isRemembered(uuid)) return true;
  return side.head(uuid)->txTimestamp != side.source->syncStateForItemUUID(uuid)->localTimestamp();
}

// One uuid

QNResult<QNDone> QNStore::Merge::mergeOne(const std::string& uuid) {
  const Head* const mine = _mine.head(uuid);
  const Head* const theirs = _theirs.head(uuid);
  if (mine == nullptr) return copy(uuid, _theirs, _mine);
  if (theirs == nullptr) return copy(uuid, _mine, _theirs);
  if (mine->isTombstone && theirs->isTombstone) return QNDone{};
  if (mine->isTombstone) return mergeDeletion(uuid, _mine, _theirs);
  if (theirs->isTombstone) return mergeDeletion(uuid, _theirs, _mine);
  if (!hasChanged(_mine, uuid) && !hasChanged(_theirs, uuid)) return QNDone{};
  if (mine->sealedContent == theirs->sealedContent) return QNDone{};
  return mergeItems(uuid);
}

QNResult<QNDone> QNStore::Merge::mergeDeletion(const std::string& uuid, Side& deleted,
                                               Side& living) {
  const std::uint64_t deletedAt = deleted.head(uuid)->updatedAt;
  const bool isNewer = living.head(uuid)->updatedAt > deletedAt;
  const bool hasChangedSince = isRemembered(uuid) && hasChanged(living, uuid);
  if (!isNewer && !hasChangedSince) return remove(uuid, living, deletedAt);
  note(uuid, Kind::deletionRefused);
  return copy(uuid, living, deleted);
}

QNResult<QNDone> QNStore::Merge::mergeItems(const std::string& uuid) {
  const Loaded mine = load(uuid, _mine);
  if (!mine.ok()) return mine.error();
  const Loaded theirs = load(uuid, _theirs);
  if (!theirs.ok()) return theirs.error();
  const auto own = partsOf(*mine.value());
  const auto other = partsOf(*theirs.value());
  if (!own || !other) return vaultDamaged("an item doesn't open");
  if (equalParts(*own, *other)) return QNDone{};
  if (!hasChanged(_theirs, uuid)) {
    note(uuid, Kind::replacedTheirs, outcomes(*other, *own, *own));
    return replace(uuid, _theirs, *theirs.value(), mine.value());
  }
  if (!hasChanged(_mine, uuid)) {
    note(uuid, Kind::replacedMine, outcomes(*own, *other, *other));
    return replace(uuid, _mine, *mine.value(), theirs.value());
  }
  return join(uuid, mine.value(), theirs.value());
}

QNResult<QNDone> QNStore::Merge::replace(const std::string& uuid, Side& side, QNItem& loser,
                                         const std::shared_ptr<QNItem>& winner) {
  const auto result = std::dynamic_pointer_cast<QNItem>(loser.objectByReplacingWith(winner));
  if (result == nullptr) return vaultDamaged("an item can't take another's place");
  result->setUpdatedAt(winner->updatedAt());
  return saveIn(side, uuid, result, Database::Times::kept);
}

/// The merge takes objects of theirs over, so what theirs becomes is read once more.
QNResult<QNDone> QNStore::Merge::join(const std::string& uuid, const std::shared_ptr<QNItem>& mine,
                                      const std::shared_ptr<QNItem>& theirs) {
  const auto own = partsOf(*mine);
  const auto other = partsOf(*theirs);
  const auto joined = std::dynamic_pointer_cast<QNItem>(mine->mergeWithConflict(theirs));
  if (joined == nullptr) {
    note(uuid, Kind::notJoined);
    _apart.insert(uuid);
    return QNDone{};
  }
  const auto saved = saveIn(_mine, uuid, joined, Database::Times::now);
  if (!saved.ok()) return saved.error();
  const auto parts = partsOf(*joined);
  if (!own || !other || !parts) return vaultDamaged("an item doesn't open");
  note(uuid, Kind::joined, outcomes(*own, *other, *parts));
  const Loaded again = load(uuid, _theirs);
  if (!again.ok()) return again.error();
  return replace(uuid, _theirs, *again.value(), joined);
}

QNResult<QNDone> QNStore::Merge::copy(const std::string& uuid, Side& from, Side& to) {
  if (from.head(uuid)->isTombstone) return copyTombstone(uuid, from, to);
  const Loaded item = load(uuid, from);
  if (!item.ok()) return item.error();
  if (to.head(uuid) == nullptr) {
    note(uuid, &to == &_mine ? Kind::copiedToMine : Kind::copiedToTheirs);
  }
  return saveIn(to, uuid, item.value(), Database::Times::kept);
}

QNResult<QNDone> QNStore::Merge::copyTombstone(const std::string& uuid, Side& from, Side& to) {
  const Head& head = *from.head(uuid);
  const auto key = from.vault()->decryptItemKey(from.database().wrappedKeyOf(head.oid));
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
  Head head = *side.head(uuid);
  const auto before = side.database().rowWithOid(head.oid, side.vault());
  if (!before.ok()) return before.error();
  const auto buried = side.database().bury(before.value(), deletedAt);
  if (!buried.ok()) return buried.error();
  note(uuid, &side == &_mine ? Kind::deletedMine : Kind::deletedTheirs);
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
  const Head* const head = side.head(uuid);
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
  Head& head = side.heads.insert_or_assign(uuid, content).first->second;
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

QNResult<QNDone> QNStore::Merge::writeState(Side& side, Side& partner) {
  QNSyncSource::States states;
  bool isNews = !side.source->hasOid();
  for (const auto& [uuid, head] : side.heads) {
    if (_apart.contains(uuid)) continue;
    auto state = std::make_shared<QNSyncState>();
    state->setObjectType(static_cast<std::int32_t>(QNObjectType::item));
    state->setSource(side.source);
    state->setObjectID(head.oid);
    state->setObjectUUID(uuid);
    state->setSyncedAt(secondsNow());
    state->setLocalTimestamp(head.txTimestamp);
    state->setSourceTimestamp(partner.heads.at(uuid).txTimestamp);
    const auto before = side.source->syncStateForItemUUID(uuid);
    const bool isSame = before != nullptr && before->localTimestamp() == state->localTimestamp() &&
                        before->sourceTimestamp() == state->sourceTimestamp();
    isNews = isNews || !isSame;
    states.push_back(isSame ? before : state);
  }
  if (!isNews && states.size() == side.source->itemStates().size()) return QNDone{};
  side.source->setItemStates(std::move(states));
  side.source->setLocalProfileTimestamp(lastTxOf(side));
  side.source->setRemoteProfileTimestamp(lastTxOf(partner));
  return side.given.store->saveSyncSource(side.source);
}

// The whole

QNResult<QNMergeReport> QNStore::merge(const QNMergeSide& mine, const QNMergeSide& theirs,
                                       MergeMode mode) {
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
