#include "quillon/kinds/QNSecureNote.h"

#include "quillon/fields/QNItemStringField.h"
#include "quillon/items/QNQuickAccessShortcut.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/templates/QNCategoryUUID.h"
#include "quillon/touchpoints/QNWatchConstants.h"
#include "quillon/touchpoints/QNWatchRecord.h"

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

std::vector<QNQuickAccessShortcut> QNSecureNote::quickAccessFields() {
  std::vector<QNQuickAccessShortcut> shortcuts;
  if (auto notes = itemFieldForNotes()) shortcuts.emplace_back(std::move(notes), 2);
  return shortcuts;
}

JsonObject QNSecureNote::appleWatchDictionaryRepresentation() {
  const std::lock_guard lock(monitor());
  QNWatchRecord record(QNWatchTypeSecureNote);
  record.setValue(notesSecret(), QNWatchSecureNoteItemNoteKey);
  return std::move(record).dictionaryOfItem(*this);
}

}  // namespace quillon
