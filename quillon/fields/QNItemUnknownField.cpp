#include "quillon/fields/QNItemUnknownField.h"

#include "quillon/platform/json/QNJsonReading.h"

namespace quillon {

std::string_view QNItemUnknownField::typeName() {
  MRLogger::sharedLogger().assertion(
      DEBUG_DATABASE, "QNItemUnknownField",
      "This should not be called, since it would not be correct in this circumstance");
  return QNItemFieldClass::of(QNItemFieldKind::unknown).typeName;
}

QNItemUnknownField::QNItemUnknownField(std::optional<std::string_view> initWithType,
                                       std::optional<std::string_view> identifier)
    : QNItemFieldOf(identifier) {
  storeText(kItemFieldType, initWithType);
}

// Nothing is put right here.
void QNItemUnknownField::didReadStored() {
  if (!mr_validStringValueForKey(storedForm(), kItemFieldIdentifier)) {
    _identifierForNone = uniqueFieldIdentifier();
  }
  const Json* const value = storedValue();
  _valueReadsAsNothing = value != nullptr && (value->is_null() || value->is_bool());
}

std::optional<std::string_view> QNItemUnknownField::unknownTypeName() const {
  return mr_validStringValueForKey(storedForm(), kItemFieldType);
}

const Json* QNItemUnknownField::fieldJsonValue() const {
  return _valueReadsAsNothing ? nullptr : storedValue();
}

std::optional<std::string_view> QNItemUnknownField::identifier() const {
  if (_identifierForNone) return *_identifierForNone;
  return QNItemField::identifier();
}

void QNItemUnknownField::setIdentifier(std::optional<std::string_view> identifier) {
  QNItemField::setIdentifier(identifier);
  _identifierForNone.reset();
}

std::optional<QNSecret> QNItemUnknownField::stringValue() const {
  const Json* const value = fieldJsonValue();
  return value == nullptr ? std::nullopt : descriptionOfJson(*value);
}

std::optional<Json> QNItemUnknownField::jsonValue() const {
  const Json* const value = fieldJsonValue();
  return value == nullptr ? std::nullopt : std::optional<Json>(mr_deepMutableCopy(*value));
}

void QNItemUnknownField::setJsonValue(const Json* value) {
  storeAsItIs(value);
  _valueReadsAsNothing = false;
}

}  // namespace quillon
