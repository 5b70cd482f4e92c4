#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <type_traits>

#include "quillon/fields/internal/QNFieldTesting.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/text/QNLocalization.h"

namespace quillon {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// A class that implements nothing.
class QNBareField final : public QNItemField {
 public:
  QNBareField() : QNItemField(Start{QNItemFieldKind::phone, "1", nullptr}) {}
};

// Class operations

TEST(QNItemFieldClass, OfTheBaseMustBeOverridden) {
  const MRCapturingSink sink;

  EXPECT_EQ(QNItemField::typeName(), "");
  EXPECT_EQ(QNItemField::localizedTypeName(), "n/a");

  EXPECT_THAT(assertions(sink), ElementsAre("Must be overridden"));
}

TEST(QNItemFieldClass, OfUnknownFieldsShouldNotBeAskedForAType) {
  const MRCapturingSink sink;

  EXPECT_EQ(QNItemUnknownField::typeName(), "unknown");

  EXPECT_THAT(
      assertions(sink),
      ElementsAre("This should not be called, since it would not be correct in this circumstance"));
  EXPECT_EQ(QNItemUnknownField::localizedTypeName(), "Unknown");
}

TEST(QNItemFieldClass, HasItsNames) {
  QNLocalization::sharedLocalization().setLanguage("en");
  EXPECT_EQ(QNItemStringField::typeName(), "string");
  EXPECT_EQ(QNItemStringField::localizedTypeName(), "Text");
  EXPECT_EQ(QNItemConcealedField::typeName(), "concealed");
  EXPECT_EQ(QNItemConcealedField::localizedTypeName(), "Password");
  EXPECT_EQ(QNItemTOTPField::typeName(), "concealed");
  EXPECT_EQ(QNItemTOTPField::localizedTypeName(), "One-Time Password");
  EXPECT_EQ(QNItemMenuField::typeName(), "menu");
  EXPECT_EQ(QNItemMenuField::localizedTypeName(), "Text");
  EXPECT_EQ(QNItemCountryField::typeName(), "country");
  EXPECT_EQ(QNItemCountryField::localizedTypeName(), "Country");
  EXPECT_EQ(QNItemGenderField::typeName(), "gender");
  EXPECT_EQ(QNItemGenderField::localizedTypeName(), "Gender");
  EXPECT_EQ(QNItemCreditCardTypeField::typeName(), "cctype");
  EXPECT_EQ(QNItemCreditCardTypeField::localizedTypeName(), "Credit card type");
  EXPECT_EQ(QNItemMonthField::typeName(), "month");
  EXPECT_EQ(QNItemMonthField::localizedTypeName(), "Month");
  EXPECT_EQ(QNItemCreditCardNumberField::typeName(), "string");
  EXPECT_EQ(QNItemCreditCardNumberField::localizedTypeName(), "Credit card number");
  EXPECT_EQ(QNItemReferenceField::typeName(), "reference");
  EXPECT_EQ(QNItemReferenceField::localizedTypeName(), "Reference");
  EXPECT_EQ(QNItemPhoneField::typeName(), "phone");
  EXPECT_EQ(QNItemPhoneField::localizedTypeName(), "Phone");
  EXPECT_EQ(QNItemEmailField::typeName(), "email");
  EXPECT_EQ(QNItemEmailField::localizedTypeName(), "Email");
  EXPECT_EQ(QNItemURLField::typeName(), "URL");
  EXPECT_EQ(QNItemURLField::localizedTypeName(), "URL");
  EXPECT_EQ(QNItemPasswordField::typeName(), "password");
  EXPECT_EQ(QNItemPasswordField::localizedTypeName(), "Text");
  EXPECT_EQ(QNItemDateField::typeName(), "date");
  EXPECT_EQ(QNItemDateField::localizedTypeName(), "Date");
  EXPECT_EQ(QNItemMonthYearField::typeName(), "monthYear");
  EXPECT_EQ(QNItemMonthYearField::localizedTypeName(), "Month/Year");
  EXPECT_EQ(QNItemAddressField::typeName(), "address");
  EXPECT_EQ(QNItemAddressField::localizedTypeName(), "Address");
}

TEST(QNItemFieldClass, SpeaksTheUsersLanguage) {
  QNLocalization::sharedLocalization().setLanguage("de");
  EXPECT_EQ(QNItemCountryField::localizedTypeName(), "Land");
  EXPECT_EQ(QNItemTOTPField().fieldClass().localizedTypeName(), "Einmalpasswort");
  QNLocalization::sharedLocalization().setLanguage("en");
}

TEST(QNItemFieldClass, IsKnownToItsObjects) {
  EXPECT_EQ(QNItemPhoneField().className(), "QNItemPhoneField");
  EXPECT_EQ(QNItemCreditCardNumberField().className(), "QNItemCreditCardNumberField");
  EXPECT_EQ(QNItemUnknownField().className(), "QNItemUnknownField");
  EXPECT_EQ(QNItemDateField().fieldClass().typeName, "date");
}

// Construction

TEST(QNItemField, HasAFreshIdentifierWithoutOneGiven) {
  const QNItemStringField one;
  const auto two = QNItemStringField::fieldWithIdentifier(std::nullopt);

  EXPECT_FALSE(one.identifier().value_or("").empty());
  EXPECT_NE(one.identifier(), two->identifier());
}

TEST(QNItemField, KeepsTheIdentifierThatItIsGiven) {
  EXPECT_EQ(QNItemStringField::fieldWithIdentifier("a")->identifier(), "a");
  EXPECT_EQ(QNItemStringField::fieldWithIdentifier("")->identifier(), "");
}

TEST(QNItemField, DrawsNothingForAnIdentifierThatIsGiven) {
  std::size_t drawn = 0;
  const QNScopedRandom random([&drawn](std::span<std::uint8_t> bytes) {
    ++drawn;
    std::fill(bytes.begin(), bytes.end(), std::uint8_t{7});
  });

  QNItemField::fieldWithType("string", "1");
  QNItemField::fieldWithType("future", "1");
  fieldOf(R"({"k":"concealed","n":"1","t":"x","v":"y"})");
  fieldOf(R"({"k":"future","n":"1"})");
  EXPECT_EQ(drawn, 0u);

  QNItemField::fieldWithType("string", std::nullopt);
  EXPECT_EQ(drawn, 1u);
}

TEST(QNItemField, RepairsAMissingIdentifier) {
  QNItemStringField field;
  field.setIdentifier(std::nullopt);
  ASSERT_EQ(field.identifier(), std::nullopt);
  EXPECT_EQ(jsonText(field.storedForm()), R"({"t":"","k":"string"})");

  field.repairMissingIdentifier("x");

  EXPECT_EQ(field.identifier(), "x");
}

TEST(QNItemField, WithoutATitleReadsAnEmptyOne) {
  QNItemStringField field;
  EXPECT_EQ(field.title(), "");
  field.setTitle("pin");
  EXPECT_EQ(field.title(), "pin");

  field.setTitle(std::nullopt);

  EXPECT_EQ(field.title(), "");
}

TEST(QNItemField, TheBaseImplementsNoValue) {
  QNBareField field;
  const MRCapturingSink sink;
  const Json value(1);

  EXPECT_EQ(field.stringValue(), std::nullopt);
  EXPECT_EQ(field.jsonValue(), std::nullopt);
  field.setJsonValue(&value);

  EXPECT_THAT(assertions(sink),
              ElementsAre("Must be implemented in subclass", "Must be implemented in subclass",
                          "Must be implemented in subclass"));
  EXPECT_TRUE(field.rawValue().isNothing());
}

// Factory

struct Made {
  std::optional<std::string_view> type;
  std::string_view identifier;
  std::string_view className;
};

class QNItemFieldFactory : public testing::TestWithParam<Made> {};

TEST_P(QNItemFieldFactory, MakesTheClass) {
  const auto fresh = QNItemField::fieldWithType(GetParam().type, GetParam().identifier);
  EXPECT_EQ(fresh->className(), GetParam().className);
  EXPECT_EQ(fresh->type(), GetParam().type);

  JsonObject stored;
  if (GetParam().type) stored["k"] = *GetParam().type;
  stored["n"] = GetParam().identifier;
  EXPECT_EQ(QNItemField::fieldFromStored(stored)->className(), GetParam().className);
}

INSTANTIATE_TEST_SUITE_P(
    Types, QNItemFieldFactory,
    testing::Values(
        Made{"string", "1", "QNItemStringField"},
        Made{"string", "ccnum", "QNItemCreditCardNumberField"},
        Made{"string", "ccnum_conflict_1", "QNItemCreditCardNumberField"},
        Made{"string", "accnum", "QNItemStringField"},
        Made{"string", "TOTP_1", "QNItemStringField"}, Made{"phone", "ccnum", "QNItemPhoneField"},
        Made{"URL", "1", "QNItemURLField"}, Made{"url", "1", "QNItemUnknownField"},
        Made{"email", "1", "QNItemEmailField"}, Made{"concealed", "1", "QNItemConcealedField"},
        Made{"concealed", "TOTP_abc", "QNItemTOTPField"},
        Made{"concealed", "totp_abc", "QNItemConcealedField"},
        Made{"concealed", "ccnum", "QNItemConcealedField"},
        Made{"reference", "1", "QNItemReferenceField"},
        Made{"cctype", "1", "QNItemCreditCardTypeField"}, Made{"date", "1", "QNItemDateField"},
        Made{"country", "1", "QNItemCountryField"}, Made{"gender", "1", "QNItemGenderField"},
        Made{"monthYear", "1", "QNItemMonthYearField"}, Made{"address", "1", "QNItemAddressField"},
        Made{"menu", "1", "QNItemMenuField"}, Made{"month", "1", "QNItemUnknownField"},
        Made{"password", "1", "QNItemUnknownField"}, Made{"sshKey", "1", "QNItemUnknownField"},
        Made{"file", "1", "QNItemUnknownField"}, Made{"", "1", "QNItemUnknownField"},
        Made{std::nullopt, "1", "QNItemUnknownField"}));

TEST(QNItemFieldFactory, TheOlderOneKnowsFewerKinds) {
  for (const std::string_view type :
       {"string", "phone", "URL", "email", "concealed", "reference", "cctype", "date", "country",
        "gender", "monthYear", "address", "menu"}) {
    const auto field = QNItemField::fieldWithType(type);
    ASSERT_NE(field, nullptr) << type;
    EXPECT_EQ(field->type(), type);
    EXPECT_FALSE(field->identifier().value_or("").empty());
  }
  for (const std::string_view type : {"file", "month", "password", "unknown", "sshKey", ""}) {
    EXPECT_EQ(QNItemField::fieldWithType(type), nullptr) << type;
  }
}

TEST(QNItemFieldFactory, AMissingOrBadIdentifierBecomesAFreshOne) {
  for (const std::string_view stored :
       {R"({"k":"string"})", R"({"k":"string","n":5})", R"({"k":"string","n":null})"}) {
    const auto field = fieldOf(stored);

    EXPECT_FALSE(field->identifier().value_or("").empty()) << stored;
    EXPECT_EQ(field->storedForm().at("n").get_string(), *field->identifier());
  }
}

// Attributes

TEST(QNItemFieldAttributes, AreCopied) {
  QNItemStringField field;
  JsonObject attributes = jsonObject(R"({"guarded":"yes"})");
  JsonObject traits = jsonObject(R"({"keyboard":"Number"})");

  field.setAttributes(&attributes);
  field.setInputTraits(&traits);
  attributes.clear();
  traits.clear();

  ASSERT_NE(field.attributes(), nullptr);
  EXPECT_EQ(jsonText(*field.attributes()), R"({"guarded":"yes"})");
  EXPECT_EQ(jsonText(*field.inputTraits()), R"({"keyboard":"Number"})");
}

TEST(QNItemFieldAttributes, ThatAreEmptyOrNoneAreNoneAndNotWritten) {
  const auto field = fieldOf(R"({"k":"string","n":"1","t":"","a":{"x":1},"inputTraits":{"y":1}})");
  const JsonObject empty;

  field->setAttributes(&empty);
  field->setInputTraits(nullptr);

  EXPECT_EQ(field->attributes(), nullptr);
  EXPECT_EQ(field->inputTraits(), nullptr);
  EXPECT_EQ(jsonText(field->storedForm()), R"({"k":"string","n":"1","t":""})");
}

TEST(QNItemFieldAttributes, MayBeSetFromThemselves) {
  const auto field = fieldOf(R"({"k":"string","n":"1","t":"","a":{"x":1}})");

  field->setAttributes(field->attributes());

  EXPECT_EQ(jsonText(*field->attributes()), R"({"x":1})");
}

TEST(QNItemFieldAttributes, AnEmptyObjectReadsAsNone) {
  const auto field = fieldOf(R"({"k":"future","a":{},"inputTraits":{}})");

  EXPECT_EQ(field->attributes(), nullptr);
  EXPECT_EQ(field->inputTraits(), nullptr);
}

TEST(QNItemFieldAttributes, GuardedAndMultilineGoByAY) {
  const auto field = fieldOf(R"({"k":"string","n":"1","a":{"guarded":"yes","multiline":"y"}})");
  EXPECT_TRUE(field->isGuarded());
  EXPECT_TRUE(field->isMultiline());

  for (const std::string_view stored :
       {R"({"k":"string","n":"1","a":{"guarded":"no","multiline":"Yes"}})",
        R"({"k":"string","n":"1","a":{"guarded":true,"multiline":1}})",
        R"({"k":"string","n":"1"})"}) {
    EXPECT_FALSE(fieldOf(stored)->isGuarded()) << stored;
    EXPECT_FALSE(fieldOf(stored)->isMultiline()) << stored;
  }
}

TEST(QNItemFieldAttributes, ARegistrationCodeIsMultilineWhateverTheySay) {
  EXPECT_TRUE(fieldOf(R"({"k":"string","n":"reg_code"})")->isMultiline());
  EXPECT_TRUE(fieldOf(R"({"k":"string","n":"reg_code","a":{"multiline":"no"}})")->isMultiline());
}

TEST(QNItemFieldAttributes, OffDisablesTheGenerator) {
  EXPECT_TRUE(
      fieldOf(R"({"k":"concealed","a":{"generate":"off"}})")->isPasswordGeneratorDisabled());
  EXPECT_FALSE(
      fieldOf(R"({"k":"concealed","a":{"generate":"on"}})")->isPasswordGeneratorDisabled());
  EXPECT_FALSE(fieldOf(R"({"k":"concealed"})")->isPasswordGeneratorDisabled());
}

TEST(QNItemFieldAttributes, AProviderMakesAnEmailFieldNotEditable) {
  EXPECT_FALSE(fieldOf(R"({"k":"email","a":{"provider":"x"}})")->isEditable());
  EXPECT_FALSE(fieldOf(R"({"k":"email","a":{"provider":null}})")->isEditable());
  EXPECT_TRUE(fieldOf(R"({"k":"email"})")->isEditable());
  EXPECT_TRUE(fieldOf(R"({"k":"string","a":{"provider":"x"}})")->isEditable());
}

TEST(QNItemFieldAttributes, TellOfPlaceholderFilterSSHKeyAndCategory) {
  const auto field = fieldOf<QNItemReferenceField>(
      R"({"k":"reference","a":{"placeholder":"p","clipboardFilter":"f","sshKeyAttributes":null,)"
      R"("filterCategoryUUID":"005"}})");

  EXPECT_EQ(field->placeholderValue(), "p");
  EXPECT_EQ(field->clipboardFilter(), "f");
  EXPECT_TRUE(field->hasSSHKeyAttributes());
  EXPECT_EQ(field->filterCategoryUUID(), "005");

  const auto without = fieldOf<QNItemReferenceField>(R"({"k":"reference"})");
  EXPECT_EQ(without->placeholderValue(), std::nullopt);
  EXPECT_FALSE(without->hasSSHKeyAttributes());
  EXPECT_EQ(without->filterCategoryUUID(), std::nullopt);
}

// Clipboard and strength

std::string copied(std::string_view value, std::string_view filter) {
  QNItemStringField field;
  JsonObject attributes;
  attributes["clipboardFilter"] = filter;
  field.setAttributes(&attributes);
  field.setValue(value);
  return textOf(field.clipboardStringValue());
}

TEST(QNItemFieldClipboard, KeepsTheCharactersOfTheFilter) {
  EXPECT_EQ(copied("1234 5678", "0123456789"), "12345678");
  EXPECT_EQ(copied("DE12 3456", "0123456789"), "123456");
  EXPECT_EQ(copied("ab", "0123456789"), "");
  EXPECT_EQ(copied("a\u00E9\U0001F511b", "\U0001F511\u00E9"), "\u00E9\U0001F511");
}

TEST(QNItemFieldClipboard, WithoutAFilterIsTheValue) {
  EXPECT_EQ(copied("1234 5678", ""), "1234 5678");
  EXPECT_EQ(textOf(stringField("1", "1 2")->clipboardStringValue()), "1 2");
  EXPECT_EQ(stringField("1", std::nullopt)->clipboardStringValue(), std::nullopt);
}

TEST(QNItemFieldStrength, IsShownForAConcealedFieldThatQualifies) {
  EXPECT_TRUE(fieldOf(R"({"k":"concealed","n":"1","v":"hunter2"})")->shouldShowPasswordStrength());
  for (const std::string_view stored :
       {R"({"k":"concealed","n":"1","v":"hunter2","a":{"generate":"off"}})",
        R"({"k":"string","n":"1","v":"hunter2"})", R"({"k":"concealed","n":"1","v":""})",
        R"({"k":"concealed","n":"TOTP_1","v":"hunter2"})", R"({"k":"concealed","n":"1","v":"x"})",
        R"({"k":"concealed","n":"1"})"}) {
    EXPECT_FALSE(fieldOf(stored)->shouldShowPasswordStrength()) << stored;
  }
}

// Comparison

TEST(QNItemFieldComparison, EqualFieldsHaveEqualTypeValueIdentifierAndTitle) {
  const auto field = fieldOf(R"({"k":"string","n":"1","t":"a","v":"x","a":{"guarded":"y"}})");

  EXPECT_TRUE(field->isEqual(*fieldOf(R"({"k":"string","n":"1","t":"a","v":"x"})")));
  EXPECT_FALSE(field->isEqual(*fieldOf(R"({"k":"phone","n":"1","t":"a","v":"x"})")));
  EXPECT_FALSE(field->isEqual(*fieldOf(R"({"k":"string","n":"2","t":"a","v":"x"})")));
  EXPECT_FALSE(field->isEqual(*fieldOf(R"({"k":"string","n":"1","t":"b","v":"x"})")));
  EXPECT_FALSE(field->isEqual(*fieldOf(R"({"k":"string","n":"1","t":"a","v":"y"})")));
}

TEST(QNItemFieldComparison, AFieldWithoutAValueEqualsNoneNotEvenItself) {
  const auto field = fieldOf(R"({"k":"string","n":"1","t":"a"})");
  const auto date = fieldOf(R"({"k":"date","n":"1","t":"a"})");

  EXPECT_FALSE(field->isEqual(*field));
  EXPECT_FALSE(date->isEqual(*date));
  EXPECT_TRUE(field->isValueEqualTo(std::nullopt));
  EXPECT_TRUE(date->isValueEqualTo(std::nullopt));
}

TEST(QNItemFieldComparison, OfAValueLooksAtItsKind) {
  const auto text = fieldOf(R"({"k":"string","n":"1","v":"5"})");
  EXPECT_TRUE(text->isValueEqualTo("5"));
  EXPECT_FALSE(text->isValueEqualTo("6"));
  EXPECT_FALSE(text->isValueEqualTo(QNFieldValue::ofNumber(5)));
  EXPECT_FALSE(text->isValueEqualTo(std::nullopt));

  const auto date = fieldOf(R"({"k":"date","n":"1","v":5})");
  EXPECT_TRUE(date->isValueEqualTo(QNFieldValue::ofNumber(5)));
  EXPECT_FALSE(date->isValueEqualTo("5"));
}

// A 0 means neither a number nor nothing: it would read as a text at address 0.
template <class Value>
concept TakesALiteralZero = requires {
  Value(0);
};
template <class Value>
concept TakesANullPointer = requires {
  Value(nullptr);
};
static_assert(!TakesALiteralZero<QNFieldValue> && !TakesANullPointer<QNFieldValue>);
static_assert(TakesANullPointer<const char*> && TakesALiteralZero<std::string_view>);
static_assert(!std::is_constructible_v<QNFieldValue, std::nullptr_t>);
static_assert(!std::is_convertible_v<int, QNFieldValue> &&
              !std::is_convertible_v<bool, QNFieldValue>);
static_assert(std::is_convertible_v<std::nullopt_t, QNFieldValue> &&
              std::is_convertible_v<const char*, QNFieldValue> &&
              std::is_convertible_v<std::string_view, QNFieldValue>);

TEST(QNFieldValue, OfJsonComparesByContent) {
  const Json five(5), alsoFive(5.0), big(~std::uint64_t{0}),
      list = jsonValue("[1,2.0]"), same = jsonValue("[1.0,2]"), yes(true), null;

  EXPECT_TRUE(QNFieldValue::ofJson(&five).isEqual(QNFieldValue::ofJson(&alsoFive)));
  EXPECT_TRUE(QNFieldValue::ofJson(&alsoFive).isEqual(QNFieldValue::ofNumber(5)));
  EXPECT_FALSE(QNFieldValue::ofJson(&big).isEqual(QNFieldValue::ofNumber(-1)));
  EXPECT_TRUE(QNFieldValue::ofJson(&list).isEqual(QNFieldValue::ofJson(&same)));
  EXPECT_FALSE(QNFieldValue::ofJson(&yes).isOfSameClassAs(QNFieldValue::ofJson(&five)));
  EXPECT_FALSE(QNFieldValue::ofJson(&null).isNothing());
  EXPECT_TRUE(QNFieldValue::ofJson(nullptr).isNothing());
  EXPECT_FALSE(QNFieldValue().isEqual(QNFieldValue()));
  EXPECT_TRUE(QNFieldValue().isSameAs(QNFieldValue()));
}

TEST(QNFieldValue, DoesNotPrintItself) {
  std::ostringstream out;

  out << QNFieldValue("secret") << QNFieldValue();

  EXPECT_EQ(out.str(), "[value][nothing]");
}

// Kind tests

using Test = bool (QNItemField::*)() const;
struct KindTest {
  std::string_view name;
  Test test;
};
const KindTest kTests[] = {
    {"String", &QNItemField::isStringField},
    {"URL", &QNItemField::isURLField},
    {"Email", &QNItemField::isEmailField},
    {"Phone", &QNItemField::isPhoneField},
    {"Address", &QNItemField::isAddressField},
    {"MonthYear", &QNItemField::isMonthYearField},
    {"Date", &QNItemField::isDateField},
    {"CreditCardType", &QNItemField::isCreditCardTypeField},
    {"Reference", &QNItemField::isReferenceField},
    {"File", &QNItemField::isFileField},
    {"Concealed", &QNItemField::isConcealedField},
    {"TOTP", &QNItemField::isTOTPField},
    {"Password", &QNItemField::isPasswordField},
    {"Menu", &QNItemField::isMenuField},
    {"CreditCardNumber", &QNItemField::isCreditCardNumberField},
    {"Unknown", &QNItemField::isUnknownField},
};

std::string testsOf(std::string_view type, std::string_view identifier) {
  const auto field = QNItemField::fieldWithType(type, identifier);
  std::string passed;
  for (const KindTest& kind : kTests) {
    if (((*field).*kind.test)()) passed.append(passed.empty() ? "" : " ").append(kind.name);
  }
  return passed;
}

TEST(QNItemFieldKinds, AreToldByTypeAndIdentifier) {
  EXPECT_EQ(testsOf("string", "1"), "String");
  EXPECT_EQ(testsOf("string", "ccnum2"), "String CreditCardNumber");
  EXPECT_EQ(testsOf("URL", "1"), "URL");
  EXPECT_EQ(testsOf("email", "1"), "Email");
  EXPECT_EQ(testsOf("phone", "1"), "Phone");
  EXPECT_EQ(testsOf("address", "1"), "Address");
  EXPECT_EQ(testsOf("monthYear", "1"), "MonthYear");
  EXPECT_EQ(testsOf("date", "1"), "Date");
  EXPECT_EQ(testsOf("cctype", "1"), "CreditCardType");
  EXPECT_EQ(testsOf("reference", "1"), "Reference");
  EXPECT_EQ(testsOf("concealed", "1"), "Concealed");
  EXPECT_EQ(testsOf("concealed", "TOTP_1"), "TOTP");
  EXPECT_EQ(testsOf("menu", "1"), "Menu");
  EXPECT_EQ(testsOf("gender", "1"), "Menu");
  EXPECT_EQ(testsOf("country", "1"), "");
  EXPECT_EQ(testsOf("file", "1"), "File Unknown");
  EXPECT_EQ(testsOf("password", "1"), "Password Unknown");
  EXPECT_EQ(testsOf("future", "1"), "Unknown");
  EXPECT_EQ(testsOf("string", "password"), "String Password");
  EXPECT_EQ(testsOf("concealed", "pop_password"), "Concealed Password");
}

// Conflict copies

TEST(QNItemFieldConflictCopy, HasTheContentAndIsNeverGuarded) {
  const auto field = fieldOf(
      R"({"k":"concealed","n":"1","t":"pin","v":"x","a":{"guarded":"yes","generate":"off"},)"
      R"("inputTraits":{"keyboard":"Number"}})");

  const auto copy = field->conflictCopyWithUniqueFieldIdentifierForConflict("1_conflict_1");

  EXPECT_EQ(jsonText(copy->storedForm()),
            R"({"n":"1_conflict_1","t":"pin","k":"concealed","v":"x","a":{"generate":"off"}})");
  EXPECT_TRUE(field->isGuarded());
}

TEST(QNItemFieldConflictCopy, WithoutAnIdentifierHasAFreshOne) {
  const auto field = fieldOf(R"({"k":"string","n":"ccnum","v":"x","a":{"guarded":"yes"}})");

  const auto copy = field->conflictCopyWithUniqueFieldIdentifierForConflict(std::nullopt);

  EXPECT_NE(copy->identifier(), "ccnum");
  EXPECT_EQ(copy->className(), "QNItemStringField");
  EXPECT_EQ(copy->attributes(), nullptr);
}

TEST(QNItemFieldConflictCopy, KeepsEveryKindOfValue) {
  for (const std::string_view stored :
       {R"({"k":"date","n":"1","v":0})", R"({"k":"monthYear","n":"1","v":202407})",
        R"({"k":"address","n":"1","v":{"street":"s"}})", R"({"k":"future","n":"1","v":[1,"x"]})",
        R"({"k":"file","n":"1","v":{"documentId":"d"}})", R"({"k":"gender","n":"1","v":"m"})"}) {
    const auto field = fieldOf(stored);

    const auto copy = field->conflictCopyWithUniqueFieldIdentifierForConflict("2");

    EXPECT_EQ(copy->type(), field->type());
    EXPECT_EQ(jsonText(copy->jsonValue()), jsonText(field->jsonValue())) << stored;
  }
}

}  // namespace
}  // namespace quillon
