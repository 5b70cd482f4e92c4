#pragma once

#include "quillon/items/QNItem.h"

namespace quillon {

/// A note, category "003". It has no template: sections are what the user adds.
class QNSecureNote final : public QNItem {
 public:
  explicit QNSecureNote(QNNew);
  explicit QNSecureNote(QNExisting existing);
  explicit QNSecureNote(QNDecoder& coder) : QNItem(coder) {}
  [[nodiscard]] std::string_view className() const override { return "QNSecureNote"; }
  /// The first line of the notes, of at most 80 characters. Lists keep it in the overview: of a
  /// short note it is the whole text.
  [[nodiscard]] std::optional<std::string> _additionalInformation() override;
  [[nodiscard]] std::optional<QNSecret> clipboardValue() override;
  /// The notes as a field of its own, which is no part of the item; null if there are none.
  [[nodiscard]] std::shared_ptr<QNItemField> itemFieldForNotes();
  /// That field, if there is one.
  [[nodiscard]] std::vector<QNQuickAccessShortcut> quickAccessFields() override;
  /// What a watch gets of it, in clear: touchpoints/QNWatchRecord.h.
  [[nodiscard]] JsonObject appleWatchDictionaryRepresentation();
};

}  // namespace quillon
