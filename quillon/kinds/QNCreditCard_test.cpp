#include "quillon/kinds/QNCreditCard.h"

#include <gmock/gmock.h>

#include "quillon/fields/QNItemMonthYearField.h"
#include "quillon/items/internal/QNQuickAccessTesting.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/images/internal/QNNamedPictures.h"
#include "quillon/templates/internal/QNTestCategories.h"

namespace quillon {
namespace {

std::shared_ptr<QNCreditCard> card() {
  auto made = QNCreditCard::initNewCard();
  made->setProfile(localVault());
  return made;
}

std::shared_ptr<QNCreditCard> cardWithNumber(std::string_view number) {
  auto made = card();
  made->setStringFieldValue(number, "ccnum");
  return made;
}

TEST(QNCreditCard, ReadsItsFieldsByTheirIdentifiers) {
  const auto made = card();
  made->setStringFieldValue("4111 1111 1111 1111", "ccnum");
  made->setStringFieldValue("visa", "type");
  made->setStringFieldValue("123", "cvv");
  made->setStringFieldValue("9876", "pin");

  EXPECT_TRUE(made->creditCardNumber()->equals("4111 1111 1111 1111"));
  EXPECT_EQ(made->creditCardType(), "visa");
  EXPECT_TRUE(made->cvvNumber()->equals("123"));
  EXPECT_TRUE(made->creditCardPIN()->equals("9876"));
  EXPECT_EQ(made->expiringDateField()->identifier(), "expiry");
  EXPECT_EQ(made->cardholderField()->identifier(), "cardholder");
}

TEST(QNCreditCard, WithoutFieldsHasNoValues) {
  const auto made = QNCreditCard::initNewWithTemplate(templateOf(R"({"contents":[]})"));
  made->setProfile(localVault());

  EXPECT_FALSE(made->creditCardNumber());
  EXPECT_EQ(made->creditCardType(), std::nullopt);
  EXPECT_FALSE(made->cvvNumber());
  EXPECT_FALSE(made->creditCardPIN());
  EXPECT_EQ(made->expiringDateField(), nullptr);
  EXPECT_EQ(made->cardholderField(), nullptr);
  EXPECT_EQ(made->maskedCreditCardNumber(), std::nullopt);
  EXPECT_EQ(made->creditCardSuffixNumber(), std::nullopt);
  EXPECT_FALSE(made->clipboardValue());
  EXPECT_EQ(made->localizedCreditCardType(), "");
}

struct MaskCase {
  std::string_view number, masked;
  std::optional<std::string> suffix;
};

TEST(QNCreditCard, MasksANumberOfElevenCharactersOrMore) {
  const MaskCase cases[] = {
      {"1234 5678 9012", "1234 **** 9012", "9012"},
      {" 123 456 7890", "123 **** 7890", "7890"},
      {"12345678901", "1234 **** 8901", "8901"},
      {"1234567890", "1234567890", std::nullopt},
      {"4111111111111111", "4111 **** 1111", "1111"},
      {"411111111111 11 ", "4111 **** 11", "11"},
      {"", "", std::nullopt},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(cardWithNumber(each.number)->maskedCreditCardNumber(), each.masked) << each.number;
    EXPECT_EQ(cardWithNumber(each.number)->creditCardSuffixNumber(), each.suffix) << each.number;
  }
}

TEST(QNCreditCard, ShowsItsMaskedNumberAsSubtitle) {
  const auto made = cardWithNumber("1234 5678 9012");

  save(*made);

  EXPECT_EQ(made->additionalInformation(), "1234 **** 9012");
}

TEST(QNCreditCard, KeepsTheOrderOfTheMaskedNumberFromRightToLeft) {
  const QNScopedLocale arabic("ar-EG");

  EXPECT_EQ(cardWithNumber("1234 5678 9012")->maskedCreditCardNumber(),
            "\u20661234 **** 9012\u2069");
}

TEST(QNCreditCard, CopiesTheDigitsOfItsNumber) {
  EXPECT_TRUE(cardWithNumber("1234 5678 9012")->clipboardValue()->equals("123456789012"));
}

std::shared_ptr<QNCreditCard> filledCard() {
  auto made = cardWithNumber("4111 1111 1111 1111");
  const Json july(202407);
  made->setStringFieldValue("123", "cvv");
  made->setStringFieldValue("9876", "pin");
  made->setStringFieldValue("Ann", "cardholder");
  made->expiringDateField()->setJsonValue(&july);
  return made;
}

TEST(QNCreditCard, OffersFourFieldsToQuickAccess) {
  EXPECT_THAT(shown(filledCard()->quickAccessFields()),
              testing::ElementsAre("cardholder 0", "ccnum 2", "expiry 3", "cvv 1"));
}

TEST(QNCreditCard, OffersQuickAccessNoFieldWithoutAValue) {
  EXPECT_THAT(shown(cardWithNumber("4111")->quickAccessFields()), testing::ElementsAre("ccnum 2"));
}

TEST(QNCreditCard, OffersItsSecurityCodeToThoseWhoMayRevealIt) {
  const auto made = filledCard();

  made->setProfile(vaultWithoutRevealing());

  EXPECT_THAT(shown(made->quickAccessFields()),
              testing::ElementsAre("cardholder 0", "ccnum 2", "expiry 3"));
}

TEST(QNCreditCard, HasNoPasswordForTheRestOfTheSystem) {
  const auto made = cardWithNumber("1234 5678 9012");
  made->setStringFieldValue("123", "cvv");
  made->setOverviewObject(Json(70), "ps");

  EXPECT_FALSE(made->password());
  EXPECT_FALSE(made->hasPassword());
  EXPECT_EQ(made->passwordStrength(), 0);
}

TEST(QNCreditCard, NamesItsBrandInTheUsersLanguage) {
  const QNScopedLanguage language("en");
  const QNScopedTemplates templates{
      R"({"uuid":"002","localizedStrings":{"menu.type.mc":"Mastercard"},"contents":)"
      R"([{"set":"","fields":[{"type":"cctype","name":"type"}]}]})"};
  const auto made = card();

  made->setStringFieldValue("mc", "type");
  EXPECT_EQ(made->localizedCreditCardType(), "Mastercard");
  made->setStringFieldValue("unheard of", "type");

  EXPECT_EQ(made->localizedCreditCardType(), "unheard of");
}

TEST(QNCreditCard, WithoutTheSharedTemplateNamesItsBrandAsItIsStored) {
  const auto made = card();
  made->setStringFieldValue("mc", "type");
  const QNScopedTemplates none;

  EXPECT_EQ(made->localizedCreditCardType(), "mc");
}

TEST(QNCreditCard, FourBrandsHaveIcons) {
  const std::pair<std::string_view, std::string_view> brands[] = {
      {"visa", "visa"}, {"amex", "amex"}, {"mc", "mastercard"}, {"discover", "discover"}};
  for (const auto& [type, word] : brands) {
    const auto made = card();
    made->setStringFieldValue(type, "type");

    EXPECT_TRUE(isPictureNamed(made->detailIcon(), "type-" + std::string(word) + "-details"));
    EXPECT_TRUE(isPictureNamed(made->listIcon(), "type-" + std::string(word) + "-list"));
    EXPECT_TRUE(isPictureNamed(made->miniIcon(), "type-" + std::string(word) + "-source"));
  }
}

TEST(QNCreditCard, AnyOtherBrandHasTheIconsOfTheCategory) {
  for (const std::string_view type : {"jcb", "", "Visa"}) {
    const auto made = card();
    made->setStringFieldValue(type, "type");

    EXPECT_EQ(made->imageNameWithFormatString("type-%@-list"), std::nullopt);
    EXPECT_TRUE(isPictureNamed(made->detailIcon(), "type-credit-card-details"));
    EXPECT_TRUE(isPictureNamed(made->listIcon(), "type-credit-card-list"));
    EXPECT_TRUE(isPictureNamed(made->miniIcon(), "type-credit-card-source"));
  }
}

TEST(QNCreditCard, WithoutLoadedDetailsShowsTheIconsOfTheCategoryAndOpensNothing) {
  const auto vault = localVault();
  const auto row = card();
  row->setProfile(vault);
  row->setStringFieldValue("visa", "type");
  save(*row);
  const auto item = std::make_shared<QNCreditCard>(QNExisting{row->oid()});
  item->setProfile(vault);
  item->setEncryptedKey(row->encryptedKey());
  item->setDetailsData(row->detailsData());
  const auto before = vault->numberOfItemKeysUnwrapped();
  const MRCapturingSink sink;

  EXPECT_TRUE(isPictureNamed(item->detailIcon(), "type-credit-card-details"));
  EXPECT_TRUE(isPictureNamed(item->listIcon(), "type-credit-card-list"));
  EXPECT_TRUE(isPictureNamed(item->miniIcon(), "type-credit-card-source"));

  EXPECT_EQ(vault->numberOfItemKeysUnwrapped(), before);
  EXPECT_TRUE(sink.records().empty());
}

}  // namespace
}  // namespace quillon
