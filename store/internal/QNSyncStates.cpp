#include "store/internal/QNSyncStates.h"

namespace quillon {

namespace {

QNSyncStateRow stateRow(const QNQuery& query) {
  QNSyncStateRow row;
  row.kind = query.number(0);
  row.objectType = query.number(1);
  row.objectID = query.number(2);
  row.objectUUID = query.optionalText(3);
  row.syncedAt = query.number(4);
  row.sourceTimestamp = query.number(5);
  row.localTimestamp = query.number(6);
  return row;
}

void writeState(QNDatabase& file, std::uint64_t sourceOid, std::uint64_t place,
                const QNSyncStateRow& row) {
  file.change(
      "INSERT INTO sync_states (source_id, kind, place, object_type, object_id, object_uuid, "
      "synced_at, source_timestamp, local_timestamp) "
      "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9) ON CONFLICT (source_id, kind, place) DO UPDATE "
      "SET object_type = ?4, object_id = ?5, object_uuid = ?6, synced_at = ?7, "
      "source_timestamp = ?8, local_timestamp = ?9",
      sourceOid, row.kind, place, row.objectType, row.objectID, row.objectUUID, row.syncedAt,
      row.sourceTimestamp, row.localTimestamp);
}

}  // namespace

QNSyncStates QNSyncStates::read(QNDatabase& file, std::uint64_t sourceOid) {
  QNQuery query = file.query(
      "SELECT kind, object_type, object_id, object_uuid, synced_at, source_timestamp, "
      "local_timestamp, place FROM sync_states WHERE source_id = ?1 ORDER BY kind, place",
      sourceOid);
  QNSyncStates states;
  while (query.next()) {
    QNSyncStateRow row = stateRow(query);
    // A kind that nobody knows isn't read, and so the seal doesn't fit.
    if (row.kind < 1 || row.kind > kKinds) continue;
    if (row.objectUUID) row.objectUUID = states.keep(*row.objectUUID);
    if (row.kind == kKindOfItems) {
      if (row.objectUUID) states._itemIndex.insert_or_assign(*row.objectUUID, states._items);
      ++states._items;
    }
    states._rows.push_back(row);
    states._places.push_back(query.number(7));
  }
  return states;
}

void QNSyncStates::writeAll(QNDatabase& file, std::uint64_t sourceOid,
                            std::span<const QNSyncStateRow> rows) {
  file.change("DELETE FROM sync_states WHERE source_id = ?1", sourceOid);
  std::uint64_t place = 0;
  for (const QNSyncStateRow& row : rows) writeState(file, sourceOid, ++place, row);
}

const QNSyncStateRow* QNSyncStates::itemState(std::string_view uuid) const {
  const auto found = _itemIndex.find(uuid);
  return found == _itemIndex.end() ? nullptr : &_rows[found->second];
}

void QNSyncStates::setItemState(std::string_view uuid, QNSyncStateRow state) {
  const auto known = _itemIndex.find(uuid);
  const std::size_t index = known == _itemIndex.end() ? _items : known->second;
  state.kind = kKindOfItems;
  if (known != _itemIndex.end()) {
    state.objectUUID = known->first;
    _rows[index] = state;
  } else {
    state.objectUUID = keep(uuid);
    const auto offset = static_cast<std::ptrdiff_t>(index);
    _places.insert(_places.begin() + offset, index == 0 ? 1 : _places[index - 1] + 1);
    _rows.insert(_rows.begin() + offset, state);
    _itemIndex.emplace(*state.objectUUID, index);
    ++_items;
  }
  _changed.insert(index);
}

void QNSyncStates::writeChanges(QNDatabase& file, std::uint64_t sourceOid) {
  for (const std::size_t index : _changed) {
    writeState(file, sourceOid, _places[index], _rows[index]);
  }
  _changed.clear();
}

}  // namespace quillon
