#include "quillon/fields/QNFieldSection.h"
#include "quillon/items/internal/QNItemState.h"

namespace quillon {
namespace {

struct UsableField {
  std::shared_ptr<QNFieldSection> section;
  std::shared_ptr<QNItemField> field;
  std::optional<QNSecret> text;
};

// The first with a value. Blanks are one: what they are worth is told when a code is asked for.
UsableField firstUsableField(QNItem& item) {
  const std::lock_guard lock(item.monitor());
  for (const auto& section : item.fieldSections()) {
    for (const auto& field : section->fields()) {
      if (!field->isTOTPField()) continue;
      auto text = field->stringValue();
      if (text && !text->empty()) return {section, field, std::move(text)};
    }
  }
  return {};
}

}  // namespace

bool QNItem::hasTOTP() {
  return firstTOTPString().has_value();
}

std::optional<QNSecret> QNItem::firstTOTPString() {
  return firstUsableField(*this).text;
}

std::shared_ptr<QNFieldSection> QNItem::firstTOTPSection() {
  return firstUsableField(*this).section;
}

std::shared_ptr<QNItemField> QNItem::firstTOTPField() {
  return firstUsableField(*this).field;
}

}  // namespace quillon
