#include "quillon/fields/QNFieldSection.h"
#include "quillon/fields/QNItemStringField.h"
#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/platform/text/QNLocalization.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view kSections =
    R"([{"name":"s1","title":"Section","fields":[{"k":"concealed","n":"1","v":"x","t":"pin",)"
    R"("a":{"guarded":"yes"},"future":[1,2.5E0,null]},)"
    R"({"k":"future","v":true,"z":{"a":[]}}],"future":{"a":1}},{"name":"s2"}])";

QNSampleItemRef itemWith(std::string_view sections) {
  auto item = newItem(localVault());
  item->setDetailsObject(jsonValue(sections), kDetailsSections);
  item->didSave();
  return item;
}
std::string storedSections(QNItem& item) {
  return jsonText(item.detailsObjectForKey(kDetailsSections));
}
std::shared_ptr<QNFieldSection> sectionNamed(std::optional<std::string_view> name,
                                             std::string_view identifier = "") {
  auto section = std::make_shared<QNFieldSection>();
  section->setName(name);
  if (!identifier.empty()) {
    section->addField(QNItemStringField::fieldWithIdentifier(identifier));
  }
  return section;
}
std::vector<std::string> namesOf(QNItem& item) {
  std::vector<std::string> names;
  for (const auto& section : item.fieldSections()) {
    names.emplace_back(section->name().value_or("(none)"));
  }
  return names;
}

// Stored form

TEST(QNItemSections, SurviveASaveByteForByte) {
  for (const auto& vault : {std::shared_ptr<QNGenericProfile>(localVault()),
                            std::shared_ptr<QNGenericProfile>(accountVault())}) {
    const auto row = newItem(vault);
    row->setDetailsObject(jsonValue(kSections), kDetailsSections);
    save(*row);
    const auto item = opened(*row, vault);
    const MRCapturingSink sink;
    item->setTitle("T");
    ASSERT_EQ(item->numberOfFieldSections(), 2u);

    save(*item);

    EXPECT_EQ(storedSections(*opened(*item, vault)), kSections);
    EXPECT_THAT(sink.records(), IsEmpty());
  }
}

TEST(QNItemSections, ThatNobodyChangedDirtyNothingWhenSaved) {
  const auto item = itemWith(kSections);
  ASSERT_EQ(item->numberOfFieldSections(), 2u);

  item->saveFieldSections();

  EXPECT_FALSE(item->dirtyRow());
  EXPECT_EQ(storedSections(*item), kSections);
}

TEST(QNItemSections, ThatWereNeverBuiltAreNotTouchedByASave) {
  constexpr std::string_view odd = R"([{},{"fields":[]},{"fields":[{"k":"string"}]},5])";
  const auto item = itemWith(odd);

  item->saveFieldSections();

  EXPECT_EQ(storedSections(*item), odd);
}

TEST(QNItemSections, AChangeOfAFieldIsWrittenBySave) {
  const auto vault = localVault();
  const auto item = newItem(vault);
  item->setDetailsObject(jsonValue(kSections), kDetailsSections);
  item->didSave();
  item->findFieldWithIdentifier("1")->setRawValue("y");
  EXPECT_FALSE(item->dirtyRow());

  item->willSerialize();
  EXPECT_TRUE(item->dirtyRow());
  save(*item);

  std::string expected(kSections);
  expected.replace(expected.find(R"("v":"x")"), 7, R"("v":"y")");
  EXPECT_EQ(storedSections(*opened(*item, vault)), expected);
}

TEST(QNItemSections, ElementsThatAreNoObjectsStayInALocalVault) {
  const auto item = itemWith(R"(["x",{"name":"a"},null,{"name":"b"},[5]])");
  ASSERT_THAT(namesOf(*item), ElementsAre("a", "b"));

  item->saveFieldSections();
  EXPECT_FALSE(item->dirtyRow());
  item->removeFieldSectionAtIndex(0);
  item->saveFieldSections();

  EXPECT_EQ(storedSections(*item), R"(["x",{"name":"b"},null,[5]])");
}

TEST(QNItemSections, WithoutOneLeftTheKeyIsRemoved) {
  const auto item = itemWith(R"([{"name":"a"}])");

  item->removeFieldSectionAtIndex(0);
  item->saveFieldSections();

  EXPECT_TRUE(item->dirtyRow());
  EXPECT_EQ(item->detailsObjectForKey(kDetailsSections), nullptr);
}

TEST(QNItemSections, AnEmptyListIsRemovedOnceItWasBuilt) {
  const auto item = itemWith("[]");
  ASSERT_EQ(item->numberOfFieldSections(), 0u);

  item->saveFieldSections();

  EXPECT_EQ(item->detailsObjectForKey(kDetailsSections), nullptr);
}

TEST(QNItemSections, WhatIsNoListStaysUntilThereIsASection) {
  const auto item = itemWith(R"("x")");
  ASSERT_EQ(item->numberOfFieldSections(), 0u);
  item->saveFieldSections();
  EXPECT_EQ(storedSections(*item), R"("x")");
  EXPECT_FALSE(item->dirtyRow());

  item->addFieldSection(sectionNamed("a"));
  item->saveFieldSections();

  EXPECT_EQ(storedSections(*item), R"([{"name":"a"}])");
  EXPECT_TRUE(item->dirtyRow());
}

TEST(QNItemSections, EmptyObjectsAreLeftOut) {
  const auto item = itemWith(R"([{},{"name":"a"},{}])");
  item->addFieldSection(std::make_shared<QNFieldSection>());
  ASSERT_EQ(item->numberOfFieldSections(), 4u);

  item->saveFieldSections();

  EXPECT_EQ(storedSections(*item), R"([{"name":"a"}])");
}

TEST(QNItemSections, AreMadeFromJsonAndTurnedIntoIt) {
  const Json stored = jsonValue(
      R"(["x",{"name":"a","fields":[{"k":"file","n":"1","v":{}},{"k":"string","n":"2","t":""}]},{}])");

  const auto sections = QNItem::fieldSectionsFromJSON(&stored);

  ASSERT_EQ(sections.size(), 2u);
  const Json written(QNItem::jsonFromFieldSections(sections));
  EXPECT_EQ(
      jsonText(&written),
      R"([{"name":"a","fields":[{"k":"file","n":"1","v":{}},{"k":"string","n":"2","t":""}]}])");
  const Json other("x");
  EXPECT_TRUE(QNItem::fieldSectionsFromJSON(&other).empty());
  EXPECT_TRUE(QNItem::fieldSectionsFromJSON(nullptr).empty());
}

TEST(QNItemSections, LeaveFilesOutWhenAsked) {
  const Json stored = jsonValue(
      R"([{"fields":[{"k":"file","n":"1"}]},{"fields":[{"k":"string","n":"2","t":""}]}])");

  const Json written(QNItem::jsonFromFieldSections(QNItem::fieldSectionsFromJSON(&stored), true));

  EXPECT_EQ(jsonText(&written), R"([{"fields":[{"k":"string","n":"2","t":""}]}])");
}

TEST(QNItemSections, OfEmptyObjectsAloneAreRemoved) {
  const auto item = itemWith(R"([{},{"name":5,"fields":"x"}])");
  ASSERT_EQ(item->numberOfFieldSections(), 2u);

  item->saveFieldSections();

  EXPECT_EQ(item->detailsObjectForKey(kDetailsSections), nullptr);
}

// When they are built and dropped

TEST(QNItemSections, AreBuiltOnce) {
  const auto item = itemWith(kSections);

  EXPECT_EQ(item->fieldSectionAtIndex(0), item->fieldSectionAtIndex(0));
  EXPECT_NE(item->fieldSectionAtIndex(0), nullptr);
  EXPECT_EQ(item->fieldSectionAtIndex(2), nullptr);
}

TEST(QNItemSections, AreBuiltAnewFromOtherDetails) {
  const auto item = itemWith(R"([5,{"name":"a"}])");
  ASSERT_THAT(namesOf(*item), ElementsAre("a"));

  item->copyDetails(jsonObject(R"({"sections":[{"name":"b"}]})"));

  EXPECT_THAT(namesOf(*item), ElementsAre("b"));
  item->saveFieldSections();
  EXPECT_EQ(storedSections(*item), R"([{"name":"b"}])");
}

TEST(QNItemSections, AreDroppedWithNewData) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->setDetailsObject(jsonValue(R"([{"name":"a"}])"), kDetailsSections);
  save(*row);
  const auto item = opened(*row, vault);
  item->addFieldSection(sectionNamed("b"));
  ASSERT_THAT(namesOf(*item), ElementsAre("a", "b"));

  item->setDetailsData(row->detailsData());

  EXPECT_THAT(namesOf(*item), ElementsAre("a"));
}

TEST(QNItemSections, OfDetailsThatDontOpenAreNoneAndTakeNone) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->setDetailsObject(jsonValue(R"([{"name":"a"}])"), kDetailsSections);
  save(*row);
  const auto item = listed(*row, vault);
  const MRCapturingSink sink;

  item->addFieldSection(sectionNamed("b"));
  EXPECT_EQ(item->mutableFieldSections(), nullptr);
  EXPECT_THAT(namesOf(*item), IsEmpty());
  item->saveFieldSections();

  item->markLoadingDetails();
  item->setEncryptedKey(row->encryptedKey());
  item->setDetailsData(row->detailsData());
  item->markDetailsLoaded();
  EXPECT_THAT(namesOf(*item), ElementsAre("a"));
}

// The list

TEST(QNItemSections, AreAddedAndRemovedByIdentity) {
  const auto item = newItem(localVault());
  const auto a = sectionNamed("a");
  const auto b = sectionNamed("b");
  item->didSave();

  item->addFieldSection(a);
  item->addFieldSection(b);
  item->addFieldSection(nullptr);
  item->removeFieldSection(sectionNamed("b"));
  EXPECT_THAT(namesOf(*item), ElementsAre("a", "b"));
  item->removeFieldSection(a);
  item->removeFieldSectionAtIndex(5);

  EXPECT_THAT(namesOf(*item), ElementsAre("b"));
  EXPECT_FALSE(item->dirtyRow());
}

TEST(QNItemSections, OfANameThatIsThereGiveItTheirFields) {
  const auto item = newItem(localVault());
  const auto mine = sectionNamed("a", "1");
  item->addFieldSection(mine);
  const auto nameless = sectionNamed(std::nullopt, "3");

  item->addFieldSections({sectionNamed("a", "2"), sectionNamed("b"), nameless});

  EXPECT_THAT(namesOf(*item), ElementsAre("a", "b", "(none)"));
  EXPECT_EQ(mine->numberOfFields(), 2u);
  EXPECT_EQ(item->fieldSectionAtIndex(2), nameless);
}

TEST(QNItemSections, NullsAmongThemAreSkipped) {
  class QNStartedItem final : public QNItem {
   public:
    using QNItem::_setFieldSections;
    using QNItem::QNItem;
  };
  const auto item = std::make_shared<QNStartedItem>(initNew);
  item->setProfile(localVault());

  item->_setFieldSections(QNItem::FieldSections{nullptr, sectionNamed("a"), nullptr});
  EXPECT_THAT(namesOf(*item), ElementsAre("a"));
  item->addFieldSections({nullptr, sectionNamed("a", "1"), nullptr, sectionNamed("b")});

  EXPECT_THAT(namesOf(*item), ElementsAre("a", "b"));
  EXPECT_EQ(item->fieldSectionAtIndex(0)->numberOfFields(), 1u);
}

TEST(QNItemSections, AreFoundByNameAndTitle) {
  const auto item = itemWith(R"([{"name":"a","title":"A"},{"name":"a","title":"B"},{}])");

  EXPECT_EQ(item->findSectionWithName("a"), item->fieldSectionAtIndex(0));
  EXPECT_EQ(item->findSectionWithTitle("B"), item->fieldSectionAtIndex(1));
  EXPECT_EQ(item->findSectionWithName("b"), nullptr);
  EXPECT_EQ(item->findSectionWithTitle("C"), nullptr);
  EXPECT_EQ(item->findSectionWithName(std::nullopt), nullptr);
  EXPECT_EQ(item->findSectionWithTitle(std::nullopt), nullptr);
}

TEST(QNItemSections, OfAKnownNameAreMadeOnce) {
  QNLocalization::sharedLocalization().setLanguage("de");
  const auto item = newItem(localVault());

  const auto conflicts = item->sectionForConflictsCreatedIfNeeded();
  const auto references = item->sectionForReferencesCreatedIfNeeded();
  const auto files = item->sectionForFileCreatedIfNeeded();
  QNLocalization::sharedLocalization().setLanguage("en");

  EXPECT_EQ(conflicts->title(), "Konflikte");
  EXPECT_EQ(references->title(), "Verwandte Einträge");
  EXPECT_EQ(files->title(), "");
  EXPECT_TRUE(files->isFileSection());
  EXPECT_THAT(namesOf(*item), ElementsAre("conflicts", "linked items", "add more"));
  EXPECT_EQ(item->sectionForConflictsCreatedIfNeeded(), conflicts);
  EXPECT_EQ(item->fieldSectionWithName("linked items", "other title"), references);
  EXPECT_EQ(references->title(), "Verwandte Einträge");
}

TEST(QNItemSections, ForConflictsCountsWithAField) {
  const auto item = newItem(localVault());
  EXPECT_FALSE(item->hasSectionForConflicts());
  const auto conflicts = item->sectionForConflictsCreatedIfNeeded();
  EXPECT_FALSE(item->hasSectionForConflicts());

  conflicts->addField(QNItemStringField::fieldWithIdentifier("1"));

  EXPECT_TRUE(item->hasSectionForConflicts());
}

}  // namespace
}  // namespace quillon
