#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "quillon/fields/internal/QNFieldTesting.h"
#include "quillon/platform/data/QNNotFound.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

QNFieldSectionRef sectionWith(std::vector<QNItemFieldRef> fields) {
  auto section = std::make_shared<QNFieldSection>();
  for (const auto& field : fields) section->addField(field);
  return section;
}

std::vector<std::string> revealed(const std::vector<QNSecret>& secrets) {
  std::vector<std::string> texts;
  for (const QNSecret& secret : secrets) texts.emplace_back(secret.reveal());
  return texts;
}

// Name and title

TEST(QNFieldSection, StartsWithNothing) {
  const QNFieldSection section;

  EXPECT_EQ(section.name(), std::nullopt);
  EXPECT_EQ(section.title(), std::nullopt);
  EXPECT_EQ(section.numberOfFields(), 0u);
  EXPECT_TRUE(section.isEmpty());
  EXPECT_FALSE(section.isGuarded());
  EXPECT_EQ(jsonText(section.dictionaryRepresentation()), "{}");
}

TEST(QNFieldSection, ForeignNamesAndTitlesThatAreNoTextsAreReplaced) {
  QNFieldSection section;

  section.setNameFromJson(Json(5));
  section.setTitleFromJson(Json(nullptr));
  EXPECT_THAT(std::string(*section.name()), StartsWith("Section_"));
  EXPECT_EQ(section.title(), "");
  section.setNameFromJson(Json("n"));
  section.setTitleFromJson(Json("t"));

  EXPECT_EQ(section.name(), "n");
  EXPECT_EQ(section.title(), "t");
}

TEST(QNFieldSection, NothingIsStoredAsNothing) {
  QNFieldSection section;
  section.setName("n");
  section.setTitle("t");

  section.setName(std::nullopt);
  section.setTitle(std::nullopt);

  EXPECT_EQ(section.name(), std::nullopt);
  EXPECT_EQ(jsonText(section.dictionaryRepresentation()), "{}");
}

TEST(QNFieldSection, UniqueNamesDiffer) {
  EXPECT_THAT(QNFieldSection::uniqueSectionName(), StartsWith("Section_"));
  EXPECT_NE(QNFieldSection::uniqueSectionName(), QNFieldSection::uniqueSectionName());
}

TEST(QNFieldSection, OfFilesIsToldByItsExactName) {
  QNFieldSection section;
  EXPECT_FALSE(section.isFileSection());
  section.setName("Add More");
  EXPECT_FALSE(section.isFileSection());

  section.setName("add more");

  EXPECT_TRUE(section.isFileSection());
}

// The list

TEST(QNFieldSection, GivesCopiesOfItsList) {
  const auto section = sectionWith({stringField("1", "x")});

  auto fields = section->fields();
  fields.clear();

  EXPECT_EQ(section->numberOfFields(), 1u);
}

TEST(QNFieldSection, FindsInsertsAndRemovesByPlace) {
  const auto section = sectionWith({stringField("1", "x"), stringField("3", "x")});
  const auto two = stringField("2", "x");

  section->insertField(two, 1);
  EXPECT_THAT(identifiersOf(section->fields()), ElementsAre("1", "2", "3"));
  EXPECT_EQ(section->indexOfField(two), 1);
  EXPECT_EQ(section->fieldAtIndex(1), two);
  section->removeFieldAtIndex(0);
  section->removeField(two);

  EXPECT_THAT(identifiersOf(section->fields()), ElementsAre("3"));
  EXPECT_EQ(section->indexOfField(two), kNotFound);
}

TEST(QNFieldSection, LooksForAFieldByItsIdentityAndNotByContent) {
  const auto section = sectionWith({stringField("1", "x")});

  section->removeField(stringField("1", "x"));

  EXPECT_EQ(section->numberOfFields(), 1u);
}

TEST(QNFieldSection, AnIndexOutOfRangeChangesNothing) {
  const auto section = sectionWith({stringField("1", "x")});

  section->removeFieldAtIndex(1);
  section->insertField(stringField("2", "x"), 99);
  section->addField(nullptr);

  EXPECT_EQ(section->fieldAtIndex(2), nullptr);
  EXPECT_THAT(identifiersOf(section->fields()), ElementsAre("1", "2"));
}

TEST(QNFieldSection, MovesAFieldAndStopsAtTheEnd) {
  const auto one = stringField("1", "x");
  const auto section = sectionWith({one, stringField("2", "x"), stringField("3", "x")});

  section->moveField(one, 99);
  EXPECT_THAT(identifiersOf(section->fields()), ElementsAre("2", "3", "1"));
  section->moveField(one, 1);
  EXPECT_THAT(identifiersOf(section->fields()), ElementsAre("2", "1", "3"));
  section->moveField(stringField("4", "x"), 0);

  EXPECT_THAT(identifiersOf(section->fields()), ElementsAre("2", "1", "3"));
}

TEST(QNFieldSection, AddsFieldsOfAnotherSharedOrTheirValues) {
  const auto here = sectionWith({stringField("1", "old", "mine")});
  const auto two = stringField("2", "y");
  const auto there = sectionWith({stringField("1", "new", "theirs"), two});

  here->addFieldsFromSection(*there);

  EXPECT_THAT(identifiersOf(here->fields()), ElementsAre("1", "2"));
  EXPECT_TRUE(here->fieldAtIndex(0)->isValueEqualTo("new"));
  EXPECT_EQ(here->fieldAtIndex(0)->title(), "mine");
  EXPECT_EQ(here->fieldAtIndex(1), two);
}

TEST(QNFieldSection, AddsNothingToAnUnknownFieldNorFromOne) {
  const auto unknown = fieldOf(R"({"k":"future","n":"1","v":[1]})");
  const auto known = stringField("1", "x");
  const MRCapturingSink sink;

  sectionWith({unknown})->addFieldsFromSection(*sectionWith({known}));
  sectionWith({known})->addFieldsFromSection(*sectionWith({unknown}));

  EXPECT_EQ(jsonText(unknown->jsonValue()), "[1]");
  EXPECT_TRUE(known->isValueEqualTo("x"));
}

TEST(QNFieldSection, AnUnknownFieldOfAnotherChangesNoKindOfField) {
  constexpr std::array kinds{R"("string","v":"x")", R"("date","v":5)", R"("monthYear","v":202407)",
                             R"("address","v":{"city":"c"})"};
  for (const std::string_view value :
       {"", R"(,"v":"v")", R"(,"v":{"a":1})", R"(,"v":7)", R"(,"v":[1])", R"(,"v":null)"}) {
    for (const std::string_view kind : kinds) {
      const auto mine = sectionOf(R"({"fields":[{"n":"1","t":"","k":)" + std::string(kind) + "}]}");
      const std::string before = jsonText(mine->dictionaryRepresentation());
      const auto theirs =
          sectionOf(R"({"fields":[{"n":"1","k":"future")" + std::string(value) + "}]}");
      const MRCapturingSink sink;

      mine->addFieldsFromSection(*theirs);

      EXPECT_EQ(jsonText(mine->dictionaryRepresentation()), before) << value;
      EXPECT_THAT(sink.records(), IsEmpty()) << kind << value;
    }
  }
}

TEST(QNFieldSection, AddsItsOwnFieldsWithoutHarm) {
  const auto section = sectionWith({stringField("1", "x"), fieldOf(R"({"k":"address","n":"2"})")});

  section->addFieldsFromSection(*section);

  EXPECT_EQ(section->numberOfFields(), 2u);
  EXPECT_TRUE(section->fieldAtIndex(0)->isValueEqualTo("x"));
}

// State and looking up

TEST(QNFieldSection, IsEmptyWhenEveryFieldIs) {
  EXPECT_TRUE(sectionWith({stringField("1", ""), stringField("2", std::nullopt)})->isEmpty());
  EXPECT_FALSE(sectionWith({stringField("1", ""), stringField("2", "x")})->isEmpty());
  EXPECT_FALSE(sectionWith({fieldOf(R"({"k":"future"})")})->isEmpty());
}

TEST(QNFieldSection, GivesTheFieldsThatArentEmpty) {
  const auto section =
      sectionWith({stringField("1", ""), stringField("2", "x"), stringField("3", "y")});

  EXPECT_THAT(identifiersOf(section->nonEmptyFields()), ElementsAre("2", "3"));
}

TEST(QNFieldSection, IsGuardedIfAFieldIs) {
  EXPECT_TRUE(sectionOf(R"({"fields":[{"k":"string"},{"k":"string","a":{"guarded":"yes"}}]})")
                  ->isGuarded());
}

TEST(QNFieldSection, LooksUpByIdentifierValueAndEquality) {
  const auto one = stringField("1", "x");
  const auto two = stringField("1", "y");
  const auto section = sectionWith({one, two, stringField("12", "y")});

  EXPECT_EQ(section->fieldWithIdentifier("1"), one);
  EXPECT_EQ(section->fieldWithIdentifier("3"), nullptr);
  EXPECT_EQ(section->fieldWithIdentifier(std::nullopt), nullptr);
  EXPECT_EQ(section->fieldWithValue("y"), two);
  EXPECT_EQ(section->fieldWithValue("z"), nullptr);
  EXPECT_EQ(section->fieldEqualToField(*stringField("1", "y")), two);
  EXPECT_EQ(section->fieldEqualToField(*stringField("1", "z")), nullptr);
  EXPECT_THAT(identifiersOf(section->fieldsWithIdentifierPrefix("1")), ElementsAre("1", "1", "12"));
}

TEST(QNFieldSection, FindsPasswordConcealedAndAliasFields) {
  const auto section = sectionOf(
      R"({"fields":[{"k":"concealed","n":"password","v":""},{"k":"concealed","n":"TOTP_1","v":"u"},)"
      R"({"k":"string","n":"pop_password","v":"p"},{"k":"concealed","n":"pin","v":"c"},)"
      R"({"k":"email","n":"e","v":"a"},{"k":"email","n":"alias","v":"b","a":{"provider":"f"}}]})");

  EXPECT_EQ(section->findNonEmptyPasswordField()->identifier(), "pop_password");
  EXPECT_EQ(section->findNonEmptyConcealedField()->identifier(), "pin");
  EXPECT_EQ(section->findFastmailAliasField()->identifier(), "alias");
  EXPECT_EQ(QNFieldSection().findNonEmptyPasswordField(), nullptr);
  EXPECT_EQ(QNFieldSection().findNonEmptyConcealedField(), nullptr);
  EXPECT_EQ(sectionWith({stringField("1", "x")})->findFastmailAliasField(), nullptr);
}

TEST(QNFieldSection, GivesSearchWhatIsNotEmpty) {
  const auto section = sectionOf(
      R"({"fields":[{"k":"string","n":"1","t":"one","v":"a"},{"k":"concealed","n":"2","v":"b"},)"
      R"({"k":"string","n":"3","t":"three","v":""},{"k":"monthYear","n":"4","v":202407},)"
      R"({"k":"concealed","n":"TOTP_5","t":"five","v":"u"},{"k":"concealed","n":"6","v":""}]})");

  EXPECT_THAT(revealed(section->allValuesForSearch()), ElementsAre("a", "b", "07/2024", "u"));
  EXPECT_THAT(revealed(section->allPasswordsForSearch()), ElementsAre("b"));
  EXPECT_THAT(revealed(section->allFieldTitlesForSearch()), ElementsAre("one", "three", "five"));
  EXPECT_THAT(QNFieldSection().allValuesForSearch(), IsEmpty());
}

// Merging

TEST(QNFieldSection, MergesAFieldThatItDoesntHaveAsItIs) {
  const auto section = sectionWith({stringField("1", "x")});
  const auto added = stringField("2", "x");

  section->mergeField(added);

  EXPECT_EQ(section->fieldAtIndex(1), added);
}

TEST(QNFieldSection, MergesNothingWhereValueAndTitleAreEqual) {
  const auto section = sectionWith({stringField("1", "x", "t"), stringField("2", std::nullopt)});

  section->mergeField(stringField("1", "x", "t"));
  section->mergeField(stringField("2", std::nullopt));

  EXPECT_EQ(section->numberOfFields(), 2u);
}

TEST(QNFieldSection, MergesAnotherValueOrTitleAsACopy) {
  const auto section = sectionWith({stringField("1", "x", "t")});
  const auto otherValue = stringField("1", "y", "t");

  section->mergeField(otherValue);
  section->mergeField(stringField("1", "x", "u"));

  ASSERT_EQ(section->numberOfFields(), 3u);
  EXPECT_TRUE(section->fieldAtIndex(0)->isValueEqualTo("x"));
  EXPECT_TRUE(section->fieldAtIndex(1)->isValueEqualTo("y"));
  EXPECT_NE(section->fieldAtIndex(1), otherValue);
  EXPECT_NE(section->fieldAtIndex(1)->identifier(), "1");
  EXPECT_EQ(section->fieldAtIndex(2)->title(), "u");
}

TEST(QNFieldSection, KnowsAConflictThatItKeepsAlready) {
  const auto section =
      sectionWith({stringField("1_conflict_1", "x"), stringField("2_conflict_1", std::nullopt)});

  EXPECT_TRUE(section->hasConflictForField(*stringField("1", "x")));
  EXPECT_FALSE(section->hasConflictForField(*stringField("1", "y")));
  EXPECT_FALSE(section->hasConflictForField(*stringField("", "x")));
  EXPECT_FALSE(section->hasConflictForField(*stringField("2", std::nullopt)));
}

TEST(QNFieldSection, IsEqualByValuesInOrderAlone) {
  const auto section = sectionOf(
      R"({"name":"a","fields":[{"k":"string","n":"1","t":"t","v":"x"},{"k":"date","v":5}]})");

  EXPECT_TRUE(section->isEqual(
      *sectionOf(R"({"name":"b","fields":[{"k":"phone","n":"9","v":"x"},{"k":"date","v":5}]})")));
  EXPECT_FALSE(section->isEqual(
      *sectionOf(R"({"fields":[{"k":"date","v":5},{"k":"phone","n":"9","v":"x"}]})")));
  EXPECT_FALSE(section->isEqual(*sectionOf(R"({"fields":[{"k":"phone","n":"9","v":"x"}]})")));
  EXPECT_TRUE(sectionWith({stringField("1", std::nullopt)})
                  ->isEqual(*sectionWith({stringField("2", std::nullopt)})));
}

}  // namespace
}  // namespace quillon
