#include "quillon/fields/QNAddressFormat.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quillon/fields/internal/QNFieldTesting.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/templates/internal/QNTestCategories.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// The names stand in for those of the identity template; "xx" has none.
class IdentityTemplate final : public testing::Environment {
 public:
  void SetUp() override {
    _templates = std::make_unique<QNScopedTemplates>(std::initializer_list<std::string_view>{
        R"({"uuid":"004","localizedStrings":{"menu.country.de":"Germany",)"
        R"("menu.country.us":"United States","menu.country.jp":"\u00C1lfheim",)"
        R"("menu.country.at":"austria"}})"});
  }
  void TearDown() override { _templates = nullptr; }

 private:
  std::unique_ptr<QNScopedTemplates> _templates;
};
[[maybe_unused]] testing::Environment* const kIdentityTemplate =
    testing::AddGlobalTestEnvironment(new IdentityTemplate);

std::string shown(std::string_view country, std::string_view address) {
  return std::string(QNAddressFormat::addressFormatForCountryCode(country)
                         .displayTextForAddressValue(QNAddressValue(jsonObject(address)))
                         .reveal());
}

TEST(QNAddressFormat, IsFoundByCountry) {
  const auto format = QNAddressFormat::addressFormatForCountryCode("de");

  EXPECT_EQ(format.displayFormat(), "Street\nZIP City\nCountry");
  EXPECT_EQ(format.editFormat(), "Street\nZIP City\nCountry");
  ASSERT_NE(format.addressFormatDict(), nullptr);
  EXPECT_TRUE(format.addressFormatDict()->contains("FORMAT"));
}

TEST(QNAddressFormat, OfAnUnknownCountryIsTheDefault) {
  for (const std::string_view code : {"zz", "", "odd", "DE"}) {
    EXPECT_EQ(QNAddressFormat::addressFormatForCountryCode(code).displayFormat(),
              "Street\nCity Region State\nZIP\nCountry")
        << code;
  }
}

TEST(QNAddressFormat, WithoutACountryIsThatOfTheLocale) {
  const QNScopedLocale locale("de-DE");

  EXPECT_EQ(QNAddressFormat::addressFormatForCountryCode(std::nullopt).displayFormat(),
            "Street\nZIP City\nCountry");
}

TEST(QNAddressFormat, WithoutADefinitionIsBuiltIn) {
  const QNAddressFormat format(nullptr, nullptr);

  EXPECT_EQ(format.displayFormat(), "Street\nCity Region State\nZIP\nCountry");
  EXPECT_EQ(format.editFormat(), std::nullopt);
  EXPECT_EQ(format.placeholderStringForKey("zip"), std::nullopt);
  EXPECT_EQ(format.numberOfRows(false), 4u);
  EXPECT_EQ(format.numberOfRows(true), 0u);
  EXPECT_THAT(format.keyboardSettings(), IsEmpty());
}

TEST(QNAddressFormat, TheCountrysKeyboardSettingsLieOverTheDefaults) {
  EXPECT_EQ(jsonText(QNAddressFormat::addressFormatForCountryCode("us").keyboardSettings()),
            R"({"ZIP":{"keyboard":"NumberPad"},"City":{"autocapitalization":"Words"},)"
            R"("State":{"autocorrection":"No"}})");
  EXPECT_EQ(
      jsonText(QNAddressFormat::addressFormatForCountryCode("zz").keyboardSettings()),
      R"({"ZIP":{"keyboard":"NumbersAndPunctuation"},"City":{"autocapitalization":"Words"}})");
}

TEST(QNAddressFormat, FindsAPlaceholderByThreeSpellings) {
  const auto format = QNAddressFormat::addressFormatForCountryCode("us");

  EXPECT_EQ(format.placeholderStringForKey("exact"), "exact key");
  EXPECT_EQ(format.placeholderStringForKey("zip"), "Zip in title case");
  EXPECT_EQ(format.placeholderStringForKey("ZIP"), "ZIP code");
  EXPECT_EQ(format.placeholderStringForKey("city"), std::nullopt);
  EXPECT_EQ(QNAddressFormat::addressFormatForCountryCode("zz").placeholderStringForKey("zip"),
            "Postal code");
}

TEST(QNAddressFormat, SplitsItsLinesIntoWords) {
  const auto format = QNAddressFormat::addressFormatForCountryCode("us");

  EXPECT_EQ(format.numberOfRows(false), 3u);
  EXPECT_EQ(format.numberOfRows(true), 4u);
  EXPECT_THAT(format.componentsForRow(1, false), ElementsAre("City,", "State", "ZIP"));
  EXPECT_THAT(format.componentsForRow(1, true), ElementsAre("City", "State", "ZIP"));
  EXPECT_THAT(format.componentsForRow(2, true), IsEmpty());
  EXPECT_THAT(format.componentsForRow(9, true), IsEmpty());
}

TEST(QNAddressFormat, SplitsAtUnicodesBlanks) {
  const JsonObject definition =
      jsonObject(R"({"FORMAT":"\u00A0Street\u00A0City\u3000\u00C9tat \u00A0 ZIP\u2003"})");
  const QNAddressFormat format(std::make_shared<const JsonObject>(definition), nullptr);

  EXPECT_THAT(format.componentsForRow(0, false), ElementsAre("Street", "City", "\u00C9tat", "ZIP"));
}

TEST(QNAddressFormat, CapitalizesEachWordOfAKey) {
  const JsonObject definition = jsonObject(R"({"Post Code":"found"})");
  const QNAddressFormat format(std::make_shared<const JsonObject>(definition), nullptr);

  EXPECT_EQ(format.placeholderStringForKey("post code"), "found");
  EXPECT_EQ(format.placeholderStringForKey("POST CODE"), "found");
  EXPECT_EQ(format.placeholderStringForKey("postcode"), std::nullopt);
}

// Showing

TEST(QNAddressFormat, PutsThePartsIntoTheirPlaces) {
  EXPECT_EQ(shown("us", R"({"street":"s","city":"c","state":"st","zip":"1","country":"us"})"),
            "s\nc, st 1\nUnited States");
}

TEST(QNAddressFormat, LeavesOutNoLineAndNoBlank) {
  EXPECT_EQ(shown("zz", R"({"street":"s","country":"de"})"), "s\n  \n\nGermany");
  EXPECT_EQ(shown("zz", "{}"), "\n  \n\n");
}

TEST(QNAddressFormat, AValueMayHoldTheNameOfAPart) {
  EXPECT_EQ(shown("de", R"({"street":"City ZIP","zip":"Country","city":"Street"})"),
            "City ZIP\nCountry Street\n");
}

TEST(QNAddressFormat, APartThatItDoesntHaveIsNotShown) {
  EXPECT_EQ(shown("de", R"({"street":"s","region":"r","state":"st","city":"c"})"), "s\n c\n");
}

TEST(QNAddressFormat, OnlyTheFirstOccurrenceOfAPartIsReplaced) {
  EXPECT_EQ(shown("twice", R"({"street":"s","city":"c"})"), "s, Street; c of the City");
}

TEST(QNAddressFormat, AnUnknownCountryShowsItsBareCode) {
  EXPECT_EQ(shown("de", R"({"street":"s","country":"xx"})"), "s\n \nxx");
  EXPECT_EQ(shown("de", R"({"street":"s"})"), "s\n \n");
}

// Each occurrence goes once: what its going brings together stays.
TEST(QNAddressFormat, ACountryShowsWithoutTheNameOfTheMenu) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"menu.country.xx", "xx"},
      {"menumenu.country..country.xx", "menu.country.xx"},
      {"a menu.country.b menu.country.", "a b "},
      {"Middle Earth", "Middle Earth"},
      {"x-y", "x-y"}};
  for (const auto& [country, expected] : cases) {
    QNAddressValue address;
    address.setCountry(country);
    EXPECT_EQ(address.stringValue().reveal(), "\n  \n\n" + std::string(expected)) << country;
  }
}

// Were each removal a walk from the start, this would take minutes.
TEST(QNAddressFormat, ALongCountryIsShownInOnePass) {
  std::string country;
  std::string expected = "\n  \n\n";
  for (int i = 0; i < 300'000; ++i) {
    country += "menu.country.x";
    expected += 'x';
  }
  QNAddressValue address;
  address.setCountry(country);

  EXPECT_TRUE(address.stringValue().equals(expected));
}

// Countries

TEST(QNAddressFormat, NamesCountries) {
  EXPECT_EQ(QNAddressFormat::localizedCountryForCode("de"), "Germany");
  EXPECT_EQ(QNAddressFormat::localizedCountryForCode("xx"), "menu.country.xx");
  EXPECT_EQ(QNAddressFormat::localizedCountryForCode(std::nullopt), "");
}

TEST(QNAddressFormat, ListsTheCountriesThatHaveANameInTheirOrder) {
  const QNScopedLocale locale("en-US");
  const MRCapturingSink sink;

  const auto codes = QNAddressFormat::countryCodes();

  EXPECT_THAT(codes, ElementsAre("jp", "at", "de", "us"));
  EXPECT_THAT(errors(sink), ElementsAre("No localized country name for xx"));
  EXPECT_EQ(sink.records().at(0).subsystem, DEBUG_APP);
  EXPECT_EQ(QNAddressFormat::countryCodes(), codes);
  EXPECT_THAT(errors(sink), SizeIs(1));
}

TEST(QNAddressFormat, ReadsTheFileOnce) {
  EXPECT_NE(QNAddressFormat::addressFormats(), nullptr);
  EXPECT_EQ(QNAddressFormat::addressFormats(), QNAddressFormat::addressFormats());
}

}  // namespace
}  // namespace quillon
