#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "quillon/objects/QNProtocols.h"
#include "quillon/platform/json/QNJson.h"

namespace quillon {

class QNSyncSource;

/// When one object was last brought into step with one partner, and how far both sides had come
/// then. It decides nothing. Times are whole seconds since 1970.
class QNSyncState final {
 public:
  /// "DESCRIPTION sourceOid=..., itemOid=..., ...", with numbers only.
  [[nodiscard]] std::string description() const;
  /// For diagnosis: numbers, identifiers and times as text, and the same of the source if there is
  /// one. The keys: QNSyncState.cpp.
  [[nodiscard]] JsonObject asDictionary() const;

  /// 1 item, 2 folder, 3 attachment; others are kept as they are.
  [[nodiscard]] std::int32_t objectType() const { return _objectType; }
  void setObjectType(std::int32_t type) { _objectType = type; }
  /// Null once the source is gone.
  [[nodiscard]] std::shared_ptr<QNSyncSource> source() const { return _source.lock(); }
  void setSource(const std::shared_ptr<QNSyncSource>& source) { _source = source; }
  [[nodiscard]] std::uint64_t objectID() const { return _objectID; }
  void setObjectID(std::uint64_t oid) { _objectID = oid; }
  [[nodiscard]] const std::optional<std::string>& objectUUID() const { return _objectUUID; }
  void setObjectUUID(std::optional<std::string> uuid) { _objectUUID = std::move(uuid); }
  [[nodiscard]] std::uint64_t syncedAt() const { return _syncedAt; }
  void setSyncedAt(std::uint64_t seconds) { _syncedAt = seconds; }
  /// The partner's change time at that sync.
  [[nodiscard]] std::uint64_t sourceTimestamp() const { return _sourceTimestamp; }
  void setSourceTimestamp(std::uint64_t timestamp) { _sourceTimestamp = timestamp; }
  /// The local transaction time at that sync.
  [[nodiscard]] std::uint64_t localTimestamp() const { return _localTimestamp; }
  void setLocalTimestamp(std::uint64_t timestamp) { _localTimestamp = timestamp; }

 private:
  std::int32_t _objectType = 0;
  std::weak_ptr<QNSyncSource> _source;
  std::uint64_t _objectID = 0;
  std::optional<std::string> _objectUUID;
  std::uint64_t _syncedAt = 0;
  std::uint64_t _sourceTimestamp = 0;
  std::uint64_t _localTimestamp = 0;
};

}  // namespace quillon
