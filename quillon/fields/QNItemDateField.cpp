#include "quillon/fields/QNItemDateField.h"

#include "quillon/platform/json/QNJsonReading.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {

void QNItemDateField::setValue(std::int64_t seconds) {
  _value = seconds;
  storeValue(jsonValue());
}

std::optional<QNSecret> QNItemDateField::stringValue() const {
  return _value == kNoDate ? std::nullopt : std::optional<QNSecret>(qn_formatDate(_value));
}

std::optional<Json> QNItemDateField::jsonValue() const {
  return rawValue().toJson();
}

void QNItemDateField::setJsonValue(const Json* value) {
  if (value == nullptr) return setValue(kNoDate);
  const auto seconds = integerOfJson(*value);
  if (!seconds) {
    // The text says 0; no date is what comes of it.
    reportWrongKind(
        "Error setting json value. Expecting a string or number but received a <{}>. Replacing "
        "with 0.",
        *value);
  }
  setValue(seconds.value_or(kNoDate));
}

QNFieldValue QNItemDateField::rawValue() const {
  return _value == kNoDate ? QNFieldValue() : QNFieldValue::ofNumber(_value);
}

}  // namespace quillon
