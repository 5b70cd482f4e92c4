#include "cli/fields/QNFieldReading.h"

#include <gmock/gmock.h>

#include "quillon/fields/QNItemAddressField.h"
#include "quillon/fields/QNItemStringField.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/templates/QNTemplateManager.h"

namespace quillon {
namespace {

using testing::HasSubstr;
using testing::Not;

// Fields of the categories' templates, in German.
class QNFieldReading : public testing::Test {
 protected:
  // A template keeps the language of its first use.
  QNFieldReading() : _before(QNTemplateManager::sharedManager().exchangeRegistry(nullptr)) {
    QNLocalization::sharedLocalization().setLanguage("de");
  }
  ~QNFieldReading() override {
    QNTemplateManager::sharedManager().exchangeRegistry(_before);
    QNLocalization::sharedLocalization().setLanguage("en");
  }

  static QNItemFieldRef field(std::string_view category, std::string_view identifier) {
    const auto found = QNTemplateManager::sharedManager().templateWithUUID(category);
    const auto* const definition = found->definitionForFieldIdentifier(identifier);
    return found->instantiateFieldForDefinition(*definition);
  }
  // The value for programs after reading `text`; what it was before if that can't be read.
  static std::string read(std::string_view category, std::string_view identifier,
                          std::string_view text) {
    const QNFieldTexts texts(category);
    const auto made = field(category, identifier);
    const auto done = readValue(*made, texts, text);
    if (!done) return "refused: " + done.error().message;
    return std::string(texts.plainValueOf(*made).reveal());
  }

  QNScopedLocale locale{"de-DE"};
  QNScopedTimeZone zone{"Europe/Berlin"};

 private:
  std::shared_ptr<const QNTemplateManager::Registry> _before;
};

TEST_F(QNFieldReading, TakesDatesInTwoForms) {
  EXPECT_EQ(read("106", "birthdate", "1984-02-29"), "1984-02-29");
  EXPECT_EQ(read("106", "birthdate", "29.2.1984"), "1984-02-29");
  for (const char* const text : {"1983-02-29", "29.02.84", "2/29/1984", "gestern", "1984"}) {
    EXPECT_THAT(read("106", "birthdate", text), HasSubstr("refused: no date")) << text;
  }
}

TEST_F(QNFieldReading, TakesMonthsInTwoForms) {
  EXPECT_EQ(read("002", "expiry", "2024-07"), "2024-07");
  EXPECT_EQ(read("002", "expiry", "07/2024"), "2024-07");
  EXPECT_EQ(read("002", "expiry", "7/2024"), "2024-07");
  for (const char* const text : {"2024-13", "2024-00", "13/2024", "07/24", "24-07", "2024/07",
                                 "2024-07-01", "202407", "-", "/", "07/", "-07", "Juli 2024"}) {
    EXPECT_THAT(read("002", "expiry", text), HasSubstr("refused: no month")) << text;
  }
}

TEST_F(QNFieldReading, TakesAValueOfAMenuOrItsLabelAndTellsTheChoices) {
  EXPECT_EQ(read("101", "accountType", "savings"), "savings");
  EXPECT_EQ(read("101", "accountType", "SPARKONTO"), "savings");
  EXPECT_EQ(read("002", "type", "Mastercard"), "mc");
  EXPECT_EQ(read("004", "sex", "female"), "female");

  const std::string refused = read("101", "accountType", "hunter2");
  EXPECT_THAT(refused, HasSubstr("savings (Sparkonto)"));
  EXPECT_THAT(refused, Not(HasSubstr("hunter2")));
}

TEST_F(QNFieldReading, TakesACountryByCodeOrName) {
  EXPECT_EQ(read("106", "issuing_country", "AT"), "at");
  EXPECT_EQ(read("106", "issuing_country", "Österreich"), "at");
  EXPECT_EQ(read("106", "issuing_country", "osterreich"), "at");
  EXPECT_THAT(read("106", "issuing_country", "Atlantis"), HasSubstr("refused: no country"));
}

TEST_F(QNFieldReading, RefusesWhatIsNoNumberOrAddressAtAll) {
  EXPECT_EQ(read("002", "ccnum", "4111 1111-1111 1111"), "4111 1111-1111 1111");
  EXPECT_THAT(read("002", "ccnum", "4111"), HasSubstr("refused"));
  EXPECT_THAT(read("002", "ccnum", "4111 1111 1111 111l"), HasSubstr("refused"));
  EXPECT_EQ(read("002", "phoneLocal", "+49 (30) 123-4 ext. 5"), "+49 (30) 123-4 ext. 5");
  EXPECT_THAT(read("002", "phoneLocal", "call me"), HasSubstr("refused"));
  EXPECT_EQ(read("111", "email", "jo.müller@exämple.org"), "jo.müller@exämple.org");
  for (const char* const text : {"jo", "@example.org", "jo@", "a@b@c", "jo @example.org"}) {
    EXPECT_THAT(read("111", "email", text), HasSubstr("refused")) << text;
  }
  EXPECT_EQ(read("110", "url", "ssh://host:22/"), "ssh://host:22/");
  EXPECT_THAT(read("110", "url", "two words"), HasSubstr("refused"));
  EXPECT_THAT(read("110", "username", "\xff"), HasSubstr("UTF-8"));
}

TEST_F(QNFieldReading, AnEmptyTextTakesEveryValueAway) {
  const QNFieldTexts texts("106");
  for (const auto& [category, identifier, value] :
       {std::array{"106", "birthdate", "2024-07-05"}, std::array{"002", "expiry", "2024-07"},
        std::array{"101", "accountType", "savings"}, std::array{"106", "issuing_country", "de"},
        std::array{"110", "password", "pa55"}}) {
    const auto made = field(category, identifier);
    ASSERT_TRUE(readValue(*made, QNFieldTexts(category), value).ok()) << identifier;
    ASSERT_FALSE(made->isEmpty());

    EXPECT_TRUE(readValue(*made, QNFieldTexts(category), "").ok());

    EXPECT_TRUE(made->isEmpty()) << identifier;
    EXPECT_FALSE(made->storedForm().contains("v"));
  }
}

TEST_F(QNFieldReading, SetsAnAddressByItsPartsAndKeepsWhatItDoesNotKnow) {
  const auto stored = mr_objectFromJSONStringWithError(
      R"({"n":"a","t":"A","k":"address","v":{"street":"Old 1","planet":"earth","city":"Ulm"}})");
  const auto made = QNItemField::fieldFromStored(*stored);

  EXPECT_TRUE(readAddressPart(*made, "street", "Neue Straße 2").ok());
  EXPECT_TRUE(readAddressPart(*made, "country", "Deutschland").ok());
  EXPECT_TRUE(readAddressPart(*made, "city", "").ok());
  EXPECT_FALSE(readAddressPart(*made, "country", "Atlantis").ok());

  EXPECT_EQ(mr_JSONStringWithError(made->storedForm()),
            R"({"n":"a","t":"A","k":"address","v":{"street":"Neue Straße 2","planet":"earth",)"
            R"("country":"de"}})");
  EXPECT_THAT(readValue(*made, QNFieldTexts("101"), "Neue Straße 2").error().message,
              HasSubstr("FIELD.street"));
}

// An address that lacks everything would be given the user's country when it is read.
TEST_F(QNFieldReading, AnAddressThatIsTakenAwayStaysAway) {
  const auto made = QNItemAddressField::fieldWithIdentifier("a");
  ASSERT_TRUE(readAddressPart(*made, "city", "Ulm").ok());

  EXPECT_TRUE(readValue(*made, QNFieldTexts("101"), "").ok());

  const auto again = QNItemField::fieldFromStored(made->storedForm());
  EXPECT_TRUE(again->isEmpty());
  EXPECT_TRUE(QNFieldTexts("101").shownValueOf(*again).empty());
  EXPECT_TRUE(QNFieldTexts("101").plainValueOf(*again).empty());

  EXPECT_TRUE(readAddressPart(*again, "city", "Ulm").ok());
  EXPECT_EQ(mr_JSONStringWithError(*again->jsonValue()), R"({"city":"Ulm"})");
  EXPECT_TRUE(readAddressPart(*again, "city", "").ok());
  EXPECT_TRUE(QNItemField::fieldFromStored(again->storedForm())->isEmpty());
}

TEST_F(QNFieldReading, TellsWhatIsWrongWithASeed) {
  const auto made = QNItemTOTPField::fieldWithIdentifier(std::nullopt);
  const auto reason = [&](std::string_view text) {
    return readValue(*made, QNFieldTexts("001"), text).error().message;
  };

  EXPECT_THAT(reason("GEZDGNBVGY3TQOJQ="), HasSubstr("\"=\" where none belongs"));
  EXPECT_THAT(reason("GEZDGNBV=GY3TQOJQ"), HasSubstr("\"=\" where none belongs"));
  EXPECT_THAT(reason("otpauth://totp/x?secret=GEZDGNBVGY3TQOJQ%3d&issuer=a"),
              HasSubstr("\"=\" where none belongs"));
  EXPECT_THAT(reason("steam://GEZDGNBVGY3TQOJQ="), HasSubstr("\"=\" where none belongs"));
  EXPECT_THAT(reason("GEZDGNBVGY3TQOJQG="), HasSubstr("isn't whole"));
  EXPECT_THAT(reason("GEZDGNBVGY3TQOJQG"), HasSubstr("isn't whole"));
}

TEST_F(QNFieldReading, TakesOnlySeedsThatMakeACode) {
  const auto made = QNItemTOTPField::fieldWithIdentifier(std::nullopt);
  const QNFieldTexts texts("001");

  EXPECT_TRUE(readValue(*made, texts, "otpauth://totp/a?secret=JBSWY3DPEHPK3PXP").ok());
  const auto refused = readValue(*made, texts, "hunter2!");

  EXPECT_FALSE(refused.ok());
  EXPECT_THAT(refused.error().message, Not(HasSubstr("hunter2")));
  EXPECT_TRUE(made->stringValue()->equals("otpauth://totp/a?secret=JBSWY3DPEHPK3PXP"));
}

TEST_F(QNFieldReading, LeavesAKindThatItDoesNotKnow) {
  const auto stored =
      mr_objectFromJSONStringWithError(R"({"n":"a","t":"A","k":"hologram","v":[1]})");
  const auto made = QNItemField::fieldFromStored(*stored);

  EXPECT_FALSE(readValue(*made, QNFieldTexts("001"), "x").ok());
  EXPECT_FALSE(readValue(*made, QNFieldTexts("001"), "").ok());

  EXPECT_EQ(mr_JSONStringWithError(made->storedForm()),
            R"({"n":"a","t":"A","k":"hologram","v":[1]})");
}

}  // namespace
}  // namespace quillon
