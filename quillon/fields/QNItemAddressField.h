#pragma once

#include "quillon/fields/QNAddressValue.h"
#include "quillon/fields/QNItemField.h"

namespace quillon {

/// A postal address. A fresh one holds the user's country, and so isn't empty.
class QNItemAddressField final
    : public QNItemFieldOf<QNItemAddressField, QNItemFieldKind::address, QNItemField> {
 public:
  QNItemAddressField() : QNItemAddressField(std::optional<std::string_view>()) {}
  explicit QNItemAddressField(std::optional<std::string_view> initWithIdentifier);
  explicit QNItemAddressField(const QNStoredField& stored) : QNItemFieldOf(stored) {}
  /// To change it, change a copy and set that.
  [[nodiscard]] const QNAddressValue& value() const { return _value; }
  void setValue(QNAddressValue value);

  [[nodiscard]] std::optional<QNSecret> stringValue() const override;
  [[nodiscard]] std::optional<Json> jsonValue() const override;
  void setJsonValue(const Json* value) override;
  [[nodiscard]] QNFieldValue rawValue() const override { return _value; }
  void setRawValue(const QNFieldValue& value) override;
  [[nodiscard]] bool isEmpty() const override { return _value.isEmpty(); }

 private:
  void didReadStored() override;
  void storeAddress();

  QNAddressValue _value;
};

}  // namespace quillon
