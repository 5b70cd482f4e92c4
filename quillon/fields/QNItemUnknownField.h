#pragma once

#include "quillon/fields/QNItemField.h"

namespace quillon {

/// A field of a kind that this library doesn't know. What is stored is kept as it stands, to the
/// byte, until a setter changes a member of it: an older program mustn't destroy what a newer
/// one wrote.
class QNItemUnknownField final
    : public QNItemFieldOf<QNItemUnknownField, QNItemFieldKind::unknown, QNItemField> {
 public:
  /// "unknown", with an assertion log: no stored field has that type.
  static std::string_view typeName();
  QNItemUnknownField() : QNItemFieldOf() {}
  QNItemUnknownField(std::optional<std::string_view> initWithType,
                     std::optional<std::string_view> identifier);
  explicit QNItemUnknownField(std::optional<std::string_view> initWithIdentifier)
      : QNItemFieldOf(initWithIdentifier) {}
  explicit QNItemUnknownField(const QNStoredField& stored) : QNItemFieldOf(stored) {}
  [[nodiscard]] std::optional<std::string_view> unknownTypeName() const;
  /// The value as it is stored; null if there is none.
  [[nodiscard]] const Json* fieldJsonValue() const;

  [[nodiscard]] std::optional<std::string_view> identifier() const override;
  void setIdentifier(std::optional<std::string_view> identifier) override;
  [[nodiscard]] std::optional<std::string_view> type() const override { return unknownTypeName(); }
  /// A text as it is, any other value as its JSON text.
  [[nodiscard]] std::optional<QNSecret> stringValue() const override;
  [[nodiscard]] std::optional<Json> jsonValue() const override;
  void setJsonValue(const Json* value) override;
  [[nodiscard]] QNFieldValue rawValue() const override {
    return QNFieldValue::ofJson(fieldJsonValue());
  }
  void setRawValue(const QNFieldValue& /*value*/) override {}
  [[nodiscard]] bool isEmpty() const override { return false; }
  [[nodiscard]] bool isUnknownField() const override { return true; }

 private:
  void didReadStored() override;

  /// Stands for one that is missing in what was stored, and isn't written.
  std::optional<std::string> _identifierForNone;
  /// The stored value is of a kind that no field has: it reads as nothing, and stays.
  bool _valueReadsAsNothing = false;
};

}  // namespace quillon
