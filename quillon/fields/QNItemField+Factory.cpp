#include <array>

#include "quillon/fields/QNItemAddressField.h"
#include "quillon/fields/QNItemDateField.h"
#include "quillon/fields/QNItemMonthYearField.h"
#include "quillon/fields/QNItemStringField.h"
#include "quillon/fields/QNItemUnknownField.h"

namespace quillon {
namespace {

struct Maker {
  std::string_view type;
  QNItemFieldRef (*fresh)(std::optional<std::string_view> identifier);
  QNItemFieldRef (*stored)(const QNStoredField& stored);
};

template <class Field>
constexpr Maker makerOf() {
  return {Field::typeName(),
          [](std::optional<std::string_view> identifier) -> QNItemFieldRef {
            return std::make_shared<Field>(identifier);
          },
          [](const QNStoredField& stored) -> QNItemFieldRef {
            return std::make_shared<Field>(stored);
          }};
}

// One class for each "k". A class for files goes here; until then they are unknown fields.
// "month" and "password" are not here: their classes exist for their names.
constexpr std::array kMakers{
    makerOf<QNItemStringField>(),
    makerOf<QNItemPhoneField>(),
    makerOf<QNItemURLField>(),
    makerOf<QNItemEmailField>(),
    makerOf<QNItemConcealedField>(),
    makerOf<QNItemReferenceField>(),
    makerOf<QNItemCreditCardTypeField>(),
    makerOf<QNItemDateField>(),
    makerOf<QNItemCountryField>(),
    makerOf<QNItemGenderField>(),
    makerOf<QNItemMonthYearField>(),
    makerOf<QNItemAddressField>(),
    makerOf<QNItemMenuField>(),
};
constexpr Maker kCreditCardNumberMaker = makerOf<QNItemCreditCardNumberField>();
constexpr Maker kTOTPMaker = makerOf<QNItemTOTPField>();

const Maker* makerForType(std::string_view type) {
  for (const Maker& maker : kMakers) {
    if (maker.type == type) return &maker;
  }
  return nullptr;
}

// Two kinds look at the identifier too.
const Maker* makerFor(std::optional<std::string_view> type,
                      std::optional<std::string_view> identifier) {
  if (!type) return nullptr;
  const std::string_view name = identifier.value_or("");
  if (*type == kCreditCardNumberMaker.type &&
      name.starts_with(QNItemCreditCardNumberField::creditCardNumberIdentifierPrefix())) {
    return &kCreditCardNumberMaker;
  }
  if (*type == kTOTPMaker.type && name.starts_with(QNItemTOTPField::totpIdentifierPrefix())) {
    return &kTOTPMaker;
  }
  return makerForType(*type);
}

}  // namespace

QNItemFieldRef QNItemField::fieldWithType(std::optional<std::string_view> type,
                                          std::optional<std::string_view> identifier) {
  if (const Maker* const maker = makerFor(type, identifier)) return maker->fresh(identifier);
  return std::make_shared<QNItemUnknownField>(type, identifier);
}

QNItemFieldRef QNItemField::fieldWithType(std::string_view type) {
  const Maker* const maker = makerForType(type);
  return maker == nullptr ? nullptr : maker->fresh(std::nullopt);
}

QNItemFieldRef QNItemField::fieldFromStored(const JsonObject& stored) {
  const Maker* const maker = makerFor(mr_validStringValueForKey(stored, kItemFieldType),
                                      mr_validStringValueForKey(stored, kItemFieldIdentifier));
  const QNStoredField copied(stored);
  const QNItemFieldRef field =
      maker == nullptr ? std::make_shared<QNItemUnknownField>(copied) : maker->stored(copied);
  field->didReadStored();
  return field;
}

// The value goes through its JSON form: the factory may choose another class for the identifier.
QNItemFieldRef QNItemField::conflictCopyWithUniqueFieldIdentifierForConflict(
    std::optional<std::string_view> identifier) const {
  const QNItemFieldRef copy = fieldWithType(type(), identifier);
  copy->setTitle(title());
  const auto value = jsonValue();
  copy->setJsonValue(value ? &*value : nullptr);
  if (const JsonObject* const all = attributes()) {
    JsonObject kept(*all, jsonStorage());
    kept.stable_erase("guarded");
    copy->setAttributes(&kept);
  }
  return copy;
}

}  // namespace quillon
