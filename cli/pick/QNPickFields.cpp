#include "cli/pick/QNPickFields.h"

#include <array>
#include <utility>

#include "cli/fields/QNFieldChoice.h"
#include "cli/fields/QNFieldValue.h"
#include "cli/fields/QNItemEditing.h"
#include "cli/output/QNItemJson.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

constexpr std::string_view kCode = "otp";

// In the order in which one wants them.
constexpr std::array<std::pair<QNFieldName, std::string_view>, 5> kOwn = {{
    {QNFieldName::password, "Password"},
    {QNFieldName::username, "Username"},
    {QNFieldName::url, "URL"},
    {QNFieldName::notes, "Notes"},
    {QNFieldName::title, "Title"},
}};

}  // namespace

QNPickFields::QNPickFields(QNItem& item) : _item(item), _texts(item.categoryUUID()) {
  for (const auto& [name, label] : kOwn) addOwn(name, label);
  addCode();
  addSections();
}

void QNPickFields::addOwn(QNFieldName name, std::string_view label) {
  if (!hasOwnPlaceFor(_item, name)) return;
  const auto value = ownValueOf(_item, name);
  if (!value || value->empty()) return;
  // Into a list that is wiped with the heap.
  const bool isSecret = name == QNFieldName::password;
  add({std::string(nameOfField(name)), name, nullptr}, QNLocalizedString(label),
      std::string(isSecret ? kDots : value->reveal()));
}

void QNPickFields::addCode() {
  if (_item.firstTOTPField() == nullptr) return;
  add({std::string(kCode), std::nullopt, nullptr}, QNLocalizedString("One-time password"),
      std::string(kDots));
}

void QNPickFields::addSections() {
  for (const auto& section : _item.fieldSections()) {
    for (const auto& field : section->fields()) {
      if (isBlank(*field)) continue;
      const QNSecret value = _texts.shownValueOf(*field);
      // As above.
      add({pathOf(*section, *field), std::nullopt, field}, _texts.titleOf(*field),
          std::string(isSecret(*field) ? kDots : value.reveal()));
    }
  }
}

void QNPickFields::add(Field field, std::string title, std::string shown) {
  _fields.push_back(std::move(field));
  _list.add({std::move(title), std::move(shown)});
}

QNResult<QNSecret> QNPickFields::valueOf(std::size_t index) const {
  const Field& field = _fields[index];
  if (field.own) return ownValueOf(_item, *field.own).value_or(QNSecret());
  if (field.field == nullptr) return codeOf(_item);
  return _texts.plainValueOf(*field.field);
}

QNResult<QNSecret> QNPickFields::valueOfNamed(std::string_view name) const {
  return name == kCode ? codeOf(_item) : valueNamed(_item, name);
}

}  // namespace quillon
