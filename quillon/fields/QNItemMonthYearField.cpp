#include "quillon/fields/QNItemMonthYearField.h"

#include "quillon/platform/json/QNJsonReading.h"
#include "quillon/platform/text/QNFormat.h"
#include "quillon/platform/text/QNSecretText.h"

namespace quillon {
namespace {

// Below this a year has two digits. 99 itself hasn't: it prints as 99 and sorts before all years
// of four digits.
constexpr std::int16_t kFirstFullYear = 99;

}  // namespace

std::optional<QNSecret> QNItemMonthYearField::stringValue() const {
  if (_year == 0 || _month == 0) return std::nullopt;
  return secretOf(_year < kFirstFullYear ? formatted("{:02}/20{:02}", _month, _year)
                                         : formatted("{:02}/{:02}", _month, _year));
}

QNSecret QNItemMonthYearField::yearMonthFormat() const {
  return secretOf(_year < kFirstFullYear ? formatted("20{:02}{:02}", _year, _month)
                                         : formatted("{:02}{:02}", _year, _month));
}

std::int32_t QNItemMonthYearField::fullYear() const {
  return _year + (_year < kFirstFullYear ? 2000 : 0);
}

std::int64_t QNItemMonthYearField::sortValue() const {
  return std::int64_t{fullYear()} * 100 + _month;
}

std::int64_t QNItemMonthYearField::compare(const QNItemMonthYearField& other) const {
  return sortValue() - other.sortValue();
}

std::optional<Json> QNItemMonthYearField::jsonValue() const {
  return rawValue().toJson();
}

void QNItemMonthYearField::setJsonValue(const Json* value) {
  if (value == nullptr) return setMonthAndYear(0, 0);
  const auto number = integerOfJson(*value);
  if (!number) {
    reportWrongKind(
        "Error setting json value. Expecting a string or number but received a <{}>. Replacing "
        "with 197001.",
        *value);
    return setMonthAndYear(1, 1970);
  }
  // Both are cut to 16 bits, the year before the month is what is left.
  const auto year = static_cast<std::int16_t>(*number / 100);
  const auto rest = static_cast<std::uint64_t>(*number) - static_cast<std::uint64_t>(year * 100);
  setMonthAndYear(static_cast<std::int16_t>(rest), year);
}

QNFieldValue QNItemMonthYearField::rawValue() const {
  return number() == 0 ? QNFieldValue() : QNFieldValue::ofNumber(number());
}

void QNItemMonthYearField::setMonthAndYear(std::int16_t month, std::int16_t year) {
  _month = month;
  _year = year;
  storeValue(jsonValue());
}

}  // namespace quillon
