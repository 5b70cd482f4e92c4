#include "quillon/touchpoints/QNWatchRecord.h"

#include <gmock/gmock.h>

#include "quillon/fields/QNItemField.h"
#include "quillon/items/QNQuickAccessShortcut.h"
#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/kinds/QNCreditCard.h"
#include "quillon/kinds/QNSecureNote.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/logins/QNPassword.h"
#include "quillon/platform/internal/QNMemoryWatch.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/templates/internal/QNTestCategories.h"

namespace quillon {
namespace {

template <class Item>
std::shared_ptr<Item> inVault(std::shared_ptr<Item> item) {
  item->setProfile(localVault());
  item->setUuid(sharedString("ITEM"));
  item->setTitle("Library");
  return item;
}

template <class Item>
std::shared_ptr<Item> newIn() {
  return inVault(std::make_shared<Item>(initNew));
}

std::string textOf(const JsonObject& object) {
  return mr_JSONStringWithError(object).value_or("(no form)");
}

std::string valuesOf(const JsonObject& record) {
  return jsonText(record.if_contains("QNWatchKeychainItemValueDataKey"));
}

TEST(QNWatchRecord, OfALoginIsItsIdentityAroundItsValues) {
  const auto login = newIn<QNLogin>();
  login->addURLString("https://www.example.com/sign-in");
  login->addURLString("https://other.example/");
  login->setUsername("ann");
  login->setPassword("pw");

  EXPECT_EQ(textOf(login->appleWatchDictionaryRepresentation()),
            R"({"QNOTPKeychainItemUUIDKey":"ITEM","QNOTPKeychainItemNameKey":"Library",)"
            R"("QNOTPKeychainItemURLKey":"www.example.com","QNWatchKeychainItemValueDataKey":)"
            R"({"QNWatchTypeKey":"QNWatchTypeLogin","QNWatchLoginItemUsernameKey":"ann",)"
            R"("QNWatchLoginItemPasswordKey":"pw"}})");
}

TEST(QNWatchRecord, OfALoginWithoutValuesHasEmptyTexts) {
  EXPECT_EQ(textOf(newIn<QNLogin>()->appleWatchDictionaryRepresentation()),
            R"({"QNOTPKeychainItemUUIDKey":"ITEM","QNOTPKeychainItemNameKey":"Library",)"
            R"("QNOTPKeychainItemURLKey":"","QNWatchKeychainItemValueDataKey":)"
            R"({"QNWatchTypeKey":"QNWatchTypeLogin","QNWatchLoginItemUsernameKey":"",)"
            R"("QNWatchLoginItemPasswordKey":""}})");
}

TEST(QNWatchRecord, OfAnAddressWithoutAHostHasAnEmptyOne) {
  const auto login = newIn<QNLogin>();
  login->addURLString("https://");

  EXPECT_EQ(login->appleWatchDictionaryRepresentation().at("QNOTPKeychainItemURLKey"), Json(""));
}

TEST(QNWatchRecord, HasTheHostOfTheAddressAsItIs) {
  const auto login = newIn<QNLogin>();
  login->addURLString("https://a.example");
  EXPECT_EQ(login->appleWatchDictionaryRepresentation().at("QNOTPKeychainItemURLKey"),
            Json("a.example"));
  EXPECT_EQ(login->derivedDomain(), "a.example");

  login->URLAtIndex(0)->setURLString("https://b.example");

  EXPECT_EQ(login->appleWatchDictionaryRepresentation().at("QNOTPKeychainItemURLKey"),
            Json("b.example"));
}

TEST(QNWatchRecord, OfAnItemWithoutATitleIsUnnamedInTheUsersLanguage) {
  const QNScopedLanguage language("de");
  const auto login = std::make_shared<QNLogin>(initNew);

  EXPECT_EQ(login->appleWatchDictionaryRepresentation().at("QNOTPKeychainItemNameKey"),
            Json("Unbenannt"));
}

TEST(QNWatchRecord, OfAnAddressThatDoesNotOpenHasAnEmptyOne) {
  const auto login = newIn<QNLogin>();
  const auto damaged = std::make_shared<QNItemURL>(QNExisting{3});
  damaged->setProfile(login->profile());
  damaged->setOverviewData(Bytes(64, 1));
  login->addURL(damaged);
  login->addURLString("https://other.example/");
  const MRCapturingSink sink;

  EXPECT_EQ(login->appleWatchDictionaryRepresentation().at("QNOTPKeychainItemURLKey"), Json(""));
}

TEST(QNWatchRecord, OfAnItemWhoseDetailsAreNotLoadedHasTheHostAndSaysThatItHasNoMore) {
  const auto vault = localVault();
  const auto row = std::make_shared<QNLogin>(initNew);
  row->setProfile(vault);
  row->setTitle("Library");
  row->setURLString("https://www.example.com/sign-in");
  row->setPassword("pw");
  row->willSave();
  const auto login = std::make_shared<QNLogin>(QNExisting{1});
  login->setProfile(vault);
  login->setUuid(sharedString("ITEM"));
  login->setOverviewData(row->overviewData());
  const MRCapturingSink sink;

  EXPECT_EQ(textOf(login->appleWatchDictionaryRepresentation()),
            R"({"QNOTPKeychainItemUUIDKey":"ITEM","QNOTPKeychainItemNameKey":"Library",)"
            R"("QNOTPKeychainItemURLKey":"www.example.com","QNWatchKeychainItemValueDataKey":)"
            R"({"QNWatchTypeKey":"QNWatchTypeLogin","QNWatchLoginItemUsernameKey":"",)"
            R"("QNWatchLoginItemPasswordKey":""}})");
  EXPECT_THAT(assertions(sink), testing::Contains(testing::EndsWith("is not loaded")));
}

TEST(QNWatchRecord, OfAnItemThatDoesNotOpenHasEmptyTexts) {
  const QNScopedLanguage language("en");
  const auto vault = localVault();
  const auto row = std::make_shared<QNSecureNote>(initNew);
  row->setProfile(vault);
  row->setTitle("Library");
  row->setNotesPlain("a note");
  row->willSave();
  const auto note = std::make_shared<QNSecureNote>(QNExisting{1});
  note->setProfile(vault);
  note->setUuid(sharedString("ITEM"));
  note->setOverviewData(row->overviewData());
  note->markLoadingDetails();
  note->setEncryptedKey(row->encryptedKey());
  note->setDetailsData(row->detailsData());
  note->markDetailsLoaded();
  vault->lock();
  const MRCapturingSink sink;

  EXPECT_EQ(textOf(note->appleWatchDictionaryRepresentation()),
            R"({"QNOTPKeychainItemUUIDKey":"ITEM","QNOTPKeychainItemNameKey":"Unnamed",)"
            R"("QNOTPKeychainItemURLKey":"","QNWatchKeychainItemValueDataKey":)"
            R"({"QNWatchTypeKey":"QNWatchTypeSecureNote","QNWatchSecureNoteItemNoteKey":""}})");
  EXPECT_EQ(note->details(), nullptr);
  EXPECT_EQ(note->mutableOverview(), nullptr);
}

TEST(QNWatchRecord, OfAnItemWithoutAUuidHasAnEmptyOne) {
  const auto login = std::make_shared<QNLogin>(initNew);

  EXPECT_EQ(login->appleWatchDictionaryRepresentation().at("QNOTPKeychainItemUUIDKey"), Json(""));
}

TEST(QNWatchRecord, OfAPasswordHasThePassword) {
  const auto item = newIn<QNPassword>();
  EXPECT_EQ(valuesOf(item->appleWatchDictionaryRepresentation()),
            R"({"QNWatchTypeKey":"QNWatchTypePassword","QNWatchLoginItemPasswordKey":""})");

  item->setPassword("pw");

  EXPECT_EQ(valuesOf(item->appleWatchDictionaryRepresentation()),
            R"({"QNWatchTypeKey":"QNWatchTypePassword","QNWatchLoginItemPasswordKey":"pw"})");
}

TEST(QNWatchRecord, OfANoteHasItsNotesOrAnEmptyText) {
  const auto note = newIn<QNSecureNote>();
  EXPECT_EQ(valuesOf(note->appleWatchDictionaryRepresentation()),
            R"({"QNWatchTypeKey":"QNWatchTypeSecureNote","QNWatchSecureNoteItemNoteKey":""})");

  note->setNotesPlain("a\nb");

  EXPECT_EQ(valuesOf(note->appleWatchDictionaryRepresentation()),
            R"({"QNWatchTypeKey":"QNWatchTypeSecureNote","QNWatchSecureNoteItemNoteKey":"a\nb"})");
}

std::shared_ptr<QNCreditCard> cardWithNumber(std::string_view number) {
  auto card = inVault(QNCreditCard::initNewCard());
  card->setStringFieldValue(number, "ccnum");
  return card;
}

TEST(QNWatchRecord, OfACardHasItsFields) {
  const auto card = cardWithNumber("4111111111111111");
  const Json july(202407);
  card->setStringFieldValue("visa", "type");
  card->setStringFieldValue("123", "cvv");
  card->setStringFieldValue("9876", "pin");
  card->expiringDateField()->setJsonValue(&july);

  EXPECT_EQ(valuesOf(card->appleWatchDictionaryRepresentation()),
            R"({"QNWatchTypeKey":"QNWatchTypeCreditCard","QNWatchCreditCardItemTypeKey":"visa",)"
            R"("QNWatchCreditCardItemNumberKey":"4111 1111 1111 1111",)"
            R"("QNWatchCreditCardItemExpiryDateKey":"07/2024",)"
            R"("QNWatchCreditCardItemVerificationNumberKey":"123",)"
            R"("QNWatchCreditCardItemPINKey":"9876"})");
}

TEST(QNWatchRecord, OfACardWithoutFieldsHasEmptyTexts) {
  const auto card = inVault(QNCreditCard::initNewWithTemplate(templateOf(R"({"contents":[]})")));

  EXPECT_EQ(valuesOf(card->appleWatchDictionaryRepresentation()),
            R"({"QNWatchTypeKey":"QNWatchTypeCreditCard","QNWatchCreditCardItemTypeKey":"",)"
            R"("QNWatchCreditCardItemNumberKey":"","QNWatchCreditCardItemExpiryDateKey":"",)"
            R"("QNWatchCreditCardItemVerificationNumberKey":"",)"
            R"("QNWatchCreditCardItemPINKey":""})");
}

TEST(QNWatchRecord, FormatsTheDigitsOfACardsNumberAlone) {
  const auto numberOf = [](std::string_view number) {
    const auto record = cardWithNumber(number)->appleWatchDictionaryRepresentation();
    return std::string(record.at("QNWatchKeychainItemValueDataKey")
                           .at("QNWatchCreditCardItemNumberKey")
                           .get_string());
  };

  EXPECT_EQ(numberOf("37-82 8224 6310-005"), "3782 822463 10005");
  EXPECT_EQ(numberOf(" 4111\t1111 x1111 1111\u00A0"), "4111 1111 1111 1111");
  EXPECT_EQ(numberOf("none"), "");
}

// Of a length that lies inside a JSON value, and of one that lies outside.
class QNWatchRecordSecrets : public testing::TestWithParam<std::string_view> {};

TEST_P(QNWatchRecordSecrets, LeavesNoFreedBlockWithAPassword) {
  const auto login = newIn<QNLogin>();
  login->setPassword(GetParam());
  const QNFreedBlockWatch watch(GetParam());

  ASSERT_EQ(login->appleWatchDictionaryRepresentation().size(), 4u);

  EXPECT_EQ(watch.found(), 0u);
}

TEST_P(QNWatchRecordSecrets, LeavesNoFreedBlockWithAPasswordThatStandsAlone) {
  const auto item = newIn<QNPassword>();
  item->setPassword(GetParam());
  const QNFreedBlockWatch watch(GetParam());

  ASSERT_EQ(item->appleWatchDictionaryRepresentation().size(), 4u);

  EXPECT_EQ(watch.found(), 0u);
}

TEST_P(QNWatchRecordSecrets, LeavesNoFreedBlockWithANote) {
  const auto note = newIn<QNSecureNote>();
  note->setNotesPlain(GetParam());
  const QNFreedBlockWatch watch(GetParam());

  ASSERT_EQ(note->appleWatchDictionaryRepresentation().size(), 4u);

  EXPECT_EQ(watch.found(), 0u);
}

TEST_P(QNWatchRecordSecrets, LeavesNoFreedBlockWithWhatACardHides) {
  for (const char* const identifier : {"cvv", "pin"}) {
    const auto card = cardWithNumber("378282246310005");
    card->setStringFieldValue(GetParam(), identifier);
    const QNFreedBlockWatch watch(GetParam());

    ASSERT_EQ(card->appleWatchDictionaryRepresentation().size(), 4u);

    EXPECT_EQ(watch.found(), 0u) << identifier;
  }
}

TEST_P(QNWatchRecordSecrets, LeavesNoStackWithAPassword) {
  const auto login = newIn<QNLogin>();
  login->setPassword(GetParam());
  const auto work = [&login] { ASSERT_EQ(login->appleWatchDictionaryRepresentation().size(), 4u); };

  EXPECT_EQ(remainsOnStack(GetParam(), work), 0u);
}

TEST_P(QNWatchRecordSecrets, LeavesNoStackWithAPasswordThatStandsAlone) {
  const auto item = newIn<QNPassword>();
  item->setPassword(GetParam());
  const auto work = [&item] { ASSERT_EQ(item->appleWatchDictionaryRepresentation().size(), 4u); };

  EXPECT_EQ(remainsOnStack(GetParam(), work), 0u);
}

TEST_P(QNWatchRecordSecrets, LeavesNoStackWithANote) {
  const auto note = newIn<QNSecureNote>();
  note->setNotesPlain(GetParam());
  const auto work = [&note] { ASSERT_EQ(note->appleWatchDictionaryRepresentation().size(), 4u); };

  EXPECT_EQ(remainsOnStack(GetParam(), work), 0u);
}

TEST_P(QNWatchRecordSecrets, LeavesNoStackWithWhatACardHides) {
  for (const char* const identifier : {"cvv", "pin"}) {
    const auto card = cardWithNumber("378282246310005");
    card->setStringFieldValue(GetParam(), identifier);
    const auto work = [&card] { ASSERT_EQ(card->appleWatchDictionaryRepresentation().size(), 4u); };

    EXPECT_EQ(remainsOnStack(GetParam(), work), 0u) << identifier;
  }
}

TEST_P(QNWatchRecordSecrets, QuickAccessLeavesNothingOfWhatACardHides) {
  const auto card = cardWithNumber("378282246310005");
  card->setStringFieldValue(GetParam(), "cvv");
  const QNFreedBlockWatch watch(GetParam());

  const std::size_t found =
      remainsOnStack(GetParam(), [&card] { ASSERT_EQ(card->quickAccessFields().size(), 2u); });

  EXPECT_EQ(found, 0u);
  EXPECT_EQ(watch.found(), 0u);
}

INSTANTIATE_TEST_SUITE_P(
    ShortAndLong, QNWatchRecordSecrets,
    testing::Values("qZ7!xK", "a long secret #481516 that no value holds inside itself"));

TEST(QNWatchRecordCards, LeaveNoFreedBlockWithANumber) {
  const auto card = cardWithNumber("378282246310005");
  const QNFreedBlockWatch digits("378282246310005");
  const QNFreedBlockWatch blocks("3782 822463 10005");

  ASSERT_EQ(card->appleWatchDictionaryRepresentation().size(), 4u);

  EXPECT_EQ(digits.found(), 0u);
  EXPECT_EQ(blocks.found(), 0u);
}

}  // namespace
}  // namespace quillon
