#include "quillon/fields/QNItemStringField.h"

#include <string>

namespace quillon {

std::optional<QNSecret> QNItemStringField::stringValue() const {
  const auto text = mr_validStringValueForKey(storedForm(), kItemFieldValue);
  return text ? std::optional<QNSecret>(*text) : std::nullopt;
}

std::optional<Json> QNItemStringField::jsonValue() const {
  return rawValue().toJson();
}

void QNItemStringField::setJsonValue(const Json* value) {
  if (value == nullptr) return storeText(kItemFieldValue, std::nullopt);
  if (const auto* const text = value->if_string()) return storeText(kItemFieldValue, *text);
  reportWrongKind(
      "Error setting json value. Expecting a string but received a <{}>. Replacing with empty "
      "string.",
      *value);
  storeText(kItemFieldValue, "");
}

QNFieldValue QNItemStringField::rawValue() const {
  return mr_validStringValueForKey(storedForm(), kItemFieldValue);
}

void QNItemStringField::setRawValue(const QNFieldValue& value) {
  if (value.isNothing() || value.isText()) {
    // Into the wiping resource.
    return storeText(kItemFieldValue, value.revealText());
  }
  MRLogger::sharedLogger().assertion(DEBUG_DATABASE, className(), "Invalid rawValue type");
}

bool QNItemStringField::isEmpty() const {
  return mr_validStringValueForKey(storedForm(), kItemFieldValue).value_or("").empty();
}

QNItemTOTPField::QNItemTOTPField(std::optional<std::string_view> initWithIdentifier)
    : QNItemFieldOf(initWithIdentifier.value_or("")) {
  drawIdentifier();
}

QNItemTOTPField::QNItemTOTPField(const QNStoredField& stored) : QNItemFieldOf(stored) {
  drawIdentifier();
}

void QNItemTOTPField::drawIdentifier() {
  const std::string drawn = std::string(totpIdentifierPrefix()) + uniqueFieldIdentifier();
  storeText(kItemFieldIdentifier, drawn);
}

std::optional<std::string_view> QNItemReferenceField::filterCategoryUUID() const {
  const JsonObject* const all = attributes();
  return all == nullptr
             ? std::nullopt
             : mr_validStringValueForKey(*all, QNItemReferenceFieldFilterCategoryAttributeKey);
}

}  // namespace quillon
