#include "quillon/kinds/QNCreditCard.h"

#include <array>
#include <utility>

#include "quillon/fields/QNItemField.h"
#include "quillon/items/QNQuickAccessShortcut.h"
#include "quillon/platform/images/QNImage.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/templates/QNCategoryHelper.h"
#include "quillon/templates/QNTemplateManager.h"
#include "quillon/touchpoints/QNWatchConstants.h"
#include "quillon/touchpoints/QNWatchRecord.h"

namespace quillon {
namespace {

constexpr std::string_view kPlace = "%@";
// A number of fewer characters, blanks counted, is shown whole.
constexpr std::size_t kLeastMaskedLength = 11;
constexpr std::size_t kShownLength = 4;

constexpr std::string_view kDigits = "0123456789";

// What quick access offers, in order, and the key that copies it.
constexpr std::array<std::pair<std::string_view, std::uint64_t>, 4> kCopiedFields = {{
    {FIELD_CREDIT_CARD_CARDHOLDER, 0},
    {FIELD_CREDIT_CARD_NUMBER, 2},
    {FIELD_CREDIT_CARD_EXPIRY, 3},
    {FIELD_CREDIT_CARD_CVV, 1},
}};

std::shared_ptr<QNTemplate> cardTemplate() {
  return QNTemplateManager::sharedManager().templateWithUUID(QNCategoryUUIDCreditCard);
}

bool isMasked(const std::optional<QNSecret>& number) {
  return number && textLength(number->reveal()) >= kLeastMaskedLength;
}

std::string firstShown(const QNSecret& number) {
  return trimmed(number.reveal().substr(0, bytesOfCutToLength(number.reveal(), kShownLength)));
}

std::string lastShown(const QNSecret& number) {
  const std::string_view text = number.reveal();
  const std::size_t hidden = textLength(text) - kShownLength;
  return trimmed(text.substr(bytesOfCutToLength(text, hidden)));
}

std::optional<QNSecret> inBlocks(const std::optional<QNSecret>& number) {
  if (!number) return std::nullopt;
  const QNSecret digits = charactersOfTextInSet(number->reveal(), kDigits);
  return mr_asFormattedCreditCardNumber(digits.reveal());
}

}  // namespace

std::shared_ptr<QNCreditCard> QNCreditCard::initNewCard() {
  return initNewWithTemplate(cardTemplate());
}

std::shared_ptr<QNCreditCard> QNCreditCard::initNewWithTemplate(
    const std::shared_ptr<QNTemplate>& from) {
  if (from == nullptr) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, "QNCreditCard",
                                       "Failed to obtain Credit Card template");
    return nullptr;
  }
  auto card = std::make_shared<QNCreditCard>(initNew);
  card->_setFieldSections(from->instantiateFieldSections());
  return card;
}

QNCreditCard::QNCreditCard(QNNew) : QNItem(initNew) {
  setCategoryUUID(std::string(QNCategoryUUIDCreditCard));
}

QNCreditCard::QNCreditCard(QNExisting existing) : QNItem(existing) {
  setCategoryUUID(std::string(QNCategoryUUIDCreditCard));
}

std::optional<QNSecret> QNCreditCard::valueOf(std::string_view identifier) {
  const std::lock_guard lock(monitor());
  const auto field = findFieldWithIdentifier(identifier);
  return field == nullptr ? std::nullopt : field->stringValue();
}

std::optional<QNSecret> QNCreditCard::cvvNumber() {
  return valueOf(FIELD_CREDIT_CARD_CVV);
}

std::optional<QNSecret> QNCreditCard::creditCardNumber() {
  return valueOf(FIELD_CREDIT_CARD_NUMBER);
}

std::optional<std::string> QNCreditCard::creditCardType() {
  const auto type = valueOf(FIELD_CREDIT_CARD_TYPE);
  return type ? std::optional<std::string>(type->reveal()) : std::nullopt;  // a brand, no secret
}

std::optional<QNSecret> QNCreditCard::creditCardPIN() {
  return valueOf(FIELD_CREDIT_CARD_PIN);
}

std::shared_ptr<QNItemField> QNCreditCard::expiringDateField() {
  return findFieldWithIdentifier(FIELD_CREDIT_CARD_EXPIRY);
}

std::shared_ptr<QNItemField> QNCreditCard::cardholderField() {
  return findFieldWithIdentifier(FIELD_CREDIT_CARD_CARDHOLDER);
}

std::string QNCreditCard::localizedCreditCardType() {
  const auto type = creditCardType();
  const auto names = type ? cardTemplate() : nullptr;
  if (names == nullptr) return type.value_or("");
  return names->localizedValueForFieldIdentifier(FIELD_CREDIT_CARD_TYPE, *type);
}

std::optional<std::string> QNCreditCard::maskedCreditCardNumber() {
  const auto number = creditCardNumber();
  if (!number) return std::nullopt;
  if (!isMasked(number)) return std::string(number->reveal());  // too short to hide, by design
  return mr_NonRTLString(firstShown(*number) + " **** " + lastShown(*number));
}

std::optional<std::string> QNCreditCard::creditCardSuffixNumber() {
  const auto number = creditCardNumber();
  return isMasked(number) ? std::optional<std::string>(lastShown(*number)) : std::nullopt;
}

std::vector<QNQuickAccessShortcut> QNCreditCard::quickAccessFields() {
  const std::lock_guard lock(monitor());
  std::vector<QNQuickAccessShortcut> shortcuts;
  for (const auto& [identifier, command] : kCopiedFields) {
    addFieldWithIdentifier(identifier, command, shortcuts);
  }
  return shortcuts;
}

JsonObject QNCreditCard::appleWatchDictionaryRepresentation() {
  const std::lock_guard lock(monitor());
  QNWatchRecord record(QNWatchTypeCreditCard);
  record.setValue(valueOf(FIELD_CREDIT_CARD_TYPE), QNWatchCreditCardItemTypeKey);
  record.setValue(inBlocks(creditCardNumber()), QNWatchCreditCardItemNumberKey);
  record.setValue(valueOf(FIELD_CREDIT_CARD_EXPIRY), QNWatchCreditCardItemExpiryDateKey);
  record.setValue(cvvNumber(), QNWatchCreditCardItemVerificationNumberKey);
  record.setValue(creditCardPIN(), QNWatchCreditCardItemPINKey);
  return std::move(record).dictionaryOfItem(*this);
}

std::optional<QNSecret> QNCreditCard::clipboardValue() {
  const std::lock_guard lock(monitor());
  const auto field = findFieldWithIdentifier(FIELD_CREDIT_CARD_NUMBER);
  return field == nullptr ? std::nullopt : field->clipboardStringValue();
}

std::optional<std::string_view> QNCreditCard::creditCardMap(std::string_view type) {
  constexpr std::array<std::pair<std::string_view, std::string_view>, 4> brands = {
      {{"visa", "visa"}, {"amex", "amex"}, {"mc", "mastercard"}, {"discover", "discover"}}};
  for (const auto& [value, word] : brands) {
    if (value == type) return word;
  }
  return std::nullopt;
}

std::optional<std::string> QNCreditCard::imageNameWithFormatString(std::string_view format) {
  const auto type = detailsLoaded() ? creditCardType() : std::nullopt;
  const auto word = type ? creditCardMap(*type) : std::nullopt;
  if (!word) return std::nullopt;
  std::string name(format);
  if (const auto at = name.find(kPlace); at != std::string::npos) {
    name.replace(at, kPlace.size(), *word);
  }
  return name;
}

std::shared_ptr<const QNImage> QNCreditCard::_bundleImageNamed(std::string_view name) {
  return mr_imageNamed(name);
}

std::shared_ptr<const QNImage> QNCreditCard::brandIcon(std::string_view format,
                                                       std::string_view withoutBrand) {
  const auto brand = imageNameWithFormatString(format);
  return _bundleImageNamed(brand ? std::string_view(*brand) : withoutBrand);
}

std::shared_ptr<const QNImage> QNCreditCard::detailIcon() {
  return brandIcon("type-%@-details", QNCategoryHelper::defaultDetailIconNameFor(categoryUUID()));
}

std::shared_ptr<const QNImage> QNCreditCard::listIcon() {
  return brandIcon("type-%@-list", QNCategoryHelper::defaultListIconNameFor(categoryUUID()));
}

std::shared_ptr<const QNImage> QNCreditCard::miniIcon() {
  const std::string list = QNCategoryHelper::defaultListIconNameFor(categoryUUID());
  return brandIcon("type-%@-source", QNCategoryHelper::menuIconNameWith(list));
}

}  // namespace quillon
