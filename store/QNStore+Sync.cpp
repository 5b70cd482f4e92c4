#include <algorithm>
#include <array>
#include <set>

#include "quillon/platform/data/MRData.h"
#include "quillon/sync/QNSyncSource.h"
#include "quillon/sync/QNSyncState.h"
#include "store/QNStore.h"
#include "store/internal/QNStoreState.h"

namespace quillon {

namespace {

// In the order in which syncSourceRow() reads them.
#define QN_SYNC_SOURCE_COLUMNS                                                       \
  "oid, revision, legacy, keychain_identifier, keychain_type, remote_profile_uuid, " \
  "remote_profile_timestamp, remote_profile_attributes, local_profile_uuid, "        \
  "local_profile_timestamp, local_profile_attributes, seal"
constexpr std::string_view kSelectSourcesOfVault =
    "SELECT " QN_SYNC_SOURCE_COLUMNS " FROM sync_sources WHERE vault_id = ?1 ORDER BY oid";

QNSyncSourceRow syncSourceRow(const QNQuery& query) {
  QNSyncSourceRow row;
  row.oid = query.number(0);
  row.revision = query.number(1);
  row.legacy = query.number(2);
  row.keychainIdentifier = query.optionalText(3);
  row.keychainType = query.optionalText(4);
  row.remoteProfileUUID = query.optionalText(5);
  row.remoteProfileTimestamp = query.number(6);
  row.remoteProfileAttributes = query.optionalBytes(7);
  row.localProfileUUID = query.optionalText(8);
  row.localProfileTimestamp = query.number(9);
  row.localProfileAttributes = query.optionalBytes(10);
  row.seal = query.bytes(11);
  return row;
}

QNSyncSourceRow columnsOf(const QNSyncSource& source, ByteView statesHash) {
  QNSyncSourceRow row;
  row.oid = source.oid();
  row.legacy = source.legacySyncSource() ? 1 : 0;
  row.keychainIdentifier = source.keychainIdentifier();
  row.keychainType = source.keychainType();
  row.remoteProfileUUID = source.remoteProfileUUID();
  row.remoteProfileTimestamp = source.remoteProfileTimestamp();
  row.remoteProfileAttributes = source.remoteProfileAttributesEncryptedWithLocal();
  row.localProfileUUID = source.localProfileUUID();
  row.localProfileTimestamp = source.localProfileTimestamp();
  row.localProfileAttributes = source.localProfileAttributesEncryptedWithRemote();
  row.statesHash = statesHash;
  return row;
}

template <class Owned, class View>
std::optional<Owned> owned(const std::optional<View>& view) {
  return view ? std::optional<Owned>(std::in_place, view->begin(), view->end()) : std::nullopt;
}

std::shared_ptr<QNSyncSource> sourceOf(const QNSyncSourceRow& row) {
  auto source = std::make_shared<QNSyncSource>(QNExisting{row.oid});
  source->restoreKeychainIdentifier(owned<std::string>(row.keychainIdentifier), row.legacy != 0);
  source->setKeychainType(owned<std::string>(row.keychainType));
  source->setRemoteProfileUUID(owned<std::string>(row.remoteProfileUUID));
  source->setRemoteProfileTimestamp(row.remoteProfileTimestamp);
  source->setRemoteProfileAttributesEncryptedWithLocal(owned<Bytes>(row.remoteProfileAttributes));
  source->setLocalProfileUUID(owned<std::string>(row.localProfileUUID));
  source->setLocalProfileTimestamp(row.localProfileTimestamp);
  source->setLocalProfileAttributesEncryptedWithRemote(owned<Bytes>(row.localProfileAttributes));
  return source;
}

// States

std::shared_ptr<QNSyncState> stateOf(const QNSyncStateRow& row) {
  auto state = std::make_shared<QNSyncState>();
  state->setObjectType(static_cast<std::int32_t>(row.objectType));
  state->setObjectID(row.objectID);
  state->setObjectUUID(owned<std::string>(row.objectUUID));
  state->setSyncedAt(row.syncedAt);
  state->setSourceTimestamp(row.sourceTimestamp);
  state->setLocalTimestamp(row.localTimestamp);
  return state;
}

using StatesByKind = std::array<QNSyncSource::States, QNSyncStates::kKinds>;

/// In the order in which they are stored and sealed.
std::vector<QNSyncStateRow> rowsOf(const StatesByKind& states) {
  std::vector<QNSyncStateRow> rows;
  for (std::size_t kind = 0; kind < states.size(); ++kind) {
    for (const auto& state : states[kind]) {
      rows.push_back({kind + 1, static_cast<std::uint32_t>(state->objectType()), state->objectID(),
                      state->objectUUID(), state->syncedAt(), state->sourceTimestamp(),
                      state->localTimestamp()});
    }
  }
  return rows;
}

StatesByKind statesOf(const QNSyncSource& source) {
  return {source.itemStates(), source.folderStates(), source.attachmentStates()};
}

void setStates(const std::shared_ptr<QNSyncSource>& source, const QNSyncStates& stored) {
  StatesByKind states;
  for (const QNSyncStateRow& row : stored.rows()) {
    const auto& state = states[row.kind - 1].emplace_back(stateOf(row));
    state->setSource(source);
  }
  source->setItemStates(std::move(states[0]));
  source->setFolderStates(std::move(states[1]));
  source->setAttachmentStates(std::move(states[2]));
}

QNStoredChange::Kind kindOf(const QNItemRow& row) {
  if (isTombstone(row)) return QNStoredChange::Kind::deleted;
  return row.status == kTrashedItem ? QNStoredChange::Kind::trashed : QNStoredChange::Kind::saved;
}

/// A merge looks for the one state of an item.
bool haveAnItemTwice(const std::vector<QNSyncStateRow>& states) {
  std::set<std::string_view> uuids;
  return std::any_of(states.begin(), states.end(), [&uuids](const QNSyncStateRow& state) {
    return state.kind == QNSyncStates::kKindOfItems && state.objectUUID &&
           !uuids.insert(*state.objectUUID).second;
  });
}

bool areAfter(const std::vector<QNSyncStateRow>& states, std::uint64_t lastTx) {
  return std::any_of(states.begin(), states.end(), [lastTx](const QNSyncStateRow& state) {
    return state.kind == QNSyncStates::kKindOfItems && state.localTimestamp > lastTx;
  });
}

QNError alteredSource() {
  return storeError(QNStoreErrorCode::damaged, "a sync source or its states were altered");
}

/// Row ids are used again: whoever still holds a deleted source must not write over the one that
/// has its row now. Below 2^62, so that it can grow.
std::uint64_t firstRevision() {
  std::uint64_t revision = 0;
  for (const std::uint8_t byte : mr_randomData(sizeof revision)) revision = revision << 8 | byte;
  return (revision >> 2) + 1;
}

QNResult<std::shared_ptr<QNProfile>> vaultOfSource(const QNSyncSource& source) {
  auto vault = std::dynamic_pointer_cast<QNProfile>(source.profile());
  if (vault == nullptr) {
    return storeError(QNStoreErrorCode::notFound, "the source has no vault of a store");
  }
  return vault;
}

}  // namespace

// Changes

QNResult<QNChangeFeed> QNStore::changesSince(const std::shared_ptr<QNProfile>& vault,
                                             std::uint64_t txTimestamp) {
  return _database->read([&]() -> QNResult<QNChangeFeed> {
    const auto ledger = _database->ledgerNow(*vault);
    if (!ledger.ok()) return ledger.error();
    QNChangeFeed feed;
    feed.txTimestamp = ledger.value().lastTx;
    QNRowSealer sealer(*vault);
    // SQL compares numbers with their sign: no row has a time from 2^63 on, unless it was altered.
    QNQuery query = _database->file->query(kSelectChanges, vault->oid(),
                                           std::min<std::uint64_t>(txTimestamp, INT64_MAX));
    while (query.next()) {
      const QNItemRow row = itemRow(query);
      if (sealFits(sealer.seal(row), row.seal)) {
        feed.changes.push_back({std::string(row.uuid), kindOf(row), row.txTimestamp});
      } else {
        feed.damaged.emplace_back(row.uuid);
      }
    }
    return feed;
  });
}

// Loading

QNResult<std::vector<std::shared_ptr<QNSyncSource>>> QNStore::syncSources(
    const std::shared_ptr<QNProfile>& vault) {
  using Sources = std::vector<std::shared_ptr<QNSyncSource>>;
  return _database->read([&]() -> QNResult<Sources> {
    const auto ledger = _database->ledgerNow(*vault);
    if (!ledger.ok()) return ledger.error();
    std::erase_if(_database->sources, [](const auto& known) { return known.source.expired(); });
    Sources sources;
    QNQuery query = _database->file->query(kSelectSourcesOfVault, vault->oid());
    while (query.next()) {
      const QNSyncSourceRow row = syncSourceRow(query);
      const QNSyncStates states = QNSyncStates::read(*_database->file, row.oid);
      const auto source = _database->syncSourceOf(row, states, vault);
      if (source == nullptr) return alteredSource();
      setStates(source, states);
      source->didLoad();
      _database->sources.push_back({source, row.revision});
      sources.push_back(source);
    }
    return sources;
  });
}

std::shared_ptr<QNSyncSource> QNStore::Database::syncSourceOf(
    const QNSyncSourceRow& row, const QNSyncStates& states,
    const std::shared_ptr<QNProfile>& vault) {
  const auto hash = states.hash();
  QNSyncSourceRow whole = row;
  whole.statesHash = hash;
  if (!sealFits(QNRowSealer(*vault).seal(whole), row.seal)) return nullptr;
  auto source = sourceOf(row);
  source->setProfile(vault);
  return source;
}

QNResult<QNStore::Database::Partner> QNStore::Database::partnerAt(
    std::string_view place, std::string_view uuid, const std::shared_ptr<QNProfile>& vault) {
  const auto ledger = ledgerNow(*vault);
  if (!ledger.ok()) return ledger.error();
  std::erase_if(sources, [](const auto& known) { return known.source.expired(); });
  QNQuery query = file->query(kSelectSourcesOfVault, vault->oid());
  while (query.next()) {
    const QNSyncSourceRow row = syncSourceRow(query);
    if (row.keychainType != kTypeOfMerges || row.keychainIdentifier != place ||
        row.remoteProfileUUID != uuid) {
      continue;
    }
    QNSyncStates states = QNSyncStates::read(*file, row.oid);
    const auto source = syncSourceOf(row, states, vault);
    if (source == nullptr) return alteredSource();
    source->didLoad();
    sources.push_back({source, row.revision});
    return Partner{source, std::move(states)};
  }
  return Partner{};
}

// Saving

QNResult<QNDone> QNStore::saveSyncSource(const std::shared_ptr<QNSyncSource>& source) {
  return inTransaction([this, &source]() -> QNResult<QNDone> {
    const auto states = rowsOf(statesOf(*source));
    if (haveAnItemTwice(states)) {
      return storeError(QNStoreErrorCode::exists, "a source has two states of one item");
    }
    const auto vault = vaultOfSource(*source);
    if (!vault.ok()) return vault.error();
    const auto ledger = _database->ledgerNow(*vault.value());
    if (!ledger.ok()) return ledger.error();
    if (source->keychainType() == kTypeOfMerges && areAfter(states, ledger.value().lastTx)) {
      return storeError(QNStoreErrorCode::damaged, "a source remembers newer rows than there are");
    }
    const auto saved = _database->writeSyncSource(source, statesHash(states));
    if (!saved.ok()) return saved.error();
    // All of them anew: nobody knows which have changed.
    QNSyncStates::writeAll(*_database->file, source->oid(), states);
    return QNDone{};
  });
}

QNResult<QNDone> QNStore::Database::savePartner(Partner& partner) {
  const auto saved = writeSyncSource(partner.source, partner.states.hash());
  if (!saved.ok()) return saved.error();
  partner.states.writeChanges(*file, partner.source->oid());
  return QNDone{};
}

QNResult<QNDone> QNStore::Database::writeSyncSource(const std::shared_ptr<QNSyncSource>& source,
                                                    ByteView statesHash) {
  const auto vault = vaultOfSource(*source);
  if (!vault.ok()) return vault.error();
  const auto ledger = ledgerNow(*vault.value());
  if (!ledger.ok()) return ledger.error();
  source->willSave();
  const auto saved = source->hasOid() ? updateSyncSource(source, *vault.value(), statesHash)
                                      : insertSyncSource(source, *vault.value(), statesHash);
  if (!saved.ok()) return saved.error();
  afterCommit.emplace_back([source] { source->didSave(); });
  return QNDone{};
}

QNStore::Database::KnownSource* QNStore::Database::knownSource(const QNSyncSource& source) {
  const auto found = std::find_if(sources.begin(), sources.end(), [&source](const auto& known) {
    return known.source.lock().get() == &source;
  });
  return found == sources.end() ? nullptr : &*found;
}

QNResult<QNDone> QNStore::Database::insertSyncSource(const std::shared_ptr<QNSyncSource>& source,
                                                     QNProfile& vault, ByteView statesHash) {
  QNSyncSourceRow row = columnsOf(*source, statesHash);
  row.oid = file->number("SELECT coalesce(max(oid), 0) + 1 FROM sync_sources");
  row.revision = firstRevision();
  const auto seal = QNRowSealer(vault).seal(row);
  if (!seal) return storeError(QNStoreErrorCode::locked, "the vault's keys aren't there");
  file->change("INSERT INTO sync_sources (" QN_SYNC_SOURCE_COLUMNS
               ", vault_id) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13)",
               row.oid, row.revision, row.legacy, row.keychainIdentifier, row.keychainType,
               row.remoteProfileUUID, row.remoteProfileTimestamp, row.remoteProfileAttributes,
               row.localProfileUUID, row.localProfileTimestamp, row.localProfileAttributes,
               ByteView(seal->tag), vault.oid());
  source->_setOid(row.oid);
  sources.push_back({source, row.revision});
  undo.emplace_back([this, source] {
    source->_setOid(0);
    std::erase_if(sources, [&](const auto& known) { return known.source.lock() == source; });
  });
  return QNDone{};
}

QNResult<QNDone> QNStore::Database::updateSyncSource(const std::shared_ptr<QNSyncSource>& source,
                                                     QNProfile& vault, ByteView statesHash) {
  KnownSource* const known = knownSource(*source);
  if (known == nullptr) {
    return storeError(QNStoreErrorCode::notFound, "the source isn't in this store");
  }
  QNSyncSourceRow row = columnsOf(*source, statesHash);
  row.revision = known->revision + 1;
  const auto seal = QNRowSealer(vault).seal(row);
  if (!seal) return storeError(QNStoreErrorCode::locked, "the vault's keys aren't there");
  const std::uint64_t changed = file->change(
      "UPDATE sync_sources SET revision = ?2, legacy = ?3, keychain_identifier = ?4, "
      "keychain_type = ?5, remote_profile_uuid = ?6, remote_profile_timestamp = ?7, "
      "remote_profile_attributes = ?8, local_profile_uuid = ?9, local_profile_timestamp = ?10, "
      "local_profile_attributes = ?11, seal = ?12 WHERE oid = ?1 AND vault_id = ?13 AND "
      "revision = ?14",
      row.oid, row.revision, row.legacy, row.keychainIdentifier, row.keychainType,
      row.remoteProfileUUID, row.remoteProfileTimestamp, row.remoteProfileAttributes,
      row.localProfileUUID, row.localProfileTimestamp, row.localProfileAttributes,
      ByteView(seal->tag), vault.oid(), known->revision);
  if (changed != 1) {
    return storeError(QNStoreErrorCode::lostRace, "the source was saved by somebody else");
  }
  known->revision = row.revision;
  undo.emplace_back([this, source] { --knownSource(*source)->revision; });
  return QNDone{};
}

// Deleting

QNResult<QNDone> QNStore::deleteSyncSource(const std::shared_ptr<QNSyncSource>& source) {
  return inTransaction([this, &source] { return _database->deleteSyncSource(source); });
}

QNResult<QNDone> QNStore::Database::deleteSyncSource(const std::shared_ptr<QNSyncSource>& source) {
  const KnownSource* const known = knownSource(*source);
  if (known == nullptr || !source->hasOid()) {
    return storeError(QNStoreErrorCode::notFound, "the source isn't in this store");
  }
  const std::uint64_t removed = file->change(
      "DELETE FROM sync_sources WHERE oid = ?1 AND revision = ?2", source->oid(), known->revision);
  if (removed != 1) {
    return storeError(QNStoreErrorCode::lostRace, "the source was saved by somebody else");
  }
  afterCommit.emplace_back([this, source] {
    source->_setOid(0);
    std::erase_if(sources, [&](const auto& each) { return each.source.lock() == source; });
  });
  return QNDone{};
}

// Checking

bool QNStore::Database::remembersNewerRows(const QNSyncSourceRow& source, const QNProfile& vault,
                                           std::uint64_t lastTx) {
  if (source.keychainType != kTypeOfMerges) return false;
  QNQuery query = file->query(
      "SELECT 1 FROM sync_states LEFT JOIN items ON items.vault_id = ?1 AND "
      "items.uuid = sync_states.object_uuid WHERE source_id = ?2 AND kind = 1 AND "
      "local_timestamp > coalesce(items.tx_timestamp, ?3) LIMIT 1",
      vault.oid(), source.oid, lastTx);
  return query.next();
}

void QNStore::Database::checkSyncSources(const std::shared_ptr<QNProfile>& vault,
                                         QNCheckReport& report) {
  const auto ledger = ledgerNow(*vault);
  if (!ledger.ok()) return;  // SQLite's error stays with the connection
  QNQuery query = file->query(kSelectSourcesOfVault, vault->oid());
  while (query.next()) {
    const QNSyncSourceRow row = syncSourceRow(query);
    const std::string name = "sync source " + std::to_string(row.oid) + ": ";
    ++report.syncSourcesChecked;
    if (syncSourceOf(row, QNSyncStates::read(*file, row.oid), vault) == nullptr) {
      report.problems.push_back(name + "it or its states were altered");
    } else if (remembersNewerRows(row, *vault, ledger.value().lastTx)) {
      report.problems.push_back(name + "a merge with " +
                                std::string(row.keychainIdentifier.value_or("")) +
                                " remembers newer rows: put a whole backup in the place of this "
                                "file; or move the other one, and a merge joins all that differs");
    }
  }
}

}  // namespace quillon
