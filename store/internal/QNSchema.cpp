#include "store/internal/QNSchema.h"

#include <fmt/format.h>

#include <array>

#include "store/QNStoreError.h"

namespace quillon {

namespace {

// A list reads `items` alone, and every row of it: what a list doesn't show stands elsewhere, and
// the overview comes last, behind what is read without it.
constexpr const char* kVersion1 = R"sql(
CREATE TABLE vaults (
  oid INTEGER PRIMARY KEY,
  uuid TEXT NOT NULL UNIQUE,
  name TEXT NOT NULL UNIQUE,
  revision INTEGER NOT NULL,
  status INTEGER NOT NULL,
  created_at INTEGER NOT NULL,
  updated_at INTEGER NOT NULL,
  master_key BLOB NOT NULL,
  overview_key BLOB NOT NULL,
  salt BLOB NOT NULL,
  iterations INTEGER NOT NULL,
  hint TEXT,
  last_updated_by TEXT,
  icon BLOB,
  color TEXT,
  attributes BLOB,
  seal BLOB NOT NULL
) STRICT;

CREATE TABLE ledgers (
  vault_id INTEGER PRIMARY KEY REFERENCES vaults (oid) ON DELETE CASCADE,
  content BLOB NOT NULL
) STRICT;

CREATE TABLE categories (
  oid INTEGER PRIMARY KEY,
  vault_id INTEGER NOT NULL REFERENCES vaults (oid) ON DELETE CASCADE,
  uuid TEXT NOT NULL,
  display_order INTEGER NOT NULL,
  singular_name TEXT,
  plural_name TEXT,
  list_icon_name TEXT,
  detail_icon_name TEXT,
  UNIQUE (vault_id, uuid)
) STRICT;

CREATE TABLE items (
  oid INTEGER PRIMARY KEY,
  vault_id INTEGER NOT NULL REFERENCES vaults (oid) ON DELETE CASCADE,
  status INTEGER NOT NULL,
  fave_index INTEGER NOT NULL,
  created_at INTEGER NOT NULL,
  updated_at INTEGER NOT NULL,
  tx_timestamp INTEGER NOT NULL,
  times_used INTEGER NOT NULL,
  last_used INTEGER NOT NULL,
  inbox INTEGER NOT NULL,
  attachments INTEGER NOT NULL,
  category_uuid TEXT NOT NULL,
  scope TEXT,
  folder_uuid TEXT,
  uuid TEXT NOT NULL,
  body_hash BLOB NOT NULL,
  seal BLOB NOT NULL,
  overview BLOB NOT NULL,
  UNIQUE (vault_id, uuid)
) STRICT;

CREATE TABLE details (
  item_id INTEGER PRIMARY KEY REFERENCES items (oid) ON DELETE CASCADE,
  wrapped_key BLOB NOT NULL,
  details BLOB NOT NULL
) STRICT;

CREATE TABLE urls (
  oid INTEGER PRIMARY KEY,
  item_id INTEGER NOT NULL REFERENCES items (oid) ON DELETE CASCADE,
  display_order INTEGER NOT NULL,
  hash_version INTEGER NOT NULL,
  naked_hash TEXT,
  derived_hash TEXT,
  overview BLOB NOT NULL
) STRICT;
CREATE INDEX urls_of_item ON urls (item_id);
CREATE INDEX urls_by_naked_hash ON urls (naked_hash);
CREATE INDEX urls_by_derived_hash ON urls (derived_hash);
)sql";

// A deleted item keeps its row, and so what changed since a moment can be told from `items` alone.
// The states of a source are read and written as one: their place is all the key that they need.
// Of a hash, the indexes hold a start that tells hosts apart: whole ones cost an import some
// percent.
constexpr const char* kVersion2 = R"sql(
DROP INDEX urls_by_naked_hash;
DROP INDEX urls_by_derived_hash;
CREATE INDEX urls_by_naked_hash ON urls (substr(naked_hash, 1, 12));
CREATE INDEX urls_by_derived_hash ON urls (substr(derived_hash, 1, 12));

CREATE INDEX items_by_tx_timestamp ON items (vault_id, tx_timestamp);

CREATE TABLE sync_sources (
  oid INTEGER PRIMARY KEY,
  vault_id INTEGER NOT NULL REFERENCES vaults (oid) ON DELETE CASCADE,
  revision INTEGER NOT NULL,
  legacy INTEGER NOT NULL,
  keychain_identifier TEXT,
  keychain_type TEXT,
  remote_profile_uuid TEXT,
  remote_profile_timestamp INTEGER NOT NULL,
  remote_profile_attributes BLOB,
  local_profile_uuid TEXT,
  local_profile_timestamp INTEGER NOT NULL,
  local_profile_attributes BLOB,
  seal BLOB NOT NULL
) STRICT;
CREATE INDEX sync_sources_of_vault ON sync_sources (vault_id);

CREATE TABLE sync_states (
  source_id INTEGER NOT NULL REFERENCES sync_sources (oid) ON DELETE CASCADE,
  kind INTEGER NOT NULL,
  place INTEGER NOT NULL,
  object_type INTEGER NOT NULL,
  object_id INTEGER NOT NULL,
  object_uuid TEXT,
  synced_at INTEGER NOT NULL,
  source_timestamp INTEGER NOT NULL,
  local_timestamp INTEGER NOT NULL,
  PRIMARY KEY (source_id, kind, place)
) STRICT, WITHOUT ROWID;
)sql";

// A folder's items are found and counted by the index alone, which has nothing of an item without
// a folder. A count that stood in a row could be wrong; this one can't.
constexpr const char* kVersion3 = R"sql(
CREATE TABLE folders (
  oid INTEGER PRIMARY KEY,
  vault_id INTEGER NOT NULL REFERENCES vaults (oid) ON DELETE CASCADE,
  status INTEGER NOT NULL,
  created_at INTEGER NOT NULL,
  updated_at INTEGER NOT NULL,
  tx_timestamp INTEGER NOT NULL,
  smart INTEGER NOT NULL,
  display_order INTEGER NOT NULL,
  parent_uuid TEXT,
  uuid TEXT NOT NULL,
  icon BLOB,
  seal BLOB NOT NULL,
  overview BLOB NOT NULL,
  UNIQUE (vault_id, uuid)
) STRICT;

CREATE INDEX items_by_folder ON items (vault_id, folder_uuid, status)
  WHERE folder_uuid IS NOT NULL;
)sql";

constexpr std::array<const char*, 3> kMigrations = {kVersion1, kVersion2, kVersion3};

void runSteps(QNDatabase& database, QNMigrations steps, std::size_t version) {
  for (const char* step : steps) database.run(step);
  database.run(fmt::format("PRAGMA application_id = {}; PRAGMA user_version = {}",
                           kStoreApplicationId, version));
}

}  // namespace

QNMigrations storeMigrations() {
  return kMigrations;
}

QNResult<QNDone> makeSchema(QNDatabase& database, QNMigrations migrations) {
  QNTransaction transaction(database, QNTransaction::Kind::write);
  runSteps(database, migrations, migrations.size());
  return transaction.commit();
}

QNResult<QNDone> bringSchemaForward(QNDatabase& database, QNMigrations migrations) {
  if (database.number("PRAGMA application_id") != kStoreApplicationId && !database.failed()) {
    return storeError(QNStoreErrorCode::notAStore, "the file belongs to another program");
  }
  const std::uint64_t version = database.number("PRAGMA user_version");
  if (database.failed()) return *database.takeError();
  if (version > migrations.size()) {
    return storeError(
        QNStoreErrorCode::newerSchema,
        fmt::format("the file has version {}, known is {}", version, migrations.size()));
  }
  if (version == 0) return storeError(QNStoreErrorCode::damaged, "the file has no version");
  if (version == migrations.size()) return QNDone{};
  QNTransaction transaction(database, QNTransaction::Kind::write);
  // Another process may have done it while this one waited.
  const std::uint64_t from = database.number("PRAGMA user_version");
  if (from < migrations.size()) runSteps(database, migrations.subspan(from), migrations.size());
  return transaction.commit();
}

}  // namespace quillon
