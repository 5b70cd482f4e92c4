#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quillon/fields/internal/QNFieldTesting.h"

namespace quillon {
namespace {

using testing::IsEmpty;

TEST(QNItemUnknownField, KeepsTypeAndValue) {
  const auto field = fieldOf<QNItemUnknownField>(R"({"k":"future","n":"1","v":{"a":[1,2.5E0]}})");

  EXPECT_EQ(field->unknownTypeName(), "future");
  EXPECT_EQ(field->type(), "future");
  EXPECT_EQ(jsonText(field->jsonValue()), R"({"a":[1,2.5E0]})");
  EXPECT_EQ(textOf(field->stringValue()), R"({"a":[1,2.5E0]})");
  EXPECT_TRUE(field->isUnknownField());
}

TEST(QNItemUnknownField, IsNeverEmpty) {
  EXPECT_FALSE(fieldOf(R"({"k":"password","n":"1"})")->isEmpty());
  EXPECT_FALSE(QNItemUnknownField().isEmpty());
}

TEST(QNItemUnknownField, OfTypePasswordIsAPasswordField) {
  const auto field = fieldOf(R"({"k":"password","n":"1"})");

  EXPECT_TRUE(field->isPasswordField());
  EXPECT_EQ(field->type(), "password");
  EXPECT_EQ(field->stringValue(), std::nullopt);
}

TEST(QNItemUnknownField, ARawValueLeavesTheValueAlone) {
  const auto field = fieldOf(R"({"k":"future","n":"1","v":"x"})");

  field->setRawValue("y");
  field->setRawValue(std::nullopt);

  EXPECT_EQ(jsonText(field->jsonValue()), R"("x")");
}

TEST(QNItemUnknownField, TakesAnyJsonValue) {
  QNItemUnknownField field("future", "1");
  const MRCapturingSink sink;
  for (const std::string_view json : {R"("x")", "5", "[]", "{}", "null", "true"}) {
    setJson(field, json);

    EXPECT_EQ(jsonText(field.jsonValue()), json);
  }
  field.setJsonValue(nullptr);
  EXPECT_EQ(field.jsonValue(), std::nullopt);
  EXPECT_THAT(sink.records(), IsEmpty());
}

TEST(QNItemUnknownField, ATextReadsWithoutQuotes) {
  EXPECT_EQ(textOf(fieldOf(R"({"k":"future","n":"1","v":"x"})")->stringValue()), "x");
  EXPECT_EQ(textOf(fieldOf(R"({"k":"future","n":"1","v":5})")->stringValue()), "5");
}

TEST(QNItemUnknownField, ComparesValuesOfOneClass) {
  const auto number = fieldOf(R"({"k":"future","n":"1","v":5})");
  EXPECT_TRUE(number->isValueEqualTo(QNFieldValue::ofNumber(5)));
  EXPECT_FALSE(number->isValueEqualTo("5"));
  EXPECT_FALSE(number->isValueEqualTo(std::nullopt));
  EXPECT_TRUE(fieldOf(R"({"k":"future","n":"1"})")->isValueEqualTo(std::nullopt));

  const Json list = jsonValue(R"([{"a":1}])");
  const auto holder = fieldOf(R"({"k":"future","n":"1","v":[{"a":1.0}]})");
  EXPECT_TRUE(holder->isValueEqualTo(QNFieldValue::ofJson(&list)));
}

TEST(QNItemUnknownField, IsStoredToTheByteUntilItIsChanged) {
  for (const std::string_view stored :
       {R"({"v":null,"k":"future"})", R"({"k":"file","n":"PrefixFile-1","v":{"documentId":"d"}})",
        R"({"n":5,"k":7,"t":null,"a":{},"inputTraits":"x","v":true,"z":[1,{}]})", R"({})",
        R"({"k":"sshKey","n":"1","t":"t","v":"key","a":{"sshKeyAttributes":{"publicKey":"p"}}})"}) {
    EXPECT_EQ(jsonText(fieldOf(stored)->storedForm()), stored);
  }
}

TEST(QNItemUnknownField, AChangeLeavesTheOtherMembersAlone) {
  const auto field = fieldOf(R"({"z":1,"v":true,"k":"future","t":null})");
  EXPECT_EQ(field->jsonValue(), std::nullopt);

  field->setTitle("title");
  EXPECT_EQ(jsonText(field->storedForm()), R"({"z":1,"v":true,"k":"future","t":"title"})");
  setJson(*field, "false");

  EXPECT_EQ(jsonText(field->storedForm()), R"({"z":1,"v":false,"k":"future","t":"title"})");
  EXPECT_EQ(jsonText(field->jsonValue()), "false");
}

TEST(QNItemUnknownField, WithoutAnIdentifierHasOneThatIsNotStored) {
  const auto field = fieldOf(R"({"k":"future","v":"x"})");
  const std::string identifier(*field->identifier());
  EXPECT_FALSE(identifier.empty());
  EXPECT_EQ(field->identifier(), identifier);
  EXPECT_FALSE(field->storedForm().contains("n"));

  field->setIdentifier("1");

  EXPECT_EQ(field->identifier(), "1");
  EXPECT_EQ(field->storedForm().at("n").get_string(), "1");
}

}  // namespace
}  // namespace quillon
