#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace quillon {

/// One for each class of fields, in the order of the table.
enum class QNItemFieldKind : std::uint8_t {
  string,
  concealed,
  totp,
  menu,
  country,
  gender,
  creditCardType,
  month,
  creditCardNumber,
  reference,
  phone,
  email,
  url,
  password,
  date,
  monthYear,
  address,
  unknown,
};

/// A class of fields as an object: what its class operations answer.
struct QNItemFieldClass {
  std::string_view name;
  /// The value of "k". Stored data.
  std::string_view typeName;
  /// The key of its name in the user's language.
  std::string_view localizedTypeNameKey;

  [[nodiscard]] std::string localizedTypeName() const;
  static constexpr const QNItemFieldClass& of(QNItemFieldKind kind);
};

/// In the order of QNItemFieldKind. Some share a "k", and some names are their base's.
inline constexpr std::array<QNItemFieldClass, 18> kItemFieldClasses{{
    {"QNItemStringField", "string", "Text"},
    {"QNItemConcealedField", "concealed", "Password"},
    {"QNItemTOTPField", "concealed", "One-Time Password"},
    {"QNItemMenuField", "menu", "Text"},
    {"QNItemCountryField", "country", "Country"},
    {"QNItemGenderField", "gender", "Gender"},
    {"QNItemCreditCardTypeField", "cctype", "Credit card type"},
    {"QNItemMonthField", "month", "Month"},
    {"QNItemCreditCardNumberField", "string", "Credit card number"},
    {"QNItemReferenceField", "reference", "Reference"},
    {"QNItemPhoneField", "phone", "Phone"},
    {"QNItemEmailField", "email", "Email"},
    {"QNItemURLField", "URL", "URL"},
    {"QNItemPasswordField", "password", "Text"},
    {"QNItemDateField", "date", "Date"},
    {"QNItemMonthYearField", "monthYear", "Month/Year"},
    {"QNItemAddressField", "address", "Address"},
    {"QNItemUnknownField", "unknown", "Unknown"},
}};

constexpr const QNItemFieldClass& QNItemFieldClass::of(QNItemFieldKind kind) {
  return kItemFieldClasses[static_cast<std::size_t>(kind)];
}

}  // namespace quillon
