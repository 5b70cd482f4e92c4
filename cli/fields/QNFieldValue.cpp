#include "cli/fields/QNFieldValue.h"

#include <fmt/format.h>

#include "cli/fields/QNFieldChoice.h"
#include "cli/fields/QNItemEditing.h"
#include "cli/fields/QNSeedFault.h"
#include "quillon/fields/QNItemField.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/touchpoints/QNTOTPGenerator.h"

namespace quillon {
namespace {

std::optional<QNSecret> secretFrom(const std::optional<std::string>& text) {
  if (!text) return std::nullopt;
  return QNSecret(*text);
}

std::string partOf(const QNItemField& field, const std::string& part) {
  const auto stored = field.jsonValue();
  const auto* const address = stored ? stored->if_object() : nullptr;
  const auto text = address == nullptr ? std::nullopt : mr_validStringValueForKey(*address, part);
  return std::string(text.value_or(""));  // of an address, which is shown in clear
}

}  // namespace

std::optional<QNSecret> ownValueOf(QNItem& item, QNFieldName field) {
  switch (field) {
    case QNFieldName::title:
      return secretFrom(item.title());
    case QNFieldName::username:
      return secretFrom(item.username());
    case QNFieldName::password:
      return item.password();
    case QNFieldName::url:
      return secretFrom(item.URLString());
    case QNFieldName::notes:
      return secretFrom(item.notesPlain());
  }
  return std::nullopt;
}

std::optional<QNFieldName> ownFieldNamed(QNItem& item, const QNFieldTexts& texts,
                                         std::string_view name) {
  const auto own = fieldNamed(name);
  const bool isOwn = own && (hasOwnPlaceFor(item, *own) || fieldsNamed(item, texts, name).empty());
  return isOwn ? own : std::nullopt;
}

QNResult<QNSecret> valueNamed(QNItem& item, std::string_view name) {
  const QNFieldTexts texts(item.categoryUUID());
  if (const auto own = ownFieldNamed(item, texts, name)) {
    auto value = ownValueOf(item, *own);
    if (value && !value->empty()) return std::move(*value);
    return toolError(QNExit::notFound, fmt::format("the item has no {}", nameOfField(*own)));
  }
  const auto chosen = chooseField(item, texts, name);
  if (!chosen) return chosen.error();
  const QNItemField& field = *chosen.value().field;
  QNSecret value = chosen.value().part.empty() ? texts.plainValueOf(field)
                                               : QNSecret(partOf(field, chosen.value().part));
  if (value.empty()) return toolError(QNExit::notFound, "the field is empty");
  return value;
}

QNResult<QNSecret> codeOf(QNItem& item) {
  const auto field = item.firstTOTPField();
  const auto seed = field == nullptr ? std::nullopt : field->stringValue();
  if (!seed) return toolError(QNExit::notFound, "the item has no one-time password");
  const QNTOTPGenerator::Date now(std::chrono::duration<double>(static_cast<double>(secondsNow())));
  const std::string_view text = seed->reveal();  // into a key that wipes itself
  auto result = QNTOTPGenerator::generate(text, now);
  if (result) return std::move(result.value().code);
  return toolError(QNExit::failed, fmt::format("the one-time password can't be used: {}",
                                               reasonForNoCode(result.error(), text)));
}

}  // namespace quillon
