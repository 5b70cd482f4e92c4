#pragma once

#include <cstdint>

#include "quillon/fields/QNItemField.h"

namespace quillon {

/// A month of a year. Old data hold years of two digits: a year below 99 means one from 2000 on.
/// 99 itself is taken as it stands.
class QNItemMonthYearField final
    : public QNItemFieldOf<QNItemMonthYearField, QNItemFieldKind::monthYear, QNItemField> {
 public:
  using QNItemFieldOf::QNItemFieldOf;
  [[nodiscard]] std::int16_t month() const { return _month; }
  [[nodiscard]] std::int16_t year() const { return _year; }
  /// year() with the century that old data leave out.
  [[nodiscard]] std::int32_t fullYear() const;
  void setMonth(std::int16_t month) { setMonthAndYear(month, _year); }
  void setYear(std::int16_t year) { setMonthAndYear(_month, year); }

  /// "07/2024"; nothing without a month or a year.
  [[nodiscard]] std::optional<QNSecret> stringValue() const override;
  /// "202407".
  [[nodiscard]] QNSecret yearMonthFormat() const;
  /// Above 0 if this one is later, below if it is earlier.
  [[nodiscard]] std::int64_t compare(const QNItemMonthYearField& other) const;

  /// Year * 100 + month; nothing if that is 0.
  [[nodiscard]] std::optional<Json> jsonValue() const override;
  void setJsonValue(const Json* value) override;
  [[nodiscard]] QNFieldValue rawValue() const override;

 private:
  void setMonthAndYear(std::int16_t month, std::int16_t year);
  [[nodiscard]] std::int64_t number() const { return std::int64_t{_year} * 100 + _month; }
  [[nodiscard]] std::int64_t sortValue() const;

  std::int16_t _month = 0;
  std::int16_t _year = 0;
};

}  // namespace quillon
