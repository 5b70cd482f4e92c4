#pragma once
// For tests: fields and sections from JSON text, and back.

#include "quillon/fields/QNFieldSection.h"
#include "quillon/fields/QNItemAddressField.h"
#include "quillon/fields/QNItemDateField.h"
#include "quillon/fields/QNItemMonthYearField.h"
#include "quillon/fields/QNItemStringField.h"
#include "quillon/fields/QNItemUnknownField.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {

inline JsonObject jsonObject(std::string_view text) {
  return *mr_objectFromJSONStringWithError(text);
}
inline Json jsonValue(std::string_view text) {
  return *mr_valueFromJSONDataWithError(bytesOf(text));
}
inline std::string jsonText(const JsonObject& object) {
  return mr_JSONStringWithError(object).value_or("(no form)");
}
inline std::string jsonText(const std::optional<Json>& value) {
  return value ? mr_JSONStringWithError(*value).value_or("(no form)") : "(none)";
}
inline std::string textOf(const std::optional<QNSecret>& secret) {
  return secret ? std::string(secret->reveal()) : "(none)";
}

/// The field that a section holds as that JSON text.
template <class Field = QNItemField>
std::shared_ptr<Field> fieldOf(std::string_view stored) {
  return std::dynamic_pointer_cast<Field>(QNItemField::fieldFromStored(jsonObject(stored)));
}
inline void setJson(QNItemField& field, std::string_view text) {
  const Json value = jsonValue(text);
  field.setJsonValue(&value);
}
inline QNFieldSectionRef sectionOf(std::string_view stored) {
  auto section = std::make_shared<QNFieldSection>();
  section->loadDictionary(jsonObject(stored));
  return section;
}
/// What is written of a section that was read from that text.
inline std::string rewritten(std::string_view stored) {
  return jsonText(sectionOf(stored)->dictionaryRepresentation());
}
inline QNItemFieldRef stringField(std::string_view identifier,
                                  std::optional<std::string_view> value,
                                  std::string_view title = "") {
  auto field = QNItemStringField::fieldWithIdentifier(identifier);
  field->setTitle(title);
  field->setValue(value);
  return field;
}
inline std::vector<std::string> identifiersOf(const std::vector<QNItemFieldRef>& fields) {
  std::vector<std::string> identifiers;
  for (const auto& field : fields) identifiers.emplace_back(field->identifier().value_or("(none)"));
  return identifiers;
}
inline std::vector<std::string> assertions(const MRCapturingSink& sink) {
  return sink.texts(MRLogKind::assertion);
}
inline std::vector<std::string> errors(const MRCapturingSink& sink) {
  return sink.texts(MRLogKind::error);
}

}  // namespace quillon
