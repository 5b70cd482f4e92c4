#include "quillon/touchpoints/QNWatchConstants.h"

#include <gtest/gtest.h>

#include <utility>

namespace quillon {
namespace {

#define QN_NAMED(constant)                        \
  std::pair<std::string_view, std::string_view> { \
    constant, #constant                           \
  }

constexpr std::pair<std::string_view, std::string_view> kConstants[] = {
    QN_NAMED(QNWatchTypeKey),
    QN_NAMED(QNWatchTypeBankAccount),
    QN_NAMED(QNWatchTypeCreditCard),
    QN_NAMED(QNWatchTypeDriversLicense),
    QN_NAMED(QNWatchTypeLogin),
    QN_NAMED(QNWatchTypeOTP),
    QN_NAMED(QNWatchTypePassport),
    QN_NAMED(QNWatchTypePassword),
    QN_NAMED(QNWatchTypeSecureNote),
    QN_NAMED(QNWatchTypeSocialSecurityNumber),
    QN_NAMED(QNWatchTypeWirelessRouter),
    QN_NAMED(QNOTPKeychainItemUUIDKey),
    QN_NAMED(QNOTPKeychainItemNameKey),
    QN_NAMED(QNOTPKeychainItemURLKey),
    QN_NAMED(QNWatchKeychainItemValueDataKey),
    QN_NAMED(QNWatchBankAccountItemAccountNumberKey),
    QN_NAMED(QNWatchBankAccountItemBankNameKey),
    QN_NAMED(QNWatchBankAccountItemIBANKey),
    QN_NAMED(QNWatchBankAccountItemOwnerKey),
    QN_NAMED(QNWatchBankAccountItemRoutingNumberKey),
    QN_NAMED(QNWatchBankAccountItemSwiftKey),
    QN_NAMED(QNWatchBankAccountItemTelephonePINKey),
    QN_NAMED(QNWatchBankAccountItemTypeKey),
    QN_NAMED(QNWatchCreditCardItemExpiryDateKey),
    QN_NAMED(QNWatchCreditCardItemNumberKey),
    QN_NAMED(QNWatchCreditCardItemPINKey),
    QN_NAMED(QNWatchCreditCardItemTypeKey),
    QN_NAMED(QNWatchCreditCardItemVerificationNumberKey),
    QN_NAMED(QNWatchDriversLicenseItemExpiryKey),
    QN_NAMED(QNWatchDriversLicenseItemNameKey),
    QN_NAMED(QNWatchDriversLicenseItemNumberKey),
    QN_NAMED(QNWatchLoginItemPasswordKey),
    QN_NAMED(QNWatchLoginItemUsernameKey),
    QN_NAMED(QNWatchSecureNoteItemNoteKey),
    QN_NAMED(QNWatchPassportItemBirthDateKey),
    QN_NAMED(QNWatchPassportItemBirthplaceKey),
    QN_NAMED(QNWatchPassportItemExpiryDateKey),
    QN_NAMED(QNWatchPassportItemFullNameKey),
    QN_NAMED(QNWatchPassportItemIssueDateKey),
    QN_NAMED(QNWatchPassportItemIssuingAuthorityKey),
    QN_NAMED(QNWatchPassportItemIssuingCountryKey),
    QN_NAMED(QNWatchPassportItemNationalityKey),
    QN_NAMED(QNWatchPassportItemNumberKey),
    QN_NAMED(QNWatchPassportItemSexKey),
    QN_NAMED(QNWatchPassportItemTypeKey),
    QN_NAMED(QNWatchSocialSecurityNumberItemNameKey),
    QN_NAMED(QNWatchSocialSecurityNumberItemNumberKey),
    QN_NAMED(QNWatchWirelessRouterItemAdminPasswordKey),
    QN_NAMED(QNWatchWirelessRouterItemNameKey),
    QN_NAMED(QNWatchWirelessRouterItemPasswordKey),
    QN_NAMED(QNWatchWirelessRouterItemSSIDKey),
    QN_NAMED(QNWatchWirelessRouterItemSecurityTypeKey),
    QN_NAMED(QNWatchSyncClearKeychainKey),
    QN_NAMED(QNWatchSyncDeleteItemKey),
    QN_NAMED(QNWatchSyncUpdateItemKey),
    QN_NAMED(QNOTPKeychainService),
    QN_NAMED(QNOTPKeychainItemOTPSecretKey),
    QN_NAMED(QNWatchDisabledForLegacyPINCodeNotification),
};

TEST(QNWatchConstants, AreTheirOwnNames) {
  for (const auto& [text, name] : kConstants) EXPECT_EQ(text, name);
}

TEST(QNWatchConstants, OfBrandsAreThoseOfACardsField) {
  EXPECT_EQ(QNWatchCreditCardItemTypeVisaKey, "visa");
  EXPECT_EQ(QNWatchCreditCardItemTypeMasterCardKey, "mc");
  EXPECT_EQ(QNWatchCreditCardItemTypeAmericanExpressKey, "amex");
  EXPECT_EQ(QNWatchCreditCardItemTypeDiscoverKey, "discover");
}

}  // namespace
}  // namespace quillon
