#include "quillon/templates/QNTemplate.h"

#include <gmock/gmock.h>

#include "quillon/fields/QNFieldSection.h"
#include "quillon/platform/archive/QNKeyedArchiver.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/templates/internal/QNTestCategories.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(QNTemplate, ReadsItsDefinition) {
  const auto made = templateOf(
      R"({"uuid":"101","localized":"yes","icons":{"list":"l","detail":"d","source":"s"},)"
      R"("subtitle":"bank","contents":[]})");

  EXPECT_EQ(made->uuid(), "101");
  EXPECT_TRUE(made->localized());
  EXPECT_EQ(made->listIconName(), "l");
  EXPECT_EQ(made->detailIconName(), "d");
  EXPECT_EQ(made->sourceIconName(), "s");
  EXPECT_EQ(made->subtitleFieldName(), "bank");
  EXPECT_TRUE(made->visible());
  EXPECT_EQ(made->h9TemplateProperties(), nullptr);
  EXPECT_EQ(made->templateURL(), std::nullopt);
}

TEST(QNTemplate, OfAnEmptyDefinitionHasNothing) {
  const auto made = templateOf("{}");

  EXPECT_EQ(made->uuid(), std::nullopt);
  EXPECT_FALSE(made->localized());
  EXPECT_EQ(made->listIconName(), std::nullopt);
  EXPECT_EQ(made->detailIconName(), std::nullopt);
  EXPECT_EQ(made->sourceIconName(), std::nullopt);
  EXPECT_EQ(made->subtitleFieldName(), std::nullopt);
  EXPECT_TRUE(made->visible());
}

TEST(QNTemplate, OfNoDefinitionIsReported) {
  const MRCapturingSink sink;

  const QNTemplate made(nullptr);

  EXPECT_THAT(sink.texts(MRLogKind::assertion),
              ElementsAre("Template definition should not be nil"));
  EXPECT_EQ(made.uuid(), std::nullopt);
}

TEST(QNTemplate, KeepsACopyOfItsDefinition) {
  auto definition = *mr_objectFromJSONStringWithError(R"({"uuid":"101"})");
  const QNTemplate made(&definition);

  definition["uuid"] = "102";

  EXPECT_EQ(made.uuid(), "101");
}

TEST(QNTemplate, OnlyTheTextYesHidesOrDeprecates) {
  for (const std::string_view value : {"\"no\"", "\"YES\"", "\"true\"", "true", "1", "null"}) {
    const auto made = templateOf(R"({"hidden":)" + std::string(value) + R"(,"deprecated":)" +
                                 std::string(value) + "}");
    EXPECT_FALSE(made->hidden()) << value;
    EXPECT_FALSE(made->deprecated()) << value;
    EXPECT_TRUE(made->visible()) << value;
  }
  EXPECT_TRUE(templateOf(R"({"hidden":"yes"})")->hidden());
  EXPECT_FALSE(templateOf(R"({"hidden":"yes"})")->visible());
  EXPECT_TRUE(templateOf(R"({"deprecated":"yes"})")->deprecated());
  EXPECT_FALSE(templateOf(R"({"deprecated":"yes"})")->visible());
}

TEST(QNTemplate, InlineTextsMakeItLocalizedEvenWhenThereAreNone) {
  EXPECT_TRUE(templateOf(R"({"localizedStrings":{}})")->localized());
  EXPECT_TRUE(templateOf(R"({"localized":"no","localizedStrings":{}})")->localized());
  EXPECT_FALSE(templateOf(R"({"localized":"no"})")->localized());
  EXPECT_FALSE(templateOf(R"({"localizedStrings":[]})")->localized());
}

TEST(QNTemplate, DescribesItselfByCategoryFileAndAddress) {
  const auto made = templateOf(R"({"uuid":"101"})");
  EXPECT_TRUE(made->description().starts_with("<QNTemplate-101-(null): 0x"));

  made->setTemplateURL("/a/b.template.json");

  EXPECT_TRUE(made->description().starts_with("<QNTemplate-101-/a/b.template.json: 0x"));
}

// Sections and fields

constexpr std::string_view kBank = R"({"uuid":"101","localizedStrings":{
    "set.branch":"Branch","bank":"Bank","phone":"Phone number","menu.kind.a":"Kind A"},
  "contents":[
    {"set":"","title":"Foo","fields":[
      {"type":"string","name":"bank","attributes":{"guarded":"yes"},
       "inputTraits":{"keyboard":"URL"}},
      {"type":"menu","name":"kind","menuitems":["a","b",7]}]},
    {"set":"branch","fields":[
      {"type":"phone","name":"phone"},
      {"type":"concealed","name":"pin","title":"Own title"},
      {"type":"hologram","name":"h"}]},
    {"set":"own","title":"Own section","fields":[]},
    {"set":"bare"}]})";

TEST(QNTemplate, MakesSectionsWithNamesAndTitles) {
  const auto sections = templateOf(kBank)->instantiateFieldSections();

  ASSERT_TRUE(sections);
  ASSERT_EQ(sections->size(), 4u);
  EXPECT_EQ((*sections)[0]->name(), "");
  EXPECT_EQ((*sections)[0]->title(), "");  // without a name it can't have a title
  EXPECT_EQ((*sections)[1]->name(), "branch");
  EXPECT_EQ((*sections)[1]->title(), "Branch");
  EXPECT_EQ((*sections)[2]->title(), "Own section");
  EXPECT_EQ((*sections)[2]->numberOfFields(), 0u);
  EXPECT_EQ((*sections)[3]->title(), "set.bare");
}

TEST(QNTemplate, MakesFieldsWithTitlesAttributesAndTraits) {
  const auto sections = templateOf(kBank)->instantiateFieldSections();
  const auto bank = (*sections)[0]->fieldAtIndex(0);
  const auto pin = (*sections)[1]->fieldAtIndex(1);

  EXPECT_EQ(bank->identifier(), "bank");
  EXPECT_EQ(bank->type(), "string");
  EXPECT_EQ(bank->title(), "Bank");
  EXPECT_TRUE(bank->isGuarded());
  ASSERT_NE(bank->inputTraits(), nullptr);
  EXPECT_EQ(mr_validStringValueForKey(*bank->inputTraits(), "keyboard"), "URL");
  EXPECT_FALSE(bank->stringValue());
  EXPECT_EQ(pin->title(), "Own title");
  EXPECT_EQ(pin->attributes(), nullptr);
}

TEST(QNTemplate, AFieldOfAnUnknownTypeKeepsIt) {
  const auto sections = templateOf(kBank)->instantiateFieldSections();
  const auto unknown = (*sections)[1]->fieldAtIndex(2);

  EXPECT_TRUE(unknown->isUnknownField());
  EXPECT_EQ(unknown->type(), "hologram");
  EXPECT_EQ(unknown->title(), "h");
}

TEST(QNTemplate, AFieldOfTypeMonthOrPasswordIsUnknown) {
  for (const std::string_view type : {"month", "password"}) {
    JsonObject definition{{"type", type}, {"name", "x"}};

    const auto field = templateOf("{}")->instantiateFieldForDefinition(definition);

    EXPECT_TRUE(field->isUnknownField());
    EXPECT_EQ(field->type(), type);
  }
}

struct KindCase {
  std::string_view type, name, className;
};

TEST(QNTemplate, EachTypeMakesItsFieldClass) {
  constexpr KindCase cases[] = {
      {"string", "x", "QNItemStringField"},
      {"string", "ccnum2", "QNItemCreditCardNumberField"},
      {"phone", "x", "QNItemPhoneField"},
      {"URL", "x", "QNItemURLField"},
      {"email", "x", "QNItemEmailField"},
      {"concealed", "x", "QNItemConcealedField"},
      {"concealed", "TOTP_x", "QNItemTOTPField"},
      {"reference", "x", "QNItemReferenceField"},
      {"cctype", "x", "QNItemCreditCardTypeField"},
      {"date", "x", "QNItemDateField"},
      {"country", "x", "QNItemCountryField"},
      {"gender", "x", "QNItemGenderField"},
      {"monthYear", "x", "QNItemMonthYearField"},
      {"address", "x", "QNItemAddressField"},
      {"menu", "x", "QNItemMenuField"},
      {"anything", "x", "QNItemUnknownField"},
  };
  for (const auto& each : cases) {
    JsonObject definition{{"type", each.type}, {"name", each.name}};

    const auto field = templateOf("{}")->instantiateFieldForDefinition(definition);

    EXPECT_EQ(field->className(), each.className) << each.type;
  }
}

TEST(QNTemplate, AFieldWithoutANameGetsAFreshIdentifierAsItsTitle) {
  const JsonObject definition{{"type", "string"}};
  const auto made = templateOf("{}");

  const auto one = made->instantiateFieldForDefinition(definition);
  const auto two = made->instantiateFieldForDefinition(definition);

  ASSERT_TRUE(one->identifier());
  EXPECT_NE(one->identifier(), two->identifier());
  EXPECT_EQ(one->title(), one->identifier());
}

TEST(QNTemplate, MakesNewObjectsEachTime) {
  const auto made = templateOf(kBank);

  const auto one = made->instantiateFieldSections();
  const auto two = made->instantiateFieldSections();

  EXPECT_NE((*one)[0], (*two)[0]);
  EXPECT_NE((*one)[0]->fieldAtIndex(0), (*two)[0]->fieldAtIndex(0));
}

TEST(QNTemplate, WithoutContentsMakesNothingAndSaysSo) {
  for (const std::string_view text : {R"({"uuid":"1"})", R"({"contents":{}})"}) {
    const auto made = templateOf(text);
    const MRCapturingSink sink;

    EXPECT_EQ(made->instantiateFieldSections(), std::nullopt);

    EXPECT_THAT(sink.texts(MRLogKind::error),
                ElementsAre("Invalid template definition, missing contents: " + std::string(text)));
  }
}

TEST(QNTemplate, WithEmptyContentsMakesAnEmptyList) {
  const auto sections = templateOf(R"({"contents":[]})")->instantiateFieldSections();

  ASSERT_TRUE(sections);
  EXPECT_THAT(*sections, IsEmpty());
}

TEST(QNTemplate, PassesOverWhatIsNoSectionOrField) {
  const auto sections =
      templateOf(R"({"contents":[7,{"set":"a","fields":["x",{"type":"string","name":"n"}]},null]})")
          ->instantiateFieldSections();

  ASSERT_EQ(sections->size(), 1u);
  EXPECT_EQ((*sections)[0]->numberOfFields(), 1u);
}

TEST(QNTemplate, FindsTheLastDefinitionOfAName) {
  const auto made = templateOf(
      R"({"contents":[{"set":"a","fields":[{"name":"n","type":"string"},{"type":"date"}]},)"
      R"({"set":"b","fields":[{"name":"n","type":"phone"}]}]})");

  ASSERT_NE(made->definitionForFieldIdentifier("n"), nullptr);
  EXPECT_EQ(mr_validStringValueForKey(*made->definitionForFieldIdentifier("n"), "type"), "phone");
  EXPECT_TRUE(made->containsFieldIdentifier("n"));
  EXPECT_FALSE(made->containsFieldIdentifier("m"));
  EXPECT_EQ(made->definitionForFieldIdentifier("m"), nullptr);
  EXPECT_EQ((*made->instantiateFieldSections())[0]->fieldAtIndex(0)->type(), "string");
  EXPECT_EQ((*made->instantiateFieldSections())[1]->fieldAtIndex(0)->type(), "phone");
}

TEST(QNTemplate, GivesTheValuesOfAMenuInOrder) {
  const auto made = templateOf(kBank);

  EXPECT_THAT(made->menuItemsForFieldIdentifier("kind"), ElementsAre("a", "b"));
  EXPECT_THAT(made->menuItemsForFieldIdentifier("bank"), IsEmpty());
  EXPECT_THAT(made->menuItemsForFieldIdentifier("nothing"), IsEmpty());
}

// What a server says

JsonObject serverSays(std::string_view text) {
  return *mr_objectFromJSONStringWithError(text);
}

TEST(H9TemplateProperties, AreReadFromTheServersDictionary) {
  const auto dictionary =
      serverSays(R"({"singularName":"Bank","pluralName":"Banks","uuid":"101","state":"A",)"
                 R"("templateDescription":"not read"})");

  const H9TemplateProperties properties(&dictionary);

  EXPECT_EQ(properties.title, "Bank");
  EXPECT_EQ(properties.pluralTitle, "Banks");
  EXPECT_EQ(properties.uuid, "101");
  EXPECT_EQ(properties.templateDescription, std::nullopt);
  EXPECT_EQ(properties.state, 0);
}

TEST(H9TemplateProperties, KnowThreeStates) {
  const MRCapturingSink sink;
  const auto a = serverSays(R"({"state":"A"})");
  const auto h = serverSays(R"({"state":"H"})");
  const auto d = serverSays(R"({"state":"D"})");

  EXPECT_EQ(H9TemplateProperties(&a).state, 0);
  EXPECT_EQ(H9TemplateProperties(&h).state, 1);
  EXPECT_EQ(H9TemplateProperties(&d).state, 2);
  EXPECT_TRUE(sink.records().empty());
}

TEST(H9TemplateProperties, AnyOtherStateHidesAndIsReported) {
  const auto other = serverSays(R"({"uuid":"101","state":"X"})");
  const auto none = serverSays(R"({"uuid":"102"})");
  const MRCapturingSink sink;

  EXPECT_EQ(H9TemplateProperties(&other).state, 1);
  EXPECT_EQ(H9TemplateProperties(&none).state, 1);

  EXPECT_THAT(sink.texts(MRLogKind::error),
              ElementsAre("No template state for template 101. Setting to hidden.",
                          "No template state for template 102. Setting to hidden."));
  EXPECT_EQ(sink.records().front().subsystem, DEBUG_H9);
}

TEST(H9TemplateProperties, OfNoDictionaryAreEmptyAndActive) {
  const MRCapturingSink sink;

  const H9TemplateProperties properties(nullptr);

  EXPECT_EQ(properties.title, std::nullopt);
  EXPECT_EQ(properties.pluralTitle, std::nullopt);
  EXPECT_EQ(properties.uuid, std::nullopt);
  EXPECT_EQ(properties.state, 0);
  EXPECT_TRUE(sink.records().empty());
}

TEST(H9TemplateProperties, AreArchivedWithoutTheIdentifier) {
  H9TemplateProperties properties;
  properties.title = "Bank";
  properties.pluralTitle = "Banks";
  properties.templateDescription = "Where money is";
  properties.uuid = "101";
  properties.state = 2;
  const auto archive = QNKeyedArchiver::archivedDataWithRootObject(properties);
  ASSERT_TRUE(archive.ok());
  const QNDecodableClass known[] = {
      {"H9TemplateProperties", [](QNDecoder& coder) -> std::shared_ptr<QNCoding> {
         return std::make_shared<H9TemplateProperties>(coder);
       }}};

  const auto read = QNKeyedUnarchiver::unarchivedObjectOfClasses(known, archive.value());

  ASSERT_TRUE(read.ok());
  const auto decoded = std::dynamic_pointer_cast<H9TemplateProperties>(read.value());
  ASSERT_NE(decoded, nullptr);
  EXPECT_EQ(decoded->title, "Bank");
  EXPECT_EQ(decoded->pluralTitle, "Banks");
  EXPECT_EQ(decoded->templateDescription, "Where money is");
  EXPECT_EQ(decoded->uuid, std::nullopt);
  EXPECT_EQ(decoded->state, 2);
  for (const std::string_view key :
       {"__title__", "__pluralTitle__", "__description__", "__state__"}) {
    EXPECT_NE(textOf(archive.value()).find(key), std::string_view::npos) << key;
  }
}

TEST(QNTemplate, TakesItsNamesFromTheServerUnlessItIsLocalized) {
  const auto plain = serverSays(R"({"uuid":"101"})");
  const auto localized =
      serverSays(R"({"uuid":"101","localizedStrings":{"__title__":"T","__pluralTitle__":"Ts"}})");
  const auto server = serverSays(R"({"singularName":"S","pluralName":"Ss","state":"A"})");

  EXPECT_EQ(QNTemplate(&plain, &server).localizedTitle(), "S");
  EXPECT_EQ(QNTemplate(&plain, &server).localizedPluralTitle(), "Ss");
  EXPECT_EQ(QNTemplate(&localized, &server).localizedTitle(), "T");
  EXPECT_EQ(QNTemplate(&localized, &server).localizedPluralTitle(), "Ts");
}

TEST(QNTemplate, NamesItsInputTraitsForApplications) {
  EXPECT_EQ(QNTemplateFieldInputTraitsPropertyKey, "inputTraits");
  EXPECT_EQ(QNTemplateFieldKeyboardTypeInputTraitKey, "keyboard");
  EXPECT_EQ(QNTemplateFieldAutocapitalizationTypeInputTraitKey, "autocapitalization");
  EXPECT_EQ(QNTemplateFieldAutocorrectionTypeInputTraitKey, "autocorrection");
}

}  // namespace
}  // namespace quillon
