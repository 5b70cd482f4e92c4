#pragma once

#include <cstdint>
#include <limits>

#include "quillon/fields/QNItemField.h"

namespace quillon {

/// A day, in seconds since 1970. 0 is a date: 1 January 1970.
class QNItemDateField final
    : public QNItemFieldOf<QNItemDateField, QNItemFieldKind::date, QNItemField> {
 public:
  static constexpr std::int64_t kNoDate = std::numeric_limits<std::int64_t>::min();
  using QNItemFieldOf::QNItemFieldOf;
  [[nodiscard]] std::int64_t value() const { return _value; }
  void setValue(std::int64_t seconds);

  /// The date in the user's language and time zone.
  [[nodiscard]] std::optional<QNSecret> stringValue() const override;
  [[nodiscard]] std::optional<Json> jsonValue() const override;
  void setJsonValue(const Json* value) override;
  [[nodiscard]] QNFieldValue rawValue() const override;
  [[nodiscard]] bool isEmpty() const override { return _value == kNoDate; }

 private:
  std::int64_t _value = kNoDate;
};

}  // namespace quillon
