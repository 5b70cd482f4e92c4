#pragma once

#include <cstdint>
#include <memory>

#include "quillon/objects/QNDatabaseObject.h"

namespace quillon {

class QNItem;

/// How often a local vault's item was used, and when last, in whole seconds since 1970. A database
/// layer that keeps this in rows of its own derives from it: where the values lie is its business.
class QNItemUsage : public QNDatabaseObject {
 public:
  [[nodiscard]] std::string_view className() const override { return "QNItemUsage"; }
  [[nodiscard]] virtual std::uint64_t lastUsedAt() const = 0;
  virtual void setLastUsedAt(std::uint64_t seconds) = 0;
  [[nodiscard]] virtual std::int64_t usageCounter() const = 0;
  virtual void setUsageCounter(std::int64_t count) = 0;
  [[nodiscard]] virtual std::shared_ptr<QNItem> item() const = 0;
  virtual void setItem(const std::shared_ptr<QNItem>& item) = 0;

 protected:
  explicit QNItemUsage(QNNew) : QNDatabaseObject(initNew) {}
  explicit QNItemUsage(QNExisting existing) : QNDatabaseObject(existing) {}
};

}  // namespace quillon
