#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quillon/fields/internal/QNFieldTesting.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/json/QNJsonEquality.h"

namespace quillon {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// Reading

TEST(QNFieldSectionJSON, ReadsNameTitleAndFields) {
  const auto section = sectionOf(
      R"({"name":"s","title":"Section","fields":[{"n":"1","t":"pin","k":"concealed","v":"x",)"
      R"("a":{"guarded":"yes"},"inputTraits":{"keyboard":"Number"}},{"n":"2","k":"date","v":5}]})");

  EXPECT_EQ(section->name(), "s");
  EXPECT_EQ(section->title(), "Section");
  ASSERT_EQ(section->numberOfFields(), 2u);
  const auto field = section->fieldAtIndex(0);
  EXPECT_EQ(field->identifier(), "1");
  EXPECT_EQ(field->title(), "pin");
  EXPECT_TRUE(field->isConcealedField());
  EXPECT_TRUE(field->isValueEqualTo("x"));
  EXPECT_TRUE(field->isGuarded());
  EXPECT_EQ(jsonText(*field->inputTraits()), R"({"keyboard":"Number"})");
}

TEST(QNFieldSectionJSON, ANameThatIsNoTextIsNothingAndMakesNoUniqueOne) {
  const auto section = sectionOf(R"({"name":5,"title":[],"fields":"x"})");

  EXPECT_EQ(section->name(), std::nullopt);
  EXPECT_EQ(section->title(), std::nullopt);
  EXPECT_EQ(section->numberOfFields(), 0u);
}

TEST(QNFieldSectionJSON, MembersOfTheWrongTypeReadAsMissing) {
  const MRCapturingSink sink;

  const auto field =
      sectionOf(R"({"fields":[{"n":"1","k":"string","t":5,"v":true,"a":"x","inputTraits":[1]}]})")
          ->fieldAtIndex(0);

  EXPECT_EQ(field->title(), "");
  EXPECT_EQ(field->jsonValue(), std::nullopt);
  EXPECT_EQ(field->attributes(), nullptr);
  EXPECT_EQ(field->inputTraits(), nullptr);
  EXPECT_THAT(sink.records(), IsEmpty());
}

TEST(QNFieldSectionJSON, AnSSHKeyIsOneUnknownField) {
  constexpr std::string_view stored =
      R"({"fields":[{"k":"sshKey","n":"1","t":"key","v":"x","a":{"sshKeyAttributes":{}}}]})";

  EXPECT_TRUE(sectionOf(stored)->fieldAtIndex(0)->isUnknownField());
  EXPECT_EQ(rewritten(stored), stored);
}

TEST(QNFieldSectionJSON, ReadingOverAFilledSectionReplacesTheNamesAndAddsTheFields) {
  const auto section = sectionOf(
      R"({"name":"s","title":"t","x":1,"fields":["a",{"n":"1","k":"string","t":""},"b"]})");

  section->loadDictionary(
      jsonObject(R"({"title":5,"y":2,"fields":["c",{"n":"2","k":"string","t":""},"d"]})"));

  EXPECT_EQ(section->name(), std::nullopt);
  EXPECT_EQ(section->title(), std::nullopt);
  EXPECT_EQ(jsonText(section->dictionaryRepresentation()),
            R"({"x":1,"fields":["a",{"n":"1","k":"string","t":""},"b","c",)"
            R"({"n":"2","k":"string","t":""},"d"],"y":2})");
  section->loadDictionary(jsonObject(R"({"name":"n"})"));
  EXPECT_EQ(section->name(), "n");
  EXPECT_EQ(section->numberOfFields(), 2u);
}

// Writing

TEST(QNFieldSectionJSON, SoundSectionsAreWrittenAsTheyWereRead) {
  for (const std::string_view stored :
       {R"({})", R"({"name":"s2"})", R"({"title":"t","name":"s"})",
        R"({"name":"s","fields":[{"k":"string","n":"1","t":"","v":""}]})",
        R"({"fields":[{"v":1720051200,"t":"","k":"date","n":"1"}],"name":"s"})",
        R"({"fields":[{"n":"1","k":"monthYear","v":202407,"t":""}]})",
        R"({"fields":[{"n":"1","k":"address","t":"","v":{"zip":"z","street":"s","x":[]}}]})",
        R"({"fields":[{"n":"1","k":"cctype","t":"type","v":"visa","a":{"x":1E0}}]})"}) {
    EXPECT_EQ(rewritten(stored), stored);
  }
}

TEST(QNFieldSectionJSON, UnknownMembersStayInTheirPlaces) {
  constexpr std::string_view stored =
      R"({"z":null,"fields":[{"x":1,"n":"1","y":{"a":[]},"k":"string","t":"","v":"x","w":0.5}],)"
      R"("name":"s","future":[1,2.5E0]})";

  EXPECT_EQ(rewritten(stored), R"({"z":null,"fields":[{"x":1,"n":"1","y":{"a":[]},"k":"string",)"
                               R"("t":"","v":"x","w":5E-1}],"name":"s","future":[1,2.5E0]})");
}

TEST(QNFieldSectionJSON, ElementsThatAreNoObjectsStayInTheirPlaces) {
  constexpr std::string_view stored =
      R"({"fields":["x",{"n":"1","k":"string","t":""},null,[5],{"n":"2","k":"string","t":""},7]})";
  const auto section = sectionOf(stored);
  ASSERT_EQ(section->numberOfFields(), 2u);
  EXPECT_EQ(jsonText(section->dictionaryRepresentation()), stored);

  section->removeFieldAtIndex(0);

  EXPECT_EQ(jsonText(section->dictionaryRepresentation()),
            R"({"fields":["x",{"n":"2","k":"string","t":""},null,[5],7]})");
}

TEST(QNFieldSectionJSON, ATitleIsAlwaysWritten) {
  EXPECT_EQ(rewritten(R"({"fields":[{"n":"1","k":"string"}]})"),
            R"({"fields":[{"n":"1","k":"string","t":""}]})");
}

TEST(QNFieldSectionJSON, EmptyContainersAreNotWritten) {
  EXPECT_EQ(rewritten(R"({"fields":[{"n":"1","k":"string","t":"","a":{},"inputTraits":{}}]})"),
            R"({"fields":[{"n":"1","k":"string","t":""}]})");
  EXPECT_EQ(rewritten(R"({"fields":[{"n":"1","k":"address","t":"","v":{}}]})"),
            R"({"fields":[{"n":"1","k":"address","t":""}]})");
  EXPECT_EQ(rewritten(R"({"name":"s","fields":[]})"), R"({"name":"s"})");
}

TEST(QNFieldSectionJSON, AnEmptyTextIsWritten) {
  const auto section = sectionOf(R"({"fields":[{"n":"1","k":"string","t":"","v":""}]})");

  EXPECT_TRUE(section->isEmpty());
  EXPECT_EQ(jsonText(section->dictionaryRepresentation()),
            R"({"fields":[{"n":"1","k":"string","t":"","v":""}]})");
}

TEST(QNFieldSectionJSON, WhatWasReplacedIsWrittenReplaced) {
  const MRCapturingSink sink;
  EXPECT_EQ(rewritten(R"({"name":5,"fields":[{"n":"1","k":"string","t":7,"v":5}]})"),
            R"({"fields":[{"n":"1","k":"string","t":"","v":""}]})");
  EXPECT_EQ(rewritten(R"({"fields":[{"n":"1","k":"string","t":"","v":null}]})"),
            R"({"fields":[{"n":"1","k":"string","t":""}]})");
  EXPECT_EQ(rewritten(R"({"fields":[{"n":"1","k":"date","t":"","v":[]}]})"),
            R"({"fields":[{"n":"1","k":"date","t":""}]})");
  EXPECT_EQ(rewritten(R"({"fields":[{"n":"1","k":"monthYear","t":"","v":{"a":1}}]})"),
            R"({"fields":[{"n":"1","k":"monthYear","t":"","v":197001}]})");
  EXPECT_EQ(rewritten(R"({"fields":[{"n":"1","k":"address","t":"","v":"here"}]})"),
            R"({"fields":[{"n":"1","k":"address","t":"","v":{"street":"here"}}]})");
}

TEST(QNFieldSectionJSON, AnAddressWithoutAValueIsWrittenWithTheUsersCountry) {
  const QNScopedLocale locale("de-CH");

  EXPECT_EQ(rewritten(R"({"fields":[{"n":"1","k":"address","t":""}]})"),
            R"({"fields":[{"n":"1","k":"address","t":"","v":{"country":"ch"}}]})");
}

TEST(QNFieldSectionJSON, AOneTimePasswordFieldIsWrittenWithANewIdentifier) {
  const std::string written =
      rewritten(R"({"fields":[{"n":"TOTP_abc","k":"concealed","t":"","v":"otpauth://x"}]})");

  EXPECT_THAT(written, HasSubstr(R"({"fields":[{"n":"TOTP_)"));
  EXPECT_THAT(written, Not(HasSubstr("TOTP_abc")));
  EXPECT_THAT(written, HasSubstr(R"(","k":"concealed","t":"","v":"otpauth://x"}]})"));
}

TEST(QNFieldSectionJSON, FileFieldsMayBeLeftOut) {
  const auto section =
      sectionOf(R"({"name":"add more","fields":[{"n":"1","k":"file","v":{"id":"d"}},)"
                R"({"n":"2","k":"string","t":""}]})");

  EXPECT_EQ(jsonText(section->dictionaryRepresentationExcludingFileFields(true)),
            R"({"name":"add more","fields":[{"n":"2","k":"string","t":""}]})");
  section->removeFieldAtIndex(1);
  EXPECT_EQ(jsonText(section->dictionaryRepresentationExcludingFileFields(true)),
            R"({"name":"add more"})");
  EXPECT_EQ(jsonText(section->dictionaryRepresentation()),
            R"({"name":"add more","fields":[{"n":"1","k":"file","v":{"id":"d"}}]})");
}

TEST(QNFieldSectionJSON, NewSectionsAreWrittenInOrder) {
  QNFieldSection section;
  section.setName("s");
  section.setTitle("t");
  const auto field = stringField("1", "x", "pin");
  const JsonObject attributes = jsonObject(R"({"guarded":"yes"})");
  field->setAttributes(&attributes);
  section.addField(field);

  EXPECT_EQ(jsonText(section.dictionaryRepresentation()),
            R"({"name":"s","title":"t","fields":[{"n":"1","t":"pin","k":"string","v":"x",)"
            R"("a":{"guarded":"yes"}}]})");
}

// Writing in place

std::string storedInto(const QNFieldSection& section, std::string_view before, bool expected) {
  Json stored = jsonValue(before);
  EXPECT_EQ(section.storeInto(stored), expected) << before;
  EXPECT_FALSE(section.storeInto(stored)) << before;
  EXPECT_TRUE(equalJson(stored.get_object(), section.dictionaryRepresentation())) << before;
  return mr_JSONStringWithError(stored).value_or("");
}

TEST(QNFieldSectionJSON, InPlaceLeavesWhatIsEqualToTheByte) {
  const auto section = sectionOf(
      R"({"name":"s","fields":[{"n":"1","k":"date","t":"","v":5},"x",{"n":"2","k":"string","t":""}]})");
  constexpr std::string_view other =
      R"({"fields":[{"v":5E0,"k":"date","t":"","n":"1"},"x",{"k":"string","n":"2","t":""}],"name":"s"})";

  EXPECT_EQ(storedInto(*section, other, false), other);
}

TEST(QNFieldSectionJSON, InPlaceReplacesTheFieldsThatChanged) {
  const auto section = sectionOf(R"({"name":"s","fields":[{"n":"1","k":"date","t":"","v":5},"x",)"
                                 R"({"n":"2","k":"string","t":"","v":"a"}]})");
  section->fieldAtIndex(1)->setRawValue("b");

  EXPECT_EQ(
      storedInto(*section,
                 R"({"fields":[{"v":5E0,"k":"date","t":"","n":"1"},"x",{"k":"string","n":"2",)"
                 R"("t":"","v":"a"}],"name":"s"})",
                 true),
      R"({"fields":[{"v":5E0,"k":"date","t":"","n":"1"},"x",{"n":"2","k":"string",)"
      R"("t":"","v":"b"}],"name":"s"})");
}

TEST(QNFieldSectionJSON, InPlaceWritesTheWholeWhereTheShapeDiffers) {
  const auto section = sectionOf(R"({"name":"s","z":1,"fields":[{"n":"1","k":"string","t":""}]})");
  const std::string whole = jsonText(section->dictionaryRepresentation());

  for (const std::string_view before :
       {"null", "[]", "{}", R"({"name":"s","z":1})", R"({"name":"s","z":1,"fields":[]})",
        R"({"name":"s","z":1,"fields":5})", R"({"name":"s","fields":[{}]})",
        R"({"name":"s","z":1,"fields":[{},{}]})", R"({"name":"s","z":1,"y":1,"fields":[{}]})",
        R"({"name":"t","z":1,"fields":[{"n":"1","k":"string","t":""}]})"}) {
    EXPECT_EQ(storedInto(*section, before, true), whole);
  }
  EXPECT_EQ(storedInto(*section, R"({"name":"s","z":1,"fields":["x"]})", true), whole);
}

TEST(QNFieldSectionJSON, InPlaceAnEmptyListOfFieldsGoes) {
  EXPECT_EQ(storedInto(*sectionOf(R"({"name":"s"})"), R"({"name":"s","fields":[]})", true),
            R"({"name":"s"})");
}

}  // namespace
}  // namespace quillon
