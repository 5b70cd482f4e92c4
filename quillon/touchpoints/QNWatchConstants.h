#pragma once
// The vocabulary of what goes to a watch: keys and texts that watches of every version read. Each
// text is its constant's name, but for the brands at the end. Records of four kinds of items are
// made here (QNWatchRecord.h); applications make the others.

#include <string_view>

namespace quillon {

// What a record tells of, and its kinds
inline constexpr std::string_view QNWatchTypeKey = "QNWatchTypeKey";
inline constexpr std::string_view QNWatchTypeBankAccount = "QNWatchTypeBankAccount";
inline constexpr std::string_view QNWatchTypeCreditCard = "QNWatchTypeCreditCard";
inline constexpr std::string_view QNWatchTypeDriversLicense = "QNWatchTypeDriversLicense";
inline constexpr std::string_view QNWatchTypeLogin = "QNWatchTypeLogin";
inline constexpr std::string_view QNWatchTypeOTP = "QNWatchTypeOTP";
inline constexpr std::string_view QNWatchTypePassport = "QNWatchTypePassport";
inline constexpr std::string_view QNWatchTypePassword = "QNWatchTypePassword";
inline constexpr std::string_view QNWatchTypeSecureNote = "QNWatchTypeSecureNote";
inline constexpr std::string_view QNWatchTypeSocialSecurityNumber =
    "QNWatchTypeSocialSecurityNumber";
inline constexpr std::string_view QNWatchTypeWirelessRouter = "QNWatchTypeWirelessRouter";

// An item's record
inline constexpr std::string_view QNOTPKeychainItemUUIDKey = "QNOTPKeychainItemUUIDKey";
inline constexpr std::string_view QNOTPKeychainItemNameKey = "QNOTPKeychainItemNameKey";
inline constexpr std::string_view QNOTPKeychainItemURLKey = "QNOTPKeychainItemURLKey";
inline constexpr std::string_view QNWatchKeychainItemValueDataKey =
    "QNWatchKeychainItemValueDataKey";

// Values of a bank account
inline constexpr std::string_view QNWatchBankAccountItemAccountNumberKey =
    "QNWatchBankAccountItemAccountNumberKey";
inline constexpr std::string_view QNWatchBankAccountItemBankNameKey =
    "QNWatchBankAccountItemBankNameKey";
inline constexpr std::string_view QNWatchBankAccountItemIBANKey = "QNWatchBankAccountItemIBANKey";
inline constexpr std::string_view QNWatchBankAccountItemOwnerKey = "QNWatchBankAccountItemOwnerKey";
inline constexpr std::string_view QNWatchBankAccountItemRoutingNumberKey =
    "QNWatchBankAccountItemRoutingNumberKey";
inline constexpr std::string_view QNWatchBankAccountItemSwiftKey = "QNWatchBankAccountItemSwiftKey";
inline constexpr std::string_view QNWatchBankAccountItemTelephonePINKey =
    "QNWatchBankAccountItemTelephonePINKey";
inline constexpr std::string_view QNWatchBankAccountItemTypeKey = "QNWatchBankAccountItemTypeKey";

// Values of a credit card
inline constexpr std::string_view QNWatchCreditCardItemExpiryDateKey =
    "QNWatchCreditCardItemExpiryDateKey";
inline constexpr std::string_view QNWatchCreditCardItemNumberKey = "QNWatchCreditCardItemNumberKey";
inline constexpr std::string_view QNWatchCreditCardItemPINKey = "QNWatchCreditCardItemPINKey";
inline constexpr std::string_view QNWatchCreditCardItemTypeKey = "QNWatchCreditCardItemTypeKey";
inline constexpr std::string_view QNWatchCreditCardItemVerificationNumberKey =
    "QNWatchCreditCardItemVerificationNumberKey";

// Values of a driver license
inline constexpr std::string_view QNWatchDriversLicenseItemExpiryKey =
    "QNWatchDriversLicenseItemExpiryKey";
inline constexpr std::string_view QNWatchDriversLicenseItemNameKey =
    "QNWatchDriversLicenseItemNameKey";
inline constexpr std::string_view QNWatchDriversLicenseItemNumberKey =
    "QNWatchDriversLicenseItemNumberKey";

// Values of logins, passwords and notes
inline constexpr std::string_view QNWatchLoginItemPasswordKey = "QNWatchLoginItemPasswordKey";
inline constexpr std::string_view QNWatchLoginItemUsernameKey = "QNWatchLoginItemUsernameKey";
inline constexpr std::string_view QNWatchSecureNoteItemNoteKey = "QNWatchSecureNoteItemNoteKey";

// Values of a passport
inline constexpr std::string_view QNWatchPassportItemBirthDateKey =
    "QNWatchPassportItemBirthDateKey";
inline constexpr std::string_view QNWatchPassportItemBirthplaceKey =
    "QNWatchPassportItemBirthplaceKey";
inline constexpr std::string_view QNWatchPassportItemExpiryDateKey =
    "QNWatchPassportItemExpiryDateKey";
inline constexpr std::string_view QNWatchPassportItemFullNameKey = "QNWatchPassportItemFullNameKey";
inline constexpr std::string_view QNWatchPassportItemIssueDateKey =
    "QNWatchPassportItemIssueDateKey";
inline constexpr std::string_view QNWatchPassportItemIssuingAuthorityKey =
    "QNWatchPassportItemIssuingAuthorityKey";
inline constexpr std::string_view QNWatchPassportItemIssuingCountryKey =
    "QNWatchPassportItemIssuingCountryKey";
inline constexpr std::string_view QNWatchPassportItemNationalityKey =
    "QNWatchPassportItemNationalityKey";
inline constexpr std::string_view QNWatchPassportItemNumberKey = "QNWatchPassportItemNumberKey";
inline constexpr std::string_view QNWatchPassportItemSexKey = "QNWatchPassportItemSexKey";
inline constexpr std::string_view QNWatchPassportItemTypeKey = "QNWatchPassportItemTypeKey";

// Values of a social security number
inline constexpr std::string_view QNWatchSocialSecurityNumberItemNameKey =
    "QNWatchSocialSecurityNumberItemNameKey";
inline constexpr std::string_view QNWatchSocialSecurityNumberItemNumberKey =
    "QNWatchSocialSecurityNumberItemNumberKey";

// Values of a router
inline constexpr std::string_view QNWatchWirelessRouterItemAdminPasswordKey =
    "QNWatchWirelessRouterItemAdminPasswordKey";
inline constexpr std::string_view QNWatchWirelessRouterItemNameKey =
    "QNWatchWirelessRouterItemNameKey";
inline constexpr std::string_view QNWatchWirelessRouterItemPasswordKey =
    "QNWatchWirelessRouterItemPasswordKey";
inline constexpr std::string_view QNWatchWirelessRouterItemSSIDKey =
    "QNWatchWirelessRouterItemSSIDKey";
inline constexpr std::string_view QNWatchWirelessRouterItemSecurityTypeKey =
    "QNWatchWirelessRouterItemSecurityTypeKey";

// Messages that keep a watch in step
inline constexpr std::string_view QNWatchSyncClearKeychainKey = "QNWatchSyncClearKeychainKey";
inline constexpr std::string_view QNWatchSyncDeleteItemKey = "QNWatchSyncDeleteItemKey";
inline constexpr std::string_view QNWatchSyncUpdateItemKey = "QNWatchSyncUpdateItemKey";

// Where a watch keeps seeds of one-time passwords
inline constexpr std::string_view QNOTPKeychainService = "QNOTPKeychainService";
inline constexpr std::string_view QNOTPKeychainItemOTPSecretKey = "QNOTPKeychainItemOTPSecretKey";

// Notification
inline constexpr std::string_view QNWatchDisabledForLegacyPINCodeNotification =
    "QNWatchDisabledForLegacyPINCodeNotification";

// What a card's brand is called
inline constexpr std::string_view QNWatchCreditCardItemTypeVisaKey = "visa";
inline constexpr std::string_view QNWatchCreditCardItemTypeMasterCardKey = "mc";
inline constexpr std::string_view QNWatchCreditCardItemTypeAmericanExpressKey = "amex";
inline constexpr std::string_view QNWatchCreditCardItemTypeDiscoverKey = "discover";

}  // namespace quillon
