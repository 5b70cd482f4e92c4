#pragma once
// The protocols of persisted objects: what a database layer and a synchronisation layer may do
// with any of them.

#include <cstdint>
#include <memory>

#include "quillon/objects/QNTags.h"

namespace quillon {

class QNDatabaseObject;

/// A row identity. 0 means no row yet.
class MRDatabaseObject {
 public:
  virtual ~MRDatabaseObject() = default;
  virtual void _setOid(std::uint64_t oid) = 0;
  [[nodiscard]] virtual std::uint64_t oid() const = 0;
  [[nodiscard]] virtual bool hasOid() const = 0;
};

/// A place among its like.
class QNDisplayOrderable {
 public:
  virtual ~QNDisplayOrderable() = default;
  [[nodiscard]] virtual std::uint64_t displayOrder() const = 0;
  virtual void setDisplayOrder(std::uint64_t order) = 0;
};

/// What `objectType` answers.
enum class QNObjectType : std::uint32_t { item = 1, folder = 2, attachment = 3 };

/// What synchronisation may do with any synchronised object.
class QNSyncable {
 public:
  virtual ~QNSyncable() = default;
  virtual std::shared_ptr<QNDatabaseObject> mergeWithConflict(
      const std::shared_ptr<QNDatabaseObject>& other) = 0;
  virtual std::shared_ptr<QNDatabaseObject> objectByReplacingWith(
      const std::shared_ptr<QNDatabaseObject>& other) = 0;
  virtual void markRowDirty() = 0;
  virtual void willSave() = 0;
  virtual void didSave() = 0;
  virtual void copyOidFrom(const std::shared_ptr<QNDatabaseObject>& other) = 0;
  [[nodiscard]] virtual bool authentic() const = 0;
  virtual void setAuthentic(bool authentic) = 0;
  [[nodiscard]] virtual bool dirtyRow() const = 0;
  [[nodiscard]] virtual bool trashed() const = 0;
  virtual void setTrashed(bool trashed) = 0;
  [[nodiscard]] virtual QNObjectType objectType() const = 0;
  [[nodiscard]] virtual std::uint64_t oid() const = 0;
  [[nodiscard]] virtual QNSharedString uuid() const = 0;
  virtual void setUuid(QNSharedString uuid) = 0;
  [[nodiscard]] virtual std::uint64_t updatedAt() const = 0;
  virtual void setUpdatedAt(std::uint64_t seconds) = 0;
  [[nodiscard]] virtual std::uint64_t txTimestamp() const = 0;
  virtual void setTxTimestamp(std::uint64_t timestamp) = 0;
  [[nodiscard]] virtual bool isTombstone() const = 0;
  [[nodiscard]] virtual bool isFolder() const = 0;
};

}  // namespace quillon
