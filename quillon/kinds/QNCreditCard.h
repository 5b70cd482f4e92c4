#pragma once

#include "quillon/items/QNItem.h"

namespace quillon {

class QNImage;
class QNTemplate;

// Identifiers of a card's fields
inline constexpr std::string_view FIELD_CREDIT_CARD_NUMBER = "ccnum";
inline constexpr std::string_view FIELD_CREDIT_CARD_TYPE = "type";
inline constexpr std::string_view FIELD_CREDIT_CARD_CVV = "cvv";
inline constexpr std::string_view FIELD_CREDIT_CARD_PIN = "pin";
inline constexpr std::string_view FIELD_CREDIT_CARD_EXPIRY = "expiry";
inline constexpr std::string_view FIELD_CREDIT_CARD_CARDHOLDER = "cardholder";

/// A payment card, category "002". Its data are fields of its template, found by the identifiers
/// above. The brand is what the menu field "type" holds; nothing is guessed from the number.
class QNCreditCard final : public QNItem {
 public:
  /// From the shared template of cards. Null, with an assertion log, if there is none.
  static std::shared_ptr<QNCreditCard> initNewCard();
  /// Always of category "002", whatever template it is. Null, with an assertion log, for none.
  static std::shared_ptr<QNCreditCard> initNewWithTemplate(const std::shared_ptr<QNTemplate>& from);
  explicit QNCreditCard(QNNew);
  explicit QNCreditCard(QNExisting existing);
  explicit QNCreditCard(QNDecoder& coder) : QNItem(coder) {}
  [[nodiscard]] std::string_view className() const override { return "QNCreditCard"; }

  // Values of fields; nothing without the field
  [[nodiscard]] std::optional<QNSecret> cvvNumber();
  [[nodiscard]] std::optional<QNSecret> creditCardNumber();
  [[nodiscard]] std::optional<std::string> creditCardType();
  [[nodiscard]] std::optional<QNSecret> creditCardPIN();
  [[nodiscard]] std::shared_ptr<QNItemField> expiringDateField();
  [[nodiscard]] std::shared_ptr<QNItemField> cardholderField();

  // Display
  /// The label of the brand in the user's language; "" without one.
  [[nodiscard]] std::string localizedCreditCardType();
  /// The first and last four characters of a number of 11 characters or more, with stars between;
  /// a shorter one whole, by design. Reads from left to right in any language. DANGER: it may be
  /// the whole number, and it is the subtitle: the overview keeps it, which every list opens.
  [[nodiscard]] std::optional<std::string> maskedCreditCardNumber();
  /// The last four characters of a number of 11 or more.
  [[nodiscard]] std::optional<std::string> creditCardSuffixNumber();
  [[nodiscard]] std::optional<std::string> _additionalInformation() override {
    return maskedCreditCardNumber();
  }
  /// Card holder, number, month of expiry and, with the right to reveal, the security code.
  [[nodiscard]] std::vector<QNQuickAccessShortcut> quickAccessFields() override;
  /// What a watch gets of it, in clear: touchpoints/QNWatchRecord.h.
  [[nodiscard]] JsonObject appleWatchDictionaryRepresentation();
  /// The number, as far as its clipboard filter lets it pass.
  [[nodiscard]] std::optional<QNSecret> clipboardValue() override;

  // A card has no password for the rest of the system.
  [[nodiscard]] std::optional<QNSecret> password() override { return std::nullopt; }
  [[nodiscard]] std::int16_t passwordStrength() override { return 0; }

  // Icons: those of the brand while the details are loaded, else of the category
  /// From a value of "type" to the word in icon names; nothing for a brand without an icon.
  static std::optional<std::string_view> creditCardMap(std::string_view type);
  /// The name with the brand's word for its "%@"; nothing without loaded details or a known brand.
  [[nodiscard]] std::optional<std::string> imageNameWithFormatString(std::string_view format);
  [[nodiscard]] std::shared_ptr<const QNImage> detailIcon();
  [[nodiscard]] std::shared_ptr<const QNImage> listIcon();
  [[nodiscard]] std::shared_ptr<const QNImage> miniIcon();
  /// A picture of the library's resources; null if there is none of that name.
  static std::shared_ptr<const QNImage> _bundleImageNamed(std::string_view name);

 private:
  [[nodiscard]] std::shared_ptr<const QNImage> brandIcon(std::string_view format,
                                                         std::string_view withoutBrand);
  [[nodiscard]] std::optional<QNSecret> valueOf(std::string_view identifier);
};

}  // namespace quillon
