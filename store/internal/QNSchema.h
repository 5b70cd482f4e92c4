#pragma once
// The tables, and the way from each older version to the next. What a column means:
// docs/formats.md, "store".

#include <span>

#include "store/internal/QNDatabase.h"

namespace quillon {

/// "QNLN", in the file's header: it tells our files from other programs'.
inline constexpr std::uint64_t kStoreApplicationId = 0x514E4C4E;

/// The step from version i to version i + 1 stands at index i. Steps are never changed once a
/// version has been published. A step runs on locked vaults: it can't make seals, so it may add
/// tables and columns, but must leave what a seal covers as it is.
using QNMigrations = std::span<const char* const>;
QNMigrations storeMigrations();

/// Makes a store of an empty file, or brings an older one forward, in one transaction. Errors:
/// notAStore, newerSchema, damaged, and what the file gives.
QNResult<QNDone> makeSchema(QNDatabase& database, QNMigrations migrations);
QNResult<QNDone> bringSchemaForward(QNDatabase& database, QNMigrations migrations);

}  // namespace quillon
