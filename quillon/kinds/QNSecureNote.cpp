#include "quillon/kinds/QNSecureNote.h"

#include "quillon/fields/QNItemStringField.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/templates/QNCategoryUUID.h"

namespace quillon {

QNSecureNote::QNSecureNote(QNNew) : QNItem(initNew) {
  setCategoryUUID(std::string(QNCategoryUUIDSecureNote));
}

QNSecureNote::QNSecureNote(QNExisting existing) : QNItem(existing) {
  setCategoryUUID(std::string(QNCategoryUUIDSecureNote));
}

std::optional<std::string> QNSecureNote::_additionalInformation() {
  const auto notes = notesSecret();
  return notes ? subtitleOfText(notes->reveal()) : QNItem::_additionalInformation();
}

std::optional<QNSecret> QNSecureNote::clipboardValue() {
  return notesSecret();
}

std::shared_ptr<QNItemField> QNSecureNote::itemFieldForNotes() {
  const auto notes = notesSecret();
  if (!notes || notes->empty()) return nullptr;
  auto field = QNItemStringField::fieldWithIdentifier("notes");
  field->setTitle(QNLocalizedString("notes"));
  field->setValue(notes->reveal());
  return field;
}

}  // namespace quillon
