#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include "quillon/platform/memory/QNSecret.h"

namespace quillon {

/// One retired password of an item's history: `retiredAt` is whole seconds since 1970. Stored as
/// "time" and "value" in details "passwordHistory".
class QNPreviouslyUsedPassword final {
 public:
  QNPreviouslyUsedPassword(std::optional<QNSecret> value, std::uint64_t retiredAt)
      : _value(std::move(value)), _retiredAt(retiredAt) {}
  /// Nothing for an entry that was stored without a value; such a one is not written back.
  [[nodiscard]] const std::optional<QNSecret>& value() const { return _value; }
  [[nodiscard]] std::uint64_t retiredAt() const { return _retiredAt; }
  [[nodiscard]] std::chrono::sys_seconds retiredAtAsDate() const {
    return std::chrono::sys_seconds(std::chrono::seconds(_retiredAt));
  }
  [[nodiscard]] QNPreviouslyUsedPassword clone() const;
  [[nodiscard]] bool isEqualToPreviouslyUsedPassword(const QNPreviouslyUsedPassword& other) const;
  [[nodiscard]] bool isEqual(const QNPreviouslyUsedPassword& other) const {
    return isEqualToPreviouslyUsedPassword(other);
  }
  [[nodiscard]] std::size_t hash() const;

 private:
  std::optional<QNSecret> _value;
  std::uint64_t _retiredAt = 0;
};

}  // namespace quillon
