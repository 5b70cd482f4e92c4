#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "quillon/fields/QNFieldValue.h"
#include "quillon/fields/QNItemFieldClass.h"
#include "quillon/fields/QNItemFieldConstants.h"
#include "quillon/platform/json/QNJson.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {

class QNItemField;
using QNItemFieldRef = std::shared_ptr<QNItemField>;

/// An element of a stored section's "fields", to be copied. Only QNItemField::fieldFromStored()
/// makes one: a field that is made of it must be put right afterwards.
class QNStoredField final {
 public:
  [[nodiscard]] const JsonObject& element() const { return _element; }

 private:
  friend class QNItemField;
  explicit QNStoredField(const JsonObject& element) : _element(element) {}
  const JsonObject& _element;
};

/// One typed, titled value in a section of an item. It is a view on a JSON object in the wiping
/// resource, the very one that is stored: members that it doesn't know stay, and so does their
/// order. Not locked: the lock of the item that holds it guards it.
class QNItemField {
 public:
  QNItemField(const QNItemField&) = delete;
  QNItemField& operator=(const QNItemField&) = delete;
  virtual ~QNItemField() = default;

  // Class operations. Each class answers for itself; here an assertion log and "", and "n/a".
  static std::string_view typeName();
  static std::string localizedTypeName() { return "n/a"; }
  [[nodiscard]] const QNItemFieldClass& fieldClass() const { return QNItemFieldClass::of(_kind); }
  [[nodiscard]] std::string_view className() const { return fieldClass().name; }
  static std::string uniqueFieldIdentifier();

  // Making: QNItemField+Factory.cpp
  /// Never null: what isn't known becomes an unknown field, which keeps its type. No identifier:
  /// a fresh one.
  static QNItemFieldRef fieldWithType(std::optional<std::string_view> type,
                                      std::optional<std::string_view> identifier);
  /// The older factory: a fresh identifier, fewer kinds, and null for any other.
  static QNItemFieldRef fieldWithType(std::string_view type);
  /// The field that a section holds as `stored`. Bad values are logged and replaced.
  static QNItemFieldRef fieldFromStored(const JsonObject& stored);
  /// A field for the section of conflicts: same type, title and value, and never guarded, so that
  /// it can be deleted. No identifier: a fresh one.
  [[nodiscard]] QNItemFieldRef conflictCopyWithUniqueFieldIdentifierForConflict(
      std::optional<std::string_view> identifier) const;

  // Members. The views are valid until the field changes.
  [[nodiscard]] virtual std::optional<std::string_view> identifier() const;
  virtual void setIdentifier(std::optional<std::string_view> identifier);
  void repairMissingIdentifier(std::optional<std::string_view> identifier) {
    setIdentifier(identifier);
  }
  /// "" if there is none.
  [[nodiscard]] std::string_view title() const;
  void setTitle(std::optional<std::string_view> title);
  /// Null if there are none, and for an empty object.
  [[nodiscard]] const JsonObject* attributes() const;
  void setAttributes(const JsonObject* attributes);
  [[nodiscard]] const JsonObject* inputTraits() const;
  void setInputTraits(const JsonObject* traits);
  /// The value of "k"; nothing for an unknown field without one.
  [[nodiscard]] virtual std::optional<std::string_view> type() const;
  /// The object that is stored.
  [[nodiscard]] const JsonObject& storedForm() const { return _stored; }

  // Values. Here the three marked ones give an assertion log and nothing.
  [[nodiscard]] virtual std::optional<QNSecret> stringValue() const;  // marked
  [[nodiscard]] QNSecret displayStringValue() const;
  [[nodiscard]] std::optional<QNSecret> clipboardStringValue() const;
  [[nodiscard]] std::optional<std::string_view> clipboardFilter() const;
  [[nodiscard]] std::optional<std::string_view> placeholderValue() const;
  /// A copy in the wiping resource; a short text lies inside of the value itself, and is yours to
  /// keep off the stack. A JSON null is a value; nothing is none.
  [[nodiscard]] virtual std::optional<Json> jsonValue() const;  // marked
  /// Null for none. A value that doesn't fit is logged and replaced.
  virtual void setJsonValue(const Json* value);  // marked
  [[nodiscard]] virtual QNFieldValue rawValue() const { return {}; }
  virtual void setRawValue(const QNFieldValue& value);

  // State
  [[nodiscard]] bool isGuarded() const;
  [[nodiscard]] bool isMultiline() const;
  [[nodiscard]] bool isEditable() const;
  [[nodiscard]] bool isPasswordGeneratorDisabled() const;
  [[nodiscard]] bool shouldShowPasswordStrength() const;
  [[nodiscard]] virtual bool isEmpty() const;
  [[nodiscard]] bool hasSSHKeyAttributes() const;

  // Comparison
  /// Type, value, identifier and title are equal. Two values that are nothing are not.
  [[nodiscard]] bool isEqual(const QNItemField& other) const;
  /// Here, two values that are nothing are.
  [[nodiscard]] bool isValueEqualTo(const QNFieldValue& value) const;

  // Kind tests: by what is stored, not by class
  [[nodiscard]] bool isStringField() const;  // a credit card number too
  [[nodiscard]] bool isURLField() const;
  [[nodiscard]] bool isEmailField() const;
  [[nodiscard]] bool isPhoneField() const;
  [[nodiscard]] bool isAddressField() const;
  [[nodiscard]] bool isMonthYearField() const;
  [[nodiscard]] bool isDateField() const;
  [[nodiscard]] bool isCreditCardTypeField() const;
  [[nodiscard]] bool isReferenceField() const;
  [[nodiscard]] bool isFileField() const;
  [[nodiscard]] bool isConcealedField() const;  // but no one-time password
  [[nodiscard]] bool isTOTPField() const;
  [[nodiscard]] bool isPasswordField() const;
  [[nodiscard]] bool isMenuField() const;  // "menu" and "gender", no country and no card type
  [[nodiscard]] bool isCreditCardNumberField() const;
  [[nodiscard]] virtual bool isUnknownField() const { return false; }

 protected:
  /// What a field is made of: an identifier, nothing for a fresh one, or what is stored.
  struct Start {
    QNItemFieldKind kind;
    std::optional<std::string_view> identifier;
    const JsonObject* stored = nullptr;
  };
  explicit QNItemField(const Start& start);

  /// Called once the object stands, when it was made of what is stored: puts right what is.
  virtual void didReadStored();
  [[nodiscard]] QNItemFieldKind kind() const { return _kind; }
  [[nodiscard]] const Json* storedValue() const { return _stored.if_contains(kItemFieldValue); }
  void storeText(std::string_view key, std::optional<std::string_view> text);
  /// An equal value stays as it is written; an empty container isn't written.
  void storeValue(std::optional<Json> value);
  void storeAsItIs(const Json* value);
  /// Logs that a value had the wrong kind; `text` has one "{}" for that.
  void reportWrongKind(MRLogText text, const Json& value) const;

 private:
  [[nodiscard]] bool hasType(QNItemFieldKind kind) const;
  [[nodiscard]] bool hasIdentifierPrefix(std::string_view prefix) const;
  [[nodiscard]] std::optional<std::string_view> attribute(std::string_view key) const;
  void storeObject(std::string_view key, const JsonObject* object);

  JsonObject _stored;
  QNItemFieldKind _kind;
};

/// Gives a class of fields its class operations and constructors.
template <class Field, QNItemFieldKind kKind, class Base>
class QNItemFieldOf : public Base {
 public:
  static constexpr std::string_view typeName() { return QNItemFieldClass::of(kKind).typeName; }
  static std::string localizedTypeName() { return QNItemFieldClass::of(kKind).localizedTypeName(); }
  /// No identifier: a fresh one.
  static std::shared_ptr<Field> fieldWithIdentifier(std::optional<std::string_view> identifier) {
    return std::make_shared<Field>(identifier);
  }

  QNItemFieldOf() : Base(Start{kKind, std::nullopt, nullptr}) {}
  explicit QNItemFieldOf(std::optional<std::string_view> initWithIdentifier)
      : Base(Start{kKind, initWithIdentifier, nullptr}) {}
  explicit QNItemFieldOf(const QNStoredField& stored)
      : Base(Start{kKind, std::nullopt, &stored.element()}) {}

 protected:
  using Start = QNItemField::Start;
  explicit QNItemFieldOf(const Start& start) : Base(start) {}
};

}  // namespace quillon
