#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quillon/fields/internal/QNFieldTesting.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

TEST(QNItemStringField, HasOneValueInEveryForm) {
  QNItemPhoneField field;
  EXPECT_EQ(field.value(), std::nullopt);
  EXPECT_EQ(field.jsonValue(), std::nullopt);
  EXPECT_TRUE(field.rawValue().isNothing());
  EXPECT_TRUE(field.isEmpty());
  EXPECT_TRUE(field.displayStringValue().empty());

  field.setValue("x");

  EXPECT_EQ(textOf(field.value()), "x");
  EXPECT_EQ(textOf(field.stringValue()), "x");
  EXPECT_EQ(field.displayStringValue().reveal(), "x");
  EXPECT_EQ(jsonText(field.jsonValue()), R"("x")");
  EXPECT_EQ(field.rawValue().revealText(), "x");
  EXPECT_FALSE(field.isEmpty());
}

TEST(QNItemStringField, AnEmptyValueIsAValue) {
  QNItemStringField field;

  field.setValue("");

  EXPECT_EQ(textOf(field.value()), "");
  EXPECT_TRUE(field.isEmpty());
  EXPECT_TRUE(field.isValueEqualTo(""));
  EXPECT_FALSE(field.isValueEqualTo(std::nullopt));
  field.setValue(std::nullopt);
  EXPECT_EQ(field.value(), std::nullopt);
}

TEST(QNItemStringField, TakesTextAndNothingWithoutAWord) {
  QNItemStringField field;
  const MRCapturingSink sink;

  setJson(field, R"("x")");
  EXPECT_EQ(textOf(field.value()), "x");
  field.setJsonValue(nullptr);
  EXPECT_EQ(field.value(), std::nullopt);

  EXPECT_THAT(sink.records(), IsEmpty());
}

TEST(QNItemStringField, ReplacesAnyOtherJsonByAnEmptyText) {
  for (const std::string_view json : {"5", "[]", "{}", "null", "true", "1.5"}) {
    QNItemConcealedField field;
    field.setValue("x");
    const MRCapturingSink sink;

    setJson(field, json);

    EXPECT_EQ(textOf(field.value()), "") << json;
    ASSERT_EQ(errors(sink).size(), 1u);
    const std::string kind(boost::json::to_string(jsonValue(json).kind()));
    EXPECT_EQ(errors(sink)[0], "Error setting json value. Expecting a string but received a <" +
                                   kind + ">. Replacing with empty string.");
  }
}

TEST(QNItemStringField, RefusesARawValueOfAnotherClass) {
  QNItemStringField field;
  field.setValue("x");
  const MRCapturingSink sink;
  const QNAddressValue address;
  const Json list = jsonValue("[]");

  field.setRawValue(QNFieldValue::ofNumber(5));
  field.setRawValue(address);
  field.setRawValue(QNFieldValue::ofJson(&list));

  EXPECT_EQ(textOf(field.value()), "x");
  EXPECT_THAT(assertions(sink), ElementsAre("Invalid rawValue type", "Invalid rawValue type",
                                            "Invalid rawValue type"));
}

TEST(QNItemStringField, TakesARawValueOfItsOwn) {
  QNItemStringField field;
  field.setRawValue("a");
  EXPECT_EQ(textOf(field.value()), "a");

  field.setRawValue(field.rawValue());
  EXPECT_EQ(textOf(field.value()), "a");
  field.setRawValue(std::nullopt);

  EXPECT_EQ(field.value(), std::nullopt);
}

TEST(QNItemTOTPField, HasAnIdentifierOfItsOwnAlways) {
  QNItemTOTPField made;
  const auto given = QNItemTOTPField::fieldWithIdentifier("TOTP_abc");
  const auto read = fieldOf(R"({"k":"concealed","n":"TOTP_abc","t":"","v":"otpauth://x"})");
  const auto again = fieldOf(R"({"k":"concealed","n":"TOTP_abc","t":"","v":"otpauth://x"})");

  for (const auto& identifier : {made.identifier(), given->identifier(), read->identifier()}) {
    EXPECT_THAT(std::string(*identifier), StartsWith("TOTP_"));
    EXPECT_NE(identifier, "TOTP_abc");
    EXPECT_GT(identifier->size(), 20u);
  }
  EXPECT_NE(read->identifier(), again->identifier());
  EXPECT_EQ(read->storedForm().at("n").get_string(), *read->identifier());
  EXPECT_TRUE(read->isTOTPField());
}

TEST(QNItemTOTPField, TakesNoOtherIdentifier) {
  QNItemTOTPField field;
  const std::string before(*field.identifier());

  field.setIdentifier("x");
  field.repairMissingIdentifier("y");

  EXPECT_EQ(field.identifier(), before);
}

TEST(QNItemConcealedField, CarriesAMarkForTheGenerator) {
  QNItemConcealedField field;
  EXPECT_FALSE(field.generate());

  field.setGenerate(true);

  EXPECT_TRUE(field.generate());
}

TEST(QNItemMenuField, HasNoValuesUntilSomebodyGivesThem) {
  QNItemGenderField field;
  EXPECT_THAT(field.menuitems(), IsEmpty());

  field.setMenuitems({"f", "m"});

  EXPECT_THAT(field.menuitems(), ElementsAre("f", "m"));
}

}  // namespace
}  // namespace quillon
