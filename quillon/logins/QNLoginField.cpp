#include "quillon/logins/QNLoginField.h"

#include <algorithm>
#include <array>

#include "quillon/platform/json/QNJsonReading.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

// Kinds whose values a person entered or chose; the others hold what the page made of them.
constexpr std::array<std::string_view, 7> kConflictingTypes = {
    QNLoginFieldTypeText,   QNLoginFieldTypePassword, QNLoginFieldTypeEmail,   QNLoginFieldTypeURL,
    QNLoginFieldTypeNumber, QNLoginFieldTypeRadio,    QNLoginFieldTypeTextArea};

// The text that a stored value reads as: a form may have been saved with numbers as values.
std::optional<QNSecret> descriptionOf(const Json* value) {
  return value == nullptr ? std::nullopt : descriptionOfJson(*value);
}

// For members that are no secret.
std::optional<std::string> plainDescriptionOf(const Json* value) {
  const auto text = descriptionOf(value);
  return text ? std::optional<std::string>(text->reveal()) : std::nullopt;
}

}  // namespace

QNLoginField::QNLoginField() : _field(jsonStorage()) {}

QNLoginField::QNLoginField(const JsonObject& initWithDictionary)
    : _field(initWithDictionary, jsonStorage()) {}

QNLoginField::QNLoginField(std::span<const Json> initWithObjects,
                           std::span<const std::string_view> forKeys)
    : QNLoginField() {
  const std::size_t count = std::min(initWithObjects.size(), forKeys.size());
  for (std::size_t i = 0; i < count; ++i) _field[forKeys[i]] = initWithObjects[i];
}

std::vector<std::string_view> QNLoginField::keyEnumerator() const {
  std::vector<std::string_view> keys;
  keys.reserve(_field.size());
  for (const auto& member : _field) keys.emplace_back(member.key());
  return keys;
}

std::optional<QNSecret> QNLoginField::value() const {
  return descriptionOf(objectForKey(QNLoginFieldKeyValue));
}

std::optional<std::string> QNLoginField::name() const {
  return plainDescriptionOf(objectForKey(QNLoginFieldKeyName));
}

std::optional<std::string> QNLoginField::designation() const {
  return plainDescriptionOf(objectForKey(QNLoginFieldKeyDesignation));
}

std::string QNLoginField::type() const {
  auto stored = plainDescriptionOf(objectForKey(QNLoginFieldKeyType));
  return stored && !stored->empty() ? *std::move(stored) : std::string(QNLoginFieldTypeText);
}

const Json* QNLoginField::htmlId() const {
  const Json* const stored = objectForKey(QNLoginFieldKeyHtmlId);
  return stored != nullptr && stored->is_null() ? nullptr : stored;
}

bool QNLoginField::hasValue(std::string_view value) const {
  const auto stored = this->value();
  return stored && stored->equals(value);
}

void QNLoginField::setName(std::string_view name) {
  setJsonText(_field, QNLoginFieldKeyName, name);
}

void QNLoginField::setType(std::string_view type) {
  setJsonText(_field, QNLoginFieldKeyType, type);
}

void QNLoginField::setValue(std::optional<std::string_view> value) {
  if (value) {
    setJsonText(_field, QNLoginFieldKeyValue, *value);
  } else {
    remove(QNLoginFieldKeyValue);
  }
}

void QNLoginField::setDesignation(std::optional<std::string_view> designation) {
  if (!designation || designation->empty()) return _removeDesignation();
  setJsonText(_field, QNLoginFieldKeyDesignation, *designation);
}

void QNLoginField::_removeDesignation() {
  remove(QNLoginFieldKeyDesignation);
}

// The members that stay keep their order, as the browser wrote them.
void QNLoginField::remove(std::string_view key) {
  const auto found = _field.find(key);
  if (found != _field.end()) _field.stable_erase(found);
}

bool QNLoginField::designatedAsUsername() const {
  return designation() == QNLoginFieldDesignationUsername;
}

bool QNLoginField::designatedAsPassword() const {
  return designation() == QNLoginFieldDesignationPassword;
}

bool QNLoginField::canConflict() const {
  const std::string own = type();
  for (const std::string_view conflicting : kConflictingTypes) {
    if (own == conflicting) return true;
  }
  return false;
}

bool QNLoginField::isConcealed() const {
  return type() == QNLoginFieldTypePassword;
}

bool QNLoginField::isButton() const {
  return type() == QNLoginFieldTypeButton;
}

bool QNLoginField::isCheckbox() const {
  return type() == QNLoginFieldTypeCheckbox;
}

bool QNLoginField::isRadio() const {
  return type() == QNLoginFieldTypeRadio;
}

bool QNLoginField::isTextArea() const {
  return type() == QNLoginFieldTypeTextArea;
}

std::optional<QNSecret> QNLoginField::valueLimitedToLength(std::size_t length) const {
  auto whole = value();
  if (!whole) return std::nullopt;
  const std::string_view text = whole->reveal();
  const std::size_t kept = bytesOfCutToLength(text, length);
  return kept == text.size() ? std::move(whole) : std::optional<QNSecret>(text.substr(0, kept));
}

}  // namespace quillon
