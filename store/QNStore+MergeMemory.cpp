#include "quillon/platform/environment/QNEnvironment.h"
#include "store/internal/QNStoreMerge.h"

// Theirs is committed first, and both remember the pair of times that was reached. If mine then
// fails, theirs remembers a pair that mine never had: the older one of two that differ counts. Of
// an item that a deletion removes, the deleting side remembers the version that it removed. So if
// the removal is lost, the side has met what is there.

namespace quillon {

// Reading

QNResult<QNDone> QNStore::Merge::readMemory(Side& side, const Side& partner) {
  auto known =
      side.database().partnerAt(partner.given.place, *partner.vault()->uuid(), side.vault());
  if (!known.ok()) return known.error();
  side.memory = std::move(known).value();
  const std::uint64_t lastTx = lastTxOf(side);
  for (const QNSyncStateRow& state : side.memory.states.rows()) {
    const bool isItem = state.kind == QNSyncStates::kKindOfItems;
    if (isItem && state.localTimestamp > lastTx) return rowsOlderThanMemory();
  }
  if (side.memory.source != nullptr) return QNDone{};
  report.isFirst = true;
  const auto source = std::make_shared<QNSyncSource>(initNew);
  source->setProfile(side.vault());
  source->restoreKeychainIdentifier(partner.given.place, false);
  source->setKeychainType(std::string(kTypeOfMerges));
  source->setRemoteProfileUUID(*partner.vault()->uuid());
  source->setLocalProfileUUID(*side.vault()->uuid());
  side.memory.source = source;
  return QNDone{};
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
std::optional<QNMergeReached> QNStore::Merge::lastReached(const std::string& uuid) {
  const auto* const mine = _mine.remembered(uuid);
  const auto* const theirs = _theirs.remembered(uuid);
  if (mine == nullptr || theirs == nullptr) return std::nullopt;
  const QNMergeReached own = {mine->localTimestamp, mine->sourceTimestamp};
  const QNMergeReached other = {theirs->sourceTimestamp, theirs->localTimestamp};
  if (own.isNotAfter(other)) return own;
  return other.isNotAfter(own) ? std::optional(other) : std::nullopt;
}

bool QNStore::Merge::hasChanged(Side& side, const std::string& uuid) {
  const auto reached = lastReached(uuid);
  if (!reached) return true;
  return side.heads.find(uuid)->txTimestamp != (&side == &_mine ? reached->mine : reached->theirs);
}

/// Does nothing that this side remembers speak against it having met that version of the other's?
bool QNStore::Merge::hasSeen(Side& side, const std::string& uuid, const Head& other) {
  const auto* const state = side.remembered(uuid);
  return state == nullptr || state->sourceTimestamp == other.txTimestamp;
}

/// Has its row changed since the merge that this side alone remembers?
bool QNStore::Merge::hasMovedOn(Side& side, const std::string& uuid, const Head& own) {
  const auto* const state = side.remembered(uuid);
  return state != nullptr && state->localTimestamp != own.txTimestamp;
}

// For the next time

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

}  // namespace quillon
