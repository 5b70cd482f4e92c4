#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "quillon/fields/internal/QNFieldTesting.h"
#include "quillon/platform/environment/QNEnvironment.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Before anything asks for the resource folder: the programs of the addresses have one of their
// own.
[[maybe_unused]] const int kResources =
    setenv("QUILLON_RESOURCES", QUILLON_TESTDATA "/addresses", 1);

QNAddressValue addressOf(std::string_view stored) {
  return QNAddressValue(jsonObject(stored));
}
std::string dictionaryOf(const QNAddressValue& address) {
  const auto dictionary = address.dictionaryRepresentation();
  return dictionary ? jsonText(*dictionary) : "(none)";
}

TEST(QNAddressValue, StartsInTheCountryOfTheLocale) {
  const std::pair<std::string, std::string> cases[] = {
      {"de-AT", R"({"country":"at"})"},   {"zh-Hant-TW", R"({"country":"tw"})"},
      {"es-419", R"({"country":"419"})"}, {"de", "(none)"},
      {"de-u-co-phonebk", "(none)"},      {"en-US-posix", R"({"country":"us"})"}};
  for (const auto& [locale, expected] : cases) {
    const QNScopedLocale scoped(locale);
    EXPECT_EQ(dictionaryOf(QNAddressValue()), expected) << locale;
  }
}

TEST(QNAddressValue, ReadsSixTexts) {
  const auto address =
      addressOf(R"({"country":"de","zip":"1","region":"r","state":"s","city":"c","street":"st"})");

  EXPECT_EQ(address.country(), "de");
  EXPECT_EQ(address.zip(), "1");
  EXPECT_EQ(address.region(), "r");
  EXPECT_EQ(address.state(), "s");
  EXPECT_EQ(address.city(), "c");
  EXPECT_EQ(address.street(), "st");
}

TEST(QNAddressValue, WhatIsNoTextReadsAsNothingTheCountryToo) {
  const auto address = addressOf(R"({"street":5,"country":null,"city":"c"})");

  EXPECT_EQ(address.street(), std::nullopt);
  EXPECT_EQ(address.country(), std::nullopt);
  EXPECT_EQ(dictionaryOf(address), R"({"city":"c"})");
}

TEST(QNAddressValue, AReadReplacesTheWhole) {
  QNAddressValue address = addressOf(R"({"street":"a","x":1})");

  address.setDictionaryRepresentation(jsonObject(R"({"city":"c"})"));

  EXPECT_EQ(jsonText(address.storedForm()), R"({"city":"c"})");
}

TEST(QNAddressValue, WithoutAPartHasNoDictionary) {
  EXPECT_EQ(addressOf("{}").dictionaryRepresentation(), std::nullopt);
  EXPECT_EQ(addressOf(R"({"x":1})").dictionaryRepresentation(), std::nullopt);
}

TEST(QNAddressValue, MembersThatItDoesntKnowAreKeptAndAreNoPart) {
  const auto address = addressOf(R"({"zip":"1","zip+4":"2","street":"s"})");

  EXPECT_EQ(dictionaryOf(address), R"({"zip":"1","street":"s"})");
  EXPECT_EQ(jsonText(address.storedForm()), R"({"zip":"1","zip+4":"2","street":"s"})");
  EXPECT_TRUE(address.isEqual(addressOf(R"({"street":"s","zip":"1"})")));
}

TEST(QNAddressValue, SetsAndRemovesAPart) {
  QNAddressValue address = addressOf("{}");
  address.setCountry("de");
  address.setZip("1");
  address.setRegion("r");
  address.setState("s");
  address.setCity("c");
  address.setStreet("st");
  EXPECT_EQ(dictionaryOf(address),
            R"({"country":"de","zip":"1","region":"r","state":"s","city":"c","street":"st"})");

  address.setRegion(std::nullopt);
  address.setState(std::nullopt);

  EXPECT_EQ(dictionaryOf(address), R"({"country":"de","zip":"1","city":"c","street":"st"})");
}

TEST(QNAddressValue, EqualWhenAllSixAre) {
  const auto address = addressOf(R"({"street":"a","country":"de"})");

  EXPECT_TRUE(address == addressOf(R"({"country":"de","street":"a"})"));
  EXPECT_EQ(address.hash(), addressOf(R"({"country":"de","street":"a"})").hash());
  EXPECT_FALSE(address == addressOf(R"({"country":"de"})"));
  EXPECT_FALSE(address == addressOf(R"({"country":"de","street":"a","zip":""})"));
  EXPECT_FALSE(address == addressOf(R"({"country":"at","street":"a"})"));
  EXPECT_TRUE(addressOf("{}") == addressOf("{}"));
}

TEST(QNAddressValue, ACopySharesNothing) {
  const auto address = addressOf(R"({"street":"a"})");

  QNAddressValue copy = address;
  copy.setStreet("b");
  QNAddressValue assigned;
  assigned = address;

  EXPECT_EQ(address.street(), "a");
  EXPECT_EQ(assigned.street(), "a");
  EXPECT_EQ(copy.storedForm().storage(), jsonStorage());
  EXPECT_EQ(assigned.storedForm().storage(), jsonStorage());
}

TEST(QNAddressValue, IsEmptyWithNothingButBlanks) {
  EXPECT_TRUE(addressOf("{}").isEmpty());
  EXPECT_TRUE(addressOf(R"({"country":""})").isEmpty());
  EXPECT_TRUE(addressOf(R"({"country":" ","street":"\n\t"})").isEmpty());
  EXPECT_FALSE(addressOf(R"({"country":"de"})").isEmpty());
  EXPECT_FALSE(addressOf(R"({"zip":" 1 "})").isEmpty());
}

TEST(QNAddressValue, IsShownInTheFormatOfItsOwnCountry) {
  const QNScopedLocale locale("en-US");

  EXPECT_EQ(
      addressOf(R"({"street":"s","zip":"1","city":"c","country":"de"})").stringValue().reveal(),
      "s\n1 c\nGermany");
  EXPECT_EQ(addressOf(R"({"street":"s","zip":"1","city":"c"})").stringValue().reveal(),
            "s\nc,  1\n");
}

// The field

TEST(QNItemAddressField, HoldsTheUsersCountryAtFirst) {
  const QNScopedLocale locale("de-AT");
  const QNItemAddressField field;

  EXPECT_FALSE(field.isEmpty());
  EXPECT_EQ(jsonText(field.jsonValue()), R"({"country":"at"})");
  EXPECT_EQ(jsonText(field.storedForm().at("v")), R"({"country":"at"})");
}

TEST(QNItemAddressField, GivesItsValue) {
  QNItemAddressField field;
  field.setValue(addressOf(R"({"street":"s","country":"de"})"));

  EXPECT_EQ(field.value().street(), "s");
  EXPECT_EQ(field.rawValue().address(), &field.value());
  EXPECT_EQ(textOf(field.stringValue()), "s\n \nGermany");
  EXPECT_EQ(jsonText(field.jsonValue()), R"({"country":"de","street":"s"})");
  field.setValue(addressOf("{}"));
  EXPECT_TRUE(field.isEmpty());
  EXPECT_EQ(field.jsonValue(), std::nullopt);
  EXPECT_FALSE(field.storedForm().contains("v"));
}

TEST(QNItemAddressField, TakesAnObjectAndNothingWithoutAWord) {
  QNItemAddressField field;
  const MRCapturingSink sink;

  setJson(field, R"({"street":"s"})");
  field.setJsonValue(nullptr);

  EXPECT_EQ(jsonText(field.jsonValue()), R"({"street":"s"})");
  EXPECT_THAT(sink.records(), IsEmpty());
}

TEST(QNItemAddressField, PutsATextIntoTheStreet) {
  QNItemAddressField field;
  const MRCapturingSink sink;

  setJson(field, R"("here")");

  EXPECT_EQ(jsonText(field.jsonValue()), R"({"street":"here"})");
  EXPECT_THAT(errors(sink),
              ElementsAre("Recovering from json type issue by putting string value into 'street'"));
}

TEST(QNItemAddressField, TakesAJsonNullForAnEmptyStreet) {
  QNItemAddressField field;
  const MRCapturingSink sink;

  setJson(field, "null");

  EXPECT_EQ(jsonText(field.jsonValue()), R"({"street":""})");
  EXPECT_THAT(errors(sink),
              ElementsAre("Error setting json value. Expecting a dictionary but received a "
                          "<null>. Replacing with empty string in street."));
}

TEST(QNItemAddressField, StaysAsItWasAfterAnythingElse) {
  for (const std::string_view json : {"5", "[]", "true"}) {
    QNItemAddressField field;
    setJson(field, R"({"street":"s"})");
    const MRCapturingSink sink;

    setJson(field, json);

    EXPECT_EQ(jsonText(field.jsonValue()), R"({"street":"s"})");
    EXPECT_THAT(errors(sink),
                ElementsAre("Error setting json value. Expecting a dictionary but received a <" +
                            std::string(boost::json::to_string(jsonValue(json).kind())) + ">."));
  }
}

TEST(QNItemAddressField, TakesAnAddressAndNoOtherRawValue) {
  QNItemAddressField field;
  const auto address = addressOf(R"({"street":"s"})");
  const MRCapturingSink sink;

  field.setRawValue(address);
  field.setRawValue("x");
  field.setRawValue(std::nullopt);

  EXPECT_TRUE(field.value() == address);
  EXPECT_TRUE(field.isValueEqualTo(address));
  EXPECT_THAT(assertions(sink), ElementsAre("Invalid rawValue type", "Invalid rawValue type"));
}

}  // namespace
}  // namespace quillon
