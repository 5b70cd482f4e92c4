#include "quillon/fields/QNFieldSection.h"
#include "quillon/fields/QNItemAddressField.h"
#include "quillon/fields/QNItemStringField.h"
#include "quillon/items/internal/QNItemState.h"
#include "quillon/platform/text/QNLocalization.h"

namespace quillon {

// `find` gives what it finds in one section.
template <class Find>
std::shared_ptr<QNItemField> QNItem::firstField(const Find& find) {
  const std::lock_guard lock(monitor());
  const FieldSections* const list = mutableFieldSections();
  if (list == nullptr) return nullptr;
  for (const auto& section : *list) {
    if (auto found = find(*section)) return found;
  }
  return nullptr;
}

template <class Test>
bool QNItem::anyField(const Test& test) {
  return firstField([&test](const QNFieldSection& section) -> std::shared_ptr<QNItemField> {
           for (const auto& field : section.fields()) {
             if (test(*field)) return field;
           }
           return nullptr;
         }) != nullptr;
}

std::shared_ptr<QNItemField> QNItem::findFieldWithIdentifier(
    std::optional<std::string_view> identifier) {
  return firstField([&](const QNFieldSection& in) { return in.fieldWithIdentifier(identifier); });
}

std::shared_ptr<QNItemField> QNItem::findFieldWithValue(const QNFieldValue& value) {
  return firstField([&](const QNFieldSection& in) { return in.fieldWithValue(value); });
}

std::shared_ptr<QNItemField> QNItem::findFieldEqualToField(const QNItemField& field) {
  return firstField([&](const QNFieldSection& in) { return in.fieldEqualToField(field); });
}

std::shared_ptr<QNItemField> QNItem::findNonEmptyPasswordField() {
  return firstField([](const QNFieldSection& in) { return in.findNonEmptyPasswordField(); });
}

std::shared_ptr<QNItemField> QNItem::findNonEmptyConcealedField() {
  return firstField([](const QNFieldSection& in) { return in.findNonEmptyConcealedField(); });
}

std::shared_ptr<QNItemField> QNItem::findFastmailAliasField() {
  return firstField([](const QNFieldSection& in) { return in.findFastmailAliasField(); });
}

bool QNItem::hasFieldWithIdentifierPrefix(std::string_view prefix) {
  return anyField([prefix](const QNItemField& field) {
    const auto identifier = field.identifier();
    return identifier && identifier->starts_with(prefix);
  });
}

bool QNItem::hasReferenceFields() {
  return anyField([](const QNItemField& field) { return field.isReferenceField(); });
}

bool QNItem::hasFileFields() {
  return anyField([](const QNItemField& field) { return field.isFileField(); });
}

void QNItem::setStringFieldValue(std::optional<std::string_view> value,
                                 std::string_view withIdentifier) {
  const std::lock_guard lock(monitor());
  const auto found = findFieldWithIdentifier(withIdentifier);
  if (auto* const field = dynamic_cast<QNItemStringField*>(found.get())) field->setValue(value);
}

void QNItem::setAddressFieldValue(const QNAddressValue& value, std::string_view withIdentifier) {
  const std::lock_guard lock(monitor());
  const auto found = findFieldWithIdentifier(withIdentifier);
  if (auto* const field = dynamic_cast<QNItemAddressField*>(found.get())) field->setValue(value);
}

void QNItem::moveField(const std::shared_ptr<QNItemField>& field,
                       const std::shared_ptr<QNFieldSection>& fromSection,
                       const std::shared_ptr<QNFieldSection>& toSection, std::size_t toIndex) {
  if (field == nullptr || fromSection == nullptr || toSection == nullptr) return;
  const std::lock_guard lock(monitor());
  markRowDirty();
  if (fromSection == toSection) return toSection->moveField(field, toIndex);
  const auto moved = field;  // the argument may be the section's own
  toSection->insertField(moved, toIndex);
  fromSection->removeField(moved);
}

void QNItem::stripReferenceFields() {
  const std::lock_guard lock(monitor());
  for (const auto& section : fieldSections()) {
    for (const auto& field : section->fields()) {
      if (!field->isReferenceField()) continue;
      markRowDirty();
      section->removeField(field);
    }
  }
}

std::optional<QNSecret> QNItem::password() {
  const std::lock_guard lock(monitor());
  const auto field = findNonEmptyPasswordField();
  return field == nullptr ? std::nullopt : field->stringValue();
}

std::shared_ptr<QNItemField> QNItem::itemFieldForPassword() {
  const auto secret = password();
  if (!secret || secret->empty()) return nullptr;
  auto field = QNItemConcealedField::fieldWithIdentifier("password");
  field->setTitle(QNLocalizedString("password"));
  field->setValue(secret->reveal());  // into the wiping resource
  return field;
}

}  // namespace quillon
