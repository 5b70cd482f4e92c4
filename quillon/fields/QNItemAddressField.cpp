#include "quillon/fields/QNItemAddressField.h"

namespace quillon {

QNItemAddressField::QNItemAddressField(std::optional<std::string_view> initWithIdentifier)
    : QNItemFieldOf(initWithIdentifier) {
  storeAddress();
}

// A value that is missing leaves the country of a fresh address.
void QNItemAddressField::didReadStored() {
  QNItemFieldOf::didReadStored();
  storeAddress();
}

void QNItemAddressField::storeAddress() {
  storeValue(Json(_value.storedForm(), jsonStorage()));
}

void QNItemAddressField::setValue(QNAddressValue value) {
  _value = std::move(value);
  storeAddress();
}

std::optional<QNSecret> QNItemAddressField::stringValue() const {
  return _value.stringValue();
}

std::optional<Json> QNItemAddressField::jsonValue() const {
  return rawValue().toJson();
}

void QNItemAddressField::setJsonValue(const Json* value) {
  if (value == nullptr) return;
  if (const JsonObject* const dictionary = value->if_object()) {
    return setValue(QNAddressValue(*dictionary));
  }
  JsonObject recovered(jsonStorage());
  if (const auto* const street = value->if_string()) {
    MRLogger::sharedLogger().error(
        DEBUG_DATABASE, className(),
        "Recovering from json type issue by putting string value into 'street'");
    setJsonText(recovered, "street", *street);
  } else if (value->is_null()) {
    reportWrongKind(
        "Error setting json value. Expecting a dictionary but received a <{}>. Replacing with "
        "empty string in street.",
        *value);
    setJsonText(recovered, "street", "");
  } else {
    return reportWrongKind("Error setting json value. Expecting a dictionary but received a <{}>.",
                           *value);
  }
  setValue(QNAddressValue(recovered));
}

void QNItemAddressField::setRawValue(const QNFieldValue& value) {
  if (const QNAddressValue* const address = value.address()) return setValue(*address);
  MRLogger::sharedLogger().assertion(DEBUG_DATABASE, className(), "Invalid rawValue type");
}

}  // namespace quillon
