#pragma once

#include <string_view>

#include "quillon/platform/errors/QNError.h"

namespace quillon {

inline constexpr std::string_view QNStoreErrorDomain = "QNStoreErrorDomain";

/// Codes of QNStoreErrorDomain. Scripts see them; they never change.
enum class QNStoreErrorCode : std::int64_t {
  notFound = 1,          // no such file, vault or item
  exists = 2,            // the file, the vault's name or the item's uuid is there already
  notAStore = 3,         // a folder, an empty file, a file of another program
  newerSchema = 4,       // written by a newer version
  damaged = 5,           // SQLite or a seal says so
  busy = 6,              // another process holds the write lock
  diskFull = 7,          // nothing of the transaction was written
  notWritable = 8,       // a read-only file, folder or medium
  lostRace = 9,          // somebody else saved this row since it was read; nothing was overwritten
  locked = 10,           // the vault must be unlocked for this
  unreadableItem = 11,   // an item or vault that couldn't be opened again isn't saved
  inputOutput = 12,      // the system failed to read or write
  sameFile = 13,         // a store was to be merged with itself
  misplacedFolder = 14,  // a folder would lie in itself, too deep, or in one that isn't there
};

QNError storeError(QNStoreErrorCode code, std::string_view message);
[[nodiscard]] bool isStoreError(const QNError& error, QNStoreErrorCode code);

}  // namespace quillon
