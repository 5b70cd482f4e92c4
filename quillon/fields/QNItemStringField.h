#pragma once

#include <vector>

#include "quillon/fields/QNItemField.h"

namespace quillon {

/// A text. The class of all kinds whose value is one.
class QNItemStringField
    : public QNItemFieldOf<QNItemStringField, QNItemFieldKind::string, QNItemField> {
 public:
  using QNItemFieldOf::QNItemFieldOf;
  [[nodiscard]] std::optional<QNSecret> value() const { return stringValue(); }
  void setValue(std::optional<std::string_view> value) { storeText(kItemFieldValue, value); }

  [[nodiscard]] std::optional<QNSecret> stringValue() const override;
  [[nodiscard]] std::optional<Json> jsonValue() const override;
  void setJsonValue(const Json* value) override;
  [[nodiscard]] QNFieldValue rawValue() const override;
  void setRawValue(const QNFieldValue& value) override;
  [[nodiscard]] bool isEmpty() const override;
};

/// A text that is shown on demand only.
class QNItemConcealedField
    : public QNItemFieldOf<QNItemConcealedField, QNItemFieldKind::concealed, QNItemStringField> {
 public:
  using QNItemFieldOf::QNItemFieldOf;
  [[nodiscard]] bool generate() const { return _generate; }
  void setGenerate(bool generate) { _generate = generate; }

 private:
  bool _generate = false;
};

/// The seed of one-time passwords, as a URL. Its identifier is drawn anew each time that such a
/// field is made, also when it is read, and nothing sets it: compare these fields by value and
/// prefix, never by identifier.
class QNItemTOTPField final
    : public QNItemFieldOf<QNItemTOTPField, QNItemFieldKind::totp, QNItemConcealedField> {
 public:
  static constexpr std::string_view totpIdentifierPrefix() { return "TOTP_"; }
  QNItemTOTPField() : QNItemTOTPField(std::optional<std::string_view>()) {}
  explicit QNItemTOTPField(std::optional<std::string_view> initWithIdentifier);
  explicit QNItemTOTPField(const QNStoredField& stored);
  void setIdentifier(std::optional<std::string_view> /*identifier*/) override {}

 private:
  void drawIdentifier();
};

/// One value of a list. The values that there are come from the template.
class QNItemMenuField
    : public QNItemFieldOf<QNItemMenuField, QNItemFieldKind::menu, QNItemStringField> {
 public:
  using QNItemFieldOf::QNItemFieldOf;
  [[nodiscard]] const std::vector<std::string>& menuitems() const { return _menuitems; }
  void setMenuitems(std::vector<std::string> items) { _menuitems = std::move(items); }

 private:
  std::vector<std::string> _menuitems;
};

/// A number, not a menu in spite of its base.
class QNItemCreditCardNumberField final
    : public QNItemFieldOf<QNItemCreditCardNumberField, QNItemFieldKind::creditCardNumber,
                           QNItemMenuField> {
 public:
  using QNItemFieldOf::QNItemFieldOf;
  static constexpr std::string_view creditCardNumberIdentifierPrefix() { return "ccnum"; }
};

/// Another item, by its identifier.
class QNItemReferenceField final
    : public QNItemFieldOf<QNItemReferenceField, QNItemFieldKind::reference, QNItemStringField> {
 public:
  using QNItemFieldOf::QNItemFieldOf;
  /// The category to choose from.
  [[nodiscard]] std::optional<std::string_view> filterCategoryUUID() const;
};

// Kinds that differ in their names only.

class QNItemCountryField final
    : public QNItemFieldOf<QNItemCountryField, QNItemFieldKind::country, QNItemMenuField> {
 public:
  using QNItemFieldOf::QNItemFieldOf;
};

class QNItemGenderField final
    : public QNItemFieldOf<QNItemGenderField, QNItemFieldKind::gender, QNItemMenuField> {
 public:
  using QNItemFieldOf::QNItemFieldOf;
};

class QNItemCreditCardTypeField final
    : public QNItemFieldOf<QNItemCreditCardTypeField, QNItemFieldKind::creditCardType,
                           QNItemMenuField> {
 public:
  using QNItemFieldOf::QNItemFieldOf;
};

/// The factory doesn't make it: a stored "month" is an unknown field.
class QNItemMonthField final
    : public QNItemFieldOf<QNItemMonthField, QNItemFieldKind::month, QNItemMenuField> {
 public:
  using QNItemFieldOf::QNItemFieldOf;
};

class QNItemPhoneField final
    : public QNItemFieldOf<QNItemPhoneField, QNItemFieldKind::phone, QNItemStringField> {
 public:
  using QNItemFieldOf::QNItemFieldOf;
};

class QNItemEmailField final
    : public QNItemFieldOf<QNItemEmailField, QNItemFieldKind::email, QNItemStringField> {
 public:
  using QNItemFieldOf::QNItemFieldOf;
};

class QNItemURLField final
    : public QNItemFieldOf<QNItemURLField, QNItemFieldKind::url, QNItemStringField> {
 public:
  using QNItemFieldOf::QNItemFieldOf;
};

/// The factory doesn't make it: a stored "password" is an unknown field.
class QNItemPasswordField final
    : public QNItemFieldOf<QNItemPasswordField, QNItemFieldKind::password, QNItemStringField> {
 public:
  using QNItemFieldOf::QNItemFieldOf;
};

}  // namespace quillon
