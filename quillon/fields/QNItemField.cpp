#include "quillon/fields/QNItemField.h"

#include "quillon/fields/QNItemStringField.h"
#include "quillon/platform/data/MRData.h"
#include "quillon/platform/json/QNJsonEquality.h"
#include "quillon/platform/passwords/QNSPG.h"
#include "quillon/platform/text/QNText.h"

// Stored form, an element of a section's "fields":
//
//   "n"            text, identifier
//   "t"            text, title; always written
//   "k"            text, the kind
//   "a"            object, attributes; left out when empty
//   "inputTraits"  object; left out when empty
//   "v"            the value; left out when it is nothing, an empty object or an empty list
//
// Other members stay where they are.

namespace quillon {
namespace {

void reportAssertion(std::string_view object, MRLogText text) {
  MRLogger::sharedLogger().assertion(DEBUG_DATABASE, object, text);
}

bool isEmptyContainer(const Json& value) {
  return (value.is_object() && value.get_object().empty()) ||
         (value.is_array() && value.get_array().empty());
}

const JsonObject* filledObject(const JsonObject& stored, std::string_view key) {
  const Json* const found = mr_objectForKey(stored, key, JsonKind::object);
  return found == nullptr || found->get_object().empty() ? nullptr : &found->get_object();
}

// The members that stay keep their order.
void erase(JsonObject& object, std::string_view key) {
  const auto found = object.find(key);
  if (found != object.end()) object.stable_erase(found);
}

}  // namespace

QNItemField::QNItemField(const Start& start)
    : _stored(start.stored == nullptr ? JsonObject(jsonStorage())
                                      : JsonObject(*start.stored, jsonStorage())),
      _kind(start.kind) {
  if (start.stored != nullptr) return;
  _stored.reserve(6);  // every member that a field has
  // Into an empty object: nothing has to be looked for.
  setJsonText(_stored, kItemFieldIdentifier,
              start.identifier ? *start.identifier : std::string_view(uniqueFieldIdentifier()));
  setJsonText(_stored, kItemFieldTitle, "");
  if (_kind != QNItemFieldKind::unknown) {
    setJsonText(_stored, kItemFieldType, fieldClass().typeName);
  }
}

std::string_view QNItemField::typeName() {
  reportAssertion("QNItemField", "Must be overridden");
  return "";
}

std::string QNItemField::uniqueFieldIdentifier() {
  return mr_uuid();
}

// A text reads at its place, so that the usual field is changed in nothing.
void QNItemField::didReadStored() {
  if (!mr_validStringValueForKey(_stored, kItemFieldIdentifier)) {
    storeText(kItemFieldIdentifier, uniqueFieldIdentifier());
  }
  if (!mr_validStringValueForKey(_stored, kItemFieldTitle)) storeText(kItemFieldTitle, "");
  for (const std::string_view key : {kItemFieldAttrs, kItemFieldInputTraits}) {
    const Json* const found = _stored.if_contains(key);
    if (found != nullptr && (!found->is_object() || isEmptyContainer(*found))) erase(_stored, key);
  }
  const Json* const value = storedValue();
  const bool isValue = value != nullptr && !value->is_null() && !value->is_bool();
  if (value != nullptr && !isValue) erase(_stored, kItemFieldValue);
  setJsonValue(isValue ? value : nullptr);
}

// Members

std::optional<std::string_view> QNItemField::identifier() const {
  return mr_validStringValueForKey(_stored, kItemFieldIdentifier);
}

void QNItemField::setIdentifier(std::optional<std::string_view> identifier) {
  storeText(kItemFieldIdentifier, identifier);
}

std::string_view QNItemField::title() const {
  return mr_validStringValueForKey(_stored, kItemFieldTitle).value_or("");
}

void QNItemField::setTitle(std::optional<std::string_view> title) {
  storeText(kItemFieldTitle, title.value_or(""));
}

const JsonObject* QNItemField::attributes() const {
  return filledObject(_stored, kItemFieldAttrs);
}

void QNItemField::setAttributes(const JsonObject* attributes) {
  storeObject(kItemFieldAttrs, attributes);
}

const JsonObject* QNItemField::inputTraits() const {
  return filledObject(_stored, kItemFieldInputTraits);
}

void QNItemField::setInputTraits(const JsonObject* traits) {
  storeObject(kItemFieldInputTraits, traits);
}

std::optional<std::string_view> QNItemField::type() const {
  return fieldClass().typeName;
}

std::optional<std::string_view> QNItemField::attribute(std::string_view key) const {
  const JsonObject* const all = attributes();
  return all == nullptr ? std::nullopt : mr_validStringValueForKey(*all, key);
}

void QNItemField::storeText(std::string_view key, std::optional<std::string_view> text) {
  if (!text) return erase(_stored, key);
  if (mr_validStringValueForKey(_stored, key) != text) setJsonText(_stored, key, *text);
}

void QNItemField::storeObject(std::string_view key, const JsonObject* object) {
  if (object == nullptr || object->empty()) return erase(_stored, key);
  Json copy(*object, jsonStorage());  // the argument may lie in what is replaced
  _stored[key] = std::move(copy);
}

void QNItemField::storeValue(std::optional<Json> value) {
  if (!value || isEmptyContainer(*value)) return erase(_stored, kItemFieldValue);
  const Json* const present = storedValue();
  if (present == nullptr || !equalJson(*present, *value)) {
    _stored[kItemFieldValue] = std::move(*value);
  }
}

void QNItemField::storeAsItIs(const Json* value) {
  if (value == nullptr) return erase(_stored, kItemFieldValue);
  Json copy(*value, jsonStorage());  // the argument may lie in what is replaced
  _stored[kItemFieldValue] = std::move(copy);
}

void QNItemField::reportWrongKind(MRLogText text, const Json& value) const {
  MRLogger::sharedLogger().error(DEBUG_DATABASE, className(), text,
                                 boost::json::to_string(value.kind()));
}

// Values

std::optional<QNSecret> QNItemField::stringValue() const {
  reportAssertion(className(), "Must be implemented in subclass");
  return std::nullopt;
}

std::optional<Json> QNItemField::jsonValue() const {
  reportAssertion(className(), "Must be implemented in subclass");
  return std::nullopt;
}

void QNItemField::setJsonValue(const Json* /*value*/) {
  reportAssertion(className(), "Must be implemented in subclass");
}

void QNItemField::setRawValue(const QNFieldValue& value) {
  const auto json = value.toJson();
  setJsonValue(json ? &*json : nullptr);
}

QNSecret QNItemField::displayStringValue() const {
  auto text = stringValue();
  return text ? std::move(*text) : QNSecret();
}

std::optional<std::string_view> QNItemField::clipboardFilter() const {
  return attribute("clipboardFilter");
}

std::optional<std::string_view> QNItemField::placeholderValue() const {
  return attribute("placeholder");
}

std::optional<QNSecret> QNItemField::clipboardStringValue() const {
  auto text = stringValue();
  const std::string_view filter = clipboardFilter().value_or("");
  if (!text || filter.empty()) return text;
  // The text leaves its type character by character, into another secret.
  return charactersOfTextInSet(text->reveal(), filter);
}

// State

bool QNItemField::isGuarded() const {
  return attribute("guarded").value_or("").starts_with('y');
}

bool QNItemField::isMultiline() const {
  return identifier() == "reg_code" || attribute("multiline").value_or("").starts_with('y');
}

bool QNItemField::isEditable() const {
  const JsonObject* const all = attributes();
  return !isEmailField() || all == nullptr || !all->contains("provider");
}

bool QNItemField::isPasswordGeneratorDisabled() const {
  return attribute("generate") == "off";
}

bool QNItemField::shouldShowPasswordStrength() const {
  if (isPasswordGeneratorDisabled() || !isConcealedField() || isEmpty()) return false;
  const auto text = stringValue();
  // Looked at for its length only.
  return text && QNSPG::qualifiesForPasswordStrength(text->reveal());
}

bool QNItemField::isEmpty() const {
  const auto text = stringValue();
  return !text || text->empty();
}

bool QNItemField::hasSSHKeyAttributes() const {
  const JsonObject* const all = attributes();
  return all != nullptr && all->contains("sshKeyAttributes");
}

// Comparison

bool QNItemField::isEqual(const QNItemField& other) const {
  return type() == other.type() && rawValue().isEqual(other.rawValue()) &&
         identifier() == other.identifier() && title() == other.title();
}

bool QNItemField::isValueEqualTo(const QNFieldValue& value) const {
  return rawValue().isSameAs(value);
}

// Kind tests

bool QNItemField::hasType(QNItemFieldKind kind) const {
  return type() == QNItemFieldClass::of(kind).typeName;
}

bool QNItemField::hasIdentifierPrefix(std::string_view prefix) const {
  return identifier().value_or("").starts_with(prefix);
}

bool QNItemField::isStringField() const {
  return hasType(QNItemFieldKind::string);
}

bool QNItemField::isURLField() const {
  return hasType(QNItemFieldKind::url);
}

bool QNItemField::isEmailField() const {
  return hasType(QNItemFieldKind::email);
}

bool QNItemField::isPhoneField() const {
  return hasType(QNItemFieldKind::phone);
}

bool QNItemField::isAddressField() const {
  return hasType(QNItemFieldKind::address);
}

bool QNItemField::isMonthYearField() const {
  return hasType(QNItemFieldKind::monthYear);
}

bool QNItemField::isDateField() const {
  return hasType(QNItemFieldKind::date);
}

bool QNItemField::isCreditCardTypeField() const {
  return hasType(QNItemFieldKind::creditCardType);
}

bool QNItemField::isReferenceField() const {
  return hasType(QNItemFieldKind::reference);
}

bool QNItemField::isFileField() const {
  return type() == kItemFieldFileType;
}

bool QNItemField::isConcealedField() const {
  return hasType(QNItemFieldKind::concealed) &&
         !hasIdentifierPrefix(QNItemTOTPField::totpIdentifierPrefix());
}

bool QNItemField::isTOTPField() const {
  return hasType(QNItemFieldKind::totp) &&
         hasIdentifierPrefix(QNItemTOTPField::totpIdentifierPrefix());
}

bool QNItemField::isPasswordField() const {
  return hasType(QNItemFieldKind::password) || identifier() == "password" ||
         identifier() == "pop_password";
}

bool QNItemField::isMenuField() const {
  return hasType(QNItemFieldKind::menu) || hasType(QNItemFieldKind::gender);
}

bool QNItemField::isCreditCardNumberField() const {
  return isStringField() &&
         hasIdentifierPrefix(QNItemCreditCardNumberField::creditCardNumberIdentifierPrefix());
}

}  // namespace quillon
