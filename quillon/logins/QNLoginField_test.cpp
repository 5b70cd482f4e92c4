#include "quillon/logins/QNLoginField.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

QNLoginField fieldFrom(std::string_view json) {
  const auto dictionary = mr_objectFromJSONStringWithError(json);
  EXPECT_TRUE(dictionary) << json;
  return QNLoginField(dictionary.value_or(JsonObject()));
}

std::string jsonOf(const QNLoginField& field) {
  return mr_JSONStringWithError(field.asDictionary()).value_or("no JSON form");
}

std::optional<std::string> valueOf(const QNLoginField& field) {
  const auto value = field.value();
  return value ? std::optional<std::string>(value->reveal()) : std::nullopt;
}

TEST(QNLoginField, StartsEmpty) {
  const QNLoginField field;

  EXPECT_EQ(field.count(), 0u);
  EXPECT_EQ(jsonOf(field), "{}");
}

TEST(QNLoginField, PairsObjectsWithKeys) {
  const Json objects[] = {Json("login"), Json(7), Json("left over")};
  const std::string_view keys[] = {"name", "x"};

  const QNLoginField field(objects, keys);

  EXPECT_EQ(jsonOf(field), R"({"name":"login","x":7})");
}

TEST(QNLoginField, KeepsObjectsOfEveryKindAndTheLastOfAKey) {
  const Json objects[] = {Json("first"),
                          Json(nullptr),
                          Json(true),
                          Json(-7),
                          Json(~std::uint64_t{0}),
                          Json(2.5),
                          Json(JsonArray{1, "two"}),
                          Json(JsonObject{{"k", "v"}}),
                          Json("last")};
  const std::string_view keys[] = {"a", "b", "c", "d", "e", "f", "g", "h", "a"};

  const QNLoginField field(objects, keys);

  EXPECT_EQ(jsonOf(field), R"({"a":"last","b":null,"c":true,"d":-7,"e":18446744073709551615,)"
                           R"("f":2.5E0,"g":[1,"two"],"h":{"k":"v"}})");
  EXPECT_EQ(*field.objectForKey("g")->storage(), *jsonStorage());
}

TEST(QNLoginField, IsReadAsADictionary) {
  const auto field = fieldFrom(R"({"value":"ann","x":[1],"name":"n"})");

  EXPECT_EQ(field.count(), 3u);
  EXPECT_EQ(field.keyEnumerator(), (std::vector<std::string_view>{"value", "x", "name"}));
  ASSERT_NE(field.objectForKey("x"), nullptr);
  EXPECT_TRUE(field.objectForKey("x")->is_array());
  EXPECT_EQ(field.objectForKey("y"), nullptr);
}

TEST(QNLoginField, ReadsTheStoredKeys) {
  const auto field = fieldFrom(
      R"({"name":"login","value":"ann","type":"E","designation":"username","id":"login-1"})");

  EXPECT_EQ(field.name(), "login");
  EXPECT_EQ(valueOf(field), "ann");
  EXPECT_EQ(field.type(), "E");
  EXPECT_EQ(field.designation(), "username");
  ASSERT_NE(field.htmlId(), nullptr);
  EXPECT_EQ(*field.htmlId(), Json("login-1"));
}

TEST(QNLoginField, ReadsAbsentMembersAsNothing) {
  const QNLoginField field;

  EXPECT_EQ(field.name(), std::nullopt);
  EXPECT_EQ(valueOf(field), std::nullopt);
  EXPECT_EQ(field.designation(), std::nullopt);
  EXPECT_EQ(field.htmlId(), nullptr);
}

TEST(QNLoginField, ReadsJsonNullsAsNothing) {
  const auto field =
      fieldFrom(R"({"name":null,"value":null,"type":null,"designation":null,"id":null})");

  EXPECT_EQ(field.name(), std::nullopt);
  EXPECT_EQ(valueOf(field), std::nullopt);
  EXPECT_EQ(field.type(), "T");
  EXPECT_EQ(field.designation(), std::nullopt);
  EXPECT_EQ(field.htmlId(), nullptr);
}

TEST(QNLoginField, ReadsAMissingTypeAsTextAndWritesNone) {
  const auto field = fieldFrom(R"({"name":"a"})");

  EXPECT_EQ(field.type(), "T");
  EXPECT_EQ(jsonOf(field), R"({"name":"a"})");
}

TEST(QNLoginField, ReadsAnEmptyTypeAsTextAndKeepsIt) {
  const auto field = fieldFrom(R"({"type":""})");

  EXPECT_EQ(field.type(), "T");
  EXPECT_EQ(jsonOf(field), R"({"type":""})");
}

TEST(QNLoginField, ReadsANumberAsItsDecimalText) {
  EXPECT_EQ(valueOf(fieldFrom(R"({"value":1234})")), "1234");
  EXPECT_EQ(valueOf(fieldFrom(R"({"value":-5})")), "-5");
  EXPECT_EQ(valueOf(fieldFrom(R"({"value":18446744073709551615})")), "18446744073709551615");
  EXPECT_EQ(valueOf(fieldFrom(R"({"value":1.5})")), "1.5");
  EXPECT_EQ(fieldFrom(R"({"name":7})").name(), "7");
}

TEST(QNLoginField, ReadsANumberWithoutAnExponentWhereItsDigitsAreFew) {
  EXPECT_EQ(valueOf(fieldFrom(R"({"value":100000.0})")), "100000");
  EXPECT_EQ(valueOf(fieldFrom(R"({"value":2.0})")), "2");
  EXPECT_EQ(valueOf(fieldFrom(R"({"value":0.0001})")), "0.0001");
  EXPECT_EQ(valueOf(fieldFrom(R"({"value":-12345678.5})")), "-12345678.5");
  EXPECT_EQ(valueOf(fieldFrom(R"({"value":100000000000000000000})")), "100000000000000000000");
  EXPECT_EQ(valueOf(fieldFrom(R"({"value":1e300})")), "1e+300");
  EXPECT_EQ(valueOf(fieldFrom(R"({"value":1e-300})")), "1e-300");
}

TEST(QNLoginField, ReadsABooleanAsOneOrZero) {
  EXPECT_EQ(valueOf(fieldFrom(R"({"value":true})")), "1");
  EXPECT_EQ(valueOf(fieldFrom(R"({"value":false})")), "0");
}

TEST(QNLoginField, ReadsAContainerAsItsJsonText) {
  EXPECT_EQ(valueOf(fieldFrom(R"({"value":["a",{"b":1}]})")), R"(["a",{"b":1}])");
}

TEST(QNLoginField, GivesTheHtmlIdInTheKindThatWasStored) {
  const auto field = fieldFrom(R"({"id":42})");

  ASSERT_NE(field.htmlId(), nullptr);
  EXPECT_TRUE(field.htmlId()->is_int64());
}

TEST(QNLoginField, ComparesItsValueWithAText) {
  EXPECT_TRUE(fieldFrom(R"({"value":"ann"})").hasValue("ann"));
  EXPECT_TRUE(fieldFrom(R"({"value":12})").hasValue("12"));
  EXPECT_FALSE(fieldFrom(R"({"value":"Ann"})").hasValue("ann"));
  EXPECT_FALSE(fieldFrom("{}").hasValue(""));
  EXPECT_TRUE(fieldFrom(R"({"value":""})").hasValue(""));
}

TEST(QNLoginField, StoresWhatItIsGiven) {
  QNLoginField field;

  field.setName("login");
  field.setType("E");
  field.setValue("ann");
  field.setDesignation("username");

  EXPECT_EQ(jsonOf(field), R"({"name":"login","type":"E","value":"ann","designation":"username"})");
}

TEST(QNLoginField, RemovesTheValueForNothingAndKeepsAnEmptyOne) {
  auto field = fieldFrom(R"({"value":"ann","name":"n"})");

  field.setValue("");
  EXPECT_EQ(jsonOf(field), R"({"value":"","name":"n"})");

  field.setValue(std::nullopt);
  EXPECT_EQ(jsonOf(field), R"({"name":"n"})");
}

TEST(QNLoginField, RemovesTheDesignationForNothingAndForAnEmptyOne) {
  auto one = fieldFrom(R"({"designation":"username","name":"n"})");
  auto other = fieldFrom(R"({"designation":"username","name":"n"})");
  auto third = fieldFrom(R"({"designation":"username","name":"n"})");

  one.setDesignation("");
  other.setDesignation(std::nullopt);
  third._removeDesignation();

  EXPECT_EQ(jsonOf(one), R"({"name":"n"})");
  EXPECT_EQ(jsonOf(other), R"({"name":"n"})");
  EXPECT_EQ(jsonOf(third), R"({"name":"n"})");
}

TEST(QNLoginField, RemovingWhatIsntThereChangesNothing) {
  auto field = fieldFrom(R"({"name":"n"})");

  field.setValue(std::nullopt);
  field._removeDesignation();

  EXPECT_EQ(jsonOf(field), R"({"name":"n"})");
}

TEST(QNLoginField, KeepsUnknownMembersAndTheirOrder) {
  auto field = fieldFrom(
      R"({"x":[1,2.5,null],"value":"a","y":{"z":true},"designation":"username","name":"n","w":1})");

  field.setValue(std::nullopt);
  field._removeDesignation();
  field.setName("m");

  EXPECT_EQ(jsonOf(field), R"({"x":[1,2.5E0,null],"y":{"z":true},"name":"m","w":1})");
}

TEST(QNLoginField, DoesNotShareItsDictionaryWithItsSource) {
  const auto source = mr_objectFromJSONStringWithError(R"({"name":"n"})");
  QNLoginField field(*source);

  field.setName("m");

  EXPECT_EQ(mr_JSONStringWithError(*source), R"({"name":"n"})");
}

TEST(QNLoginField, IsSharedAndNeverCopiedOutOfTheWipingResource) {
  EXPECT_FALSE(std::is_copy_constructible_v<QNLoginField>);
  EXPECT_FALSE(std::is_copy_assignable_v<QNLoginField>);
  EXPECT_EQ(*QNLoginField(JsonObject{{"value", "pw"}}).asDictionary().storage(), *jsonStorage());
}

TEST(QNLoginField, TellsItsDesignations) {
  const auto username = fieldFrom(R"({"designation":"username"})");
  const auto password = fieldFrom(R"({"designation":"password"})");
  const auto other = fieldFrom(R"({"designation":"totp","name":"username"})");

  EXPECT_TRUE(username.designatedAsUsername());
  EXPECT_FALSE(username.designatedAsPassword());
  EXPECT_TRUE(password.designatedAsPassword());
  EXPECT_FALSE(password.designatedAsUsername());
  EXPECT_FALSE(other.designatedAsUsername());
  EXPECT_FALSE(other.designatedAsPassword());
}

struct Kind {
  std::string_view constant;
  const char* type;
  bool canConflict;
};

class LoginFieldKind : public testing::TestWithParam<Kind> {};

TEST_P(LoginFieldKind, IsStoredAndConflictsByTheTable) {
  EXPECT_EQ(GetParam().constant, GetParam().type);
  QNLoginField field;
  field.setType(GetParam().constant);
  EXPECT_EQ(field.canConflict(), GetParam().canConflict);
}

INSTANTIATE_TEST_SUITE_P(Kinds, LoginFieldKind,
                         testing::Values(Kind{QNLoginFieldTypeText, "T", true},
                                         Kind{QNLoginFieldTypePassword, "P", true},
                                         Kind{QNLoginFieldTypeEmail, "E", true},
                                         Kind{QNLoginFieldTypeURL, "U", true},
                                         Kind{QNLoginFieldTypeNumber, "N", true},
                                         Kind{QNLoginFieldTypeRadio, "R", true},
                                         Kind{QNLoginFieldTypeTextArea, "A", true},
                                         Kind{QNLoginFieldTypeButton, "B", false},
                                         Kind{QNLoginFieldTypeCheckbox, "C", false},
                                         Kind{QNLoginFieldTypeTelephone, "TEL", false},
                                         Kind{QNLoginFieldTypeTextString, "S", false}),
                         [](const auto& tested) { return std::string(tested.param.type); });

TEST(QNLoginField, ConflictsWithoutAType) {
  EXPECT_TRUE(QNLoginField().canConflict());
}

TEST(QNLoginField, DoesNotConflictWithAnUnknownType) {
  EXPECT_FALSE(fieldFrom(R"({"type":"p"})").canConflict());
  EXPECT_FALSE(fieldFrom(R"({"type":"TE"})").canConflict());
}

TEST(QNLoginField, TellsItsKind) {
  EXPECT_TRUE(fieldFrom(R"({"type":"P"})").isConcealed());
  EXPECT_TRUE(fieldFrom(R"({"type":"B"})").isButton());
  EXPECT_TRUE(fieldFrom(R"({"type":"C"})").isCheckbox());
  EXPECT_TRUE(fieldFrom(R"({"type":"R"})").isRadio());
  EXPECT_TRUE(fieldFrom(R"({"type":"A"})").isTextArea());
  const auto text = fieldFrom(R"({"type":"T"})");
  EXPECT_FALSE(text.isConcealed() || text.isButton() || text.isCheckbox() || text.isRadio() ||
               text.isTextArea());
}

TEST(QNLoginField, CutsItsValueOnlyWhenItIsLonger) {
  const auto field = fieldFrom(R"({"value":"abcdef"})");

  EXPECT_EQ(field.valueLimitedToLength(3)->reveal(), "abc");
  EXPECT_EQ(field.valueLimitedToLength(6)->reveal(), "abcdef");
  EXPECT_EQ(field.valueLimitedToLength(7)->reveal(), "abcdef");
  EXPECT_EQ(field.valueLimitedToLength(0)->reveal(), "");
  EXPECT_FALSE(QNLoginField().valueLimitedToLength(3));
}

TEST(QNLoginField, CutsByCodeUnitsAndNeverInsideACharacter) {
  const auto field = fieldFrom("{\"value\":\"a\U0001F511b\"}");

  EXPECT_EQ(field.valueLimitedToLength(2)->reveal(), "a");
  EXPECT_EQ(field.valueLimitedToLength(3)->reveal(), "a\U0001F511");
}

TEST(QNLoginFieldKeys, AreThoseOfStoredDataAndOfFillRecords) {
  EXPECT_EQ(QNLoginFieldKeyName, "name");
  EXPECT_EQ(QNLoginFieldKeyValue, "value");
  EXPECT_EQ(QNLoginFieldKeyType, "type");
  EXPECT_EQ(QNLoginFieldKeyDesignation, "designation");
  EXPECT_EQ(QNLoginFieldKeyHtmlId, "id");
  EXPECT_EQ(QNFillObjectFieldKeyHtmlId, "htmlId");
  EXPECT_EQ(QNFillObjectFieldKeyHtmlName, "htmlName");
  EXPECT_EQ(QNFillObjectFieldKeyIsChecked, "checked");
  EXPECT_EQ(QNLoginFieldDesignationUsername, "username");
  EXPECT_EQ(QNLoginFieldDesignationPassword, "password");
  EXPECT_EQ(QNFillObjectDesignationExistingPassword, "password");
  EXPECT_EQ(QNFillObjectDesignationNewPassword, "new-password");
  EXPECT_EQ(QNFillObjectDesignationTOTP, "totp");
}

}  // namespace
}  // namespace quillon
